#!/usr/bin/env python3
"""Prints tables from the JSON files of the benchmark programs.

Times are CPU time, medians of the repetitions. Peers stand as ratios, their time divided
by ours: above 1 ours is faster. What the files do not have is left out.

Rows may have a target: what our time should be at most as a multiple of the best peer's. Those
tables end with two columns, the target and what was reached.
"""
import argparse
import itertools
import json
import pathlib
import re


def nanoseconds(run):
    return run["cpu_time"] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]


# What a cell shows of a run, when ours is the one beside it.

def time(run, _):
    for unit, size in (("ns", 1), ("µs", 1e3), ("ms", 1e6), ("s", 1e9)):
        if nanoseconds(run) / size < 999.5:  # three digits make a thousand of more
            break
    return f"{nanoseconds(run) / size:.3g} {unit}"


def ratio(run, ours):
    if run is ours:
        return time(run, ours)
    value = nanoseconds(run) / nanoseconds(ours)
    return f"{value:.2f}" if value < 9.995 else f"{value:.0f}"


def memory(run, _):
    return f"{run['memory']:.1f}"


def weight(run, ours):
    return f"{run['bytes'] / 1000:.0f} kB" if "bytes" in run else ratio(run, ours)


def rows(label, benchmark, columns, *choices, target=None, peers=None):
    """A row for each combination of the choices, which stand for {}: its label, the benchmarks
    of the columns, each of which puts its own for *, ours first, and its target, which is beside
    the best of these peers, of all when they are not named."""
    of = columns.split("|")
    beside = [of.index(peer) for peer in peers.split("|")] if peers else range(1, len(of))
    return [(label.format(*choice),
             [benchmark.replace("*", column).format(*choice) for column in of],
             target and (target, beside))
            for choice in itertools.product(*choices)]


def transcription(dictionaries):
    libraries, ways = "Qz|Boost|Cereal|Qt5|Stdio", ["Write", "Read"]
    return [*rows("{} array of {:,} ints", "BM_{}<*, IntArray>/{}", libraries, ways, [1000000],
                  target=1.1, peers="Stdio"),
            *rows("{} dictionary of {:,} pairs", "BM_{}<*, Dictionary>/{}", libraries, ways,
                  dictionaries, target=1),
            *rows("{} graph of {:,} nodes", "BM_{}<*, LinkedNodes>/{}", libraries, ways, [100000],
                  target=1)]


def pass_rows(label, benchmark, *choices):
    return rows(label, benchmark, LOOPS, *choices, target=1.1, peers="PlainSelect")


def operations(label, keys, columns, target=None):
    return [row for operation, its in OPERATIONS.items()
            for row in rows(f"{{}} {{:,}} {label}", f"BM_{{}}<*, {keys}>/{{}}", columns, [operation],
                            KEYS, target=target or its)]


KEYS = [100, 1000, 100000]
HASH_TABLES = "here|`std::unordered_map`|Boost|Abseil flat|`QHash`|`GHashTable`"
DICTIONARIES = "StrDict|StdDict|BoostDict|AbslDict|QtDict|GLibMap"
INT_DICTIONARIES = "WordDict|StdInts|BoostInts|AbslInts|QtInts|GLibInts"
SETS = "OurSet|StdSet|BoostSet|AbslSet|QtStrSet|GLibSet"
OPERATIONS = {"Hit": 1.1, "Miss": 1.1, "Insert": 1.5, "Remove": 1.5, "Iterate": 2}
KINDS = ["literal", "anchored", "alternation", "classPlus", "word"]
ENGINES = "ours|std|pcre2|re2|memmem"
LITERAL_SEARCHES = ENGINES.replace("ours", "linear")
TRANSCRIBERS = "here|Boost.Serialization|cereal|QDataStream|`fwrite`, `fread`"
SENDERS = "Qz|Qt5|GLib|Boost|Sigc|Libevent"
LOOPS = "Qz|LibeventSelect|LibeventOwn|Libuv|PlainSelect"
STRINGS = "Qz|Std|Qt5|GLib|Absl|C"
TIMERS = "Qz|Libuv|Libevent"
TABLES = {  # name: cells, heads, rows
    "arrays": (ratio, "Operation|here|standard library", [
        *rows("Append {:,} ints to an empty array", "BM_*_AppendInt/{}", "Array|Vector",
              [32, 1024, 32768]),
        *rows("Append {:,} ints to an empty array", "BM_*_AppendInt/{}", "Array|Vector",
              [1048576], target=1),
        *rows("Index {:,} ints", "BM_*_IndexInt/{}", "Array|Vector", [65536]),
        *rows("Copy an array of {:,} ints", "BM_*_CopyInt/{}", "Array|Vector", [1048576]),
        *[row for name, kind in (("Char", "char"), ("Short", "short"), ("Int", "int"),
                                 ("Double", "double"))
          for row in rows("Find the last of {:,} %ss" % kind, "BM_*/{}",
                          "Array_Find<qz%sArray>|Vector_Find<%s>" % (name, kind),
                          [1000, 100000], target=1)],
        *rows("Sort {:,} random ints", "BM_*, Shape::random>/{}",
              "Array_Sort<qzIntArray|Std_Sort<int", [1000, 1000000], target=0.5),
        *rows("Sort {1:,} ints, {0}", "BM_*, Shape::{0}>/{1}",
              "Array_Sort<qzIntArray|Std_Sort<int", ["ascending", "descending", "constant"],
              [1000000], target=1),
        *rows("Sort {:,} random doubles", "BM_*, Shape::random>/{}",
              "Array_Sort<qzDoubleArray|Std_Sort<double", [1000000]),
        *rows("Sort {1:,} strings: {0}", "BM_*_SortStrings<Texts::{0}>/{1}", "Array|Std",
              ["words", "paths", "sortedWords"], [1000, 100000], target=1.2)]),
    "dictionaries": (ratio, f"Operation|{HASH_TABLES}", [
        *operations("words", "Words", DICTIONARIES), *operations("paths", "Paths", DICTIONARIES),
        *operations("ints", "Ints", INT_DICTIONARIES, 2),
        *operations("words of a set", "Words", SETS)]),
    "entrymemory": (memory, f"Bytes an entry|{HASH_TABLES}", [
        *rows("{:,} words", "BM_Memory<*, Words>/{}/iterations:1", DICTIONARIES, KEYS),
        *rows("{:,} paths", "BM_Memory<*, Paths>/{}/iterations:1", DICTIONARIES, KEYS),
        *rows("{:,} ints", "BM_Memory<*, Ints>/{}/iterations:1", INT_DICTIONARIES, KEYS),
        *rows("{:,} words of a set", "BM_Memory<*, Words>/{}/iterations:1", SETS, KEYS)]),
    "strings": (ratio, "Operation|here|`std::string`|`QByteArray`|`GString`|Abseil|C library", [
        *rows("Join three strings to one of {}", "BM_Str_Join<*>/{}", STRINGS, [16, 40, 99],
              target=0.75),
        *rows("Join two strings and literals to one of 25", "BM_Str_JoinPath<*>", STRINGS,
              target=0.75),
        *rows("Take 1,000 tokens of {}", "BM_Str_Tokens<*>/{}", STRINGS, [5, 12, 20, 50],
              target=0.8),
        *rows("Take 1,000 tokens of {}, four delimiters", "BM_Str_TokensOfSet<*>/{}", STRINGS,
              [5, 20], target=0.8),
        *rows("Copy a string of {:,}", "BM_Str_Copy<*>/{}", STRINGS, [8, 32, 1024, 65536],
              target=1.1, peers="C"),
        *rows("Compare strings of {:,}", "BM_Str_Equal<*>/{}", STRINGS, [8, 1024],
              target=1.1, peers="C"),
        *rows("Find a character in {:,}", "BM_Str_Next<*>/{}", STRINGS, [8, 1024],
              target=1.1, peers="C"),
        *rows("Find it backwards in {:,}", "BM_Str_NextR<*>/{}", STRINGS, [8, 1024],
              target=1.1, peers="C"),
        *rows("Find one of {1} characters in {0:,}", "BM_Str_NextInSet<*>/{0}/{1}", STRINGS,
              [16, 4096], [4, 30], target=1.1, peers="C"),
        *rows("Skip {1} characters in {0:,}", "BM_Str_SkipSet<*>/{0}/{1}", STRINGS,
              [16, 4096], [4, 30], target=1.1, peers="C"),
        *rows("Format a text, an int and a double", "BM_Str_Format<*>", STRINGS,
              target=1.1, peers="C"),
        *rows("Append {:,} characters one by one", "BM_Str_AppendChar<*>/{}", STRINGS,
              [8, 512, 32768]),
        *rows("The same in an aged heap: {:,}", "BM_Str_AppendCharAged<*>/{}", STRINGS, [32768]),
        *rows("Append {:,} characters, ten at a time", "BM_Str_AppendText<*>/{}", STRINGS,
              [512, 32768])]),
    "patterns": (ratio, "Workload|here|`std::regex`|PCRE2|RE2|`memmem`", [
        *rows("Compile: {}", "BM_RegExp_Compile/{}/*", ENGINES, KINDS),
        *rows("Search 1 MB line by line: {}", "BM_RegExp_Lines/{}/*", ENGINES, KINDS, target=1),
        *rows("Find a literal at the end of 1 MB", "BM_RegExp_Megabyte/*", ENGINES, target=1),
        *rows("Search 1 MB line by line: literal, `qzSLinearPattern`",
              "BM_RegExp_Lines/literal/*", LITERAL_SEARCHES, target=1),
        *rows("Find a literal at the end of 1 MB, `qzSLinearPattern`",
              "BM_RegExp_Megabyte/*", LITERAL_SEARCHES, target=1)]),
    "hostile": (time, "Hostile pattern|256 bytes|4,096 bytes|262,144 bytes", [
        *rows("`(a+)+[bc]`", "BM_RegExp_Hostile/nestedPlus/*", "256|4096|262144"),
        *rows(r"`(a\|aa)*[bc]`", "BM_RegExp_Hostile/overlap/*", "256|4096|262144"),
        *rows("`.*.*[xy]`", "BM_RegExp_Hostile/dotStars/*", "256|4096|262144")]),
    "transcription": (ratio, f"Workload|{TRANSCRIBERS}", transcription([10000, 100000, 1000000])),
    "memory": (memory, f"Memory / objects|{TRANSCRIBERS}", transcription([1000000])),
    "sending": (ratio, "Workload|here|Qt|GObject / GLib|Signals2 / Asio|libsigc++|libevent", [
        *rows("An int taken as {}, at once to {}", "BM_Send<*<{}>>/{}", SENDERS,
              ["int", "float"], [1, 10, 100], target=0.75),
        *rows("An int taken as {}, queued and delivered {:,} times", "BM_Queue<*<{}>>/{}", SENDERS,
              ["int", "float"], [100000], target=0.4, peers="Boost")]),
    "passes": (ratio, "Pipes|here|libevent (select)|libevent (epoll)|libuv (epoll)|only `select`", [
        *pass_rows("{}, none ready", "BM_Pass<*>/pipes:{}/ready:0", [1]),
        *pass_rows("{}, {} ready", "BM_Pass<*>/pipes:{}/ready:{}", [10], [1, 10]),
        *pass_rows("{}, none ready", "BM_Pass<*>/pipes:{}/ready:0", [90]),
        *pass_rows("{}, {} ready", "BM_Pass<*>/pipes:{}/ready:{}", [90], [1, 10, 90])]),
    "timers": (ratio, "Workload|here|libuv|libevent", [
        *(row for most, kind in [(16, ""), (1, " of equal duration")]
          for then in ["Stop", "Expire"]
          for row in rows("Start and {} {{:,}} timers{}".format(then.lower(), kind),
                          "BM_Start{}<*>/timers:{{}}/most:{}".format(then, most), TIMERS,
                          [10, 100, 1000]))]),
    "library": (weight, "What|here|with the standard library|with the C library alone", [
        *rows("Start an empty program, CPU time", "BM_Start/CPU/*", "library|stdlib|bare",
              target=1.2, peers="stdlib"),
        *rows("Start an empty program, elapsed time", "BM_Start/elapsed/*", "library|stdlib|bare"),
        *rows("Shared library, stripped", "BM_Size/*", "library|stdlib|bare")]),
}


def load(files):
    """The medians by name, or the runs where a benchmark has only one."""
    found = {}
    for file in files:
        text = file.read_text(encoding="utf-8")
        for run in json.loads(text)["benchmarks"] if text else []:  # a filter may leave none
            if run.get("aggregate_name", "median") == "median" and not run.get("error_occurred"):
                found[run["run_name"]] = run  # the median comes after the repetitions
    return found


def verdict(names, target, runs):
    """The cells for the target and what was reached: ours divided by the best peer's."""
    if not target:
        return [None, None]
    limit, beside = target
    peers = [nanoseconds(runs[names[i]]) for i in beside if names[i] in runs]
    reached = nanoseconds(runs[names[0]]) / min(peers) if peers else None
    return [f"{limit:g}",
            reached and (f"{reached:.2f}" if reached <= limit else f"**{reached:.2f}**")]


def markdown(cell, heads, rows_of_table, runs):
    """The table as a document has it; empty without a run of ours. A miss is bold."""
    lines = [heads.split("|") + ["target", "reached"]]
    for label, names, target in rows_of_table:
        if ours := runs.get(names[0]):
            lines.append([label] + [name in runs and cell(runs[name], ours) for name in names] +
                         verdict(names, cell is not memory and target, runs))
    if len(lines) == 1:
        return ""
    lines = list(zip(*(column for column in zip(*lines) if any(column[1:]))))
    lines.insert(1, ["---"] + ["---:"] * (len(lines[0]) - 1))
    return "".join(f"| {' | '.join(text or '—' for text in line)} |\n" for line in lines)


def update(document, tables):
    """Replaces what stands between <!-- table: NAME --> and <!-- end -->."""
    text = document.read_text(encoding="utf-8")
    document.write_text(re.sub(r"(<!-- table: (\w+) -->\n)(.*?)(?=<!-- end -->)",
                               lambda place: place[1] + (tables[place[2]] or place[3]),
                               text, flags=re.DOTALL), encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--update", metavar="DOCUMENT", type=pathlib.Path,
                        help="replace the tables of this document, too")
    parser.add_argument("files", metavar="FILE", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    runs = load(arguments.files)
    tables = {name: markdown(*table, runs) for name, table in TABLES.items()}
    print("\n".join(filter(None, tables.values())), end="")
    if arguments.update:
        update(arguments.update, tables)


if __name__ == "__main__":
    main()
