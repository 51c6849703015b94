#!/usr/bin/env python3
"""Sets the load configuration directory of a PE image and makes its tables read-only.

Usage: enterloadconfiguration.py IMAGE

GNU ld 2.40 leaves the directory entry empty. The configuration is the constant _load_config_used,
which the script finds in the image's symbol table. GNU ld also marks the sections of the imports,
the start-up tables and the resources as writable. Only the loader writes to them, and it changes
their protection for that time. The script is idempotent.
"""

import pathlib
import struct
import sys

sys.dont_write_bytecode = True

from peheaders import Headers, section_flags, section_name, unpack, update_checksum

SYMBOL = b"_load_config_used"
SYMBOL_SIZE = 18
SECTION_IS_WRITABLE = 0x80000000
READ_ONLY_SECTIONS = (b".idata", b".CRT", b".rsrc")


def symbol_place(image, headers):
    """Section number of the symbol, from 1, and its offset in the section."""
    table, count = unpack("II", image, headers.file_header + 8)
    strings = table + count * SYMBOL_SIZE
    index = 0
    while index < count:
        entry = table + index * SYMBOL_SIZE
        zeroes, offset = unpack("II", image, entry)
        if zeroes == 0 and image[strings + offset:].startswith(SYMBOL + b"\0"):
            value, section = unpack("Ih", image, entry + 8)
            return section, value
        index += 1 + image[entry + 17]
    raise ValueError("the image has no symbol " + SYMBOL.decode())


def enter(image):
    headers = Headers(image)
    section, value = symbol_place(image, headers)
    section_header = headers.sections[section - 1]
    (virtual_address,) = unpack("I", image, section_header + 12)
    (raw_place,) = unpack("I", image, section_header + 20)
    (size,) = unpack("I", image, raw_place + value)
    struct.pack_into("<II", image, headers.load_configuration, virtual_address + value, size)


def protect(image):
    for section in Headers(image).sections:
        if section_name(image, section) in READ_ONLY_SECTIONS:
            (flags,) = unpack("I", image, section_flags(section))
            struct.pack_into("<I", image, section_flags(section), flags & ~SECTION_IS_WRITABLE)


def main():
    path = pathlib.Path(sys.argv[1])
    image = bytearray(path.read_bytes())
    enter(image)
    protect(image)
    update_checksum(image)
    path.write_bytes(image)


if __name__ == "__main__":
    main()
