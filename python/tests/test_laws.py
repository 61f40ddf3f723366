"""Properties of every message, checked by Hypothesis on hostile input and on random content."""

import importlib
import os
import sys

import pytest
from hypothesis import given, strategies as st

import pavo_zorv

every_message = pytest.mark.parametrize("cls", pavo_zorv.CLASSES.values(), ids=lambda cls: cls.__name__)

# The most bytes of memory that decoding allocates, per byte of input.
MEMORY_PER_BYTE = 36


def integers(field):
    if field.signed:
        return st.integers(-(2 ** (field.bits - 1)), 2 ** (field.bits - 1) - 1)
    return st.integers(0, 2**field.bits - 1)


def varint(value):
    result = bytearray()
    while value >= 0x80:
        result.append(value & 0x7F | 0x80)
        value >>= 7
    return bytes(result) + bytes([value])


def values(cls, name, depth):
    """Values of a field, as to_dict returns them."""
    field = cls.fields[name]
    if field.kind == "flag":
        return st.booleans()
    if field.kind == "integer":
        return integers(field)
    if field.kind == "string":
        return st.text(st.characters(blacklist_characters="\0", blacklist_categories=("Cs",)), max_size=20)
    if field.kind == "bytes":
        return st.binary(max_size=40)
    if field.kind == "integer_list":
        return st.lists(integers(field), min_size=1, max_size=30)
    nested = contents(pavo_zorv.CLASSES[field.message], depth + 1)
    return nested if field.kind == "nested" else st.lists(nested, min_size=1, max_size=3)


def contents(cls, depth=0):
    """The content of a message, with fewer fields at greater depth."""
    most = {0: len(cls.fields), 1: 4}.get(depth, 2)
    names = st.lists(st.sampled_from(sorted(cls.fields)), unique=True, max_size=most)
    return names.flatmap(lambda chosen: st.fixed_dictionaries({name: values(cls, name, depth) for name in chosen}))


def fields(cls):
    """Bytes that look like fields of a message, most of them with a plausible wire type."""
    keys = st.builds(lambda number, wire: varint(number << 3 | wire), st.integers(0, len(cls.fields) + 1),
                     st.sampled_from([0, 0, 0, 2, 2, 2, 1, 5, 3, 7]))
    payloads = st.one_of(
        st.integers(0, 2**64).map(varint),
        st.binary(max_size=12).map(lambda data: varint(len(data)) + data),
        st.binary(max_size=3))
    return st.lists(st.builds(bytes.__add__, keys, payloads), max_size=12).map(b"".join)


def decode(cls, data, **options):
    try:
        return cls.from_bytes(data, **options), 0
    except pavo_zorv.DecodeError as error:
        return error.partial, error.result


@every_message
@given(data=st.data())
def test_any_input_gives_a_result_and_a_valid_record(cls, data):
    encoded = data.draw(fields(cls) | st.binary(max_size=60))
    message, result = decode(cls, encoded)
    assert result in (0, -1, -2, -3)
    assert decode(cls, encoded, limit=len(encoded) * MEMORY_PER_BYTE)[1] == result
    # What was read can be converted, encoded, decoded again, copied and compared.
    message.to_dict()
    again = cls.from_bytes(message.to_bytes())
    assert again.to_bytes() == message.to_bytes()
    assert message.copy() == message


@every_message
@given(data=st.data())
def test_a_message_that_ran_out_of_memory_is_valid_up_to_there(cls, data):
    encoded = cls(**data.draw(contents(cls))).to_bytes()
    limit = data.draw(st.integers(0, len(encoded) * 4))
    message, result = decode(cls, encoded, limit=limit)
    assert result in (0, -4)
    assert decode(cls, encoded, limit=limit + 1)[1] in (0, result)
    if result == 0:
        assert message.to_bytes() == encoded
    assert cls.from_bytes(message.to_bytes()).to_bytes() == message.to_bytes()


@every_message
@given(data=st.data())
def test_a_message_survives_a_round_trip(cls, data):
    content = data.draw(contents(cls))
    message = cls(**content)
    assert message.to_dict() == content
    received = cls.from_bytes(message.to_bytes())
    assert received.to_dict() == content
    assert received == message
    assert received.to_bytes() == message.to_bytes()
    assert received.copy().to_dict() == content
    referenced = cls.from_bytes(message.to_bytes(), reference=True)
    assert referenced.to_dict() == content


@every_message
@given(data=st.data())
def test_a_truncated_message_is_refused_or_a_shorter_message(cls, data):
    encoded = cls(**data.draw(contents(cls))).to_bytes()
    cut = data.draw(st.integers(0, len(encoded)))
    message, result = decode(cls, encoded[:cut])
    assert result in (0, -1)
    if result == 0:
        assert len(message.to_bytes()) <= cut


@every_message
@given(data=st.data())
def test_a_damaged_message_is_refused_or_another_message(cls, data):
    encoded = bytearray(cls(**data.draw(contents(cls))).to_bytes())
    for position, value in data.draw(st.lists(st.tuples(st.integers(0, 2**16), st.integers(0, 255)), max_size=4)):
        if encoded:
            encoded[position % len(encoded)] = value
    message, result = decode(cls, bytes(encoded))
    assert result in (0, -1, -2, -3)
    assert message.copy() == message
    referenced, same_result = decode(cls, bytes(encoded), reference=True)
    assert same_result == result
    assert referenced == message


@every_message
@given(data=st.data())
def test_comparison_is_a_total_order(cls, data):
    a, b, c = (cls(**data.draw(contents(cls, 1))) for _ in range(3))

    def sign(number):
        return (number > 0) - (number < 0)

    assert sign(a.compare(b)) == -sign(b.compare(a))
    assert a.compare(a) == 0
    low, middle, high = sorted([a, b, c])
    assert low <= middle <= high and low <= high


# --- The compiled part and the other one ---


def other_classes():
    """The classes of this package, loaded once more without its compiled part."""
    mine = {name: sys.modules.pop(name) for name in list(sys.modules) if name.partition(".")[0] == "pavo_zorv"}
    os.environ["PAVO_ZORV_PURE_PYTHON"] = "1"
    try:
        return importlib.import_module("pavo_zorv").CLASSES
    finally:
        del os.environ["PAVO_ZORV_PURE_PYTHON"]
        for name in [name for name in sys.modules if name.partition(".")[0] == "pavo_zorv"]:
            del sys.modules[name]
        sys.modules.update(mine)


if not os.environ.get("PAVO_ZORV_PURE_PYTHON"):
    OTHERS = other_classes()

    def both(cls, encoded, **options):
        """The result and what was read, by each of them."""
        answers = []
        for each in (cls, OTHERS[cls.__name__]):
            try:
                message, error = each.from_bytes(encoded, **options), None
            except ValueError as caught:
                message, error = caught.partial, str(caught)
            answers.append((error, message.to_dict(), message.to_bytes(), repr(vars(message))))
        return answers

    def test_there_are_two_parts():
        assert type(OTHERS["api_msg"]._codec).__module__ == "pavo_zorv._codec"
        assert type(pavo_zorv.api_msg._codec).__module__ == "pavo_zorv._native"

    @every_message
    @given(data=st.data())
    def test_both_parts_read_the_same(cls, data):
        encoded = data.draw(fields(cls) | st.binary(max_size=60))
        options = data.draw(st.fixed_dictionaries({}, optional={"limit": st.integers(0, 200)}))
        mine, other = both(cls, encoded, **options)
        assert mine == other

    @every_message
    @given(data=st.data())
    def test_both_parts_write_the_same(cls, data):
        content = data.draw(contents(cls))
        assert cls(**content).to_bytes() == OTHERS[cls.__name__](**content).to_bytes()
