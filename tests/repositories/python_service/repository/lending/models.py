"""What the desk keeps records of."""
from dataclasses import dataclass
from datetime import date


@dataclass
class Book:
    id: int
    title: str


@dataclass
class Loan:
    book: Book
    reader: str
    due: date
