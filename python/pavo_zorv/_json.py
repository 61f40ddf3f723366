"""Messages as JSON, as zorv-inspect writes and reads it: the JSON mapping of Protocol Buffers, with names as they are,
and an object with the member `base64` for a string that is not UTF-8."""

import base64
import json
import re


def _base64(data):
    return base64.b64encode(data).decode()


def _string(value):
    try:
        value.encode()
        return value
    except UnicodeEncodeError:
        return {"base64": _base64(value.encode("utf-8", "surrogateescape"))}


def _tree(message):
    """What a message is in JSON, as lists and dicts."""
    return {name: _value(message.fields[name], getattr(message, name)) for name in message.fields if message.has(name)}


def _value(field, value):
    if field.kind == "message_list":
        return [_tree(each) for each in value]
    if field.kind == "nested":
        return _tree(value)
    if field.kind == "bytes":
        return _base64(value)
    if field.kind == "string":
        return _string(value)
    return str(value) if field.bits == 64 else value


def _lines(value, margin):
    """Objects have a line for each member; lists have one only if they contain objects."""
    if isinstance(value, dict):
        start, end = "{", "}"
        parts = [f"{json.dumps(name)}: {_lines(each, margin + '  ')}" for name, each in value.items()]
    elif isinstance(value, list):
        start, end = "[", "]"
        parts = [_lines(each, margin + "  ") for each in value]
        if not any(isinstance(each, (dict, list)) for each in value):
            return f"[{', '.join(parts)}]"
    else:
        return json.dumps(value, ensure_ascii=False)
    if not parts:
        return start + end
    return start + margin + "  " + f",{margin}  ".join(parts) + margin + end


def write(message):
    return _lines(_tree(message), "\n")


# --- Reading ---


def read(cls, text):
    tree = json.loads(text)
    if not isinstance(tree, dict):
        raise TypeError(f"{cls.__name__}: expected an object")
    return cls(**_members(cls, tree, ""))


def _members(cls, tree, path):
    names = {_camel(name): name for name in cls.fields} | {name: name for name in cls.fields}
    result = {}
    for given, value in tree.items():
        if given not in names:
            raise TypeError(f"{cls.__name__} has no field {path}{given}")
        name = names[given]
        result[name] = None if value is None else _content(cls, cls.fields[name], value, path + given)
    return result


def _camel(name):
    return re.sub(r"_(\w)", lambda found: found[1].upper(), name)


def _content(cls, field, value, path):
    if field.is_list:
        if not isinstance(value, list):
            raise TypeError(f"{path}: expected a list")
        return [_element(cls, field, each, f"{path}[{i}]") for i, each in enumerate(value)]
    return _element(cls, field, value, path)


def _element(cls, field, value, path):
    if field.message:
        if not isinstance(value, dict):
            raise TypeError(f"{path}: expected an object")
        return _members(cls._class_of(field), value, path + ".")
    if field.kind == "string":
        if isinstance(value, dict) and list(value) == ["base64"]:
            return _decoded(value["base64"], path)
        return value
    if field.kind == "bytes":
        return _decoded(value, path)
    if field.kind == "flag":
        if not isinstance(value, bool):
            raise TypeError(f"{path}: expected true or false")
        return value
    return _number(value, path)


def _decoded(value, path):
    """Base64 of either alphabet, with or without padding."""
    if not isinstance(value, str) or not re.fullmatch(r"[A-Za-z0-9+/_-]*={0,2}", value):
        raise ValueError(f"{path}: expected base64")
    digits = value.rstrip("=").replace("-", "+").replace("_", "/")
    try:
        return base64.b64decode(digits + "=" * (-len(digits) % 4))
    except ValueError as error:
        raise ValueError(f"{path}: expected base64") from error


def _number(value, path):
    """An integer, or a string or float that is one, such as "1e3"."""
    if isinstance(value, str) and re.fullmatch(r"-?\d+", value):
        return int(value)
    try:
        number = float(value) if not isinstance(value, bool) else None
    except (TypeError, ValueError):
        number = None
    if isinstance(value, int) and number is not None:
        return value
    if number is None or number != number // 1:
        raise TypeError(f"{path}: expected an integer")
    return int(number)
