"""The rules on Python objects: compared with the plain version, and what only Python can ask."""

import pickle
import random
import unittest
from collections import Counter, OrderedDict, UserDict, defaultdict
from decimal import Decimal
from unittest import mock

import plain_page_sources as plain
from kestrix.workers.wiki import page_sources as native
from kestrix.workers.wiki_cluster import MAX_ASPECT_FILES
from worlds import EDGE_TYPES, SlotsEdge, Text, make_edges, make_paths

BOUNDS = (0, 1, 2, 3, 10, -1, -2, -100, None, True, 10**30, -(10**30))


def in_order(value):
    """A value with the order and the types of everything in it."""
    if isinstance(value, dict):
        return type(value), [(key, in_order(item)) for key, item in value.items()]
    return type(value), value


class Compared(unittest.TestCase):
    def compare(self, rule, *args):
        before = [in_order(value) for value in args]
        result = getattr(native, rule)(*args)
        expected = getattr(plain, rule)(*args)
        self.assertEqual(in_order(result), in_order(expected))
        self.assertEqual([in_order(value) for value in args], before)
        self.assertEqual(in_order(pickle.loads(pickle.dumps(result))), in_order(expected))

    def test_rules_in_seeded_worlds(self):
        for seed in range(400):
            chance = random.Random(seed)
            paths = make_paths(chance, chance.choice((1, 5, 30)))
            edges = make_edges(chance, paths, chance.choice((0, 8, 200)))
            roots = [frozenset, list, dict.fromkeys][seed % 3](chance.choices(paths, k=seed % 9))
            tests = chance.choices(paths, k=chance.randrange(20))
            bound = chance.choice(BOUNDS)
            with self.subTest(seed=seed):
                for path in paths:
                    self.compare("is_fixture_path", path)
                self.compare("current_first", paths, bound)
                self.compare("unit_topic", chance.choice(paths), paths)
                self.compare("dispatch_files", roots, edges)
                self.compare("dispatch_files", roots, edges, bound)
                self.compare("dependents_of", edges)
                self.compare("example_sources", tests, tuple(edges), bound)
                self.compare("extension_sources", *self.extension_inputs(chance, paths, edges))

    @staticmethod
    def extension_inputs(chance, paths, edges):
        def counts(kind):
            return kind({path: chance.randrange(4) for path in chance.choices(paths, k=6)})

        dependents = native.dependents_of(edges)
        for path in chance.choices(paths, k=2):
            dependents[path] = chance.choice((Counter(), Counter({path: 0})))
        wrapped = chance.choice((dict, OrderedDict, lambda d: defaultdict(Counter, d)))
        return counts(Counter), counts(chance.choice((dict, OrderedDict))), wrapped(dependents)

    def test_any_mapping_and_any_number(self):
        a, b = UserDict({"a": 1, "b": 2}), UserDict({"b": Decimal(1)})
        dependents = UserDict({"b": Counter(c=Decimal("0.5"), d=Decimal("0.5"))})
        self.assertEqual(native.extension_sources(a, b, dependents), ["b", "a", "c"])
        edges = [SlotsEdge("a", "t", w) for w in (1, Decimal("0.5"), True)]
        self.assertEqual(native.dependents_of(edges), {"t": {"a": Decimal("2.5")}})
        with self.assertRaises(TypeError):
            native.dependents_of([SlotsEdge("a", "t", "1")])


class Reading(unittest.TestCase):
    def test_results_hold_the_objects_that_came_in(self):
        path, root = Text("src/x.py"), "h/%d.py"
        edges = [SlotsEdge(path, root % i, 1) for i in range(3)]
        [found] = native.dispatch_files([root % i for i in range(3)], edges)
        self.assertIs(found, path)
        [test] = native.example_sources([path], [])
        self.assertIs(test, path)
        [document] = native.current_first((path,))
        self.assertIs(document, path)

    def test_fields_are_read_once_lazily_and_in_order(self):
        reads = []

        class Edge:
            def __init__(self, *fields):
                self.fields = dict(zip(("source", "target", "weight"), fields))

            def __getattr__(self, name):
                reads.append(name)
                return self.fields[name]

        def read_by(rule, *args):
            reads.clear()
            rule(*args)
            return reads

        roots = ["h/a", "h/b", "h/c"]
        for edge, expected in {
            Edge("x/s", "y"): ["target"],
            Edge("h/a", "h/b"): ["target", "source"],
            Edge("x/s", "h/b"): ["target", "source"],
        }.items():
            self.assertEqual(read_by(native.dispatch_files, roots, [edge]), expected)
        self.assertEqual(read_by(native.dispatch_files, roots[:2], [Edge("x", "h/a")]), [])
        self.assertEqual(read_by(native.dependents_of, [Edge("x", "x", 1)]), ["source", "target"])
        self.assertEqual(
            read_by(native.dependents_of, [Edge("x", "y", 1)]), ["source", "target", "weight"]
        )
        self.assertEqual(read_by(native.example_sources, [], [Edge("x", "y", 1)]), ["source"])

    def test_few_roots_leave_the_edges_and_the_limit_alone(self):
        untouched = mock.Mock(spec=())
        for roots in ([], ["a"], {"a", "b"}):
            self.assertEqual(native.dispatch_files(roots, untouched, untouched), [])

    def test_an_edge_type_may_change_while_its_edges_are_read(self):
        for kind in EDGE_TYPES[:3]:
            edge_type = type("Edge", (kind,), {})
            first, second = (edge_type("a", "t", weight) for weight in (1, 2))

            def edges(first=first, second=second):
                yield first
                type(first).source = property(lambda self: "changed")
                yield second

            with self.subTest(kind=kind.__name__):
                self.assertEqual(native.dependents_of(edges()), {"t": {"a": 1, "changed": 2}})

    def test_a_list_may_grow_while_it_is_read(self):
        paths = ["src/a"]

        def is_test_path(path):
            if len(edges) < 5:
                edges.append(SlotsEdge("t/x", path, 1))
            return False

        edges = [SlotsEdge("t/x", paths[0], 1)]
        with mock.patch.object(native, "is_test_path", is_test_path):
            self.assertEqual(native.example_sources(["t/x"], edges), ["t/x"])
        self.assertEqual(len(edges), 5)


class Arguments(unittest.TestCase):
    def test_names_and_defaults(self):
        self.assertEqual(native.current_first(docs=["a"], max_files=1), ["a"])
        self.assertEqual(native.current_first([*"abcdefghij"]), [*"abcdefghij"][:MAX_ASPECT_FILES])

    def test_a_wrong_type_is_refused(self):
        edge, roots = SlotsEdge("x/s", "h/a", 1), ["h/a", "h/b", "h/c"]
        nothing = SlotsEdge(None, "h/a", 1)
        for rule, args in (
            ("is_fixture_path", (b"x",)),
            ("current_first", (3,)),
            ("current_first", (["a", None],)),
            ("current_first", (["a"], "1")),
            ("example_sources", (["a"], [], 1.5)),
            ("unit_topic", (None, [])),
            ("unit_topic", ("t", 5)),
            ("dispatch_files", (iter(roots), [edge])),
            ("dispatch_files", (roots, None)),
            ("dispatch_files", (roots, [nothing])),
            ("dispatch_files", (roots, [edge], "3")),
            ("dependents_of", (1,)),
            ("example_sources", ([b"t"], [])),
            ("example_sources", (None, [])),
        ):
            for module in (native, plain):
                with self.subTest(rule=rule, args=args, module=module.__name__):
                    with self.assertRaises((TypeError, AttributeError)):
                        getattr(module, rule)(*args)

    def test_what_plain_python_takes_is_taken(self):
        roots = ["h/a", "h/b", "h/c", None, 5]
        edges = [SlotsEdge("x/s", None, 1), SlotsEdge(None, "y", 1), SlotsEdge(7, 7.5, 1)]
        for rule, args in (
            ("dispatch_files", (roots, edges[1:])),
            ("dependents_of", (edges,)),
            ("example_sources", (["x/s"], edges[1:])),
        ):
            self.assertEqual(getattr(native, rule)(*args), getattr(plain, rule)(*args))

    def test_failures_of_the_arguments_reach_the_caller(self):
        error = OSError("read")

        def failing(*items):
            yield from items
            raise error

        class Weight:
            def __radd__(self, other):
                raise error

        edge = SlotsEdge("a", "t", 1)
        for call in (
            lambda: native.dependents_of(failing(edge)),
            lambda: native.dependents_of([SlotsEdge("a", "t", Weight())]),
            lambda: native.dispatch_files(["a", "b", "c"], failing(edge)),
            lambda: native.example_sources(failing("a"), []),
            lambda: native.current_first(failing("a")),
            lambda: native.unit_topic("a", failing("a")),
        ):
            with self.assertRaises(OSError) as caught:
                call()
            self.assertIs(caught.exception, error)
        with self.assertRaises(AttributeError):
            native.dependents_of([object()])


if __name__ == "__main__":
    unittest.main()
