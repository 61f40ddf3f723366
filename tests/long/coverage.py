#!/usr/bin/env python3
"""The lines and branches of src/ that no test takes, from the counters of a build with GCC.

  coverage.py BUILD_FOLDER

A line is taken when it is in any instantiation of a template.

A branch is a way out of a condition as it stands in the source. The compiler counts it once for each instantiation,
which is how other tools show it as well; here it is taken when it is in any of them. Ways out are told from each other
by their order, in which all instantiations have the same. Where a condition is constant in some, these have fewer:
those with as many ways out are held together, and each such group must take all of them. The instantiations of a lambda
are not told apart by gcov, only put one behind the other; no lambda of src/ has a line with more than one condition, so
its ways out come in pairs.

A line is left out of the branches where the one before it says so, and why:  // No branches: reason
"""
import collections
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LEFT_OUT = re.compile(r"// No branches: \S")


def conditions(branches):
    """The counts without the ways out of calls: the usual one, and behind it the one that throws."""
    return [one["count"] for one, other in zip(branches, branches[1:] + [{"throw": False}])
            if not one["throw"] and not other["throw"]]


def counters(folder):
    """Of each line of src/, how often it was taken, and the counts of its branches in each function around it."""
    taken, branches = collections.Counter(), collections.defaultdict(dict)
    for data in sorted(folder.rglob("*.gcda")):
        report = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities", data.name],
                                cwd=data.parent, check=True, capture_output=True, text=True).stdout
        files = [file for part in report.splitlines() if part for file in json.loads(part)["files"]]
        for file in files:
            path = (data.parent / file["file"]).resolve()
            if ROOT / "src" not in path.parents:
                continue
            for line in file["lines"]:
                place = path.relative_to(ROOT), line["line_number"]
                taken[place] += line["count"]
                counts = conditions(line["branches"])
                if counts:
                    function = line.get("function_name"), len(counts)
                    known = branches[place].get(function, [0] * len(counts))
                    branches[place][function] = [a + b for a, b in zip(known, counts)]
    return taken, branches


def ways_out(instances):
    """What the instances of a line come to: lists of counts, one for each number of ways out."""
    groups = {}
    for (function, size), counts in instances.items():
        if function is None:
            size = 2
        sums = groups.setdefault(size, [0] * size)
        for index, count in enumerate(counts):
            sums[index % size] += count
    return groups


def main():
    taken, branches = counters(pathlib.Path(sys.argv[1]))
    if not taken or not branches:
        sys.exit("coverage.py: no counters in src/")
    texts = {path: [""] + (ROOT / path).read_text().splitlines() for path, _ in taken}
    lines_missing = sorted(place for place, count in taken.items() if count == 0)
    for path, number in lines_missing:
        print(f"{path}:{number}: not taken: {texts[path][number].strip()}")
    missing, total, left_out = 0, 0, 0
    for (path, number), functions in sorted(branches.items()):
        if LEFT_OUT.search(texts[path][number - 1]):
            left_out += 1
            continue
        for size, sums in ways_out(functions).items():
            total += size
            missing += sums.count(0)
            if 0 in sums:
                print(f"{path}:{number}: taken {sums}: {texts[path][number].strip()}")
    copies = sum(len(counts) for functions in branches.values() for counts in functions.values())
    print(f"lines of src/: {len(taken) - len(lines_missing)} of {len(taken)} are taken")
    print(f"branches: {total - missing} of {total} on {len(branches)} lines are taken, {copies} counting every"
          f" instantiation; lines left out: {left_out}")
    sys.exit(bool(missing or lines_missing))


main()
