"""Installs the program as a package would, and uses what was installed: the program, its man pages,
its completions, its schemas. Usage: check_program.py CMAKE BUILD_DIRECTORY"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

CMAKE, BUILD = sys.argv[1:3]
MOST_BYTES = 36 << 20  # the parse tables of the grammars alone are 27


def run(*arguments, **more):
    return subprocess.run([str(a) for a in arguments], check=True, capture_output=True, text=True, **more)


def check_program(prefix):
    program = prefix / "bin/page-sources"
    assert program.stat().st_size <= MOST_BYTES, f"{program.stat().st_size} bytes"
    assert run(program, "--version").stdout.startswith("page-sources ")
    return program


def check_man_pages(prefix, program):
    pages = sorted((prefix / "share/man/man1").iterdir())
    listed = run(program, "--help").stdout.split("Subcommands:\n")[1].split("\n\n")[0]
    names = {line.split()[0] for line in listed.splitlines()}
    assert {p.name for p in pages} == {"page-sources.1"} | {f"page-sources-{n}.1" for n in names}
    if not shutil.which("man"):
        return print("man is not installed: the man pages were not read")
    for page in pages:
        shown = subprocess.run(["man", "--warnings", "-l", page], capture_output=True, text=True,
                               env=dict(os.environ, MANWIDTH="100", MAN_KEEP_FORMATTING="", LC_ALL="C.UTF-8"))
        assert shown.returncode == 0 and not shown.stderr, shown.stderr
        assert "EXIT STATUS" in shown.stdout, page
    pages_page = (prefix / "share/man/man1/page-sources-pages.1").read_text()
    for flag in ("\\-\\-entry\\-points", "\\-q, \\-\\-quiet", "\\-\\-exclude"):
        assert flag in pages_page, flag


def completed(script, *words):
    """What bash offers for the last of the words."""
    listed = " ".join(f"'{w}'" for w in words)
    command = (f"source '{script}'; COMP_WORDS=({listed}); COMP_CWORD={len(words) - 1}; "
               "_page_sources; printf '%s\\n' \"${COMPREPLY[@]}\"")
    return run("bash", "-c", command).stdout.split()


def check_completions(prefix):
    bash = prefix / "share/bash-completion/completions/page-sources"
    cases = [
        (["page-sources", "ed"], "edges"),
        (["page-sources", "pages", "--pa"], "--page"),
        (["page-sources", "--format", "js"], "json"),
        (["page-sources", "edges", ".", "--format", "do"], "dot"),
        (["page-sources", "-j", "2", "symbols", "--kind", "inter"], "interface"),
        (["page-sources", "why", ".", "conf"], "configuration"),
        (["page-sources", "cache", "cl"], "clean"),
    ]
    for words, wanted in cases:
        assert wanted in completed(bash, *words), words
    for shell, file in (("zsh", "share/zsh/site-functions/_page-sources"),
                        ("fish", "share/fish/vendor_completions.d/page-sources.fish")):
        assert (prefix / file).is_file(), file
        if shutil.which(shell):
            run(shell, "-n", prefix / file)
        else:
            print(f"{shell} is not installed: its completions were not read")


def check_schemas(prefix):
    schemas = list((prefix / "share/page-sources/schemas").iterdir())
    assert len(schemas) >= 7
    for schema in schemas:
        assert json.loads(schema.read_text())["$id"].startswith("urn:page-sources:schema:")


def check_debian_package(place):
    """Unpacked where nothing else is, as a bare system would have it but for the libraries."""
    needed = ("cpack", "dpkg-deb", "dpkg-shlibdeps")
    if not all(map(shutil.which, needed)):
        return print(f"one of {', '.join(needed)} is not installed: no Debian package was made")
    run("cpack", "-G", "DEB", "-B", place / "package", "--config", f"{BUILD}/CPackConfig.cmake", cwd=BUILD)
    package, = (place / "package").glob("page-sources_*.deb")
    fields = run("dpkg-deb", "-f", package).stdout
    assert re.search(r"^Depends: .*libc6", fields, re.M) and "libsqlite3-0" in fields, fields
    run("dpkg-deb", "-x", package, place / "tree")
    tree = place / "tree/usr"
    check_man_pages(tree, check_program(tree))
    (place / "repo").mkdir()
    (place / "repo/a.py").write_text("class OddError(Exception): pass\n")
    answer = run(tree / "bin/page-sources", place / "repo", "--paths", "--page", "errors",
                 env={"XDG_CACHE_HOME": str(place / "cache")})
    assert answer.stdout == "a.py\n", answer


def main():
    with tempfile.TemporaryDirectory() as place:
        prefix = pathlib.Path(place)
        run(CMAKE, "--install", BUILD, "--component", "program", "--prefix", prefix)
        program = check_program(prefix)
        check_man_pages(prefix, program)
        check_completions(prefix)
        check_schemas(prefix)
        check_debian_package(prefix)


main()
