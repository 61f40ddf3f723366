#!/usr/bin/env python3
"""Reads the measurements of the benchmark; prints the ratios, writes them as CSV and plots them.

Usage: report.py FOLDER BUILD...   with FOLDER/BUILD.describe and FOLDER/BUILD-*.json for each build
"""

import collections
import csv
import glob
import json
import math
import os
import statistics
import sys

OURS = "pavo_zorv"
VARIANTS = ["pavo_zorv_released", "pavo_zorv_malloc"]
PEERS = [
    "protobuf_heap",
    "protobuf_arena",
    "protobuf_reused",
    "protobuf_c_pool",
    "protobuf_c_malloc",
    "nanopb",
    "protozero",
]
FLOORS = [
    "floor_memcpy",
    "floor_memcpy_clear_pool",
    "floor_memcpy_clear_malloc",
    "floor_memcmp",
    "floor_record",
    "floor_presence",
]
OPERATIONS = ["decode", "encode", "copy", "measure", "compare"]

# Goals: the ratio to the fastest peer, or for plain bytes to the floor.
GOALS = {
    "decode": {
        "colour": 0.45, "notification": 0.38, "request": 0.41, "1000_policies": 0.45, "10_labels": 0.35,
        "1000_labels": 0.15, "100000_labels": 0.14, "oam_result": 0.25, "all_sixteen": 0.43, "stream_of_1000": 0.48,
    },
    "encode": {
        "notification": 0.51, "request": 0.33, "1000_policies": 0.31, "10_labels": 0.42, "1000_labels": 0.14,
        "100000_labels": 0.14, "oam_result": 0.54, "all_sixteen": 0.47, "stream_of_1000": 0.77,
    },
    "copy": {
        "notification": 0.71, "request": 0.58, "1000_policies": 0.33, "oam_result": 0.21, "all_sixteen": 0.40,
        "stream_of_1000": 1.1,
    },
}  # fmt: skip
GOALS_TO_FLOOR = {
    ("decode", "64_kibibytes"): "floor_memcpy",
    ("encode", "64_kibibytes"): "floor_memcpy",
    ("copy", "64_kibibytes"): "floor_memcpy",
    ("compare", "64_kibibytes"): "floor_memcmp",
}


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

    def ratio(self, operation, workload, contestant, ours=OURS):
        """The median, lowest and highest of the ratios, each within one run."""
        mine = self.runs.get((operation, workload, ours), [])
        other = self.runs.get((operation, workload, contestant), [])
        ratios = [a / b for a, b in zip(mine, other)]
        return (statistics.median(ratios), min(ratios), max(ratios)) if ratios else None

    def fastest_peer(self, operation, workload):
        times = [(self.time(operation, workload, peer), peer) for peer in PEERS]
        times = [entry for entry in times if entry[0] is not None]
        return min(times)[1] if times else None


def goal_of(operation, workload):
    """The goal, and the floor it refers to if that is not the fastest peer."""
    floor = GOALS_TO_FLOOR.get((operation, workload))
    return (1.0, floor) if floor else (GOALS.get(operation, {}).get(workload), None)


def shown(value, pattern="{:.2f}"):
    return pattern.format(value) if value is not None else "-"


def duration(nanoseconds):
    return "{:.1f}".format(nanoseconds) if nanoseconds < 1000 else "{:.0f}".format(nanoseconds)


def print_table(build):
    print(f"\n== Build {build.name}: {build.features}")
    heads = ["heap", "arena", "reused", "c pool", "c malloc", "nanopb", "protozero"]
    floor_heads = ["memcpy", "+pool", "+malloc", "memcmp"]
    for operation in OPERATIONS:
        rows = [workload for workload in build.workloads if build.time(operation, workload, OURS) is not None]
        if not rows:
            continue
        variants = operation in ("decode", "copy")
        print(f"\n{operation}{' with a pool' if variants else ''}: ratios are the time of pavo_zorv to that of each "
              "contestant; below 1 is faster")
        line = f"{'workload':24}{'bytes':>7} {'ours ns':>8} {'fastest':>15} {'ns':>8} {'ratio':>6} {'runs':>11} "
        line += f"{'goal':>5}  |"
        line += "".join(f"{head:>10}" for head in heads) + " |" + "".join(f"{head:>8}" for head in floor_heads)
        if variants:
            line += " | released/fastest malloc/fastest"
        print(line)
        for workload in rows:
            print_row(build, operation, workload, variants)


def print_row(build, operation, workload, variants):
    goal, floor = goal_of(operation, workload)
    fastest = build.fastest_peer(operation, workload)
    ratio = build.ratio(operation, workload, fastest) if fastest else None
    line = f"{workload:24}{build.workloads[workload][1]:>7} {duration(build.time(operation, workload, OURS)):>8} "
    line += f"{fastest or '-':>15} {duration(build.time(operation, workload, fastest)) if fastest else '-':>8} "
    line += f"{shown(ratio and ratio[0]):>6} "
    line += f"{'{:.2f}-{:.2f}'.format(*ratio[1:]) if ratio else '-':>11} "
    line += f"{shown(goal) + ('*' if floor else ' '):>6} |"
    for group, width in ((PEERS, 10), (FLOORS, 8)):
        for other in group:
            against = build.ratio(operation, workload, other)
            line += f"{shown(against and against[0]):>{width}}"
        line += " |"
    if variants and fastest:
        for variant in VARIANTS:
            against = build.ratio(operation, workload, fastest, variant)
            line += f"{shown(against and against[0]):>17}"
    print(line.rstrip(" |"))


def print_goals(builds):
    print("\n== Goals: the ratio to the fastest peer, or to memcpy and memcmp (*). Reached: at most 3 % above")
    heads = "".join(f"{build.name:>10}{'runs':>12}{'':10}{'to':26}" for build in builds)
    print(f"{'':33}{'goal':>7}{heads}".rstrip())
    reached = dict.fromkeys((build.name for build in builds), 0)
    rows = 0
    for operation in OPERATIONS:
        for workload in builds[0].workloads:
            goal, floor = goal_of(operation, workload)
            line = ""
            for build in builds:
                against = floor or build.fastest_peer(operation, workload)
                ratio = build.ratio(operation, workload, against) if goal and against else None
                if ratio:
                    is_reached = ratio[0] <= goal * 1.03
                    reached[build.name] += is_reached
                    line += f"{ratio[0]:>10.2f}{'{:.2f}-{:.2f}'.format(*ratio[1:]):>12}"
                    line += f"{'  reached ' if is_reached else '  not yet '}{against:26}"
            if line:
                rows += 1
                print(f"{operation:9}{workload:24}{goal:>6.2f}{'*' if floor else ' '}{line}".rstrip())
    print("reached: " + ", ".join(f"{name} {count} of {rows}" for name, count in reached.items()))


def print_contestants(builds):
    print("What each contestant does. Each one reproduced the library's bytes before it was timed.")
    table = [("name", "memory", "strings", "checks"), *builds[0].contestants]
    widths = [max(map(len, column)) + 2 for column in zip(*table)]
    for row in table:
        print("".join(f"{text:{width}}" for text, width in zip(row, widths)).rstrip())
    print("Times are CPU times per operation: the median of the fastest times of all runs. 'runs' is the lowest and")
    print("the highest ratio of runs with different heap layouts. * marks goals relative to memcpy or memcmp.")


def write_csv(path, builds):
    with open(path, "w", newline="", encoding="utf-8") as text:
        out = csv.writer(text)
        out.writerow("build operation workload contestant bytes nanoseconds ours_to_it lowest highest runs".split())
        for build in builds:
            for operation, workload, contestant in build.runs:
                case = (operation, workload, contestant)
                row = [build.name, *case, build.workloads[workload][1], f"{build.time(*case):.3f}"]
                ratio = build.ratio(*case)
                row += [f"{value:.4f}" for value in ratio] if ratio else ["", "", ""]
                out.writerow(row + [len(build.runs[case])])


def write_markdown(path, builds):
    """The table of docs/performance.md: a row for each workload, and for each operation the ratios of all builds."""
    lines = [["workload", "bytes", *OPERATIONS], ["---", "--:"] + [":-:"] * len(OPERATIONS)]
    for workload, (_, size) in builds[0].workloads.items():
        row = [workload, str(size)]
        for operation in OPERATIONS:
            peers = [(build, build.fastest_peer(operation, workload)) for build in builds]
            ratios = [build.ratio(operation, workload, peer) if peer else None for build, peer in peers]
            row.append(" / ".join(f"{ratio[0]:.2f}" for ratio in ratios) if all(ratios) else "-")
        lines.append(row)
    with open(path, "w", encoding="utf-8") as text:
        text.writelines("| " + " | ".join(line) + " |\n" for line in lines)


class Plot:
    """A drawing with a row for each case and an axis of powers of ten. Short, since it is kept with the documents."""

    left, right, top, row = 190, 690, 26, 14
    colours = ["#1f77b4", "#ff7f0e", "#2ca02c", "#d62728"]

    def __init__(self, rows, values, title, names):
        self.bottom = self.top + self.row * rows
        self.low, self.high = math.floor(math.log10(min(values))), math.log10(max(values)) + 0.05
        self.lines = [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {self.right + 20} {self.bottom + 40}" '
            'font-family="sans-serif" font-size="10">',
            '<rect width="100%" height="100%" fill="#fff"/>',
        ]
        powers = [10.0**power for power in range(self.low, math.floor(self.high) + 1)]
        steps = [step * power for power in powers for step in range(1, 10) if math.log10(step * power) <= self.high]
        self.line("#e8e8e8", *(f"M{self.x(step)} {self.top}V{self.bottom}" for step in steps))
        self.line("#888", f"M{self.x(1)} {self.top}V{self.bottom}")
        for power in powers:
            self.text(self.x(power), self.bottom + 13, f"{power:g}", "middle")
        self.text((self.left + self.right) / 2, self.bottom + 30, title, "middle")
        for index, name in enumerate(names):
            self.dot(index, self.left + 6 + 90 * index, self.top - 14)
            self.text(self.left + 14 + 90 * index, self.top - 10, name)

    def x(self, ratio):
        share = (math.log10(ratio) - self.low) / (self.high - self.low)
        return round(self.left + share * (self.right - self.left), 1)

    def y(self, place):
        return self.top + self.row * place + self.row / 2

    def line(self, colour, *parts):
        self.lines.append(f'<path stroke="{colour}" fill="none" d="{"".join(parts)}"/>')

    def text(self, x, y, text, anchor="start"):
        self.lines.append(f'<text x="{x}" y="{y}" text-anchor="{anchor}">{text}</text>')

    def dot(self, index, x, y):
        self.lines.append(f'<circle fill="{self.colours[index]}" cx="{x}" cy="{y}" r="2.5"/>')

    def range(self, index, place, middle, least, greatest):
        y = self.y(place) + 3 * index - 1.5
        self.line(self.colours[index], f"M{self.x(least)} {y}H{self.x(greatest)}")
        self.dot(index, self.x(middle), y)

    def goal(self, place, ratio):
        self.line("#000", f"M{self.x(ratio)} {self.y(place) - 5}v10")

    def write(self, path):
        with open(path, "w", encoding="utf-8") as text:
            text.writelines(line + "\n" for line in [*self.lines, "</svg>"])


def draw(path, builds):
    rows = [(operation, workload) for operation in OPERATIONS for workload in builds[0].workloads]
    ratios = {}
    for row in rows:
        for index, build in enumerate(builds):
            fastest = build.fastest_peer(*row)
            if fastest and (ratio := build.ratio(*row, fastest)):
                ratios.setdefault(row, {})[index] = ratio
    if not ratios:
        return
    values = [value for each in ratios.values() for ratio in each.values() for value in ratio]
    title = "time of pavo_zorv / time of the fastest peer (bars: lowest and highest run; upright lines: goals)"
    plot = Plot(len(ratios), values + [1], title, [build.name for build in builds])
    for place, (row, of_builds) in enumerate(ratios.items()):
        plot.text(plot.left - 6, plot.y(place) + 3.5, " ".join(row), "end")
        goal, floor = goal_of(*row)
        if goal and not floor:
            plot.goal(place, goal)
        for index, ratio in of_builds.items():
            plot.range(index, place, *ratio)
    plot.write(path)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    folder = sys.argv[1]
    builds = [Build(folder, name) for name in sys.argv[2:]]
    print_contestants(builds)
    for build in builds:
        print_table(build)
    print_goals(builds)
    write_csv(os.path.join(folder, "results.csv"), builds)
    write_markdown(os.path.join(folder, "table.md"), builds)
    draw(os.path.join(folder, "ratios.svg"), builds)


if __name__ == "__main__":
    main()
