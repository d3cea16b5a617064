"""An index in memory over a small Python repository on disk."""

import re
from dataclasses import dataclass, field
from pathlib import Path

_IMPORT = re.compile(r"^\s*from ([\w.]+) import", re.MULTILINE)
_CLASS = re.compile(r"^class (\w+).*:", re.MULTILINE)
_BINDING = re.compile(r"^(\w+) = ", re.MULTILINE)


@dataclass
class Symbol:
    id: str
    name: str
    signature: str
    kind: str
    path: str


@dataclass
class Component:
    layer: str
    path_pattern: str


@dataclass
class Repository:
    source_files: list = field(default_factory=list)
    documents: list = field(default_factory=list)
    symbols: list = field(default_factory=list)
    imports: dict = field(default_factory=dict)

    @classmethod
    def of(cls, root: Path):
        self = cls()
        for file in sorted(path for path in root.rglob("*") if path.is_file()):
            path = file.relative_to(root).as_posix()
            records = self.documents if path.endswith(".md") else self.source_files
            records.append({"path": f"./{path}"})
            if path.endswith(".py"):
                self._read(root, path, file.read_text())
        return self

    def _read(self, root, path, text):
        for module in _IMPORT.findall(text):
            target = f"{module.replace('.', '/')}.py"
            if (root / target).exists():
                self.imports[path, target] = self.imports.get((path, target), 0) + 1
        for match in _CLASS.finditer(text):
            self._add(path, match[1], "class", match[0])
        for name in _BINDING.findall(text):
            self._add(path, name, "constant" if name.isupper() else "variable", None)

    def _add(self, path, name, kind, signature):
        self.symbols.append(Symbol(f"{path}:{name}", name, signature, kind, path))

    def search_symbols(self, query, *, kind, limit):
        patterns = [query] if isinstance(query, str) else query
        ends = tuple(pattern.removeprefix("%").lower() for pattern in patterns)
        found = [s for s in self.symbols if s.kind == kind and s.name.lower().endswith(ends)]
        return found[:limit], len(found), len(found) > limit

    def get_file_paths_batch(self, symbols):
        return {symbol.id: f"./{symbol.path}" for symbol in symbols}

    def get_all_components(self, *, source_only):
        return [Component("domain", "app/domain/**"), Component("ui", "app/web/**")]
