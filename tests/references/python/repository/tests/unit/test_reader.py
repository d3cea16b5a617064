from app.errors import Gone


def test_reader(reader, shelf: list):
    assert reader is shelf


class TestGone:
    def test_shelf(self, shelf):
        raise Gone

    def helper(self, reader):
        return reader
