#!/usr/bin/env python3
r"""The code in the guides is that of the examples, which are compiled and run, and of projects in tests/install.

A block of code in docs/ follows a comment that says where it comes from:

    <!-- examples/c/round_trip.c: record -->        the lines between the two marks [record] of this file
    <!-- examples/expected/c_round_trip -->         a whole file, which is what the example prints

A page whose blocks are sessions of Python, with `>>>`, is run by a test of the Python package instead.

guides.py SOURCE_FOLDER            compares; any other block of code is a fault
guides.py SOURCE_FOLDER --update   writes the blocks anew, also for what is quoted in Doxygen's way: \snippet, \verbinclude
"""

import pathlib
import re
import sys
import textwrap

source = pathlib.Path(sys.argv[1])
update = sys.argv[2:] == ["--update"]
LANGUAGES = {".c": "c", ".cpp": "cpp", ".py": "python", ".txt": "cmake", ".build": "meson"}
BLOCK = re.compile(r"(<!-- ((?:examples|tests/install)/\S+?)(?:: ([\w ]+))? -->\n)(```\w*\n.*?^```\n)?", re.DOTALL | re.MULTILINE)
run_as_sessions = "".join(path.read_text(encoding="utf-8") for path in (source / "python" / "tests").glob("*.py"))
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
    if update:
        text = re.sub(r"^\\snippet (\S+) (.*)$", r"<!-- examples/\1: \2 -->\n", text, flags=re.MULTILINE)
        text = re.sub(r"^\\verbinclude (\S+)$", r"<!-- examples/\1 -->\n", text, flags=re.MULTILINE)
        text = re.sub(r"(<!-- examples/[^\n]* -->\n)\n(?!```)", r"\1", text)
    shown += len(BLOCK.findall(text))
    written = BLOCK.sub(lambda found: found[1] + block(found[2], found[3]), text)
    if update:
        written = re.sub(r"^```\n(?=<!-- )", "```\n\n", written, flags=re.MULTILINE)
    if written != guide.read_text(encoding="utf-8") and update:
        guide.write_text(written, encoding="utf-8")
        print(f"{guide.relative_to(source)} is written anew")
    elif written != text:
        line = next((number for number, (old, new) in enumerate(zip(text.splitlines(), written.splitlines()), 1)
                     if old != new), 0)
        faults.append(f"{guide.relative_to(source)}:{line} shows something else than the example; to write it anew: "
                      "cmake --build --preset release --target update-guides")
    # What is left when these blocks are taken out has no code that nobody compiles.
    for language, code in re.findall(r"^```(c|cpp|python|cmake|meson)\n(.*\n)", BLOCK.sub("", text), re.MULTILINE):
        session = language == "python" and code.startswith(">>> ")
        if not session or not re.search(rf"doctest\.testfile\(.*\b{re.escape(guide.name)}", run_as_sessions):
            faults.append(f"{guide.relative_to(source)}: a block of code that is not from an example: {code.strip()}")
    for found in re.finditer(r"^\\(?:snippet|include|verbinclude).*$", text, re.MULTILINE):
        faults.append(f"{guide.relative_to(source)} quotes what only Doxygen shows: {found[0]}")

if shown < 20:
    faults.append(f"only {shown} blocks of code were found")
for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
