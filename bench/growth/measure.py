"""Doubles repositories that grow with a number, and reports what costs more than twice as much.

    bench/growth/measure.py [--products] [--pairs] [--only TEXT] [--seconds N] [--seed N]

Each repository is doubled until its pages take a third of a second of processor time, or until it
is as large as it may be. Told is what then costs more than 2.6 times as much as its half, ten
seconds or 400 MiB; the exit code is 1 then. What makes the texts is in texts.py.
"""

import argparse
import contextlib
import os
import random
import resource
import shutil
import sys
import tempfile
import time
from pathlib import Path
from typing import NamedTuple

import texts

PROGRAM = Path(__file__).resolve().parents[2] / "build/release/apps/page_sources/page-sources"
SMALLEST = 250
ENOUGH_SECONDS = 0.35
MOST_SECONDS = 10
MOST_MIB = 400
MOST_GROWTH = 2.6
LARGEST = {"pairs": 64_000, "products": 8_000}


class Cost(NamedTuple):
    seconds: float
    mib: float
    code: int


def write(root, world):
    made = set()
    for path, text in world.items():
        file = root / path
        if file.parent not in made:
            file.parent.mkdir(parents=True, exist_ok=True)
            made.add(file.parent)
        file.write_text(text)


def run(program, repository):
    """Processor time and memory of one run, which is ended soon after it has taken too much."""
    child = os.fork()
    if child == 0:
        resource.setrlimit(resource.RLIMIT_CPU, (2 * MOST_SECONDS, 2 * MOST_SECONDS + 1))
        null = os.open(os.devnull, os.O_RDWR)
        for stream in range(3):
            os.dup2(null, stream)
        index = str(repository.parent / "index.db")
        os.execv(program, [program, "pages", str(repository), "--index", index, "--paths"])
    _, status, used = os.wait4(child, 0)
    return Cost(used.ru_utime + used.ru_stime, used.ru_maxrss / 1024, os.waitstatus_to_exitcode(status))


def cost_of(program, world):
    with contextlib.ExitStack() as stack:
        top = Path(tempfile.mkdtemp(dir="/dev/shm" if os.path.isdir("/dev/shm") else None))
        stack.callback(shutil.rmtree, top)
        write(top / "repository", world)
        return run(program, top / "repository")


def verdict(program, make, largest):
    """What is wrong with how the cost grows, or nothing."""
    size = SMALLEST
    once = cost_of(program, make(size))
    while True:
        size *= 2
        twice = cost_of(program, make(size))
        told = f"{size}: {once.seconds:.2f} to {twice.seconds:.2f} s, {twice.mib:.0f} MiB"
        if twice.code != 0:
            return f"{told}, ended with {twice.code}"
        if twice.seconds > MOST_SECONDS or twice.mib > MOST_MIB:
            return told
        if once.seconds > ENOUGH_SECONDS / 2 and twice.seconds > MOST_GROWTH * once.seconds:
            return told
        if twice.seconds > 2 * ENOUGH_SECONDS or size >= largest:
            return ""
        once = twice


def cases(arguments):
    chosen = []
    if arguments.products or not arguments.pairs:
        chosen += [("products", name, make) for name, make in texts.PRODUCTS.items()]
    if arguments.pairs or not arguments.products:
        pairs = [("pairs", name, make) for name, make in texts.pairs()]
        random.Random(arguments.seed).shuffle(pairs)
        chosen += pairs
    return [case for case in chosen if arguments.only in case[1]]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--products", action="store_true", help="only products of two quantities")
    parser.add_argument("--pairs", action="store_true", help="only pairs of tokens")
    parser.add_argument("--only", default="", help="what the names hold")
    parser.add_argument("--seconds", type=float, default=3600, help="when to stop")
    parser.add_argument("--seed", type=int, default=1, help="of the order of the pairs")
    parser.add_argument("--program", type=Path, default=PROGRAM)
    arguments = parser.parse_args()
    end = time.monotonic() + arguments.seconds
    tried = found = 0
    for kind, name, make in cases(arguments):
        if time.monotonic() > end:
            break
        tried += 1
        if wrong := verdict(arguments.program, make, LARGEST[kind]):
            found += 1
            print(f"{name}: {wrong}", flush=True)
    print(f"{tried} tried, {found} grow too fast")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
