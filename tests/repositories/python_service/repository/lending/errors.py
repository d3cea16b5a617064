class LendingError(Exception):
    """Base of what the desk raises."""


class BookUnknownError(LendingError):
    pass


class BookLentError(LendingError):
    pass
