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
LOADER_REPLACES_THIS = 0x00002B992DDFA232
# Only the loader writes to them, and it changes their protection for that.
READ_ONLY_SECTIONS = (".rdata", ".idata", ".CRT", ".rsrc")
# Newer versions of GNU ld place it in .rdata.
OPTIONAL_SECTIONS = (".CRT",)


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
    imports_section = found.get(".idata")
    if imports_section and not (
            imports_section.address <= address
            and address + size <= imports_section.address + imports_section.virtual_size and size):
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
    if cookie != image.symbols().get("__stack_chk_guard"):
        yield "the load configuration's cookie is not the guard of the stack"
    elif image.number("Q", cookie) != LOADER_REPLACES_THIS:
        yield "the loader would not replace the guard of the stack"


def stack_protector(image):
    target = image.symbols().get("__stack_chk_fail")
    if target is None:
        yield "no function is guarded"
        return
    code = sections(image)[".text"]
    raw = image.bytes[code.place:code.place + code.size]
    calls = sum(1 for match in re.finditer(rb"\xE8(?=(....))", raw, re.DOTALL)
                if code.address + match.start() + 5
                + struct.unpack("<i", match[1])[0] == target)
    print(f"{calls} functions are guarded")
    if calls < FEWEST_GUARDED_FUNCTIONS:
        yield f"only {calls} functions are guarded"


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
    exports, _ = image.directories[peimage.EXPORTS]
    if exports and image.number("I", exports + 4):
        yield "its export directory carries a time"
    if source_folder.encode() in image.bytes:
        yield f"the file contains the path of its build folder, {source_folder}"


def main():
    expected_version, source_folder, flags, libraries, path = sys.argv[1:]
    image = peimage.Image(path)
    faults = [*address_space(image), *memory(image), *imports(image, libraries.split(",")),
              *load_configuration(image, int(flags, 0)), *stack_protector(image),
              *version(image, expected_version), *checksum(image),
              *reproducible(image, source_folder)]
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
