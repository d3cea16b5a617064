#!/usr/bin/env python3
"""Prints what a repository's Python files import, found with Python's own ast and import system.

One line an edge, "source<TAB>target"; files that Python cannot parse are listed on stderr as
"skipped<TAB>path". Nothing here knows how the index resolves imports: each file gets the search
path that it would have when it is run or collected in a checkout whose projects are installed.
"""

import ast
import functools
import importlib.machinery
import os
import subprocess
import sys
import warnings
from pathlib import Path, PurePosixPath

PROJECT_FILES = {"pyproject.toml", "setup.py", "setup.cfg"}
ASIDE = {"doc", "docs", "docs_src", "example", "examples", "samples", "templates", "test", "tests"}


def tracked(repo: Path) -> list[str]:
    out = subprocess.run(
        ["git", "-C", str(repo), "ls-files", "-z"], check=True, capture_output=True
    ).stdout
    return sorted(p for p in out.decode("utf-8", "surrogateescape").split("\0") if p)


class Truth:
    def __init__(self, repo: Path):
        self.repo = repo.resolve()
        self.files = [p for p in tracked(repo) if (self.repo / p).is_file()]
        self.known = set(self.files)
        folders = {str(PurePosixPath(p).parent) for p in self.files
                   if PurePosixPath(p).name in PROJECT_FILES
                   and not (self.repo / p).with_name("__init__.py").exists()}
        self.projects = sorted(folders)

    def search_path(self, path: str) -> tuple[list[str], list[str]]:
        """The folders before and after the standard library."""
        own = PurePosixPath(path).parent
        while (self.repo / own / "__init__.py").exists() and own != own.parent:
            own = own.parent
        around = [p for p in self.projects if own.is_relative_to(p)]
        others = [p for p in self.projects
                  if p not in around and not ASIDE & set(PurePosixPath(p).parts)]
        entries = [str(own)]
        for project in sorted(around, key=len, reverse=True) + ["."] + others:
            entries += [project, f"{project}/src", f"{project}/lib"]
        seen = dict.fromkeys(os.path.normpath(self.repo / e) for e in entries)
        first = os.path.normpath(self.repo / own)
        return [first] if first in seen else [], [e for e in seen if e != first]

    # Names without dots: the finder would look a parent up among the modules that are loaded.
    @functools.lru_cache(maxsize=None)
    def locate(self, name: str, path: tuple[str, ...]):
        return importlib.machinery.PathFinder.find_spec(name, list(path))

    def file_of(self, located) -> str | None:
        if located is None or not located.origin or located.origin in ("built-in", "frozen"):
            return None
        relative = os.path.relpath(located.origin, self.repo)
        return relative if relative in self.known else None

    def top(self, name: str, path: str):
        first, rest = self.search_path(path)
        if name in sys.stdlib_module_names and name != "test":
            # Only a repository that is that module itself shadows the standard library.
            found = self.locate(name, (str(self.repo), f"{self.repo}/src", f"{self.repo}/lib"))
            return found if found is not None and found.origin else None
        return self.locate(name, tuple(first + rest))

    def module(self, dotted: str, path: str):
        located = None
        for i, part in enumerate(dotted.split(".")):
            if i == 0:
                located = self.top(part, path)
            elif located is not None and located.submodule_search_locations is not None:
                located = self.locate(part, tuple(located.submodule_search_locations))
            else:
                return None
        return located

    def relative(self, level: int, dotted: str, path: str):
        folder = (self.repo / path).parent
        for _ in range(level - 1):
            folder = folder.parent
        if not folder.is_relative_to(self.repo):
            return None
        parts = dotted.split(".") if dotted else []
        if not parts:
            init = folder / "__init__.py"
            loader = importlib.machinery.SourceFileLoader("_", str(init))
            located = importlib.machinery.ModuleSpec("_", loader, is_package=True)
            located.origin = str(init) if init.exists() else None
            located.submodule_search_locations = [str(folder)]
            return located
        located = self.locate(parts[0], (str(folder),))
        for part in parts[1:]:
            if located is None or located.submodule_search_locations is None:
                return None
            located = self.locate(part, tuple(located.submodule_search_locations))
        return located

    def targets(self, node: ast.AST, path: str):
        if isinstance(node, ast.Import):
            for alias in node.names:
                yield self.file_of(self.module(alias.name, path))
        elif isinstance(node, ast.ImportFrom):
            if node.level:
                located = self.relative(node.level, node.module or "", path)
            else:
                located = self.module(node.module, path)
            if located is None:
                return
            for alias in node.names:
                sub = None
                if located.submodule_search_locations is not None and alias.name != "*":
                    sub = self.locate(alias.name, tuple(located.submodule_search_locations))
                yield self.file_of(sub) or self.file_of(located)

    def edges(self):
        warnings.simplefilter("ignore")
        for path in self.files:
            if not path.endswith((".py", ".pyi", ".pyw")):
                continue
            try:
                tree = ast.parse((self.repo / path).read_bytes())
            except (SyntaxError, ValueError, RecursionError):
                print(f"skipped\t{path}", file=sys.stderr)
                continue
            for node in ast.walk(tree):
                for target in self.targets(node, path):
                    if target and target != path:
                        yield path, target


def main() -> None:
    for source, target in sorted(set(Truth(Path(sys.argv[1])).edges())):
        print(f"{source}\t{target}")


if __name__ == "__main__":
    main()
