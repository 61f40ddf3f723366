#!/usr/bin/env python3
"""Every row of docs/features.md names tests, and these exist: in CTest, in a source of GoogleTest, or as a tier of
./test --long.

features_test.py SOURCE_FOLDER BUILD_FOLDER
"""

import fnmatch
import json
import pathlib
import re
import subprocess
import sys

source = pathlib.Path(sys.argv[1])
listed = subprocess.run(["ctest", "--test-dir", sys.argv[2], "--show-only=json-v1"],
                        text=True, stdout=subprocess.PIPE, check=True).stdout
tests = {test["name"] for test in json.loads(listed)["tests"]}
for folder in ("tests", "fuzz"):
    for path in (source / folder).rglob("*.[ch]pp"):
        text = path.read_text(encoding="utf-8")
        written = re.findall(r"^TEST(?:_F|_P)?\((\w+), (\w+)\)", text, re.MULTILINE)
        tests |= {f"{suite}.{name}" for suite, name in written}
tiers = {path.name for path in (source / "tests" / "long").iterdir()}

faults = []
features = 0
for line in (source / "docs" / "features.md").read_text(encoding="utf-8").splitlines():
    row = re.fullmatch(r"\| (?!Feature|\*\*)(.*) \| (.*) \|", line)
    if row is None:
        continue
    features += 1
    named = re.findall(r"`([^`]+)`", re.sub(r"\(.*?\)", "", row[2]))
    if not named:
        faults.append(f"no test is named for: {row[1]}")
    for name in named:
        tier = re.fullmatch(r"\./test --long (\w+)", name)
        if tier[1] not in tiers if tier else not fnmatch.filter(tests, name):
            faults.append(f"there is no {name}, which is named for: {row[1]}")

if features < 42 or len(tests) < 200:
    faults.append(f"too little was found: {features} features, {len(tests)} tests")
for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
