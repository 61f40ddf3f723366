#!/usr/bin/env python3
"""What gdb shows of records with the pretty printers.

gdb_test.py GDB PRINTERS PROGRAM SOURCE_FOLDER
"""

import pathlib
import re
import subprocess
import sys
import unittest

GDB, PRINTERS, PROGRAM, SOURCE = sys.argv[1:5]


def printed(*expressions, before=()):
    """What gdb prints for each expression, in the program when it has filled its records."""
    commands = [f"source {PRINTERS}", "set width 0", "set confirm off", *before, "break stop_here", "run"]
    commands += [word for each in expressions for word in ("echo ==", f"print {each}")]
    done = subprocess.run([GDB, "-batch", "-nx", *(word for each in commands for word in ("-ex", each)), PROGRAM],
                          capture_output=True, text=True, timeout=60, check=True)
    shown = [re.sub(r"^\$\d+ = ", "", each).rstrip("\n") for each in done.stdout.split("==")[1:]]
    if len(shown) != len(expressions):
        raise AssertionError(done.stdout + done.stderr)
    return shown


def listed_messages():
    """The messages of include/pavo_zorv_messages.h, in its order."""
    header = (pathlib.Path(SOURCE) / "include" / "pavo_zorv_messages.h").read_text(encoding="utf-8")
    return re.findall(r"^  (?:plain|with_options)\((\w+)\)", header, re.M)


class Printers(unittest.TestCase):
    maxDiff = None

    def test_show_present_members_alone(self):
        filled, empty = printed("filled", "empty")
        policy = "api_msg_p2p_auto_policy = {label_stack = api_lbl_stack = {labels = {16, 24001}}}"
        self.assertEqual(filled, "api_msg = {field1 = 1, p2p_auto_policy_request = api_msg_p2p_auto_policy_request = "
                                 f"{{policy = {policy}}}, field15 = 0}}")
        self.assertEqual(empty, "api_msg")

    def test_show_lists_strings_and_bytes(self):
        policies, prefix = printed("list", "prefix")
        self.assertEqual(policies, r'api_aa_list = {policies = {api_policy = {field1 = "a\377\"b", field9 = -1}, '
                                   r"api_policy = {prefixes = {api_prefix}}}}")
        self.assertEqual(prefix, "srv6_prefix = {field1 = {32, 1, 13, 184}, field2 = 64}")

    def test_mark_what_is_encoded_without_its_bit(self):
        self.assertEqual(printed("unmarked"), ["api_msg = {to_zorv (bit not set) = api_to_zorv = "
                                               "{intf (bit not set) = api_intf = {field1 = 7}}}"],
                         "the records that tests/gdb/program.c fills")

    def test_survive_pointers_to_nowhere(self):
        broken, counted, nameless = printed("broken", "counted", "nameless")
        self.assertEqual(broken, "api_lbl_stack = {labels = 3 elements, Cannot access memory at address 0x10}")
        self.assertEqual(counted, "api_lbl_stack = {labels = null, but a count of 3}")
        self.assertEqual(nameless, "api_intf = {field2 = Cannot access memory at address 0x10}")

    def test_keep_to_the_limit_of_elements(self):
        before = ["set print elements 3", "set print repeats 0"]
        stack, prefix = printed("long_stack", "prefix", before=before)
        self.assertEqual(stack, "api_lbl_stack = {labels = {0, 0, 0...}}")
        self.assertEqual(prefix, "srv6_prefix = {field1 = {32, 1, 13...}, field2 = 64}")

    def test_leave_the_stored_form_to_be_asked_for(self):
        stored = r"^\{field1 = 0x.*, field1_length = 4, field2 = 64, presence = 3 .*\}$"
        self.assertRegex(printed("/r prefix")[0], stored)

    def test_know_every_message(self):
        known = re.search(r'RECORDS = """(.*?)"""', pathlib.Path(PRINTERS).read_text(encoding="utf-8"), re.S)[1].split()
        self.assertTrue(known)
        self.assertEqual(known, listed_messages(), f"RECORDS in {PRINTERS} are not the messages of pavo_zorv_messages.h")

    def test_show_the_fields_of_every_message(self):
        header = (pathlib.Path(SOURCE) / "include" / "pavo_zorv_fields.h").read_text(encoding="utf-8")
        expected = {}
        zero = {"flag": "0", "integer": "0", "string": "null", "bytes": "nothing", "integer_list": "nothing",
                "message_list": "nothing"}
        for kind, record, member, rest in re.findall(r"^  (\w+)\((\w+), \d+, (\w+)(?:, (\w+))?.*?\)", header, re.M):
            expected.setdefault(record, []).append(f"{member} = {rest if kind == 'nested' else zero[kind]}")
        self.assertEqual(list(expected), listed_messages())
        shown = printed(*(f"all_{record}" for record in expected), before=["set print elements 0"])
        for (record, fields), each in zip(expected.items(), shown):
            self.assertEqual(each, f"{record} = {{{', '.join(fields)}}}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
