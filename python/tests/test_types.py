"""The types that type checkers see: written from the header, accepted by mypy, and of use to find mistakes."""

import pathlib
import re
import subprocess
import sys

import pavo_zorv

SOURCE = pathlib.Path(__file__).resolve().parents[2]
PACKAGE = pathlib.Path(pavo_zorv.__file__).parent


def mypy(folder, *paths):
    return subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--no-error-summary", "--cache-dir", str(folder / "cache"),
         "--exclude", "setup", *map(str, paths)],
        capture_output=True, text=True, check=False, env={"PATH": "/usr/bin:/bin", "MYPYPATH": str(PACKAGE.parent)})


def test_they_are_what_is_written_from_the_header():
    script = SOURCE / "python" / "write_stubs"
    done = subprocess.run([sys.executable, script, "--check"], capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stderr
    assert (done.stdout, done.stderr) == ("", "")


def test_they_name_every_class_and_field():
    stubs = (PACKAGE / "__init__.pyi").read_text()
    for name, cls in pavo_zorv.CLASSES.items():
        body = re.search(rf"^class {name}\(Message\):\n((?:    .*\n)+)", stubs, re.MULTILINE)[1]
        assert re.findall(r"^    (\w+): ", body, re.MULTILINE) == list(cls.fields)
    assert (PACKAGE / "py.typed").exists()
    assert set(pavo_zorv.__all__) <= set(re.findall(r"^(?:class |)(\w+)\b", stubs, re.MULTILINE)) | {
        "Splitter", "StreamError", "framed"}


def test_mypy_accepts_the_examples(tmp_path):
    done = mypy(tmp_path, *sorted((SOURCE / "examples" / "python").glob("*.py")))
    assert (done.stdout, done.stderr) == ("", "")
    assert done.returncode == 0


def test_mypy_finds_mistakes(tmp_path):
    program = tmp_path / "mistakes.py"
    program.write_text(
        "import pavo_zorv\n"
        "message = pavo_zorv.api_msg(field1=1, to_zorv={'intf': {'field2': 'eth0'}})\n"
        "message.to_zorv.intf.field2 = 5\n"
        "message.no_such_field\n"
        "message.to_zorv.nodeid.octets.append('1')\n"
        "pavo_zorv.api_lbl_stack(labels=1)\n"
        "pavo_zorv.api_addr.from_bytes('text')\n"
        "hop: pavo_zorv.api_exp_path = pavo_zorv.api_exp_hop.from_bytes(b'')\n"
        "pavo_zorv.Splitter(5)\n"
        "message.oam_req.prefix_sid.field2 = [1]\n")
    lines = [int(line.split(":")[1]) for line in mypy(tmp_path, program).stdout.splitlines() if ": error:" in line]
    assert lines == [3, 4, 5, 6, 7, 8, 9]
