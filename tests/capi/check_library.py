"""Runs calls.c on the small repositories: as the build made it and, given CMAKE and BUILD, compiled
against the installed library the way a user of it does.
Usage: check_library.py CALLS PROGRAM SOURCE [CMAKE BUILD]"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

CALLS, PROGRAM, SOURCE = map(pathlib.Path, sys.argv[1:4])


def run(*arguments, **more):
    done = subprocess.run([str(a) for a in arguments], capture_output=True, text=True, **more)
    assert done.returncode == 0, f"{arguments}: {done.stderr}"
    return done.stdout


def check_calls(calls, place, environment):
    for fixture in sorted((SOURCE / "tests/repositories").iterdir()):
        directory = place / fixture.name
        shutil.copytree(fixture / "repository", directory)
        first = sorted(p for p in directory.rglob("*") if p.suffix in (".py", ".ts", ".cs"))[0]
        run(calls, PROGRAM, directory, place / f"{fixture.name}.index", first.relative_to(directory),
            env=environment | {"XDG_CACHE_HOME": str(place / "cache")})


def check_exports(library, header):
    declared = set(re.findall(r"\b(page_sources_[a-z]+)\(", header.read_text()))
    defined = {line.split()[-1].split("@")[0] for line in
               run("nm", "-D", "--defined-only", library).splitlines() if " A " not in line}
    assert defined == declared, defined ^ declared


def check_installed(place, cmake, build):
    prefix = place / "installed"
    run(cmake, "--install", build, "--component", "library", "--prefix", prefix)
    library, = prefix.rglob("libpage_sources.so")
    check_exports(library, prefix / "include/page_sources.h")
    package, = prefix.rglob("page_sources.pc")
    if not shutil.which("pkg-config"):
        print("pkg-config is not installed: the installed library was not linked")
        return
    moved = prefix.rename(place / "moved")
    search = dict(os.environ, PKG_CONFIG_PATH=str(moved / package.parent.relative_to(prefix)))
    flags = run("pkg-config", "--cflags", "--libs", "page_sources", env=search).split()
    calls = place / "calls"
    run("cc", "-std=c11", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
        SOURCE / "tests/capi/calls.c", "-o", calls, *flags, "-pthread")
    run("c++", "-std=c++11", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only", "-x", "c++",
        moved / "include/page_sources.h")
    libraries = str(moved / library.parent.relative_to(prefix))
    check_calls(calls, place / "linked", dict(os.environ, LD_LIBRARY_PATH=libraries))


def main():
    with tempfile.TemporaryDirectory() as place:
        directory = pathlib.Path(place)
        check_calls(CALLS, directory / "built", dict(os.environ))
        if len(sys.argv) > 4:
            check_installed(directory, *sys.argv[4:6])


main()
