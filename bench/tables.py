#!/usr/bin/env python3
"""Prints tables from the JSON files of the benchmark programs.

Times are CPU time, medians of the repetitions. Peers stand as ratios, their time divided
by ours: above 1 ours is faster. What the files do not have is left out.
"""
import argparse
import collections
import json
import pathlib
import re
import statistics

Table = collections.namedtuple("Table", "heads cells rows")
Run = collections.namedtuple("Run", "time memory")  # nanoseconds; multiple of the objects


def time_text(time):
    for unit, size in (("ns", 1), ("µs", 1e3), ("ms", 1e6), ("s", 1e9)):
        if time / size < 999.5:  # three digits make a thousand of more
            break
    return f"{time / size:.3g} {unit}"


# The cells of a row from its runs; the first run is ours, and the others may be missing.

def ratios(ours, *peers):
    quotients = [peer and peer.time / ours.time for peer in peers]
    return [time_text(ours.time)] + [q and f"{q:.{2 if q < 9.995 else 0}f}" for q in quotients]


def times(*runs):
    return [run and time_text(run.time) for run in runs]


def memory(*runs):
    return [run and f"{run.memory:.1f}" for run in runs]


def rows(label, benchmark, columns, values=("",)):
    """A label and its benchmarks for each value, put for {n}; each column puts its name for *."""
    return [(label.format(n=f"{n:,}" if isinstance(n, int) else n),
             [benchmark.format(n=n).replace("*", column) for column in columns.split("|")])
            for n in values]


def transcription(dictionaries):
    workloads = (("array of {n} ints", "IntArray", [1000000]),
                 ("dictionary of {n} pairs", "Dictionary", dictionaries),
                 ("graph of {n} nodes", "LinkedNodes", [100000]))
    return [row for label, workload, sizes in workloads for work in ("Write", "Read")
            for row in rows(f"{work.lower()} {label}", f"BM_{work}<*, {workload}>/{{n}}",
                            "Qz|Boost|Cereal|Qt5", sizes)]


def sending(label, value):
    libraries = "|".join(f"{name}<{value}>" for name in "Qz Qt5 GLib Boost Sigc Libevent".split())
    return [*rows(label + " at once to {n}", "BM_Send<*>/{n}", libraries, [1, 10, 100]),
            *rows("{n} × " + label + ", queued and delivered", "BM_Queue<*>/{n}", libraries, [100000])]


def passes(pipes, ready):
    return rows(f"{pipes} pipe{'s' * (pipes > 1)}, {ready or 'none'} ready",
                f"BM_Pass<*>/pipes:{pipes}/ready:{ready}",
                "Qz|LibeventSelect|LibeventOwn|Libuv|PlainSelect")


KEYS = [1000, 100000]
PATTERNS = ["literal", "anchored", "alternation", "classPlus", "word"]
ENGINES = "ours|std|pcre2|re2"
TRANSCRIBERS = "here|Boost.Serialization|cereal|QDataStream"
TABLES = {
    "containers": Table("Operation|here|standard library", ratios, [
        *rows("append {n} ints to an empty array", "BM_*_AppendInt/{n}", "Array|Vector",
              [32, 1024, 32768, 1048576]),
        *rows("index {n} ints", "BM_*_IndexInt/{n}", "Array|Vector", [65536]),
        *rows("copy an array of {n} ints", "BM_*_CopyInt/{n}", "Array|Vector", [1048576]),
        *rows("sort {n} ints (beside `qsort`)", "BM_*_Qsort/{n}", "Array|C", [1000, 1000000]),
        *rows("insert {n} string keys", "BM_*_Insert<StrMap>/{n}", "Dict|Map", KEYS),
    ]),
}
