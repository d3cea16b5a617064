"""Seeded worlds: a made index whose every use is recorded, for any version of the component."""

import random
import sys
from contextlib import contextmanager
from dataclasses import dataclass
from fractions import Fraction
from pathlib import PurePosixPath
from types import SimpleNamespace
from typing import NamedTuple
from unittest import mock


@dataclass
class DataclassEdge:
    source: str
    target: str
    weight: int


class SlotsEdge:
    __slots__ = ("source", "target", "weight")

    def __init__(self, source, target, weight):
        self.source, self.target, self.weight = source, target, weight


class NamedTupleEdge(NamedTuple):
    source: str
    target: str
    weight: int


class ComputedEdge:
    """Makes a new string at each read."""

    def __init__(self, source, target, weight):
        self._fields = (source, target, weight)

    source = property(lambda self: "".join(list(self._fields[0])))
    target = property(lambda self: "".join(list(self._fields[1])))
    weight = property(lambda self: self._fields[2])


class Text(str):
    """A string of a class of its own."""


EDGE_TYPES = (DataclassEdge, SlotsEdge, NamedTupleEdge, ComputedEdge)
DIRECTORIES = (
    "", "app", "app/domain", "app//", "/", "config", "tests", "tests/Fixtures", "docs/adr",
    "docs/Archive/adr", "naïve", "цель", "odd\udcff", "\U0001f40d",
)  # fmt: skip
NAMES = (
    "a.py", "b.py", "B.py", "test_a.py", "test_b.py", "__init__.py", "config.py", ".env.local",
    "Settings.YAML", "0007.md", "é.py", "я.py", "\udc80", "",
)  # fmt: skip
WEIGHTS = (0, 1, 2, 5, True, 0.5, -0.0, Fraction(1, 3))
SIGNATURES = (None, "", "class A", "class A(ABC)", "class P(Protocol)")
SYMBOL_NAMES = ("TOOLS", "tool_handlers", "MYTOOLS", "Plugins", "AError", "é_registry", "x")


def make_paths(chance, count):
    paths = []
    for _ in range(count):
        directory, name = chance.choice(DIRECTORIES), chance.choice(NAMES)
        path = f"{directory}/{name}" if directory else name
        paths.append(Text(path) if chance.random() < 0.1 else path)
    return paths


def make_edges(chance, paths, count):
    kinds = EDGE_TYPES if chance.random() < 0.5 else (chance.choice(EDGE_TYPES),)
    return [
        chance.choice(kinds)(chance.choice(paths), chance.choice(paths), chance.choice(WEIGHTS))
        for _ in range(count if paths else 0)
    ]


def frozen(value):
    """What a recorded argument was at the time of the call, with its type and order."""
    if isinstance(value, (set, frozenset)):
        return type(value), frozenset(value)
    if isinstance(value, dict):
        return type(value), tuple(value.items())
    if isinstance(value, list):
        return type(value), tuple(value)
    return value


class World:
    """The host of one detector call. `fail_at` is the number of the use that raises `error`."""

    def __init__(self, seed):
        chance = self.chance = random.Random(seed)
        paths = make_paths(chance, chance.randrange(25))
        self.roots = chance.sample(paths, min(len(paths), chance.randrange(6)))
        self.planner = [*paths, *chance.choices(paths, k=3)] if paths else []
        self.sources = [{"path": path} for path in [*paths, *make_paths(chance, 9)]] + [{}]
        chance.shuffle(self.sources)
        self.documents = [{"path": path} for path in make_paths(chance, chance.randrange(9))]
        self.edges = make_edges(chance, paths + make_paths(chance, 5), chance.randrange(60))
        self.symbols = {
            kind: self._symbols(kind) for kind in ("class", "interface", "constant", "variable")
        }
        self.files = {
            symbol.id: chance.choice([*paths, "", None])
            for symbol in sum(self.symbols.values(), [])
            if chance.random() < 0.9
        }
        self.components = [
            SimpleNamespace(layer=layer, path_pattern=f"{directory}/**")
            for layer in ("ui", "domain", "domain")
            for directory in chance.sample(DIRECTORIES, 2)
        ]
        self.start()

    def start(self, fail_at=None, error=None):
        self.log, self.fail_at, self.error = [], fail_at, error

    def _symbols(self, kind):
        ids = [None, 0, "", *(f"{kind}{i}" for i in range(20)), *range(1, 20), (kind, 1)]
        return [
            SimpleNamespace(
                id=self.chance.choice(ids),
                name=self.chance.choice(SYMBOL_NAMES),
                signature=self.chance.choice(SIGNATURES),
            )
            for _ in range(self.chance.randrange(12))
        ]

    def note(self, name, *args, **kwargs):
        arguments = [frozen(value) for value in args], [*kwargs.items()]
        self.log.append((name, *arguments))
        if len(self.log) - 1 == self.fail_at:
            raise self.error

    def recorded(self, name, function):
        def host_function(*args, **kwargs):
            self.note(name, *args, **kwargs)
            return function(*args, **kwargs)

        return host_function

    def read(self, name, items):
        for item in items:
            self.note(f"next {name}")
            yield item

    # The repository.

    def search_symbols(self, query, *, kind, limit):
        self.note("search_symbols", query, kind=kind, limit=limit)
        found = self.symbols[kind]
        if limit == 1:
            found = [symbol for symbol in found if symbol.name.endswith(query[1:])]
        return found[:limit], len(found), None

    def get_file_paths_batch(self, symbols):
        self.note("get_file_paths_batch", symbols)
        return self.files

    def get_all_components(self, *, source_only):
        self.note("get_all_components", source_only=source_only)
        return self.read("component", self.components)

    # The functions of the host's modules.

    def functions(self):
        functions = {
            "_norm": lambda path: path.removeprefix("app/"),
            "_read_text": lambda path, max_chars: f"text of {path}",
            "is_test_path": lambda path: "test" in path,
            "root_of_pattern": lambda pattern: pattern[:-3] or None,
            "most_specific": lambda roots, path: next(
                (root for root in roots if path.startswith(root)), None
            ),
            "cluster_inputs": lambda repository, paths: ([], [], self.edges),
            "data_model_files": lambda texts: [*texts][::2],
            "decision_docs": lambda documents, max_files: documents[::-1][:max_files],
            "extension_files": lambda contracts, registries, limit: sorted(
                {**contracts, **registries}
            )[:limit],
            "stem": lambda path: path.rpartition("/")[2].partition(".")[0],
        }
        return {name: self.recorded(name, function) for name, function in functions.items()}

    def logger(self):
        def warning(message, *, exc_info):
            self.log.append((message, bool(exc_info), sys.exc_info()[1]))

        return SimpleNamespace(warning=warning)

    @contextmanager
    def hosting(self, module):
        """Has `module` use this world; gives a generator that mixes its class in."""
        world = self

        class Generator(module.PageSourcesMixin):
            def __init__(self):
                pass

            @property
            def repository(self):
                world.note("repository")
                return world

            @property
            def repo_root(self):
                world.note("repo_root")
                return PurePosixPath("/top")

            def _planner_paths(self):
                world.note("_planner_paths")
                return world.planner

            def _source_files(self):
                world.note("_source_files")
                return world.read("source file", world.sources)

            def _indexed_documents(self):
                world.note("_indexed_documents")
                return world.documents

        with mock.patch.multiple(module, logger=self.logger(), **self.functions()):
            yield Generator()
