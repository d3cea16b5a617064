"""Runs component_bench and prints, for each rule, what it costs beside the floor of the same graph.

The floor hashes the source and the target of every edge once. All benchmarks run in one process, by
turns in random order; printed is the least processor time of the repetitions. Growth is how much
more an input costs for each time that it is longer than the one before: 1 is linear.
"""

import argparse
import json
import subprocess
from itertools import pairwise
from pathlib import Path

PROGRAM = Path(__file__).resolve().parents[2] / "build/release/bench/component/component_bench"
UNITS = {"ns": 1e-3, "us": 1, "ms": 1e3}


def least_times(options):
    """Microseconds by name and by size of the input."""
    command = [
        options.program,
        "--benchmark_format=json",
        "--benchmark_enable_random_interleaving=true",
        f"--benchmark_repetitions={options.repetitions}",
        f"--benchmark_min_time={options.seconds}",
    ]
    printed = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
    times = {}
    for run in json.loads(printed)["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        name, size = run["run_name"].split("/")[:2]
        sizes = times.setdefault(name, {})
        time = run["cpu_time"] * UNITS[run["time_unit"]]
        sizes[int(size)] = min(time, sizes.get(int(size), time))
    return {name: dict(sorted(sizes.items())) for name, sizes in times.items()}


def growth_of(sizes):
    steps = pairwise(sizes.items())
    return [None, *(b_time / a_time / (b / a) for (a, a_time), (b, b_time) in steps)]


def report_of(times):
    floor = times["floor"]
    report = {}
    for name, sizes in times.items():
        report[name] = [
            {
                "size": size,
                "microseconds": time,
                "times_floor": time / floor[size] if is_rule(name, sizes, floor) else None,
                "growth": growth,
            }
            for (size, time), growth in zip(sizes.items(), growth_of(sizes))
        ]
    return report


def is_rule(name, sizes, floor):
    return name != "floor" and sizes.keys() == floor.keys()


def print_table(report):
    print(f"{'':<22}{'size':>9}{'us':>12}{'x floor':>9}{'growth':>8}")
    for name, rows in report.items():
        for row in rows:
            shown = [f"{row[key]:.2f}" if row[key] else "" for key in ("times_floor", "growth")]
            time = row["microseconds"]
            print(f"{name:<22}{row['size']:>9}{time:>12.1f}{shown[0]:>9}{shown[1]:>8}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--repetitions", type=int, default=7)
    parser.add_argument("--seconds", type=float, default=0.05, help="for each repetition")
    parser.add_argument("--json", help="a file for the results")
    parser.add_argument("--program", default=PROGRAM)
    options = parser.parse_args()
    report = report_of(least_times(options))
    print_table(report)
    if options.json:
        Path(options.json).write_text(json.dumps(report, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
