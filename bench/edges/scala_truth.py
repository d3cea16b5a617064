#!/usr/bin/env python3
"""Prints which Scala file names what of which other Scala or Java file, "source<TAB>target" a line.

    scala_truth.py REPOSITORY

There is no Scala compiler to ask, so this reads the sources itself, with regular expressions and
nothing of the index: what stands at the left margin, or in a package object, is known to the files
of its package and of packages within, and to those that import it; imports may start in any package
around. Of what several files declare the nearest counts, and product code does not see tests.
"""

import collections
import os
import re
import subprocess
import sys

NOT_CODE = re.compile(r'//[^\n]*|/\*[\s\S]*?\*/|"""[\s\S]*?"""|"(?:\\.|[^"\\\n])*"|'
                      r"'(?:\\.|[^'\\\n])'")
SPLICE = re.compile(r"\$\{([^{}]*)\}|\$([a-z]\w*)")
KINDS = r"(?:class|object|trait|enum|def|val|var|type|given)"
MODIFIERS = r"(?:(?:@[\w.]+(?:\([^)]*\))?|abstract|case|final|implicit|inline|lazy|opaque|open|" \
            r"override|private|private\[\w+\]|protected|sealed|transparent)\s+)*"
TOP = re.compile(rf"^({MODIFIERS})(?<!package ){KINDS}\s+(\w+)", re.M)
OBJECT = re.compile(r"^package object (\w+)[^\n]*\n((?:[ \t}][^\n]*\n|\n)*)", re.M)
INNER = re.compile(rf"^  ({MODIFIERS}){KINDS}\s+(\w+)", re.M)
NESTED = re.compile(r"^[ \t]+[^\n]*?\b(?:class|object|trait|enum|type)\s+([A-Z]\w*)", re.M)
JAVA = re.compile(r"^(?:public |abstract |final |sealed )*(?:class|interface|enum|record|@interface)"
                  r"\s+(\w+)", re.M)
IMPORT = re.compile(r"\bimport\s+([^\n{]*(?:\{[^}]*\})?(?:\s*,\s*[\w.]+(?:\{[^}]*\})?)*)")
SPELLED = re.compile(r"(?<![\w.])((?:[a-z]\w*\.)+[A-Z]\w*)")
WORD = re.compile(r"(?<![\w.])([A-Z]\w*)|(?<![\w.])(?<!def )([a-z]\w*)[(\[]")


def code_of(text):
    def spliced(match):
        words = " ".join(a or b for a, b in SPLICE.findall(match[0])) if match[0][0] == '"' else ""
        return words + "\n" * match[0].count("\n")
    return NOT_CODE.sub(spliced, text)


def imported(clause):
    """Pairs of a dotted name and the name that it is bound to; None for all that it holds."""
    for part in re.findall(r"[\w`]+(?:\.[\w`]+)*(?:\.\{[^}]*\}|\.\*)?(?:\s+as\s+\w+)?", clause):
        head, brace, inner = part.partition("{")
        head = head.rstrip(".").removeprefix("_root_.")
        renamed = re.match(r"(\S+)\s+as\s+(\w+)", head)
        if brace:
            for selected in inner.rstrip("}").split(","):
                name, _, alias = re.sub(r"=>|\bas\b", " ", selected).strip().partition(" ")
                if name in ("_", "*", "given"):
                    yield head, None
                elif name and alias.strip() != "_":
                    yield f"{head}.{name}", alias.strip() or name
        elif head.endswith(("._", ".*")):
            yield head[:-2], None
        elif renamed:
            yield renamed[1], renamed[2]
        elif head:
            yield head, head.split(".")[-1]


def aside(path):
    return any(p in ("test", "tests", "example", "examples", "testdata", "samples", "sample",
                     "fixtures") for p in path.split("/")[:-1])


class Source:
    def __init__(self, repo, path):
        text = code_of(open(os.path.join(repo, path), encoding="utf-8", errors="replace").read())
        self.scala = not path.endswith(".java")
        clauses = re.findall(r"^package\s+(?!object\b)([\w.]+)", text, re.M)
        self.package = ".".join(clauses)
        self.imports = [i for c in IMPORT.findall(text) for i in imported(c)]
        body = IMPORT.sub("", re.sub(r"^package\s+(?!object\b)[\w.]+", "", text, flags=re.M))
        self.declared, self.own = [], set()
        if path.endswith(".java"):
            self.declared = [(self.package, name) for name in JAVA.findall(text)]
            return
        for modifiers, name in TOP.findall(body):
            self.own.add(name)
            if "private " not in modifiers and path.endswith(".scala"):
                self.declared.append((self.package, name))
        for name, inner in OBJECT.findall(body):
            package = f"{self.package}.{name}".lstrip(".")
            self.declared += [(package, n) for m, n in INNER.findall(inner) if "private " not in m]
            self.own |= {n for _, n in INNER.findall(inner)}
        self.own |= {bound for _, bound in self.imports if bound}
        nested = set(NESTED.findall(body))
        self.spelled = set(SPELLED.findall(body))
        heads = " ".join(re.findall(r"^\S[^\n]*", body, re.M))
        self.used = {a or b for a, b in WORD.findall(body)}
        self.used = {u for u in self.used
                     if u not in self.own and (u not in nested or re.search(rf"\b{u}\b", heads))}


def around(package):
    while package:
        yield package
        package = package.rpartition(".")[0]


def main() -> None:
    repo = sys.argv[1]
    listed = subprocess.run(["git", "-C", repo, "ls-files", "-z"], capture_output=True, text=True,
                            check=True).stdout.split("\0")
    sources = {p: Source(repo, p) for p in listed if p.endswith((".scala", ".sc", ".sbt", ".java"))}
    table = collections.defaultdict(set)
    for path, source in sources.items():
        for declared in source.declared:
            table[declared].add(path)
    packages = {package for package, _ in table}

    def find(package, name, path):
        found = {f for f in table.get((package, name), ()) if aside(path) or not aside(f)}
        def near(f):
            return len(os.path.commonprefix([os.path.dirname(f), os.path.dirname(path)]))
        best = max(map(near, found), default=0)
        return {f for f in found if near(f) == best}

    for path, source in sources.items():
        if not source.scala:
            continue
        targets, wildcards = set(), []
        for dotted, bound in [*source.imports, *((name, "") for name in source.spelled)]:
            for base in [*around(source.package), ""]:
                whole = f"{base}.{dotted}".lstrip(".")
                if bound is None and whole in packages:
                    wildcards.append(whole)
                    break
                parts, found = whole.split("."), set()
                for end in range(len(parts), base.count(".") + (1 if base else 0), -1):
                    found = find(".".join(parts[:end - 1]), parts[end - 1], path)
                    if found:
                        break
                if found:
                    targets |= found
                    break
        for name in source.used:
            for package in [*(list(around(source.package)) or [""]), *wildcards]:
                found = find(package, name, path)
                if found:
                    targets |= found
                    break
        for target in sorted(targets - {path}):
            print(path, target, sep="\t")


if __name__ == "__main__":
    main()
