#!/usr/bin/env python3
"""Checks that includes follow the layers of the architecture.

Usage: check_includes.py ROOT

Every include between folders of the project has to be allowed by layers.txt, and only the folders
named below may include headers of Windows. Prints each violation; exit code 1 when there is one.
"""

import pathlib
import re
import sys

SOURCE_SUFFIXES = {".h", ".hpp", ".c", ".cpp"}
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)
WINDOWS_HEADERS = {
    "windows.h", "setupapi.h", "winioctl.h", "initguid.h", "cfgmgr32.h", "newdev.h", "process.h",
    "winternl.h", "ntddk.h", "wdm.h", "psapi.h", "tlhelp32.h", "devguid.h", "winsvc.h", "objbase.h",
    "oleauto.h", "sddl.h", "wbemcli.h",
}
MAY_CALL_WINDOWS = (
    "zoapal/protons/", "zosmbios/czosmbioswindowsprovider.cpp", "source/user/preconditions/",
    "source/user/update/driverpackage.cpp", "simulator/driver/", "simulator/managementservice/",
    "simulator/driverstore/", "simulator/scenario/",
    "simulator/callermemory/", "simulator/control/", "simulator/quenra-sim/", "tools/quenra/main.cpp",
    "tools/quenra/firmware/files.cpp",
    "tools/quenra/capture/driveronwindows.cpp", "tools/quenra/programs/programsonwindows.cpp", "tools/quenra/quenradll.h",
    "tools/quenra/update/updateonwindows.cpp",
    "bench/", "tests/",
)
SKIPPED = {"build", ".git"}


def read_layers(path):
    layers = {}
    for line in path.read_text().splitlines():
        line = line.split("#")[0]
        if ":" in line:
            folder, allowed = line.split(":", 1)
            layers[folder.strip()] = allowed.split()
    return layers


def is_inside(path, folder):
    return path == folder or path.startswith(folder + "/")


def layer_of(path, layers):
    fitting = [folder for folder in layers if is_inside(path, folder)]
    return max(fitting, key=len, default=None)


def resolve(root, name):
    """The included file's path from the root, or None for a header from outside the project."""
    for base in ("", "include/"):
        if (root / base / name).is_file():
            return base + name
    return None


def violations(root, layers, files):
    for path in files:
        layer = layer_of(path, layers)
        if layer is None:
            yield f"{path}: no layer in layers.txt"
            continue
        for _, name in INCLUDE.findall((root / path).read_text()):
            target = resolve(root, name)
            if target is None:
                if name.lower() in WINDOWS_HEADERS and not path.startswith(MAY_CALL_WINDOWS):
                    yield f"{path}: may not include <{name}>, a header of Windows"
            elif not any(is_inside(target, folder) for folder in [layer, *layers[layer]]):
                yield f"{path}: {layer} may not include {target}"


def source_files(root):
    for path in sorted(root.rglob("*")):
        relative = path.relative_to(root)
        if path.suffix in SOURCE_SUFFIXES and not SKIPPED.intersection(relative.parts):
            yield relative.as_posix()


def main():
    root = pathlib.Path(sys.argv[1])
    layers = read_layers(pathlib.Path(__file__).with_name("layers.txt"))
    files = list(source_files(root))
    found = list(violations(root, layers, files))
    for violation in found:
        print(violation)
    print(f"{len(files)} files, {len(found)} violations")
    return 1 if found or not files else 0


if __name__ == "__main__":
    sys.exit(main())
