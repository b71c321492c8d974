#!/usr/bin/env python3
"""Writes what the shared library costs before anybody calls it, as bench/tables.py reads it: the
CPU and the elapsed time from the start of an empty program to its end, and the size of the
library, stripped. Medians; the programs take turns.
"""
import argparse
import json
import os
import pathlib
import statistics
import subprocess
import tempfile
import time


def start(program):
    """CPU and elapsed seconds of one run, the elapsed ones with its start."""
    before = time.perf_counter()
    process = os.posix_spawn(program, [program], {})
    _, status, usage = os.wait4(process, 0)
    elapsed = time.perf_counter() - before
    if status != 0:
        raise SystemExit(f"{program} failed")
    return usage.ru_utime + usage.ru_stime, elapsed


def starts(programs, rounds):
    taken = {program: [] for program in programs}
    for _ in range(rounds):
        for program in programs:
            taken[program].append(start(program))
    for program, times in taken.items():
        name = pathlib.Path(program).name
        for what, seconds in zip(("CPU", "elapsed"), zip(*times)):
            yield {"run_name": f"BM_Start/{what}/{name}", "time_unit": "s",
                   "cpu_time": statistics.median(seconds)}


def stripped_size(library):
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, library], check=True)
        return os.path.getsize(stripped.name)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=1000)
    parser.add_argument("library")
    parser.add_argument("programs", metavar="PROGRAM", nargs="+")
    arguments = parser.parse_args()
    size = {"run_name": "BM_Size/library", "time_unit": "s", "cpu_time": 0,
            "bytes": stripped_size(arguments.library)}
    runs = [size, *starts(arguments.programs, arguments.rounds)]
    print(json.dumps({"benchmarks": runs}, indent=1))


if __name__ == "__main__":
    main()
