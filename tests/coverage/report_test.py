#!/usr/bin/env python3
"""Tests of the coverage report."""

import unittest

import report


def trace_of(name, segments, branches=()):
    return {"data": [{"files": [{"filename": name, "segments": segments, "branches": branches}]}]}


# if (a) {  // line 10: executed three times
#   b();    // line 11: never executed
#   c();
# }
SEGMENTS = [[10, 1, 3, True, True, False], [10, 9, 0, True, True, False],
            [13, 2, 3, True, False, False], [13, 3, 0, False, False, False]]
BRANCHES = [[10, 5, 10, 6, 0, 3, 0, 0, 4]]
SOURCE = {"zosmbios/a.cpp": [""] * 9 + ["if (a) {", "  b();", "  c();", "}", ""]}


class Report(unittest.TestCase):
    def setUp(self):
        self.files = report.read_trace(
            trace_of("/root/build/coverage/../../zosmbios/a.cpp", SEGMENTS, BRANCHES), "/root")
        self.missed = report.find_missed(self.files, SOURCE)
        self.total = report.Sum()
        self.total.add(self.files["zosmbios/a.cpp"])

    def run_enough(self):
        self.total.lines_run, self.total.branches_run = self.total.lines, self.total.branches

    def test_only_the_library_counts(self):
        self.assertEqual({}, report.read_trace(trace_of("/root/tests/a.cpp", SEGMENTS), "/root"))
        self.assertEqual(["zosmbios/a.cpp"], list(self.files))

    def test_a_line_counts_what_begins_in_it_or_goes_on(self):
        self.assertEqual({10: 3, 11: 0, 12: 0, 13: 0}, self.files["zosmbios/a.cpp"].lines)

    def test_instances_of_a_template_are_one(self):
        self.assertEqual({(1, 2, 3, 4, True): 5, (1, 2, 3, 4, False): 1},
                         report.count_branches([[1, 2, 3, 4, 5, 0, 0, 0, 4], [1, 2, 3, 4, 0, 1, 0, 0, 4]]))

    def test_lines_that_follow_each_other_are_told_by_the_first(self):
        self.assertEqual([("zosmbios/a.cpp", 11, 13, "b();")], self.missed)

    def test_a_line_without_one_outcome_is_told(self):
        self.assertEqual([10], self.files["zosmbios/a.cpp"].missed_branches())

    def test_too_little_fails(self):
        faults = report.faults_of(self.total, self.missed, {})
        self.assertIn("fewer than 98 % of the lines are run", faults)
        self.assertIn("fewer than 92 % of the branches are run", faults)

    def test_nothing_at_all_fails(self):
        self.assertEqual(["nothing of the library was run"], report.faults_of(report.Sum(), [], {}))

    def test_lines_that_are_not_run_have_to_be_listed(self):
        self.run_enough()
        self.assertEqual(1, len(report.faults_of(self.total, self.missed, {})))
        listed = report.read_unreached("# why\nzosmbios/a.cpp\n- b();\n  never called\n")
        self.assertEqual([], report.faults_of(self.total, self.missed, listed))

    def test_an_entry_for_what_runs_fails(self):
        self.run_enough()
        listed = report.read_unreached("zosmbios/a.cpp\n- b();\n  one\n- if (a) {\n  two\n")
        (fault,) = report.faults_of(self.total, self.missed, listed)
        self.assertIn("if (a) {", fault)

    def test_an_entry_without_a_place_is_refused(self):
        with self.assertRaises(ValueError):
            report.read_unreached("zosmbios/a.cpp\n  a reason\n")


if __name__ == "__main__":
    unittest.main()
