import pytest


@pytest.fixture
def reader(shelf):
    return shelf


@pytest.fixture
def shelf():
    return []


def plain(shelf):
    return shelf
