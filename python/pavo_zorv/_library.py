"""The shared library, with the declarations of its public header."""

import os
import pathlib
import re

import cffi

# The binary interface that this package is written for.
_LIBRARY = "libpavo_zorv.so.1"

_HERE = pathlib.Path(__file__).resolve().parent

# Beside the package where it is installed; in the source tree otherwise.
_HEADERS = (
    _HERE / "pavo_zorv.h",
    _HERE.parent.parent / "include" / "pavo_zorv.h",
    pathlib.Path("/usr/include/pavo_zorv.h"),
)

_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)
_DECLARATION = re.compile(
    r"""  \b enum \s+ \w+ \s* \{ [^}]* \} \s* ;               # constants
        | \b typedef \s+ struct \s+ \w+ \s* \{ [^}]* \} [^;]* ;  # records
        | \b typedef \s [^{};]* ;                             # callbacks
        | \b PAVO_ZORV_API \s [^{};]* ;                       # functions
    """,
    re.VERBOSE,
)


def _header():
    named = os.environ.get("PAVO_ZORV_HEADER")
    candidates = (pathlib.Path(named),) if named else _HEADERS
    for path in candidates:
        if path.is_file():
            return path.read_text(encoding="utf-8")
    raise ImportError("pavo_zorv.h is in none of " + ", ".join(map(str, candidates)) + "; PAVO_ZORV_HEADER may name it")


def declarations(header):
    """What a header declares, without comments and all that only a compiler wants."""
    text = _COMMENT.sub(" ", header)
    found = "\n".join(match.group() for match in _DECLARATION.finditer(text))
    return re.sub(r"\bPAVO_ZORV_(API|NOEXCEPT)\b", "", found)


ffi = cffi.FFI()
ffi.cdef(declarations(_header()))
library = ffi.dlopen(os.environ.get("PAVO_ZORV_LIBRARY", _LIBRARY))
