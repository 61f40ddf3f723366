"""A class for each message, derived from the declarations in the header: records, presence bits and functions."""

import functools
import re
from collections.abc import Mapping

from ._library import ffi, library
from ._memory import Arena, allocate

REFERENCE = library.PAVO_ZORV_REFERENCE

_RESULTS = ffi.typeof("enum pavo_zorv_result").elements


class DecodeError(ValueError):
    """Input that cannot be decoded: `result` is the code, `name` its name, `partial` the message as far as it was read."""

    def __init__(self, message, result):
        self.partial = message
        self.result = result
        self.name = _RESULTS[result]
        super().__init__(f"{type(message).__name__}: {self.name}")


# --- The kinds of member: how a value is read from a record, stored in one, and converted for to_dict ---


class _Integer:
    def __init__(self, member):
        self.member = member

    def get(self, message):
        return getattr(message._record, self.member)

    def put(self, message, value):
        setattr(message._record, self.member, value)

    to_plain = staticmethod(lambda value: value)


class _Flag(_Integer):
    """An 8-bit number that is used as a bool."""

    def get(self, message):
        return bool(super().get(message))

    def put(self, message, value):
        super().put(message, bool(value))


class _String:
    """A string that need not be UTF-8: other bytes become surrogates, which are written as the same bytes."""

    def __init__(self, member):
        self.member = member

    def get(self, message):
        pointer = getattr(message._record, self.member)
        return None if pointer == ffi.NULL else ffi.string(pointer).decode("utf-8", "surrogateescape")

    def put(self, message, value):
        data = value.encode("utf-8", "surrogateescape") if isinstance(value, str) else bytes(value)
        if 0 in data:
            raise ValueError(f"{self.member}: a string cannot contain a NUL")
        block = message._arena.array("char", len(data) + 1)
        ffi.memmove(block, data, len(data))
        setattr(message._record, self.member, block)

    to_plain = staticmethod(lambda value: value)


class _Bytes:
    def __init__(self, member, length):
        self.member = member
        self.length = length

    def get(self, message):
        record = message._record
        size = getattr(record, self.length)
        return bytes(ffi.buffer(getattr(record, self.member), size)) if size else b""

    def put(self, message, value):
        block = message._arena.array("unsigned char", max(len(value), 1))
        ffi.memmove(block, value, len(value))
        setattr(message._record, self.member, block)
        setattr(message._record, self.length, len(value))

    to_plain = staticmethod(lambda value: value)


class _IntegerList:
    def __init__(self, member, count, element):
        self.member = member
        self.count = count
        self.element = element

    def get(self, message):
        record = message._record
        count = getattr(record, self.count)
        return tuple(ffi.unpack(getattr(record, self.member), count)) if count else ()

    def put(self, message, value):
        values = list(value)
        setattr(message._record, self.member, message._arena.array(self.element, values) if values else ffi.NULL)
        setattr(message._record, self.count, len(values))

    to_plain = staticmethod(list)


class _Nested:
    def __init__(self, member, name):
        self.member = member
        self.name = name

    def get(self, message):
        return CLASSES[self.name]._within(message, ffi.addressof(message._record, self.member), self.member)

    def put(self, message, value):
        _copy_into(CLASSES[self.name], message._arena, ffi.addressof(message._record, self.member), value)

    to_plain = staticmethod(lambda value: value.to_dict())


class _MessageList:
    def __init__(self, member, count, name):
        self.member = member
        self.count = count
        self.name = name

    def get(self, message):
        record = message._record
        elements = getattr(record, self.member)
        return tuple(
            CLASSES[self.name]._within(message, elements + i, self.member) for i in range(getattr(record, self.count))
        )

    def put(self, message, value):
        values = list(value)
        elements = message._arena.array(self.name, len(values)) if values else ffi.NULL
        for i, each in enumerate(values):
            _copy_into(CLASSES[self.name], message._arena, elements + i, each)
        setattr(message._record, self.member, elements)
        setattr(message._record, self.count, len(values))

    to_plain = staticmethod(lambda value: [each.to_dict() for each in value])


def _copy_into(cls, arena, record, value):
    """Copies a message, or the fields given by a mapping, into a record."""
    source = cls(**value) if isinstance(value, Mapping) else value
    if type(source) is not cls:
        raise TypeError(f"expected {cls.__name__} or a mapping, not {type(value).__name__}")
    if source._record == record:
        return
    if cls._duplicate(record, source._record, allocate, arena.handle) != library.CODEC_OK:
        raise MemoryError


# --- Messages ---


class _Field:
    """A property: the value of a member, or None if it is absent. Setting a value marks the member as present, setting
    None as absent. A nested message always exists; setting a member of it marks the messages around that as present."""

    def __init__(self, kind, bit, nested):
        self.kind = kind
        self.bit = bit
        self.nested = nested

    def __get__(self, message, _=None):
        if message is None:
            return self
        return self.kind.get(message) if self.nested or message._record.presence & self.bit else None

    def __set__(self, message, value):
        if value is None:
            message._record.presence &= ~self.bit
            return
        self.kind.put(message, value)
        message._record.presence |= self.bit
        message._mark_present()


@functools.total_ordering
class Message:
    """The base of all messages. A message owns a record of the library and all memory that the record points to."""

    __slots__ = ("_record", "_arena", "_parent", "_member", "_input", "_options")
    __hash__ = None
    fields = {}

    def __init__(self, **values):
        self._create(Arena())
        for name, value in values.items():
            if name not in self.fields:
                raise TypeError(f"{type(self).__name__} has no field {name!r}")
            setattr(self, name, value)

    def _create(self, arena):
        self._record = ffi.new(type(self).__name__ + " *")
        self._arena = arena
        self._parent = self._member = self._input = None
        self._options = 0

    @classmethod
    def _within(cls, parent, record, member):
        """A message nested in another, which it keeps alive."""
        self = cls.__new__(cls)
        self._record = record
        self._arena = parent._arena
        self._parent = parent
        self._member = member
        self._input = None
        self._options = parent._options
        return self

    def _mark_present(self):
        """Marks this message and all messages around it as present."""
        if self._parent is not None:
            self._parent._record.presence |= type(self._parent).fields[self._member].bit
            self._parent._mark_present()

    @classmethod
    def _call(cls, function, options, *arguments):
        return function(*arguments, options) if cls._takes_options else function(*arguments)

    @classmethod
    def from_bytes(cls, data, *, reference=False, limit=None):
        """Decodes a message, or raises DecodeError. With `reference`, bytes members are not copied but refer to `data`,
        which the message keeps alive. `limit` bounds the memory, in bytes, that the library may allocate."""
        self = cls.__new__(cls)
        self._create(Arena(limit))
        self._options = REFERENCE if reference else 0
        buffer = ffi.from_buffer(data)
        if reference:
            self._input = buffer
        result = cls._call(
            cls._decode, self._options, self._record, ffi.cast("const unsigned char *", buffer), len(buffer), allocate,
            self._arena.handle)
        if result != library.CODEC_OK:
            raise DecodeError(self, result)
        return self

    def to_bytes(self):
        """The encoding of the message. Bytes members are copied into it, also those that refer to the input."""
        size = self._call(self._encode, 0, self._record, ffi.NULL, 0, ffi.NULL, ffi.NULL)
        buffer = bytearray(size)
        written = self._call(self._encode, 0, self._record, ffi.from_buffer(buffer), size, ffi.NULL, ffi.NULL)
        assert written == size
        return bytes(buffer)

    def copy(self):
        """An independent message with the same content."""
        result = type(self)()
        _copy_into(type(self), result._arena, result._record, self)
        return result

    __copy__ = copy

    def __deepcopy__(self, _):
        return self.copy()

    def has(self, name):
        """Whether a field is present."""
        return bool(self._record.presence & self.fields[name].bit)

    def to_dict(self):
        """The present fields by name, as int, bool, str, bytes, list and dict: keyword arguments of the class."""
        return {name: field.kind.to_plain(getattr(self, name)) for name, field in self.fields.items() if self.has(name)}

    def __repr__(self):
        return f"{type(self).__name__}({', '.join(f'{k}={v!r}' for k, v in self.to_dict().items())})"

    def compare(self, other):
        """Negative, 0 or positive, in the order that the library defines."""
        if type(self) is not type(other):
            raise TypeError(f"cannot compare {type(self).__name__} with {type(other).__name__}")
        return self._compare(self._record, other._record)

    def __eq__(self, other):
        return self.compare(other) == 0 if type(self) is type(other) else NotImplemented

    def __lt__(self, other):
        return self.compare(other) < 0 if type(self) is type(other) else NotImplemented


def _kind(member, ctype, next_member):
    """The kind of a member, and whether its count or length follows it."""
    if ctype.kind == "struct":
        return _Nested(member, re.sub(r"^struct ", "", ctype.cname)), False
    if ctype.kind != "pointer":
        return _Integer(member), False
    if ctype.item.cname == "char":
        return _String(member), False
    if ctype.item.kind == "struct":
        return _MessageList(member, next_member[0], re.sub(r"^struct ", "", ctype.item.cname)), True
    if ffi.sizeof(next_member[1].type) == 8:
        return _Bytes(member, next_member[0]), True
    return _IntegerList(member, next_member[0], ctype.item.cname), True


def _fields(name):
    """The fields of a message, in order: every member of the record but counts and the presence flags."""
    bits = ffi.typeof(f"enum {name}_presence").relements
    members = iter(zip(ffi.typeof(name).fields, ffi.typeof(name).fields[1:]))
    fields = {}
    for (member, detail), next_member in members:
        kind, has_count = _kind(member, detail.type, next_member)
        fields[member] = _Field(kind, bits[f"{name.upper()}_HAS_{member.upper()}"], isinstance(kind, _Nested))
        if has_count:
            next(members, None)
    return fields


def _detect_flags(cls):
    """Tells flags from 8-bit numbers, which are declared alike: 2 is decoded as 1 if it is a flag."""
    for number, (name, field) in enumerate(cls.fields.items(), start=1):
        if type(field.kind) is _Integer and ffi.sizeof(dict(ffi.typeof(cls.__name__).fields)[name].type) == 1:
            key = number << 3
            data = bytes([key, 2] if key < 0x80 else [key & 0x7F | 0x80, key >> 7, 2])
            if getattr(cls.from_bytes(data), name) == 1:
                field.kind = _Flag(name)


def _make_class(name):
    def function(operation):
        return getattr(library, f"pavo_zorv_{name}_{operation}")

    fields = _fields(name)
    return type(name, (Message,), {
        **fields,
        "__slots__": (),
        "__doc__": f"The message {name}, with the fields {', '.join(fields)}.",
        "__module__": "pavo_zorv",
        "fields": fields,
        "_takes_options": len(ffi.typeof(function("free_ext")).args) == 4,
        "_decode": staticmethod(function("decode_ext")),
        "_encode": staticmethod(function("encode_ext")),
        "_duplicate": staticmethod(function("duplicate")),
        "_compare": staticmethod(function("compare")),
    })


# A record with presence bits is a message.
CLASSES = {name: _make_class(name) for name in ffi.list_types()[0]
           if ffi.typeof(name).kind == "struct" and dict(ffi.typeof(name).fields).get("presence")}
for _cls in CLASSES.values():
    _detect_flags(_cls)
