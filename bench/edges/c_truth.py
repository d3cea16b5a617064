#!/usr/bin/env python3
"""Prints which C or C++ file includes which other one, "source<TAB>target" a line.

    c_truth.py REPOSITORY

Compile commands come from compile_commands.json, else from CMake, else from `configure` or the
makefile of a copy of the repository, with `make -n`. An edge is

- who includes whom in `g++ -H` of each command, at every depth;
- and, because the compiler leaves out the branches that this machine does not take, every #include
  line outside of comments, looked up as a preprocessor does: in the file's own folder for quotes,
  then in the include folders of the commands that reach the file. A file that no command reaches is
  given the folders of those of the folder nearest to it; where these do not lead to a file that the
  repository has, stderr says so, "unjudged<TAB>source<TAB>folder".
"""
import collections
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

C_LIKE = {".c", ".cc", ".cpp", ".cxx", ".c++", ".cu", ".cuh", ".h", ".hh", ".hpp", ".hxx", ".h++",
          ".inl", ".ipp", ".ixx", ".tcc", ".tpp"}
COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)
INCLUDE = re.compile(r'^[ \t]*#[ \t]*(?:include|include_next|import)[ \t]*([<"])([^>"\n]+)[>"]', re.M)


GUESSES = ["", "include", "src"]
TEST_OPTION = re.compile(r"\boption\s*\(\s*(\w*(?:TEST|BENCH)\w*)", re.I)


def tracked(repo):
    out = subprocess.run(["git", "-C", repo, "ls-files", "-co", "--exclude-standard", "-z"],
                         check=True, capture_output=True).stdout
    return {p for p in out.decode(errors="surrogateescape").split("\0")
            if p and os.path.isfile(os.path.join(repo, p)) and not os.path.islink(os.path.join(repo, p))}


def commands_of_json(path):
    for entry in json.load(open(path)):
        words = entry.get("arguments") or shlex.split(entry["command"])
        yield entry["directory"], words, entry["file"]


def configured(source, build):
    """The compile commands that CMake writes; without the tests where they need a download."""
    tests = TEST_OPTION.findall((source / "CMakeLists.txt").read_text(errors="replace"))
    off = [f"-D{name}=OFF" for name in ["BUILD_TESTING", *tests]]
    for options in ([], off):
        shutil.rmtree(build, ignore_errors=True)
        command = ["cmake", "-G", "Ninja", "-S", source, "-B", build, *options,
                   "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DFETCHCONTENT_FULLY_DISCONNECTED=ON"]
        if subprocess.run(command, capture_output=True).returncode == 0:
            return list(commands_of_json(build / "compile_commands.json"))
    return []


def commands_of_make(folder):
    out = subprocess.run(["make", "-C", folder, "-n", "-w", "-k", "--always-make", "V=1"],
                         capture_output=True, text=True).stdout
    stack = [folder]
    for line in out.replace("\\\n", " ").splitlines():
        if entering := re.match(r"make(?:\[\d+\])?: Entering directory '(.*)'", line):
            stack.append(entering[1])
        elif re.match(r"make(?:\[\d+\])?: Leaving directory", line):
            stack.pop()
        else:
            for part in re.split(r"&&|;", line):
                try:
                    words = shlex.split(part)
                except ValueError:
                    continue
                sources = [w for w in words if os.path.splitext(w)[1] in (".c", ".cc", ".cpp")]
                if "-c" in words and len(sources) == 1:
                    yield stack[-1], words, sources[0]


def commands_of(repo, files, scratch):
    """(top folder, commands): makefiles are asked in a copy, because they write even with -n."""
    if "compile_commands.json" in files:
        return repo, list(commands_of_json(repo / "compile_commands.json"))
    for folder in ("", "build/cmake", "cmake"):
        if os.path.join(folder, "CMakeLists.txt") in files:
            if commands := configured(repo / folder, scratch / "build"):
                return repo, commands
    copy = scratch / "copy"
    for path in files:
        (copy / path).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(repo / path, copy / path)
    return copy, list(commands_of_make(str(copy))) if "Makefile" in files else []


def include_folders(directory, words):
    folders = []
    for i, word in enumerate(words):
        for flag in ("-isystem", "-iquote", "-I"):
            if word == flag:
                folders.append(words[i + 1])
            elif word.startswith(flag):
                folders.append(word[len(flag):])
            else:
                continue
            break
    return [os.path.normpath(os.path.join(directory, f)) for f in folders]


def without_output(words):
    kept, skip = [], False
    for word in words:
        if skip:
            skip = False
        elif word in ("-o", "-MF", "-MT", "-MQ"):
            skip = True
        elif word not in ("-c", "-MD", "-MMD", "-MP", "-Werror"):
            kept.append(word)
    return kept


def compiler_edges(directory, words, source):
    """(includer, included) as absolute paths."""
    run = subprocess.run(without_output(words) + ["-E", "-H", "-w", "-o", "/dev/null"],
                         cwd=directory, capture_output=True, text=True, errors="replace")
    stack = [os.path.normpath(os.path.join(directory, source))]
    for line in run.stderr.splitlines():
        if found := re.match(r"(\.+) (.+)", line):
            depth = len(found[1])
            path = os.path.normpath(os.path.join(directory, found[2]))
            del stack[depth:]
            yield stack[-1], path
            stack.append(path)


def without_comments(text):
    return COMMENT.sub(lambda m: m[0] if m[0][0] in "\"'" else re.sub(r"[^\n]", " ", m[0]), text)


def ordered_union(lists):
    return list(dict.fromkeys(folder for folders in lists for folder in folders))


def nearest_folders(path, folders_of):
    """The include folders of the files that are compiled nearest to one that is not."""
    parent = path
    while parent:
        parent = os.path.dirname(parent)
        below = parent + "/" if parent else ""
        if found := ordered_union(f for p, f in sorted(folders_of.items()) if p.startswith(below)):
            return found
    return GUESSES


def by_name(files):
    found = collections.defaultdict(list)
    for path in sorted(files):
        found[os.path.basename(path)].append(path)
    return found


def unjudged(path, name, files_named):
    for target in files_named[os.path.basename(name)]:
        if ("/" + target).endswith("/" + name.lstrip("./")):
            print("unjudged", path, os.path.dirname(target), sep="\t", file=sys.stderr)


def line_edges(repo, files, folders_of):
    files_named = by_name(files)
    for path in sorted(files):
        if os.path.splitext(path)[1].lower() not in C_LIKE:
            continue
        text = open(os.path.join(repo, path), errors="replace").read()
        folders = folders_of.get(path) or nearest_folders(path, folders_of)
        for kind, name in INCLUDE.findall(without_comments(text)):
            tried = [os.path.dirname(path)] if kind == '"' else []
            for folder in tried + folders:
                target = os.path.normpath(os.path.join(folder, name))
                if target in files:
                    if target != path:
                        yield path, target
                    break
            else:
                if path not in folders_of:
                    unjudged(path, name, files_named)


def edges_of(repo, files, scratch):
    top, commands = commands_of(repo, files, scratch)
    folders_of = collections.defaultdict(list)
    for directory, words, source in commands:
        local = lambda path: os.path.relpath(os.path.join(directory, path), top)
        folders = [local(folder) for folder in include_folders(directory, words)]
        reached = {local(source)}
        for includer, included in compiler_edges(directory, words, source):
            pair = local(includer), local(included)
            reached.update(pair)
            if files.issuperset(pair) and pair[0] != pair[1]:
                yield pair
        for path in reached & files:
            folders_of[path] = ordered_union([folders_of[path], folders])
    yield from line_edges(repo, files, folders_of)


def main():
    repo = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as scratch:
        edges = set(edges_of(repo, tracked(repo), Path(scratch).resolve()))
    for source, target in sorted(edges):
        print(source, target, sep="\t")


if __name__ == "__main__":
    main()
