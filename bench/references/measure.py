#!/usr/bin/env python3
"""Compares what `page-sources references` prints with what a language's own tools find.

    bench/references/measure.py --program build/release/apps/page_sources/page-sources \\
        typescript REPO... [--role ROLE] [--differences N]

A truth program prints lines of "source<TAB>role<TAB>target<TAB>name", of declarations of the
repository only; a line says that the file names the declaration in that role at all. Precision is
the share of the program's lines that the truth has too, recall the share of the truth's lines that
the program has. On stderr a truth may say "unjudged<TAB>folder" of what it can not follow: what is
declared there is left out on both sides, and "unseen<TAB>path" of a file that it does not judge at
all. A role of which it says nothing is left out.
"""

import argparse
import collections
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROLES = ("extends", "implements", "constructs", "calls", "type", "throws", "catches", "annotates",
         "lists")
TRUTHS = {
    "typescript": (
        ["node", "--max-old-space-size=6000", HERE / "typescript" / "truth.mjs"],
        (".ts", ".tsx", ".mts", ".cts", ".js", ".jsx", ".mjs", ".cjs"),
    ),
    "java": (["java", HERE / "java" / "java_truth.java"], (".java",)),
}


def run(command) -> tuple[str, str]:
    done = subprocess.run([str(c) for c in command], capture_output=True, text=True,
                          errors="surrogateescape")
    if done.returncode != 0:
        sys.exit(f"{command}: exit code {done.returncode}\n{done.stderr[-2000:]}")
    return done.stdout, done.stderr


def found_by(program, repo, suffixes):
    found = set()
    for line in run([program, "references", repo, "--self"])[0].splitlines():
        source, _, role, target, name, _ = line.split("\t")
        if role in ROLES and target and source.endswith(suffixes) and target.endswith(suffixes):
            found.add((source, role, target, name.removeprefix("exports.")))
    return found


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("language", choices=TRUTHS)
    parser.add_argument("repositories", nargs="+", type=Path)
    parser.add_argument("--role", choices=ROLES)
    parser.add_argument("--differences", type=int, default=0)
    arguments = parser.parse_args()
    command, suffixes = TRUTHS[arguments.language]
    for repo in arguments.repositories:
        truth, notes = run([*command, repo])
        unjudged = tuple(line.split("\t")[1] + "/" for line in notes.splitlines()
                         if line.startswith("unjudged\t"))
        unseen = {line.split("\t")[1] for line in notes.splitlines() if line.startswith("unseen\t")}

        def judged(lines):
            return {line for line in lines if not line[2].startswith(unjudged)
                    and line[0] not in unseen and line[2] not in unseen}

        expected = judged(tuple(line.split("\t")) for line in truth.splitlines())
        found = judged(found_by(arguments.program, repo, suffixes))
        by_role = collections.defaultdict(lambda: (set(), set()))
        for which, lines in enumerate((found, expected)):
            for line in lines:
                by_role[line[1]][which].add(line)
        for role in ROLES:
            if arguments.role not in (None, role):
                continue
            mine, true = by_role[role]
            if not true:
                continue
            both = len(mine & true)
            print(f"{repo.name}\t{role}\t{len(mine)}\t{len(true)}\t"
                  f"{both / max(len(mine), 1):.4f}\t{both / max(len(true), 1):.4f}")
            for sign, lines in (("+", mine - true), ("-", true - mine)):
                for line in sorted(lines)[: arguments.differences]:
                    print(f"  {sign} {line[0]} -> {line[2]} {line[3]}")


if __name__ == "__main__":
    main()
