"""Converts messages to records and back, by way of ctypes, and calls the library with the records.

`_native.c` does the same, faster. Where it has not been compiled, this is what runs."""

import collections
import ctypes
from sys import byteorder

_ALLOCATE = ctypes.CFUNCTYPE(ctypes.c_void_p, ctypes.c_size_t, ctypes.c_void_p)
_ELEMENT = {8: ctypes.c_uint8, 32: ctypes.c_uint32}

# A field: its kind as an index of KINDS, and where its members lie in the record.
Row = collections.namedtuple("Row", "name kind bits signed offset count child")


class Base:
    """What messages are made from: an object whose dictionary holds the present fields."""

    __slots__ = ("__dict__", "__weakref__", "_implicit")


class _Memory:
    """The blocks of one call, up to a limit in bytes."""

    def __init__(self, limit=None):
        self.left = limit
        self.blocks = []

    def allocate(self, size, _):
        if self.left is not None:
            if size > self.left:
                return None
            self.left -= size
        return self.array(ctypes.c_uint8, max(size, 1))

    def array(self, element, count):
        block = (element * count)()
        self.blocks.append(block)
        return ctypes.addressof(block)

    def copy(self, data):
        self.blocks.append(data)
        return ctypes.cast(ctypes.c_char_p(data), ctypes.c_void_p).value


def is_present(value):
    """Whether a value that a message holds is present. Empty lists are not, nor empty messages that are there only
    because they were looked at."""
    if isinstance(value, list):
        return value != []
    return not getattr(value, "_implicit", False) or any(map(is_present, vars(value).values()))


def _pointer(at):
    return ctypes.c_void_p.from_address(at).value


def _integer(at, size, signed=False):
    return int.from_bytes(ctypes.string_at(at, size), byteorder, signed=signed)


def _set_pointer(at, value):
    ctypes.c_void_p.from_address(at).value = value


def _set_integer(at, value, size, signed=False):
    ctypes.memmove(at, value.to_bytes(size, byteorder, signed=signed), size)


def _require(value, *types):
    if not isinstance(value, types):
        raise TypeError(f"{type(value).__name__} is not {types[0].__name__}")


class Codec:
    """The operations on the messages of one class."""

    def __init__(self, cls, size, presence, presence_size, rows, functions, takes_options):
        self.cls = cls
        self.size = size
        self.presence = presence
        self.presence_size = presence_size
        self.rows = [Row(*row) for row in rows]
        self.by_name = {row.name: (row, 1 << number) for number, row in enumerate(self.rows)}
        self.takes_options = takes_options
        pointer, word, options = ctypes.c_void_p, ctypes.c_size_t, [ctypes.c_uint32] * takes_options
        decode, encode, compare = functions
        self.decode_ext = ctypes.CFUNCTYPE(ctypes.c_int, pointer, pointer, word, _ALLOCATE, pointer, *options)(decode)
        self.encode_ext = ctypes.CFUNCTYPE(word, pointer, pointer, word, pointer, pointer, *options)(encode)
        self.compare_ext = ctypes.CFUNCTYPE(ctypes.c_int, pointer, pointer)(compare)

    def decode(self, data, reference, limit):
        """The message; if decoding failed, a tuple of it and the library's result. With `reference`, bytes are views of
        the data."""
        view = memoryview(data).cast("B")
        memory = _Memory(limit)
        record = memory.array(ctypes.c_uint8, self.size)
        start = memory.copy(bytes(view))
        options = [int(reference)] * self.takes_options
        result = self.decode_ext(record, start, len(view), _ALLOCATE(memory.allocate), None, *options)
        message = self.read(record, result != 0, (view, start) if reference else None)
        return message if result == 0 else (message, result)

    def encode(self, message):
        memory = _Memory()
        record = self.written(message, memory)
        options = [0] * self.takes_options
        size = self.encode_ext(record, None, 0, None, None, *options)
        buffer = ctypes.create_string_buffer(size)
        self.encode_ext(record, buffer, size, None, None, *options)
        return buffer.raw

    def compare(self, a, b):
        memory = _Memory()
        return self.compare_ext(self.written(a, memory), self.written(b, memory))

    def fill(self, message, values):
        """Stores the values that need not be converted, and returns the others in a dictionary, or None. This finds
        none that need not be."""
        return values

    def plain(self, message):
        """The present fields by name, as int, bool, str, bytes, list and dict."""
        self.require_class(message)
        present = vars(message)
        return {row.name: _plain(row, present[row.name]) for row in self.rows
                if row.name in present and is_present(present[row.name])}

    def require_class(self, message):
        if type(message) is not self.cls:
            raise TypeError(f"{type(message).__name__} is not {self.cls.__name__}")

    # --- Records to messages ---

    def read(self, record, is_partial, source):
        """A message from the record at an address. If decoding failed in a nested message, the record holds what was
        read of it, whether or not its presence bit is set."""
        present = _integer(record + self.presence, self.presence_size)
        message = self.cls.__new__(self.cls)
        content = vars(message)
        for number, row in enumerate(self.rows):
            if present >> number & 1:
                content[row.name] = _READ[row.kind](row, record + row.offset, record + row.count, is_partial, source)
            elif is_partial and _READ[row.kind] is _read_nested:
                unfinished = row.child.read(record + row.offset, is_partial, source)
                if vars(unfinished):
                    content[row.name] = unfinished
        return message

    # --- Messages to records ---

    def written(self, message, memory):
        record = memory.array(ctypes.c_uint8, self.size)
        self.write(message, record, memory)
        return record

    def write(self, message, record, memory):
        """Whether any field is present."""
        self.require_class(message)
        present = 0
        for name, value in vars(message).items():
            row, bit = self.by_name[name]
            if _WRITE[row.kind](row, value, record + row.offset, record + row.count, memory):
                present |= bit
        _set_integer(record + self.presence, present, self.presence_size)
        return present != 0


def _plain(row, value):
    if isinstance(value, list):
        return [row.child.plain(each) for each in value] if row.child else list(value)
    return row.child.plain(value) if row.child else value


# --- The kinds, in the order of KINDS: from the members of a record to a value ---


def _read_flag(row, at, count, is_partial, source):
    return _integer(at, 1) != 0


def _read_integer(row, at, count, is_partial, source):
    return _integer(at, row.bits // 8, row.signed)


def _read_string(row, at, count, is_partial, source):
    return ctypes.string_at(_pointer(at)).decode("utf-8", "surrogateescape")


def _read_bytes(row, at, count, is_partial, source):
    start, size = _pointer(at), _integer(count, 8)
    if source is None:
        return ctypes.string_at(start, size)
    view, first = source
    return view[start - first : start - first + size]


def _read_integer_list(row, at, count, is_partial, source):
    return list((_ELEMENT[row.bits] * _integer(count, 4)).from_address(_pointer(at)))


def _read_message_list(row, at, count, is_partial, source):
    first = _pointer(at)
    return [row.child.read(first + i * row.child.size, is_partial, source) for i in range(_integer(count, 4))]


def _read_nested(row, at, count, is_partial, source):
    return row.child.read(at, is_partial, source)


_READ = (_read_flag, _read_integer, _read_string, _read_bytes, _read_integer_list, _read_message_list, _read_nested)


# --- The kinds again: from a value to the members of a record. The result is the presence bit ---


def _write_flag(row, value, at, count, memory):
    _require(value, bool)
    _set_integer(at, value, 1)
    return True


def _write_integer(row, value, at, count, memory):
    _require(value, int)
    _set_integer(at, int(value), row.bits // 8, row.signed)
    return True


def _write_string(row, value, at, count, memory):
    _require(value, str)
    data = value.encode("utf-8", "surrogateescape")
    if 0 in data:
        raise ValueError("a string cannot contain a NUL")
    _set_pointer(at, memory.copy(data))
    return True


def _write_bytes(row, value, at, count, memory):
    _require(value, bytes, memoryview)
    _set_pointer(at, memory.copy(bytes(value)))
    _set_integer(count, memoryview(value).nbytes, 8)
    return True


def _write_integer_list(row, value, at, count, memory):
    _require(value, list)
    size = row.bits // 8
    first = memory.array(_ELEMENT[row.bits], len(value))
    for i, each in enumerate(value):
        _require(each, int)
        _set_integer(first + i * size, int(each), size)
    _set_pointer(at, first)
    _set_integer(count, len(value), 4)
    return value != []


def _write_message_list(row, value, at, count, memory):
    _require(value, list)
    first = memory.array(ctypes.c_uint8 * row.child.size, len(value))
    for i, each in enumerate(value):
        row.child.write(each, first + i * row.child.size, memory)
    _set_pointer(at, first)
    _set_integer(count, len(value), 4)
    return value != []


def _write_nested(row, value, at, count, memory):
    return row.child.write(value, at, memory) or not getattr(value, "_implicit", False)


_WRITE = (_write_flag, _write_integer, _write_string, _write_bytes, _write_integer_list, _write_message_list,
          _write_nested)
