#!/usr/bin/env python3
"""Tests check_hardening.py: removes each required property from a valid image in turn.

Usage: check_hardening_test.py IMAGE
"""

import pathlib
import struct
import sys
import tempfile
import unittest

import check_hardening
import peimage

LIBRARIES = ["advapi32.dll", "bcrypt.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll",
             "setupapi.dll"]


class Hardening(unittest.TestCase):
    path = ""

    def setUp(self):
        self.image = peimage.Image(self.path)
        self.header = struct.unpack_from("<I", self.image.bytes, 0x3C)[0]

    def image_with(self, place, layout, value):
        changed = bytearray(self.image.bytes)
        struct.pack_into("<" + layout, changed, place, value)
        return self.image_of(changed)

    @staticmethod
    def image_of(changed):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "changed.dll"
            file.write_bytes(changed)
            return peimage.Image(file)

    def faults_without_flag(self, flag):
        return list(check_hardening.address_space(
            self.image_with(self.header + 24 + 70, "H", self.image.dll_flags & ~flag)))

    def test_each_flag_missing_is_reported(self):
        self.assertEqual(["DYNAMIC_BASE is not set"], self.faults_without_flag(0x40))
        self.assertEqual(["HIGH_ENTROPY_VA is not set"], self.faults_without_flag(0x20))
        self.assertEqual(["NX_COMPAT is not set"], self.faults_without_flag(0x100))

    def test_a_section_written_and_executed_is_reported(self):
        first = self.header + 24 + struct.unpack_from("<H", self.image.bytes, self.header + 20)[0]
        image = self.image_with(first + 36, "I", self.image.sections[0].flags | 0x80000000)
        self.assertEqual(["section .text is written and executed"], list(check_hardening.memory(image)))

    def test_a_writable_table_is_reported(self):
        first = self.header + 24 + struct.unpack_from("<H", self.image.bytes, self.header + 20)[0]
        names = [section.name for section in self.image.sections]
        for name in set(check_hardening.READ_ONLY_SECTIONS) & set(names):
            index = names.index(name)
            image = self.image_with(first + 40 * index + 36, "I",
                                    self.image.sections[index].flags | 0x80000000)
            self.assertEqual([f"section {name} is writable"], list(check_hardening.memory(image)))

    def test_import_addresses_missing_from_the_directory_are_reported(self):
        image = self.image_with(self.directory_place(peimage.IMPORT_ADDRESSES), "I", 0)
        self.assertEqual(["its directory does not have the import addresses"],
                         list(check_hardening.memory(image)))

    def test_an_import_that_is_not_listed_is_reported(self):
        self.assertEqual([f"it imports {LIBRARIES[0]}"],
                         list(check_hardening.imports(self.image, LIBRARIES[1:])))

    def directory_place(self, index):
        return self.header + 24 + 112 + 8 * index

    def test_no_load_configuration_is_reported(self):
        image = self.image_with(self.directory_place(peimage.LOAD_CONFIGURATION), "I", 0)
        self.assertEqual(["it has no load configuration"],
                         list(check_hardening.load_configuration(image, 0x800)))

    def test_other_load_flags_are_reported(self):
        address, _ = self.image.directories[peimage.LOAD_CONFIGURATION]
        image = self.image_with(self.image.place(address) + 0x4E, "H", 0)
        self.assertEqual(["DependentLoadFlags are 0x0, not 0x800"],
                         list(check_hardening.load_configuration(image, 0x800)))

    def test_a_guard_that_the_loader_does_not_replace_is_reported(self):
        image = self.image_with(self.image.place(self.cookie()), "Q", 0)
        self.assertEqual(["the loader would not replace the guard of the stack"],
                         list(check_hardening.load_configuration(image, 0x800)))

    def cookie(self):
        return self.image.number("Q", self.cookie_entry()) - self.image.base

    def cookie_entry(self):
        return self.image.directories[peimage.LOAD_CONFIGURATION][0] + 0x58

    def test_a_cookie_that_no_function_reads_is_reported(self):
        place = self.image.place(self.cookie())
        elsewhere = place + 8 if place % 16 == 0 else place - 8
        value = struct.pack("<Q", check_hardening.LOADER_REPLACES_THIS)
        changed = bytearray(self.image.bytes)
        changed[elsewhere:elsewhere + 8] = value
        struct.pack_into("<Q", changed, self.image.place(self.cookie_entry()),
                         self.image.base + self.cookie() + elsewhere - place)
        self.assertEqual(["the load configuration's cookie is not the guard of the stack"],
                         list(check_hardening.load_configuration(self.image_of(changed), 0x800)))

    def test_missing_guards_are_reported(self):
        place = self.image.bytes.index(check_hardening.FAILED_GUARD)
        self.assertEqual(["no function is guarded"],
                         list(check_hardening.stack_protector(self.image_with(place + 6, "B", 3))))

    def test_missing_unwinding_tables_are_reported(self):
        size_place = self.directory_place(peimage.EXCEPTIONS) + 4
        size = self.image.directories[peimage.EXCEPTIONS][1] // 24 * 12
        faults = list(check_hardening.unwinding(self.image_with(size_place, "I", size)))
        self.assertRegex(faults[0], "^only .* of the code has unwinding tables$")

    def test_another_version_and_none_are_reported(self):
        self.assertEqual(["its file version is 0.1.0, not 9.9.9"],
                         [fault.replace(self.version(), "0.1.0")
                          for fault in check_hardening.version(self.image, "9.9.9")])
        without = self.image_with(self.directory_place(peimage.RESOURCES), "I", 0)
        self.assertEqual(["it has no version resource"], list(check_hardening.version(without, "0.1.0")))

    def version(self):
        resource = self.image.resource(peimage.VERSION_RESOURCE)
        high, low = struct.unpack_from("<II", resource, resource.find(struct.pack("<I", 0xFEEF04BD)) + 8)
        return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}"

    def test_a_wrong_checksum_is_reported(self):
        image = self.image_with(self.image.checksum_place, "I", self.image.checksum + 1)
        self.assertEqual(["its checksum is wrong"], list(check_hardening.checksum(image)))

    def test_a_time_and_a_folder_are_reported(self):
        image = self.image_with(self.header + 8, "I", 1700000000)
        self.assertEqual(["it carries the time of its linking, 1700000000"],
                         list(check_hardening.reproducible(image, "/no/such/folder")))
        name = "kernel32.dll" if b"kernel32.dll" in self.image.bytes else "KERNEL32.dll"
        self.assertEqual([f"the file contains the path of its build folder, {name}"],
                         list(check_hardening.reproducible(self.image, name)))


if __name__ == "__main__":
    Hardening.path = sys.argv.pop()
    unittest.main()
