#!/usr/bin/env python3
"""Tests of the mutant generator and of the list of equivalent mutants."""

import unittest

import equivalents
import mutations


def changes(line):
    return [mutant.mutated for mutant in mutations.mutants_of("x.cpp", line)]


class Mutations(unittest.TestCase):
    def test_operator_changes_to_its_neighbour(self):
        self.assertEqual(["if (a <= b) {"], changes("if (a < b) {"))
        self.assertEqual(["x = a || b;"], changes("x = a && b;"))
        self.assertEqual(["a -= b;"], changes("a += b;"))

    def test_operator_at_the_end_of_a_line_changes(self):
        self.assertEqual(["return a ||"], changes("return a &&"))

    def test_number_increases_and_one_also_becomes_zero(self):
        self.assertEqual(["x = 8;"], changes("x = 7;"))
        self.assertEqual(["x = 0x10;"], changes("x = 0xF;"))
        self.assertEqual(["x = 2u;", "x = 0u;"], changes("x = 1u;"))

    def test_negation_is_removed_and_truth_inverted(self):
        self.assertEqual(["if (found) {"], changes("if (!found) {"))
        self.assertEqual(["x = false;"], changes("x = true;"))

    def test_characters_and_texts_change(self):
        self.assertEqual(["x = 'b';"], changes("x = 'a';"))
        self.assertEqual(["""x = '?';"""], changes(r"""x = '\0';"""))
        self.assertEqual(['x = "?ey::";'], changes('x = "key::";'))
        self.assertEqual(['x = "?";'], changes('x = "";'))

    def test_lines_without_behaviour_do_not_change(self):
        for line in ("// a < b", "#include <vector>", 'static_assert(sizeof(int) == 4);',
                     "template <size_t N = 1>", "const char* text(int&& a, tArray<int>& b);"):
            self.assertEqual([], changes(line), line)

    def test_static_assertion_over_several_lines_does_not_change(self):
        self.assertEqual([], changes("static_assert(a == 1 &&\n              b == 2,\n"
                                     "              \"why\");"))
        self.assertEqual(1, len(changes("static_assert(a);\nx = 7;")))

    def test_comment_after_code_does_not_change(self):
        self.assertEqual(["x = 8;  // 1 < 2"], changes("x = 7;  // 1 < 2"))

    def test_apply_changes_one_token_only(self):
        source = "a = 1;\r\nb = 7;\n"
        (mutant,) = [found for found in mutations.mutants_of("x.cpp", source) if found.line == 2]
        self.assertEqual("a = 1;\r\nb = 8;\n", mutations.apply(mutant, source))


FUNCTION = """namespace a {
constexpr int kLimit = 7;
class tBox {
 public:
  // Comment with a call() in it.
  bool isFull(int extra) const noexcept {
    return count_ + extra >= kLimit && extra + 1 >= 0;
  }

 private:
  int count_ = 7;
};

tBox makeBox(
    int number) {
  call(number + 2);
}
}
"""


class Scopes(unittest.TestCase):
    def scopes(self, source):
        return {(mutant.scope, mutant.before): mutant
                for mutant in mutations.mutants_of("x.cpp", source)}

    def test_mutant_names_its_function_or_variable(self):
        self.assertEqual({("kLimit", "7"), ("tBox::isFull", "+"), ("tBox::isFull", ">="),
                          ("tBox::isFull", "&&"), ("tBox::isFull", "1"), ("tBox::isFull", "0"),
                          ("tBox::count_", "7"), ("makeBox", "+"), ("makeBox", "2")},
                         set(self.scopes(FUNCTION)))

    def test_second_mutant_of_a_kind_has_the_second_occurrence(self):
        found = [mutant.occurrence for mutant in mutations.mutants_of("x.cpp", FUNCTION)
                 if (mutant.scope, mutant.before) == ("tBox::isFull", ">=")]
        self.assertEqual([1, 2], found)


class ListOfEquivalents(unittest.TestCase):
    LIST = "# comment\nx.cpp\n  tBox::isFull: >= -> > #2: extra is positive\n"

    def mutants(self, path="x.cpp"):
        return mutations.mutants_of(path, FUNCTION)

    def test_entry_covers_its_change_only(self):
        known = equivalents.parse(self.LIST)
        covered = [mutant for mutant in self.mutants() if known.covers(mutant)]
        self.assertEqual([("tBox::isFull", ">=", ">", 2)],
                         [(mutant.scope, mutant.before, mutant.after, mutant.occurrence)
                          for mutant in covered])
        self.assertFalse([mutant for mutant in self.mutants("y.cpp") if known.covers(mutant)])

    def test_renamed_variable_keeps_the_entry(self):
        known = equivalents.parse(self.LIST)
        renamed = mutations.mutants_of("x.cpp", FUNCTION.replace("extra", "more"))
        self.assertEqual([], known.without(renamed))

    def test_entry_without_a_mutant_is_found(self):
        known = equivalents.parse(self.LIST.replace("isFull", "isEmpty"))
        self.assertEqual(known.entries, known.without(self.mutants()))

    def test_negation_is_removed_by_an_empty_replacement(self):
        (entry,) = equivalents.parse("x.cpp\n  f: ! -> : both are true\n").entries
        self.assertEqual(("!", ""), (entry.before, entry.after))

    def test_entry_without_a_reason_is_an_error(self):
        with self.assertRaises(ValueError):
            equivalents.parse("x.cpp\n  f: > -> >=\n")


if __name__ == "__main__":
    unittest.main()
