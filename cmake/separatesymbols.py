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

sys.dont_write_bytecode = True

from peheaders import Headers, section_flags, section_name, unpack, update_checksum


def copy_time(original, image):
    struct.pack_into("<I", image, Headers(image).time, *unpack("I", original, Headers(original).time))


def copy_section_flags(original, image):
    flags = {section_name(original, section): unpack("I", original, section_flags(section))
             for section in Headers(original).sections}
    for section in Headers(image).sections:
        name = section_name(image, section)
        # Sections with a longer name are those of the symbols and the link to them.
        if name in flags and not name.startswith(b"/"):
            struct.pack_into("<I", image, section_flags(section), *flags[name])


def restore_headers(original, path):
    image = bytearray(path.read_bytes())
    copy_time(original, image)
    copy_section_flags(original, image)
    update_checksum(image)
    path.write_bytes(image)


def set_time(original, path):
    image = bytearray(path.read_bytes())
    copy_time(original, image)
    path.write_bytes(image)


def separate(objcopy, image, folder):
    folder.mkdir(parents=True, exist_ok=True)
    stripped, symbols = folder / image.name, folder / f"{image.name}.debug"
    original = image.read_bytes()
    subprocess.run([objcopy, "--only-keep-debug", image, symbols], check=True)
    # The link holds the checksum of the file with the symbols, which must be complete.
    set_time(original, symbols)
    subprocess.run([objcopy, "--strip-all", f"--add-gnu-debuglink={symbols}", image, stripped],
                   check=True)
    restore_headers(original, stripped)


def main():
    objcopy, image, folder = sys.argv[1:]
    separate(objcopy, pathlib.Path(image), pathlib.Path(folder))


if __name__ == "__main__":
    main()
