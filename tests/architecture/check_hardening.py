#!/usr/bin/env python3
"""Checks the exploit mitigations of a built image.

Usage: check_hardening.py VERSION SOURCE_FOLDER LOAD_FLAGS LIBRARIES IMAGE

VERSION is that of the version resource, the image must not contain SOURCE_FOLDER, LOAD_FLAGS are
the DependentLoadFlags, LIBRARIES lists all libraries that may be imported, separated by commas.
"""

import re
import struct
import sys

import peimage

# Fewer calls of __stack_chk_fail than this mean that the library's own code has no guards.
FEWEST_GUARDED_FUNCTIONS = 50
# The function __stack_chk_fail of stackguard.c: mov ecx, 2; int 0x29.
FAILED_GUARD = b"\xB9\x02\x00\x00\x00\xCD\x29"
# Functions without unwinding tables call nothing and change no register; the rest of an image has
# them, or an exception that passes such a function ends the process.
SMALLEST_UNWINDING_SHARE = 0.94
LOADER_REPLACES_THIS = 0x00002B992DDFA232
# Only the loader writes to them, and it changes their protection for that.
READ_ONLY_SECTIONS = (".rdata", ".idata", ".CRT", ".rsrc")
# Newer versions of GNU ld place the former in .rdata, lld places both there.
OPTIONAL_SECTIONS = (".CRT", ".idata")


def address_space(image):
    for flag, name in ((peimage.DYNAMIC_BASE, "DYNAMIC_BASE"),
                       (peimage.HIGH_ENTROPY_VA, "HIGH_ENTROPY_VA"),
                       (peimage.NX_COMPAT, "NX_COMPAT")):
        if not image.dll_flags & flag:
            yield f"{name} is not set"
    if image.flags & peimage.RELOCATIONS_STRIPPED or ".reloc" not in sections(image):
        yield "it cannot be loaded at another address"


def sections(image):
    return {section.name: section for section in image.sections}


def memory(image):
    both = peimage.SECTION_IS_WRITTEN | peimage.SECTION_EXECUTES
    for section in image.sections:
        if section.flags & both == both:
            yield f"section {section.name} is written and executed"
    found = sections(image)
    for name in READ_ONLY_SECTIONS:
        if name not in found:
            if name not in OPTIONAL_SECTIONS:
                yield f"it has no section {name}"
        elif found[name].flags & peimage.SECTION_IS_WRITTEN:
            yield f"section {name} is writable"
    # The loader finds the addresses to make writable through this entry.
    address, size = image.directories[peimage.IMPORT_ADDRESSES]
    holder = next((section.name for section in image.sections
                   if section.address <= address
                   and address + size <= section.address + section.virtual_size), None)
    if not size or holder not in (".idata", ".rdata"):
        yield "its directory does not have the import addresses"


def imports(image, allowed):
    found = image.imported_libraries()
    if not found:
        yield "no import was recognised"
    for name in found:
        if name not in allowed:
            yield f"it imports {name}"


def load_configuration(image, flags):
    address, size = image.directories[peimage.LOAD_CONFIGURATION]
    if not address:
        yield "it has no load configuration"
        return
    if image.number("I", address) != size or size < 96:
        yield f"the load configuration's size is {image.number('I', address)}, its entry's {size}"
    if (found := image.number("H", address + 0x4E)) != flags:
        yield f"DependentLoadFlags are {found:#x}, not {flags:#x}"
    cookie = image.number("Q", address + 0x58) - image.base
    if image.number("Q", cookie) != LOADER_REPLACES_THIS:
        yield "the loader would not replace the guard of the stack"
    elif guard_reads(image, cookie, address + 0x58) < FEWEST_GUARDED_FUNCTIONS:
        yield "the load configuration's cookie is not the guard of the stack"


def references(image, instruction, targets):
    """Number of instructions, given as a pattern, whose relative operand is one of the targets."""
    code = sections(image)[".text"]
    raw = image.bytes[code.place:code.place + code.size]
    return sum(1 for match in re.finditer(instruction + rb"(?=(....))", raw, re.DOTALL)
               if code.address + match.end() + 4 + struct.unpack("<i", match[1])[0] in targets)


def guard_reads(image, cookie, except_for):
    """Number of reads of the cookie, or of a place with its address, into a 64-bit register."""
    targets = {cookie}
    pointer = struct.pack("<Q", image.base + cookie)
    for section in image.sections:
        raw = image.bytes[section.place:section.place + section.size]
        targets |= {section.address + match.start() for match in re.finditer(re.escape(pointer), raw)}
    return references(image, rb"[\x48\x4C]\x8B[\x05\x0D\x15\x1D\x25\x2D\x35\x3D]",
                      targets - {except_for})


def stack_protector(image):
    code = sections(image)[".text"]
    place = image.bytes.find(FAILED_GUARD, code.place, code.place + code.size)
    if place < 0:
        yield "no function is guarded"
        return
    calls = references(image, rb"\xE8", {code.address + place - code.place})
    print(f"{calls} functions are guarded")
    if calls < FEWEST_GUARDED_FUNCTIONS:
        yield f"only {calls} functions are guarded"


def unwinding(image):
    address, size = image.directories[peimage.EXCEPTIONS]
    functions = {struct.unpack_from("<II", image.bytes, image.place(entry))
                 for entry in range(address, address + size, 12)}
    covered = sum(end - start for start, end in functions)
    share = covered / sections(image)[".text"].virtual_size
    print(f"{100 * share:.1f} % of the code has unwinding tables")
    if share < SMALLEST_UNWINDING_SHARE:
        yield f"only {100 * share:.1f} % of the code has unwinding tables"


def version(image, expected):
    resource = image.resource(peimage.VERSION_RESOURCE)
    fixed = resource.find(struct.pack("<I", 0xFEEF04BD))
    if fixed < 0:
        yield "it has no version resource"
        return
    high, low = struct.unpack_from("<II", resource, fixed + 8)
    found = f"{high >> 16}.{high & 0xFFFF}.{low >> 16}"
    if found != expected:
        yield f"its file version is {found}, not {expected}"
    for key in ("FileDescription", "OriginalFilename", "ProductName"):
        if (key + "\0").encode("utf-16-le") not in resource:
            yield f"its version resource does not tell {key}"


def checksum(image):
    """Sums all bytes except the checksum, to detect a step after linking that did not update it."""
    raw = bytearray(image.bytes) + bytes(len(image.bytes) % 2)
    raw[image.checksum_place:image.checksum_place + 4] = bytes(4)
    total = sum(word for (word,) in struct.iter_unpack("<H", raw))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    if image.checksum != total + len(image.bytes):
        yield "its checksum is wrong"


def reproducible(image, source_folder):
    if image.time:
        yield f"it carries the time of its linking, {image.time}"
    debug, size = image.directories[peimage.DEBUG]
    if any(image.number("I", entry + 4) for entry in range(debug, debug + size, 28)):
        yield "its debug directory carries a time"
    exports, _ = image.directories[peimage.EXPORTS]
    if exports and image.number("I", exports + 4):
        yield "its export directory carries a time"
    if source_folder.encode() in image.bytes:
        yield f"the file contains the path of its build folder, {source_folder}"


def main():
    expected_version, source_folder, flags, libraries, path = sys.argv[1:]
    image = peimage.Image(path)
    faults = [*address_space(image), *memory(image), *imports(image, libraries.split(",")),
              *load_configuration(image, int(flags, 0)), *stack_protector(image), *unwinding(image),
              *version(image, expected_version), *checksum(image),
              *reproducible(image, source_folder)]
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
