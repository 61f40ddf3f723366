"""The shared library, with the declarations of its public header."""

import os
import pathlib
import re

import cffi

# The version of the binary interface that this package is written for.
_LIBRARY = "libpavo_zorv.so.1"

_HERE = pathlib.Path(__file__).resolve().parent

# Beside the installed package, in the source tree, or where the header is installed.
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
    path = os.environ.get("PAVO_ZORV_HEADER")
    candidates = (pathlib.Path(path),) if path else _HEADERS
    for candidate in candidates:
        if candidate.is_file():
            return candidate.read_text(encoding="utf-8")
    tried = ", ".join(map(str, candidates))
    raise ImportError(f"pavo_zorv.h is not found; tried {tried}. Set PAVO_ZORV_HEADER to its path")


def declarations(header):
    """The declarations of a header, without comments and what only a compiler needs."""
    text = _COMMENT.sub(" ", header)
    found = "\n".join(match.group() for match in _DECLARATION.finditer(text))
    return re.sub(r"\bPAVO_ZORV_(API|NOEXCEPT)\b", "", found)


ffi = cffi.FFI()
ffi.cdef(declarations(_header()))
library = ffi.dlopen(os.environ.get("PAVO_ZORV_LIBRARY", _LIBRARY))
