#!/usr/bin/env python3
"""Writes a zip archive of a folder that depends on the names and the contents of its files only.

Usage: archive.py FOLDER ARCHIVE

The archive contains one folder with the name of the archive. The order is that of the names; the
date is 1980-01-01, the first that the format has.
"""

import pathlib
import sys
import zipfile

DATE = (1980, 1, 1, 0, 0, 0)
MADE_ON_UNIX = 3


def write(archive, files, programs=()):
    """Writes the files, pairs of name and content, in their order. Those named in `programs` are executable."""
    with zipfile.ZipFile(archive, "w") as target:
        for name, content in files:
            entry = zipfile.ZipInfo(name, DATE)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = MADE_ON_UNIX
            entry.external_attr = (0o100755 if name in programs else 0o100644) << 16
            target.writestr(entry, content, compresslevel=9)


def write_folder(folder, archive):
    files = sorted((f"{archive.stem}/{path.relative_to(folder).as_posix()}", path)
                   for path in folder.rglob("*") if path.is_file())
    if not files:
        raise SystemExit(f"archive.py: '{folder}' has no files")
    programs = {name for name, path in files if path.stat().st_mode & 0o100}
    write(archive, [(name, path.read_bytes()) for name, path in files], programs)


if __name__ == "__main__":
    write_folder(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
