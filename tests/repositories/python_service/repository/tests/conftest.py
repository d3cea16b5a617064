import pytest

from tests.desk import desk


@pytest.fixture
def store():
    return desk()
