"""Validates answers of the real program against the published schemas, with a validator that others
wrote. Usage: validate_answers.py PROGRAM SOURCE_DIRECTORY"""

import copy
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import jsonschema

PROGRAM, SOURCE = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2])


def answer(directory, *arguments):
    environment = {"PATH": os.environ["PATH"], "XDG_CACHE_HOME": str(directory / "cache")}
    done = subprocess.run([PROGRAM, *arguments, "--format", "json"], cwd=directory, env=environment,
                          capture_output=True, check=True)
    return json.loads(done.stdout)


def validator(name):
    schema = json.loads((SOURCE / f"docs/schemas/{name}.schema.json").read_text())
    assert schema["$id"] == f"urn:page-sources:schema:2:{name}", name
    checker = jsonschema.validators.validator_for(schema)
    checker.check_schema(schema)
    return checker(schema)


def objects(value):
    """Every object within a document."""
    if isinstance(value, dict):
        yield value
    for each in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        yield from objects(each)


def check(name, document):
    faults = [f"{name}: {'/'.join(map(str, each.path))}: {each.message[:300]}"
              for each in validator(name).iter_errors(document)]
    if faults:
        sys.exit("\n".join(faults))
    wider = copy.deepcopy(document)
    for member in objects(wider):
        if all(not isinstance(value, int) for value in member.values()):
            member["a_member_of_a_later_version"] = "x"
    for each in ("left_out", "symbols", "languages"):
        if isinstance(wider.get(each), dict):
            wider[each].pop("a_member_of_a_later_version", None)
    assert validator(name).is_valid(wider), f"{name} allows no new members"
    broken = dict(document, schema=1)
    assert not validator(name).is_valid(broken), f"{name} accepts another schema"


def commands(repository):
    first = sorted(p for p in repository.rglob("*") if p.is_file() and p.suffix in (".py", ".ts", ".cs"))[0]
    file = str(first.relative_to(repository))
    yield "pages", ["pages", "repo"]
    yield "pages", ["pages", "repo", "--page", "flows", "--entry-points", "nowhere/*"]
    for page in ("data_models", "flows", "decisions"):
        yield "why", ["why", "repo", page, file]
    yield "edges", ["edges", "repo"]
    yield "edges", ["edges", "repo", "--by", "folder"]
    yield "references", ["references", "repo"]
    yield "symbols", ["symbols", "repo"]
    yield "index", ["index", "repo"]
    yield "left_out", ["index", "repo", "--left-out"]
    yield "config", ["config", "repo", "--exclude", "nowhere"]
    yield "cache", ["cache", "list"]
    yield "cache", ["cache", "clean"]


def main():
    for fixture in sorted((SOURCE / "tests/repositories").iterdir()):
        with tempfile.TemporaryDirectory() as place:
            directory = pathlib.Path(place)
            shutil.copytree(fixture / "repository", directory / "repo")
            (directory / "repo" / "blob\udce9").write_bytes(b"\0")
            (directory / "repo" / "odd\t\udce9\u202e.py").write_text("class OddError(Exception): pass\n")
            for name, arguments in commands(directory / "repo"):
                check(name, answer(directory, *arguments))


main()
