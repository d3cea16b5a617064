#!/usr/bin/env python3
"""Compares the edges of `page-sources edges` with those that a language's own tools find.

    bench/edges/measure.py --program build/release/apps/page_sources/page-sources \\
        python REPO... [--differences N]

A truth program prints "source<TAB>target" lines; on stderr it may say "skipped<TAB>path" for a file
that it could not read and "unjudged<TAB>source<TAB>folder" for an import that it could not follow
into a folder. Such edges are left out on both sides. Precision is the share of the index's edges
that the truth has too, recall the share of the truth's edges that the index has.
"""

import argparse
import collections
import shlex
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
TRUTHS = {
    "php": (["php", HERE / "php_truth.php"], (".php", ".phtml", ".inc")),
    "python": ([sys.executable, HERE / "python_truth.py"], (".py", ".pyi", ".pyw")),
    "ruby": (
        ["ruby", HERE / "ruby_truth.rb"],
        (".rb", ".rake", ".gemspec", ".ru", "Gemfile", "Rakefile"),
    ),
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


def notes(text: str) -> tuple[set[str], set[tuple[str, str]]]:
    skipped, unjudged = set(), set()
    for line in text.splitlines():
        fields = line.split("\t")
        if fields[0] == "skipped":
            skipped.add(fields[1])
        elif fields[0] == "unjudged":
            unjudged.add((fields[1], fields[2]))
    return skipped, unjudged


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
        expected = pairs(out, suffixes)
        skipped, unjudged = notes(err)
        folders = collections.defaultdict(list)
        for source, folder in unjudged:
            folders[source].append(folder + "/" if folder else "")
        found = {
            (s, t) for s, t in pairs(run([*shlex.split(args.program), "edges", repo])[0], suffixes)
            if s not in skipped and ((s, t) in expected or not t.startswith(tuple(folders[s])))
        }
        both = len(found & expected)
        print(f"{repo.name}  {len(found)}  {len(expected)}  {both / max(len(found), 1):.4f}  "
              f"{both / max(len(expected), 1):.4f}  {len(skipped)}  {len(unjudged)}")
        for label, edges in (("only index", found - expected), ("only truth", expected - found)):
            for source, target in sorted(edges)[: args.differences]:
                print(f"    {label}: {source} -> {target}")


if __name__ == "__main__":
    main()
