#!/usr/bin/env python3
"""Prints what a repository's C# files depend on: "source<TAB>target" lines.

No compiler: a lexer of its own, the declared types by their braces, and every name that its
neighbours show to be a type, looked up as the language defines it: by namespace from the inside
out, then by the directives in force there, global ones included. A file sees what its project and
those that it refers to declare. Knows nothing of the index.
"""

import collections
import re
import subprocess
import sys
import xml.etree.ElementTree as xml
from pathlib import Path, PurePosixPath

TOKEN = re.compile(
    r"""(?P<space>[ \t\r\f\v\ufeff]+)|(?P<line>\n)|(?P<comment>//[^\n]*|/\*.*?(?:\*/|\Z))
    |(?P<raw>\$*"{3,})|(?P<verbatim>(?:\$@|@\$|@)")|(?P<string>\$?")
    |(?P<char>'(?:\\[^\n]{1,10}?|[^\\\n])')|(?P<number>\d[\w.]*)|(?P<word>@?[^\W\d]\w*)
    |(?P<mark>::|=>|==|!=|<=|>=|\?\?|\?\.|->|&&|\|\||\+\+|--|.)""",
    re.X | re.S)
KEYWORDS = set("""abstract as base bool break byte case catch char checked class const continue
decimal default delegate do double else enum event explicit extern false finally fixed float for
foreach goto if implicit in int interface internal is lock long namespace new null object operator
out override params private protected public readonly ref return sbyte sealed short sizeof
stackalloc static string struct switch this throw true try typeof uint ulong unchecked unsafe ushort
using virtual void volatile while""".split())
BUILT_IN = set("bool byte char decimal double float int long object short string uint ulong"
               .split())
# Words that may follow a value, so that it is no type before a declared name.
INFIX = set("and or when switch with is as in ascending descending into on equals by select where "
            "orderby join let group not".split())

# What projects for the web import unsaid.
WEB = """Microsoft.AspNetCore.Builder Microsoft.AspNetCore.Hosting Microsoft.AspNetCore.Http
Microsoft.AspNetCore.Routing Microsoft.Extensions.Configuration Microsoft.Extensions.Hosting
Microsoft.Extensions.DependencyInjection Microsoft.Extensions.Logging""".split()


class Lexer:
    def __init__(self, text):
        self.text, self.out = text, []
        self.read(0, None)

    def read(self, at, close):
        """Reads up to the "}" that closes a hole of a string, or to the end."""
        text, depth, fresh = self.text, 0, True
        while at < len(text):
            if fresh and (found := re.compile(r"[ \t\ufeff]*#[ \t]*(\w*)[^\n]*").match(text, at)):
                if found[1] in ("if", "elif", "else", "endif"):
                    self.out.append("#" + found[1])
                at = found.end()
                continue
            found = TOKEN.match(text, at)
            kind, token, at = found.lastgroup, found[0], found.end()
            fresh = kind == "line" or (fresh and kind == "space")
            if kind in ("raw", "verbatim", "string"):
                at = self.read_string(kind, token, at)
            elif kind in ("word", "mark"):
                if close:
                    depth += {"{": 1, "}": -1}.get(token, 0)
                    if depth < 0:
                        return at
                self.out.append(token)
            elif kind in ("char", "number"):
                self.out.append('"')
        return at

    def read_string(self, kind, opening, at):
        self.out.append('"')
        text, holes = self.text, opening.count("$") if "$" in opening else 0
        end = '"' * opening.count('"') if kind == "raw" else '"'
        while at < len(text):
            if kind == "string" and text[at] == "\\":
                at += 2
            elif kind == "verbatim" and text.startswith('""', at):
                at += 2
            elif text.startswith(end, at):
                return at + len(end)
            elif holes and text.startswith("{" * (2 * holes), at) and kind != "raw":
                at += 2
            elif holes and text.startswith("{" * holes, at):
                at = self.read(at + holes, "}") + (holes - 1)
            elif kind == "string" and text[at] == "\n":
                return at
            else:
                at += 1
        return at


class Scope:
    def __init__(self, kind, name="", parent=None):
        # kinds: file, space, type, extension, body
        self.kind, self.name, self.parent = kind, name, parent
        self.usings, self.aliases, self.nested = [], {}, set()

    def spaces(self):
        """The scopes of namespaces around, from the inside out."""
        scope = self
        while scope:
            if scope.kind in ("space", "file"):
                yield scope
            scope = scope.parent


class Source:
    def __init__(self, path, text):
        self.path, self.tokens = path, Lexer(text).out
        self.types = {}          # (namespace, name, arity): whether partial
        self.extensions = set()  # (namespace, name)
        self.names, self.chains, self.calls = [], [], []  # with the scope that they stand in
        self.statics, self.values, self.methods = [], set(), set()
        self.global_usings, self.global_aliases = [], {}
        self.scan()

    def generic_end(self, at):
        """Where a list of type arguments that starts at "<" ends; 0 when it is none."""
        depth, i = 0, at
        while i < len(self.tokens):
            token = self.tokens[i]
            depth += {"<": 1, ">": -1}.get(token, 0)
            if depth == 0:
                return i + 1
            if token not in "<>,.?[]()*" and token not in ("::", "#if", "#else", "#endif") and \
                    not re.match(r"@?\w", token):
                return 0
            i += 1
        return 0

    def arity(self, at, end):
        depth, commas = 0, 0
        for token in self.tokens[at:end]:
            depth += {"<": 1, ">": -1, "(": 1, ")": -1, "[": 1, "]": -1}.get(token, 0)
            commas += token == "," and depth == 1
        return commas + 1

    def dotted(self, at):
        parts = []
        while at < len(self.tokens) and re.match(r"@?[^\W\d]", self.tokens[at]):
            if at + 1 < len(self.tokens) and self.tokens[at + 1] == "::":
                at += 2
                continue
            parts.append(self.tokens[at].lstrip("@"))
            at += 1
            if at >= len(self.tokens) or self.tokens[at] != ".":
                break
            at += 1
        return ".".join(parts), at

    def tok(self, at):
        return self.tokens[at] if 0 <= at < len(self.tokens) else ""

    def scan(self):
        scope = Scope("file")
        stack, conditions, pending, head = [scope], [], None, None
        i = 0
        while i < len(self.tokens):
            token, level = self.tokens[i], stack[-1].kind in ("file", "space", "type")
            if token == "#if":
                conditions.append((list(stack), pending, head))
            elif token in ("#else", "#elif") and conditions:
                stack, pending, head = list(conditions[-1][0]), *conditions[-1][1:]
            elif token == "#endif" and conditions:
                conditions.pop()
            elif token == "namespace" and level:
                name, i = self.dotted(i + 1)
                around = next(s.name for s in stack[-1].spaces())
                inner = Scope("space", f"{around}.{name}".strip("."), stack[-1])
                if self.tok(i) == ";":
                    stack.append(inner)
                else:
                    pending = inner
                    i -= 1
            elif token == "using" and stack[-1].kind in ("file", "space") and \
                    self.tok(i + 1) != "(":
                i = self.read_using(i, stack[-1])
            elif level and self.declares_type(i):
                i, pending, head = self.read_type(i, stack[-1])
                continue
            elif token == "extension" and stack[-1].kind == "type" and \
                    self.tok(i + 1) in ("(", "<"):
                pending = Scope("extension", "", stack[-1])
            elif token == "{":
                stack.append(pending or Scope("body", "", stack[-1]))
                pending, head = None, None
            elif token == "}":
                while len(stack) > 1 and stack[-1].kind == "space" and self.tok(i) != "}":
                    stack.pop()
                if len(stack) > 1:
                    stack.pop()
            elif token == ";":
                pending, head = None, None
            elif re.match(r"@?[^\W\d]", token) and token not in KEYWORDS:
                self.take(i, stack[-1], head, level)
            i += 1

    def declares_type(self, i):
        token, before = self.tokens[i], self.tok(i - 1)
        if token == "record":
            return bool(re.match(r"@?[^\W\d]", self.tok(i + 1))) and \
                (before in KEYWORDS or before in ("partial", "file", ";", "{", "}", "]", ""))
        if token == "delegate":
            return self.tok(i + 1) not in ("(", "{", "*")
        return token in ("class", "struct", "interface", "enum") and \
            before not in (":", ",", "record")

    def read_type(self, i, scope):
        word, partial = self.tokens[i], self.tok(i - 1) == "partial"
        i += 1
        if word == "record" and self.tok(i) in ("class", "struct"):
            i += 1
        if word == "delegate":
            start, depth = i, 0
            while self.tok(i) not in ("(", "") or depth or self.tok(i - 1) in ("delegate",):
                i = self.generic_end(i) if self.tok(i) == "<" and self.generic_end(i) else i + 1
            name_at = i - 1
            if self.tok(name_at) == ">":
                name_at = next(k for k in range(i - 2, start, -1) if self.generic_end(k) == i) - 1
            self.declare(scope, self.tok(name_at), name_at + 1)
            for k in range(start, name_at):
                if re.match(r"@?[^\W\d]", self.tokens[k]) and self.tokens[k] not in KEYWORDS:
                    self.add_type(k, scope)
            return i, None, None
        name_at = i
        self.declare(scope, self.tok(i), i + 1, partial)
        i += 1
        if self.tok(i) == "<":
            i = self.generic_end(i) or i + 1
        inner = Scope("type", self.tok(name_at), scope)
        return i, inner, inner

    def declare(self, scope, name, after, partial=False):
        name = name.lstrip("@")
        end = self.generic_end(after) if self.tok(after) == "<" else 0
        key = (name, self.arity(after, end) if end else 0)
        for token in self.tokens[after:end]:
            self.values.add(token)
        if scope.kind in ("file", "space"):
            self.types[scope.name, *key] = partial
        elif scope.kind == "type":
            scope.nested.add(key)

    def read_using(self, i, scope):
        world = self.tok(i - 1) == "global"
        i += 1
        fixed = self.tok(i) == "static"
        i += fixed
        alias = ""
        if self.tok(i + 1) == "=":
            alias, i = self.tok(i).lstrip("@"), i + 2
        name, i = self.dotted(i)
        end = self.generic_end(i) if self.tok(i) == "<" else 0
        arity = self.arity(i, end) if end else 0
        usings = self.global_usings if world else scope.usings
        if alias:
            (self.global_aliases if world else scope.aliases)[alias] = (name, arity)
        elif name:
            usings.append((name, fixed))
        while self.tok(i) not in (";", ""):
            i += 1
        return i

    def take(self, i, scope, head, level):
        word, before, after = self.tokens[i], self.tok(i - 1), self.tok(i + 1)
        name = word.lstrip("@")
        if before in (".", "?.", "->"):
            end = self.generic_end(i + 1) if after == "<" else 0
            if self.tok(end or i + 1) == "(":
                self.calls.append((name, scope))
            if end:
                self.take_arguments(i + 1, end, scope)
            return
        if scope.kind == "extension" and after in ("(", "<") and re.match(r"@?\w|[>\]?]", before):
            self.extensions.add((next(s.name for s in scope.spaces()), name))
        if level and after == "(" and (re.match(r"@?\w|[>\]?]", before)) and before != "new":
            if self.tok(i + 2) == "this":
                spaces = next(s.name for s in scope.spaces())
                self.extensions.add((spaces, name))
            else:
                self.methods.add(name)
        if level and after == "<" and (end := self.generic_end(i + 1)) and self.tok(end) == "(":
            if self.tok(end + 1) == "this":
                self.extensions.add((next(s.name for s in scope.spaces()), name))
        if re.match(r"@?\w|[>\]?]", before) and before not in KEYWORDS - BUILT_IN and \
                before not in INFIX | {"await", "return", "async", "partial", "var"} and \
                (after in ("{", ";", "=", ",", ")", "=>") or after == "in"):
            self.values.add(name)
            return
        if before == "var":
            self.values.add(name)
            return
        if self.is_type(i, scope, head, level):
            self.add_type(i, scope)

    def take_arguments(self, at, end, scope):
        for k in range(at, end):
            if re.match(r"@?[^\W\d]", self.tokens[k]) and self.tokens[k] not in KEYWORDS \
                    and self.tok(k - 1) in ("<", ",", "(", "::"):
                self.add_type(k, scope)

    def is_type(self, i, scope, head, level):
        before, after = self.tok(i - 1), self.tok(i + 1)
        if head and before in (":", ","):
            return True
        if after == ".":
            return True
        if before in ("{", ",") and after == "=>" and not level:
            return True
        if before == ":" and self.tok(i - 3) == "where":
            return True
        if before in ("new", "is", "as", "not", "operator", "::") or \
                (before in ("or", "and") and after not in (".",)):
            return True
        if before == "(" and self.tok(i - 2) in ("typeof", "default", "sizeof", "nameof", "catch"):
            return True
        if before in ("[", ",") and level and after in ("(", "]", ","):
            return self.in_attribute(i)
        if before in ("[", ",") and after in ("(", "]") and self.in_attribute(i):
            return True
        end = i + 1
        if after == "<":
            end = self.generic_end(i + 1)
            if not end:
                return False
            if before in ("[", ",") and self.tok(end) in ("(", "]", ",") and self.in_attribute(i):
                return True
            if self.tok(end) == "(":
                self.take_arguments(i + 1, end, scope)
                return False
            if self.tok(end) in (".", ")", ">", ","):
                return True
        while self.tok(end) in ("?", "[", "*"):
            if self.tok(end) == "[":
                if self.tok(end + 1) not in ("]", ","):
                    return False
                while self.tok(end) not in ("]", ""):
                    end += 1
            elif self.tok(end) == "?" and self.tok(end + 2) not in ("{", ";", "=", ",", ")", "=>",
                                                                    "(", "in", "<"):
                return self.tok(end + 1) in (">", ")", ",", "[", "]")
            end += 1
        following = self.tok(end)
        if end > i + 1 and following in (")", ">", ",", "{", "("):
            return after != "?" or following != "("
        if re.match(r"@?[^\W\d]", following):
            return (following not in INFIX or self.tok(end + 1) in (",", ")", ";", "=")) and \
                (following not in KEYWORDS or following in ("this", "operator"))
        if before == "(" and following == ")":
            nxt = self.tok(end + 1)
            return nxt in ("(", '"', "!", "~") or bool(re.match(r"@?[^\W\d]", nxt)) and \
                (nxt not in KEYWORDS or nxt in ("this", "new", "null", "default", "base", "typeof",
                                                 "true", "false")) and nxt not in INFIX
        return False

    def in_attribute(self, i):
        depth = 0
        for k in range(i - 1, max(i - 60, -1), -1):
            token = self.tokens[k]
            if token in (")", "]"):
                depth += 1
            elif token == "(":
                if depth == 0:
                    return False
                depth -= 1
            elif token == "[":
                if depth == 0:
                    opens = self.tok(k - 1)
                    places = ("", ";", "{", "}", "]", "(", ",", "=>", "#endif", "#if", ":", "<")
                    return opens in places and not (opens in ("(", ",") and self.tok(k + 1) == '"')
                depth -= 1
            elif token in (";", "{", "}"):
                return False
        return False

    def add_type(self, i, scope):
        token, after = self.tokens[i].lstrip("@"), self.tok(i + 1)
        end = self.generic_end(i + 1) if after == "<" else 0
        if end:
            self.take_arguments(i + 1, end, scope)
        if after == "::":
            return
        chain, _ = self.dotted(i)
        if "." in chain:
            self.chains.append((chain, scope))
        attribute = self.tok(i - 1) in ("[", ",", ":") and self.in_attribute(i)
        key = (token, self.arity(i + 1, end) if end else 0)
        if after == ".":
            self.statics.append((key, scope))
        else:
            self.names.append((key, scope, attribute))


class Projects:
    def __init__(self, repo, files):
        self.folders, self.refers, self.usings = {}, collections.defaultdict(set), {}
        for file in files:
            if file.endswith(".csproj"):
                self.folders[str(PurePosixPath(file).parent)] = file
        for folder, file in self.folders.items():
            self.usings[folder] = []
            shared = [f for f in files if PurePosixPath(f).name == "Directory.Build.props" and
                      (PurePosixPath(f).parent == PurePosixPath(".") or
                       folder.startswith(str(PurePosixPath(f).parent)))]
            for path in [file, *shared]:
                self.read(repo, folder, path)
        self.closure = {folder: self.reach(folder) for folder in self.folders}

    def read(self, repo, folder, path):
        try:
            root = xml.fromstring((repo / path).read_text(encoding="utf-8-sig"))
        except xml.ParseError:
            return
        if root.get("Sdk", "").endswith(".Web"):
            self.usings[folder] += [(name, False, None) for name in WEB]
        for node in root.iter():
            kind, value = node.tag.rsplit("}")[-1], node.get("Include")
            if kind == "Using" and value:
                self.usings[folder].append((value, node.get("Static") == "true", node.get("Alias")))
            elif kind in ("PackageReference", "Reference") and value:
                self.refers[folder].update(
                    f for f, p in self.folders.items() if PurePosixPath(p).stem == value)
            elif kind in ("ProjectReference", "Compile") and value:
                target = normal(PurePosixPath(path).parent, value.replace("\\", "/"))
                self.refers[folder].add(self.of(target))

    def of(self, path):
        for parent in PurePosixPath(path).parents:
            if str(parent) in self.folders:
                return str(parent)
        return ""

    def reach(self, folder):
        seen, todo = {folder}, [folder]
        while todo:
            for other in self.refers[todo.pop()] - seen:
                seen.add(other)
                todo.append(other)
        return seen | {""}


def normal(folder, relative):
    parts = []
    for part in [*folder.parts, *relative.split("/")]:
        if part == "..":
            parts and parts.pop()
        elif part not in (".", ""):
            parts.append(part)
    return "/".join(parts)


class World:
    def __init__(self, repo):
        listed = subprocess.run(["git", "-C", repo, "ls-files", "-z"], capture_output=True,
                                text=True)
        files = [f for f in listed.stdout.split("\0") if f and (repo / f).is_file()]
        self.projects = Projects(repo, files)
        self.sources, self.types = [], collections.defaultdict(list)
        self.extensions, self.spaces = collections.defaultdict(list), set()
        self.partial = collections.defaultdict(lambda: True)
        self.looked = {}
        usings = collections.defaultdict(list)
        for file in files:
            if not file.endswith(".cs"):
                continue
            try:
                source = Source(file, (repo / file).read_text(encoding="utf-8-sig"))
            except (UnicodeDecodeError, RecursionError, StopIteration):
                print(f"skipped\t{file}", file=sys.stderr)
                continue
            self.sources.append(source)
            project = self.projects.of(file)
            usings[project] += [(n, fixed, None) for n, fixed in source.global_usings]
            aliases = source.global_aliases
            usings[project] += [(n, False, alias) for alias, (n, _) in aliases.items()]
            for key, partial in source.types.items():
                self.types[key].append(file)
                self.partial[key] &= partial
                for end in range(len(key[0].split(".")) + 1):
                    self.spaces.add(".".join(key[0].split(".")[:end]))
            for key in source.extensions:
                self.extensions[key].append(file)
        for folder, found in self.projects.usings.items():
            usings[folder] += found
        self.usings = usings
        self.extended = {name for _, name in self.extensions}
        self.by_path = {source.path: source for source in self.sources}

    def files_of(self, table, key, source):
        inside = any(t[0].startswith("System") for t in source.types)
        if key[0].split(".")[0] == "System" and not inside:
            return []
        project = self.projects.of(source.path)
        visible = self.projects.closure.get(project)
        found = [f for f in table.get(key, ()) if not visible or self.projects.of(f) in visible]
        own = [f for f in found if self.projects.of(f) == project]
        if own and not self.partial[key]:
            # Each platform of a project has its own.
            here = [f for f in own if PurePosixPath(f).parent == PurePosixPath(source.path).parent]
            own = here or own
        homes = {self.projects.of(f) for f in found}
        found = own or (found if len(homes) == 1 else [])
        # A type in very many files is the one named after it.
        main = [f for f in found if PurePosixPath(f).stem == key[1]]
        return main if len(found) > 8 and len(main) == 1 else found

    def look(self, key, scope, source):
        if (found := self.looked.get((key, scope))) is None:
            found = self.looked[key, scope] = self.look_up(key, scope, source)
        return found

    def look_up(self, key, scope, source):
        name, arity = key
        inside = scope
        while inside:
            if key in inside.nested:
                return [source.path]
            inside = inside.parent
        for space in scope.spaces():
            around = space.name
            until = next(space.parent.spaces()).name if space.parent else None
            while True:
                if found := self.files_of(self.types, (around, name, arity), source):
                    return found
                if around == until or not around:
                    break
                around = around.rpartition(".")[0]
            if name in space.aliases:
                return self.full(*space.aliases[name], source)
            if found := self.imported(space, name, arity, source):
                return found
        return []

    def directives(self, space, source):
        names = list(space.usings)
        if space.kind == "file":
            project = self.projects.of(source.path)
            names += [(n, f) for n, f, alias in self.usings[project] if not alias]
        for name, fixed in names:
            if fixed:
                continue
            around = space.name
            while around:
                if f"{around}.{name}" in self.spaces:
                    yield f"{around}.{name}"
                around = around.rpartition(".")[0]
            yield name

    def imported(self, space, name, arity, source):
        if space.kind == "file":
            for full, _, alias in self.usings[self.projects.of(source.path)]:
                if alias == name:
                    return self.full(full, 0, source)
        for target in self.directives(space, source):
            if found := self.files_of(self.types, (target, name, arity), source):
                return found
        return []

    def full(self, name, arity, source, least=0):
        parts = name.split(".")
        for end in range(len(parts), least, -1):
            for count in [arity] if arity else range(5):
                key = (".".join(parts[:end - 1]), parts[end - 1], count)
                if found := self.files_of(self.types, key, source):
                    return found
        return []

    def edges(self, source):
        targets = set()
        everything = {}
        for key, scope, attribute in set(source.names):
            found = attribute and self.look((key[0] + "Attribute", key[1]), scope, source)
            targets.update(found or self.look(key, scope, source))
        for key, scope in set(source.statics):
            if key[0] not in source.values:
                targets.update(self.look(key, scope, source))
        for chain, scope in source.chains:
            if (found := everything.get((chain, scope))) is None:
                found = everything[chain, scope] = self.chain(chain, scope, source)
            targets.update(found)
        methods = set().union(*(self.by_path[t].methods for t in targets), source.methods)
        for name, scope in set(source.calls):
            if name not in methods and name in self.extended:
                targets.update(self.extension(name, scope, source))
        for key, partial in source.types.items():
            if partial:
                targets.update(self.files_of(self.types, key, source))
        for scope in {s for _, s, _ in source.names} | {s for _, s in source.calls}:
            for space in scope.spaces():
                for name, fixed in space.usings:
                    if fixed:
                        targets.update(self.full(name, 0, source))
                for name, arity in space.aliases.values():
                    targets.update(self.full(name, arity, source))
        for name, fixed in source.global_usings:
            if fixed:
                targets.update(self.full(name, 0, source))
        for name, arity in source.global_aliases.values():
            targets.update(self.full(name, arity, source))
        return targets - {source.path}

    def chain(self, chain, scope, source):
        first, _, rest = chain.partition(".")
        for space in scope.spaces():
            if first in space.aliases:
                return self.full(f"{space.aliases[first][0]}.{rest}", 0, source)
        around = next(scope.spaces()).name
        while True:
            base = f"{around}.{first}".strip(".")
            if base in self.spaces:
                least = base.count(".") + 1
                if found := self.full(f"{base}.{rest}", 0, source, least):
                    return found
            if not around:
                return []
            around = around.rpartition(".")[0]

    def extension(self, name, scope, source):
        """A method called on something, when one file in sight extends types by that name."""
        found = set()
        for space in scope.spaces():
            around = space.name
            while True:
                found.update(self.files_of(self.extensions, (around, name), source))
                if not around:
                    break
                around = around.rpartition(".")[0]
            for target in self.directives(space, source):
                found.update(self.files_of(self.extensions, (target, name), source))
        return found if len(found) == 1 else []


def main():
    sys.setrecursionlimit(10000)
    world = World(Path(sys.argv[1]))
    for source in world.sources:
        for target in sorted(world.edges(source)):
            print(f"{source.path}\t{target}")


main()
