#!/usr/bin/env python3
"""Checks that an image runs on the oldest Windows that the project supports.

Usage: check_windows_version.py MINIMUM VERSIONS IMAGE [OWN_LIBRARY…]

MINIMUM is a version such as 6.2. VERSIONS names the version that introduced each function of the system
(windowsversions.txt). Every imported function has to be in it, with a version of at most MINIMUM, and the
header of the image has to require MINIMUM, so that an older system refuses the image. Imports from an
OWN_LIBRARY are those of the project.
"""

import pathlib
import re
import sys

import peimage


def version_of(text):
    return tuple(int(number) for number in text.split("."))


def read_versions(path):
    """{(library, function): version}"""
    versions, library, version = {}, None, None
    for line in pathlib.Path(path).read_text().splitlines():
        if match := re.fullmatch(r"\[(\S+) ([0-9.]+)\]", line):
            library, version = match[1], version_of(match[2])
        elif not line.startswith("#"):
            for function in line.split():
                if (library, function) in versions:
                    raise SystemExit(f"{path} names {library}!{function} twice")
                versions[library, function] = version
    return versions


def text_of(version):
    return ".".join(map(str, version))


def faults_of_imports(imports, versions, minimum):
    for library, function in imports:
        version = versions.get((library, function))
        if version is None:
            yield (f"imports {library}!{function}, which windowsversions.txt does not name: add it with "
                   "the version of Windows that introduced it")
        elif version > minimum:
            yield (f"imports {library}!{function}, which Windows {text_of(version)} introduced; the oldest "
                   f"supported version is {text_of(minimum)}")


def faults_of_header(image, minimum):
    for name, version in (("operating system", image.system_version),
                          ("subsystem", image.subsystem_version)):
        if version != minimum:
            yield f"requires version {text_of(version)} of the {name}, not {text_of(minimum)}"


def main():
    minimum, versions, path, *own = sys.argv[1:]
    minimum, versions, image = version_of(minimum), read_versions(versions), peimage.Image(path)
    imports = [entry for entry in image.imported_functions() if entry[0] not in own]
    if not imports:
        raise SystemExit("no import was recognised")
    faults = [*faults_of_imports(imports, versions, minimum), *faults_of_header(image, minimum)]
    for fault in faults:
        print(fault)
    newest = max(versions.get(entry, (0,)) for entry in imports)
    print(f"{len(imports)} imported functions, the newest of Windows {text_of(newest)}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
