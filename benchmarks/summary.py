#!/usr/bin/env python3
"""Draws ten rows of the first table of docs/performance.md, those of the messages that networks send, for the README.

Usage: summary.py PAGE PLOT            writes the plot
       summary.py --check PAGE PLOT    compares it with the table
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True
from report import PLOTTED, Panel  # noqa: E402

ROWS = {
    "colour": "a colour", "name": "a name", "10_labels": "10 labels", "1000_labels": "1,000 labels",
    "ipv6_prefix_random": "IPv6 prefixes", "notification": "a notification", "request": "a request",
    "1000_policies": "1,000 policies", "all_sixteen": "all payloads at once", "oam_result": "an OAM result",
}  # fmt: skip
BUILDS = ["for x86-64-v3", "for every x86-64"]


def table(page):
    """The ratios of the page's first table: by operation and workload, those of the two builds."""
    lines = pathlib.Path(page).read_text(encoding="utf-8").split("To the fastest peer that takes memory", 1)[1]
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in
            re.search(r"(?:^\|.*\n)+", lines, re.MULTILINE)[0].splitlines()]
    head, rows = rows[0], {row[0]: row for row in rows[2:]}
    # Each entry is that of the two builds, and in brackets another.
    return {(operation, workload): [float(ratio) for ratio in re.findall(r"[\d.]+", rows[workload][head.index(operation)])[:2]]
            for operation in PLOTTED for workload in ROWS}


def drawn(ratios):
    left, top, gap, panels = 120, 44, 30, []
    for operation in PLOTTED:
        values = [value for workload in ROWS for value in ratios[operation, workload]]
        at = left + len(panels) * (Panel.width + gap)
        panels.append(Panel(at, top, len(ROWS), [*values, 1], operation))
        for place, workload in enumerate(ROWS):
            for index, value in enumerate(ratios[operation, workload]):
                panels[-1].ratios(index, place, [value])
    first, width = panels[0], left + len(panels) * (Panel.width + gap)
    for place, name in enumerate(ROWS.values()):
        first.text(left - 8, first.top + Panel.row * (place + 0.5) + 3.5, name, "end")
    for index, build in enumerate(BUILDS):
        first.dot(index, left + 110 * index, 14)
        first.text(left + 8 + 110 * index, 17.5, build, "start")
    title = "time of pavo_zorv / time of the fastest peer that takes memory for each message"
    first.text((left + width) / 2, first.bottom + 30, title)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {first.bottom + 40}" '
            'font-family="sans-serif" font-size="10">\n<rect width="100%" height="100%" fill="#fff"/>\n'
            + "".join(line + "\n" for panel in panels for line in panel.lines) + "</svg>\n")


def write(page, plot):
    pathlib.Path(plot).write_text(drawn(table(page)), encoding="utf-8")


def main():
    if sys.argv[1:2] == ["--check"] and len(sys.argv) == 4:
        if pathlib.Path(sys.argv[3]).read_text(encoding="utf-8") != drawn(table(sys.argv[2])):
            sys.exit(f"{sys.argv[3]} does not show the table; to draw it anew: "
                     f"benchmarks/summary.py {' '.join(sys.argv[2:])}")
    elif len(sys.argv) == 3:
        write(*sys.argv[1:])
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
