#!/usr/bin/env python3
"""Makes a Markdown table of a benchmark report (JSON): table.py REPORT TABLE

A row per subject; the floor is what the operating system takes to hand over the same bytes, the
ratios tell how many times faster pgkit is than the others and how many floors it takes. Where a run
handles many records, the last column is pgkit's time for one. The table is printed, too.
"""

import json
import re
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
        subject, who = re.sub("/min_warmup_time:.*", "", run["name"]).rsplit("/", 1)
        if run.get("error_occurred"):
            print(f"{run['name']}: {run['error_message']}", file=sys.stderr)
        else:
            rows.setdefault(subject, {})[who] = run["real_time"] * NANOSECONDS[run["time_unit"]]
            if who == "pgkit" and "per_record" in run:
                per_record[subject] = run["per_record"] * NANOSECONDS["s"]

    columns = ["", "pgkit", "DCMTK", "GDCM", "floor", "DCMTK/pgkit", "GDCM/pgkit", "pgkit/floor",
               "pgkit/record"]
    lines = [columns, ["---"] + ["---:"] * (len(columns) - 1)]
    for subject, times in rows.items():
        pgkit, floor = times.get("pgkit"), times.get("floor")
        peers = [times.get("DCMTK"), times.get("GDCM")]
        lines.append([subject] + [duration(time) for time in (pgkit, *peers, floor)] +
                     [ratio(peer, pgkit) for peer in peers] +
                     [ratio(pgkit, floor), duration(per_record.get(subject))])
    text = "".join("| " + " | ".join(line) + " |\n" for line in lines)
    with open(sys.argv[2], "w", encoding="utf-8") as table:
        table.write(text)
    print(text, end="")


if __name__ == "__main__":
    main()
