"""A repository that can be asked."""

from __future__ import annotations

import json
import types
from typing import Any, List, Optional, Tuple, Type, Union

from ._calls import Told, interruptible, report
from ._library import EdgeQuery, Handle, Options, ReferenceQuery, Text, Texts, encoded, names
from .results import Edge, Index, Pages, Reference, Symbol, Why
from .results import index_of, pages_of, records_of, why_of


def open(  # noqa: A001: `page_sources.open` reads well
    path: Text = ".",
    *,
    index: Optional[Text] = None,
    threads: int = 0,
    exclude: Texts = (),
    include: Texts = (),
    progress: Optional[Told] = None,
) -> Repository:
    """Opens a repository, any directory, and brings its index up to date.

    The index lies in the file `index`, by default in the user's cache directory; nothing else is
    written. `exclude` are globs of paths to leave out, `include` of those to take in again all the
    same. `progress(done, total)` is called while files are read; what it raises ends the work.
    """
    return Repository(path, index, threads, names(exclude), names(include), progress)


class Repository:
    """An open repository: a context manager. Its answers are those of the state that the last
    refresh found. It may be used from several threads; while it works, other threads run."""

    def __init__(
        self,
        path: Text,
        index: Optional[Text],
        threads: int,
        exclude: Any,
        include: Any,
        progress: Optional[Told],
    ) -> None:
        options = Options(
            index_file=None if index is None else encoded(index),
            threads=threads,
            exclude=exclude,
            include=include,
        )
        if progress is not None:
            options.progress = report
        self._progress = progress
        self._handle: Optional[Handle] = Handle(path, options)
        self._path = self._handle.path
        self._index = self.refresh()

    def __enter__(self) -> Repository:
        return self

    def __exit__(
        self,
        _kind: Optional[Type[BaseException]],
        _error: Optional[BaseException],
        _trace: Optional[types.TracebackType],
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<page_sources.Repository {self._path!r}{'' if self._handle else ', closed'}>"

    @property
    def index(self) -> Index:
        """What the last refresh found."""
        return self._index

    def close(self) -> None:
        """Gives back the memory, once calls of other threads are done. May be called again."""
        self._handle = None

    def cancel(self) -> None:
        """Ends the calls that other threads are in; they raise `Cancelled`. So does an interrupt."""
        self._open().cancel()

    def refresh(self) -> Index:
        """Brings the index up to date with the files."""
        self._index = index_of(self._answer("refresh"))
        return self._index

    def pages(self, only: Texts = (), *, entry_points: Texts = ()) -> Pages:
        """The pages, all or `only` some, by name. Each of `entry_points`, which are globs, makes
        one class of the page "flows"; without any the structure shows the classes."""
        return pages_of(self._answer("pages", names(only), names(entry_points)))

    def why(self, page: str, path: Text) -> Why:
        """Why a file is on a page, or why not."""
        return why_of(self._answer("why", encoded(page), encoded(path)))

    def references(
        self,
        *,
        to: Texts = (),
        from_: Texts = (),
        roles: Texts = (),
        within_files: bool = False,
    ) -> List[Reference]:
        """Who names what. `to` are globs of paths or names, `from_` of paths, `roles` "extends",
        "calls" and the like; `within_files` adds what a file names of itself."""
        query = ReferenceQuery(
            to=names(to), from_=names(from_), roles=names(roles), within_files=int(within_files)
        )
        return records_of(Reference, self._answer("references", query)["references"])

    def edges(
        self,
        *,
        to: Texts = (),
        from_: Texts = (),
        within: Texts = (),
        way: Optional[Tuple[Text, Text]] = None,
        by_folder: Union[bool, int] = False,
    ) -> List[Edge]:
        """Which file depends on which. `to`, `from_` and `within` are globs; `way` are two files,
        and asks for the edges of a shortest way between them; `by_folder` sums edges between
        folders, of so many levels when it is a number."""
        start, end = (None, None) if way is None else map(encoded, way)
        query = EdgeQuery(
            to=names(to),
            from_=names(from_),
            within=names(within),
            way_from=start,
            way_to=end,
            by_folder=int(by_folder is not False),
            folder_depth=0 if isinstance(by_folder, bool) else by_folder,
        )
        return records_of(Edge, self._answer("edges", query)["edges"])

    def symbols(self, *, kinds: Texts = (), name: str = "*") -> List[Symbol]:
        """The symbols of these kinds ("class", "interface", "constant", "variable"; by default of
        all) whose name matches a glob in any case."""
        return records_of(Symbol, self._answer("symbols", names(kinds), encoded(name))["symbols"])

    def _open(self) -> Handle:
        if self._handle is None:
            raise ValueError(f"the repository {self._path} is closed")
        return self._handle

    def _answer(self, function: str, *arguments: object) -> Any:
        handle = self._open()
        text = interruptible(handle, lambda: handle.call(function, *arguments), self._progress)
        return json.loads(text)
