from app.handlers import Settings, Reader
from app.registry import HANDLERS

LOADED = ["app.handlers.Writer", "app.handlers:Reader", "some prose. Reader", "READER_NAME"]
CONFIG = "app/errors.py"


def main(Settings):
    Settings.handlers
    HANDLERS["reader"] = Reader
    wire(Reader, key=Reader)


def wire(handler, key):
    return handler
