#!/usr/bin/env python3
"""Prints which Swift file names what of which other one, "source<TAB>target" a line.

    swift_truth.py REPOSITORY

There is no Swift compiler to ask, so this reads the sources itself, with regular expressions and
nothing of the index: what stands in no braces is known to the whole module (a target of a
Package.swift; all that is in none is one) and to those that import it. Functions that several files
declare are left out, since which is called their parameters say.
"""

import collections
import os
import re
import subprocess
import sys

STRING = r'#"""[\s\S]*?"""#|#"(?:[^"\n]|"(?!#))*"#|"""[\s\S]*?"""|"(?:\\\([^()]*(?:\([^()]*\)[^()]*)*\)|\\.|[^"\\\n])*"'
NOT_CODE = re.compile(r"//[^\n]*|/\*[\s\S]*?\*/|" + STRING)
SPLICE = re.compile(r"\\\(((?:[^()]|\([^()]*\))*)\)")
DECLARED = re.compile(
    r"\b(?:class|struct|enum|actor|protocol|typealias|func|var|let)\s+(`?\w+`?)\s*([<(:={,]|where|\n|$)")
TYPES = re.compile(r"\b(?:class|struct|enum|actor|protocol|typealias)\s+(\w+)")
IMPORT = re.compile(r"^([^\n]*)\bimport\s+(?:(?:class|struct|enum|protocol|func|var|let|typealias)\s+)?"
                    r"(\w+)[\w.]*[ \t]*$", re.M)
TARGET = re.compile(r"\.(?:target|executableTarget|testTarget|macro|plugin)\(")
WORD = re.compile(r"(?<![\w.])([A-Z]\w*)\b|(?<![\w.])(?<!func )([a-z_]\w*)\(")


def spliced(match):
    text = match[0]
    if not text.startswith('"'):
        return re.sub(r"[^\n]", " ", text)
    return " ".join(SPLICE.findall(text)) + "\n" * text.count("\n")


def code_of(text):
    return NOT_CODE.sub(spliced, text)


def top_level(code):
    """The code outside of braces and brackets, and the names of types that stand in them."""
    out, inner, depth = [], [], 0
    for piece in re.split(r"([{}()\[\]])", code):
        if piece in ("{", "(", "["):
            out.append(piece if depth == 0 else "")
            depth += 1
        elif piece in ("}", ")", "]"):
            depth = max(depth - 1, 0)
            out.append(piece if depth == 0 else "")
        elif depth == 0:
            out.append(piece)
        else:
            inner.append(piece)
    return "".join(out), " ".join(inner)


def targets(repo, manifest):
    text = re.sub(r"(?m)^\s*//.*$", "", open(os.path.join(repo, manifest), errors="replace").read())
    folder = os.path.dirname(manifest)
    done = 0
    for start in TARGET.finditer(text):
        if start.start() < done:
            continue  # named as a dependency of the one before
        rest, depth, end = text[start.end():], 1, 0
        while depth and end < len(rest):
            depth += {"(": 1, ")": -1}.get(rest[end], 0)
            end += 1
        done = start.end() + end
        own = re.sub(r"\[[^\]]*\]", "", rest[:end])
        name = re.search(r'\bname:\s*"([^"]+)"', own)
        path = re.search(r'\bpath:\s*"([^"]+)"', own)
        if not name:
            continue
        places = [path[1]] if path else [f"{s}/{name[1]}" for s in ("Sources", "Source", "src",
                                                                  "Tests", "Plugins")]
        for place in places:
            yield os.path.normpath(os.path.join(folder, place)), name[1]


def main() -> None:
    repo = sys.argv[1]
    listed = subprocess.run(["git", "-C", repo, "ls-files", "-z"], capture_output=True, text=True,
                            check=True).stdout.split("\0")
    paths = [p for p in listed if p.endswith(".swift")]
    folders = {}
    for path in paths:
        if os.path.basename(path) == "Package.swift":
            for place, name in targets(repo, path):
                folders.setdefault(place, name)

    def module_of(path):
        folder = os.path.dirname(path)
        while folder and folder not in folders:
            folder = os.path.dirname(folder)
        return folders.get(folder, "")

    declared = collections.defaultdict(lambda: collections.defaultdict(set))
    files, handed_on = {}, collections.defaultdict(set)
    for path in paths:
        code = code_of(open(os.path.join(repo, path), encoding="utf-8", errors="replace").read())
        imports = IMPORT.findall(code)
        code = IMPORT.sub("", code)
        top, inner = top_level(code)
        own = set()
        for line in re.split(r"[\n;]", top):
            for found in DECLARED.finditer(line):
                name = found[1].strip("`")
                own.add(name)
                if not re.search(r"\b(?:private|fileprivate)\b(?!\(set)", line[:found.start()]):
                    declared[module_of(path)][name].add(path)
        nested = set(TYPES.findall(inner))
        heads = " ".join(re.findall(r":[^{\n]*", top))
        uses = collections.Counter()
        for word, call in WORD.findall(code):
            uses[word or call] += 1
        used = {u for u in uses if u not in own and (u not in nested or u in heads)}
        files[path] = ([module for _, module in imports], used)
        handed_on[module_of(path)] |= {m for before, m in imports if "@_exported" in before}

    known_modules = set(folders.values())
    for path, (imports, used) in files.items():
        known = [module_of(path)]
        for module in imports:
            if module in known_modules and module not in known:
                known.append(module)
        for module in known:
            known += sorted(m for m in handed_on[module] if m in known_modules and m not in known)
        targets_of = set()
        for name in used:
            for module in known:
                found = declared[module].get(name)
                if not found:
                    continue
                if len(found) == 1 or name[0].isupper():
                    near = max(len(os.path.commonprefix([os.path.dirname(f), os.path.dirname(path)]))
                               for f in found)
                    targets_of |= {f for f in found if len(os.path.commonprefix(
                        [os.path.dirname(f), os.path.dirname(path)])) == near}
                break
        for target in sorted(targets_of - {path}):
            print(path, target, sep="\t")


if __name__ == "__main__":
    main()
