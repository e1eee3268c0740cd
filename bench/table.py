"""Prints the benchmarks' table from what Google Benchmark wrote, and the same as JSON.

    table.py <raw.json> <targets.toml> <results.json>

A figure is the fastest of all repetitions.
"""

import json
import pathlib
import sys
import tomllib

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def fastest_runs(raw):
    """{name: its fastest repetition, with the time in nanoseconds under "ns"}"""
    runs = {}
    for run in raw["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        run["ns"] = run["real_time"] * NANOSECONDS[run["time_unit"]]
        if run["name"] not in runs or run["ns"] < runs[run["name"]]["ns"]:
            runs[run["name"]] = run
    return runs


def make_rows(runs, targets):
    rows = []
    for name, run in runs.items():
        if name.startswith("memcpy/") or name.endswith("/peer"):
            continue
        row_name, _, forced = name.partition("/target=")
        pixels, size = run["pixels"], run["bytes"]
        peer, copy = runs.get(row_name + "/peer"), runs[f"memcpy/{size:.0f}"]
        rows.append({
            "name": name,
            "target": run["label"],
            "pixels": int(pixels),
            "bytes": int(size),
            "ns_per_pixel": run["ns"] / pixels,
            "bytes_per_second": size / run["ns"] * 1e9,
            "peer": peer["label"] if peer else None,
            "peer_ns_per_pixel": peer["ns"] / pixels if peer else None,
            "ratio": run["ns"] / peer["ns"] if peer else None,
            "memcpy_ns_per_pixel": copy["ns"] / pixels,
            "wanted_ns_per_pixel": None if forced else targets.get(row_name),
        })
    return sorted(rows, key=lambda row: row["name"].replace("/target=", "/~"))


def print_table(rows):
    def number(value, form="{:.4f}"):
        return form.format(value) if value is not None else "-"

    heads = ("row", "ours ns/px", "GB/s", "peer", "peer ns/px", "ours/peer", "memcpy ns/px", "wanted ns/px", "")
    lines = [heads]
    for row in rows:
        wanted = row["wanted_ns_per_pixel"]
        verdict = "" if wanted is None else "reached" if row["ns_per_pixel"] <= wanted else "missed"
        lines.append((row["name"], number(row["ns_per_pixel"]), number(row["bytes_per_second"] / 1e9, "{:.1f}"),
                      row["peer"] or "-", number(row["peer_ns_per_pixel"]), number(row["ratio"], "{:.2f}"),
                      number(row["memcpy_ns_per_pixel"]), number(wanted), verdict))
    widths = [max(map(len, column)) for column in zip(*lines)]
    left = (0, 3, 8)
    for line in lines:
        cells = (cell.ljust(width) if i in left else cell.rjust(width)
                 for i, (cell, width) in enumerate(zip(line, widths)))
        print("  ".join(cells).rstrip())


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    raw_file, targets_file, results_file = map(pathlib.Path, sys.argv[1:])
    raw = json.loads(raw_file.read_text())
    targets = tomllib.loads(targets_file.read_text())
    rows = make_rows(fastest_runs(raw), targets)
    if not rows:
        sys.exit("no row was measured")
    context = {key: raw["context"].get(key) for key in ("date", "num_cpus", "mhz_per_cpu", "load_avg")}
    results_file.write_text(json.dumps({"machine": context, "rows": rows}, indent=1) + "\n")
    print_table(rows)
    print(f"\nFastest of all repetitions, one thread. Written to {results_file}.")


if __name__ == "__main__":
    main()
