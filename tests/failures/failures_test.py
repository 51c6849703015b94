#!/usr/bin/env python3
"""Tests of the list of failed tests."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import failures

PASSED = '<testcase name="A.Passes" status="run"><system-out>fine</system-out></testcase>'


def failed(name, output):
    return (f'<testcase name="{name}" status="fail"><failure message=""/>'
            f"<system-out>{output}</system-out></testcase>")


def not_run(why):
    return f'<testcase name="C" status="notrun"><skipped message="{why}"/></testcase>'


def report_of(*tests):
    return f'<?xml version="1.0"?><testsuite>{"".join(tests)}</testsuite>'


class Failures(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.report = pathlib.Path(folder.name) / "native.xml"

    def run_on(self, text):
        self.report.write_text(text, encoding="utf-8")
        return self.run_main([str(self.report)])

    def run_main(self, reports):
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            code = failures.main(reports)
        return code, output.getvalue().splitlines()

    def test_a_run_without_failures_is_told_in_a_line(self):
        self.assertEqual((0, ["native: every test passed"]), self.run_on(report_of(PASSED)))

    def test_a_failed_test_is_told_with_its_output(self):
        code, lines = self.run_on(report_of(PASSED, failed("B.Fails", "first\nlast")))
        self.assertEqual(1, code)
        self.assertEqual(["native: 1 failed", "  B.Fails", "    first", "    last"], lines)

    def test_a_test_that_asked_to_be_skipped_has_not_failed(self):
        code, _ = self.run_on(report_of(not_run("SKIP_REGULAR_EXPRESSION_MATCHED")))
        self.assertEqual(0, code)

    def test_a_test_whose_program_is_missing_has_failed(self):
        code, lines = self.run_on(report_of(not_run("Unable to find executable")))
        self.assertEqual((1, ["native: 1 failed", "  C"]), (code, lines))

    def test_of_a_long_output_the_end_is_told(self):
        _, lines = self.run_on(report_of(failed("B", "\n".join(str(n) for n in range(1000)))))
        self.assertEqual(2 + failures.LINES_OF_A_TEST, len(lines))
        self.assertEqual("    999", lines[-1])

    def test_of_many_failures_the_later_are_told_by_name(self):
        _, lines = self.run_on(report_of(*(failed(f"T{n}", "why") for n in range(12))))
        self.assertEqual(["    why", "  T10", "  T11"], lines[-3:])

    def test_a_run_that_left_no_report_fails(self):
        code, (line,) = self.run_main([str(self.report)])
        self.assertEqual(1, code)
        self.assertTrue(line.startswith("native: no report: "))

    def test_a_report_that_is_cut_off_fails(self):
        code, (line,) = self.run_on(report_of(PASSED)[:-5])
        self.assertEqual(1, code)
        self.assertTrue(line.startswith("native: no report: "))

    def test_no_reports_at_all_fail(self):
        self.assertEqual(1, failures.main([]))


if __name__ == "__main__":
    unittest.main()
