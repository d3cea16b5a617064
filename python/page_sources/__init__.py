"""Which files of a repository each page of a code wiki is written from, and why.

    import page_sources

    with page_sources.open("path/to/repository") as repo:
        for pick in repo.pages()["errors"].files:
            print(pick.path, pick.reasons[0].text)
"""

from ._library import VERSION as __version__
from .errors import Cancelled, Error, WrongArgument
from .repository import Repository, open
from .results import Edge, FlowClass, Index, Page, Pages, Pick, Place, Reason, Reference, Symbol, Why

__all__ = [
    "Cancelled",
    "Edge",
    "Error",
    "FlowClass",
    "Index",
    "Page",
    "Pages",
    "Pick",
    "Place",
    "Reason",
    "Reference",
    "Repository",
    "Symbol",
    "Why",
    "WrongArgument",
    "open",
]
