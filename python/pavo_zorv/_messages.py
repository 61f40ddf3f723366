"""A class for each message that the header declares."""

import ctypes
import functools
import os
from collections.abc import Mapping

from . import _json
from ._codec import is_present
from ._diagnosis import diagnose
from ._layout import KINDS, constants, layouts, read_header
from ._library import load

try:
    if os.environ.get("PAVO_ZORV_PURE_PYTHON"):
        raise ImportError
    from ._native import Base, Codec
except ImportError:
    from ._codec import Base, Codec

_HEADER = read_header()
RESULTS = {value: name for name, value in constants(_HEADER).items() if name.startswith("CODEC_")}


class DecodeError(ValueError):
    """Input that cannot be decoded. `result` is the library's code, `name` the code's name; `offset`, `path` and
    `reason` say where and why (the offset is None if there was too little memory); `partial` is the message as far as
    it was read."""

    def __init__(self, partial, result, data):
        self.partial = partial
        self.result = result
        self.name = RESULTS[result]
        self.offset, self.path, self.reason = diagnose(type(partial), data)
        where = "" if self.offset is None else f" at offset {self.offset}"
        if self.path:
            where += f", {self.path}"
        why = f": {self.reason}" if self.reason else ""
        super().__init__(f"{type(partial).__name__}: {self.name}{where}{why}")

    def __reduce__(self):
        return _restore_error, (self.args, self.__dict__)


def _restore_error(arguments, state):
    error = DecodeError.__new__(DecodeError, *arguments)
    error.__dict__.update(state)
    return error


# --- Values that are assigned: converted to what a message holds, or refused by name ---


def _checked_flag(field, value, path):
    return bool(value)


def _checked_integer(field, value, path):
    if not hasattr(value, "__index__"):
        raise TypeError(f"{path}: expected an integer, not {type(value).__name__}")
    value = value.__index__()
    least, most = (-(1 << field.bits - 1), (1 << field.bits - 1) - 1) if field.signed else (0, (1 << field.bits) - 1)
    if not least <= value <= most:
        raise OverflowError(f"{path}: {value} is out of range {least} to {most}")
    return value


def _checked_string(field, value, path):
    if isinstance(value, (bytes, bytearray)):
        value = value.decode("utf-8", "surrogateescape")
    if not isinstance(value, str):
        raise TypeError(f"{path}: expected a string, not {type(value).__name__}")
    if "\0" in value:
        raise ValueError(f"{path}: a string cannot contain a NUL")
    return value


def _checked_bytes(field, value, path):
    if isinstance(value, (str, int)):
        raise TypeError(f"{path}: expected bytes, not {type(value).__name__}")
    return value if isinstance(value, memoryview) else bytes(value)


def _checked_list(check, field, value, path):
    if isinstance(value, (str, Mapping, Message)):
        raise TypeError(f"{path}: expected a list, not {type(value).__name__}")
    return [check(field, each, f"{path}[{i}]") for i, each in enumerate(value)]


def _checked_message(field, value, path):
    cls = CLASSES[field.message]
    if isinstance(value, Mapping):
        message = cls()
        message._update(value, path + ".")
        return message
    if type(value) is not cls:
        raise TypeError(f"{path}: expected {cls.__name__} or a mapping, not {type(value).__name__}")
    return value


_CHECKED = {
    "flag": _checked_flag,
    "integer": _checked_integer,
    "string": _checked_string,
    "bytes": _checked_bytes,
    "integer_list": functools.partial(_checked_list, _checked_integer),
    "message_list": functools.partial(_checked_list, _checked_message),
    "nested": _checked_message,
}


def _verify(message, path):
    """Refuses the first wrong value in a message by name."""
    for name, value in vars(message).items():
        if name not in message.fields:
            raise AttributeError(f"{type(message).__name__} has no field {path}{name}")
        field = message.fields[name]
        if field.is_list and not isinstance(value, list):
            raise TypeError(f"{path}{name}: expected a list, not {type(value).__name__}")
        if field.kind == "message_list":
            for i, each in enumerate(value):
                if type(each) is not CLASSES[field.message]:
                    raise TypeError(f"{path}{name}[{i}]: expected {field.message}, not {type(each).__name__}")
                _verify(each, f"{path}{name}[{i}].")
        elif field.kind == "nested":
            _verify(value, f"{path}{name}.")
        else:
            _CHECKED[field.kind](field, value, path + name)


# --- Messages ---


class _AbsentList:
    """A list that is absent reads as an empty one, which is present once it has elements."""

    def __init__(self, name):
        self.name = name

    def __get__(self, message, _):
        return self if message is None else vars(message).setdefault(self.name, [])


class _AbsentNested:
    """A nested message that is absent reads as an empty one, which is present once it has content."""

    def __init__(self, name, cls):
        self.name = name
        self.cls = cls

    def __get__(self, message, _):
        if message is None:
            return self
        nested = self.cls()
        _set_implicit(nested, True)
        return vars(message).setdefault(self.name, nested)


_set_implicit = Base._implicit.__set__


def _is_implicit(message):
    return getattr(message, "_implicit", False)



@functools.total_ordering
class Message(Base):
    """The base of all messages. The present fields are attributes of the object; those that are absent are None, or an
    empty list or message."""

    __slots__ = ()
    __hash__ = None
    fields = {}

    def __init_subclass__(cls):
        if cls.__module__ != "pavo_zorv":
            raise TypeError("messages have no subclasses: the library makes messages of its own classes only")

    def __init__(self, **values):
        self._update(values, "")

    def _update(self, values, path):
        for name, value in (self._codec.fill(self, values) or {}).items():
            self._set(name, value, path)

    def _set(self, name, value, path):
        if type(name) is not str:
            raise TypeError("names of fields are strings")
        field = self.fields.get(name)
        if field is None:
            raise TypeError(f"{type(self).__name__} has no field {path}{name}")
        if value is None:
            vars(self).pop(name, None)
            return
        value = _CHECKED[field.kind](field, value, path + name)
        if field.kind == "nested":
            if _is_implicit(value) and vars(self).get(name) is not value:
                value = value.copy()  # it continues to be absent where it comes from
            _set_implicit(value, False)
        vars(self)[name] = value

    def __setattr__(self, name, value):
        if name not in self.fields:
            raise AttributeError(f"{type(self).__name__} has no field {name}")
        self._set(name, value, "")

    @classmethod
    def from_bytes(cls, data, *, reference=False, limit=None):
        """Decodes a message, or raises DecodeError. With `reference`, bytes are not copied but views of `data`. `limit`
        bounds the memory, in bytes, that the library may allocate."""
        decoded = cls._codec.decode(data, reference, limit)
        if type(decoded) is tuple:
            raise DecodeError(*decoded, data)
        return decoded

    def to_bytes(self):
        """The encoding of the message."""
        return self._checked(self._codec.encode, self)

    @staticmethod
    def _class_of(field):
        return CLASSES[field.message]

    @staticmethod
    def _checked(operation, *messages):
        """Calls an operation. If it refuses a value, which was put into a list, finds out which."""
        try:
            return operation(*messages)
        except (TypeError, ValueError, OverflowError, AttributeError, KeyError):
            for message in messages:
                _verify(message, "")
            raise

    def copy(self):
        """An independent message with the same content."""
        return self.from_bytes(self.to_bytes())

    def __reduce__(self):
        return type(self).from_bytes, (self.to_bytes(),)

    def has(self, name):
        """Whether a field is present."""
        if name not in self.fields:
            raise KeyError(name)
        return name in vars(self) and is_present(vars(self)[name])

    def to_dict(self):
        """The present fields by name, as int, bool, str, bytes, list and dict: keyword arguments of the class."""
        return self._checked(self._codec.plain, self)

    def to_json(self):
        """The message as JSON, as `zorv-inspect decode` writes it."""
        return _json.write(self)

    @classmethod
    def from_json(cls, text):
        """The message that a JSON text describes."""
        return _json.read(cls, text)

    def __repr__(self):
        return f"{type(self).__name__}({', '.join(f'{k}={v!r}' for k, v in self.to_dict().items())})"

    def compare(self, other):
        """Negative, 0 or positive, in the order that the library defines."""
        if type(self) is not type(other):
            raise TypeError(f"cannot compare {type(self).__name__} with {type(other).__name__}")
        return self._checked(self._codec.compare, self, other)

    def __eq__(self, other):
        return self.compare(other) == 0 if type(self) is type(other) else NotImplemented

    def __lt__(self, other):
        return self.compare(other) < 0 if type(self) is type(other) else NotImplemented


# --- The classes ---


def _row(layout, field):
    offset = getattr(layout.record, field.name).offset
    count = getattr(layout.record, field.count).offset if field.count else 0
    child = CLASSES[field.message]._codec if field.message else None
    return field.name, KINDS.index(field.kind), field.bits, field.signed, offset, count, child


def _absent(field):
    if field.is_list:
        return _AbsentList(field.name)
    return _AbsentNested(field.name, CLASSES[field.message]) if field.kind == "nested" else None


def _make_class(layout, library):
    def address(operation):
        return ctypes.cast(library[f"pavo_zorv_{layout.name}_{operation}"], ctypes.c_void_p).value

    cls = type(layout.name, (Message,), {
        **{name: _absent(field) for name, field in layout.fields.items()},
        "__slots__": (),
        "__doc__": f"The message {layout.name}, with the fields {', '.join(layout.fields)}.",
        "__module__": "pavo_zorv",
        "fields": layout.fields,
    })
    cls._codec = Codec(
        cls, ctypes.sizeof(layout.record), layout.record.presence.offset, layout.record.presence.size,
        tuple(_row(layout, field) for field in layout.fields.values()),
        (address("decode_ext"), address("encode_ext"), address("compare")), layout.takes_options)
    return cls


CLASSES = {}
_library = load()
for _layout in layouts(_HEADER).values():
    CLASSES[_layout.name] = _make_class(_layout, _library)
