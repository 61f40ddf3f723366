"""Streams in which each message follows its length."""

import os
import random
import subprocess

import pytest

import pavo_zorv

INSPECT = os.environ.get("PAVO_ZORV_INSPECT")
FORMS = ["varint", "be16", "be32", "le32"]


@pytest.mark.parametrize("prefix, size, expected", [
    ("varint", 0, "00"), ("varint", 1, "01"), ("varint", 127, "7f"), ("varint", 128, "80 01"),
    ("varint", 16384, "80 80 01"),
    ("be16", 0, "00 00"), ("be16", 258, "01 02"), ("be16", 65535, "ff ff"),
    ("be32", 0, "00 00 00 00"), ("be32", 66051, "00 01 02 03"), ("le32", 66051, "03 02 01 00"),
])
def test_the_prefix(prefix, size, expected):
    assert pavo_zorv.framed(bytes(size), prefix) == bytes.fromhex(expected) + bytes(size)


def test_a_varint_is_the_usual_prefix():
    assert pavo_zorv.framed(b"\x08\x05") == b"\x02\x08\x05"
    assert list(pavo_zorv.Splitter().feed(b"\x02\x08\x05")) == [b"\x08\x05"]


def test_what_is_too_long_for_its_prefix_is_refused():
    with pytest.raises(OverflowError, match="65536 bytes are too long for be16"):
        pavo_zorv.framed(bytes(65536), "be16")


def test_a_prefix_that_is_not_known_is_refused():
    for use in (lambda: pavo_zorv.framed(b"", "le16"), lambda: pavo_zorv.Splitter("le16")):
        with pytest.raises(ValueError, match="no prefix 'le16'; known: varint, be16, be32, le32"):
            use()


@pytest.mark.parametrize("prefix", FORMS)
def test_a_stream_may_be_cut_anywhere(prefix):
    drawn = random.Random(2)
    messages = [drawn.randbytes(size) for size in (0, 1, 127, 128, 0, 300, 2, 20000)]
    stream = b"".join(pavo_zorv.framed(each, prefix) for each in messages)
    for longest in (1, 2, 5, 200, len(stream)):
        splitter, received, at = pavo_zorv.Splitter(prefix), [], 0
        while at < len(stream):
            size = drawn.randint(1, longest)
            received += splitter.feed(stream[at : at + size])
            at += size
        splitter.close()
        assert received == messages


@pytest.mark.parametrize("prefix, stream, pending", [
    ("varint", "02 08", 2), ("varint", "80", 1), ("be16", "00", 1), ("be16", "00 02 08", 3),
    ("be32", "00 00 00 01", 4)])
def test_an_end_within_a_message_is_refused(prefix, stream, pending):
    splitter = pavo_zorv.Splitter(prefix)
    assert list(splitter.feed(pavo_zorv.framed(b"abc", prefix) + bytes.fromhex(stream))) == [b"abc"]
    start = len(pavo_zorv.framed(b"abc", prefix))
    text = f"^offset {start}: the stream ends within a message, after {pending} bytes of it$"
    with pytest.raises(pavo_zorv.StreamError, match=text) as caught:
        splitter.close()
    assert caught.value.offset == start


@pytest.mark.parametrize("prefix, hostile, offset", [
    ("varint", "01 41 65", 2), ("be16", "00 01 41 00 65", 3), ("be32", "00 00 00 01 41 ff ff ff ff", 5)])
def test_a_length_above_the_limit_is_refused(prefix, hostile, offset):
    splitter, received = pavo_zorv.Splitter(prefix, limit=100), []
    for piece in (bytes.fromhex(hostile), b""):
        with pytest.raises(pavo_zorv.StreamError, match="; the limit is 100$") as caught:
            received += splitter.feed(piece)
        assert caught.value.offset == offset
    assert received == [b"A"], "what comes before it is not lost"
    assert list(pavo_zorv.Splitter(prefix, limit=100).feed(pavo_zorv.framed(bytes(100), prefix))) == [bytes(100)]


def test_messages_that_are_not_asked_for_come_next_time():
    splitter = pavo_zorv.Splitter()
    assert next(splitter.feed(b"\x01A\x01B\x01")) == b"A"
    splitter.feed(b"C")
    assert list(splitter.feed(b"")) == [b"B", b"C"]


def test_a_varint_without_end_is_refused():
    with pytest.raises(pavo_zorv.StreamError, match="^offset 0: a length of more than 10 bytes$"):
        list(pavo_zorv.Splitter().feed(b"\x80" * 10))
    assert not list(pavo_zorv.Splitter().feed(b"\x80" * 9))
    assert list(pavo_zorv.Splitter().feed(b"\x81" + b"\x80" * 8 + b"\x00A")) == [b"A"], "more bytes than it needs"


@pytest.mark.skipif(not INSPECT, reason="zorv-inspect is not built")
@pytest.mark.parametrize("prefix", ["varint", "be32", "le32"])
def test_zorv_inspect_reads_the_stream(prefix):
    messages = [pavo_zorv.api_msg(field1=1), pavo_zorv.api_msg(),
                pavo_zorv.api_msg(to_zorv={"intf": {"field2": "e" * 200}})]
    stream = b"".join(pavo_zorv.framed(each.to_bytes(), prefix) for each in messages)
    done = subprocess.run([INSPECT, "index", f"--stream={prefix}", "api_msg"], input=stream, capture_output=True,
                          check=True)
    rows = [line.split() for line in done.stdout.decode().splitlines()[1:]]
    assert [int(row[2]) for row in rows] == [len(each.to_bytes()) for each in messages]
    assert {row[3] for row in rows} == {"CODEC_OK"}
