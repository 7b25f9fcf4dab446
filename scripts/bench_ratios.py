"""Prints the medians of timed programs beside their peers' and against limits.

usage: bench_ratios.py LIMITS.csv RESULT.json...

Benchmarks are named <work>/<who>; the toolkit's own is <work>/vx. A limit is
the most that the toolkit's median may be of a peer's.
"""

import csv
import json
import sys


def medians(paths):
    found = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            for row in json.load(file)["benchmarks"]:
                if row.get("aggregate_name") == "median":
                    work, who = row["run_name"].split("/iterations:")[0].removesuffix("/real_time").rsplit("/", 1)
                    nanoseconds = row["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[row["time_unit"]]
                    found.setdefault(work, {})[who] = nanoseconds
    return found


def main(limits_path, *result_paths):
    with open(limits_path, encoding="utf-8") as file:
        limits = {(row["work"], row["peer"]): float(row["limit"]) for row in csv.DictReader(file)}
    over = 0
    print(f"{'work':44} {'vx ns':>12} {'peer':>28} {'peer ns':>12} {'ratio':>7} {'limit':>6}")
    for work, times in sorted(medians(result_paths).items()):
        own = times.get("vx")
        for peer, theirs in sorted(times.items()):
            if peer == "vx" or own is None:
                continue
            ratio = own / theirs
            limit = limits.get((work, peer))
            verdict = "" if limit is None else "ok" if ratio <= limit else "OVER"
            over += verdict == "OVER"
            shown = "" if limit is None else f"{limit:g}"
            print(f"{work:44} {own:12.1f} {peer:>28} {theirs:12.1f} {ratio:7.3f} {shown:>6} {verdict}")
    return 1 if over else 0


sys.exit(main(*sys.argv[1:]))
