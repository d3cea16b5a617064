from lending.errors import BookLentError
from lending.store import Store


def run(store: Store, book_id, reader):
    if any(loan.book.id == book_id for loan in store.loans()):
        raise BookLentError(book_id)
