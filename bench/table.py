"""Prints the benchmarks' table from what Google Benchmark wrote, and the same as JSON.

    table.py <raw.json> <targets.toml> <results.json> [<exports.txt>]

A figure is the fastest of all repetitions. At the top stands what to do next: rows more than twice as slow as their
peer, the worst first. With a list of all exports, it is a mistake when one of them has no row; [without_row] in
targets.toml names those whose cost is worth none.
"""

import json
import pathlib
import re
import sys
import tomllib

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
SLOW = 2  # times the peer


def fastest_runs(raw):
    """{name: its fastest repetition, with the time in nanoseconds under "ns"}"""
    runs = {}
    for run in raw["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        name = re.sub(r"/repeats:\d+$", "", run["name"])
        run["ns"] = run["real_time"] * NANOSECONDS[run["time_unit"]]
        if name not in runs or run["ns"] < runs[name]["ns"]:
            runs[name] = run
    return runs


def verdict_of(ns, to_peer, goal):
    """Beside the peer where it has been measured here and there: machines differ."""
    if goal is None:
        return None
    is_reached = ns <= goal["ns"] if None in (to_peer, goal.get("peer")) else to_peer <= goal["ns"] / goal["peer"]
    return "reached" if is_reached else "missed"


def make_rows(runs, wanted):
    rows = []
    for name, run in runs.items():
        if name.startswith("memcpy/") or name.endswith("/peer"):
            continue
        row_name, _, forced = name.partition("/target=")
        target, unit = run["label"].split()
        pixels, size = run["pixels"], run["bytes"]
        peer, copy = runs.get(row_name + "/peer"), runs[f"memcpy/{size:.0f}"]
        ours, to_peer = run["ns"] / pixels, run["ns"] / peer["ns"] if peer else None
        goal = None if forced else wanted.get(row_name)
        rows.append({
            "name": name,
            "target": target,
            "unit": unit,
            "count": int(pixels),
            "bytes": int(size),
            "ns": ours,
            "peer": peer["label"] if peer else None,
            "peer_ns": peer["ns"] / pixels if peer else None,
            "to_peer": to_peer,
            "memcpy_ns": copy["ns"] / pixels,
            "to_memcpy": run["ns"] / copy["ns"],
            "wanted_ns": goal and goal["ns"],
            "wanted_to_peer": goal["ns"] / goal["peer"] if goal and "peer" in goal else None,
            "verdict": verdict_of(ours, to_peer, goal),
        })
    return sorted(rows, key=lambda row: row["name"].replace("/target=", "/~"))


def slow_rows(rows):
    """Rows more than SLOW times as slow as their peer, the worst first."""
    slow = [row for row in rows if row["to_peer"] is not None and row["to_peer"] > SLOW]
    return sorted(slow, key=lambda row: -row["to_peer"])


def exports_without_row(exports, row_names, excused):
    """A row is called like its function, without the prefix, and what is behind a slash."""
    measured = {name.partition("/")[0] for name in row_names}
    return [export for export in exports if export.partition("_")[2] not in measured | set(excused)]


def stale_names(rows, wanted):
    """Names of wanted figures that no row has."""
    return sorted(set(wanted) - {row["name"] for row in rows})


def number(value, digits=4):
    return f"{value:.{digits}f}" if value is not None else "-"


def table_lines(heads, lines, left):
    """Columns of text, those of the numbers in `left` flush left, all others flush right."""
    lines = [heads, *lines]
    widths = [max(map(len, column)) for column in zip(*lines)]
    for line in lines:
        cells = (cell.ljust(width) if i in left else cell.rjust(width)
                 for i, (cell, width) in enumerate(zip(line, widths)))
        yield "  ".join(cells).rstrip()


def next_lines(rows):
    slow = slow_rows(rows)
    if not slow:
        return [f"No row is more than {SLOW} times as slow as its peer."]
    lines = [(row["name"], number(row["to_peer"], 2), number(row["ns"]), row["peer"], number(row["peer_ns"]))
             for row in slow]
    return [f"Next: rows more than {SLOW} times as slow as their peer.", "",
            *table_lines(("row", "ours/peer", "ours ns", "peer", "peer ns"), lines, (0, 3))]


def all_lines(rows):
    lines = [(row["name"], number(row["ns"]), row["unit"], row["peer"] or "-", number(row["peer_ns"]),
              number(row["to_peer"], 2), number(row["to_memcpy"], 2), number(row["wanted_ns"]),
              number(row["wanted_to_peer"], 2), row["verdict"] or "")
             for row in rows]
    heads = ("row", "ours ns", "a", "peer", "peer ns", "ours/peer", "ours/memcpy", "wanted ns", "wanted/peer", "")
    return table_lines(heads, lines, (0, 2, 3, 9))


def main():
    if len(sys.argv) not in (4, 5):
        sys.exit(__doc__)
    raw_file, targets_file, results_file, *exports_file = map(pathlib.Path, sys.argv[1:])
    raw = json.loads(raw_file.read_text())
    targets = tomllib.loads(targets_file.read_text())
    rows = make_rows(fastest_runs(raw), targets["wanted"])
    if not rows:
        sys.exit("no row was measured")
    context = {key: raw["context"].get(key) for key in ("date", "num_cpus", "mhz_per_cpu", "load_avg")}
    results = {"machine": context, "next": [row["name"] for row in slow_rows(rows)], "rows": rows}
    results_file.write_text(json.dumps(results, indent=1) + "\n")
    print("\n".join([*next_lines(rows), "", *all_lines(rows), "",
                     "Nanoseconds a pixel or what \"a\" says: the fastest of all repetitions, on one thread unless the"
                     f" row says otherwise. Written to {results_file}."]))
    if exports_file:
        exports = exports_file[0].read_text().split()
        missing = exports_without_row(exports, [row["name"] for row in rows], targets["without_row"])
        missing += [f"{name}, which targets.toml names" for name in stale_names(rows, targets["wanted"])]
        if missing or not exports:
            sys.exit("There is no row of\n" + "\n".join(missing))


if __name__ == "__main__":
    main()
