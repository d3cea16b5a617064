"""The component in plain Python: what the native module is compared with, and timed against."""

import logging
import re
from collections import Counter
from math import ceil
from posixpath import dirname

from kestrix.utils.best_effort import best_effort
from kestrix.utils.path_filter import is_test_path
from kestrix.workers.project_units import most_specific, root_of_pattern
from kestrix.workers.report_generator import cluster_inputs
from kestrix.workers.wiki.repo_facts import RepoFactsMixin, _norm, _read_text
from kestrix.workers.wiki_cluster import (
    MAX_ASPECT_FILES,
    data_model_files,
    decision_docs,
    extension_files,
)
from kestrix.workers.wiki_split import stem
from kestrix.workers.wiki_types import _INTERFACE_SIGNATURE_RE

logger = logging.getLogger("kestrix.workers.wiki.page_sources")

SYMBOL_SCAN_LIMIT = 20000
DETECTOR_READ_CHARS = 400000
_FIXTURE_DIRS = frozenset(
    ("golden", "fixture", "fixtures", "__fixtures__", "testdata", "test_data", "__snapshots__")
)
_ARCHIVE_DIRS = frozenset(
    ("archive", "archived", "old", "superseded", "deprecated", "obsolete")
)
_TOPIC_STEMS = 12
_DISPATCH_MIN_ROOTS = 3
_DISPATCH_FILES = 3
_EXTENSION_CONTRACTS = 6
_EXTENSION_WIRING = 4
_CONFIG_BASENAMES = frozenset(
    [f"config.{end}" for end in ("ini", "json", "py", "toml", "yaml", "yml")]
    + [f"settings.{end}" for end in ("json", "py", "yaml", "yml")]
    + ["setup.cfg", "tox.ini"]
)
_EXCEPTION_PATTERNS = ("%Error", "%Exception")
_DOMAIN_LAYER = "domain"
_REGISTRY_PATTERNS = ["%REGISTRY", "%REGISTRIES", "%HANDLERS", "%PLUGINS", "%TOOLS"]
_REGISTRY_RE = re.compile(
    "(?:^|_)(?:REGISTRY|REGISTRIES|HANDLERS|PLUGINS|TOOLS)$", re.IGNORECASE
)


def _lies_in(path, directories):
    return any(piece.lower() in directories for piece in path.split("/")[:-1])


def is_fixture_path(path):
    return _lies_in(path, _FIXTURE_DIRS)


def current_first(docs, max_files=MAX_ASPECT_FILES):
    return sorted(docs, key=lambda path: _lies_in(path, _ARCHIVE_DIRS))[:max_files]


def unit_topic(title, files):
    distinct = dict.fromkeys(stem(path) for path in files)
    stems = [word for word in distinct if not word.startswith("__")]
    return " ".join([title, *stems[:_TOPIC_STEMS]])


def dispatch_files(roots, edges, limit=_DISPATCH_FILES):
    count = len(roots)
    if count < _DISPATCH_MIN_ROOTS:
        return []
    known = set(roots)
    reach = {}
    for edge in edges:
        target = edge.target
        if target not in known:
            continue
        source = edge.source
        if source not in known and dirname(source) != dirname(target):
            reach.setdefault(source, set()).add(target)
    least = max(2, ceil(count / _DISPATCH_MIN_ROOTS))
    files = [source for source, reached in reach.items() if len(reached) >= least]
    return sorted(files, key=lambda source: (-len(reach[source]), source))[:limit]


def dependents_of(edges):
    dependents = {}
    for edge in edges:
        source, target = edge.source, edge.target
        if source == target:
            continue
        counts = dependents.get(target)
        if counts is None:
            counts = dependents[target] = Counter()
        counts[source] += edge.weight
    return dependents


def extension_sources(interfaces, registries, dependents):
    def strongest(used):
        def side(counts):
            return {p: n for p, n in counts.items() if bool(dependents.get(p)) is used}

        return extension_files(side(interfaces), side(registries), _EXTENSION_CONTRACTS)

    picked = [*strongest(True), *strongest(False)][:_EXTENSION_CONTRACTS]
    wiring = [
        user
        for path in picked
        if path in registries
        for user, _ in (dependents.get(path) or Counter()).most_common(1)
        if user not in picked
    ]
    return picked + list(dict.fromkeys(wiring))[:_EXTENSION_WIRING]


def example_sources(tests, edges, max_files=MAX_ASPECT_FILES):
    candidates = sorted(path for path in tests if not is_fixture_path(path))
    known = set(candidates)
    test_users, reached = Counter(), Counter()
    for edge in edges:
        source = edge.source
        if source not in known:
            continue
        target = edge.target
        if target in known:
            test_users[target] += 1
        elif not is_test_path(target):
            reached[source] += 1
    return sorted(candidates, key=lambda p: (-test_users[p], -reached[p], p))[:max_files]


class PageSourcesMixin(RepoFactsMixin):
    def _file_edges(self, paths):
        _files, _units, edges = cluster_inputs(self.repository, paths)
        return edges

    def _config_files(self):
        out = set()
        for record in self._source_files():
            path = _norm(record.get("path", ""))
            base = path.rsplit("/", 1)[-1].lower()
            if base in _CONFIG_BASENAMES or base.startswith(".env") or "/config/" in f"/{path}":
                out.add(path)
        return sorted(out)

    @best_effort("wiki.exception_classes", default=False)
    def _has_exceptions(self):
        for pattern in _EXCEPTION_PATTERNS:
            _, total, _ = self.repository.search_symbols(pattern, kind="class", limit=1)
            if total > 0:
                return True
        return False

    @best_effort("wiki.exception_files", default=[])
    def _exception_files(self):
        found, _, _ = self.repository.search_symbols(
            list(_EXCEPTION_PATTERNS), kind="class", limit=SYMBOL_SCAN_LIMIT
        )
        paths = self.repository.get_file_paths_batch(found)
        allowed = set(self._planner_paths())
        counts = Counter()
        for symbol in found:
            if not symbol.id:
                continue
            path = _norm(paths.get(symbol.id, "") or "")
            if path in allowed:
                counts[path] += 1
        return sorted(counts, key=lambda path: (-counts[path], path))[:MAX_ASPECT_FILES]

    def _data_model_files(self):
        texts = {
            path: _read_text(self.repo_root / path, max_chars=DETECTOR_READ_CHARS)
            for path in self._planner_paths()
        }
        return data_model_files(texts)

    def _decision_files(self):
        documents = [_norm(record["path"]) for record in self._indexed_documents()]
        return current_first(decision_docs(documents, max_files=len(documents)))

    def _extension_files(self):
        allowed = set(self._planner_paths())
        domain = {}
        for component in self.repository.get_all_components(source_only=True):
            if component.layer == _DOMAIN_LAYER:
                root = root_of_pattern(component.path_pattern)
                if root is not None:
                    domain[root] = root
        interfaces, registries = Counter(), Counter()
        search = self._search
        try:
            classes, contracts = search("%", "class"), search("%", "interface")
            constants = search(_REGISTRY_PATTERNS, "constant")
            named = [*constants, *search(_REGISTRY_PATTERNS, "variable")]
            paths = self.repository.get_file_paths_batch([*classes, *contracts, *named])
        except Exception:
            logger.warning("wiki: the extension-point lookup failed", exc_info=True)
            return []

        def path_of(symbol):
            return _norm(paths.get(symbol.id, "") or "") if symbol.id else ""

        for symbol in classes:
            if _INTERFACE_SIGNATURE_RE.search(getattr(symbol, "signature", None) or ""):
                interfaces[path_of(symbol)] += 1
        for symbol in contracts:
            path = path_of(symbol)
            if most_specific(domain, path) is not None:
                interfaces[path] += 1
        for symbol in named:
            if _REGISTRY_RE.search(symbol.name):
                registries[path_of(symbol)] += 1
        return extension_sources(
            {path: count for path, count in interfaces.items() if path in allowed},
            {path: count for path, count in registries.items() if path in allowed},
            dependents_of(self._file_edges(allowed)),
        )

    def _search(self, query, kind):
        found, _, _ = self.repository.search_symbols(query, kind=kind, limit=SYMBOL_SCAN_LIMIT)
        return found

    def _test_files(self):
        paths = (_norm(record.get("path", "")) for record in self._source_files())
        return [path for path in paths if is_test_path(path)]

    def _example_files(self):
        tests = self._test_files()
        edges = self._file_edges({*tests, *self._planner_paths()})
        return example_sources(tests, edges)

    def _flow_dispatch(self, roots):
        return dispatch_files(roots, self._file_edges(set(self._planner_paths())))
