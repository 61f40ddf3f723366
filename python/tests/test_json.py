"""JSON: the text that zorv-inspect writes, and what it reads."""

import os
import pathlib
import subprocess

import pytest

import pavo_zorv

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = sorted((SOURCE / "samples").glob("*.bin"))
INSPECT = os.environ.get("PAVO_ZORV_INSPECT")
with_inspect = pytest.mark.skipif(not INSPECT, reason="zorv-inspect is not built")


def inspected(command, name, data):
    return subprocess.run([INSPECT, command, name], input=data, capture_output=True, check=True).stdout


@with_inspect
@pytest.mark.parametrize("path", SAMPLES, ids=lambda path: path.stem)
def test_samples_are_written_as_zorv_inspect_writes_them(path):
    name = path.stem.split(".")[0]
    message = pavo_zorv.CLASSES[name].from_bytes(path.read_bytes())
    assert message.to_json() + "\n" == inspected("decode", name, path.read_bytes()).decode()


@pytest.mark.parametrize("path", SAMPLES, ids=lambda path: path.stem)
def test_samples_are_read_again(path):
    message = pavo_zorv.CLASSES[path.stem.split(".")[0]].from_bytes(path.read_bytes())
    assert type(message).from_json(message.to_json()) == message


def test_what_the_text_looks_like():
    request = pavo_zorv.oam_req(field1=1, field3='né "\x01\x7f', prefix_sid={"field2": [1, 255]}, field6=b"\x00\xff")
    assert request.to_json() == (
        '{\n  "field1": 1,\n  "field3": "né \\"\\u0001\x7f",\n  "prefix_sid": {\n    "field2": [1, 255]\n  },\n'
        '  "field6": "AP8="\n}')
    assert pavo_zorv.api_exp_path(hops=[{}, {"field1": 1}]).to_json() == (
        '{\n  "hops": [\n    {},\n    {\n      "field1": 1\n    }\n  ]\n}')
    assert pavo_zorv.api_msg(field1=2**64 - 1).to_json() == '{\n  "field1": "18446744073709551615"\n}'
    assert pavo_zorv.api_intf(field2="a\udcff").to_json() == '{\n  "field2": {\n    "base64": "Yf8="\n  }\n}'
    assert pavo_zorv.api_msg().to_json() == "{}"


@with_inspect
@pytest.mark.parametrize("message", [
    pavo_zorv.api_intf(field2="a\udcffé\u2028\"\\/\b\f\n\r\t\x1f\x7f\U0001f600"),
    pavo_zorv.api_intf(field2="é\u2028\"\\/\b\f\n\r\t\x1f\x7f\U0001f600\ufeff\uffff"),
    pavo_zorv.api_msg_p2p_auto_policy_notif(field27=-(2**63)),
    pavo_zorv.api_policy(field9=-5, field4=False, prefixes=[{}, {"octets": [1]}]),
    pavo_zorv.api_msg(to_zorv={}, to_igp={"aa_list": {"policies": [{"prefixes": [{}]}, {}]}}),
    pavo_zorv.srv6_prefix(field1=b""),
    pavo_zorv.srv6_prefix(field1=bytes(range(256))),
], ids=lambda message: type(message).__name__)
def test_what_is_unusual_is_written_as_zorv_inspect_writes_it(message):
    name = type(message).__name__
    assert message.to_json() + "\n" == inspected("decode", name, message.to_bytes()).decode()
    assert inspected("encode", name, message.to_json().encode()) == message.to_bytes()
    assert type(message).from_json(message.to_json()) == message


@pytest.mark.parametrize("text, content", [
    ('{"toZorv": {"intf": {"field2": "eth0"}}}', {"to_zorv": {"intf": {"field2": "eth0"}}}),
    ('{"field1": 5}', {"field1": 5}),
    ('{"field1": "5"}', {"field1": 5}),
    ('{"field1": 1e3}', {"field1": 1000}),
    ('{"field1": "1.0"}', {"field1": 1}),
    ('{"field1": null, "to_zorv": null}', {}),
    ('{"field1": "18446744073709551615"}', {"field1": 2**64 - 1}),
])
def test_what_is_read(text, content):
    assert pavo_zorv.api_msg.from_json(text).to_dict() == content
    assert pavo_zorv.api_msg.from_json(text.encode()).to_dict() == content


@pytest.mark.parametrize("digits", ["+/8=", "-_8=", "+/8", "-_8"])
def test_base64_is_read_in_either_alphabet_with_or_without_padding(digits):
    assert pavo_zorv.srv6_prefix.from_json(f'{{"field1": "{digits}"}}').field1 == b"\xfb\xff"


@pytest.mark.parametrize("name, text, error, words", [
    ("api_msg", "[]", TypeError, "api_msg: expected an object"),
    ("api_msg", '{"nope": 1}', TypeError, "api_msg has no field nope"),
    ("api_msg", '{"to_zorv": {"nope": 1}}', TypeError, "api_to_zorv has no field to_zorv.nope"),
    ("api_msg", '{"to_zorv": 5}', TypeError, "to_zorv: expected an object"),
    ("api_msg", '{"field1": true}', TypeError, "field1: expected an integer"),
    ("api_msg", '{"field1": 1.5}', TypeError, "field1: expected an integer"),
    ("api_msg", '{"field1": "x"}', TypeError, "field1: expected an integer"),
    ("api_msg", '{"field1": 18446744073709551616}', OverflowError, "field1: 18446744073709551616 is out of range"),
    ("api_to_zorv", '{"field3": 1}', TypeError, "field3: expected true or false"),
    ("api_exp_path", '{"hops": [{}, {"field5": [300]}]}', OverflowError, r"hops\[1\].field5\[0\]: 300 is out of range"),
    ("api_exp_path", '{"hops": {}}', TypeError, "hops: expected a list"),
    ("api_intf", '{"field2": 5}', TypeError, "field2: expected a string"),
    ("api_intf", '{"field2": "a\\u0000"}', ValueError, "field2: a string cannot contain a NUL"),
    ("srv6_prefix", '{"field1": "A"}', ValueError, "field1: expected base64"),
    ("srv6_prefix", '{"field1": "!!!!"}', ValueError, "field1: expected base64"),
    ("srv6_prefix", '{"field1": [1]}', ValueError, "field1: expected base64"),
])
def test_what_is_refused(name, text, error, words):
    with pytest.raises(error, match=f"^{words}"):
        pavo_zorv.CLASSES[name].from_json(text)
