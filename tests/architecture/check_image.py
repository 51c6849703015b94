#!/usr/bin/env python3
"""Checks the exports and imports of a library.

Usage: check_image.py OBJDUMP LIBRARY EXPORTS

The names exported are exactly those of the file EXPORTS. Every library imported is one of Windows,
and every function is imported by its name.
"""

import pathlib
import re
import subprocess
import sys

WINDOWS_LIBRARIES = {
    "advapi32.dll", "bcrypt.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll",
    "setupapi.dll",
}


def sections(text):
    """Import descriptors as {library: [lines]}, and the exported names."""
    imports, exports, library, in_exports = {}, [], None, False
    for line in text.splitlines():
        if match := re.match(r"\s*DLL Name: (\S+)", line):
            library = match[1].lower()
            imports[library] = []
        elif library and re.match(r"\s+[0-9a-f]+\s+.*\S", line) and "vma:" not in line:
            imports[library].append(line.split())
        elif not line.strip():
            library = None
        if "[Ordinal/Name Pointer] Table" in line:
            in_exports = True
        elif in_exports:
            if match := re.match(r"\s+\[\s*\d+\](?:\s+\+base\[\s*\d+\])?\s+(?:[0-9a-f]+\s+)?(\S+)$", line):
                exports.append(match[1])
            elif not line.strip():
                in_exports = False
    return imports, exports


def main():
    objdump, library, expected = sys.argv[1:]
    text = subprocess.run([objdump, "-p", library], check=True, capture_output=True, text=True).stdout
    imports, exports = sections(text)
    names = pathlib.Path(expected).read_text().split()
    faults = []
    if sorted(exports) != sorted(names):
        faults.append(f"exports {sorted(exports)}, not {sorted(names)}")
    if not imports:
        faults.append("no import was recognised")
    for name, functions in imports.items():
        if name not in WINDOWS_LIBRARIES:
            faults.append(f"imports {name}, which is not a library of Windows that it needs")
        faults += [f"imports from {name} without a name: {' '.join(words)}" for words in functions
                   if not re.fullmatch(r"[A-Za-z_]\w*", words[-1])]
        if not functions:
            faults.append(f"imports nothing from {name}, or nothing was recognised")
    for fault in faults:
        print(fault)
    print(f"{len(exports)} exports, {sum(map(len, imports.values()))} imports from {len(imports)} libraries")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
