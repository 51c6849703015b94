#!/usr/bin/env python3
"""Checks that code for newer processors cannot run on older ones.

Usage: check_kernels.py NM OBJECT...

An object that is compiled for an instruction set may export its table of kernels but no function:
if several objects define an inline function, the linker keeps one of them, which could be the one
that only few processors can run. Prints each exported function; exit code 1 if one was found.
"""

import pathlib
import re
import subprocess
import sys

INSTRUCTION_SET = re.compile(r"avx|sse|bmi")
CODE = {"T", "W", "i", "u"}
TABLE = re.compile(r"\d+k\w+KernelsE$")


def defined_symbols(nm, path):
    """The names that other objects can see, each with its kind."""
    output = subprocess.run([nm, "--defined-only", "--extern-only", "--format=posix", path],
                            check=True, capture_output=True, text=True).stdout
    return [line.split()[:2] for line in output.splitlines() if len(line.split()) > 2]


def main():
    nm, *objects = sys.argv[1:]
    checked = [path for path in objects if INSTRUCTION_SET.match(pathlib.Path(path).name)]
    faults = 0
    for path in checked:
        symbols = defined_symbols(nm, path)
        too_many = [symbol for symbol, kind in symbols if kind in CODE]
        for symbol in too_many:
            print(f"{pathlib.Path(path).name}: may not define {symbol}")
        if not any(TABLE.search(symbol) for symbol, _ in symbols):
            print(f"{pathlib.Path(path).name}: has no table of kernels")
            faults += 1
        faults += len(too_many)
    print(f"{len(checked)} objects for instruction sets, {faults} faults")
    return 1 if faults or not checked else 0


if __name__ == "__main__":
    sys.exit(main())
