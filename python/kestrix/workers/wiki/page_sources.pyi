import logging
import re
from collections import Counter
from collections.abc import Callable, Collection, Iterable, Mapping
from typing import Any, Protocol

from kestrix.utils.best_effort import best_effort as best_effort
from kestrix.utils.path_filter import is_test_path as is_test_path
from kestrix.workers.project_units import most_specific as most_specific
from kestrix.workers.project_units import root_of_pattern as root_of_pattern
from kestrix.workers.report_generator import cluster_inputs as cluster_inputs
from kestrix.workers.wiki.repo_facts import RepoFactsMixin as RepoFactsMixin
from kestrix.workers.wiki.repo_facts import _norm as _norm
from kestrix.workers.wiki.repo_facts import _read_text as _read_text
from kestrix.workers.wiki_cluster import MAX_ASPECT_FILES as MAX_ASPECT_FILES
from kestrix.workers.wiki_cluster import FileEdge as FileEdge
from kestrix.workers.wiki_cluster import data_model_files as data_model_files
from kestrix.workers.wiki_cluster import decision_docs as decision_docs
from kestrix.workers.wiki_cluster import extension_files as extension_files
from kestrix.workers.wiki_split import stem as stem
from kestrix.workers.wiki_types import _INTERFACE_SIGNATURE_RE as _INTERFACE_SIGNATURE_RE

logger: logging.Logger

SYMBOL_SCAN_LIMIT: int
DETECTOR_READ_CHARS: int
_FIXTURE_DIRS: frozenset[str]
_ARCHIVE_DIRS: frozenset[str]
_TOPIC_STEMS: int
_DISPATCH_MIN_ROOTS: int
_DISPATCH_FILES: int
_EXTENSION_CONTRACTS: int
_EXTENSION_WIRING: int
_CONFIG_BASENAMES: frozenset[str]
_EXCEPTION_PATTERNS: tuple[str, str]
_DOMAIN_LAYER: str
_REGISTRY_PATTERNS: list[str]
_REGISTRY_RE: re.Pattern[str]

class _Dependency(Protocol):
    @property
    def source(self) -> str: ...
    @property
    def target(self) -> str: ...

class _WeightedDependency(_Dependency, Protocol):
    @property
    def weight(self) -> Any: ...

def is_fixture_path(path: str) -> bool: ...
def current_first(docs: Iterable[str], max_files: int | None = ...) -> list[str]: ...
def unit_topic(title: str, files: Iterable[str]) -> str: ...
def dispatch_files(
    roots: Collection[str], edges: Iterable[_Dependency], limit: int | None = 3
) -> list[str]: ...
def dependents_of(edges: Iterable[_WeightedDependency]) -> dict[str, Counter[str]]: ...
def extension_sources(
    interfaces: Mapping[str, int],
    registries: Mapping[str, int],
    dependents: Mapping[str, Counter[str]],
) -> list[str]: ...
def example_sources(
    tests: Iterable[str], edges: Iterable[_Dependency], max_files: int | None = ...
) -> list[str]: ...

class PageSourcesMixin(RepoFactsMixin):
    _planner_paths: Callable[[], list[str]]
    _indexed_documents: Callable[[], list[dict[str, Any]]]

    def _file_edges(self, paths: set[str]) -> list[FileEdge]: ...
    def _config_files(self) -> list[str]: ...
    def _has_exceptions(self) -> bool: ...
    def _exception_files(self) -> list[str]: ...
    def _data_model_files(self) -> list[str]: ...
    def _decision_files(self) -> list[str]: ...
    def _extension_files(self) -> list[str]: ...
    def _test_files(self) -> list[str]: ...
    def _example_files(self) -> list[str]: ...
    def _flow_dispatch(self, roots: Collection[str]) -> list[str]: ...
