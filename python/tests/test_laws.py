"""Properties of every message, checked by Hypothesis on hostile input and on random content."""

import pytest
from hypothesis import given, strategies as st

import pavo_zorv
from pavo_zorv import _messages
from pavo_zorv._library import ffi, library

every_message = pytest.mark.parametrize("cls", pavo_zorv.CLASSES.values(), ids=lambda cls: cls.__name__)

# The most bytes of memory that decoding allocates, per byte of input.
MEMORY_PER_BYTE = 36


def integers(ctype):
    bits = 8 * ffi.sizeof(ctype)
    signed = int(ffi.cast(ctype, -1)) < 0
    return st.integers(-(2 ** (bits - 1)), 2 ** (bits - 1) - 1) if signed else st.integers(0, 2**bits - 1)


def varint(value):
    result = bytearray()
    while value >= 0x80:
        result.append(value & 0x7F | 0x80)
        value >>= 7
    return bytes(result) + bytes([value])


def values(cls, name, depth):
    """Values of a field, as to_dict returns them."""
    kind = cls.fields[name].kind
    if isinstance(kind, _messages._Flag):
        return st.booleans()
    if isinstance(kind, _messages._Integer):
        return integers(dict(ffi.typeof(cls.__name__).fields)[name].type)
    if isinstance(kind, _messages._String):
        return st.text(st.characters(blacklist_characters="\0", blacklist_categories=("Cs",)), max_size=20)
    if isinstance(kind, _messages._Bytes):
        return st.binary(max_size=40)
    if isinstance(kind, _messages._IntegerList):
        return st.lists(integers(kind.element), min_size=1, max_size=30)
    nested = contents(pavo_zorv.CLASSES[kind.name], depth + 1)
    return nested if isinstance(kind, _messages._Nested) else st.lists(nested, min_size=1, max_size=3)


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


class Releases:
    """The blocks that have not been released, and the number of wrong releases."""

    def __init__(self, arena):
        self.live = {int(ffi.cast("uintptr_t", block)) for block in arena.blocks}
        self.wrong = 0

    def release(self, block):
        if block in self.live:
            self.live.remove(block)
        else:
            self.wrong += 1


@ffi.callback("void(void *, void *)")
def release(block, context):
    ffi.from_handle(context).release(int(ffi.cast("uintptr_t", block)))


def unreleased(message):
    """Releases a message's record; returns the number of blocks that were not released."""
    releases = Releases(message._arena)
    handle = ffi.new_handle(releases)
    cls = type(message)
    free = getattr(library, f"pavo_zorv_{cls.__name__}_free_ext")
    cls._call(free, message._options, message._record, release, handle)
    assert releases.wrong == 0, "a block was released that was not allocated, or was released twice"
    return len(releases.live)


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
    assert message._arena.bytes <= len(encoded) * MEMORY_PER_BYTE
    assert message._arena.requests * 2 <= len(encoded)
    # What was read can be converted, encoded, decoded again, copied and compared.
    message.to_dict()
    again = cls.from_bytes(message.to_bytes())
    assert again.to_bytes() == message.to_bytes()
    assert message.copy() == message
    # All blocks of a copy are released. Of the original, those that a repeated nested message replaced are not.
    assert unreleased(message.copy()) == 0
    unreleased(message)


@every_message
@given(data=st.data())
def test_a_message_that_ran_out_of_memory_is_valid_up_to_there(cls, data):
    encoded = cls(**data.draw(contents(cls))).to_bytes()
    whole = cls.from_bytes(encoded)
    limit = data.draw(st.integers(0, whole._arena.bytes + 1))
    message, result = decode(cls, encoded, limit=limit)
    assert (result == 0) == (limit >= whole._arena.bytes)
    assert result in (0, -4)
    assert message._arena.bytes <= limit
    assert cls.from_bytes(message.to_bytes()).to_bytes() == message.to_bytes()
    assert unreleased(message) == 0


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
    assert unreleased(received) == 0


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
