#!/usr/bin/env python3
"""Checks the blocks of C++ in docs/cpp.md, and writes them to a file to compile.

Usage: cpp_page.py ROOT FILE

A block with a `main` is the program examples/controller.cpp; any other block is a fragment of a function
with a controller and a session. Also checks that the header defines no macro but
its guard.
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MACRO = re.compile(r"^\s*#\s*define\s+(\w+)", re.MULTILINE)
# MinGW has the system's header, some of whose macros are words in lower case.
BEGINNING = """\
#if defined(__MINGW32__) && !defined(_MSC_VER)
#include <windows.h>
#endif
#include "quenra.hpp"
#include <condition_variable>
#include <iostream>
#include <mutex>
"""
FRAGMENT = """\
[[maybe_unused]] static void fragment{number}([[maybe_unused]] quenra::controller& controller,
    [[maybe_unused]] quenra::routing::session& session) {{
{text}}}
"""


def findings(root, blocks):
    macros = MACRO.findall((root / "include/quenra.hpp").read_text())
    if macros != ["QUENRA_HPP"]:
        yield f"include/quenra.hpp: defines {', '.join(macros)}"
    programs = [block for block in blocks if "int main(" in block]
    if programs != [(root / "examples/controller.cpp").read_text()]:
        yield "docs/cpp.md: its program is not examples/controller.cpp"
    if len(blocks) < 5:
        yield f"docs/cpp.md: {len(blocks)} blocks of C++ only"


def main():
    root, file = map(pathlib.Path, sys.argv[1:])
    blocks = BLOCK.findall((root / "docs/cpp.md").read_text())
    found = list(findings(root, blocks))
    print("\n".join(found))
    file.write_text(BEGINNING +
                    "".join(block if "int main(" in block else FRAGMENT.format(number=number, text=block)
                            for number, block in enumerate(blocks)))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
