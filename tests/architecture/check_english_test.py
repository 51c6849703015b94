#!/usr/bin/env python3
"""Each rule of the check of English refuses a bad example and accepts a good one."""

import pathlib
import unittest

import check_english


class CheckEnglish(unittest.TestCase):
    def findings(self, name, text):
        return [reason for _, reason in check_english.findings_in(pathlib.Path(name), text)]

    def test_comment_that_begins_with_a_question_word(self):
        self.assertEqual(self.findings("a.cpp", "// What the driver left out.\n"), ["begins with 'What'"])
        self.assertEqual(self.findings("a.h", "int a;  // Whether it is open.\n"), ["begins with 'Whether'"])
        self.assertEqual(self.findings("a.c", "/* Who owns it. */\n"), ["begins with 'Who'"])
        self.assertEqual(self.findings("a.py", "# Whoever comes second waits.\n"),  # english: allow
                         ["begins with 'Whoever'", "'Whoever' has a trade term"])
        self.assertEqual(self.findings("a.cpp", "// The bytes that the driver left out.\n"), [])

    def test_question_is_no_clause(self):
        self.assertEqual(self.findings("a.md", "# What is new?\n"), [])

    def test_sentence_that_continues_on_the_next_line(self):
        self.assertEqual(self.findings("a.cpp", "// The caller decides\n// Whether to wait.\n"), [])
        self.assertEqual(self.findings("a.cpp", "// The caller waits.\n// Whether it is open.\n"),
                         ["begins with 'Whether'"])

    def test_block_comment_of_several_lines(self):
        self.assertEqual(self.findings("a.h", "/* The size.\n * What is left is zero. */\n"),
                         ["begins with 'What'"])

    def test_homely_word(self):
        for word in ("told", "whoever", "nobody", "anew", "one that is none"):
            self.assertEqual(self.findings("a.cpp", f"// The caller is {word} here.\n"),
                             [f"'{word}' has a trade term"])
        self.assertEqual(self.findings("a.cpp", "// The driver reports the caller.\n"), [])

    def test_heading(self):
        self.assertEqual(self.findings("a.md", "## What nothing breaks\n"), ["begins with 'What'"])
        self.assertEqual(self.findings("a.md", "## Robustness\n\nWhat it is.\n"), [])

    def test_test_name(self):
        self.assertEqual(self.findings("a.cpp", "TEST_F(Suite, WhatIsLeft_IsZero) {\n"),
                         ["'What' in a test name"])
        self.assertEqual(self.findings("a.cpp", "TEST(Suite, Failure_IsToldAtItsLine) {\n"),
                         ["'Told' in a test name"])
        self.assertEqual(self.findings("a.cpp", "TEST_P(Suite, Failure_IsReported) {\n"), [])

    def test_python_test_name(self):
        self.assertEqual(self.findings("a.py", "    def test_what_is_left(self):\n"),
                         ["'what' in a test name"])
        self.assertEqual(self.findings("a.py", "    def test_wrong_usage_is_told(self):\n"),
                         ["'told' in a test name"])
        self.assertEqual(self.findings("a.py", "    def test_wrong_usage_is_reported(self):\n"), [])

    def test_code_and_strings_are_no_comments(self):
        self.assertEqual(self.findings("a.cpp", 'print("// What is told");\n'), [])

    def test_silenced_line(self):
        self.assertEqual(self.findings("a.cpp", "// The user Nobody of the system.  english: allow\n"), [])


if __name__ == "__main__":
    unittest.main()
