#!/usr/bin/env python3
"""The names of mutants in equivalent.txt, which outlive what does not change the code, and nothing else; and which
mutants can be compiled together, and which are wrong where many are."""
import importlib.machinery
import importlib.util
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
loader = importlib.machinery.SourceFileLoader("mutate", str(pathlib.Path(__file__).with_name("mutate")))
mutate = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", loader))
loader.exec_module(mutate)

CODE = """
namespace pavo_zorv {

template <class Value>
struct reader {
  std::size_t left = 0;

  bool fits(std::size_t size) const { return size <= left; }

  Value read(const byte *at, const byte *end) {
    if (end - at < 8) return {};
    left -= 8;
    while (at != end && *at >= 0x80) ++at;
    if (end - at < 8) return {};
    return std::min(*at, Value{1});
  }
};

inline constexpr std::size_t longest = 64;

}  // namespace pavo_zorv
"""


def names(code):
    return [one.entry for one in mutate.mutants_of_file("src/core/file.hpp", code.split("\n"))]


class Names(unittest.TestCase):
    def test_say_function_and_change(self):
        found = names(CODE)
        for name in ["reader: _ _ = [-0-]{+1+};",
                     "fits: return _ [-<=-]{+<+} _;",
                     "read: if (_ - _ [-<-]{+<=+} 8) return {}; (1 of 2)",
                     "read: if (_ - _ [-<-]{+<=+} 8) return {}; (2 of 2)",
                     "read: if ({+true ||+} _ - _ < 8) return {}; (2 of 2)",
                     "read: [-_ -= 8;-]",
                     "read: while (_ != _ [-&&-]{+||+} *_ >= 0x80) ++_;",
                     "read: return _(*_, _{[-1-]{+2+}});",
                     "longest: _ constexpr _ _ = [-64-]{+65+};"]:
            self.assertIn(name, found)
        self.assertEqual(len(found), len(set(found)))

    def test_outlive_other_names(self):
        other = CODE.replace("left", "bytes_left").replace("byte *at", "unsigned_byte *at").replace("std::min", "least")
        self.assertEqual(names(other), names(CODE))

    def test_outlive_other_line_breaks(self):
        other = CODE.replace("while (at != end && *at", "while (at != end &&\n           *at").replace(
            "std::min(*at, Value{1})", "std::min(\n        *at,\n        Value{1})")
        self.assertEqual(set(names(other)), set(names(CODE)))

    def test_outlive_other_code_before_and_in_the_function(self):
        other = CODE.replace("  bool fits", "  bool is_empty() const { return left == 0; }\n\n  bool fits").replace(
            "    left -= 8;\n", "    left -= 8;\n    check(at);\n")
        self.assertLess(set(names(CODE)), set(names(other)))

    def test_do_not_outlive_another_statement(self):
        for change in [("size <= left", "size <= left + 1"), ("*at >= 0x80", "*at >= 0x81"), ("Value{1}", "Value{2}")]:
            before, after = set(names(CODE)), set(names(CODE.replace(*change)))
            self.assertLess(after & before, before, change)

    def test_do_not_outlive_one_more_of_the_same_statement(self):
        other = CODE.replace("    left -= 8;\n", "    if (end - at < 8) return {};\n    left -= 8;\n")
        self.assertNotIn("read: if (_ - _ [-<-]{+<=+} 8) return {}; (1 of 2)", names(other))


class EquivalentsFile(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name) / "equivalent.txt"

    def tidied(self, text, code, path="src/core/file.hpp"):
        self.path.write_text(text)
        equivalents = mutate.Equivalents(self.path)
        stale = equivalents.stale(mutate.mutants_of_file(path, code.split("\n")))
        return len(stale), equivalents.without(stale)

    TEXT = ("# Comment.\n"
            "\nsrc/core/file.hpp: Reason,\n    in two lines.\n"
            "  fits: return _ [-<=-]{+<+} _;\n  read: [-_ -= 8;-]\n")

    def test_stays_as_it_is(self):
        self.assertEqual(self.tidied(self.TEXT, CODE), (0, self.TEXT))

    def test_loses_what_is_no_mutant(self):
        stale, text = self.tidied(self.TEXT, CODE.replace("    left -= 8;\n", ""))
        self.assertEqual((stale, text), (1, self.TEXT.replace("  read: [-_ -= 8;-]\n", "")))

    def test_follows_a_function_to_another_name(self):
        stale, text = self.tidied(self.TEXT, CODE.replace("bool fits(", "bool has_room("))
        self.assertEqual((stale, text), (1, self.TEXT.replace("fits:", "has_room:")))

    def test_follows_functions_to_another_file(self):
        stale, text = self.tidied(self.TEXT, CODE, "src/core/other.hpp")
        self.assertEqual((stale, text), (2, self.TEXT.replace("file.hpp", "other.hpp")))

    def test_does_not_follow_to_one_of_several(self):
        code = CODE.replace("bool fits(", "bool one(").replace(
            "  Value read", "  bool two(std::size_t size) const { return size <= left; }\n\n  Value read")
        stale, text = self.tidied(self.TEXT, code)
        self.assertEqual((stale, text), (1, self.TEXT.replace("  fits: return _ [-<=-]{+<+} _;\n", "")))


class Choices(unittest.TestCase):
    """What can be chosen from when the program runs."""

    def choices(self, text):
        return [text[begin:end] for begin, end, _, _ in mutate.switchable(text)]

    def is_evaluated(self, text):
        lines = text.split("\n")
        return mutate.belongs_to(lines, len(lines) - 1, mutate.EVALUATED)

    def test_are_values_of_variables(self):
        self.assertEqual(self.choices("    const unsigned bits = 8;"), ["8"])

    def test_are_no_constants(self):
        self.assertEqual(self.choices("    static constexpr unsigned bits = 8;"), [])

    def test_are_for_the_compiler_as_well_in_functions_that_it_may_evaluate(self):
        self.assertTrue(self.is_evaluated("constexpr bool fits(int a) {\n  return a < 8;"))
        self.assertTrue(self.is_evaluated("constexpr bool operator==(box a, box b) {\n  return a.size < b.size;"))
        self.assertTrue(self.is_evaluated("  static constexpr auto table = [] {\n    return make(8);"))

    def test_are_not_for_the_compiler_in_others(self):
        self.assertFalse(self.is_evaluated("bool fits(int a) {\n  constexpr int most = longest(8);\n  return a < most;"))
        self.assertFalse(self.is_evaluated("bool fits(int a) {\n  if constexpr (narrow) return true;\n  return a < 8;"))


class WrongOwners(unittest.TestCase):
    OWNERS = {9: 1, 10: 2, 19: 3}  # by index, so lines 10, 11 and 20
    IN_PLACE = "source/core/file.hpp:10:3: error: expected statement\n"
    ELSEWHERE = ("source/core/other.hpp:20:3: error: undefined template 'numbers_of<17>'\n"
                 "source/core/file.hpp:11:5: note: in instantiation of template class requested here\n"
                 "source/core/file.hpp:30:5: note: in instantiation of function template requested here\n")

    def test_are_those_at_errors(self):
        self.assertEqual(mutate.wrong_owners(self.IN_PLACE + self.ELSEWHERE, "src/core/file.hpp", self.OWNERS), {1})

    def test_are_those_that_instantiate_a_template_of_another_file(self):
        self.assertEqual(mutate.wrong_owners(self.ELSEWHERE, "src/core/file.hpp", self.OWNERS), {2})

    def test_are_none_where_nothing_was_changed(self):
        self.assertEqual(mutate.wrong_owners(self.ELSEWHERE, "src/core/third.hpp", self.OWNERS), set())


if __name__ == "__main__":
    unittest.main()
