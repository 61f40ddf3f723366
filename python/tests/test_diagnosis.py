"""Where and why an input is refused: what zorv-inspect says, too."""

import os
import random
import re
import subprocess

import pytest

import pavo_zorv

INSPECT = os.environ.get("PAVO_ZORV_INSPECT")


def refused(cls, data):
    with pytest.raises(pavo_zorv.DecodeError) as caught:
        cls.from_bytes(data)
    return caught.value


@pytest.mark.parametrize("name, data, result, offset, path, reason", [
    ("api_addr", "08", -1, 1, "address", "field 1 of api_addr: the value is cut off by the end of the input"),
    ("api_addr", "08 05 88", -1, 2, "", "api_addr: the key is cut off by the end of the input"),
    ("api_addr", "0d", -3, 0, "address", "field 1 of api_addr: wire type fixed32 instead of varint"),
    ("api_prefix", "0a 02 01 02", -3, 0, "octets",
     "field 1 of api_prefix: a packed list: wire type delimited instead of varint"),
    ("api_addr", "08 01 13", -2, 2, "", "unknown field 2 of api_addr: group start cannot be skipped"),
    ("api_addr", "10 ff", -1, 1, "", "api_addr: the varint of unknown field 2 is cut off by the end of the input"),
    ("api_addr", "12 ff", -1, 1, "", "api_addr: the length of unknown field 2 is cut off by the end of the input"),
    ("api_intf", "12 05 61", -1, 1, "field2", "field 2 of api_intf: length 5 exceeds the 1 byte left in the input"),
    ("api_intf", "12 01 61 12 01 62", -1, 3, "field2",
     "field 2 of api_intf: second occurrence; the first is at offset 0"),
    ("api_prefix", "08 01 10 05 08 02", -1, 4, "octets",
     "field 1 of api_prefix: second run of a list; the first starts at offset 0"),
    ("api_prefix", "08 01 08 81", -1, 3, "octets[1]",
     "field 1 of api_prefix: the value is cut off by the end of the input"),
    ("api_prefix", "08 01 88", -1, 2, "", "api_prefix: the key after octets[0] is cut off by the end of the input"),
    ("api_exp_path", "0a 02 08 01 0a 01 0d", -3, 6, "hops[1].field1",
     "field 1 of api_exp_hop: wire type fixed32 instead of varint"),
    ("api_msg", "62 02 12 02", -1, 3, "to_zorv.intf",
     "field 2 of api_to_zorv: length 2 exceeds the 0 bytes left in to_zorv"),
])
def test_each_way_to_be_refused(name, data, result, offset, path, reason):
    error = refused(pavo_zorv.CLASSES[name], bytes.fromhex(data))
    assert (error.result, error.offset, error.path, error.reason) == (result, offset, path, reason)


def samples(count):
    """Messages that were cut, or in which bytes were changed, and that are refused."""
    drawn = random.Random(1)
    source = os.path.join(os.path.dirname(__file__), "..", "..", "samples")
    paths = sorted(each for each in os.listdir(source) if each.endswith(".bin"))
    found = []
    while len(found) < count:
        path = drawn.choice(paths)
        with open(os.path.join(source, path), "rb") as file:
            data = bytearray(file.read())
        for _ in range(drawn.randrange(3)):
            data[drawn.randrange(len(data))] = drawn.randrange(256)
        data = bytes(data[: drawn.randrange(len(data)) if drawn.randrange(2) else len(data)])
        cls = pavo_zorv.CLASSES[path.split(".")[0]]
        try:
            cls.from_bytes(data)
        except pavo_zorv.DecodeError as error:
            found.append((cls.__name__, data, error))
    return found


@pytest.mark.skipif(not INSPECT, reason="zorv-inspect is not built")
def test_zorv_inspect_says_the_same(tmp_path):
    for i, (name, data, error) in enumerate(samples(400)):
        path = tmp_path / str(i)
        path.write_bytes(data)
        printed = subprocess.run([INSPECT, "decode", "--input=raw", name, path], capture_output=True, text=True,
                                 check=False).stderr
        where = re.search(r"where: offset (\d+) \(0x[0-9a-f]+\)(?:, (.*))?", printed)
        why = re.search(r"why:   (.*)", printed)
        place = where[2] if where[2] != f"in {name} itself" else ""
        assert (error.offset, error.path, error.reason) == (int(where[1]), place, why[1]), (data.hex(), printed)
