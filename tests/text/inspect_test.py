#!/usr/bin/env python3
"""Records in words, as pavo_zorv_text.hpp writes them, against zorv-inspect: the same JSON byte for byte, and lines that
it and protoc read as the text form.

inspect_test.py TEXT_TEST ZORV_INSPECT PROTOC FOLDER_OF_ZORV_PROTO
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

TEXT_TEST, INSPECT, PROTOC, PROTO = sys.argv[1:5]


def inspect(*arguments, given=None):
    done = subprocess.run([INSPECT, *arguments], input=given, capture_output=True, timeout=60, check=False)
    if done.returncode != 0:
        raise AssertionError(f"zorv-inspect {' '.join(arguments)}: {done.stderr.decode()}")
    return done.stdout


def messages_of(stream):
    while stream:
        length = at = 0
        while True:
            length |= (stream[at] & 0x7F) << 7 * at
            at += 1
            if stream[at - 1] < 0x80:
                break
        yield stream[at : at + length]
        stream = stream[at + length :]


class Words(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.work.cleanup)
        subprocess.run([TEXT_TEST, cls.work.name], check=True)
        cls.streams = sorted(pathlib.Path(cls.work.name).glob("*.stream"))
        messages = sorted(line.split()[0].decode() for line in inspect("types").splitlines())
        if not messages or [stream.stem for stream in cls.streams] != messages:
            raise AssertionError(f"{TEXT_TEST} writes {cls.streams}, the messages are {messages}")

    def test_json_is_that_of_the_inspector(self):
        for stream in self.streams:
            text = stream.with_suffix(".json").read_text(encoding="utf-8")
            for message in list(messages_of(stream.read_bytes()))[:5]:
                written = inspect("decode", "--input=raw", stream.stem, "-", given=message).decode()
                self.assertEqual(text[: len(written)], written, stream.stem)
                text = text[len(written) :]

    def test_json_on_one_line_says_the_same(self):
        decoder = json.JSONDecoder(object_pairs_hook=lambda pairs: pairs)
        for stream in self.streams:
            text = stream.with_suffix(".json").read_text(encoding="utf-8")
            lines = stream.with_suffix(".compact").read_text(encoding="utf-8").removesuffix("\n").split("\n")
            self.assertEqual(len(lines), 30)
            for line in lines:
                value, end = decoder.raw_decode(text)
                text = text[end + 1 :]
                self.assertEqual(decoder.decode(line), value)
            self.assertEqual(text, "")

    def test_lines_are_read_back_as_the_same_message(self):
        for stream in self.streams:
            lines = stream.with_suffix(".lines").read_text(encoding="ascii").removesuffix("\n").split("\n")
            messages = list(messages_of(stream.read_bytes()))
            self.assertEqual(len(lines), len(messages))
            for line, message in list(zip(lines, messages))[:5]:
                read = inspect("convert", "--from=text", "--to=raw", stream.stem, "-", given=line.encode())
                self.assertEqual(read, message, line)

    def test_lines_are_read_by_protoc(self):
        for stream in self.streams:
            line = stream.with_suffix(".lines").read_text(encoding="ascii").split("\n")[0]
            command = [PROTOC, f"--proto_path={PROTO}", f"--encode=zorv.{stream.stem}", "zorv.proto"]
            done = subprocess.run(command, input=line.encode(), capture_output=True, timeout=60, check=False)
            self.assertEqual(done.returncode, 0, (line, done.stderr))
            self.assertNotEqual(done.stdout, b"", line)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
