#!/usr/bin/env python3
"""Tests of the report on condition coverage."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

import conditions
from conditions import Outcome

ROOT = pathlib.Path("/root")
CORES = {"core": ("folder/*.cpp",), "other": ("other/*.cpp",)}
FILE = "folder/a.cpp"


def function(name, line, column=1):
    return {"name": name, "start_line": line, "start_column": column}


def expression(terms, never_true=(), never_false=()):
    return {"count": 2 * terms, "not_covered_true": list(never_true),
            "not_covered_false": list(never_false)}


def line(number, function_name, *expressions):
    return {"line_number": number, "function_name": function_name, "conditions": list(expressions)}


def document(functions, *lines, path=f"/root/{FILE}"):
    return {"current_working_directory": "/root/build",
            "files": [{"file": path, "functions": functions, "lines": list(lines)}]}


def missing(*documents):
    covered, _ = conditions.merge([*documents], ROOT, CORES)
    return [str(outcome) for outcome in sorted(covered) if not covered[outcome]]


class Merging(unittest.TestCase):
    def test_outcome_that_no_instance_shows_is_missing(self):
        self.assertEqual([f"{FILE}:7: condition 2 never true"],
                         missing(document([function("f", 5)], line(7, "f", expression(2, [1])))))

    def test_instances_of_a_template_are_one_place(self):
        functions = [function("f<int>", 5), function("f<char>", 5)]
        self.assertEqual([f"{FILE}:7: condition 1 never true"],
                         missing(document(functions, line(7, "f<int>", expression(2, [0], [1])),
                                                  line(7, "f<char>", expression(2, [0, 1], [])))))

    def test_copies_in_two_object_files_are_one_place(self):
        self.assertEqual([], missing(
            document([function("f", 5)], line(7, "f", expression(1, [0]))),
            document([function("f", 5)], line(7, "f", expression(1, [], [0])))))

    def test_functions_that_begin_in_different_columns_are_different_places(self):
        functions = [function("first", 7, 3), function("second", 7, 30)]
        self.assertEqual([f"{FILE}:7: condition 1 never true", f"{FILE}:7: condition 2 never false"],
                         missing(document(functions, line(7, "first", expression(1, [0])),
                                                  line(7, "second", expression(1, [], [0])))))

    def test_instances_of_different_size_count_separately(self):
        functions = [function("f<int>", 5), function("f<char>", 5)]
        self.assertEqual([f"{FILE}:7: condition 1 never true", f"{FILE}:7: condition 3 never false"],
                         missing(document(functions, line(7, "f<int>", expression(1, [0])),
                                                  line(7, "f<char>", expression(2, [], [1])))))

    def test_conditions_of_a_line_are_numbered_through_its_expressions(self):
        self.assertEqual([f"{FILE}:7: condition 3 never false"],
                         missing(document([function("f", 5)], line(
                             7, "f", expression(2), expression(1, [], [0])))))

    def test_relative_path_begins_at_the_folder_of_the_build(self):
        self.assertEqual([f"{FILE}:7: condition 1 never true"],
                         missing(document([function("f", 5)], line(7, "f", expression(1, [0])),
                                          path=f"../{FILE}")))

    def test_files_outside_the_cores_do_not_count(self):
        for path in ("../test/a.cpp", "../folder/below/a.cpp", "../folder/a.h", "../../usr/a.cpp", FILE):
            self.assertEqual([], missing(document([function("f", 5)], line(7, "f", expression(1, [0])),
                                                  path=path)), path)


class Reasons(unittest.TestCase):
    def test_reason_stands_in_the_line_or_in_the_comment_above(self):
        self.assertEqual({Outcome(FILE, 1, 1, "true"): "never empty",
                          Outcome(FILE, 4, 2, "false"): "second",
                          Outcome(FILE, 4, 1, "false"): "first"},
                         conditions.reasons_in(FILE, "if (a)  // condition 1 never true: never empty\n"
                                                     "  // condition 1 never false: first\n"
                                                     "  // condition 2 never false: second\n"
                                                     "  if (a && b) {\n"
                                                     "if (c) {\n"))

    def test_comment_without_a_reason_or_an_outcome_is_none(self):
        for comment in ("// condition 1 never true:", "// condition never true: no number",
                        "// condition 1 never: no outcome", "condition 1 never true: no comment"):
            self.assertEqual({}, conditions.reasons_in(FILE, comment + "\nif (a) {\n"), comment)


class Findings(unittest.TestCase):
    COVERED = {Outcome(FILE, 7, 1, "true"): True, Outcome(FILE, 7, 1, "false"): False,
               Outcome(FILE, 8, 1, "true"): False, Outcome(FILE, 8, 1, "false"): True}

    def test_outcome_with_a_reason_is_explained_and_another_is_missing(self):
        found = conditions.findings(self.COVERED, {Outcome(FILE, 7, 1, "false"): "reason"})
        self.assertEqual([Outcome(FILE, 8, 1, "true")], found.missing)
        self.assertEqual({Outcome(FILE, 7, 1, "false"): "reason"}, found.explained)
        self.assertEqual({}, found.stale)

    def test_reason_at_a_covered_or_absent_outcome_is_wrong(self):
        wrong = {Outcome(FILE, 7, 1, "true"): "covered", Outcome(FILE, 7, 2, "true"): "no such condition",
                 Outcome(FILE, 9, 1, "true"): "no such line"}
        self.assertEqual(wrong, conditions.findings(self.COVERED, wrong).stale)

    def test_table_counts_the_outcomes_of_each_file_and_core(self):
        table = conditions.table(self.COVERED, [FILE, "other/b.cpp"], CORES)
        rows = [" ".join(row.split()) for row in table]
        self.assertEqual(["core 2 of 4", f"{FILE} 2 of 4", "other 0 of 0", "all 2 of 4"], rows)


class Unmeasured(unittest.TestCase):
    def test_source_that_was_not_compiled_and_pattern_without_a_file_are_found(self):
        with tempfile.TemporaryDirectory() as name:
            root = pathlib.Path(name)
            (root / "folder").mkdir()
            for file in ("a.cpp", "b.cpp", "c.h"):
                (root / "folder" / file).touch()
            self.assertEqual(["folder/b.cpp: not compiled", "other/*.cpp: no such file"],
                             list(conditions.unmeasured(root, [FILE], CORES)))


def compiler_that_counts_conditions():
    for name in ("g++", "g++-14"):
        if shutil.which(name):
            version = subprocess.run([name, "-dumpversion"], check=True, capture_output=True,
                                     text=True).stdout
            if int(version.split(".")[0]) >= 14:
                return name
    return None


PROGRAM = """template <class Number>
bool isInside(Number number) {
  return number >= 1 && number <= 9;
}
int main() {
  return isInside<int>(5) && !isInside<char>(0) ? 0 : 1;
}
"""


@unittest.skipUnless(compiler_that_counts_conditions(), "needs GCC 14 or newer")
class Compiler(unittest.TestCase):
    def test_outcomes_of_a_program_are_those_that_it_showed(self):
        compiler = compiler_that_counts_conditions()
        with tempfile.TemporaryDirectory() as name:
            root = pathlib.Path(name).resolve()
            (root / "folder").mkdir()
            (root / FILE).write_text(PROGRAM)
            subprocess.run([compiler, "--coverage", "-fcondition-coverage", "-o", "program", FILE],
                           cwd=root, check=True)
            subprocess.run([root / "program"], cwd=root, check=True)
            documents = conditions.documents_of(compiler.replace("g++", "gcov"), root)
            covered, paths = conditions.merge(documents, root, CORES)
        self.assertEqual([FILE], paths)
        # The instances together show the first operand of isInside. No number is above 9.
        inside = {outcome for outcome in covered if outcome.line == 3}
        self.assertEqual(4, len(inside))
        self.assertEqual([Outcome(FILE, 3, 2, "false")],
                         [outcome for outcome in inside if not covered[outcome]])


if __name__ == "__main__":
    unittest.main()
