#!/usr/bin/env python3
"""Reads the measurements of the benchmark; prints the ratios, and writes them as CSV, as a page's tables and as a plot.

Usage: report.py FOLDER BUILD...   with FOLDER/BUILD.describe and FOLDER/BUILD-*.json for each build
       report.py --store FOLDER PAGE PLOT   puts the tables into the page, the plot where it belongs, and the README's
                                            plot beside the page
"""

import collections
import csv
import glob
import json
import math
import os
import pathlib
import re
import shutil
import statistics
import sys

OURS = "pavo_zorv"
OURS_WITH_MALLOC = "pavo_zorv_malloc"
OUR_BASELINE = "pavo_zorv_baseline"  # the baseline build, timed in the same process as that for x86-64-v3
FLOOR = "floor"
# The peers, in two classes that are never mixed. Who takes nothing to encode, to measure or to compare belongs to the
# first, unless it keeps what it took before.
WITH_MALLOC = ["protobuf_heap", "protobuf_c_malloc"]
TAKING_MEMORY = [*WITH_MALLOC, "protobuf_arena", "protobuf_c_pool", "nanopb", "protozero"]
USED_AGAIN = ["protobuf_reused", "protozero_reused"]
TABULATED = ["decode", "encode", "encode_once", "copy", "measure"]
OPERATIONS = [*TABULATED, "compare"]
PLOTTED = ["decode", "encode", "copy"]
BASELINE_LIMIT = 1.5
SLOWER = 1.02  # from here on, what is shown is no noise

# Goals: the ratio to the fastest of all peers.
GOALS = {
    "decode": {
        "10_labels": 0.42, "1000_labels": 0.14, "100000_labels": 0.18, "1000_policies": 0.42, "colour": 0.45,
        "notification": 0.42, "request": 0.42, "all_sixteen": 0.43, "stream_of_1000": 0.50, "oam_result": 0.25,
        "64_kibibytes": 1.0,
    },
    "encode": {
        "10_labels": 0.45, "1000_labels": 0.16, "100000_labels": 0.18, "1000_policies": 0.32, "colour": 1.0,
        "notification": 0.48, "request": 0.33, "all_sixteen": 0.42, "stream_of_1000": 0.80, "oam_result": 0.54,
        "64_kibibytes": 1.0,
    },
    "copy": {
        "10_labels": 0.95, "1000_policies": 0.38, "colour": 1.7, "notification": 0.80, "request": 0.60,
        "all_sixteen": 0.42, "stream_of_1000": 1.1, "oam_result": 0.22, "64_kibibytes": 1.0,
    },
}  # fmt: skip


class Build:
    """The times of one build: for each case, the fastest time of each run of the program."""

    def __init__(self, folder, name):
        self.name = name
        self.features = ""
        self.contestants = []
        self.workloads = {}
        with open(os.path.join(folder, name + ".describe"), encoding="utf-8") as lines:
            for line in lines:
                word, *rest = line.rstrip("\n").split("\t")
                if word == "features":
                    self.features = rest[0]
                elif word == "contestant":
                    self.contestants.append(rest)
                elif word == "workload":
                    self.workloads[rest[0]] = (int(rest[1]), int(rest[2]))
        self.names = [contestant[0] for contestant in self.contestants]
        self.runs = collections.defaultdict(list)
        for path in sorted(glob.glob(os.path.join(glob.escape(folder), name + "-*.json"))):
            times = collections.defaultdict(list)
            with open(path, encoding="utf-8") as text:
                for entry in json.load(text)["benchmarks"]:
                    if entry["run_type"] == "iteration":
                        times[tuple(entry["run_name"].split("/"))].append(entry["cpu_time"])
            # The fastest of a run's repetitions: disturbances only add to the time, and the clock rate of a virtual
            # machine may change by half during some of them.
            for case, values in times.items():
                self.runs[case].append(min(values))

    def time(self, operation, workload, contestant):
        values = self.runs.get((operation, workload, contestant))
        return statistics.median(values) if values else None

    def ratios(self, operation, workload, contestant, ours=OURS):
        """The ratio in each run."""
        mine = self.runs.get((operation, workload, ours), [])
        other = self.runs.get((operation, workload, contestant), [])
        return [a / b for a, b in zip(mine, other)]

    def ratio(self, *case, **ours):
        ratios = self.ratios(*case, **ours)
        return statistics.median(ratios) if ratios else None

    def fastest(self, operation, workload, peers):
        times = [(self.time(operation, workload, peer), peer) for peer in peers]
        return min((entry for entry in times if entry[0] is not None), default=(None, None))[1]

    def rows(self):
        return [(o, w) for o in OPERATIONS for w in self.workloads if self.time(o, w, OURS) is not None]


def shown(value):
    return f"{value:.2f}" if value is not None else "-"


def duration(nanoseconds):
    return f"{nanoseconds:.{1 if nanoseconds < 1000 else 0}f}"


def printed(rows):
    """Prints a table: words to the left, numbers to the right."""
    widths = [max(map(len, column)) for column in zip(*rows)]
    for row in rows:
        cells = [cell.ljust(width) if i == 0 else cell.rjust(width) for i, (cell, width) in enumerate(zip(row, widths))]
        print("  ".join(cells).rstrip())


def print_contestants(build):
    print("What each contestant does. Each one reproduced the library's bytes before it was timed.")
    table = [["name", "memory", "strings", "checks"], *build.contestants]
    widths = [max(map(len, column)) + 2 for column in zip(*table)]
    for row in table:
        print("".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def print_ratios(build):
    print(f"\n== Build {build.name}: {build.features}")
    for operation in OPERATIONS:
        rows = [workload for of, workload in build.rows() if of == operation]
        known = [*build.names, *sorted({one for _, _, one in build.runs} - {*build.names})]
        others = [one for one in known if one != OURS and any(build.time(operation, row, one) for row in rows)]
        if not others:
            continue
        print(f"\n{operation}: time on this machine, and its ratio to each other's; below 1, the library is faster")
        table = [[operation, "ns", "fastest that takes memory", "runs", *others]]
        for row in rows:
            fastest = build.fastest(operation, row, TAKING_MEMORY)
            ratios = build.ratios(operation, row, fastest)
            to_fastest = f"{fastest} {statistics.median(ratios):.2f}" if ratios else "-"
            of_runs = f"{min(ratios):.2f}-{max(ratios):.2f}" if ratios else "-"
            to_each = [shown(build.ratio(operation, row, other)) for other in others]
            table.append([row, duration(build.time(operation, row, OURS)), to_fastest, of_runs, *to_each])
        printed(table)


def print_goals(builds):
    table = [["goals: the ratio to the fastest of all peers", "goal", *(f"{build.name}" for build in builds)]]
    missed = 0
    for operation, workload in builds[0].rows():
        goal = GOALS.get(operation, {}).get(workload)
        if goal is None:
            continue
        row = [f"{operation} {workload}", shown(goal)]
        for build in builds:
            fastest = build.fastest(operation, workload, TAKING_MEMORY + USED_AGAIN)
            ratio = build.ratio(operation, workload, fastest)
            missed += ratio is not None and ratio > 1.03 * goal
            row.append(shown(ratio) + ("" if ratio is None or ratio <= 1.03 * goal else " missed"))
        table.append(row)
    if len(table) > 1:
        print()
        printed(table)
        print(f"missed by over 3 %: {missed}")


def write_csv(path, builds):
    with open(path, "w", encoding="utf-8", newline="") as text:
        out = csv.writer(text)
        heads = ["build", "operation", "workload", "contestant", "messages", "bytes", "nanoseconds"]
        out.writerow([*heads, "ratio_median", "ratio_lowest", "ratio_highest", "runs"])
        for build in builds:
            for operation, workload, contestant in build.runs:
                ratios = build.ratios(operation, workload, contestant)
                row = [build.name, operation, workload, contestant, *build.workloads[workload]]
                row.append(f"{build.time(operation, workload, contestant):.3f}")
                of_all = [statistics.median(ratios), min(ratios), max(ratios)] if ratios else []
                row += [f"{value:.4f}" for value in of_all] or ["", "", ""]
                out.writerow([*row, len(build.runs[operation, workload, contestant])])


def entry(ratios, floor):
    """That of each build, in bold if one is slower, and that of the floor."""
    builds = " / ".join(map(shown, ratios))
    return f"{f'**{builds}**' if round(max(ratios), 2) > SLOWER else builds} ({shown(floor)})"


def table_to(peers, builds, operations):
    """A row for each workload, with the ratios of the builds and of the floor to the fastest of the peers."""
    lines = [["workload", "messages", "bytes", *operations], ["---", "--:", "--:"] + [":-:"] * len(operations)]
    for workload, (messages, size) in builds[0].workloads.items():
        entries = []
        for operation in operations:
            fastest = [build.fastest(operation, workload, peers) for build in builds]
            ratios = [build.ratio(operation, workload, peer) for build, peer in zip(builds, fastest)]
            floor = builds[0].ratio(operation, workload, fastest[0], ours=FLOOR)
            complete = all(ratio is not None for ratio in [*ratios, floor])
            entries.append(entry(ratios, floor) if complete else "-")
        lines.append([workload, f"{messages:,}", f"{size:,}", *entries])
    return ["| " + " | ".join(line) + " |" for line in lines]


def sentence_on_slower(table):
    """In how many rows of a table a build is slower, and how much at most."""
    head, _, *rows = [line.strip("| ").split(" | ") for line in table]
    parts = []
    for operation, *entries in list(zip(head, *rows))[3:]:
        ratios = [max(map(float, re.findall(r"[\d.]+", each.split("(")[0]))) for each in entries if each.startswith("**")]
        if ratios:
            rows_of_all = len(entries) - entries.count("-")
            parts.append(f"{operation} in {len(ratios)} of {rows_of_all} rows (up to {max(ratios):.2f})")
    return [f"Slower with one build or both: {', '.join(parts) or 'nothing'}."]


def sentence_on_builds(build):
    ratios = {row: build.ratio(*row, OURS, ours=OUR_BASELINE) for row in build.rows()}
    ratios = {row: ratio for row, ratio in ratios.items() if ratio is not None}
    if not ratios:
        return []
    above = [f"{' '.join(row)} ({ratio:.2f})" for row, ratio in ratios.items() if ratio > BASELINE_LIMIT]
    least, most = min(ratios.values()), max(ratios.values())
    return [f"The baseline build takes {least:.2f} to {most:.2f} times as long as the v3 build; over {BASELINE_LIMIT} "
            f"times: {', '.join(above) or 'nowhere'}."]


def range_to(build, operation, peers, ours=OURS):
    fastest = {workload: build.fastest(operation, workload, peers) for workload in build.workloads}
    ratios = [build.ratio(operation, workload, peer, ours=ours) for workload, peer in fastest.items()]
    ratios = [ratio for ratio in ratios if ratio is not None]
    return f"{min(ratios):.2f} to {max(ratios):.2f}" if ratios else "-"


def sentence_on_malloc(build):
    decoding = range_to(build, "decode", WITH_MALLOC, OURS_WITH_MALLOC)
    copying = range_to(build, "copy", WITH_MALLOC, OURS_WITH_MALLOC)
    return [f"With `malloc` and `free` on both sides, decoding takes the {build.name} build {decoding} of the fastest "
            f"peer's time, and copying {copying}."]


def sentence_on_comparing(build):
    comparing = range_to(build, "compare", TAKING_MEMORY)
    return [f"Comparing takes {comparing} of the time of its only peer, the reflection of Protocol Buffers C++."]


def write_markdown(path, builds):
    """What docs/performance.md shows."""
    first, second = (table_to(peers, builds, operations) for peers, operations in
                     ((TAKING_MEMORY, TABULATED), (USED_AGAIN, ["decode", "encode", "copy"])))
    parts = [
        ["To the fastest peer that takes memory for each message:"],
        first,
        sentence_on_slower(first),
        ["To one object or string that is used again, and takes none:"],
        second,
        sentence_on_slower(second),
        sentence_on_builds(builds[0]),
        sentence_on_malloc(builds[0]),
        sentence_on_comparing(builds[0]),
    ]
    with open(path, "w", encoding="utf-8") as text:
        text.write("\n\n".join("\n".join(part) for part in parts if part) + "\n")


class Panel:
    """A part of the plot: one operation, with an axis of powers."""

    width, row = 180, 16
    colours = ["#1f77b4", "#ff7f0e"]

    def __init__(self, left, top, rows, values, title):
        self.left, self.top, self.bottom = left, top, top + self.row * rows
        self.low, self.high = math.log(min(values) * 0.9), math.log(max(values) * 1.1)
        self.lines = []
        steps = [step * 10.0**power for power in range(-3, 3) for step in (1, 2, 5)]
        for step in steps:
            if self.low <= math.log(step) <= self.high:
                self.line("#888" if step == 1 else "#ddd", f"M{self.x(step)} {self.top}V{self.bottom}")
                self.text(self.x(step), self.bottom + 13, f"{step:g}")
        self.text(left + self.width / 2, top - 8, title)

    def x(self, ratio):
        return round(self.left + (math.log(ratio) - self.low) / (self.high - self.low) * self.width, 1)

    def line(self, colour, path):
        self.lines.append(f'<path stroke="{colour}" d="{path}"/>')

    def text(self, x, y, text, anchor="middle"):
        self.lines.append(f'<text x="{x}" y="{y}" text-anchor="{anchor}">{text}</text>')

    def dot(self, index, x, y):
        self.lines.append(f'<circle fill="{self.colours[index]}" cx="{x}" cy="{y}" r="2.5"/>')

    def ratios(self, index, place, ratios):
        y = self.top + self.row * (place + 0.5) + 3 * index - 1.5
        self.line(self.colours[index], f"M{self.x(min(ratios))} {y}H{self.x(max(ratios))}")
        self.dot(index, self.x(statistics.median(ratios)), y)


def draw(path, builds):
    """A panel for each operation and a row for each workload. Short, since it is kept with the documents."""
    names, left, top, gap = list(builds[0].workloads), 170, 44, 30
    panels = []
    for operation in PLOTTED:
        ratios = {}
        for place, workload in enumerate(names):
            for index, build in enumerate(builds):
                values = build.ratios(operation, workload, build.fastest(operation, workload, TAKING_MEMORY))
                if values:
                    ratios[index, place] = values
        if ratios:
            at = left + len(panels) * (Panel.width + gap)
            values = [value for each in ratios.values() for value in each]
            panels.append(Panel(at, top, len(names), [*values, 1], operation))
            for (index, place), values in ratios.items():
                panels[-1].ratios(index, place, values)
    if not panels:
        return
    first, width = panels[0], left + len(panels) * (Panel.width + gap)
    for place, name in enumerate(names):
        first.text(left - 8, first.top + Panel.row * (place + 0.5) + 3.5, name, "end")
    for index, build in enumerate(builds):
        first.dot(index, left + 90 * index, 14)
        first.text(left + 8 + 90 * index, 17.5, build.name, "start")
    title = "time of pavo_zorv / time of the fastest peer that takes memory for each message"
    first.text((left + width) / 2, first.bottom + 30, title)
    with open(path, "w", encoding="utf-8") as text:
        text.write(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {first.bottom + 40}" '
                   'font-family="sans-serif" font-size="10">\n<rect width="100%" height="100%" fill="#fff"/>\n')
        text.writelines(line + "\n" for panel in panels for line in panel.lines)
        text.write("</svg>\n")


def store(folder, page, plot):
    """Replaces what the page shows between two comments."""
    path = pathlib.Path(page)
    start, end = "<!-- Written by ./bench --store. -->\n", "<!-- End of what it writes. -->\n"
    before, rest = path.read_text(encoding="utf-8").split(start)
    _, after = rest.split(end)
    table = pathlib.Path(folder, "table.md").read_text(encoding="utf-8")
    path.write_text(f"{before}{start}\n{table}\n{end}{after}", encoding="utf-8")
    shutil.copyfile(os.path.join(folder, "ratios.svg"), plot)
    import summary  # which draws with what is above

    summary.write(page, path.with_name(path.stem + "_summary.svg"))


def main():
    if sys.argv[1:2] == ["--store"] and len(sys.argv) == 5:
        store(*sys.argv[2:])
        return
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    folder = sys.argv[1]
    builds = [Build(folder, name) for name in sys.argv[2:]]
    print_contestants(builds[0])
    for build in builds:
        print_ratios(build)
    print_goals(builds)
    write_csv(os.path.join(folder, "results.csv"), builds)
    write_markdown(os.path.join(folder, "table.md"), builds)
    draw(os.path.join(folder, "ratios.svg"), builds)


if __name__ == "__main__":
    main()
