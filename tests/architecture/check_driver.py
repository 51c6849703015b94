#!/usr/bin/env python3
"""Checks that the kernel of Windows cannot load the simulated driver.

Usage: check_driver.py DRIVER HELPER

DRIVER imports HELPER, which imports user-mode libraries: the kernel cannot load those.
"""

import pathlib
import sys

import peimage

USER_MODE_LIBRARIES = {"ntdll.dll", "kernel32.dll"}


def faults(driver, helper, helper_name):
    if helper_name not in driver:
        yield f"the driver imports {', '.join(driver)}, not {helper_name}"
    if not USER_MODE_LIBRARIES & set(helper):
        yield f"{helper_name} imports {', '.join(helper)}, nothing of user mode"


def main():
    driver, helper = sys.argv[1:]
    found = list(faults(peimage.Image(driver).imported_libraries(),
                        peimage.Image(helper).imported_libraries(),
                        pathlib.Path(helper).name.lower()))
    for fault in found:
        print(fault)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
