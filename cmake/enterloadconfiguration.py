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

SYMBOL = b"_load_config_used"
SYMBOL_SIZE = 18
SECTION_HEADER_SIZE = 40
LOAD_CONFIGURATION = 10
SECTION_IS_WRITABLE = 0x80000000
READ_ONLY_SECTIONS = (b".idata", b".CRT", b".rsrc")


def unpack(layout, image, offset):
    return struct.unpack_from("<" + layout, image, offset)


class Headers:
    """File offsets of the fields that the script reads and changes."""

    def __init__(self, image):
        (self.file_header,) = unpack("I", image, 0x3C)
        if image[self.file_header:self.file_header + 4] != b"PE\0\0":
            raise ValueError("this is not an image")
        self.file_header += 4
        self.optional_header = self.file_header + 20
        (magic,) = unpack("H", image, self.optional_header)
        if magic != 0x20B:
            raise ValueError("this is not a 64-bit image")
        self.checksum = self.optional_header + 64
        self.load_configuration = self.optional_header + 112 + 8 * LOAD_CONFIGURATION
        (size,) = unpack("H", image, self.file_header + 16)
        self.sections = self.optional_header + size
        (self.section_count,) = unpack("H", image, self.file_header + 2)


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


def checksum(image, place):
    """The checksum of the PE header: the 16-bit words without the checksum field, plus the size."""
    padded = bytes(image[:place]) + bytes(4) + bytes(image[place + 4:]) + bytes(len(image) % 2)
    total = sum(struct.unpack(f"<{len(padded) // 2}H", padded))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return total + len(image)


def enter(image):
    headers = Headers(image)
    section, value = symbol_place(image, headers)
    section_header = headers.sections + (section - 1) * SECTION_HEADER_SIZE
    (virtual_address,) = unpack("I", image, section_header + 12)
    (raw_place,) = unpack("I", image, section_header + 20)
    (size,) = unpack("I", image, raw_place + value)
    struct.pack_into("<II", image, headers.load_configuration, virtual_address + value, size)


def protect(image):
    headers = Headers(image)
    for index in range(headers.section_count):
        section = headers.sections + index * SECTION_HEADER_SIZE
        if bytes(image[section:section + 8]).rstrip(b"\0") in READ_ONLY_SECTIONS:
            (flags,) = unpack("I", image, section + 36)
            struct.pack_into("<I", image, section + 36, flags & ~SECTION_IS_WRITABLE)


def update_checksum(image):
    place = Headers(image).checksum
    struct.pack_into("<I", image, place, checksum(image, place))


def main():
    path = pathlib.Path(sys.argv[1])
    image = bytearray(path.read_bytes())
    enter(image)
    protect(image)
    update_checksum(image)
    path.write_bytes(image)


if __name__ == "__main__":
    main()
