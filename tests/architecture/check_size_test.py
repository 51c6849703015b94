#!/usr/bin/env python3
"""Tests check_size.py with a made-up map of the linker."""

import unittest

import check_size

LINES = """Archive member included to satisfy reference by file (symbol)

lib/libproduct.a(before.obj)
                              0x0000000000000000       0x99 lib/libproduct.a(before.obj)

Discarded input sections

 .text          0x0000000000000000    0x90000 lib/libproduct.a(discarded.obj)

Linker script and memory map

LOAD lib/libproduct.a

.text           0x0000000180001000     0x2000
 *(.text)
 .text          0x0000000180001000      0x100 /usr/lib/gcc/crtbegin.o
 .text          0x0000000180001100     0x1000 lib/libproduct.a(large.cpp.obj)
                0x0000000180001100                function()
 .text$_ZN4nameEv
                0x0000000180002100       0x20 /usr/lib/gcc/libstdc++.a(string-inst.o)
 .text          0x0000000180002120        0x0 lib/libproduct.a(empty.cpp.obj)
 *fill*         0x0000000180002120       0x10 

.rdata          0x0000000180003000      0x100
 .rdata$_ZTV4name
                0x0000000180003000       0x30 lib/libproduct.a(large.cpp.obj)

.bss            0x0000000180004000   0x800000
 .bss           0x0000000180004000   0x800000 lib/libproduct.a(zeros.cpp.obj)

.debug_info     0x0000000180900000   0x800000
 .debug_info    0x0000000180900000   0x800000 lib/libproduct.a(large.cpp.obj)
"""
MANY = "Linker script and memory map\n" + "".join(
    f" .text          0x{0x180001000:016x}      0x{100 + number:x} lib/libproduct.a({number}.obj)\n"
    for number in range(12))


class Size(unittest.TestCase):
    def test_contributions_are_those_of_the_file_by_library_and_object(self):
        self.assertEqual({"libproduct.a: large.cpp.obj": 0x1030, "crtbegin.o": 0x100,
                          "libstdc++.a: string-inst.o": 0x20, "libproduct.a: empty.cpp.obj": 0},
                         dict(check_size.contributions(LINES)))

    def test_a_library_of_the_limit_has_no_fault(self):
        self.assertEqual([], check_size.faults(900, 900, LINES))

    def test_a_larger_library_is_reported_with_its_contributors(self):
        self.assertEqual(["901 bytes without symbols exceed the limit of 900. The largest contributors:",
                          "      4144 libproduct.a: large.cpp.obj",
                          "       256 crtbegin.o",
                          "        32 libstdc++.a: string-inst.o"],
                         check_size.faults(901, 900, LINES))

    def test_ten_contributors_are_named_largest_first(self):
        named = check_size.faults(2, 1, MANY)[1:]
        self.assertEqual([f"{100 + number:10} libproduct.a: {number}.obj"
                          for number in range(11, 1, -1)], named)

    def test_a_map_without_the_memory_map_is_refused(self):
        with self.assertRaises(ValueError):
            check_size.contributions("another file")


if __name__ == "__main__":
    unittest.main()
