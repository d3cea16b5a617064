"""Times the program on repositories, beside what no index of them can do without.

Each repository is copied, and every command runs once a round, so that all of them meet the same
noise. Printed is the least of all rounds, and the median of the wall time to show the noise. CPU is
user and system time together.
"""

import argparse
import contextlib
import json
import os
import shutil
import sqlite3
import statistics
import subprocess
import tempfile
import time
from pathlib import Path
from typing import NamedTuple

BUILD = Path(__file__).resolve().parents[2] / "build/release"
COST = BUILD / "bench/program/program_cost"
SETTLING_SECONDS = 0.1  # after a change, until a file's time alone tells that it is unchanged


class Cost(NamedTuple):
    wall_ms: float
    cpu_ms: float
    peak_mb: float


class Measure(NamedTuple):
    """A command and what, if anything, happens before and after each of its runs."""

    name: str
    command: list
    floor: str = ""  # the measure that this one is a multiple of, or a surplus over
    surplus: bool = False
    input: bytes = b""
    before: object = lambda: None
    after: object = lambda: None


def run(measure, directory):
    measure.before()
    with tempfile.TemporaryFile() as stdin:  # no pipe that would slow it down
        stdin.write(measure.input)
        stdin.seek(0)
        printed = output_of([COST, *measure.command], directory, stdin=stdin)
    measure.after()
    wall, cpu, peak = map(int, printed.split())
    return Cost(wall / 1e3, cpu / 1e3, peak / 1024)


def output_of(command, directory, **options):
    return subprocess.run(
        command, cwd=directory, check=True, stdout=subprocess.PIPE, **options
    ).stdout


def all_files(directory):
    """The regular files, as bytes: git's where it is a work tree."""
    if (Path(directory) / ".git").exists():
        listed = output_of(["git", "ls-files", "-co", "--exclude-standard", "-z"], directory)
        paths = sorted(set(listed.split(b"\0")) - {b""})
    else:
        start = os.fsencode(directory)
        paths = [
            os.path.relpath(os.path.join(folder, name), start)
            for folder, _, names in os.walk(start)
            for name in names
        ]
    places = ((path, os.path.join(os.fsencode(directory), path)) for path in paths)
    return [path for path, at in places if os.path.isfile(at) and not os.path.islink(at)]


def parsed_files(directory, index, options):
    """The files that the index parses, by what it stores of them."""
    output_of([options.program, "index", ".", "--index", str(index), "--quiet"], directory)
    with contextlib.closing(sqlite3.connect(index)) as database:
        database.text_factory = bytes
        rows = database.execute("SELECT path FROM file JOIN facts ON id = file ORDER BY path")
        return [path for (path,) in rows]


class Editor:
    """Changes a file of middling size that imports something, and adds a copy of it."""

    def __init__(self, directory, program, own):
        edges = output_of([*program, "edges", ".", *own], directory).decode(errors="replace")
        sources = {Path(directory, line.split("\t")[0]) for line in edges.splitlines()}
        found = sorted(filter(Path.is_file, sources), key=lambda file: (file.stat().st_size, file))
        if not found:
            raise SystemExit(f"{directory}: no file of it depends on another")
        self.edited = found[len(found) // 2]
        self.added = self.edited.with_stem(self.edited.stem + "_added")

    def edit(self):
        with open(self.edited, "a", encoding="utf-8") as file:
            file.write("\n")
        time.sleep(SETTLING_SECONDS)

    def add(self):
        shutil.copyfile(self.edited, self.added)
        time.sleep(SETTLING_SECONDS)


def listing(paths):
    return b"".join(path + b"\0" for path in paths)


def plural(threads):
    return f"{threads} thread" + "s" * (threads != 1)


def floors_of(directory, files, parsed, options):
    if (Path(directory) / ".git").exists():
        yield Measure("git ls-files", ["git", "ls-files", "-co", "--exclude-standard"])
        yield Measure("git status", ["git", "status", "--porcelain"])
    yield Measure("read all bytes", [options.floors, "read", "1"], input=listing(files))
    for threads in options.threads:
        command = [options.floors, "parse", str(threads)]
        yield Measure(f"bare parse, {plural(threads)}", command, input=listing(parsed))
    if shutil.which("ctags"):
        yield Measure("ctags -R", ["ctags", "-R", "--quiet", "-f", "-", "."])


def programs_of(directory, index, options):
    own = ["--index", str(index), "--quiet"]
    refresh = [options.program, "index", ".", *own]
    editor = Editor(directory, [options.program], own)

    def forget():
        for file in index.parent.glob(index.name + "*"):
            file.unlink()

    def remove_added():
        editor.added.unlink()
        subprocess.run(refresh, cwd=directory, check=True, stdout=subprocess.DEVNULL)

    for threads in options.threads:
        command = [*refresh, "--threads", str(threads)]
        beside = f"bare parse, {plural(threads)}"
        yield Measure(f"cold index, {plural(threads)}", command, beside, before=forget)
    unchanged = "refresh, nothing changed"
    yield Measure(unchanged, refresh, "git ls-files")
    yield Measure("refresh, one file edited", refresh, unchanged, True, before=editor.edit)
    yield Measure(
        "refresh, one file added", refresh, unchanged, True, before=editor.add, after=remove_added
    )
    yield Measure("all pages, index warm", [options.program, "pages", ".", *own])


def results_of(measures, directory, rounds):
    """By name: the least and the median of each kind of cost, and what it means beside its floor."""
    costs = {measure.name: [] for measure in measures}
    for _ in range(rounds):
        for measure in measures:
            costs[measure.name].append(run(measure, directory))
    results = {}
    for measure in measures:
        kinds = dict(zip(Cost._fields, zip(*costs[measure.name])))
        result = {kind: {"min": min(v), "median": statistics.median(v)} for kind, v in kinds.items()}
        beside = results.get(measure.floor)
        if beside:
            compare = (lambda a, b: a - b) if measure.surplus else (lambda a, b: a / b)
            result["beside"] = {
                "floor": measure.floor,
                "unit": "ms more" if measure.surplus else "times",
                **{k: compare(result[k]["min"], beside[k]["min"]) for k in ("wall_ms", "cpu_ms")},
            }
        results[measure.name] = result
    return results


def print_table(name, facts, results):
    print(f"\n{name}: {facts['files']} files, {facts['megabytes']:.1f} MB; "
          f"{facts['parsed_files']} of them parsed, {facts['parsed_megabytes']:.1f} MB")
    print(f"{'':<26}{'wall ms':>9}{'(median)':>9}{'cpu ms':>9}{'peak MB':>9}  beside its floor")
    for measure, result in results.items():
        wall, cpu, peak = (result[kind] for kind in Cost._fields)
        line = (
            f"{measure:<26}{wall['min']:>9.1f}{wall['median']:>9.1f}"
            f"{cpu['min']:>9.1f}{peak['median']:>9.1f}"
        )
        beside = result.get("beside")
        if beside:
            line += (
                f"  wall {beside['wall_ms']:.2f}, cpu {beside['cpu_ms']:.2f}"
                f" {beside['unit']} ({beside['floor']})"
            )
        print(line)


def size_of(directory, paths):
    return sum(os.path.getsize(os.path.join(os.fsencode(directory), path)) for path in paths) / 1e6


def measured(repository, options):
    with tempfile.TemporaryDirectory() as scratch:
        directory = os.path.join(scratch, "repository")
        shutil.copytree(repository, directory, symlinks=True)
        index = Path(scratch, "index")
        files = all_files(directory)
        parsed = parsed_files(directory, index, options)
        facts = {
            "files": len(files),
            "megabytes": size_of(directory, files),
            "parsed_files": len(parsed),
            "parsed_megabytes": size_of(directory, parsed),
        }
        measures = [
            *floors_of(directory, files, parsed, options),
            *programs_of(directory, index, options),
        ]
        results = results_of(measures, directory, options.rounds)
    print_table(Path(repository).resolve().name, facts, results)
    return {**facts, "results": results}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("repositories", nargs="+")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--threads", type=int, nargs="+", default=[1, 2])
    parser.add_argument("--json", help="a file for the results")
    parser.add_argument("--program", default=BUILD / "apps/page_sources/page-sources")
    parser.add_argument("--floors", default=BUILD / "bench/program/program_floors")
    options = parser.parse_args()
    report = {name: measured(name, options) for name in options.repositories}
    if options.json:
        Path(options.json).write_text(json.dumps(report, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
