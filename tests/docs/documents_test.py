#!/usr/bin/env python3
"""The Markdown documents: their links lead to files that are there, tests that they name exist, the README shows a
program and a message that are what they seem, the numbers of messages and functions are right, and C programs zero the
records that they fill.

documents_test.py SOURCE_FOLDER [ZORV_INSPECT]
"""

import pathlib
import re
import subprocess
import sys

source = pathlib.Path(sys.argv[1])
faults = []


def headings(page):
    """What links to the headings of a page end in."""
    text = re.sub(r"```.*?```", "", page.read_text(encoding="utf-8"), flags=re.DOTALL)
    return {re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", text, re.MULTILINE)}


documents = [path for path in source.rglob("*.md") if "build" not in path.relative_to(source).parts[0]]
links = 0
for document in documents:
    text = re.sub(r"```.*?```", "", document.read_text(encoding="utf-8"), flags=re.DOTALL)
    for target in re.findall(r"\]\(([^)\s]+)\)", text):
        if re.match(r"https?:", target):
            continue
        links += 1
        path, _, heading = target.partition("#")
        page = document.parent / path if path else document
        if not page.exists():
            faults.append(f"{document.relative_to(source)}: {target} is not there")
        elif heading and heading not in headings(page):
            faults.append(f"{document.relative_to(source)}: {target} is no heading there")

# The tests that CONFORMANCE.md names, and those that there are.
named = set(re.findall(r"`((?:difference|same_messages)\.\w+)`", (source / "CONFORMANCE.md").read_text(encoding="utf-8")))
written = set()
for path in (source / "tests" / "interoperability").glob("*.cpp"):
    for suite, name in re.findall(r"^TEST(?:_P)?\((\w+), (\w+)\)", path.read_text(encoding="utf-8"), re.MULTILINE):
        written.add(f"{suite}.{name}")
faults += [f"CONFORMANCE.md names {name}, which is no test" for name in sorted(named - written)]
faults += [f"CONFORMANCE.md does not name {name}" for name in sorted(written - named) if name.startswith("difference.")]

# The tests that SECURITY.md names: a suite and a test, or the beginning of its name, that the sources of the tests have.
sources = "\n".join(path.read_text(encoding="utf-8") for folder in ("tests", "fuzz")
                    for pattern in ("*.cpp", "*.hpp", "*.bash", "CMakeLists.txt") for path in (source / folder).rglob(pattern))
promised = re.findall(r"`([a-z]\w+)\.(\*|[a-z]\w*…?)`", (source / "SECURITY.md").read_text(encoding="utf-8"))
faults += [] if promised else ["SECURITY.md names no test"]
for suite, name in promised:
    test = "" if name == "*" else rf"\b{name[:-1]}" if name.endswith("…") else rf"\b{name}\b"
    if not re.search(rf"\b{suite}\b", sources) or not re.search(test, sources):
        faults.append(f"SECURITY.md names {suite}.{name}, which is no test")

# What the README shows.
readme = (source / "README.md").read_text(encoding="utf-8")
program = re.search(r"```c\n(.*?)```", readme, re.DOTALL)
example = (source / "examples" / "c" / "readme.c").read_text(encoding="utf-8").split("\n", 1)[1]
if program is None or program[1] != example:
    faults.append("README.md does not show the program of examples/c/readme.c")
view = re.search(r"```text\n(.*?)```", readme, re.DOTALL)
if view is None:
    faults.append("README.md shows no message")
elif len(sys.argv) > 2:
    bytes = "".join(line[8:44] for line in view[1].splitlines())
    shown = subprocess.run([sys.argv[2], "hex", "api_msg"], input=bytes, text=True, capture_output=True, check=False)
    if shown.returncode != 0 or shown.stdout != view[1]:
        faults.append(f"README.md shows another view than zorv-inspect:\n{shown.stdout}{shown.stderr}")

# Where the library is slower, in the table with which the README's plot is drawn: only where the README says so. Entries
# of the two tables are bold if a build is slower.
performance = (source / "docs" / "performance.md").read_text(encoding="utf-8")
slower_to_encode = [{"colour", "stream_of_1000"}, {"colour", "stream_of_1000", "name", "ipv4_prefix", "labels_and_null"}]
tables = [[line.strip("| \n").split(" | ") for line in table.splitlines()]
          for table in re.findall(r"(?:^\|.*\n)+", performance.partition("<!-- End")[0], re.MULTILINE)]
entries = 0
for number, (head, _, *rows) in enumerate(tables):
    for operation, workload, entry in ((head[i], row[0], row[i]) for row in rows for i in range(3, len(head))):
        ratios = re.fullmatch(r"(\*\*)?([\d.]+) / ([\d.]+)(\*\*)? \([\d.]+\)", entry)
        if ratios is None:
            continue
        entries += 1
        slower = [float(ratio) > 1.02 for ratio in ratios.group(2, 3)]
        if {ratios[1], ratios[4]} != ({"**"} if any(slower) else {None}):
            faults.append(f"docs/performance.md: {operation} {workload} should be bold, or should not")
        if number == 0 and operation in ("decode", "encode"):
            for build, is_slower in enumerate(slower):
                if is_slower and (operation == "decode" or workload not in slower_to_encode[build]):
                    faults.append(f"README.md does not say that it is slower to {operation} {workload}: {entry}")
if entries < 100:
    faults.append(f"docs/performance.md has {entries} entries")

# What the README's commands say of themselves.
for command, usage in (("demo", "usage: ./demo\nInstalls"), ("bench", "usage: ./bench [OPTION...]\n  --quick"),
                       ("test", "usage: ./test [--help | --long [TIER...]]\nInstalls")):
    for argument, status in (("--help", 0), ("now", 2)):
        ran = subprocess.run([(source / command).resolve(), argument], text=True, capture_output=True, check=False)
        said_of_itself, nothing = (ran.stdout, ran.stderr) if status == 0 else (ran.stderr, ran.stdout)
        expected = usage if status == 0 else usage[:len("usage: ./") + len(command)]
        if ran.returncode != status or not said_of_itself.startswith(expected) or nothing:
            faults.append(f"./{command} {argument}: exit status {ran.returncode}: {ran.stdout}{ran.stderr}")

# Where records are explained it is said that they are to be zeroed.
header = (source / "include" / "pavo_zorv.h").read_text(encoding="utf-8")
for name, text in (("include/pavo_zorv.h", header), ("README.md", readme),
                   ("docs/getting_started.md", (source / "docs" / "getting_started.md").read_text(encoding="utf-8"))):
    if "**Zero a record before you fill it" not in text:
        faults.append(f"{name} does not say that a record is to be zeroed")

# C programs that are shown do so: a record without an initialiser is the output of a function before all else.
messages = re.findall(r"^  (?:plain|with_options)\((\w+)\)",
                      (source / "include" / "pavo_zorv_messages.h").read_text(encoding="utf-8"), re.MULTILINE)
records = [name for name in re.findall(r"^typedef struct (\w+) {", header, re.MULTILINE) if not name.startswith("pavo_")]
programs = {path.name: path.read_text(encoding="utf-8") for path in (source / "examples" / "c").glob("*.c")}
for name in ("pavo_zorv.h", "pavo_zorv_memory.h"):
    comments = (source / "include" / name).read_text(encoding="utf-8")
    programs[name] = "\n".join(re.findall(r"@code{\.c}\n(.*?)@endcode", comments, re.DOTALL)).replace("\n * ", "\n")
declared = {";": 0, " = ": 0}
for name, program in programs.items():
    for found in re.finditer(rf"^ *(?:{'|'.join(records)}) (\w+)(;| = )", program, re.MULTILINE):
        declared[found[2]] += 1
        use = re.search(rf"[^;{{}}]*\b{found[1]}\b", program[found.end():])
        if found[2] == ";" and (use is None or not re.search(rf"\w\((?:.*, )?&{found[1]}$", use[0], re.DOTALL)):
            faults.append(f"{name}: the record {found[1]} is filled without having been zeroed")

# The messages that take options, where they are named.
with_options = set(re.findall(r"^  with_options\((\w+)\)",
                              (source / "include" / "pavo_zorv_messages.h").read_text(encoding="utf-8"), re.MULTILINE))
introduction = (source / "docs" / "reference_mode.md").read_text(encoding="utf-8").partition("\n## ")[0]
for name in sorted(with_options ^ (set(re.findall(r"`(\w+)`", introduction)) & set(messages))):
    faults.append(f"docs/reference_mode.md and include/pavo_zorv_messages.h differ about the options of {name}")

# The numbers of messages and of functions, where they are said.
said = 0
for document in documents:
    text = document.read_text(encoding="utf-8")
    for what, number, pattern in (("messages", len(messages), r"\b(?:[Ee]ach of(?: its| the)?|[Aa]ll|The) (\d+)\b"),
                                  ("functions", 5 * len(messages), r"\b(\d+) (?:in all|exported functions)\b")):
        for found in re.finditer(pattern, text):
            said += 1
            if int(found[1]) != number:
                faults.append(f"{document.relative_to(source)} says that there are {found[1]} {what}, "
                              f"by include/pavo_zorv_messages.h there are {number}")

if (len(documents) < 10 or said < 3 or links < 20 or len(named) < 20 or len(records) != len(messages) or
        min(declared.values()) < 7):
    faults.append(f"too little was found: {len(documents)} documents, {links} links, {len(named)} tests, "
                  f"{len(records)} records, {declared} in programs")
for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
