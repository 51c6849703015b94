#!/usr/bin/env python3
"""Separates the symbols of a PE image from the image.

Usage: separatesymbols.py OBJCOPY IMAGE FOLDER

Writes FOLDER/NAME, the image without symbols, and FOLDER/NAME.debug, the symbols; the image names the
file with the symbols, which GDB therefore finds in the same folder. GNU objcopy stores the time in the
headers and makes the sections of imports and resources writable: both are set to the values of the
original image, and the checksum is updated. Two runs write the same bytes.
"""

import pathlib
import struct
import subprocess
import sys

SECTION_HEADER_SIZE = 40


class Headers:
    """File offsets of the fields that objcopy changes."""

    def __init__(self, image):
        (signature,) = struct.unpack_from("<I", image, 0x3C)
        if image[signature:signature + 4] != b"PE\0\0":
            raise ValueError("not a PE image")
        self.time = signature + 8
        self.checksum = signature + 24 + 64
        count, = struct.unpack_from("<H", image, signature + 6)
        optional_size, = struct.unpack_from("<H", image, signature + 20)
        first = signature + 24 + optional_size
        self.sections = {}
        for place in range(first, first + count * SECTION_HEADER_SIZE, SECTION_HEADER_SIZE):
            self.sections[bytes(image[place:place + 8])] = place


def checksum(image, place):
    """The checksum of the PE header: the 16-bit words without the checksum field, plus the size."""
    padded = image[:place] + bytes(4) + image[place + 4:] + bytes(len(image) % 2)
    total = sum(struct.unpack(f"<{len(padded) // 2}H", padded))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return total + len(image)


def restore_headers(original, path):
    image = bytearray(path.read_bytes())
    before, after = Headers(original), Headers(image)
    image[after.time:after.time + 4] = original[before.time:before.time + 4]
    for name, place in after.sections.items():
        # A slash begins the number of a longer name: sections of the symbols, and the link to them.
        if name in before.sections and not name.startswith(b"/"):
            flags = before.sections[name] + 36
            image[place + 36:place + 40] = original[flags:flags + 4]
    struct.pack_into("<I", image, after.checksum, checksum(bytes(image), after.checksum))
    path.write_bytes(image)


def separate(objcopy, image, folder):
    folder.mkdir(parents=True, exist_ok=True)
    stripped, symbols = folder / image.name, folder / f"{image.name}.debug"
    original = image.read_bytes()
    subprocess.run([objcopy, "--only-keep-debug", image, symbols], check=True)
    # The link holds the checksum of the file with the symbols, which must be complete.
    set_time(symbols, original)
    subprocess.run([objcopy, "--strip-all", f"--add-gnu-debuglink={symbols}", image, stripped],
                   check=True)
    restore_headers(original, stripped)


def set_time(path, original):
    image = bytearray(path.read_bytes())
    place, source = Headers(image).time, Headers(original).time
    image[place:place + 4] = original[source:source + 4]
    path.write_bytes(image)


def main():
    objcopy, image, folder = sys.argv[1:]
    separate(objcopy, pathlib.Path(image), pathlib.Path(folder))


if __name__ == "__main__":
    main()
