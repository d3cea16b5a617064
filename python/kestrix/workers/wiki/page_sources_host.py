"""What `PageSourcesMixin` asks of the service's objects, as types.

Nothing has to inherit from them. To have a type checker name what a generator lacks, or gives in
another shape, assign one to a `Host`:

    if TYPE_CHECKING:
        _host: Host[MySymbol] = WikiGenerator(...)
"""

from __future__ import annotations

from collections.abc import Iterable, Mapping, Sequence
from typing import Any, Literal, Optional, Protocol, TypeVar, Union


class Dependency(Protocol):
    """One file's dependency on another. A rule reads each field at most once."""

    @property
    def source(self) -> str:
        """The path of the file that depends."""

    @property
    def target(self) -> str:
        """The path of the file depended upon."""


class WeightedDependency(Dependency, Protocol):
    @property
    def weight(self) -> Any:
        """How strong it is: a number, which is added up from 0."""


class Symbol(Protocol):
    """One symbol of the index."""

    @property
    def id(self) -> Any:
        """Its key in the index. A false one marks a symbol that is in no file."""

    @property
    def name(self) -> str: ...

    @property
    def signature(self) -> Optional[str]:
        """How it is declared. Read as "" where it is empty, None, or not there at all."""


class Component(Protocol):
    """One component of the repository's architecture."""

    @property
    def layer(self) -> str: ...

    @property
    def path_pattern(self) -> str:
        """Which paths it covers; handed to `root_of_pattern`."""


class RepositoryRoot(Protocol):
    """The repository's root directory, such as a `pathlib.Path`."""

    def __truediv__(self, path: str, /) -> Any:
        """The place of a file, for `_read_text`."""


Found = TypeVar("Found", bound=Symbol)


class Repository(Protocol[Found]):
    """The handle of the repository's index."""

    def search_symbols(
        self,
        query: Union[str, list[str]],
        /,
        *,
        kind: Literal["class", "interface", "constant", "variable"],
        limit: int,
    ) -> tuple[Sequence[Found], int, object]:
        """The symbols whose names match one of the patterns ("%" is any run of characters), at most
        `limit`; how many match in all; and something that is not read."""

    def get_file_paths_batch(self, symbols: list[Found], /) -> Mapping[Any, Optional[str]]:
        """The files of symbols, by their `id`. A symbol without a file may be left out."""

    def get_all_components(self, *, source_only: bool) -> Iterable[Component]: ...


class Host(Protocol[Found]):
    """The generator, into which `PageSourcesMixin` is mixed."""

    @property
    def repository(self) -> Repository[Found]: ...

    @property
    def repo_root(self) -> RepositoryRoot: ...

    def _planner_paths(self) -> Sequence[str]:
        """The paths that pages may be grounded in: the source files that are no tests, in the form
        that `_norm` gives."""

    def _source_files(self) -> Iterable[Mapping[str, Any]]:
        """The indexed source files, each with its "path"."""

    def _indexed_documents(self) -> Iterable[Mapping[str, Any]]:
        """The indexed documents, each with its "path"."""
