"""The answers. Paths are relative to the repository; bytes in them that are no UTF-8 are kept as
`os.fsdecode` keeps them."""

from __future__ import annotations

import dataclasses
from typing import Any, Dict, Iterable, Iterator, List, Mapping, Optional, Tuple

Json = Dict[str, Any]


@dataclasses.dataclass(frozen=True)
class Place:
    path: str
    line: Optional[int] = None  #: 1-based; None: the file as a whole
    name: str = ""  #: what stands there


@dataclasses.dataclass(frozen=True)
class Reason:
    kind: str  #: a name that programs can rely on
    text: str  #: one line for a reader
    count: int  #: what the text counts; 0 when nothing is counted
    at: Tuple[Place, ...]  #: the first few places


@dataclasses.dataclass(frozen=True)
class Pick:
    path: str
    reasons: Tuple[Reason, ...]  #: strongest first


@dataclasses.dataclass(frozen=True)
class FlowClass:
    entry_points: str  #: the pattern, or what the structure shows
    sign: str  #: what made them a class
    roots: Tuple[str, ...]
    files: Tuple[Pick, ...]
    further: Tuple[Pick, ...]


@dataclasses.dataclass(frozen=True)
class Page:
    name: str
    files: Tuple[Pick, ...]  #: what the page's rule gives; for flows those of all classes, each once
    further: Tuple[Pick, ...]  #: what belongs there by other evidence, best first
    total: int  #: how many (classes, for flows) the rule found before its limit
    truncated: bool  #: whether the limit left some out
    nothing_found: str = ""  #: what was looked for in vain
    has_material: Optional[bool] = None  #: errors only
    classes: Tuple[FlowClass, ...] = ()  #: flows only


class Pages(Mapping[str, Page]):
    """The pages that were asked for, by name, in their own order."""

    def __init__(self, pages: Iterable[Page]) -> None:
        self._pages = {page.name: page for page in pages}

    def __getitem__(self, name: str) -> Page:
        return self._pages[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._pages)

    def __len__(self) -> int:
        return len(self._pages)

    def __repr__(self) -> str:
        return f"Pages({list(self._pages.values())!r})"


@dataclasses.dataclass(frozen=True)
class Why:
    page: str
    path: str
    list: Optional[str]  #: "files" or "further"; None: it is not on the page
    rank: Optional[int]  #: 1-based within the list
    reasons: Tuple[Reason, ...]
    missing: Tuple[str, ...]  #: what a file lacks that is not on the page
    above: Tuple[Pick, ...]  #: what stands before it, or the page's files
    entry_points: str = ""  #: flows only: the class


@dataclasses.dataclass(frozen=True)
class Reference:
    source: str
    line: int  #: of the first mention
    role: str
    target: Optional[str]  #: None: outside of the repository
    name: str
    count: int


@dataclasses.dataclass(frozen=True)
class Edge:
    source: str
    target: str
    weight: float
    edges: int  #: how many dependencies of files it stands for


@dataclasses.dataclass(frozen=True)
class Symbol:
    path: str
    kind: str
    name: str
    signature: str
    line: int


@dataclasses.dataclass(frozen=True)
class Index:
    """What a refresh did, and what the repository holds now."""

    repository: str  #: absolute path
    revision: Optional[str]  #: the work tree's commit
    clean: Optional[bool]  #: whether the files are those of the commit; None: unknown
    left_out: Mapping[str, int]  #: by reason
    warnings: Tuple[str, ...]  #: why answers may be incomplete
    file: str  #: where the index lies
    added: int
    changed: int
    removed: int
    unchanged: int
    rebuilt: str  #: why all was read anew; "" when it was not
    files: int
    sources: int
    documents: int
    generated: int
    edges: int
    symbols: Mapping[str, int]  #: by kind


def _picks(picks: List[Json]) -> Tuple[Pick, ...]:
    return tuple(Pick(pick["path"], _reasons(pick["reasons"])) for pick in picks)


def _reasons(reasons: List[Json]) -> Tuple[Reason, ...]:
    return tuple(
        Reason(
            reason["kind"],
            reason["text"],
            reason["count"],
            tuple(Place(at["path"], at.get("line"), at.get("name", "")) for at in reason["at"]),
        )
        for reason in reasons
    )


def _each_once(lists: Iterable[Tuple[Pick, ...]]) -> Tuple[Pick, ...]:
    found: Dict[str, Pick] = {}
    for picks in lists:
        for pick in picks:
            found.setdefault(pick.path, pick)
    return tuple(found.values())


def _page(name: str, page: Json) -> Page:
    classes = tuple(
        FlowClass(
            flow["entry_points"],
            flow["sign"],
            tuple(flow["roots"]),
            _picks(flow["files"]),
            _picks(flow["further"]),
        )
        for flow in page.get("classes", ())
    )
    return Page(
        name,
        _each_once(flow.files for flow in classes) if "classes" in page else _picks(page["files"]),
        _each_once(flow.further for flow in classes) if "classes" in page else _picks(page["further"]),
        page["total"],
        page["truncated"],
        page.get("nothing_found", ""),
        page.get("has_material"),
        classes,
    )


def pages_of(document: Json) -> Pages:
    return Pages(_page(name, page) for name, page in document["pages"].items())


def why_of(document: Json) -> Why:
    return Why(
        document["page"],
        document["path"],
        document["list"],
        document["rank"],
        _reasons(document["reasons"]),
        tuple(document["missing"]),
        _picks(document["above"]),
        document.get("entry_points", ""),
    )


def records_of(kind: type, records: List[Json]) -> List[Any]:
    """Records whose members are those of a class; later versions of the library may add some."""
    members = [field.name for field in dataclasses.fields(kind)]
    return [kind(*(record[member] for member in members)) for record in records]


def index_of(document: Json) -> Index:
    refresh = document["refresh"]
    counted = ("files", "sources", "documents", "generated", "edges", "symbols")
    return Index(
        document["repository"],
        document["revision"],
        document["clean"],
        document["left_out"],
        tuple(document["warnings"]),
        document["index"],
        *(refresh[count] for count in ("added", "changed", "removed", "unchanged")),
        refresh.get("rebuilt", ""),
        *(document[count] for count in counted),
    )
