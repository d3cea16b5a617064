from lending.store import Store


def run(store: Store, book_id):
    store.book(book_id)
