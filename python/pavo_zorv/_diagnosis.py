"""Finds out where an input is refused, and why. The library only says which kind of failure it is: this reads the input
once more, by the same rules."""

_WIRE_TYPES = ("varint", "fixed64", "delimited", "group start", "group end", "fixed32", "wire type 6", "wire type 7")


class _Refused(Exception):
    pass


def diagnose(cls, data):
    """Offset, path and reason of the first failure; None, "" and "" if the input is not what was refused."""
    data = bytes(data)
    try:
        _Reader(data).message(cls, 0, len(data), "")
    except _Refused as refused:
        return refused.args
    return None, "", ""


def _refuse(offset, path, reason):
    raise _Refused(offset, path, reason)


class _Reader:
    def __init__(self, data):
        self.data = data

    def varint(self, at, end):
        """The low 32 bits of the value, and the position after it; None and None if it is cut off."""
        value, shift = 0, 0
        for position in range(at, end):
            byte = self.data[position]
            value |= (byte & 0x7F) << shift
            shift = min(shift + 7, 35)
            if byte < 0x80:
                return value & 0xFFFFFFFF, position + 1
        return None, None

    def message(self, cls, at, end, path):
        fields = {field.number: field for field in cls.fields.values()}
        container = path or "the input"
        first = {}
        while at < end:
            start = at
            key, at = self.varint(at, end)
            if key is None:
                _refuse(start, path, f"{cls.__name__}: the key is cut off by the end of {container}")
            field = fields.get(key >> 3)
            if field is None:
                at = self.unknown(cls, key, start, at, end, path)
                continue
            here = f"{path}.{field.name}" if path else field.name
            about = f"field {field.number} of {cls.__name__}"
            expected = 0 if field.kind in ("flag", "integer", "integer_list") else 2
            if key & 7 != expected:
                packed = "a packed list: " if field.kind == "integer_list" and key & 7 == 2 else ""
                _refuse(start, here,
                        f"{about}: {packed}wire type {_WIRE_TYPES[key & 7]} instead of {_WIRE_TYPES[expected]}")
            if field.number in first and field.is_list:
                _refuse(start, here, f"{about}: second run of a list; the first starts at offset {first[field.number]}")
            if field.number in first and field.kind in ("string", "bytes"):
                _refuse(start, here, f"{about}: second occurrence; the first is at offset {first[field.number]}")
            first[field.number] = start
            if field.is_list:
                at = self.run(cls, field, at, end, here, about, container)
            else:
                content, at = self.value(field, at, end, here, about, container)
                if field.kind == "nested":
                    self.message(cls._class_of(field), content, at, here)

    def unknown(self, cls, key, start, at, end, path):
        """The position after an unknown field. One of known size that runs past the end ends the message."""
        wire_type, number = key & 7, key >> 3
        if wire_type in (1, 5):
            return at + (8 if wire_type == 1 else 4)
        if wire_type not in (0, 2):
            _refuse(start, path,
                    f"unknown field {number} of {cls.__name__}: {_WIRE_TYPES[wire_type]} cannot be skipped")
        value, after = self.varint(at, end)
        if value is None:
            what = "length" if wire_type == 2 else "varint"
            _refuse(at, path, f"{cls.__name__}: the {what} of unknown field {number} is cut off by the end of "
                              f"{path or 'the input'}")
        return after + value if wire_type == 2 else after

    def value(self, field, at, end, path, about, container):
        """The start of a value's content, and the position after it."""
        is_delimited = field.kind not in ("flag", "integer", "integer_list")
        number, after = self.varint(at, end)
        if number is None:
            what = "length" if is_delimited else "value"
            _refuse(at, path, f"{about}: the {what} is cut off by the end of {container}")
        if not is_delimited:
            return at, after
        left = end - after
        if number > left:
            _refuse(at, path, f"{about}: length {number} exceeds the {left} byte{'s'[left == 1:]} left in {container}")
        return after, after + number

    def run(self, cls, field, at, end, path, about, container):
        """The position after a list: its elements are delimited before any is read, whatever the wire type in keys
        after the first."""
        elements = []
        while True:
            elements.append(self.value(field, at, end, f"{path}[{len(elements)}]", about, container))
            after = elements[-1][1]
            if after == end:
                break
            key, at = self.varint(after, end)
            if key is None:
                outer = path.rpartition(".")[0]
                _refuse(after, outer, f"{cls.__name__}: the key after {field.name}[{len(elements) - 1}] is cut off by "
                                      f"the end of {container}")
            if key >> 3 != field.number:
                break
        if field.kind == "message_list":
            for i, (content, limit) in enumerate(elements):
                self.message(cls._class_of(field), content, limit, f"{path}[{i}]")
        return after
