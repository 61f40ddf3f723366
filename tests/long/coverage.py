#!/usr/bin/env python3
"""The lines and branches of src/ that nothing takes, from the counters of builds with GCC.

  coverage.py [--but FILE] BUILD_FOLDER...

In each build all must be taken, but for what the file lists: a line "path: text as it is in the source", and after it,
indented, the reason. What it lists though every build takes it is wrong as well.

A line is taken when it is in any instantiation of a template.

A branch is a way out of a condition in the source. The compiler counts it once for each instantiation,
which is how other tools show it as well; here it is taken when it is in any of them. Ways out are told from each other
by their order, in which all instantiations have the same. Where a condition is constant in some, these have fewer:
those with as many ways out are held together, and each such group must take all of them. The instantiations of a lambda
are not told apart by gcov, only put one after the other; no lambda of src/ has a line with more than one condition, so
its ways out come in pairs.

A line is left out of the branches where the one before it says so, and why:  // No branches: reason
"""
import argparse
import collections
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LEFT_OUT = re.compile(r"// No branches: \S")


def conditions(branches):
    """The counts without the ways out of calls: the usual one, and after it the one that throws."""
    return [one["count"] for one, other in zip(branches, branches[1:] + [{"throw": False}])
            if not one["throw"] and not other["throw"]]


def counters(folder):
    """Of each line of src/, how often it was taken, and the counts of its branches in each function around it."""
    taken, branches = collections.Counter(), collections.defaultdict(dict)
    for data in sorted(folder.rglob("*.gcda")):
        report = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities", data.name],
                                cwd=data.parent, check=True, capture_output=True, text=True).stdout
        parts = [json.loads(part) for part in report.splitlines() if part]
        for compiled_in, file in [(part["current_working_directory"], file) for part in parts for file in part["files"]]:
            path = pathlib.Path(compiled_in, file["file"]).resolve()
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


def listed(path):
    """The places that a file lists: pairs of a path and a text."""
    places = []
    for line in path.read_text().splitlines():
        if line.startswith("  ") and line.strip():
            if not places:
                sys.exit(f"{path}: a reason for nothing: {line}")
            places[-1][1] = True
        elif line and not line.startswith("#"):
            places.append([tuple(line.split(": ", 1)), False])
    for place, has_reason in places:
        if not has_reason:
            sys.exit(f"{path}: no reason for {': '.join(place)}")
    return {place for place, _ in places}


def report(folder, but):
    """Prints what is not taken in a build and not listed, and the sums. What is not taken: lines in all, those listed."""
    taken, branches = counters(folder)
    if not taken or not branches:
        sys.exit(f"coverage.py: no counters of src/ in {folder}")
    texts = {path: [""] + (ROOT / path).read_text().splitlines() for path, _ in taken}
    unlisted, found = 0, set()

    def missing(path, number, what):
        nonlocal unlisted
        text = texts[path][number].strip()
        if (str(path), text) in but:
            found.add((str(path), text))
        else:
            unlisted += 1
            print(f"{path}:{number}: {what}: {text}")

    lines_missing = sorted(place for place, count in taken.items() if count == 0)
    for path, number in lines_missing:
        missing(path, number, "not taken")
    branches_missing, total, left_out = 0, 0, 0
    for (path, number), functions in sorted(branches.items()):
        if LEFT_OUT.search(texts[path][number - 1]):
            left_out += 1
            continue
        for size, sums in ways_out(functions).items():
            total += size
            branches_missing += sums.count(0)
            if 0 in sums:
                missing(path, number, f"taken {sums}")
    copies = sum(len(counts) for functions in branches.values() for counts in functions.values())
    print(f"lines of src/: {len(taken) - len(lines_missing)} of {len(taken)} are taken")
    print(f"branches: {total - branches_missing} of {total} on {len(branches)} lines are taken, {copies} counting every"
          f" instantiation; lines left out: {left_out}")
    return unlisted, found


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--but", type=pathlib.Path, metavar="FILE")
    parser.add_argument("folders", type=pathlib.Path, nargs="+", metavar="BUILD_FOLDER")
    arguments = parser.parse_args()
    but = listed(arguments.but) if arguments.but else set()
    failed, found = False, set()
    for folder in arguments.folders:
        unlisted, found_here = report(folder, but)
        failed |= unlisted != 0
        found |= found_here
    for path, text in sorted(but - found):
        failed = True
        print(f"{arguments.but}: is taken, or not there: {path}: {text}")
    if but:
        print(f"not taken and listed with their reasons: {len(found)} lines")
    sys.exit(failed)


main()
