"""Which files ground each aspect page of a code wiki.

The rules and the detectors are native. Whatever they use (the functions that the service brings, the
constants, each other) they look up in this module at every use, so that replacing it here takes
effect. What `PageSourcesMixin` asks of the service's objects stands in `page_sources_host`.
"""

from __future__ import annotations

import logging
import re
from collections import Counter
from collections.abc import Callable, Collection, Iterable, Iterator, Mapping
from typing import TYPE_CHECKING, Any, Optional

from kestrix.utils.best_effort import best_effort
from kestrix.utils.path_filter import is_test_path
from kestrix.workers.project_units import most_specific, root_of_pattern
from kestrix.workers.report_generator import cluster_inputs
from kestrix.workers.wiki import _page_sources as _native
from kestrix.workers.wiki.page_sources_host import Dependency, Host, WeightedDependency
from kestrix.workers.wiki.repo_facts import RepoFactsMixin, _norm, _read_text
from kestrix.workers.wiki_cluster import (
    MAX_ASPECT_FILES,
    FileEdge,
    data_model_files,
    decision_docs,
    extension_files,
)
from kestrix.workers.wiki_split import stem
from kestrix.workers.wiki_types import _INTERFACE_SIGNATURE_RE

logger = logging.getLogger("kestrix.workers.wiki.page_sources")

SYMBOL_SCAN_LIMIT = 20000  # symbols of one search that scans a whole kind
DETECTOR_READ_CHARS = 400000  # characters of one file that a detector reads

# Directories of test data, and of archived documents.
_FIXTURE_DIRS = frozenset(
    {"golden", "fixture", "fixtures", "__fixtures__", "testdata", "test_data", "__snapshots__"}
)
_ARCHIVE_DIRS = frozenset({"archive", "archived", "old", "superseded", "deprecated", "obsolete"})

_TOPIC_STEMS = 12  # file stems that a topic carries

_DISPATCH_MIN_ROOTS = 3  # fewest entry points with a shared dispatch; it reaches 1 / 3 of them
_DISPATCH_FILES = 3  # dispatch files of a flows page

_EXTENSION_CONTRACTS = 6  # contract and registry files of the extending page
_EXTENSION_WIRING = 4  # wiring files that may follow them

_CONFIG_BASENAMES = frozenset(
    {
        "config.ini", "config.json", "config.py", "config.toml", "config.yaml", "config.yml",
        "settings.json", "settings.py", "settings.yaml", "settings.yml", "setup.cfg", "tox.ini",
    }
)  # fmt: skip

_EXCEPTION_PATTERNS = ("%Error", "%Exception")

_DOMAIN_LAYER = "domain"  # in its components every interface is a contract
_REGISTRY_PATTERNS = ["%REGISTRY", "%REGISTRIES", "%HANDLERS", "%PLUGINS", "%TOOLS"]
_REGISTRY_RE = re.compile(
    "(?:^|_)(?:REGISTRY|REGISTRIES|HANDLERS|PLUGINS|TOOLS)$", re.IGNORECASE
)


def is_fixture_path(path: str) -> bool:
    """Whether a path lies in a directory of test data (whole names, any case)."""
    return _native.is_fixture_path(path)


def current_first(docs: Iterable[str], max_files: Optional[int] = MAX_ASPECT_FILES) -> list[str]:
    """The documents with the archived ones last, cut to max_files after that."""
    return _native.current_first(docs, max_files)


def unit_topic(title: str, files: Iterable[str]) -> str:
    """The retrieval topic of a code page: its title and the stems of its files."""
    return _native.unit_topic(title, files)


def dispatch_files(
    roots: Collection[str], edges: Iterable[Dependency], limit: Optional[int] = _DISPATCH_FILES
) -> list[str]:
    """The dispatch that a class of entry points shares: the files outside their
    directories that depend on a third or more of the roots, most roots first."""
    return _native.dispatch_files(roots, _ends_at(roots, edges), limit)


def dependents_of(edges: Iterable[WeightedDependency]) -> dict[str, Counter[str]]:
    """Per file, a Counter of the files that depend on it, by summed weight."""
    return _native.dependents_of(_weighted_ends(edges))


def extension_sources(
    interfaces: Mapping[str, int],
    registries: Mapping[str, int],
    dependents: Mapping[str, Counter[str]],
) -> list[str]:
    """The files of the extending page: contracts and registries, used ones first, then
    the files where those registries are wired in."""
    return _native.extension_sources(interfaces, registries, dependents)


def example_sources(
    tests: Iterable[str],
    edges: Iterable[Dependency],
    max_files: Optional[int] = MAX_ASPECT_FILES,
) -> list[str]:
    """The test files of the examples page: the helpers that the most tests import, then
    the tests that reach the most production files; test data left out."""
    candidates = [path for path in tests if not is_fixture_path(path)]
    return _native.example_sources(candidates, _ends_from(candidates, edges), max_files)


# Edges are read here, each field once and only when it is needed: the interpreter reads attributes
# faster than native code can ask it to, and an endless iterable can be interrupted.


def _ends_at(targets: Collection[str], edges: Iterable[Dependency]) -> Iterator[tuple[str, str]]:
    known = frozenset(targets)
    for edge in edges:
        target = edge.target
        if target in known:
            yield edge.source, target


def _ends_from(sources: Collection[str], edges: Iterable[Dependency]) -> Iterator[tuple[str, str]]:
    known = frozenset(sources)
    for edge in edges:
        source = edge.source
        if source in known:
            yield source, edge.target


def _weighted_ends(edges: Iterable[WeightedDependency]) -> Iterator[tuple[str, str, Any]]:
    for edge in edges:
        source, target = edge.source, edge.target
        if source != target:
            yield source, target, edge.weight


class PageSourcesMixin(RepoFactsMixin):
    """For one aspect page each, the files that the page is about."""

    if not TYPE_CHECKING:  # there, a generator that lacks them is to be told so
        _planner_paths: Callable[[], list[str]]
        _indexed_documents: Callable[[], list[dict[str, Any]]]

    def _file_edges(self: Host[Any], paths: set[str]) -> list[FileEdge]:
        """The evidence-backed file edges among a set of paths."""
        return _native._file_edges(self, paths)

    def _config_files(self: Host[Any]) -> list[str]:
        """Indexed configuration files/modules (grounds the configuration page)."""
        return _native._config_files(self)

    @best_effort("wiki.exception_classes", default=False)
    def _has_exceptions(self: Host[Any]) -> bool:
        """Whether the index has exception/error classes (grounds the errors page)."""
        return _native._has_exceptions(self)

    @best_effort("wiki.exception_files", default=[])
    def _exception_files(self: Host[Any]) -> list[str]:
        """The production files that define the most exception classes (the errors page)."""
        return _native._exception_files(self)

    def _data_model_files(self: Host[Any]) -> list[str]:
        """Files that define the data: DDL (also inside strings) or several data classes."""
        return _native._data_model_files(self)

    def _decision_files(self: Host[Any]) -> list[str]:
        """The design documents of the decisions page, the current ones first."""
        return _native._decision_files(self)

    def _extension_files(self: Host[Any]) -> list[str]:
        """Contracts to implement and registries to add to, and where those are wired in."""
        return _native._extension_files(self)

    def _test_files(self: Host[Any]) -> list[str]:
        """The indexed test files."""
        return _native._test_files(self)

    def _example_files(self: Host[Any]) -> list[str]:
        """The test helpers and the tests that ground the examples page."""
        return _native._example_files(self)

    def _flow_dispatch(self: Host[Any], roots: Collection[str]) -> list[str]:
        """The files that dispatch to the entry points of a class (grounds the flows page)."""
        return _native._flow_dispatch(self, roots)
