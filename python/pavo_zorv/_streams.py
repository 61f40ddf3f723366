"""Streams in which each message follows its length."""

from typing import Any, Iterator, Optional, Tuple, Union

_Bytes = Union[bytes, bytearray, memoryview]

# The prefixes: a varint, or bytes in an order.
_PREFIXES = {"varint": None, "be16": (2, "big"), "be32": (4, "big"), "le32": (4, "little")}
_LONGEST_VARINT = 10


class StreamError(ValueError):
    """A stream that cannot be split. `offset` is that of the length prefix."""

    def __init__(self, text: str, offset: int) -> None:
        super().__init__(f"offset {offset}: {text}")
        self.offset = offset


def _form(prefix: str) -> "Optional[Tuple[int, Any]]":
    if prefix not in _PREFIXES:
        raise ValueError(f"no prefix {prefix!r}; known: {', '.join(_PREFIXES)}")
    return _PREFIXES[prefix]


def framed(data: _Bytes, prefix: str = "varint") -> bytes:
    """The data after its length: "varint", "be16", "be32" or "le32"."""
    data, form = bytes(data), _form(prefix)
    if form is None:
        return _varint(len(data)) + data
    size, order = form
    if len(data) >> 8 * size:
        raise OverflowError(f"{len(data)} bytes are too long for {prefix}")
    return len(data).to_bytes(size, order) + data


def _varint(value: int) -> bytes:
    result = bytearray()
    while value >= 0x80:
        result.append(value & 0x7F | 0x80)
        value >>= 7
    result.append(value)
    return bytes(result)


class Splitter:
    """Splits a stream that arrives in pieces of any size. A length above `limit` is refused before any memory is taken
    for it."""

    def __init__(self, prefix: str = "varint", limit: int = 1 << 20) -> None:
        self._form = _form(prefix)
        self._limit = limit
        self._pending = bytearray()
        self._offset = 0  # of what is pending

    def feed(self, data: _Bytes) -> Iterator[bytes]:
        """Takes a piece; the messages that are complete, one after the other. Those that are not asked for are returned
        next time. StreamError comes after the messages before it."""
        self._pending += data
        return self._messages()

    def _messages(self) -> Iterator[bytes]:
        while (found := self._length()) is not None:
            start, length = found
            if length > self._limit:
                raise StreamError(f"a message of {length} bytes; the limit is {self._limit}", self._offset)
            end = start + length
            if len(self._pending) < end:
                return
            message = bytes(self._pending[start:end])
            del self._pending[:end]
            self._offset += end
            yield message

    def close(self) -> None:
        """Says that the stream has ended: refused if it did so within a message."""
        if self._pending:
            raise StreamError(f"the stream ends within a message, after {len(self._pending)} bytes of it", self._offset)

    def _length(self) -> Optional[Tuple[int, int]]:
        """Where the next message starts, and its length; None if the prefix is not complete."""
        if self._form is not None:
            size, order = self._form
            prefix = self._pending[:size]
            return (size, int.from_bytes(prefix, order)) if len(prefix) == size else None
        value = 0
        for i, byte in enumerate(self._pending[:_LONGEST_VARINT]):
            value |= (byte & 0x7F) << 7 * i
            if byte < 0x80:
                return i + 1, value
        if len(self._pending) >= _LONGEST_VARINT:
            raise StreamError(f"a length of more than {_LONGEST_VARINT} bytes", self._offset)
        return None
