"""The Python package over libpage_sources, beside what the program prints.
Usage: test_package.py PROGRAM SOURCE [unittest's arguments]"""

import dataclasses
import json
import os
import pathlib
import pickle
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import unittest

import page_sources
from page_sources._calls import interruptible

PROGRAM, SOURCE = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])


class FreshRepository(unittest.TestCase):
    fixture = "python_service"

    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.place = pathlib.Path(place.name)
        self.root = self.place / "repo"
        shutil.copytree(SOURCE / "tests/repositories" / self.fixture / "repository", self.root)
        os.environ["XDG_CACHE_HOME"] = str(self.place / "cache")

    def printed(self, *arguments):
        done = subprocess.run([PROGRAM, *arguments, "--format", "json"], cwd=self.root,
                              capture_output=True, check=True)
        return json.loads(done.stdout)


def plain(value):
    """A result as the document has it."""
    if isinstance(value, (tuple, list)):
        return [plain(each) for each in value]
    if not dataclasses.is_dataclass(value):
        return value
    members = {field.name: plain(getattr(value, field.name)) for field in dataclasses.fields(value)}
    return {name: member for name, member in members.items() if not (name == "line" and member is None)
            and not (isinstance(value, page_sources.Place) and member == "")}


class Answers(FreshRepository):
    def test_are_those_of_the_program(self):
        odd = os.fsdecode(b"odd\xe9 \xe2\x82\xac.py")
        (self.root / odd).write_text("class OddError(Exception): pass\n")
        with page_sources.open(self.root) as repo:
            pages = repo.pages()
            printed = self.printed("pages")["pages"]
            self.assertEqual(list(pages), list(printed))
            for name, page in pages.items():
                with self.subTest(page=name):
                    if name == "flows":
                        self.assertEqual(plain(page.classes), printed[name]["classes"])
                        self.assertTrue(page.files)
                        continue
                    self.assertEqual(plain(page.files), printed[name]["files"])
                    self.assertEqual(plain(page.further), printed[name]["further"])
                    self.assertEqual(page.has_material, printed[name].get("has_material"))
                    self.assertEqual(page.nothing_found, printed[name].get("nothing_found", ""))
            found = [pick.path for pick in (*pages["errors"].files, *pages["errors"].further)]
            self.assertIn(odd, found)
            why = repo.why("errors", odd)
            self.assertEqual(plain(why.reasons), self.printed("why", ".", "errors", odd)["reasons"])
            self.assertEqual(why.path, odd)

    def test_choose_by_what_is_asked(self):
        with page_sources.open(self.root, threads=2) as repo:
            cases = [
                (repo.references(roles="extends"), "references", "--role", "extends"),
                (repo.references(to=["*Error"], within_files=True), "references", "--to", "*Error", "--self"),
                (repo.edges(), "edges"),
                (repo.edges(by_folder=True), "edges", "--by", "folder"),
                (repo.edges(from_="**", by_folder=1), "edges", "--from", "**", "--by", "folder:1"),
                (repo.edges(way=(repo.edges()[0].source, repo.edges()[0].target)), "edges", "--path",
                 repo.edges()[0].source, repo.edges()[0].target),
                (repo.symbols(), "symbols"),
                (repo.symbols(kinds=("class", "constant"), name="*e*"), "symbols", "--kind",
                 "class,constant", "--name", "*e*"),
            ]
            for records, subcommand, *options in cases:
                with self.subTest(subcommand, options=options):
                    self.assertTrue(records)
                    self.assertEqual(plain(records), self.printed(subcommand, *options)[subcommand])
            self.assertEqual(list(repo.pages("errors")), ["errors"])
            flow, = repo.pages(["flows"], entry_points="**/*.py")["flows"].classes
            self.assertEqual(flow.entry_points, "**/*.py")

    def test_are_of_the_last_refresh(self):
        with page_sources.open(self.root, exclude="**/*.md", index=self.place / "one.index") as repo:
            self.assertEqual(repo.index.documents, 0)
            self.assertEqual(repo.index.file, str(self.place / "one.index"))
            before = len(repo.symbols(name="Later"))
            (self.root / "later.py").write_text("class Later: pass\n")
            self.assertEqual(len(repo.symbols(name="Later")), before)
            self.assertEqual(repo.refresh().added, 1)
            self.assertEqual([s.path for s in repo.symbols(name="Later")], ["later.py"])


class Faults(FreshRepository):
    def test_are_exceptions_that_name_their_object(self):
        with page_sources.open(self.root) as repo:
            root = str(self.root)
            cases = [
                (lambda: repo.pages("erors"), page_sources.WrongArgument, [root, "did you mean errors?"]),
                (lambda: repo.why("errors", "gone.py"), page_sources.Error, [root, "gone.py"]),
                (lambda: repo.edges(to="a["), ValueError, ["a["]),
                (lambda: repo.references(to="a\0b"), ValueError, ["null byte"]),
                (lambda: page_sources.open(self.place / "none"), page_sources.Error, ["/none"]),
                (lambda: page_sources.open(3.5), TypeError, ["float"]),
            ]
            for call, kind, parts in cases:
                with self.subTest(parts=parts), self.assertRaises(kind) as raised:
                    call()
                for part in parts:
                    self.assertIn(part, str(raised.exception))
        (self.root / ".page-sources.toml").write_text("what = 1\n")
        with self.assertRaisesRegex(page_sources.Error, "page-sources.toml:1") as raised:
            page_sources.open(self.root)
        self.assertEqual(str(pickle.loads(pickle.dumps(raised.exception))), str(raised.exception))

    def test_a_closed_repository_says_so(self):
        repo = page_sources.open(self.root)
        repo.close()
        repo.close()
        with self.assertRaisesRegex(ValueError, "repo is closed"):
            repo.pages()
        self.assertIn("closed", repr(repo))


class Waiting(FreshRepository):
    def test_tells_progress_on_the_callers_thread(self):
        told = []
        with page_sources.open(self.root, progress=lambda *at: told.append((*at, threading.get_ident()))):
            pass
        done, total, thread = told[-1]
        self.assertEqual(done, total)
        self.assertEqual({thread}, {each[2] for each in told})
        self.assertEqual(thread, threading.get_ident())

    def test_whatever_progress_raises_ends_the_work(self):
        def interrupt(done, total):
            os.kill(os.getpid(), signal.SIGINT)

        def refuse(done, total):
            raise LookupError("enough")

        for progress, kind in ((refuse, LookupError), (interrupt, KeyboardInterrupt)):
            # The work may have been done by the time that it was to end; then this is left to do.
            (self.root / f"{kind.__name__}.py").write_text("ready = True\n")
            with self.subTest(kind=kind), self.assertRaises(kind):
                page_sources.open(self.root, progress=progress)
        with page_sources.open(self.root) as repo:
            self.assertTrue(repo.pages()["errors"].files)

    def test_an_interrupt_ends_what_works_at_that_moment(self):
        class Working:
            def __init__(self):
                self.ended = threading.Event()

            def cancel(self):
                self.ended.set()

        working = Working()
        timer = threading.Timer(0.1, os.kill, (os.getpid(), signal.SIGINT))
        timer.start()
        with self.assertRaises(KeyboardInterrupt):
            interruptible(working, lambda: working.ended.wait(60), None)
        self.assertTrue(working.ended.is_set())

    def test_threads_share_a_repository(self):
        with page_sources.open(self.root) as repo:
            expected = repo.pages()["errors"], repo.edges()
            found = []

            def ask():
                repo.refresh()
                found.append((repo.pages()["errors"], repo.edges()))

            threads = [threading.Thread(target=ask) for _ in range(6)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
        self.assertEqual(found, [expected] * 6)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
