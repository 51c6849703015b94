#!/usr/bin/env python3
"""Writes the kept inputs of zosmbios_fuzz into corpus/zosmbios; zosmbios_fuzz.cpp documents the format."""
import pathlib
import struct

FOLDER = pathlib.Path(__file__).parent / "corpus" / "zosmbios"
LARGE_TABLES = 135  # a multiple of 9, not below kLargeTables of zosmbios_fuzz.cpp
TEXT, BYTE, WORD, DOUBLE_WORD, QUAD_WORD, PROVIDER = 0, 1, 2, 3, 4, 15


def structure(kind, body, strings=(), length=None):
    area = bytes([kind, 4 + len(body) if length is None else length, 1, 0]) + bytes(body)
    texts = b"".join(text + b"\0" for text in strings) or b"\0"
    return area + texts + b"\0"


def question(width, kind, offset, instance=0, size=64, high=0):
    return struct.pack("<IBH", high << 20 | width << 16 | kind << 8 | offset, instance, size)


def write(name, questions, table, version=b"3.4\0", is_large=False):
    """A large table follows a structure of 64 KiB."""
    count = len(questions) + (LARGE_TABLES if is_large else 0)
    content = bytes([len(version)]) + version + bytes([count]) + b"".join(questions) + table
    (FOLDER / name).write_bytes(content)


IDENTITY = structure(1, [1, 2, 3, 0, 9, 8, 7, 6, 5, 4, 3, 2], [b"maker", b"product", b"version"])
MEMORY = [structure(17, [1, 2, n, 4, 5, 6, 7, 8], [b"first", b"second"]) for n in range(3)]
END = structure(127, [])
GOOD = structure(0, [0, 1], [b"B-1"]) + IDENTITY + b"".join(MEMORY) + END
ON_IDENTITY = [question(TEXT, 1, 4), question(TEXT, 1, 5, size=8), question(TEXT, 1, 7),
               question(BYTE, 1, 8), question(WORD, 1, 9), question(QUAD_WORD, 1, 8)]


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    write("good", ON_IDENTITY, GOOD)
    write("instances", [question(BYTE, 17, 6, n) for n in range(4)] + [question(TEXT, 17, 5, 2)], GOOD)
    write("lastfields", [question(BYTE, 1, 15), question(BYTE, 1, 16), question(WORD, 1, 14),
                         question(WORD, 1, 15), question(QUAD_WORD, 1, 8), question(QUAD_WORD, 1, 9)],
          IDENTITY)
    write("widthclasses", [question(n, 1, 4) for n in (3, 5, 14)] + [question(BYTE, 1, 4, high=0xFFF)],
          IDENTITY)
    write("versionwithoutnul", [question(PROVIDER, 0, 1, size=254), question(PROVIDER, 0, 2),
                                question(PROVIDER, 0, 1, instance=1)], END, b"v" * 255)
    write("notable", [question(TEXT, 0, 4), question(BYTE, 0, 0)], b"")
    write("onebyte", [question(BYTE, 9, 0), question(TEXT, 9, 4)], b"\x09")
    write("twobytes", [question(BYTE, 9, 0), question(WORD, 9, 0)], b"\x09\x02")
    write("zeros", [question(BYTE, 0, 0, n) for n in (0, 1, 8)], bytes(19))
    write("lengthzero", [question(BYTE, 9, 0), question(BYTE, 7, 4)],
          b"\x09\x00\x00" + structure(7, [1, 2]))
    write("length255", [question(BYTE, 9, 254), question(TEXT, 9, 4)],
          structure(9, [1], [b"text"], length=255))
    write("stringsmissing", [question(TEXT, 9, n, size=20) for n in (4, 5, 6, 7)],
          structure(9, [2, 3, 4, 255], [b"one", b"two"]) + END)
    write("longstrings", [question(TEXT, 9, n, size=129) for n in (4, 5, 6)] +
          [question(TEXT, 9, 5, size=128)],
          structure(9, [1, 2, 3], [b"a" * 127, b"b" * 128, b"c" * 129]))
    write("withoutdoublenul", [question(TEXT, 9, 4), question(TEXT, 9, 5), question(TEXT, 9, 6)],
          b"\x09\x07\x01\x00\x01\x02\x03one\0")
    write("unendedstring", [question(TEXT, 9, 4), question(TEXT, 9, 5)],
          b"\x09\x06\x01\x00\x01\x02one\0two")
    write("cutarea", [question(BYTE, 1, 4), question(TEXT, 1, 4)], IDENTITY[:9])
    write("large", [question(BYTE, 17, 6, n) for n in range(4)] + [question(TEXT, 17, 5, 2)], GOOD,
          is_large=True)
    write("largezeros", [question(BYTE, 0, 0, n) for n in (0, 1, 8)], bytes(19), is_large=True)
    write("largecutarea", [question(BYTE, 1, 4), question(TEXT, 1, 4)], IDENTITY[:9], is_large=True)
    write("largestrings", [question(TEXT, 9, 4), question(TEXT, 126, 4)],
          structure(9, [1], [b"text"])[:-1], is_large=True)


if __name__ == "__main__":
    main()
