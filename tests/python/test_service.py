"""A small service end to end: files on disk, its own index, every page through a WikiGenerator."""

import tempfile
import unittest
from pathlib import Path

import plain_page_sources as plain
from kestrix.workers.index import Repository
from kestrix.workers.wiki.wiki_generator import WikiGenerator

HANDLERS = {f"app/handlers/{name}.py": "" for name in ("add", "list", "move", "undo")}
IMPORTS = "".join(f"from app.handlers.{name} import run\n" for name in ("add", "list", "move"))
FILES = {
    **HANDLERS,
    "app/pipeline.py": IMPORTS + "from app.domain.port import Store\n",
    "app/handlers/__init__.py": IMPORTS,
    "app/domain/port.py": "class Store(Protocol): ...\nclass StoreError(Exception): ...\n",
    "app/plugins.py": "from app.domain.port import Store\nPLUGINS = {}\n_tools = []\n",
    "app/main.py": "from app.plugins import PLUGINS\n",
    "app/tables.sql": "CREATE TABLE note (id)",
    "app/config/naïve.yaml": "",
    "setup.cfg": "",
    ".env.local": "",
    "tests/common.py": "",
    "tests/test_add.py": "from tests.common import x\nfrom app.handlers.add import run\n",
    "tests/test_move.py": "from tests.common import x\nfrom app.handlers.move import run\n",
    "tests/fixtures/odd.py": "class OddError(Exception): ...\n",
    "docs/archive/adr/0001.md": "",
    "docs/adr/0002.md": "",
    "README.md": "",
}
PAGES = {
    "data_models": ["app/tables.sql"],
    "configuration": [".env.local", "app/config/naïve.yaml", "setup.cfg"],
    "errors": ["app/domain/port.py"],
    "flows": ["app/pipeline.py"],
    "extending": ["app/plugins.py", "app/domain/port.py", "app/main.py"],
    "examples": ["tests/common.py", "tests/test_add.py", "tests/test_move.py"],
    "decisions": ["docs/adr/0002.md", "docs/archive/adr/0001.md"],
}


class Service(unittest.TestCase):
    def test_every_page(self):
        class PlainGenerator(plain.PageSourcesMixin):
            _planner_paths = WikiGenerator._planner_paths
            _indexed_documents = WikiGenerator._indexed_documents
            pages = WikiGenerator.pages

        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for path, text in FILES.items():
                (root / path).parent.mkdir(parents=True, exist_ok=True)
                (root / path).write_text(text)
            repository = Repository.of(root)
            for generator in (WikiGenerator, PlainGenerator):
                with self.subTest(generator=generator.__name__):
                    self.assertEqual(generator(repository, root).pages(list(HANDLERS)), PAGES)


if __name__ == "__main__":
    unittest.main()
