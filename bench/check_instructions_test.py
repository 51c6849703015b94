#!/usr/bin/env python3
"""Tests check_instructions.py on made-up profiles and counts."""

import contextlib
import io
import json
import pathlib
import tempfile
import unittest
from unittest import mock

import check_instructions
from check_instructions import Count, Function

# A read of 40 instructions itself calls the system, which calls the heap; the read calls the heap too.
PROFILE = """\
# callgrind format
positions: line
events: Ir
summary: 300

ob=(1) /build/bin/scenarios
fl=(1) /build/../source/reader.cpp
fn=(1) project::read(unsigned int)
10 30
+1 10
cob=(2) /usr/lib/libc.so.6
cfi=(3) ???
cfn=(3) malloc
calls=1 0
* 50
cfi=(2) /build/../tests/fakewindows/calls.cpp
cfn=(2) DeviceIoControl
calls=1 70
-1 210

fl=(2)
fn=(2)
70 100
fi=(4) /usr/include/c++/12/vector
20 10
fe=(2)
cob=(2)
cfi=(3)
cfn=(3)
calls=2 0
80 100

ob=(2)
fl=(3)
fn=(3)
0 150
"""
READ = Function("/build/../source/reader.cpp", "project::read(unsigned int)")
MALLOC = Function("/usr/lib/libc.so.6", "malloc")
SYSTEM = Function("/build/../tests/fakewindows/calls.cpp", "DeviceIoControl")


def count(instructions, **functions):
    return Count(instructions, functions)


class Profile(unittest.TestCase):
    def test_own_instructions_do_not_contain_those_of_calls(self):
        profile = check_instructions.parse_profile(PROFILE)
        self.assertEqual(profile.own[READ], 40)
        self.assertEqual(profile.own[MALLOC], 150)
        self.assertEqual(sum(profile.own.values()), 300)

    def test_calls_have_the_callee_in_its_file_or_object(self):
        profile = check_instructions.parse_profile(PROFILE)
        self.assertEqual(profile.calls, {(READ, MALLOC): 50, (READ, SYSTEM): 210, (SYSTEM, MALLOC): 100})

    def test_inlined_instructions_count_for_the_function_that_contains_them(self):
        self.assertEqual(check_instructions.parse_profile(PROFILE).own[SYSTEM], 110)

    def test_the_system_does_not_count_nor_does_the_heap_that_it_uses(self):
        profile = check_instructions.parse_profile(PROFILE)
        costs = check_instructions.library_costs(profile, lambda function: "/tests/" in function.file)
        self.assertEqual(costs, {READ: 40, MALLOC: 50, SYSTEM: 0})

    def test_a_function_that_only_the_system_calls_does_not_count(self):
        helper = Function("/usr/include/c++/12/vector", "resize")
        profile = check_instructions.Profile()
        profile.own.update({READ: 5, SYSTEM: 6, helper: 7})
        profile.calls.update({(READ, SYSTEM): 13, (SYSTEM, helper): 7})
        costs = check_instructions.library_costs(profile, lambda function: function == SYSTEM)
        self.assertEqual(costs, {READ: 5, SYSTEM: 0, helper: 0})


class Names(unittest.TestCase):
    def test_short_names_have_no_parameters_templates_and_project_namespaces(self):
        for name, short in {
            "nQUENRA1400::(anonymous namespace)::tReading::readRow(tRow const&) const": "tReading::readRow",
            "std::vector<unsigned char, std::allocator<unsigned char> >::resize(unsigned long)":
                "std::vector::resize",
            "int32_t readKind<3ul>(int, tKind const (&) [3ul])": "readKind",
            "QUENRA_getAttributeU32": "QUENRA_getAttributeU32",
            "unlink_chunk.constprop.0": "unlink_chunk.constprop.0",
        }.items():
            self.assertEqual(check_instructions.short_name(name), short)

    def test_paths_are_those_of_the_repository_wherever_the_compiler_ran(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            (root / "tests").mkdir()
            (root / "tests/a.cpp").touch()
            for file in (f"{folder}/build/bench/../../tests/a.cpp", "/other/build/../tests/a.cpp"):
                self.assertEqual(check_instructions.repository_path(file, root), "tests/a.cpp")
            self.assertEqual(check_instructions.repository_path("/usr/include/b.h", root), "/usr/include/b.h")


class Comparison(unittest.TestCase):
    figures = {"read": {"instructions": 1000, "functions": {"read": 600, "find": 400}}}

    def verdict(self, instructions):
        report, passes = check_instructions.compare(self.figures, {"read": count(instructions, read=600)})
        return report[1].split(maxsplit=4)[4], passes

    def test_three_per_cent_more_passes_and_more_than_that_fails(self):
        self.assertEqual(self.verdict(1000), ("equal", True))
        self.assertEqual(self.verdict(1030), ("within 3 %", True))
        self.assertEqual(self.verdict(1031), ("MORE", False))

    def test_fewer_passes_and_is_to_be_recorded(self):
        self.assertEqual(self.verdict(970), ("within 3 %", True))
        verdict, passes = self.verdict(969)
        self.assertIn("record it", verdict)
        self.assertTrue(passes)

    def test_a_failure_names_the_functions_that_grew_first(self):
        report, _ = check_instructions.compare(
            self.figures, {"read": count(1500, read=600, find=850, added=50)})
        self.assertEqual([line.split() for line in report[-3:]],
                         [["+450", "to", "850", "find"], ["+50", "to", "50", "added"],
                          ["+0", "to", "600", "read"]])

    def test_at_most_ten_functions_are_named(self):
        functions = {f"function{i}": 100 for i in range(30)}
        report, _ = check_instructions.compare(self.figures, {"read": Count(3000, functions)})
        self.assertEqual(sum("function" in line for line in report[4:]), 10)

    def test_a_function_too_small_to_be_recorded_has_not_grown(self):
        functions = {f"function{i}": 100 - i for i in range(20)}
        figures = Count(1810, functions).as_figures()
        self.assertEqual(len(figures["functions"]), check_instructions.RECORDED_FUNCTIONS)
        grown = check_instructions.grown_functions(figures, Count(1910, functions | {"function15": 185}))
        # The last recorded function has 89 instructions; function15 had at most as many.
        self.assertEqual(grown[0], (96, 185, "function15"))
        self.assertEqual(grown[1][0], 0)

    def test_a_scenario_without_a_figure_fails(self):
        _, passes = check_instructions.compare(self.figures, {"read": count(1000), "new": count(5)})
        self.assertFalse(passes)

    def test_a_figure_without_a_scenario_fails(self):
        _, passes = check_instructions.compare(self.figures, {})
        self.assertFalse(passes)


class Program(unittest.TestCase):
    """The program with a made-up executable and made-up counts."""

    def run_with(self, instructions, *options, figures=None):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "figures.json"
            if figures is not None:
                path.write_text(json.dumps(figures))
            outputs = {(): "read\t10\tread a number\n", ("--toolchain",): "GCC 12\n"}
            with mock.patch.object(check_instructions, "output_of",
                                   lambda _, *arguments: outputs[arguments]), \
                    mock.patch.object(check_instructions, "count_scenario",
                                      lambda *_: count(instructions, read=instructions)), \
                    contextlib.redirect_stdout(io.StringIO()) as printed:
                code = check_instructions.main([*options, "scenarios", str(path)])
            return code, printed.getvalue(), json.loads(path.read_text()) if path.exists() else None

    def test_another_toolchain_passes_with_its_counts(self):
        code, printed, _ = self.run_with(99, figures={"GCC 14": {}})
        self.assertEqual(code, 0)
        self.assertIn("99", printed)
        self.assertIn("No figures are committed for GCC 12", printed)

    def test_recorded_figures_are_those_of_the_next_comparison(self):
        code, _, figures = self.run_with(1000, "--record", figures={"GCC 14": {"read": "kept"}})
        self.assertEqual((code, figures["GCC 14"]), (0, {"read": "kept"}))
        self.assertEqual(self.run_with(1000, figures=figures)[0], 0)
        code, printed, _ = self.run_with(1100, figures=figures)
        self.assertEqual(code, 1)
        self.assertIn("MORE", printed)
        self.assertIn("+100 to      1100  read", printed)


if __name__ == "__main__":
    unittest.main()
