import re
from dataclasses import dataclass

MAX_ASPECT_FILES = 5
_DATA = re.compile(r"CREATE TABLE|(?:@dataclass.*?){2}", re.DOTALL)


@dataclass(frozen=True)
class FileEdge:
    source: str
    target: str
    weight: int


def data_model_files(texts):
    return [path for path, text in texts.items() if _DATA.search(text)]


def decision_docs(documents, max_files):
    return sorted(path for path in documents if "adr" in path.split("/"))[:max_files]


def extension_files(contracts, registries, limit):
    paths = dict.fromkeys([*contracts, *registries])
    strength = {path: contracts.get(path, 0) + registries.get(path, 0) for path in paths}
    return sorted(paths, key=lambda path: (-strength[path], path))[:limit]
