#!/usr/bin/env python3
"""Copies a static library and gives lld the unwinding tables of its inline functions.

Usage: repairunwinding.py LIBRARY COPY

GCC places an inline function NAME in the section .text$NAME, and its unwinding tables in .pdata$NAME
and .xdata$NAME. The packages of Debian contain libraries whose objects have no symbols for the
latter two sections. lld identifies sections of this kind by their symbols, and without a message
leaves out those that have none: an exception that passes such a function then ends the process.
The copy has these symbols, and each of the sections names the section of its function.
"""

import pathlib
import struct
import sys

MAGIC = b"!<arch>\n"
MEMBER_HEADER_SIZE = 60
MACHINE_X64 = 0x8664
FILE_HEADER_SIZE, SECTION_HEADER_SIZE, SYMBOL_SIZE = 20, 40, 18
STATIC_SYMBOL = 3
COMDAT = 0x1000
SELECT_ASSOCIATIVE = 5
TABLES = (".pdata$", ".xdata$")


class Object:
    """A COFF object file."""

    def __init__(self, data):
        self.data = data
        (_, section_count, _, self.symbols, self.symbol_count, optional,
         _) = struct.unpack_from("<HHIIIHH", data)
        self.strings = self.symbols + SYMBOL_SIZE * self.symbol_count
        first = FILE_HEADER_SIZE + optional
        self.sections = [first + SECTION_HEADER_SIZE * index for index in range(section_count)]

    def string(self, offset):
        start = self.strings + offset
        return self.data[start:self.data.index(b"\0", start)].decode("ascii")

    def section_name(self, header):
        name = self.data[header:header + 8].rstrip(b"\0").decode("ascii")
        return self.string(int(name[1:])) if name.startswith("/") else name

    def sections_with_symbol(self):
        """The numbers of the sections that a symbol describes."""
        found, index = set(), 0
        while index < self.symbol_count:
            place = self.symbols + SYMBOL_SIZE * index
            value, section, _, storage, more = struct.unpack_from("<IhHBB", self.data, place + 8)
            if storage == STATIC_SYMBOL and more and value == 0:
                found.add(section)
            index += 1 + more
        return found


def missing_symbols(coff):
    """(name, number, header, number of the function's section) of each table without a symbol."""
    names = {number: coff.section_name(header) for number, header in enumerate(coff.sections, 1)}
    functions = {name[len(".text$"):]: number for number, name in names.items()
                 if name.startswith(".text$")}
    described = coff.sections_with_symbol()
    for number, name in names.items():
        header = coff.sections[number - 1]
        (flags,) = struct.unpack_from("<I", coff.data, header + 36)
        if not name.startswith(TABLES) or not flags & COMDAT or number in described:
            continue
        function = functions.get(name[len(TABLES[0]):])
        if function is None:
            raise ValueError(f"section {name} has no function")
        yield name, number, header, function


def repaired(data):
    """The object file with symbols for all its tables."""
    coff = Object(data)
    strings = bytearray(data[coff.strings:])
    symbols = bytearray()
    for name, number, header, function in missing_symbols(coff):
        size, _, _, _, relocations = struct.unpack_from("<IIIIH", data, header + 16)
        symbols += struct.pack("<IIIhHBB", 0, len(strings), 0, number, 0, STATIC_SYMBOL, 1)
        symbols += struct.pack("<IHHIHB3x", size, relocations, 0, 0, function, SELECT_ASSOCIATIVE)
        strings += name.encode("ascii") + b"\0"
    if not symbols:
        return data
    struct.pack_into("<I", strings, 0, len(strings))
    header = bytearray(data[:coff.strings])
    struct.pack_into("<I", header, 12, coff.symbol_count + len(symbols) // SYMBOL_SIZE)
    return bytes(header) + bytes(symbols) + bytes(strings)


def members(archive):
    """(header, content) of each member."""
    if archive[:len(MAGIC)] != MAGIC:
        raise ValueError("this is not a static library")
    place = len(MAGIC)
    while place < len(archive):
        header = archive[place:place + MEMBER_HEADER_SIZE]
        size = int(header[48:58])
        start = place + MEMBER_HEADER_SIZE
        yield header, archive[start:start + size]
        place = start + size + size % 2


def is_object(header, content):
    name = header[:16].rstrip()
    return name not in (b"/", b"//") and struct.unpack_from("<H", content)[0] == MACHINE_X64


def main():
    source, copy = sys.argv[1:]
    result = bytearray(MAGIC)
    for header, content in members(pathlib.Path(source).read_bytes()):
        if header[:16].rstrip() == b"/":
            # The index has the places of the members in the file; ranlib writes a new one.
            continue
        if is_object(header, content):
            content = repaired(content)
        result += header[:48] + f"{len(content):<10}".encode("ascii") + header[58:] + content
        result += b"\n" * (len(content) % 2)
    pathlib.Path(copy).write_bytes(result)


if __name__ == "__main__":
    main()
