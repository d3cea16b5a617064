from abc import ABC, abstractmethod


class Handler(ABC):
    @abstractmethod
    def run(self): ...

    def name(self):
        return type(self).__name__

    @classmethod
    def create(cls): ...


HANDLERS = {}


def register(kind):
    return kind
