from lending.commands import remind
from tests.desk import desk


def test_channels():
    assert desk() and remind.channels() == ["letter"]
