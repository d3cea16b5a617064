#!/usr/bin/env python3
"""Prints which Rust file names what of which other one, "source<TAB>target" a line.

    rust_truth.py REPOSITORY

rustc names no files without the libraries, so the sources are read here with regular expressions and
a table of names per module, independently of the index: cargo's targets, mod declarations, and every
path of use declarations and code. A path depends on the file of the innermost module that it names,
and on the file that declares the name when that module hands it on. Files that no target reaches
are named on stderr, "unseen<TAB>path".
"""
import os
import re
import subprocess
import sys
import tomllib

TOKEN = re.compile(
    r"//[^\n]*|/\*.*?\*/|b?r(#*)\".*?\"\1|b?\"(?:\\.|[^\"\\])*\"|'(?:\\[^']*|[^'\\])'"
    r"|r#\w+|\$?\w+|::|[{}();,*#!\[\]=]|\S", re.S)
ITEMS = {"struct", "enum", "union", "trait", "fn", "const", "static", "type", "macro_rules"}
NONE = {"std", "core", "alloc", "Self"}


class Module:
    def __init__(self, crate, path, file):
        self.crate, self.path, self.file = crate, path, file
        self.children, self.items, self.uses, self.paths = {}, set(), [], []


class Crate:
    def __init__(self, package):
        self.package, self.renamed, self.root = package, {}, None


def tokens(text):
    found = []
    for match in TOKEN.finditer(text):
        word = match[0]
        if word.startswith(("//", "/*")):
            continue
        found.append(word)
    return found


def use_tree(words, at, prefix):
    """(leaves, index behind); a leaf is (path, alias)."""
    leaves, path = [], list(prefix)
    while at < len(words):
        word = words[at]
        if word == "{":
            at += 1
            while words[at] != "}":
                inner, at = use_tree(words, at, path)
                leaves += inner
                if words[at] == ",":
                    at += 1
            return leaves, at + 1
        if word == "::":
            at += 1
        elif word in (",", ";", "}"):
            break
        elif word == "as":
            return leaves + [(path, words[at + 1])], at + 2
        else:
            path = path + [word.removeprefix("r#")]
            at += 1
    if path[-1] == "self" and len(path) > 1:
        path = path[:-1]
    return leaves + [(path, path[-1])], at


class Reader:
    def __init__(self, repo, files):
        self.repo, self.files, self.mods, self.done = repo, files, [], {}

    def read(self, crate, file, path, folder):
        """The module of a file, with its inline modules and those that it declares."""
        if (id(crate), file, tuple(path)) in self.done or len(path) > 30:
            return None
        module = Module(crate, path, file)
        self.done[id(crate), file, tuple(path)] = module
        text = open(os.path.join(self.repo, file), errors="replace").read()
        self.body(tokens(text), 0, module, folder, os.path.dirname(file), 0)
        return module

    def child(self, module, name, folder, odd):
        places = [odd] if odd else [f"{folder}/{name}.rs", f"{folder}/{name}/mod.rs"]
        for place in map(os.path.normpath, places):
            if place not in self.files:
                continue
            below = os.path.dirname(place) if os.path.basename(place) == "mod.rs" or odd and \
                os.path.basename(place) == "mod.rs" else place[:-3]
            module.paths.append((None, place))
            child = self.read(module.crate, place, module.path + [name], below)
            if child:
                module.children[name] = child
            return

    def body(self, words, at, module, folder, own_folder, depth):
        """Reads up to the closing brace of the module."""
        braces, odd, public = 0, None, False
        while at < len(words):
            word = words[at]
            if word == "#" and words[at + 1:at + 2] == ["["]:
                end, level = at + 1, 0
                while end < len(words):
                    level += (words[end] == "[") - (words[end] == "]")
                    if level == 0:
                        break
                    if words[end] == "path" and words[end + 1] == "=":
                        odd = os.path.join(folder if depth else own_folder, words[end + 2].strip('"'))
                    end += 1
                for path in re.findall(r"[a-z]\w*(?:::\w+)+", "".join(words[at:end])):
                    if path.split("::")[0] not in NONE:
                        module.paths.append((path.split("::"), None))
                at = end + 1
                continue
            if word == "pub":
                public = True
                if words[at + 1] == "(":
                    at = words.index(")", at)
                at += 1
                continue
            if word == "use":
                leaves, at = use_tree(words, at + 1, [])
                for path, alias in leaves:
                    module.uses.append((path, alias, public))
            elif word == "mod" and at + 2 < len(words) and words[at + 2] in ";{":
                name = words[at + 1].removeprefix("r#")
                if words[at + 2] == ";":
                    self.child(module, name, folder, odd)
                    at += 3
                else:
                    inner = Module(module.crate, module.path + [name], module.file)
                    module.children[name] = inner
                    at = self.body(words, at + 3, inner, f"{folder}/{name}", own_folder, depth + 1)
            elif word in "{}":
                braces += 1 if word == "{" else -1
                at += 1
                if braces < 0:
                    break
            else:
                if braces == 0 and word in ITEMS and at + 1 < len(words):
                    skip = 2 if words[at + 1] in ("!", "mut") else 1
                    module.items.add(words[at + skip])
                if word == "extern" and words[at + 1] == "crate":
                    module.uses.append(([words[at + 2]], words[at + 2], False))
                end = at
                path = [word.removeprefix("$")]
                while words[end + 1:end + 2] == ["::"] and re.match(r"\w", (words[end + 2:] or [""])[0]):
                    path.append(words[end + 2])
                    end += 2
                if len(path) > 1 and re.match(r"[a-z]", path[0]) and path[0] not in NONE:
                    module.paths.append((path, None))
                at = end + 1
            odd, public = None, False
        return at


def cargo_targets(repo, files):
    crates, libraries, workspace = [], {}, {}
    for manifest in sorted(f for f in files if os.path.basename(f) == "Cargo.toml"):
        folder = os.path.dirname(manifest)
        try:
            data = tomllib.load(open(os.path.join(repo, manifest), "rb"))
        except tomllib.TOMLDecodeError:
            continue
        renamed = {}
        tables = [data] + [data.get("workspace", {})] + list(data.get("target", {}).values())
        for table in tables:
            for kind in ("dependencies", "dev-dependencies", "build-dependencies"):
                for name, value in table.get(kind, {}).items():
                    if isinstance(value, dict) and "package" in value:
                        renamed[name.replace("-", "_")] = value["package"].replace("-", "_")
        workspace.update(renamed if "workspace" in data else {})
        if "package" not in data:
            continue
        roots = [("lib", data.get("lib", {}).get("path", "src/lib.rs")), ("", "src/main.rs"), ("", "build.rs")]
        for kind, places in (("bin", "src/bin"), ("test", "tests"), ("example", "examples"), ("bench", "benches")):
            roots += [("", t["path"]) for t in data.get(kind, []) if "path" in t]
            for file in sorted(files):
                rest = os.path.relpath(file, os.path.join(folder, places)) if folder or True else file
                if file.endswith(".rs") and (rest.count("/") == 0 or rest.count("/") == 1 and rest.endswith("/main.rs")) \
                        and not rest.startswith(".."):
                    roots.append(("", os.path.relpath(file, folder or ".")))
        for kind, path in roots:
            root = os.path.normpath(os.path.join(folder, path))
            if root not in files or any(c.root_file == root for c in crates):
                continue
            crate = Crate(folder)
            crate.renamed, crate.root_file = renamed, root
            crates.append(crate)
            if kind == "lib":
                name = data.get("lib", {}).get("name", data["package"]["name"])
                libraries.setdefault(name.replace("-", "_"), crate)
    return crates, libraries, workspace


class World:
    def __init__(self, repo, files):
        self.crates, self.libraries, self.workspace = cargo_targets(repo, files)
        self.reader = Reader(repo, files)
        for crate in self.crates:
            crate.root = self.reader.read(crate, crate.root_file, [], os.path.dirname(crate.root_file))

    def library(self, module, name):
        name = module.crate.renamed.get(name) or self.workspace.get(name, name)
        crate = self.libraries.get(name)
        return crate.root if crate else None

    def at(self, crate, path):
        module = crate.root
        for name in path:
            module = module.children.get(name) if module else None
        return module

    def start(self, module, path, seen):
        """(module, rest of the path)"""
        first, rest = path[0], path[1:]
        if first == "crate":
            return module.crate.root, rest
        if first == "self":
            return module, rest
        if first == "super":
            up = self.at(module.crate, module.path[:-1])
            while rest and rest[0] == "super" and up:
                up, rest = self.at(module.crate, up.path[:-1]), rest[1:]
            return up, rest
        if first in module.children:
            return module, path
        for used, alias, _ in module.uses:
            if alias == first and used != path[:1] and (id(module), first) not in seen:
                found = self.lookup(module, used, seen | {(id(module), first)})
                if isinstance(found[-1], Module):
                    return found[-1], rest
        root = self.library(module, first)
        if root:
            return root, rest
        if first in module.crate.root.children:
            return module.crate.root, path
        return None, path

    def lookup(self, module, path, seen=frozenset()):
        """The modules that a path leads through to the one that declares it; ends in that module
        itself when the path names a module."""
        if path[-1] == "*":
            path = path[:-1]
            if not path:
                return [None]
        here, rest = self.start(module, path, seen)
        if here is None:
            return [None]
        while rest and rest[0] in here.children:
            here, rest = here.children[rest[0]], rest[1:]
        if not rest:
            return [here.file, here]
        name = rest[0]
        if name in here.items or (id(here), name) in seen or len(seen) > 6:
            return [here.file, None]
        seen = seen | {(id(here), name)}
        for used, alias, public in here.uses:
            if public and alias == name:
                found = self.lookup(here, used + rest[1:], seen)
                return [here.file] + ([f for f in found if isinstance(f, str)][-1:] or []) + [None]
        for used, alias, public in here.uses:
            if public and used[-1] == "*" and len(used) > 1:
                found = self.lookup(here, used[:-1] + rest, seen)
                last = [f for f in found if isinstance(f, str)]
                if last and (isinstance(found[-1], Module) or len(found) > 2 or
                             self.declares(last[-1], name) or self.declares(last[-1], rest[-1])):
                    return [here.file, last[-1], None]
        return [here.file, None]

    def declares(self, file, name):
        return any(m.file == file and name in m.items for m in self.modules())

    def modules(self):
        pending = [c.root for c in self.crates if c.root]
        while pending:
            module = pending.pop()
            yield module
            pending += module.children.values()

    def edges(self):
        for module in self.modules():
            for path, file in module.paths:
                targets = [file] if file else self.lookup(module, path)
                yield from ((module.file, t) for t in targets if isinstance(t, str))
            for path, _, _ in module.uses:
                yield from ((module.file, t) for t in self.lookup(module, path) if isinstance(t, str))


def main():
    repo = os.path.realpath(sys.argv[1])
    out = subprocess.run(["git", "-C", repo, "ls-files", "-co", "--exclude-standard", "-z"],
                         check=True, capture_output=True).stdout
    files = {f for f in out.decode(errors="surrogateescape").split("\0") if f}
    world = World(repo, files)
    reached = {m.file for m in world.modules()}
    for path in sorted(f for f in files if f.endswith(".rs") and f not in reached):
        print("unseen", path, sep="\t", file=sys.stderr)
    for source, target in sorted({(s, t) for s, t in world.edges() if s != t}):
        print(source, target, sep="\t")


if __name__ == "__main__":
    sys.setrecursionlimit(10000)
    sys.exit(main())
