#!/usr/bin/env python3
"""Prints a benchmark report (JSON) as a table: table.py REPORT

A row per subject; the floor is what the operating system takes to hand over the same bytes, the
ratios tell how many times faster pgkit is than the other reader and how many floors it takes. Where
a run handles many records, the last column is pgkit's time for one.
"""

import json
import sys

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def duration(nanoseconds):
    if nanoseconds is None:
        return "-"
    for unit in ("s", "ms", "us", "ns"):
        if nanoseconds >= NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def ratio(numerator, denominator):
    return "-" if None in (numerator, denominator) else f"{numerator / denominator:.1f}"


def main():
    with open(sys.argv[1], encoding="utf-8") as report:
        runs = json.load(report)["benchmarks"]
    rows = {}
    per_record = {}
    for run in runs:
        subject, who = run["name"].rsplit("/", 1)
        if run.get("error_occurred"):
            print(f"{run['name']}: {run['error_message']}", file=sys.stderr)
        else:
            rows.setdefault(subject, {})[who] = run["real_time"] * NANOSECONDS[run["time_unit"]]
            if who == "pgkit" and "per_record" in run:
                per_record[subject] = run["per_record"] * NANOSECONDS["s"]

    layout = "{:34} {:>10} {:>10} {:>10} {:>12} {:>12} {:>12}"
    print(layout.format("", "pgkit", "DCMTK", "floor", "DCMTK/pgkit", "pgkit/floor", "pgkit/record"))
    for subject, times in rows.items():
        pgkit, peer, floor = times.get("pgkit"), times.get("DCMTK"), times.get("floor")
        print(layout.format(subject, duration(pgkit), duration(peer), duration(floor),
                            ratio(peer, pgkit), ratio(pgkit, floor),
                            duration(per_record.get(subject))))


if __name__ == "__main__":
    main()
