"""Makes the wheel, installs it into a fresh virtual environment of each Python, and asks there; then
installs from the sources. Nothing is fetched. Usage: test_wheel.py SOURCE LIBRARY"""

import glob
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SOURCE, LIBRARY = map(pathlib.Path, sys.argv[1:3])
ASK = """
import page_sources, sys
with page_sources.open(sys.argv[1]) as repo:
    print(page_sources.__version__, page_sources.__file__)
    print(*(pick.path for pick in repo.pages()["errors"].files))
"""


def run(*arguments, **more):
    environment = {k: v for k, v in os.environ.items() if k not in ("PYTHONPATH", "PAGE_SOURCES_LIBRARY")}
    environment.update(more.pop("env", {}))
    done = subprocess.run([str(a) for a in arguments], capture_output=True, text=True, env=environment, **more)
    assert done.returncode == 0, f"{arguments}: {done.stdout}{done.stderr}"
    return done.stdout


def works(*command):
    return subprocess.run([str(c) for c in command], capture_output=True).returncode == 0


def pythons():
    found = sorted(glob.glob("/usr/bin/python3.[0-9]*[0-9]") + glob.glob("/usr/local/bin/python3.[0-9]*[0-9]"))
    return [p for p in found if works(p, "-c", "import sys; assert sys.version_info >= (3, 9); import venv")]


def environment(python, place, *more):
    run(python, "-m", "venv", "--without-pip", *more, place)
    return place / "bin/python"


def ask(python, place):
    repository = SOURCE / "tests/repositories/python_service/repository"
    answer = run(python, "-c", ASK, repository, cwd=place, env={"XDG_CACHE_HOME": str(place / "cache")})
    project = re.search(r"^  VERSION ([\d.]+)$", (SOURCE / "CMakeLists.txt").read_text(), re.M)[1]
    first, files = answer.splitlines()
    assert first.split() == [project, str(pathlib.Path(python).parent.parent / "lib" / first.split("/lib/")[1])]
    assert "errors.py" in files or "exceptions.py" in files, files


def main():
    needed = ("pip", "setuptools", "wheel")
    if not all(works(sys.executable, "-c", f"import {name}") for name in needed):
        return print(f"skipped: {sys.executable} lacks one of {', '.join(needed)}")
    with tempfile.TemporaryDirectory() as name:
        place = pathlib.Path(name)
        sources = place / "python"
        shutil.copytree(SOURCE / "python", sources, ignore=shutil.ignore_patterns("build", "*.egg-info"))
        library = {"PAGE_SOURCES_LIBRARY": str(LIBRARY)}
        pip = (sys.executable, "-m", "pip", "--disable-pip-version-check")
        offline = ("--no-index", "--no-deps", "--no-build-isolation")
        run(*pip, "wheel", *offline, "-w", place, sources, env=library)
        wheel, = place.glob("page_sources-*-py3-none-linux_*.whl")
        for number, python in enumerate(pythons()):
            fresh = environment(python, place / f"fresh{number}")
            run(*pip, "--python", fresh, "install", "--no-index", wheel)
            ask(fresh, place)
            print(f"{python}: installed from the wheel")
        own = environment(sys.executable, place / "own", "--system-site-packages")
        run(own, "-m", "pip", "install", *offline, sources, env=library)
        ask(own, place)


main()
