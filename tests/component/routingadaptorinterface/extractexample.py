#!/usr/bin/env python3
"""Writes the C program of a Markdown page to a file.

Usage: extractexample.py PAGE FILE

The page has exactly one block of C that is a program.
"""

import pathlib
import re
import sys


def main():
    page, file = map(pathlib.Path, sys.argv[1:])
    blocks = re.findall(r"^```c(?: [^\n]*)?\n(.*?)^```$", page.read_text(), re.MULTILINE | re.DOTALL)
    blocks = [block for block in blocks if "int main(" in block]
    if len(blocks) != 1:
        print(f"{page}: {len(blocks)} programs in C, not one")
        return 1
    file.write_text(blocks[0])
    return 0


if __name__ == "__main__":
    sys.exit(main())
