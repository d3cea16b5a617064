"""The smallest host of python/README.md: that it runs, and that a type checker misses what it lacks."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import readme
from kestrix.workers.wiki import page_sources

INSTALLED = Path(page_sources.__file__).parent
CHECKER = shutil.which("mypy", path=f"/usr/bin{os.pathsep}{os.environ.get('PATH', '')}")

# What is replaced in the generator, and what the type checker says then.
FAULTS = (
    ("    def _indexed_documents", "    def documents", "_indexed_documents"),
    ("    def _planner_paths", "    def paths", "_planner_paths"),
    ("    def _source_files", "    def files", "_source_files"),
    ("    repo_root =", "    root =", "repo_root"),
    ("    repository =", "    index =", "repository"),
    ("    def get_file_paths_batch", "    def get_file_paths", "repository"),
    ("limit: int\n", "most: int\n", "repository"),
    ("kind: str, limit", "kind: int, limit", "repository"),
    ("-> tuple[list[Symbol], int, None]", "-> list[Symbol]", "repository"),
    ("    name: str\n    sig", "    label: str\n    sig", "Symbol"),
    ("    layer: str", "    level: str", "repository"),
    ('-> list[str]:\n        return ["app', '-> str:\n        return ["app', "_planner_paths|List"),
)


class SmallestHost(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        place = tempfile.TemporaryDirectory()
        cls.addClassCleanup(place.cleanup)
        cls.place = Path(place.name)
        wiki = cls.place / "kestrix/workers/wiki"
        wiki.mkdir(parents=True)
        for name in ("_page_sources.abi3.so", "_page_sources.pyi", "page_sources.py",
                     "page_sources_host.py"):  # fmt: skip
            shutil.copy(INSTALLED / name, wiki)

    def run_in_place(self, *command):
        environment = {**os.environ, "PYTHONPATH": ""}
        return subprocess.run(command, cwd=self.place, env=environment, capture_output=True, text=True)

    def test_runs(self):
        readme.write_host(self.place)
        code = "import doctest; print(doctest.testmod())"
        (self.place / "session.py").write_text(f'"""\n{readme.session()}"""\n{code}\n')
        done = self.run_in_place(sys.executable, "session.py")
        self.assertRegex(done.stdout, r"^TestResults\(failed=0, attempted=[6-9]\)", done.stderr)

    @unittest.skipUnless(CHECKER, "no mypy")
    def test_a_type_checker_finds_nothing_in_it(self):
        readme.write_host(self.place)
        done = self.run_in_place(CHECKER, "--strict", "-p", "kestrix")
        self.assertEqual(done.stdout.partition(":")[0], "Success", done.stdout + done.stderr)

    @unittest.skipUnless(CHECKER, "no mypy")
    def test_a_type_checker_names_what_is_missing(self):
        readme.write_host(self.place)
        generator = readme.host_files()["kestrix/workers/wiki/wiki_generator.py"]
        for number, (found, replaced, _) in enumerate(FAULTS):
            self.assertIn(found, generator)
            faulty = generator.replace(found, replaced)
            (self.place / f"fault{number}.py").write_text(faulty)
        files = [f"fault{number}.py" for number in range(len(FAULTS))]
        lines = self.run_in_place(CHECKER, *files).stdout.splitlines()
        for file, (found, _, said) in zip(files, FAULTS):
            with self.subTest(found=found):
                told = "\n".join(line for line in lines if line.startswith(f"{file}:"))
                self.assertRegex(told, said)


if __name__ == "__main__":
    unittest.main()
