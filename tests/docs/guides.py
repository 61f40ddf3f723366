#!/usr/bin/env python3
"""The code in the guides is that of the examples, which are compiled and run, and of projects in tests/install.

A block of code in docs/ follows a comment that says where it comes from:

    <!-- examples/c/round_trip.c: record -->        the lines between the two marks [record] of this file
    <!-- examples/expected/c_round_trip -->         a whole file, which is what the example prints

guides.py SOURCE_FOLDER            compares; a block of code without such a comment is a fault
guides.py SOURCE_FOLDER --update   writes the blocks anew
"""

import pathlib
import re
import sys
import textwrap

source = pathlib.Path(sys.argv[1])
update = sys.argv[2:] == ["--update"]
LANGUAGES = {".c": "c", ".cpp": "cpp", ".py": "python", ".txt": "cmake", ".build": "meson"}
BLOCK = re.compile(r"(<!-- ((?:examples|tests/install)/\S+?)(?:: ([\w ]+))? -->\n)(```\w*\n.*?^```\n)?", re.DOTALL | re.MULTILINE)
faults = []
shown = 0


def piece(file, name):
    """The lines of an example between its two marks, without their indentation."""
    lines = (source / file).read_text(encoding="utf-8").splitlines()
    marks = [number for number, line in enumerate(lines) if re.fullmatch(rf"\s*(//|#)! \[{re.escape(name)}\]", line)]
    if len(marks) != 2:
        faults.append(f"{file} has {len(marks)} marks [{name}], not 2")
        return ""
    return textwrap.dedent("\n".join(lines[marks[0] + 1 : marks[1]])) + "\n"


def block(file, name):
    """A block of code as the guides show it."""
    if not (source / file).is_file():
        faults.append(f"{file} is not there")
        return ""
    if name is not None:
        return f"```{LANGUAGES[pathlib.Path(file).suffix]}\n{piece(file, name)}```\n"
    return f"```text\n{(source / file).read_text(encoding='utf-8')}```\n"


for guide in sorted((source / "docs").glob("*.md")):
    text = guide.read_text(encoding="utf-8")
    shown += len(BLOCK.findall(text))
    written = BLOCK.sub(lambda found: found[1] + block(found[2], found[3]), text)
    if written != text and update:
        guide.write_text(written, encoding="utf-8")
        print(f"{guide.relative_to(source)} is written anew")
    elif written != text:
        line = next((number for number, (old, new) in enumerate(zip(text.splitlines(), written.splitlines()), 1)
                     if old != new), 0)
        faults.append(f"{guide.relative_to(source)}:{line} shows something else than the example; to write it anew: "
                      "cmake --build --preset release --target update-guides")
    # What is left when these blocks are taken out has no code that nobody compiles.
    for found in re.finditer(r"^```(?:c|cpp|python|cmake|meson)$", BLOCK.sub("", text), re.MULTILINE):
        faults.append(f"{guide.relative_to(source)}: a block of code that is not from an example: {found[0]}")
    for found in re.finditer(r"^\\(?:snippet|include|verbinclude).*$", text, re.MULTILINE):
        faults.append(f"{guide.relative_to(source)} quotes what only Doxygen shows: {found[0]}")

if shown < 20:
    faults.append(f"only {shown} blocks of code were found")
for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
