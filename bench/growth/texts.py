"""Repositories that grow with a number: tokens in rows, and products of what resolvers count."""

import itertools

LINE = 16  # tokens; longer lines would be taken for minified code


def rows(text, count):
    return "".join(text + ("\n" if i % LINE == LINE - 1 else "") for i in range(count))


def each(pattern, count):
    return "".join(pattern.format(i=i, j=i + 1, n=count) for i in range(count))


def files(path, text, count):
    return {path.format(i=i): text.format(i=i, j=(i + 1) % count, k=(7 * i + 3) % count, n=count)
            for i in range(count)}


BRACKETS = ["(", ")", "[", "]", "{", "}", "<", ">"]
SIGNS = ["'", '"', "`", "=", "*", "/", ",", ";", ":", ".", "-", "!", "?", "@", "#", "\\", "\n", " "]
WORDS = ["a", "A", "0", "a.b", "// a\n", "/*", "*/"]
CURLY = ["class A{", "if(a)", "new ", "return ", "=>", "f(", "a<", "a?", "<<"]

TOKENS = {
    "py": ["class A:\n", "def a():\n", "if a:\n ", "lambda:", 'f"{', '"""', "import a\n",
           "from a import b\n", "not ", "async ", "@a\n", "# a\n", " for a in "],
    "js": CURLY + ["function a(){", "`${", "()=>", "<a>", "import a from", "export * from 'a'\n",
                   "async ", "...", "/[", "[/"],
    "tsx": CURLY + ["type A=", "<a b={", "interface A{", "as ", "{a:", "enum A{", "abstract "],
    "java": CURLY + ["import a.*;\n", "@A(", "(A)", "->", "enum A{", "record A(", "package a;"],
    "kt": CURLY + ["fun a(){", '"${', "import a\n", "?.", "val a=", "@A(", "by ", "companion "],
    "scala": CURLY + ["def a=", "import a\n", "case ", 's"${', "given ", "extends ", "object A{"],
    "go": ["func(){", "map[", "[]", "struct{", "interface{", "chan ", "import \"a\"\n", "a[", "f(",
           "type A ", "package a\n", "func (a A) b(){", "*", "go ", "<-"],
    "rs": ["fn a(){", "mod a{", "mod a;", "use a::b;", "impl A{", "m!(", "#[a(", "|a|", "a::<", "&",
           "r#\"", "'a ", "=>", "where ", "pub "],
    "c": ["struct a{", "#if a\n", "#include \"a\"\n", "#define a \\\n", "sizeof ", "a[", "f(",
          "typedef ", "\\\n", "enum{", "a,"],
    "cpp": ["namespace a{", "class A{", "template<", "[](){", "a::", "new ", "decltype(", "f(",
            "R\"(", "operator", "#if a\n", "using ", "::", "a<"],
    "cs": CURLY + ["using a;", "using a.0", "enum A{", "record A(", '$"{', '@"', "#if a\n", "[A(",
                   "namespace a;", "(A)", "where "],
    "rb": ["module A\n", "class A\n", "def a\n", '"#{', "->{", "if a\n", "<<A\n", "A::", "a ? ", "f ",
           "do |a|\n", ":a", "%w(", "end\n", "=begin\n", "require 'a'\n"],
    "php": ["<?php ", "?>", "function(){", '"{$', "fn()=>", "$a", "use A\\B;", "<<<A\n", "class A{",
            "new ", "->", "f("],
    "sql": ["create table a(", "create ", "a int,", "--a\n", "'"],
    "md": ["[", "](", "`", "```\n", "> ", "- ", "#", "<a>", "*", "_", "!["],
    "json": ['{"a":', "[", '"', ","],
    "yaml": ["- ", "a: ", "a:\n ", "{", "&a ", "*a ", "|\n"],
    "toml": ["[a.", "a=[", "a={b=", '"""', "[[a]]\n"],
    "prisma": ["model A {\n", "enum A {\n"],
    "proto": ["message A {\n", "rpc A(B)"],
}


def pairs():
    """Every two tokens of a language, in turns and in two rows."""
    for extension, own in TOKENS.items():
        tokens = own + BRACKETS + SIGNS + WORDS
        start = "<?php " if extension == "php" else ""
        for a, b in itertools.product(own, tokens):
            def turns(n, path=f"a.{extension}", start=start, a=a, b=b):
                return {path: start + rows(a + b, n)}

            def in_rows(n, path=f"a.{extension}", start=start, a=a, b=b):
                return {path: start + rows(a, n) + rows(b, n)}

            yield f"{extension} turns {a!r} {b!r}", turns
            yield f"{extension} rows {a!r} {b!r}", in_rows


GO = {"go.mod": "module m\n"}
DEEP = "d/" * 100


def rust_modules(n):
    twice = '#[path="f{j}.rs"] mod x; #[path="f{j}.rs"] mod y;'
    return {"src/lib.rs": '#[path="f0.rs"] mod a;', **files("src/f{i}.rs", twice, n)}


def list_of(items):
    return "[" + ",".join(items) + "]"


# Names, and the repository of a size.
PRODUCTS = {
    "rust modules by two ways": rust_modules,
    "rust uses, globs": lambda n: {
        "src/lib.rs": "mod m;\n" + each("use self::m::*;\nuse q{i}::r{i};\n", n), "src/m.rs": ""},
    "rust names, hub": lambda n: {
        "src/lib.rs": "mod h; mod m;\n" + each("use crate::h::n{i};\n", n),
        "src/h.rs": each("pub use crate::m::n{i};\n", n), "src/m.rs": each("pub fn n{i}(){{}}\n", n)},
    "ruby modules, constants": lambda n: {
        "a.rb": each("module M{i}\nend\n", n) + each("X{i}.foo\n", n)},
    "ruby parts of one name": lambda n: {"a.rb": "module " + "A::" * n + "A\nend\n"},
    "c includes, uses": lambda n: {
        "a.c": '#include "a.h"\n' * n + "void f(void){" + each("u{i}();\n", n) + "}",
        "a.h": each("void u{i}(void);\n", n)},
    "c headers that include all": lambda n: {
        "all.h": each('#include "m{i}.h"\n', n),
        **files("m{i}.h", '#include "all.h"\nint f{i}(int a) {{ return f{j}(a)+z{i}; }}', n)},
    "java wildcards, names": lambda n: {
        "a/A.java": "package a;" + each("import b{i}.*;\n", n) + "class A{" +
        each("N{i} x{i};\n", n) + "}", **files("b{i}/B.java", "package b{i}; class B {{}}", n)},
    "kotlin one wildcard, names": lambda n: {
        "a/A.kt": "package a\n" + "import b.*\n" * n + "class A{" + each("val x{i}: N{i}\n", n) + "}",
        "b/B.kt": "package b\nclass B"},
    "typescript stars, names": lambda n: {
        "a.ts": "export * from './b';\n" * n, "b.ts": each("export const c{i}=1;\n", n),
        "c.ts": "import {" + each("d{i},", n) + "} from './a'"},
    "typescript barrels of one file": lambda n: {
        **files("a{i}.ts", "export * from './b';", n), "b.ts": each("export const c{i}=1;\n", 40 * n)},
    "typescript circle of stars": lambda n: files(
        "a{i}.ts", "export * from './a{j}'; import {{y}} from './a{k}'; y()", n),
    "typescript chain of names": lambda n: files(
        "a{i}.ts", "export {{x}} from './a{j}'; import {{x}} from './a{k}'; x()", n),
    "package exports, imports": lambda n: {
        "package.json": '{"name":"q","exports":{' +
        ",".join(f'"./p{i}/*":"./s{i}/*.js"' for i in range(n)) + "}}",
        "a.js": each('import "q/p{i}/x";\n', n)},
    "tsconfigs in a graph": lambda n: {
        "a.ts": "import 'x'", "tsconfig.json": '{"extends":"./tsconfig.0.json"}',
        **files("tsconfig.{i}.json", '{{"extends":["./tsconfig.{j}.json","./tsconfig.{k}.json"]}}', n)},
    "go blank imports, files": lambda n: {
        **GO, **files("p/f{i}.go", 'package p\nimport _ "m/q"\n', n),
        **files("q/f{i}.go", "package q\nfunc F{i}(){{}}\n", n)},
    "go interfaces, types": lambda n: {
        **GO, "i.go": "package m\n" + each("type I{i} interface {{ M() }}\n", n),
        "t.go": "package m\n" + each("type T{i} struct{{}}\nfunc (T{i}) M(){{}}\n", n)},
    "go interfaces that embed": lambda n: {
        **GO, "i.go": "package m\ntype A interface{" + each("M{i}();", n) + "}\n" +
        each("type I{i} interface {{ A; B{i}() }}\n", n)},
    "python types in a chain": lambda n: files(
        "a{i}.py", "from a{j} import C{j}\nclass C{i}(C{j}):\n def m(self): self.z()\n", n),
    "java types in circles": lambda n: files(
        "p/C{i}.java", "package p; class C{i} extends C{j} implements C{k} {{ void m(){{ z(); }} }}", n),
    "python types of one base": lambda n: {
        "base.py": "class Base:\n def m(self): raise NotImplementedError\n",
        **files("a{i}.py", "from base import Base\nclass C{i}(Base): pass\n", n)},
    "python circle of stars": lambda n: files(
        "m{i}.py", "from m{j} import *\nfrom m{k} import *\nz{i}()\ndef y{i}(): pass", n),
    "one name in many files": lambda n: {
        **files("d{i}/a.py", "class Thing: pass\nThing()\n", n), "u.py": "Thing()\n" * n},
    "elements of a table": lambda n: {"a.py": "T=" + list_of(["1\n"] * n)},
    "members of a class": lambda n: {"A.java": "class A{" + each("int m{i};\n", n) + "}"},
    "strings that name": lambda n: {
        **files("pkg/m{i}.py", "class Thing{i}: pass", n), "s.py": each('"pkg.m{i}.Thing{i}"\n', n)},
    "errors and their throwers": lambda n: {
        "e.py": "class AError(Exception): pass",
        **files("m{i}.py", "from e import AError\ntry: g()\nexcept AError: raise AError('x')\n", n)},
    "ignore rules, files": lambda n: {
        ".gitignore": each("a*b{i}*c\n", n), ".git/HEAD": "ref: refs/heads/main",
        ".git/objects/x": "", ".git/refs/x": "", **files("s/f{i}.txt", "", n)},
    "globs, packages": lambda n: {
        "package.json": '{"workspaces":' + list_of(f'"p{i}/{{a,b}}/**/x*y*"' for i in range(n)) + "}",
        **files("p{i}/a/xy/package.json", '{{"name":"m{i}"}}', n)},
    "documents and links": lambda n: files("d{i}.md", "# T{i}\n[a](d{j}.md) [b](d{k}.md) `T{j}`\n", n),
}
for extension, text in {
        "py": "import m{i}.x\n", "js": 'import x from "m{i}/y"\n', "rb": 'require "m{i}/y"\nM{i}.x\n',
        "c": '#include "m{i}.h"\n#include <y/m{i}.h>\n', "php": '<?php require "x{i}.php";\n',
        "go": 'package a\nimport "m/{i}"\n', "rs": "use m{i}::x;\n", "cs": "using A{i};\n",
        "java": "import b.C{i};\n", "kt": "import b.C{i}\n"}.items():
    PRODUCTS[f"imports of deep {extension}"] = (
        lambda n, extension=extension, text=text: {f"{DEEP}a.{extension}": each(text, n)})
    PRODUCTS[f"deep files of {extension}"] = (
        lambda n, extension=extension, text=text: files(DEEP + "f{i}." + extension, text, n))
