import os

DATABASE = os.environ.get("LENDING_DATABASE", "lending.db")
LOAN_DAYS = 21
