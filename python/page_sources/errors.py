"""What is raised besides KeyboardInterrupt and MemoryError."""


class Error(Exception):
    """The work failed; the message names the path, and `repository` the repository."""

    def __init__(self, message: str, repository: str) -> None:
        super().__init__(message, repository)
        self.message = message
        self.repository = repository

    def __str__(self) -> str:
        if self.repository in self.message:
            return self.message
        return f"{self.repository}: {self.message}"


class WrongArgument(Error, ValueError):
    """A name that is not known, or a pattern that is malformed."""


class Cancelled(Error):
    """`Repository.cancel` ended the call."""
