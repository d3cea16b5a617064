class AppError(Exception):
    """Base of all."""


class NotFound(AppError):
    code = 404


class Gone(NotFound): ...
