import sqlite3

from lending.errors import BookUnknownError
from lending.models import Book, Loan
from lending.settings import DATABASE


class StoreException(Exception):
    """The database is out of reach."""


class Store:
    def __init__(self, path=DATABASE):
        self.connection = sqlite3.connect(path)

    def book(self, book_id) -> Book:
        row = self.connection.execute("SELECT id, title FROM books WHERE id = ?", [book_id]).fetchone()
        if row is None:
            raise BookUnknownError(book_id)
        return Book(*row)

    def loans(self) -> list[Loan]:
        rows = self.connection.execute("SELECT book_id, reader, due FROM loans")
        return [Loan(self.book(book_id), reader, due) for book_id, reader, due in rows]
