#!/usr/bin/env python3
"""Checks the size of the shipped library, and prints that of its program.

Usage: check_size.py STRIP LIMIT LIBRARY MAP PROGRAM

The library without symbols has at most LIMIT bytes. If it has more, the ten largest contributors are
printed, as the linker's MAP lists them: bytes, library and object file.
"""

import collections
import pathlib
import re
import subprocess
import sys
import tempfile

MEMORY_MAP = "Linker script and memory map"
# The name of a long section is on a line of its own, before its address.
CONTRIBUTION = re.compile(r" (?P<section>\S+)?\s+0x(?P<address>[0-9a-f]+)\s+0x(?P<size>[0-9a-f]+) (?P<file>\S.*)")
SECTION = re.compile(r" ?(\.\S+)\s*$")
IN_ARCHIVE = re.compile(r"(.*)\((.*)\)$")
NOT_IN_FILE = (".bss", ".debug", ".comment", ".gnu", ".stab")


def contributor(file):
    """Library and object file, without folders; of an object file outside a library its own name."""
    if match := IN_ARCHIVE.match(file):
        return f"{pathlib.PurePath(match[1]).name}: {match[2]}"
    return pathlib.PurePath(file).name


def contributions(text):
    """Bytes of the image by contributor."""
    sizes = collections.Counter()
    section = ""
    for line in text[text.index(MEMORY_MAP):].splitlines():
        if match := SECTION.match(line):
            section = match[1]
        elif match := CONTRIBUTION.match(line):
            section = match["section"] or section
            if not section.startswith(NOT_IN_FILE):
                sizes[contributor(match["file"])] += int(match["size"], 16)
    return sizes


def faults(size, limit, text):
    """Lines that report a size beyond the limit, with the ten largest contributors."""
    if size <= limit:
        return []
    largest = [item for item in contributions(text).most_common(10) if item[1] != 0]
    return [f"{size} bytes without symbols exceed the limit of {limit}. The largest contributors:",
            *(f"{count:10} {name}" for name, count in largest)]


def stripped_size(strip, image):
    with tempfile.TemporaryDirectory() as folder:
        stripped = pathlib.Path(folder) / "stripped"
        subprocess.run([strip, "--strip-all", "-o", stripped, image], check=True)
        return stripped.stat().st_size


def main():
    strip, limit, library, map_file, program = sys.argv[1:]
    size = stripped_size(strip, library)
    for image, count in ((library, size), (program, stripped_size(strip, program))):
        print(f"{pathlib.PurePath(image).name}: {count} bytes without symbols")
    found = faults(size, int(limit), pathlib.Path(map_file).read_text())
    print("\n".join(found), end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
