"""What python/README.md shows: files, a session with them, commands."""

import re
import textwrap
from pathlib import Path

README = Path(__file__).resolve().parents[2] / "python/README.md"
_BLOCK = re.compile(r"^```(\w*)\n(.*?)^```$", re.DOTALL | re.MULTILINE)


def blocks(language):
    return [text for found, text in _BLOCK.findall(README.read_text()) if found == language]


def host_files():
    """The smallest host's files by their paths."""
    named = (re.match(r"# (\S+\.py)\n", text) for text in blocks("python"))
    return {name[1]: name.string for name in named if name}


def write_host(folder, change=lambda text: text):
    for path, text in host_files().items():
        file = Path(folder, path)
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(change(text))


def session():
    return next(textwrap.dedent(text) for text in blocks("python") if text.startswith(">>>"))


def build_commands():
    return next(text for text in blocks("") if "--preset python" in text)
