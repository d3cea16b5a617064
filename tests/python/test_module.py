"""The module itself: its names, how its functions present themselves, and that nothing leaks."""

import ast
import functools
import gc
import importlib
import inspect
import itertools
import os
import pickle
import pydoc
import random
import re
import signal
import sys
import threading
import typing
import unittest
import weakref
from pathlib import Path
from types import SimpleNamespace
from unittest import mock

import plain_page_sources as plain
from kestrix.workers.wiki import page_sources as native
from kestrix.workers.wiki.repo_facts import RepoFactsMixin
from kestrix.workers.wiki.wiki_generator import WikiGenerator
from worlds import DataclassEdge, NamedTupleEdge, SlotsEdge, World

RULES = (
    "is_fixture_path", "current_first", "unit_topic", "dispatch_files", "dependents_of",
    "extension_sources", "example_sources",
)  # fmt: skip
COMPONENT = Path(__file__).resolve().parents[2] / "src/kestrix/workers/wiki/page_sources"
DETECTORS = [name for name in vars(native.PageSourcesMixin) if not name.startswith("__")]


def unannotated(function):
    empty = inspect.Parameter.empty
    signature = inspect.signature(function)
    parameters = [p.replace(annotation=empty) for p in signature.parameters.values()]
    return signature.replace(parameters=parameters, return_annotation=empty)


class Names(unittest.TestCase):
    def test_every_name_of_the_plain_version_is_there(self):
        for name, value in vars(plain).items():
            if name.isupper() or name.startswith("_") and not name.startswith("__"):
                if name not in ("_lies_in",):
                    with self.subTest(name=name):
                        self.assertEqual(getattr(native, name), value)
                        self.assertIs(type(getattr(native, name)), type(value))
        self.assertEqual(native.logger.name, "kestrix.workers.wiki.page_sources")

    def test_constants_are_those_of_the_component(self):
        header = COMPONENT.joinpath("constants.h").read_text()
        declared = re.findall(r"inline constexpr [^;]*?([A-Z]\w+)(?:\{| = )(.*?);", header, re.DOTALL)
        self.assertGreater(len(declared), 12)
        for name, value in declared:
            found = getattr(native, name, None) or getattr(native, f"_{name}")
            found = getattr(found, "pattern", found)
            listed = [found] if isinstance(found, (str, int)) else [*found]
            expected = re.findall(r'"(.*?)"', value) or [int(value)]
            with self.subTest(name=name):
                if isinstance(found, frozenset):
                    listed, expected = sorted(listed), sorted(expected)
                self.assertEqual(listed, expected)

    def test_the_class(self):
        mixin = native.PageSourcesMixin
        self.assertEqual(mixin.__bases__, (RepoFactsMixin,))
        self.assertEqual(mixin.__module__, native.__name__)
        self.assertEqual(
            DETECTORS,
            "_file_edges _config_files _has_exceptions _exception_files _data_model_files "
            "_decision_files _extension_files _test_files _example_files _flow_dispatch".split(),
        )
        declared = ["_planner_paths", "_indexed_documents"]
        self.assertEqual(list(mixin.__annotations__), declared)
        self.assertEqual(list(typing.get_type_hints(mixin)), declared)
        self.assertEqual(mixin._has_exceptions.label, "wiki.exception_classes")
        self.assertEqual(mixin._exception_files.label, "wiki.exception_files")

    def test_functions_and_methods_present_themselves(self):
        for owner, names in ((None, RULES), ("PageSourcesMixin", DETECTORS)):
            for name in names:
                found, expected = (
                    getattr(getattr(module, owner) if owner else module, name)
                    for module in (native, plain)
                )
                with self.subTest(name=name):
                    self.assertEqual(found.__qualname__, expected.__qualname__)
                    self.assertEqual(unannotated(found), unannotated(expected))
                    self.assertTrue(inspect.getdoc(found))
                    hints = typing.get_type_hints(found)
                    self.assertEqual({*hints}, {*inspect.signature(found).parameters, "return"})
        self.assertRegex(pydoc.plain(pydoc.render_doc(native)), r"(?s)dispatch_files\(\s*roots: .*= 3")

    def test_a_generator_is_pickled_with_its_methods(self):
        bound = pickle.loads(pickle.dumps(WikiGenerator(None, None)._config_files))
        self.assertIs(bound.__func__, native.PageSourcesMixin._config_files)

    def test_a_host_without_a_name_refuses_the_import(self):
        from kestrix.workers import wiki_split

        name = native.__name__
        with mock.patch.dict(sys.modules), mock.patch.object(wiki_split, "stem", create=True):
            del wiki_split.stem, sys.modules[name]
            with self.assertRaisesRegex(ImportError, "stem"):
                importlib.import_module(name)


class Installed(unittest.TestCase):
    def test_beside_the_services_own_modules(self):
        folder = Path(native.__file__).parent
        self.assertIn("repo_facts.py", os.listdir(folder))
        for name in ("_page_sources.abi3.so", "_page_sources.pyi", "py.typed"):
            self.assertTrue((folder / name).is_file())

    def test_without_the_native_host(self):
        loaded = Path("/proc/self/maps").read_text()
        for library in ("tree-sitter", "sqlite3.so", "git2", "libre2"):
            self.assertNotIn(f"lib{library.removeprefix('lib')}", loaded)

    def test_the_stub_declares_what_is_there(self):
        stub = ast.parse(Path(native.__file__).with_name("_page_sources.pyi").read_text())
        declared = {node.name for node in stub.body if isinstance(node, ast.FunctionDef)}
        found = {name for name in vars(native._native) if not name.startswith("__")}
        self.assertEqual(found, declared)


def resident_bytes():
    return int(Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")


class Leaks(unittest.TestCase):
    CALLS = int(os.environ.get("PAGE_SOURCES_CALLS", 1_000_000))

    def assert_no_leak(self, call, watched, times):
        def settled():
            gc.collect()
            return [sys.getrefcount(value) for value in watched]

        for _ in range(times // 20 + 1):
            call()
        counts, memory = settled(), resident_bytes()
        for _ in range(times):
            call()
        self.assertEqual(settled(), counts)
        if "asan" not in os.environ.get("LD_PRELOAD", ""):  # which keeps what is freed for a while
            self.assertLess(resident_bytes() - memory, 1_000_000)

    def test_rules(self):
        paths = ["src/long/enough/to/count.py", "tests/naïve/test_b.py", "цель/\udcff.py", "h/c"]
        kinds = (DataclassEdge, SlotsEdge, NamedTupleEdge)
        weight = 10**20
        edges = [kind(s, t, weight) for kind in kinds for s in paths for t in paths]
        dependents = native.dependents_of(edges)
        counts = dict.fromkeys(paths, 1)

        def refused(rule, *args):
            try:
                rule(*args)
            except (TypeError, AttributeError):
                return
            raise AssertionError(rule)

        calls = (
            lambda: native.is_fixture_path(paths[2]),
            lambda: native.current_first(paths, 2),
            lambda: native.unit_topic("title", paths),
            lambda: native.dispatch_files(paths[1:], edges[:4]),
            lambda: native.dependents_of(edges[-4:]),
            lambda: native.example_sources(paths, edges[:6], -1),
            lambda: native.extension_sources(counts, counts, dependents),
            lambda: refused(native.dependents_of, [edges[1], None]),
            lambda: refused(native.current_first, [paths[0], None]),
        )
        for call in calls:
            self.assert_no_leak(call, [*paths, *edges, weight, counts], self.CALLS // len(calls))

    def test_detectors(self):
        world = World(7)
        with world.hosting(native) as generator:

            def call():
                for name in DETECTORS:
                    world.start()
                    argument = [{}] if name in ("_file_edges", "_flow_dispatch") else []
                    getattr(generator, name)(*argument)
                world.start()
                world.search_symbols = lambda query, **options: query / options
                generator._extension_files()
                del world.search_symbols

            watched = [generator, world, world.edges, *world.planner, native.PageSourcesMixin]
            self.assert_no_leak(call, watched, self.CALLS // 5000)

    def test_a_dropped_module_goes_away(self):
        with mock.patch.dict(sys.modules):
            del sys.modules[native.__name__]
            module = importlib.import_module(native.__name__)
            self.assertIsNot(module, native)
            self.assertIsNot(module.PageSourcesMixin, native.PageSourcesMixin)
            gone = weakref.ref(module.PageSourcesMixin)
        sys.modules["kestrix.workers.wiki"].page_sources = native
        del module
        gc.collect()
        self.assertIsNone(gone())


class HostileHosts(unittest.TestCase):
    def test_recursion_without_python_code_ends(self):
        for topic in (native.unit_topic, native._native.unit_topic):
            stem = functools.partial(topic, "x")
            with mock.patch.object(native, "stem", stem), self.assertRaises(RecursionError):
                native.unit_topic("x", ["a"])
        self.assertEqual(native.unit_topic("x", []), plain.unit_topic("x", []))

    def test_comparisons_may_contradict_each_other(self):
        chance = random.Random(1)

        class Odd:
            def __init__(self, answer):
                self.answer = answer

            def __lt__(self, other):
                return self.answer()

        for answer in (lambda: True, lambda: False, lambda: chance.random() < 0.5):
            world = World(3)
            paths = [Odd(answer) for _ in range(500)]
            symbols = [SimpleNamespace(id=i, name="AError") for i in range(1, 501)]
            world.symbols = {"class": symbols}
            world.files = {symbol.id: path for symbol, path in zip(symbols, paths)}
            world.planner = paths
            with world.hosting(native) as generator, mock.patch.object(native, "_norm", lambda p: p):
                found = generator._exception_files()
            self.assertLessEqual(len(found), len(paths))
            self.assertTrue(all(path in paths for path in found))

    def test_endless_iterables_can_be_interrupted(self):
        def stop(*_):
            raise KeyboardInterrupt

        self.addCleanup(signal.signal, signal.SIGALRM, signal.signal(signal.SIGALRM, stop))
        edge = SlotsEdge("a", "b", 1)
        for call in (
            lambda: native.dependents_of(itertools.repeat(edge)),
            lambda: native.dispatch_files(["a", "b", "c"], itertools.repeat(edge)),
            lambda: native.example_sources(itertools.repeat("tests/fixtures/a"), []),
        ):
            signal.setitimer(signal.ITIMER_REAL, 0.1)
            with self.assertRaises(KeyboardInterrupt):
                call()


class Concurrency(unittest.TestCase):
    def test_threads(self):
        world = World(11)
        paths = [f"src/{i}.py" for i in range(300)]
        edges = [SlotsEdge(a, b, 1) for a in paths[::7] for b in paths[::3]]
        expected = plain.example_sources(paths, edges), plain.dependents_of(edges)
        failures = []

        def work():
            for _ in range(20):
                if (native.example_sources(paths, edges), native.dependents_of(edges)) != expected:
                    failures.append("differs")

        interval = sys.getswitchinterval()
        sys.setswitchinterval(1e-6)
        self.addCleanup(sys.setswitchinterval, interval)
        with mock.patch.object(native, "is_test_path", lambda path: bool(len(path) % 2)):
            with mock.patch.object(plain, "is_test_path", native.is_test_path):
                expected = plain.example_sources(paths, edges), plain.dependents_of(edges)
                threads = [threading.Thread(target=work) for _ in range(4)]
                for thread in threads:
                    thread.start()
                for thread in threads:
                    thread.join()
        self.assertEqual(failures, [])

    def test_every_interpreter_has_its_own_module(self):
        try:
            import _interpreters as interpreters  # from CPython 3.13 on
        except ImportError:
            import _xxsubinterpreters as interpreters
        other = interpreters.create()
        self.addCleanup(interpreters.destroy, other)
        failure = interpreters.run_string(
            other,
            f"import sys; sys.path[:0] = {sys.path!r}\n"
            "from kestrix.workers.wiki import page_sources as native\n"
            "native.is_test_path = lambda path: 1 / 0\n"
            "assert native.dispatch_files(['a', 'b', 'c'], []) == []\n",
        )
        self.assertIsNone(failure)
        edges = [SlotsEdge("t/a", "src/b", 1)]
        self.assertEqual(native.example_sources(["t/a"], edges), ["t/a"])


if __name__ == "__main__":
    unittest.main()
