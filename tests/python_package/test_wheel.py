"""Makes the wheel and installs it into a fresh virtual environment of each Python that is found. There
the package is asked, and beside a service that is installed, too, the tests of its component run; then
installs from the sources. Nothing is fetched. Usage: test_wheel.py SOURCE LIBRARY MODULE"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SOURCE, LIBRARY, MODULE = map(pathlib.Path, sys.argv[1:4])
SUITES = ("detectors", "module", "rules", "service")
SHORT = {"PAGE_SOURCES_CALLS": "20000", "PAGE_SOURCES_SEEDS": "20"}
ASK = """
import page_sources, sys
with page_sources.open(sys.argv[1]) as repo:
    print(page_sources.__version__, page_sources.__file__)
    print(*(pick.path for pick in repo.pages()["errors"].files))
"""


def run(*arguments, **more):
    ours = ("PYTHONPATH", "PAGE_SOURCES_LIBRARY", "PAGE_SOURCES_MODULE")
    environment = {k: v for k, v in os.environ.items() if k not in ours}
    environment.update(more.pop("env", {}))
    done = subprocess.run([str(a) for a in arguments], capture_output=True, text=True, env=environment, **more)
    assert done.returncode == 0, f"{arguments}: {done.stdout}{done.stderr}"
    return done.stdout


def works(*command):
    return subprocess.run([str(c) for c in command], capture_output=True).returncode == 0


def pythons():
    """One of each version from 3.9 on: those on the PATH, the system's, and what pyenv keeps."""
    folders = [*map(pathlib.Path, os.environ["PATH"].split(os.pathsep)), pathlib.Path("/usr/bin")]
    folders += [pathlib.Path("/usr/local/bin"), *pathlib.Path.home().glob(".pyenv/versions/*/bin")]
    asked = "import sys, venv; assert sys.version_info >= (3, 9); print(sys.version_info[1], sys.executable)"
    found = {}
    for python in [path for folder in folders for path in sorted(folder.glob("python3*"))]:
        if re.fullmatch(r"python3(\.\d+)?", python.name) and works(python, "-c", asked):
            minor, executable = run(python, "-c", asked).split()
            found.setdefault(int(minor), executable)
    return [found[minor] for minor in sorted(found)]


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


def serve(python):
    """Lays a service beside the installed module, as pip would, and runs the tests of the module."""
    site = run(python, "-c", "import sysconfig; print(sysconfig.get_paths()['platlib'])").strip()
    shutil.copytree(SOURCE / "tests/python/service", site, dirs_exist_ok=True)
    for suite in SUITES:
        run(python, "-B", SOURCE / f"tests/python/test_{suite}.py", env=SHORT)


def main():
    needed = ("pip", "setuptools", "wheel")
    if not all(works(sys.executable, "-c", f"import {name}") for name in needed):
        return print(f"skipped: {sys.executable} lacks one of {', '.join(needed)}")
    with tempfile.TemporaryDirectory() as name:
        place = pathlib.Path(name)
        sources = place / "python"
        shutil.copytree(SOURCE / "python", sources, ignore=shutil.ignore_patterns("build", "*.egg-info"))
        binaries = {"PAGE_SOURCES_LIBRARY": str(LIBRARY), "PAGE_SOURCES_MODULE": str(MODULE)}
        pip = ("-m", "pip", "--disable-pip-version-check")
        offline = ("--no-index", "--no-deps", "--no-build-isolation")
        run(sys.executable, *pip, "wheel", *offline, "-w", place, sources, env=binaries)
        wheel, = place.glob("page_sources-*-cp39-abi3-linux_*.whl")
        for number, python in enumerate(pythons()):
            fresh = environment(python, place / f"fresh{number}")
            with_pip = python if works(python, "-m", "pip", "--version") else sys.executable
            run(with_pip, *pip, "--python", fresh, "install", "--no-index", wheel)
            ask(fresh, place)
            serve(fresh)
            print(f"{python}: installed from the wheel")
        own = environment(sys.executable, place / "own", "--system-site-packages")
        run(own, "-m", "pip", "install", *offline, sources, env=binaries)
        ask(own, place)


main()
