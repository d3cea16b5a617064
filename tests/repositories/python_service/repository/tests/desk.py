from lending.store import Store


def desk():
    """A store with one book in it."""
    return Store(":memory:")
