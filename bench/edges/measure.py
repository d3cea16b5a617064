#!/usr/bin/env python3
"""Compares the edges of `page-sources edges` with those that a language's own tools find.

    bench/edges/measure.py --program build/release/apps/page_sources/page-sources \\
        python REPO... [--differences N]

A truth program prints "source<TAB>target" lines; on stderr it may say "skipped<TAB>path" for a file
that it could not read and "unjudged<TAB>source<TAB>folder" for an import that it could not follow
into a folder. Such edges are left out on both sides, and so are all edges from and to a file of
which it says "unseen<TAB>path". Precision is the share of the index's edges that the truth has too,
recall the share of the truth's edges that the index has.
"""

import argparse
import collections
import shlex
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
C_LIKE = (".c", ".cc", ".cpp", ".cxx", ".c++", ".cu", ".cuh", ".h", ".hh", ".hpp", ".hxx", ".h++",
          ".inl", ".ipp", ".ixx", ".tcc", ".tpp")
TRUTHS = {
    "c": ([sys.executable, HERE / "c_truth.py"], C_LIKE),
    "csharp": ([sys.executable, HERE / "csharp_truth.py"], (".cs", ".csx")),
    "go": (["go", "run", HERE / "go_truth" / "go_truth.go"], (".go",)),
    "java": (["java", HERE / "java_truth.java"], (".java",)),
    "kotlin": ([sys.executable, HERE / "kotlin_truth.py"], (".kt", ".kts", ".java")),
    "php": (["php", HERE / "php_truth.php"], (".php", ".phtml", ".inc")),
    "python": ([sys.executable, HERE / "python_truth.py"], (".py", ".pyi", ".pyw")),
    "ruby": (
        ["ruby", HERE / "ruby_truth.rb"],
        (".rb", ".rake", ".gemspec", ".ru", "Gemfile", "Rakefile"),
    ),
    "rust": ([sys.executable, HERE / "rust_truth.py"], (".rs",)),
    "scala": ([sys.executable, HERE / "scala_truth.py"], (".scala", ".sc", ".sbt")),
    "swift": ([sys.executable, HERE / "swift_truth.py"], (".swift",)),
    "typescript": (
        ["node", HERE / "typescript_truth.mjs"],
        (".ts", ".tsx", ".mts", ".cts", ".js", ".jsx", ".mjs", ".cjs"),
    ),
}


def run(command) -> tuple[str, str]:
    done = subprocess.run([str(c) for c in command], capture_output=True, text=True,
                          errors="surrogateescape")
    if done.returncode != 0:
        sys.exit(f"{command}: exit code {done.returncode}\n{done.stderr[-2000:]}")
    return done.stdout, done.stderr


def pairs(text: str, suffixes) -> set[tuple[str, str]]:
    found = set()
    for line in text.splitlines():
        source, target = line.split("\t")[:2]
        if source.endswith(suffixes):
            found.add((source, target))
    return found


class Notes:
    def __init__(self, text: str):
        self.skipped, self.unseen, self.unjudged = set(), set(), set()
        for line in text.splitlines():
            match line.split("\t"):
                case ["skipped", path]:
                    self.skipped.add(path)
                case ["unseen", path]:
                    self.unseen.add(path)
                case ["unjudged", source, folder]:
                    self.unjudged.add((source, folder))

    def left_out(self, edge) -> bool:
        return edge[0] in self.skipped or not self.unseen.isdisjoint(edge)


def report(repo, found, expected, notes, shown) -> None:
    both = len(found & expected)
    print(f"{repo.name}  {len(found)}  {len(expected)}  {both / max(len(found), 1):.4f}  "
          f"{both / max(len(expected), 1):.4f}  {len(notes.skipped | notes.unseen)}  "
          f"{len(notes.unjudged)}", flush=True)
    for label, edges in (("only index", found - expected), ("only truth", expected - found)):
        for source, target in sorted(edges)[:: max(1, len(edges) // max(shown, 1))][:shown]:
            print(f"    {label}: {source} -> {target}")


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("language", choices=TRUTHS)
    parser.add_argument("repositories", nargs="+", type=Path)
    parser.add_argument("--program", default="page-sources", help="the program, with options")
    parser.add_argument("--differences", type=int, default=0, metavar="N",
                        help="print up to N edges of each kind of difference")
    args = parser.parse_args()
    truth, suffixes = TRUTHS[args.language]
    print("repository  edges  truth  precision  recall  skipped  unjudged")
    for repo in args.repositories:
        out, err = run([*truth, repo])
        notes = Notes(err)
        expected = {edge for edge in pairs(out, suffixes) if not notes.left_out(edge)}
        folders = collections.defaultdict(list)
        for source, folder in notes.unjudged:
            folders[source].append(folder + "/" if folder else "")
        found = {
            (s, t) for s, t in pairs(run([*shlex.split(args.program), "edges", repo])[0], suffixes)
            if not notes.left_out((s, t))
            and ((s, t) in expected or not t.startswith(tuple(folders[s])))
        }
        report(repo, found, expected, notes, args.differences)


if __name__ == "__main__":
    main()
