"""What the public header says: the messages with their fields, where each lies in its record, and the constants."""

import ctypes
import dataclasses
import os
import pathlib
import re
from typing import Any, Dict, Optional

_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)
_RECORD = re.compile(r"\btypedef\s+struct\s+(\w+)\s*\{(.*?)^\}", re.DOTALL | re.MULTILINE)
_MEMBER = re.compile(r"^\s*((?:struct |unsigned )?\w+) (\*?)(\w+); /\*\*<(.*?)\*/", re.DOTALL | re.MULTILINE)
_FIELD = re.compile(
    r"""\b Field \s+ (?P<number>\d+), \s+
        (?: (?P<flag>flag) | (?P<string>string) | (?P<bytes>bytes)
          | (?P<list>list \s+ of \s+)? (?: (?P<sign>signed|unsigned) \s+ (?P<bits>\d+)-bit | `(?P<elements>\w+)` )
          | nested \s+ `(?P<nested>\w+)` )""",
    re.VERBOSE,
)
_CONSTANT = re.compile(r"\b(CODEC_\w+|PAVO_ZORV_REFERENCE) = (-?\d+)( << \d+)?")

_TYPES = {
    "uint8_t": ctypes.c_uint8,
    "uint16_t": ctypes.c_uint16,
    "uint32_t": ctypes.c_uint32,
    "uint64_t": ctypes.c_uint64,
    "int32_t": ctypes.c_int32,
    "int64_t": ctypes.c_int64,
}

KINDS = ("flag", "integer", "string", "bytes", "integer_list", "message_list", "nested")


@dataclasses.dataclass(frozen=True)
class Field:
    """A field of a message. `kind` is one of `KINDS`; `bits` and `signed` are those of an integer, or of a list's
    elements; `message` names the message of a nested message, or of a list's elements; `count` is the member of the
    record that holds the length of bytes and lists."""

    number: int
    name: str
    kind: str
    bits: int = 0
    signed: bool = False
    message: Optional[str] = None
    count: Optional[str] = None

    @property
    def is_list(self) -> bool:
        return self.kind in ("integer_list", "message_list")


@dataclasses.dataclass(frozen=True)
class Layout:
    """A message: its record as a ctypes structure, its fields by name, and whether its functions take options."""

    name: str
    record: Any
    fields: Dict[str, Field]
    takes_options: bool


def _field(name: str, found: "re.Match[str]", count: str) -> Field:
    number, kind = int(found["number"]), found["flag"] or found["string"] or found["bytes"]
    if kind:
        return Field(number, name, kind, count=count if kind == "bytes" else None)
    if found["nested"]:
        return Field(number, name, "nested", message=found["nested"])
    if found["elements"]:
        return Field(number, name, "message_list", message=found["elements"], count=count)
    signed, bits = found["sign"] == "signed", int(found["bits"])
    if found["list"]:
        return Field(number, name, "integer_list", bits, signed, count=count)
    return Field(number, name, "integer", bits, signed)


def layouts(header: str) -> Dict[str, Layout]:
    """The messages that a header declares, those first that others contain."""
    declarations = _COMMENT.sub(" ", header)
    known: Dict[str, Layout] = {}
    for name, body in _RECORD.findall(header):
        members = _MEMBER.findall(body)
        if not members or members[-1][2] != "presence":
            continue
        ctype = {"struct " + each: layout.record for each, layout in known.items()} | _TYPES
        record = type(name, (ctypes.Structure,), {
            "_fields_": [(member, ctypes.c_void_p if star else ctype[kind]) for kind, star, member, _ in members]})
        fields = {}
        for (_, _, member, comment), following in zip(members, [*members[1:], None]):
            found = _FIELD.search(comment)
            if found:
                fields[member] = _field(member, found, following[2])
            elif re.search(r"\bField\s+\d+,", comment):
                raise ValueError(f"python/pavo_zorv/_layout.py knows no kind by the comment of {name}.{member} in "
                                 f"pavo_zorv.h:{comment}")
        options = re.search(rf"\bpavo_zorv_{name}_free_ext\([^)]*\boptions\)", declarations)
        known[name] = Layout(name, record, fields, options is not None)
    return known


def constants(header: str) -> Dict[str, int]:
    return {name: int(value) << int(shift[4:] or 0) for name, value, shift in _CONSTANT.findall(header)}


def read_header() -> str:
    """The text of pavo_zorv.h, which is part of this package."""
    path = os.environ.get("PAVO_ZORV_HEADER") or pathlib.Path(__file__).with_name("pavo_zorv.h")
    return pathlib.Path(path).read_text(encoding="utf-8")
