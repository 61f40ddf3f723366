"""Checks every row of docs/wire_format.md: its bytes decode, or its content encodes, as the page says."""

import json
import pathlib
import re

import pytest

import pavo_zorv

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "wire_format.md"
READING = ["Message", "Bytes", "Read as"]
WRITING = ["Message", "Content", "Written as"]
READING_AND_WRITING = [*READING, "Written again as"]


def rows():
    """Every row, with the heading of its table."""
    heading = None
    for line in PAGE.read_text(encoding="utf-8").splitlines():
        if not line.startswith("|"):
            heading = None
            continue
        cells = [cell.strip().strip("`") for cell in line.strip("|").split("|")]
        cells = ["" if cell == "nothing" else cell for cell in cells]
        if heading is None:
            heading = cells
        elif not re.fullmatch(r"[|-]+", line):
            yield heading, cells


ROWS = list(rows())


def notation(value):
    """Content in the notation of the page: bytes as hexadecimal text."""
    if isinstance(value, bytes):
        return value.hex(" ")
    if isinstance(value, dict):
        return {name: notation(each) for name, each in value.items()}
    return [notation(each) for each in value] if isinstance(value, list) else value


def message_with(cls, content):
    """The message with content in the notation of the page."""
    message = cls()
    for name, value in content.items():
        setattr(message, name, bytes.fromhex(value) if cls.fields[name].kind == "bytes" else value)
    return message


def test_the_page_has_rows():
    assert len([1 for heading, _ in ROWS if heading == READING]) >= 40
    assert len([1 for heading, _ in ROWS if heading == WRITING]) >= 15
    assert len([1 for heading, _ in ROWS if heading == READING_AND_WRITING]) >= 7


@pytest.mark.parametrize("heading, cells", ROWS, ids=lambda value: " ".join(value))
def test_every_row_is_true(heading, cells):
    cls = pavo_zorv.CLASSES[cells[0]]
    if heading == WRITING:
        content = json.loads(cells[1])
        assert message_with(cls, content).to_bytes().hex(" ") == cells[2]
        return
    assert heading in (READING, READING_AND_WRITING)
    failure = re.fullmatch(r"(CODEC_\w+)(?: after (.*))?", cells[2])
    data = bytes.fromhex(cells[1])
    if failure is None:
        message = cls.from_bytes(data)
        assert notation(message.to_dict()) == json.loads(cells[2])
    else:
        with pytest.raises(pavo_zorv.DecodeError) as caught:
            cls.from_bytes(data)
        assert caught.value.name == failure[1]
        message = caught.value.partial
        # What was read of the nested message that failed does not count as present on the page.
        unfinished = caught.value.path.partition(".")[0] if "." in caught.value.path else None
        present = {name: value for name, value in message.to_dict().items() if name != unfinished}
        assert notation(present) == json.loads(failure[2] or "{}")
    if heading == READING_AND_WRITING:
        assert message.to_bytes().hex(" ") == cells[3]
