#!/usr/bin/env python3
"""Makes the tables of ratios from the JSON output of a benchmark run.

usage: report.py [BENCHMARKS.json...] [--memory FILE] [--server FILE] [--markdown]

A ratio is the median time of the library divided by the median time of the peer, both from the repetitions of one run;
below 1 the library is faster. A goal is the largest acceptable ratio.
"""

import argparse
import json
import re
import statistics
import sys

SHAPES = {
    "flat": "flat record, 12 fields",
    "nested": "nested order, 60 values in 3 levels",
    "wide_sorted": "1,000 fields, sorted",
    "wide_shuffled": "1,000 fields, random order",
    "array_of_documents": "1,000 documents in an array",
    "deep": "100 levels deep",
    "texts": "100 texts of 1 KiB",
    "binary": "1 MiB binary",
    "array_of_numbers": "array of 10,000 numbers",
    "conditions": "20 conditions",
}
ALL = [shape for shape in SHAPES if shape != "conditions"]
TREES = [shape for shape in ALL if shape != "array_of_numbers"]
WITHOUT_BYTES = [shape for shape in ALL if shape != "binary"]
SMALL = [shape for shape in TREES if shape not in ("texts", "binary")]

# operation, peer, {shape: goal}
ROWS = [
    ("bson_to_document", "nlohmann_json",
     {"flat": 0.55, "nested": 0.60, "wide_sorted": 0.40, "wide_shuffled": 0.70, "array_of_documents": 0.80,
      "deep": 0.70, "texts": 0.10, "array_of_numbers": 3}),
    ("bson_to_document", "poco", dict.fromkeys(TREES, 0.5)),
    ("bson_to_document", "libbson", dict.fromkeys(SMALL, 5)),
    ("document_to_bson", "libbson", dict.fromkeys(ALL, 1.1)),
    ("document_to_bson", "nlohmann_json", dict.fromkeys(ALL, 1)),
    ("copy", "nlohmann_json", {"flat": 2, "nested": 2}),
    ("free", "nlohmann_json", {"flat": 1.2, "nested": 1.2}),
    ("read_by_key", "nlohmann_json", {"flat": 1, "nested": 1, "wide_shuffled": 1}),
    ("read_by_path", "nlohmann_json", {"nested": 0.35}),
    ("build_by_setters", "nlohmann_json", {"flat": 1.2, "nested": 1.2}),
    ("set_by_key", "nlohmann_json", {"flat": None, "wide_shuffled": None}),
    ("filter", "nlohmann_json", {"conditions": 1.5}),
    ("value_decode", "nlohmann_json", dict.fromkeys(ALL, 0.5)),
    ("value_encode", "nlohmann_json", dict.fromkeys(ALL, 0.5)),
    ("value_encode", "libbson", dict.fromkeys(ALL)),
    ("value_copy", "nlohmann_json", dict.fromkeys(ALL, 1)),
    ("value_free", "nlohmann_json", dict.fromkeys(WITHOUT_BYTES, 1)),
    ("value_read_by_key", "nlohmann_json", {"flat": 1, "nested": 1, "wide_shuffled": 1}),
    ("value_copy", "boost_json", dict.fromkeys(WITHOUT_BYTES)),
    ("value_free", "boost_json", dict.fromkeys(WITHOUT_BYTES)),
    ("value_read_by_key", "boost_json", {"flat": None, "nested": None, "wide_shuffled": None}),
]


def read_times(paths):
    """Median time in nanoseconds of each benchmark."""
    times = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            benchmarks = json.load(file)["benchmarks"]
        for entry in benchmarks:
            if entry.get("error_occurred"):
                sys.exit(f"{entry['name']}: {entry['error_message']}")
            if entry["run_type"] == "iteration":
                times.setdefault(entry["run_name"].replace("/manual_time", ""), []).append(entry["real_time"])
    return {name: statistics.median(list_of_times) for name, list_of_times in times.items()}


def ratios(times):
    """Rows (operation, shape, peer, ratio, goal, nanoseconds) of what was measured."""
    for operation, peer, goals in ROWS:
        for shape, goal in goals.items():
            own = times.get(f"{operation}/{shape}/database_client")
            other = times.get(f"{operation}/{shape}/{peer}")
            if own and other:
                yield operation.replace("_", " "), SHAPES[shape], peer, own / other, goal, own


def memory_row(path):
    with open(path, encoding="utf-8") as file:
        found = re.search(r"^flat +database_client +([0-9.]+) bytes", file.read(), re.MULTILINE)
    return ("memory", SHAPES["flat"], "bytes per field", float(found[1]), 400) if found else None


# operation, meaning of the figure, goal, pattern of the line with the figure
LINES = [
    ("find through the server", "own us per document", 4, r"find: own ([-0-9.]+) us"),
    ("insert through the server", "own us per document", 5, r"insert: own ([-0-9.]+) us"),
    ("insertMany, Value", "driver's bulk write", 1.3, r"insertMany .* Value: .* ratio ([0-9.]+)"),
    ("insertMany, ObjectProperties", "driver's bulk write", 2, r"insertMany .* ObjectProperties: .* ratio ([0-9.]+)"),
    ("insertMany, documents per second", "write(), at least", 15, r"insertMany .* write\(\) .* ratio ([0-9.]+)"),
    ("cursor, ObjectProperties", "own us per document", 1.3, r"cursor .* ObjectProperties: .* own ([-0-9.]+)"),
    ("cursor, Value", "own us per document", 0.8, r"cursor .* Value: .* own ([-0-9.]+)"),
    ("cursor, BsonView", "own us per document", 0.1, r"cursor .* BsonView: .* own ([-0-9.]+)"),
    ("cursor, ObjectProperties", "own MiB at the peak", 1, r"cursor .* as ObjectProperties ([-+0-9.]+) MiB"),
    ("cursor, Value", "own MiB at the peak", 1, r"cursor .* as Value ([-+0-9.]+)"),
    ("cursor, BsonView", "own MiB at the peak", 1, r"cursor .* as BsonView ([-+0-9.]+)"),
]


def server_rows(text):
    for operation, against, goal, pattern in LINES:
        found = re.search(f"^{pattern}", text, re.MULTILINE)
        if found:
            yield operation, SHAPES["flat"], against, float(found[1]), goal


def is_met(against, value, goal):
    return value >= goal if against.endswith("at least") else value <= goal


def growth(times):
    """Per operation: nanoseconds per field at each size."""
    rows = {}
    for name, time in times.items():
        found = re.fullmatch(r"growth/(\w+)/(\d+)", name)
        if found:
            rows.setdefault(found[1], {})[int(found[2])] = time / int(found[2])
    return rows


def number(value):
    return f"{value:.0f}" if value >= 100 else f"{value:.2f}"


def print_table(titles, rows, markdown):
    widths = [max(len(str(row[i])) for row in [titles, *rows]) for i in range(len(titles))]
    left, right = ("| ", " |") if markdown else ("", "")
    middle = " | " if markdown else "  "
    print(left + middle.join(title.ljust(width) for title, width in zip(titles, widths)).rstrip() + right)
    print(left + middle.join("-" * width for width in widths) + right)
    for row in rows:
        print(left + middle.join(str(cell).ljust(width) for cell, width in zip(row, widths)).rstrip() + right)
    print()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("json", nargs="*")
    parser.add_argument("--memory", help="output of memory_of_a_document")
    parser.add_argument("--server", help="lines of the programs that need a client")
    parser.add_argument("--markdown", action="store_true")
    arguments = parser.parse_args()

    times = read_times(arguments.json)
    rows = list(ratios(times))
    table = [(operation, shape, peer, number(ratio), "" if goal is None else goal,
              "" if goal is None else "yes" if ratio <= goal else "no", f"{own / 1000:.2f}")
             for operation, shape, peer, ratio, goal, own in rows]
    server = ""
    if arguments.server:
        with open(arguments.server, encoding="utf-8") as file:
            server = file.read()
    absolute = [memory_row(arguments.memory)] if arguments.memory else []
    for *what, value, goal in [*filter(None, absolute), *server_rows(server)]:
        table.append((*what, number(value), goal, "yes" if is_met(what[-1], value, goal) else "no", ""))
    print_table(("operation", "shape", "against", "ratio", "goal", "met", "own time, us"), table, arguments.markdown)

    by_operation = growth(times)
    if by_operation:
        sizes = sorted({size for row in by_operation.values() for size in row})
        print("Nanoseconds per field as documents grow:\n")
        print_table(("operation", *(f"{size:,} fields" for size in sizes)),
                    [(operation.replace("_", " "), *(number(row[size]) if size in row else "" for size in sizes))
                     for operation, row in by_operation.items()], arguments.markdown)
    if server:
        print("With a server:\n")
        print("".join(f"- {line}\n" for line in server.splitlines()))


if __name__ == "__main__":
    main()
