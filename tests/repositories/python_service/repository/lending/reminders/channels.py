from abc import ABC, abstractmethod


class Channel(ABC):
    """A way to remind a reader."""

    @abstractmethod
    def send(self, reader: str, text: str) -> None: ...
