#!/usr/bin/env python3
"""Checks that the library does not depend on the time and the folder of its build.

Usage: check_reproducible.py NINJA BUILD TARGET_FILE SOURCE...

Links the library again, and compiles the sources in two other folders with its own commands; all
results must have the same bytes, and so must the program database that lld writes.
`./dev reproduce` compares two complete builds.
"""

import json
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

PRODUCT_FOLDERS = ("codegen", "include", "protocol", "routingadaptorinterface", "source", "zoapal",
                   "zoarkra", "zosmbios")


def link_again(ninja, build, library, folder):
    """The library as the linker writes it, before the steps after linking."""
    commands = subprocess.run([ninja, "-C", build, "-t", "commands", "-s", library], check=True,
                              capture_output=True, text=True).stdout
    command = next(part for part in commands.replace("\n", " && ").split(" && ")
                   if f"-o {library}" in part)
    for entry in build.iterdir():
        if entry.name not in ("bin", "lib"):
            (folder / entry.name).symlink_to(entry)
    (folder / "bin").mkdir()
    shutil.copytree(build / "lib", folder / "lib", copy_function=lambda a, b: pathlib.Path(b).symlink_to(a))
    (folder / "lib" / "libquenra.dll.a").unlink()
    subprocess.run(command, shell=True, check=True, cwd=folder)
    return folder / library


def command_of(build, source):
    entries = json.loads((build / "compile_commands.json").read_text())
    return shlex.split(next(entry["command"] for entry in entries if entry["file"] == str(source)))


def compile_in(folder, build, root, source):
    """The object file that a build in that folder would produce."""
    words = command_of(build, source)
    compiler = next(index for index, word in enumerate(words)
                    if re.search(r"/(x86_64-w64-mingw32-g|clang)\+\+", word))
    words = [word.replace(str(root), str(folder)) for word in words[compiler:]]
    place = folder / build.relative_to(root)
    place.mkdir(parents=True, exist_ok=True)
    words[words.index("-o") + 1] = "object.o"
    subprocess.run(words, check=True, cwd=place)
    return (place / "object.o").read_bytes()


def copy_of(root, build, folder):
    for name in PRODUCT_FOLDERS:
        shutil.copytree(root / name, folder / name)
    headers = build / "hostheaders"
    shutil.copytree(headers, folder / headers.relative_to(root), symlinks=True)
    return folder


def main():
    ninja, build, library, *sources = sys.argv[1:]
    build = pathlib.Path(build)
    root = build.parents[1]
    faults = []
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary)
        copies = [copy_of(root, build, folder / name) for name in ("first", "another/place")]
        for source in sources:
            first, other = (compile_in(copy, build, root, root / source) for copy in copies)
            if first != other:
                faults.append(f"{source} gives other bytes in another folder")
        (folder / "link").mkdir()
        relinked = link_again(ninja, build, library, folder / "link")
        database = pathlib.Path(f"{library}.pdb")
        if not (build / database).exists():
            subprocess.run([sys.executable, root / "cmake" / "enterloadconfiguration.py", relinked],
                           check=True)
        for name in (library, database):
            if (build / name).exists() and (
                    (relinked.parents[1] / name).read_bytes() != (build / name).read_bytes()):
                faults.append(f"{name} has other bytes when it is linked again")
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
