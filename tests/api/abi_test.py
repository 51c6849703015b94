#!/usr/bin/env python3
"""Tests of the comparison with the last release: each change that breaks a program is found.

Usage: abi_test.py COMPILER [ARGUMENT OF unittest...]
"""

import contextlib
import io
import pathlib
import shutil
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "api"))

import abi  # noqa: E402

COMPILER = [sys.argv.pop(1) if len(sys.argv) > 1 else "cc"]


class Interface(unittest.TestCase):
    """Changes of the headers, against the record of the last release."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.include = pathlib.Path(folder.name) / "include"
        shutil.copytree(ROOT / "include", self.include)
        self.addCleanup(setattr, abi, "INCLUDE", abi.INCLUDE)
        abi.INCLUDE = self.include
        self.set_version(*sorted(abi.records())[-1])

    def set_version(self, major, minor, patch):
        text = "".join(f"#define QUENRA_VERSION_{part} {number}\n"
                       for part, number in (("MAJOR", major), ("MINOR", minor), ("PATCH", patch)))
        (self.include / "quenra_version.h").write_text(text)

    def replace(self, header, old, new):
        path = self.include / header
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new, 1))

    def outcome(self):
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            code = abi.check(COMPILER)
        return code, printed.getvalue()

    def assert_refused(self, message):
        code, printed = self.outcome()
        self.assertEqual(code, 1, printed)
        self.assertIn(message, printed)

    def test_headers_of_the_release_are_accepted(self):
        code, printed = self.outcome()
        self.assertEqual(code, 0, printed)

    def test_functions_are_the_exports(self):
        functions = {key.removeprefix("function ") for key in abi.interface(COMPILER)
                     if key.startswith("function ")}
        self.assertEqual(functions, set((ROOT / "tests/architecture/exports.txt").read_text().split()))

    def test_changed_code(self):
        self.replace("quenra_status.h", "QUENRA_STATUS_BUSY = -52031", "QUENRA_STATUS_BUSY = -52032")
        self.assert_refused("changed: constant QUENRA_STATUS_BUSY: -52031; now: -52032")

    def test_changed_value_of_a_macro(self):
        self.replace("quenra.h", "UINT64_C(0x514E5241)", "UINT64_C(0x514E5242)")
        self.assert_refused("changed: constant QUENRA_HANDLE: 0x514E5241; now: 0x514E5242")
        self.replace("quenra_routing.h", 'ZOROCO_RESET_FLOATING "floating"', 'ZOROCO_RESET_FLOATING "float"')
        self.assert_refused('changed: text ZOROCO_RESET_FLOATING: "floating"; now: "float"')

    def test_removed_attribute(self):
        self.replace("quenra_attributes.h", "  QUENRA_ATTRIBUTE_CAPABILITY_2 = 0x2003E900,\n", "")
        self.replace("quenra_attributes.h", '  X(QUENRA_ATTRIBUTE_CAPABILITY_2, "capability-2")', "  ")
        self.assert_refused("removed: constant QUENRA_ATTRIBUTE_CAPABILITY_2: 0x2003E900")

    def test_removed_function(self):
        self.replace("quenra_routing.h", "uint32_t zoroco_ra_quenra_getAPIVersion(void);", "")
        self.assert_refused("removed: function zoroco_ra_quenra_getAPIVersion: uint32_t (void)")

    def test_changed_arguments_and_result(self):
        self.replace("quenra.h", "QUENRA_closeController(uint64_t handle)", "QUENRA_closeController(uint32_t handle)")
        self.assert_refused("changed: function QUENRA_closeController: void (uint64_t); now: void (uint32_t)")
        self.replace("quenra.h", "void QUENRA_closeController(", "int32_t QUENRA_closeController(")
        self.assert_refused("now: int32_t (uint32_t)")

    def test_name_of_an_argument_is_no_change(self):
        self.replace("quenra.h", "QUENRA_closeController(uint64_t handle)", "QUENRA_closeController(uint64_t opened)")
        self.assertEqual(self.outcome()[0], 0)

    def test_swapped_members(self):
        self.replace("quenra_routing.h", "  int32_t code;\n  uint32_t capacity;\n", "  uint32_t capacity;\n  int32_t code;\n")
        self.replace("quenra_routing.h", "offsetof(zoerr_Status, code) == 0", "offsetof(zoerr_Status, code) == 4")
        self.replace("quenra_routing.h", "offsetof(zoerr_Status, capacity) == 4",
                     "offsetof(zoerr_Status, capacity) == 0")
        self.assert_refused("changed: member zoerr_Status.code: int32_t, 4 bytes at 0; now: int32_t, 4 bytes at 4")

    def test_larger_structure(self):
        self.replace("quenra_routing.h", "  char* description;\n} zoerr_Status;",
                     "  char* description;\n  void* more;\n} zoerr_Status;")
        self.replace("quenra_routing.h", "sizeof(zoerr_Status) == 24", "sizeof(zoerr_Status) == 32")
        self.assert_refused("changed: structure zoerr_Status: 24 bytes, aligned to 8; now: 32 bytes, aligned to 8")

    def test_changed_callback(self):
        self.replace("quenra_routing.h", "(*zoroco_DemotionCallback)(void* context, int32_t reason,",
                     "(*zoroco_DemotionCallback)(void* context, int64_t reason,")
        self.assert_refused("changed: type zoroco_DemotionCallback")

    def test_addition_needs_a_new_minor_version(self):
        major, minor, patch = sorted(abi.records())[-1]
        self.replace("quenra.h", "void QUENRA_closeController(",
                     "int32_t QUENRA_countControllers(void);\nvoid QUENRA_closeController(")
        self.set_version(major, minor, patch + 1)
        self.assert_refused("added: function QUENRA_countControllers: int32_t (void)")
        self.set_version(major, minor + 1, 0)
        code, printed = self.outcome()
        self.assertEqual(code, 0, printed)
        self.assertIn("permitted: added: function QUENRA_countControllers", printed)

    def test_removal_needs_a_new_major_version(self):
        major, minor, _ = sorted(abi.records())[-1]
        self.replace("quenra.h", "#define QUENRA_MAX_DEVICE_PATH_SIZE 256", "")
        self.set_version(major, minor + 1, 0)
        self.assert_refused("removed: constant QUENRA_MAX_DEVICE_PATH_SIZE: 256")
        self.set_version(major + 1, 0, 0)
        self.assertEqual(self.outcome()[0], 0)

    def test_declaration_of_an_unknown_form_is_refused(self):
        self.replace("quenra.h", "void QUENRA_closeController(", "union tUnknown { int a; };\nvoid QUENRA_closeController(")
        with self.assertRaisesRegex(abi.Fault, "no rule for the declaration: union tUnknown"):
            abi.check(COMPILER)


if __name__ == "__main__":
    unittest.main()
