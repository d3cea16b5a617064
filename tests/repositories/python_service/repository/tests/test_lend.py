from lending.commands import lend
from lending.errors import BookUnknownError
from lending.models import Book
from tests.desk import desk


def test_unknown_book():
    try:
        lend.run(desk(), Book(1, "x").id, "Ada")
    except BookUnknownError:
        pass
