#!/usr/bin/env python3
"""The documents say how much machine code each build of the library has, to the nearest 2 KB.

sizes_test.py SOURCE_FOLDER LIBRARY LIBRARY_FOR_X86_64_V3
"""

import pathlib
import re
import subprocess
import sys

source, *libraries = sys.argv[1:]
SAID = re.compile(r"(\d+)\s+KB\s+for\s+every\s+x86-64\s+and\s+(\d+)\s+KB\s+for\s+x86-64-v3")
built = [int(re.search(r"^\.text +(\d+)", subprocess.run(["size", "-A", library], text=True, stdout=subprocess.PIPE,
                                                         check=True).stdout, re.MULTILINE)[1]) for library in libraries]
faults = []
for name in ("README.md", "ARCHITECTURE.md", "docs/performance.md", "docs/questions.md"):
    said = SAID.findall(pathlib.Path(source, name).read_text(encoding="utf-8"))
    if len(said) != 1:
        faults.append(f"{name} says {len(said)} times how large the library is")
    for sizes in said:
        if any(abs(1000 * int(size) - of_build) > 2000 for size, of_build in zip(sizes, built)):
            faults.append(f"{name} says {' KB and '.join(sizes)} KB; built are {' and '.join(map(str, built))} bytes")
for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
