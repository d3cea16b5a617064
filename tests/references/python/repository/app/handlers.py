import os
from app import NotFound, register, Handler
import app.errors
import app.errors as failures


@register
class Reader(Handler):
    timeout: "Settings"

    def run(self):
        Handler = os.environ["READER_MODE"]
        if Handler is None:
            raise NotFound("no mode")
        raise app.errors.Gone(os.getenv("READER_NAME"))


class Writer(Handler):
    def run(self):
        try:
            Reader.create()
        except (NotFound, failures.AppError):
            pass
        isinstance(self, failures.Gone)


class Settings:
    handlers = [Reader, Writer]
