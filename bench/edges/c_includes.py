#!/usr/bin/env python3
"""Compares include edges with what the compiler sees.

    c_includes.py REPO EDGES [--commands FILE] [--make FOLDER] [-I FOLDER]... [--show N]

EDGES is what `page-sources edges REPO` printed. Compile commands come from a compile_commands.json
(of a build folder that may be anywhere) or from `make -n` in a folder of the repository; folders
given with -I are searched for files that no command reaches.

Two truths, both written independently of the index:

- compiler: who includes whom in `g++ -H` of each command, at every depth. It leaves out branches
  that this machine does not take, so only recall is measured against it.
- lines: every #include line outside of comments, looked up as a preprocessor does, in the file's
  own folder for quotes and then in the -I folders of the commands that reach the file.
"""
import argparse
import collections
import json
import os
import re
import shlex
import subprocess
import sys

C_LIKE = {".c", ".cc", ".cpp", ".cxx", ".c++", ".cu", ".cuh", ".h", ".hh", ".hpp", ".hxx", ".h++",
          ".inl", ".ipp", ".ixx", ".tcc", ".tpp"}
COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)
INCLUDE = re.compile(r'^[ \t]*#[ \t]*(?:include|include_next|import)[ \t]*([<"])([^>"\n]+)[>"]', re.M)


def tracked(repo):
    out = subprocess.run(["git", "-C", repo, "ls-files", "-co", "--exclude-standard", "-z"],
                         check=True, capture_output=True).stdout
    return {p for p in out.decode(errors="surrogateescape").split("\0")
            if p and not os.path.islink(os.path.join(repo, p))}


def commands_of_json(path):
    for entry in json.load(open(path)):
        words = entry.get("arguments") or shlex.split(entry["command"])
        yield entry["directory"], words, entry["file"]


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


def line_edges(repo, files, folders_of, default):
    for path in sorted(files):
        if os.path.splitext(path)[1].lower() not in C_LIKE:
            continue
        text = open(os.path.join(repo, path), errors="replace").read()
        folders = folders_of.get(path) or default
        for kind, name in INCLUDE.findall(without_comments(text)):
            tried = [os.path.dirname(path)] if kind == '"' else []
            for folder in tried + folders:
                target = os.path.normpath(os.path.join(folder, name))
                if target in files:
                    if target != path:
                        yield path, target
                    break


def ratio(part, whole):
    return part / whole if whole else 1.0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("repo")
    parser.add_argument("edges")
    parser.add_argument("--commands")
    parser.add_argument("--make")
    parser.add_argument("-I", action="append", default=[], dest="folders")
    parser.add_argument("--show", type=int, default=0)
    args = parser.parse_args()
    repo = os.path.realpath(args.repo)
    files = tracked(repo)
    local = lambda path: os.path.relpath(path, repo)

    commands = list(commands_of_json(args.commands)) if args.commands else []
    if args.make:
        commands += commands_of_make(os.path.join(repo, args.make))
    compiled, folders_of, everywhere = set(), collections.defaultdict(list), []
    for directory, words, source in commands:
        folders = [local(f) for f in include_folders(directory, words)]
        reached = {local(os.path.join(directory, source))}
        for includer, included in compiler_edges(directory, words, source):
            includer, included = local(includer), local(included)
            reached |= {includer, included}
            if includer in files and included in files and includer != included:
                compiled.add((includer, included))
        for path in reached:
            folders_of[path] += [f for f in folders if f not in folders_of[path]]
        everywhere += [f for f in folders if f not in everywhere]
    lines = set(line_edges(repo, files, folders_of, everywhere + args.folders))

    ours = set()
    for line in open(args.edges):
        source, target = line.split("\t")[:2]
        if os.path.splitext(source)[1].lower() in C_LIKE:
            ours.add((source, target))
    print(f"{os.path.basename(repo)}: {len(commands)} commands, compiler {len(compiled)}, "
          f"lines {len(lines)}, ours {len(ours)}")
    print(f"  precision {ratio(len(ours & lines), len(ours)):.4f}  "
          f"recall {ratio(len(ours & lines), len(lines)):.4f}  "
          f"recall of the compiler's {ratio(len(ours & compiled), len(compiled)):.4f}")
    for title, edges in (("missing", lines - ours), ("missing (compiler)", compiled - ours),
                         ("too many", ours - lines)):
        for source, target in sorted(edges)[:args.show]:
            print(f"  {title}: {source} -> {target}")


if __name__ == "__main__":
    sys.exit(main())
