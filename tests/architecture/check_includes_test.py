#!/usr/bin/env python3
"""Tests check_includes.py: it reports each kind of violation."""

import pathlib
import tempfile
import unittest

import check_includes

LAYERS = {"upper": ["lower"], "lower": [], "include": []}


class CheckIncludes(unittest.TestCase):
    def violations(self, files):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            found = check_includes.source_files(root)
            return list(check_includes.violations(root, LAYERS, list(found)))

    def test_an_include_downwards_is_allowed(self):
        self.assertEqual(self.violations({"upper/a.cpp": '#include "lower/b.h"\n', "lower/b.h": ""}), [])

    def test_an_include_upwards_is_a_violation(self):
        found = self.violations({"lower/b.h": '  #  include "upper/a.h"\n', "upper/a.h": ""})
        self.assertEqual(found, ["lower/b.h: lower may not include upper/a.h"])

    def test_a_public_header_is_found_in_its_folder(self):
        found = self.violations({"lower/b.h": '#include "face.h"\n', "include/face.h": ""})
        self.assertEqual(found, ["lower/b.h: lower may not include include/face.h"])

    def test_windows_is_called_by_the_platform_layer_only(self):
        found = self.violations({"upper/a.cpp": "#include <windows.h>\n"})
        self.assertEqual(found, ["upper/a.cpp: may not include <windows.h>, a header of Windows"])

    def test_a_folder_without_a_layer_is_a_violation(self):
        self.assertEqual(self.violations({"attic/a.cpp": ""}), ["attic/a.cpp: no layer in layers.txt"])


if __name__ == "__main__":
    unittest.main()
