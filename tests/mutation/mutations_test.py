#!/usr/bin/env python3
"""Tests of the mutant generator and of the list of equivalent mutants."""

import pathlib
import tempfile
import unittest

import equivalents
import mutations


def changes(line):
    return [mutant.mutated for mutant in mutations.mutants_of("x.cpp", line)]


class Mutations(unittest.TestCase):
    def test_an_operator_becomes_its_neighbour(self):
        self.assertEqual(["if (a <= b) {"], changes("if (a < b) {"))
        self.assertEqual(["x = a || b;"], changes("x = a && b;"))
        self.assertEqual(["a -= b;"], changes("a += b;"))

    def test_an_operator_at_the_end_of_a_line_counts(self):
        self.assertEqual(["return a ||"], changes("return a &&"))

    def test_a_number_grows_and_one_becomes_zero_too(self):
        self.assertEqual(["x = 8;"], changes("x = 7;"))
        self.assertEqual(["x = 0x10;"], changes("x = 0xF;"))
        self.assertEqual(["x = 2u;", "x = 0u;"], changes("x = 1u;"))

    def test_a_negation_falls_away_and_a_truth_turns(self):
        self.assertEqual(["if (found) {"], changes("if (!found) {"))
        self.assertEqual(["x = false;"], changes("x = true;"))

    def test_a_character_and_a_text_become_others(self):
        self.assertEqual(["x = 'b';"], changes("x = 'a';"))
        self.assertEqual(["""x = '?';"""], changes(r"""x = '\0';"""))
        self.assertEqual(['x = "?ey::";'], changes('x = "key::";'))
        self.assertEqual(['x = "?";'], changes('x = "";'))

    def test_what_is_no_behaviour_stays(self):
        for line in ("// a < b", "#include <vector>", 'static_assert(sizeof(int) == 4);',
                     "template <size_t N = 1>", "const char* text(int&& a, tArray<int>& b);"):
            self.assertEqual([], changes(line), line)

    def test_an_assertion_of_the_compiler_over_several_lines_stays(self):
        self.assertEqual([], changes("static_assert(a == 1 &&\n              b == 2,\n"
                                     "              \"why\");"))
        self.assertEqual(1, len(changes("static_assert(a);\nx = 7;")))

    def test_a_comment_behind_code_stays(self):
        self.assertEqual(["x = 8;  // 1 < 2"], changes("x = 7;  // 1 < 2"))

    def test_one_change_is_applied_and_nothing_else(self):
        source = "a = 1;\r\nb = 7;\n"
        (mutant,) = [found for found in mutations.mutants_of("x.cpp", source) if found.line == 2]
        self.assertEqual("a = 1;\r\nb = 8;\n", mutations.apply(mutant, source))


class ListOfEquivalents(unittest.TestCase):
    def read(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "list.txt"
            path.write_text(text)
            return equivalents.read(path)

    def test_an_entry_covers_its_change_and_no_other(self):
        known = self.read("# a comment\nx.cpp\n- x = 7;\n+ x = 8;\n  nobody reads x\n")
        self.assertTrue(known.covers(mutations.Mutant("x.cpp", 3, "  x = 7;", "  x = 8;")))
        self.assertFalse(known.covers(mutations.Mutant("y.cpp", 3, "  x = 7;", "  x = 8;")))
        self.assertFalse(known.covers(mutations.Mutant("x.cpp", 3, "  x = 6;", "  x = 8;")))

    def test_an_entry_that_fits_no_source_is_found(self):
        known = self.read("x.cpp\n- x = 7;\n+ x = 8;\n  nobody reads x\n")
        self.assertEqual(1, len(known.without(mutations.mutants_of("x.cpp", "x = 6;"))))
        self.assertEqual([], known.without(mutations.mutants_of("x.cpp", "x = 7;")))

    def test_an_entry_without_a_change_is_refused(self):
        with self.assertRaises(ValueError):
            self.read("x.cpp\n+ x = 8;\n")


if __name__ == "__main__":
    unittest.main()
