"""Times the rules of the native module against the plain-Python version, in one run.

Needs the service's package tree with the module in it, and the plain version, on PYTHONPATH.
Prints, for each rule, number of edges and kind of edge object, the time of each in nanoseconds an
edge and how many times faster the native rule is.
"""

import argparse
import json
import random
import time
import timeit
from pathlib import Path

import plain_page_sources as plain
from kestrix.workers.wiki import page_sources as native
from worlds import DataclassEdge, NamedTupleEdge, SlotsEdge


class PropertyEdge:
    def __init__(self, *ends):
        self._ends = ends

    source = property(lambda self: self._ends[0])
    target = property(lambda self: self._ends[1])
    weight = property(lambda self: self._ends[2])


def world(count):
    """Paths, and the ends and weights of edges among them; few files are what most depend on."""
    chance = random.Random(count)
    files = [f"src/package_{i % 97}/module_{i}.py" for i in range(max(count // 10, 5))]
    files += [f"tests/package_{i % 97}/test_{i}.py" for i in range(max(count // 10, 5))]
    popular = chance.sample(files, len(files))
    ends = [
        (chance.choice(files), popular[int(len(files) * chance.random() ** 2)], 1 + i % 3)
        for i in range(count)
    ]
    return files, ends


def calls(files, edges):
    roots = [path for path in files if "/package_7/" in path][:50] or files[:3]
    tests = [path for path in files if path.startswith("tests/")]
    return {
        "dispatch_files": (roots + files[:3], edges),
        "dependents_of": (edges,),
        "example_sources": (tests, edges),
    }


def best_times(functions, arguments, seconds):
    """The shortest processor time of a call of each function, measured by turns."""
    timers = [timeit.Timer(lambda f=f: f(*arguments), timer=time.process_time) for f in functions]
    number = max(1, int(seconds / 40 / max(timers[0].timeit(1), 1e-7)))
    rounds = [[timer.timeit(number) / number for timer in timers] for _ in range(20)]
    return [min(times) for times in zip(*rounds)]


def main():
    tests = frozenset(path for path in world(100_000)[0] if path.startswith("tests/"))
    plain.is_test_path = native.is_test_path = tests.__contains__  # the host's time is not ours
    parser = argparse.ArgumentParser()
    parser.add_argument("--edges", type=int, nargs="+", default=[100, 1_000, 100_000])
    parser.add_argument("--seconds", type=float, default=0.5, help="for each measurement")
    parser.add_argument("--json", help="a file for the results")
    options = parser.parse_args()
    results = []
    print(f"{'rule':<16}{'edges':>8}  {'edge object':<16}{'plain':>9}{'native':>9}{'ratio':>8}")
    for count in options.edges:
        files, ends = world(count)
        for kind in (DataclassEdge, SlotsEdge, NamedTupleEdge, PropertyEdge):
            for rule, arguments in calls(files, [kind(*end) for end in ends]).items():
                functions = [getattr(module, rule) for module in (plain, native)]
                if len({repr(f(*arguments)) for f in functions}) > 1:
                    raise SystemExit(f"{rule} differs from its plain version")
                slow, fast = best_times(functions, arguments, options.seconds)
                print(
                    f"{rule:<16}{count:>8}  {kind.__name__:<16}"
                    f"{slow / count * 1e9:>9.1f}{fast / count * 1e9:>9.1f}{slow / fast:>8.2f}"
                )
                results.append(
                    {
                        "rule": rule,
                        "edges": count,
                        "kind": kind.__name__,
                        "plain_seconds": slow,
                        "native_seconds": fast,
                    }
                )
    if options.json:
        Path(options.json).write_text(json.dumps(results, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
