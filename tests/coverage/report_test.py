#!/usr/bin/env python3
"""Holds the coverage report to what it promises."""

import unittest

import report

TRACE = """SF:/root/zosmbios/a.cpp
DA:1,5
DA:2,0
BRDA:1,0,0,3
BRDA:1,0,1,-
end_of_record
SF:/root/tests/b.cpp
DA:1,0
end_of_record
SF:/root/zosmbios/a.cpp
DA:1,0
DA:3,1
BRDA:1,0,1,0
end_of_record
"""


class Report(unittest.TestCase):
    def setUp(self):
        self.files = report.read_trace(TRACE, "/root")
        self.sources = {"zosmbios/a.cpp": ["first();", "second();", "third();"]}
        self.missed = report.find_missed(self.files, self.sources)
        self.total = report.Sum()
        self.total.add(self.files["zosmbios/a.cpp"])

    def test_only_the_library_counts_and_its_records_are_added(self):
        self.assertEqual(["zosmbios/a.cpp"], list(self.files))
        self.assertEqual({1: 5, 2: 0, 3: 1}, self.files["zosmbios/a.cpp"].lines)
        self.assertEqual({(1, 0, 0): 3, (1, 0, 1): 0}, self.files["zosmbios/a.cpp"].branches)

    def test_what_did_not_run_is_told_with_its_text(self):
        self.assertEqual([("zosmbios/a.cpp", 1, "first();", ["branch"]),
                          ("zosmbios/a.cpp", 2, "second();", ["line"])], self.missed)

    def test_too_little_fails(self):
        faults = report.faults_of(self.total, self.missed, {})
        self.assertIn("fewer than 98 % of the lines are run", faults)
        self.assertIn("fewer than 92 % of the branches are run", faults)

    def test_nothing_at_all_fails(self):
        self.assertEqual(["nothing of the library was run"], report.faults_of(report.Sum(), [], {}))

    def test_what_did_not_run_has_to_be_listed(self):
        self.total.lines_run, self.total.branches_run = self.total.lines, self.total.branches
        self.assertEqual(2, len(report.faults_of(self.total, self.missed, {})))
        listed = report.read_unreached("# why\nzosmbios/a.cpp\n- first();\n  one\n- second();\n  two\n")
        self.assertEqual([], report.faults_of(self.total, self.missed, listed))

    def test_an_entry_for_what_runs_fails(self):
        self.total.lines_run, self.total.branches_run = self.total.lines, self.total.branches
        listed = report.read_unreached("zosmbios/a.cpp\n- first();\n  one\n- second();\n  two\n"
                                       "- third();\n  three\n")
        (fault,) = report.faults_of(self.total, self.missed, listed)
        self.assertIn("third();", fault)

    def test_an_entry_without_a_place_is_refused(self):
        with self.assertRaises(ValueError):
            report.read_unreached("zosmbios/a.cpp\n  a reason\n")


if __name__ == "__main__":
    unittest.main()
