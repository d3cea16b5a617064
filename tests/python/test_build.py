"""The commands of python/README.md that build the module, on a copy of the sources without grammars.
Usage: test_build.py SOURCE [unittest's arguments]"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import readme

SOURCE = Path(sys.argv.pop(1))
LEFT_OUT = shutil.ignore_patterns(".git", "build", "build-*", "node_modules", "tests")


class Build(unittest.TestCase):
    def test_the_commands_that_are_documented(self):
        with tempfile.TemporaryDirectory() as place:
            copy, service = Path(place, "copy"), Path(place, "service")
            shutil.copytree(SOURCE, copy, ignore=LEFT_OUT, symlinks=True)
            commands = readme.build_commands().replace("SERVICE", str(service))
            done = subprocess.run(["sh", "-ec", commands], cwd=copy, capture_output=True, text=True)
            self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
            readme.write_host(service)
            Path(service, "session.py").write_text(f'"""\n{readme.session()}"""\n')
            ran = subprocess.run([sys.executable, "-m", "doctest", "session.py"], cwd=service,
                                 env={**os.environ, "PYTHONPATH": "."}, capture_output=True, text=True)  # fmt: skip
            self.assertEqual((ran.returncode, ran.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
