#!/usr/bin/env python3
"""Tests check_robustness.py on pages of its own."""
import unittest

import check_robustness

HEAD = "## Bad arguments\n\n| Function | What is bad | What it does | Test |\n|---|---|---|---|\n"


class Check(unittest.TestCase):
    def problems(self, text, exports=()):
        return check_robustness.check(text, {"Suite.Known"}, exports)

    def test_row_with_a_test_that_exists_is_good(self):
        self.assertEqual(self.problems(HEAD + "| `f` | null | refused | `Suite.Known` |\n"), [])

    def test_row_with_a_test_that_is_missing_is_told(self):
        self.assertEqual(self.problems(HEAD + "| `f` | null | refused | `Suite.Gone` |\n"),
                         ["line 5: there is no test Suite.Gone"])

    def test_row_without_a_test_is_told(self):
        self.assertEqual(self.problems(HEAD + "| `f` | null | refused | |\n"),
                         ["line 5: no test is named"])

    def test_export_without_a_row_is_told(self):
        self.assertEqual(self.problems(HEAD + "| `f` | null | refused | `Suite.Known` |\n", ["g"]),
                         ["no row for g"])

    def test_bounds_name_no_tests(self):
        self.assertEqual(self.problems("## Bounds\n\n| What | Bound |\n|---|---|\n| a | 4 |\n"), [])

    def test_names_of_all_kinds_of_tests_are_found(self):
        found = check_robustness.TEST.findall(
            "TEST(A, b) {}\nTEST_F(C,\n       d) {}\nTEST_P(E, f) {}\n// TEST(G, h)\n")
        self.assertEqual(found, [("A", "b"), ("C", "d"), ("E", "f")])


if __name__ == "__main__":
    unittest.main()
