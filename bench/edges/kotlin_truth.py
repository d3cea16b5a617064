#!/usr/bin/env python3
"""Prints which Kotlin and Java file names what of which other one, "source<TAB>target" a line.

    kotlin_truth.py REPOSITORY

There is no Kotlin compiler to ask, so this reads the sources itself, with a tokenizer and nothing
of the index: imports by their dotted names, names of the own package and of wildcard imports by the
types used, and a name that several modules declare by module and source set, as Gradle lays them
out: the own module first; of it what the file's platform and all platforms declare, without what is
only expected where the platform has the actual one.
"""

import collections
import os
import re
import subprocess
import sys

TOKEN = re.compile(r"[^\W\d]\w*|`[^`\n]+`|\d[\w.]*|\n|\S")
MODIFIERS = {"abstract", "actual", "annotation", "const", "data", "enum", "expect", "external",
             "final", "fun", "infix", "inline", "inner", "internal", "lateinit", "open", "operator",
             "override", "private", "public", "sealed", "suspend", "tailrec", "value"}
HARD = {"class", "interface", "object", "fun", "val", "var", "typealias", "enum"}


def blank(text, start, end, out):
    out.append(re.sub(r"[^\n]", " ", text[start:end]))


def code_of(text, kotlin):
    """The text without comments and string contents; templates stay."""
    out, i, n = [], 0, len(text)
    stack = []  # (closing quote, depth of braces) of the strings whose templates are open
    depth = 0

    def string(i, quote):
        nonlocal depth
        raw = quote == '"""'
        while i < n:
            if text[i] == "\\" and not (raw and kotlin):
                i += 2
            elif text.startswith(quote, i):
                while raw and text.startswith('"', i + 3):
                    i += 1
                out.append('"')
                return i + len(quote)
            elif text[i] == "\n" and not raw:
                return i
            elif kotlin and text.startswith("${", i):
                stack.append((quote, depth))
                depth = 0
                out.append(" { ")
                return i + 2
            elif kotlin and text[i] == "$" and i + 1 < n and (text[i + 1].isalpha()):
                m = re.compile(r"\w+").match(text, i + 1)
                out.append(" " + m[0] + " ")
                i = m.end()
            else:
                if text[i] == "\n":
                    out.append("\n")
                i += 1
        return i

    while i < n:
        c = text[i]
        if text.startswith("//", i):
            i = text.find("\n", i) if "\n" in text[i:] else n
        elif text.startswith("/*", i):
            level, i = 1, i + 2
            while i < n and level:
                if text.startswith("*/", i):
                    level, i = level - 1, i + 2
                elif kotlin and text.startswith("/*", i):
                    level, i = level + 1, i + 2
                else:
                    if text[i] == "\n":
                        out.append("\n")
                    i += 1
            out.append(" ")
        elif text.startswith('"""', i):
            out.append(' "')
            i = string(i + 3, '"""')
        elif c == '"':
            out.append(' "')
            i = string(i + 1, '"')
        elif c == "'":
            m = re.compile(r"'(\\u[0-9a-fA-F]{4}|\\.|[^'\\\n])'").match(text, i)
            out.append(" 0 ")
            i = m.end() if m else i + 1
        elif c == "}" and stack and depth == 0:
            quote, depth = stack.pop()
            out.append(" } ")
            i = string(i + 1, quote)
        else:
            if stack and c in "{}":
                depth += 1 if c == "{" else -1
            out.append(c)
            i += 1
    return "".join(out)


class Source:
    def __init__(self, repo, path):
        self.path = path
        self.kotlin = path.endswith((".kt", ".kts"))
        text = open(os.path.join(repo, path), encoding="utf-8", errors="replace").read()
        facade = re.search(r'@file:JvmName\("(\w+)"\)', text)
        tokens = [t.strip("`") if t[0] != "`" or " " not in t else "_"
                  for t in TOKEN.findall(code_of(text, self.kotlin))]
        self.package, self.imports = "", []  # imports: (dotted, wildcard, bound name)
        body = self.header(tokens)
        self.top, self.types, self.nested, self.actual = set(), set(), set(), set()
        self.declarations(body)
        if self.kotlin and any(t not in self.types for t in self.top):
            stem = os.path.basename(path).rsplit(".", 1)[0]
            self.top.add(facade[1] if facade else stem[:1].upper() + stem[1:] + "Kt")
        self.uses(body)

    def header(self, tokens):
        body, i, n = [], 0, len(tokens)
        started = False
        while i < n:
            if tokens[i] in ("package", "import") and (i == 0 or tokens[i - 1] in ("\n", ";")) and not started:
                end = i + 1
                while end < n and tokens[end] not in ("\n", ";"):
                    end += 1
                words = [t for t in tokens[i + 1:end] if t != "static"]
                bound = words[words.index("as") + 1] if "as" in words else None
                dotted = "".join(words[:words.index("as")] if "as" in words else words)
                if tokens[i] == "package":
                    self.package = dotted
                elif dotted.endswith(".*"):
                    self.imports.append((dotted[:-2], True, None))
                else:
                    self.imports.append((dotted, False, bound or dotted.split(".")[-1]))
                i = end
            else:
                started |= tokens[i] in HARD and tokens[i - 1] != ":"
                body.append(tokens[i])
                i += 1
        return body

    def declarations(self, body):
        depth = 0
        words = [t for t in body if t != "\n"]
        self.functions = {words[i + 1] for i, t in enumerate(words[:-1]) if t == "fun"}
        self.calls = {t for t, after in zip(words, words[1:])
                      if after in "({<" and re.match(r"[a-z]", t)}
        for i, t in enumerate(words):
            if t in "({[" and len(t) == 1:
                depth += 1
            elif t in ")}]" and len(t) == 1:
                depth -= 1
            before = words[i - 1] if i else ""
            hidden = depth == 0 and self.kotlin and self.modified(words, i, "private")
            if t in ("class", "interface", "object", "record", "enum") and before not in (".", ":"):
                name = words[i + 1] if i + 1 < len(words) else ""
                if t == "enum" and self.kotlin or not re.match(r"[^\W\d]", name):
                    continue
                if t == "record" and not re.match(r"[A-Z]", name):
                    continue
                if depth == 0 and not hidden:
                    self.top.add(name)
                    self.types.add(name)
                    self.note_actual(words, i, name)
                elif before != "@" or t == "interface":
                    self.nested.add(name)
            elif self.kotlin and t == "typealias":
                (self.top if depth == 0 and not hidden else self.nested).add(words[i + 1])
                self.note_actual(words, i, words[i + 1])
                self.types.add(words[i + 1])
            elif self.kotlin and depth == 0 and t in ("fun", "val", "var"):
                name = self.callable_name(words, i + 1)
                if name:
                    (self.nested if hidden else self.top).add(name)
                    self.note_actual(words, i, name)

    def note_actual(self, words, i, name):
        if self.kotlin and self.modified(words, i, "actual"):
            self.actual.add(name)

    @staticmethod
    def modified(words, i, modifier):
        while i and words[i - 1] in MODIFIERS:
            i -= 1
            if words[i] == modifier:
                return True
        return False

    @staticmethod
    def callable_name(words, i):
        """The last simple name before "(", ":", "=", "by" or the end, behind a receiver."""
        angle, name = 0, None
        while i < len(words):
            t = words[i]
            if t == "<":
                angle += 1
            elif t == ">":
                angle -= 1
            elif angle == 0:
                if re.match(r"[^\W\d]", t):
                    if name is not None and words[i - 1] not in (".", "?"):
                        return name
                    name = t
                elif t not in (".", "?", "@"):
                    return name
            i += 1
        return name

    def uses(self, body):
        self.used, self.chains = set(), set()
        words = [t for t in body if t != "\n"]
        i = 0
        while i < len(words):
            t = words[i]
            if not re.match(r"[^\W\d]", t):
                i += 1
                continue
            chain = [t]
            before = words[i - 1] if i else ""
            while i + 2 < len(words) and words[i + 1] == "." and re.match(r"[^\W\d]", words[i + 2]):
                chain.append(words[i + 2])
                i += 2
            if before != "." and not (before == "?" and False):
                if t[0].isupper():
                    self.used.add(t)
                elif len(chain) > 1:
                    self.chains.add(".".join(chain))
            i += 1


PLATFORM = re.compile(r"(.*?)/(common|concurrent|jdk8|jvm|js|jsAndWasmShared|native|nativeDarwin|"
                      r"nativeOther|wasmJs|wasmWasi|web)/(src|test)/")


def module_of(path):
    """The folder of the module, and the source set, named as Gradle's multiplatform sets are."""
    if found := PLATFORM.match(path):
        return found[1], found[2] + ("Main" if found[3] == "src" else "Test")
    head, sep, tail = path.partition("/src/")
    return (head, tail.split("/")[0]) if sep else ("", "")


def platform_of(part):
    """"jvm" of "jvmTest"; "" of what all platforms share."""
    platform = re.sub(r"(Test|Main|^test$|^main$)", "", part)
    return "" if platform in ("common", "concurrent") else platform


def sees(platform, shared):
    """Whether a set of sources is one that several platforms share, this one too."""
    return not shared or (platform and shared != platform and not shared.startswith("non")
                          and platform.lower() in shared.lower())


class Repository:
    def __init__(self, repo):
        listed = subprocess.run(["git", "-C", repo, "ls-files", "-z"], check=True,
                                capture_output=True).stdout.decode("utf-8", "surrogateescape")
        paths = [p for p in listed.split("\0") if p.endswith((".kt", ".kts", ".java"))
                 and os.path.isfile(os.path.join(repo, p))]
        self.files = [Source(repo, p) for p in sorted(paths)]
        self.declared = collections.defaultdict(list)  # (package, name): files
        for file in self.files:
            for name in () if file.path.endswith(".kts") else file.top:
                self.declared[file.package, name].append(file)

    def find(self, package, name, source):
        found = [f for f in self.declared.get((package, name), ()) if f is not source]
        if len(self.declared.get((package, name), ())) != len(found):
            return []  # it declares the name itself
        module, part = module_of(source.path)
        test = "test" in part.lower()
        if not test:
            product = [f for f in found if "test" not in module_of(f.path)[1].lower()]
            found = product
        own = [f for f in found if module_of(f.path)[0] == module]
        found = own or found
        platform = platform_of(part)
        own = [f for f in found if platform and platform_of(module_of(f.path)[1]) == platform]
        shared = [f for f in found if sees(platform, platform_of(module_of(f.path)[1]))]
        if any(name in f.actual for f in own):
            shared = []
        return own + shared or [f for f in found if name not in f.actual] or found

    def dotted(self, name, source):
        parts = name.split(".")
        for i in range(len(parts), 0, -1):
            if i == 1 < len(parts) and not parts[0][0].isupper():
                break  # what has no package is not imported by parts
            found = self.find(".".join(parts[:i - 1]), parts[i - 1], source)
            if found:
                return found
        return []

    def edges(self, source):
        bound = set()
        wildcards = []
        for dotted, wildcard, name in source.imports:
            if wildcard:
                wildcards.append(dotted)
                if not any(p == dotted for p, _ in self.declared):
                    yield from self.dotted(dotted, source)
            else:
                bound.add(name)
                yield from self.dotted(dotted, source)
        for name in source.used - bound - source.nested - source.top:
            for package in [source.package] + wildcards:
                found = self.find(package, name, source)
                if found:
                    yield from found
                    break
        for name in source.calls - bound - source.functions:
            for package in wildcards:
                yield from self.find(package, name, source)
        for chain in source.chains:
            yield from self.dotted(chain, source)


def main():
    repository = Repository(sys.argv[1])
    edges = set()
    for source in repository.files:
        for target in repository.edges(source):
            if target is not source:
                edges.add((source.path, target.path))
    for source, target in sorted(edges):
        print(f"{source}\t{target}")


if __name__ == "__main__":
    main()
