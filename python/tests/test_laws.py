"""Laws that hold for every message, on whatever Hypothesis comes up with: hostile bytes, and any content."""

import pytest
from hypothesis import given, strategies as st

import pavo_zorv
from pavo_zorv import _messages
from pavo_zorv._library import ffi, library

every_message = pytest.mark.parametrize("cls", pavo_zorv.CLASSES.values(), ids=lambda cls: cls.__name__)

# Bytes of memory that decoding may ask for, per byte of input.
MOST_MEMORY = 36


def numbers(ctype):
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
    """Values of a field, as to_dict gives them."""
    kind = cls.fields[name].kind
    if isinstance(kind, _messages._Flag):
        return st.booleans()
    if isinstance(kind, _messages._Number):
        return numbers(dict(ffi.typeof(cls.__name__).fields)[name].type)
    if isinstance(kind, _messages._String):
        return st.text(st.characters(blacklist_characters="\0", blacklist_categories=("Cs",)), max_size=20)
    if isinstance(kind, _messages._Bytes):
        return st.binary(max_size=40)
    if isinstance(kind, _messages._Numbers):
        return st.lists(numbers(kind.element), min_size=1, max_size=30)
    nested = contents(pavo_zorv.CLASSES[kind.name], depth + 1)
    return nested if isinstance(kind, _messages._Nested) else st.lists(nested, min_size=1, max_size=3)


def contents(cls, depth=0):
    """Contents of a message: fewer fields, the deeper it lies."""
    most = {0: len(cls.fields), 1: 4}.get(depth, 2)
    names = st.lists(st.sampled_from(sorted(cls.fields)), unique=True, max_size=most)
    return names.flatmap(lambda chosen: st.fixed_dictionaries({name: values(cls, name, depth) for name in chosen}))


def fields(cls):
    """Bytes that look like fields of a message, mostly with the right wire type, and some that do not."""
    keys = st.builds(lambda number, wire: varint(number << 3 | wire), st.integers(0, len(cls.fields) + 1),
                     st.sampled_from([0, 0, 0, 2, 2, 2, 1, 5, 3, 7]))
    payloads = st.one_of(
        st.integers(0, 2**64).map(varint),
        st.binary(max_size=12).map(lambda data: varint(len(data)) + data),
        st.binary(max_size=3))
    return st.lists(st.builds(bytes.__add__, keys, payloads), max_size=12).map(b"".join)


class Account:
    """The blocks that are out, and how many came back that were not."""

    def __init__(self, arena):
        self.out = {int(ffi.cast("uintptr_t", block)) for block in arena.blocks}
        self.strangers = 0

    def give_back(self, block):
        if block in self.out:
            self.out.remove(block)
        else:
            self.strangers += 1


@ffi.callback("void(void *, void *)")
def release(block, context):
    ffi.from_handle(context).give_back(int(ffi.cast("uintptr_t", block)))


def still_out(message):
    """Releases a message's record; returns how many blocks have not come back."""
    account = Account(message._arena)
    handle = ffi.new_handle(account)
    cls = type(message)
    free = getattr(library, f"pavo_zorv_{cls.__name__}_free_ext")
    cls._call(free, message._options, message._record, release, handle)
    assert account.strangers == 0, "a block came back twice, or was never given"
    return len(account.out)


def decode(cls, data, **options):
    try:
        return cls.from_bytes(data, **options), 0
    except pavo_zorv.DecodeError as error:
        return error.partial, error.result


@every_message
@given(data=st.data())
def test_any_bytes_give_a_result_and_a_record_that_is_whole(cls, data):
    raw = data.draw(fields(cls) | st.binary(max_size=60))
    message, result = decode(cls, raw)
    assert result in (0, -1, -2, -3)
    assert message._arena.bytes <= len(raw) * MOST_MEMORY
    assert message._arena.requests * 2 <= len(raw)
    # What was read can be shown, written, read again, copied and compared.
    message.to_dict()
    again = cls.from_bytes(message.to_bytes())
    assert again.to_bytes() == message.to_bytes()
    assert message.copy() == message
    # A copy holds nothing twice, so all of it comes back; of the original, what a message dropped that came twice does
    # not.
    assert still_out(message.copy()) == 0
    still_out(message)


@every_message
@given(data=st.data())
def test_a_decoding_that_runs_out_of_memory_is_whole_up_to_there(cls, data):
    raw = cls(**data.draw(contents(cls))).to_bytes()
    whole = cls.from_bytes(raw)
    limit = data.draw(st.integers(0, whole._arena.bytes + 1))
    message, result = decode(cls, raw, limit=limit)
    assert (result == 0) == (limit >= whole._arena.bytes)
    assert result in (0, -4)
    assert message._arena.bytes <= limit
    assert cls.from_bytes(message.to_bytes()).to_bytes() == message.to_bytes()
    assert still_out(message) == 0


@every_message
@given(data=st.data())
def test_what_is_written_is_read_as_it_was(cls, data):
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
    assert still_out(received) == 0


@every_message
@given(data=st.data())
def test_every_beginning_of_a_message_is_refused_or_a_shorter_message(cls, data):
    raw = cls(**data.draw(contents(cls))).to_bytes()
    cut = data.draw(st.integers(0, len(raw)))
    message, result = decode(cls, raw[:cut])
    assert result in (0, -1)
    if result == 0:
        assert len(message.to_bytes()) <= cut


@every_message
@given(data=st.data())
def test_damaged_bytes_are_read_or_refused(cls, data):
    raw = bytearray(cls(**data.draw(contents(cls))).to_bytes())
    for position, value in data.draw(st.lists(st.tuples(st.integers(0, 2**16), st.integers(0, 255)), max_size=4)):
        if raw:
            raw[position % len(raw)] = value
    message, result = decode(cls, bytes(raw))
    assert result in (0, -1, -2, -3)
    assert message.copy() == message
    referenced, same_result = decode(cls, bytes(raw), reference=True)
    assert same_result == result
    assert referenced == message


@every_message
@given(data=st.data())
def test_comparison_is_an_order(cls, data):
    a, b, c = (cls(**data.draw(contents(cls, 1))) for _ in range(3))

    def sign(number):
        return (number > 0) - (number < 0)

    assert sign(a.compare(b)) == -sign(b.compare(a))
    assert a.compare(a) == 0
    low, middle, high = sorted([a, b, c])
    assert low <= middle <= high and low <= high
