#!/usr/bin/env python3
"""Checks that the program database (PDB) of an image serves a debugger.

Usage: check_database.py PDBUTIL SYMBOLIZER SOURCE_FOLDER IMAGE DATABASE FUNCTION=FILE...

The image names the database by its file name, identifier and age. Neither contains SOURCE_FOLDER. For
each FUNCTION the database has the function's name, the symbolizer finds FILE and the line of the
definition at its address, and the source has the function there. For a library, FUNCTION may be
`exports=FILE,...`: every exported function, defined in one of the files.
"""

import pathlib
import re
import subprocess
import sys
import uuid

import peimage

CODEVIEW = 2
DEBUG_ENTRY_SIZE = 28


def codeview(image):
    """Identifier, age and file name of the database, as the image names it."""
    address, size = image.directories[peimage.DEBUG]
    for entry in range(address, address + size, DEBUG_ENTRY_SIZE):
        if image.number("I", entry + 12) == CODEVIEW:
            record = image.place(image.number("I", entry + 20))
            length = image.number("I", entry + 16)
            data = image.bytes[record:record + length]
            if data[:4] != b"RSDS":
                raise ValueError("the debug directory has no identifier of a database")
            return (uuid.UUID(bytes_le=data[4:20]), int.from_bytes(data[20:24], "little"),
                    data[24:].rstrip(b"\0").decode("utf-8"))
    raise ValueError("the image names no database")


def output_of(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True,
                          text=True).stdout


def identity(pdbutil, database):
    """Identifier and age of the database, as it states them itself."""
    text = output_of(pdbutil, "dump", "--summary", database)
    guid = re.search(r"GUID: \{([0-9A-F-]+)\}", text)
    age = re.search(r"^\s*Age: (\d+)", text, re.MULTILINE)
    return uuid.UUID(guid[1]), int(age[1])


def identity_faults(image, pdbutil, database):
    identifier, age, name = codeview(image)
    own_identifier, own_age = identity(pdbutil, database)
    if name != database.name:
        yield f"the image names the database {name}, not {database.name}"
    if (identifier, age) != (own_identifier, own_age):
        yield (f"the image names the database {identifier} of age {age}, "
               f"the file is {own_identifier} of age {own_age}")


def path_faults(folder, *files):
    for file in files:
        if str(folder).encode() in file.read_bytes():
            yield f"{file.name} contains the path of its build folder, {folder}"


def procedures(image, pdbutil, database):
    """{name: address} of the functions whose source the database describes."""
    text = output_of(pdbutil, "dump", "--symbols", database)
    found = {}
    for match in re.finditer(r"S_G(?:PROC32|PROC32_ID) \[size = \d+\] `(.+?)`\n(?:.*\n){0,2}?.*addr = (\d{4}):(\d+)",
                             text):
        section = image.sections[int(match[2]) - 1]
        found[match[1].split("(")[0]] = section.address + int(match[3])
    return found


def exported_functions(image):
    directory, _ = image.directories[peimage.EXPORTS]
    count = image.number("I", directory + 24)
    functions, names, ordinals = (image.number("I", directory + place) for place in (28, 32, 36))
    return {image.text(image.number("I", names + 4 * index)):
            image.number("I", functions + 4 * image.number("H", ordinals + 2 * index))
            for index in range(count)}


def places(symbolizer, image_path, addresses):
    """Function, file and line of each address, as a debugger would show it."""
    text = output_of(symbolizer, "--relative-address", "--no-inlines", "--output-style=LLVM",
                     "--functions=linkage", f"--obj={image_path}", *[hex(a) for a in addresses])
    for block in text.strip().split("\n\n"):
        function, place = block.splitlines()[:2]
        file, line, _ = place.rsplit(":", 2)
        yield function, file.replace("\\", "/"), int(line)


def source_fault(root, function, files, file, line):
    """The reason why the function is not defined at that line; nothing if it is."""
    source = next((name for name in files if file.endswith("/" + name)), None)
    if source is None:
        return f"{function} is in {file}, not in {' or '.join(files)}"
    lines = (root / source).read_text().splitlines()
    if not 0 < line <= len(lines):
        return f"{function} is at line {line}, after the end of {source}"
    # The line of a definition is that of its name, or of its brace after a long list of parameters.
    plain = function.rsplit("::", 1)[-1]
    if not any(re.search(rf"\b{re.escape(plain)}\(", text) for text in lines[max(0, line - 6):line]):
        return f"line {line} of {source} does not define {function}"
    return None


def function_faults(image, image_path, tools, database, root, wanted):
    pdbutil, symbolizer = tools
    known = procedures(image, pdbutil, database)
    functions = {}
    for function, files in wanted.items():
        if function == "exports":
            functions |= {name: (address, files) for name, address in exported_functions(image).items()}
        else:
            functions[function] = (known.get(function), files)
    for function, (address, _) in list(functions.items()):
        if function not in known:
            yield f"the database does not know {function}"
            del functions[function]
        elif known[function] != address:
            yield f"the database has {function} at {known[function]:#x}, the image at {address:#x}"
    found = places(symbolizer, image_path, [address for address, _ in functions.values()])
    for (function, (_, files)), (_, file, line) in zip(functions.items(), found, strict=True):
        if fault := source_fault(root, function, files, file, line):
            yield fault
    print(f"{len(functions)} functions found at their lines, of {len(known)} in {database.name}")


def main():
    pdbutil, symbolizer, folder, image_path, database, *functions = sys.argv[1:]
    image_path, database, root = (pathlib.Path(name) for name in (image_path, database, folder))
    image = peimage.Image(image_path)
    wanted = {name: files.split(",") for name, files in (word.split("=") for word in functions)}
    faults = [*identity_faults(image, pdbutil, database), *path_faults(root, image_path, database),
              *function_faults(image, image_path, (pdbutil, symbolizer), database, root, wanted)]
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
