"""The detectors: what they return, what they ask of the host and in which order, how they fail."""

import logging
import os
import re
import traceback
import unittest
from collections import Counter
from types import SimpleNamespace
from unittest import mock

import plain_page_sources as plain
from kestrix.workers.wiki import page_sources as native
from worlds import World, frozen

SEEDS = int(os.environ.get("PAGE_SOURCES_SEEDS", 250))
GUARDED = {"_has_exceptions": False, "_exception_files": []}
DETECTORS = (
    "_config_files", "_has_exceptions", "_exception_files", "_data_model_files",
    "_decision_files", "_extension_files", "_test_files", "_example_files", "_flow_dispatch",
)  # fmt: skip


def outcome(module, world, detector, fail_at=None, error=None):
    """What came of a call, and everything that it asked of the host."""
    world.start(fail_at, error)
    arguments = [world.roots] if detector == "_flow_dispatch" else []
    with world.hosting(module) as generator:
        try:
            result = getattr(generator, detector)(*arguments)
        except BaseException as raised:
            if raised is not error:
                raise
            return "raised", world.log
    return type(result), result, world.log


class Compared(unittest.TestCase):
    def test_every_detector_in_seeded_worlds(self):
        for seed in range(SEEDS):
            world = World(seed)
            for detector in DETECTORS:
                with self.subTest(seed=seed, detector=detector):
                    self.assertEqual(
                        outcome(native, world, detector), outcome(plain, world, detector)
                    )

    def test_every_detector_fails_at_every_use_of_the_host(self):
        for seed in range(250, 251 + SEEDS // 50):
            world = World(seed)
            for detector in DETECTORS:
                uses = len(outcome(plain, world, detector)[-1])
                for fail_at in range(uses):
                    for error in (OSError("disk"), KeyboardInterrupt(), SystemExit(3)):
                        with self.subTest(seed=seed, detector=detector, at=fail_at, error=error):
                            self.assertEqual(
                                outcome(native, world, detector, fail_at, error),
                                outcome(plain, world, detector, fail_at, error),
                            )


# Every constant of the module, with a value that changes what the rules or detectors answer or ask.
CONSTANTS = {
    "SYMBOL_SCAN_LIMIT": 3,
    "DETECTOR_READ_CHARS": 9,
    "MAX_ASPECT_FILES": 1,
    "_FIXTURE_DIRS": frozenset({"tests", "docs"}),
    "_ARCHIVE_DIRS": frozenset({"app", "adr"}),
    "_DISPATCH_MIN_ROOTS": 1,
    "_EXTENSION_CONTRACTS": 2,
    "_EXTENSION_WIRING": 0,
    "_CONFIG_BASENAMES": frozenset({"a.py"}),
    "_EXCEPTION_PATTERNS": ("%x", "%S", "%r"),
    "_DOMAIN_LAYER": "ui",
    "_REGISTRY_PATTERNS": ["%S"],
    "_REGISTRY_RE": re.compile("x"),
    "_INTERFACE_SIGNATURE_RE": re.compile("class A"),
}


class Patched(unittest.TestCase):
    def changed_by(self, **replaced):
        """Whether what is replaced shows, in both versions alike."""
        changed = False
        for seed in range(300, 312):
            world = World(seed)
            for detector in DETECTORS:
                with mock.patch.multiple(plain, **replaced), mock.patch.multiple(native, **replaced):
                    expected = outcome(plain, world, detector)
                    found = outcome(native, world, detector)
                with self.subTest(seed=seed, detector=detector, replaced=[*replaced]):
                    self.assertEqual(found, expected)
                changed = changed or expected != outcome(plain, world, detector)
        return changed

    def test_constants(self):
        for name, value in CONSTANTS.items():
            with self.subTest(name=name):
                self.assertTrue(self.changed_by(**{name: value}))

    def test_rules(self):
        def nothing(*args):
            calls.append([frozen(value) for value in args])
            return []

        for rule in ("current_first", "dispatch_files", "extension_sources", "example_sources"):
            calls = []
            self.assertTrue(self.changed_by(**{rule: nothing}))
            self.assertEqual(calls[::2], calls[1::2])
        self.assertTrue(self.changed_by(is_fixture_path=lambda path: "a" in path))
        self.assertTrue(self.changed_by(dependents_of=lambda edges: {"app/a.py": Counter("b")}))

    def test_the_constant_of_a_rule_that_no_detector_calls(self):
        with mock.patch.object(native, "_TOPIC_STEMS", 1):
            self.assertEqual(native.unit_topic("title", ["a.py", "b.py"]), "title a")


class Failing(unittest.TestCase):
    def setUp(self):
        self.world = World(3)

    def generator(self, **members):
        hosting = self.world.hosting(native)
        generator = hosting.__enter__()
        self.addCleanup(hosting.__exit__, None, None, None)
        for name, member in members.items():
            setattr(type(generator), name, member)
        return generator

    def test_the_trace_leads_to_where_the_host_failed(self):
        def fails(_self):
            raise LookupError("no planner")

        try:
            self.generator(_planner_paths=fails)._flow_dispatch([])
        except LookupError as error:
            names = [frame.name for frame in traceback.extract_tb(error.__traceback__)]
        self.assertEqual(names[-2:], ["_flow_dispatch", "fails"])

    def test_a_search_that_is_no_triple_is_logged_with_its_trace(self):
        generator = self.generator()
        native.logger = logging.getLogger("kestrix.workers.wiki.page_sources")
        for found in ([], ([], 0), ([], 0, 1, 2), None):
            self.world.search_symbols = mock.Mock(return_value=found)
            with self.subTest(found=found), self.assertLogs(native.logger, "WARNING") as logs:
                self.assertEqual(generator._extension_files(), [])
            [record] = logs.records
            self.assertEqual(record.getMessage(), "wiki: the extension-point lookup failed")
            self.assertIsInstance(record.exc_info[1], (ValueError, TypeError))
            self.assertEqual(record.exc_info[2].tb_frame.f_code.co_name, "_extension_files")

    def test_a_document_without_a_path_fails_the_page(self):
        self.world.documents.append({})
        with self.assertRaises(KeyError):
            self.generator()._decision_files()

    def test_a_failing_logger_reaches_the_caller_with_what_it_should_have_logged(self):
        error, broken = OSError("disk"), RuntimeError("no log")
        generator = self.generator()
        self.world.search_symbols = mock.Mock(side_effect=error)
        native.logger.warning = mock.Mock(side_effect=broken)
        with self.assertRaises(RuntimeError) as caught:
            generator._extension_files()
        self.assertIs(caught.exception, broken)
        self.assertIs(caught.exception.__context__, error)

    def test_guards_absorb_errors_and_let_requests_to_stop_through(self):
        for detector, default in GUARDED.items():
            generator = self.generator()
            self.world.search_symbols = mock.Mock(side_effect=OSError)
            self.assertEqual(getattr(generator, detector)(), default)
            self.world.search_symbols = mock.Mock(side_effect=KeyboardInterrupt)
            with self.assertRaises(KeyboardInterrupt):
                getattr(generator, detector)()


class HandedOn(unittest.TestCase):
    """What belongs to the host stays the host's object."""

    def test_edges_and_rule_results_are_the_very_objects(self):
        edges, models = [object()], []
        paths = {"a"}
        cluster = mock.Mock(return_value=iter((None, None, edges)))
        host = SimpleNamespace(repository=object(), _planner_paths=list)
        with mock.patch.multiple(
            native, cluster_inputs=cluster, data_model_files=lambda texts: models
        ):
            self.assertIs(native.PageSourcesMixin._file_edges(host, paths), edges)
            self.assertIs(native.PageSourcesMixin._data_model_files(host), models)
        self.assertIs(cluster.call_args.args[0], host.repository)
        self.assertIs(cluster.call_args.args[1], paths)

    def test_the_host_may_change_the_list_that_it_is_given(self):
        world = World(5)
        world.get_file_paths_batch = lambda symbols: symbols.clear() or world.files
        results = [outcome(module, world, "_extension_files") for module in (native, plain)]
        self.assertEqual(*results)

    def test_overrides_are_used(self):
        class Generator(native.PageSourcesMixin):
            repository = repo_root = None
            _planner_paths = staticmethod(lambda: ["src/a.py"])

            def __init__(self):
                pass

            def _file_edges(self, paths):
                assert type(paths) is set and paths == {"tests/t.py", "src/a.py"}, paths
                return []

            def _test_files(self):
                return ("tests/t.py",)

        self.assertEqual(Generator()._example_files(), ["tests/t.py"])
        self.assertEqual(Generator()._flow_dispatch.__self__.__class__, Generator)

        class Further(Generator):
            def _file_edges(self, paths):
                raise NotImplementedError

        with self.assertRaises(NotImplementedError):
            Further()._example_files()

    def test_declared_members_leave_those_of_other_bases_alone(self):
        class Planner:
            def _planner_paths(self):
                return []

        class Generator(native.PageSourcesMixin, Planner):
            def __init__(self):
                self._source_files = list

        self.assertEqual(Generator()._config_files(), [])
        self.assertEqual(Generator()._planner_paths(), [])
        self.assertNotIn("_planner_paths", vars(native.PageSourcesMixin))
        self.assertFalse(hasattr(native.PageSourcesMixin, "_indexed_documents"))


if __name__ == "__main__":
    unittest.main()
