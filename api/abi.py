#!/usr/bin/env python3
"""Lists the binary interface of the public C headers, and compares it with that of the last release.

Usage: abi.py check COMPILER [OPTION...]   exit code 1 if programs of the last release could break
       abi.py record COMPILER...           writes the record of the version in quenra_version.h

A record, abi-VERSION.txt, has one line for each function, constant, type and structure member. The
compiler computes numbers, sizes and offsets; it may be one for another system, as no program runs. With
the major version of the record, nothing may be removed or changed; with its minor version, nothing added.
Names of arguments, function bodies and include/quenra.hpp are not part of the binary interface.
"""

from __future__ import annotations

import pathlib
import re
import subprocess
import sys
import tempfile

FOLDER = pathlib.Path(__file__).resolve().parent
ROOT = FOLDER.parent
INCLUDE = ROOT / "include"
HEADERS = ("quenra.h", "quenra_routing.h")
# The version differs between releases, and annotations concern the compiler only.
LEFT_OUT = {"quenra_version.h", "quenra_annotations.h"}

# Ids and bits are easier to read in hexadecimal.
FIRST_HEXADECIMAL = 1 << 20

# A constant whose value is read from the assembly code, where 0 can be a directive of its own.
PROBE = "const long long probe{index} = (long long)({expression});\n"
PROBE_VALUE = re.compile(r"^probe(\d+):\n\s*(?:\.quad\s+(-?\d+)|\.(?:zero|space)\s+8)\b", re.M)


class Fault(Exception):
    """The headers cannot be listed, or a record is missing."""


def run(arguments: list[str], source: str) -> str:
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "probe.c"
        path.write_text(source)
        command = [*arguments, "-std=c11", f"-I{INCLUDE}", str(path), "-o", "-"]
        done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        raise Fault(f"{' '.join(command)} failed:\n{done.stderr}")
    return done.stdout


def includes() -> str:
    return "".join(f'#include "{header}"\n' for header in HEADERS)


# ---- The text of the headers ----


def text_of_headers(compiler: list[str]) -> str:
    """The preprocessed text of our headers alone, with their #define lines."""
    ours, lines = False, []
    for line in run([*compiler, "-E", "-dD"], includes()).splitlines():
        if match := re.match(r'#(?:line)? *\d+ "([^"]*)"', line):
            path = pathlib.Path(match[1])
            ours = path.parent == INCLUDE and path.name not in LEFT_OUT
        elif ours:
            lines.append(line)
    return "\n".join(lines)


def without_bodies(text: str) -> str:
    """Replaces the bodies of inline functions by a semicolon."""
    result, depth = "", 0
    in_function = False
    for token in re.split(r"([{};])", text):
        if token == "{" and depth == 0:
            in_function = result.rstrip().endswith(")")
        if token == "{":
            depth += 1
        if not (in_function and depth > 0):
            result += token
        if token == "}":
            depth -= 1
            if depth == 0 and in_function:
                result, in_function = result.rstrip() + ";", False
    return result


def number_text(number: str) -> str:
    return f"0x{int(number):08X}" if int(number) >= FIRST_HEXADECIMAL else number


def squeeze(text: str) -> str:
    """One space between words, none before a star or a bracket."""
    text = re.sub(r"\b_Bool\b", "bool", " ".join(text.split()))
    text = re.sub(r" *([(),]) *", r"\1", re.sub(r" *\*", "*", text)).replace(",", ", ")
    return re.sub(r"\*(?=\w)", "* ", text).strip()


def parameter_type(parameter: str) -> str:
    """The type of a parameter without the parameter's name."""
    parameter = squeeze(parameter)
    words = re.match(r"^(.*[ *])(\w+)$", parameter)
    named = words and words[1].strip() not in ("struct", "enum", "const", "unsigned")
    return words[1].strip() if named else parameter


def parameters(text: str) -> str:
    return ", ".join(parameter_type(parameter) for parameter in text.split(","))


def declarations(text: str):
    """The declarations outside of braces, without preprocessor lines."""
    code = "\n".join(line for line in text.splitlines() if not line.startswith("#"))
    depth, current = 0, ""
    for character in without_bodies(code):
        depth += (character == "{") - (character == "}")
        if character == ";" and depth == 0:
            yield current.strip()
            current = ""
        else:
            current += character


def members(body: str):
    """The name and the type of each member of a structure."""
    for member in filter(None, (part.strip() for part in body.split(";"))):
        if match := re.match(r"(.*)\( *\* *(\w+) *\) *\((.*)\)$", member, re.S):
            yield match[2], f"{squeeze(match[1])} (*)({parameters(match[3])})"
        else:
            match = re.match(r"(.*[\s*])(\w+)$", member, re.S)
            yield match[2], squeeze(match[1])


# ---- The listing ----


class Listing:
    """The lines of the interface, of which some wait for numbers of the compiler."""

    def __init__(self):
        self.lines: dict[str, str] = {}
        self.expressions: list[tuple[str, str, list[str]]] = []

    def add(self, key: str, value: str):
        if self.lines.get(key, value) != value:
            raise Fault(f"'{key}' is declared twice: {self.lines[key]}; {value}")
        self.lines[key] = value

    def compute(self, key: str, form: str, *expressions: str):
        """A line whose value is `form` with the values of the expressions."""
        self.expressions.append((key, form, list(expressions)))

    def finish(self, compiler: list[str]) -> dict[str, str]:
        source = includes() + "#include <stddef.h>\n"
        index = 0
        for _, _, expressions in self.expressions:
            for expression in expressions:
                source += PROBE.format(index=index, expression=expression)
                index += 1
        numbers = {number: value or "0"
                   for number, value in PROBE_VALUE.findall(run([*compiler, "-S", "-w"], source))}
        if len(numbers) != index:
            raise Fault(f"the compiler computed {len(numbers)} of {index} numbers")
        index = 0
        for key, form, expressions in self.expressions:
            values = [number_text(numbers[str(index + offset)]) for offset in range(len(expressions))]
            self.add(key, form.format(*values))
            index += len(expressions)
        return dict(sorted(self.lines.items()))


def list_declaration(declaration: str, listing: Listing):
    if match := re.match(r"enum (\w+)\s*\{(.*)\}$", declaration, re.S):
        listing.compute(f"enumeration {match[1]}", "{} bytes", f"sizeof(enum {match[1]})")
        for name in re.findall(r"(\w+)\s*=", match[2]):
            listing.compute(f"constant {name}", "{}", name)
    elif match := re.match(r"typedef struct (\w+)\s*\{(.*)\}\s*(\w+)$", declaration, re.S):
        name = match[3]
        listing.compute(f"structure {name}", "{} bytes, aligned to {}", f"sizeof({name})", f"_Alignof({name})")
        for member, kind in members(match[2]):
            listing.compute(f"member {name}.{member}", f"{kind}, {{}} bytes at {{}}",
                            f"sizeof((({name}*)0)->{member})", f"offsetof({name}, {member})")
    elif match := re.match(r"typedef struct (\w+) (\w+)$", declaration):
        listing.add(f"type {match[2]}", "opaque structure")
    elif match := re.match(r"typedef (.*)\(\s*\*\s*(\w+)\)\s*\((.*)\)$", declaration, re.S):
        listing.add(f"type {match[2]}", f"{squeeze(match[1])} (*)({parameters(match[3])})")
    elif match := re.match(r"(static inline )?(.*?[\s*])(\w+)\s*\((.*)\)$", declaration, re.S):
        if not match[2].strip().startswith("_Static_assert") and match[3] != "_Static_assert":
            kind = "inline function" if match[1] else "function"
            listing.add(f"{kind} {match[3]}", f"{squeeze(match[2])} ({parameters(match[4])})")
    elif not declaration.startswith("_Static_assert"):
        raise Fault(f"no rule for the declaration: {declaration}")


def list_macros(compiler: list[str], text: str, listing: Listing):
    for name, arguments in re.findall(r"^#define (\w+)\(([^)]*)\)", text, re.M):
        listing.add(f"macro {name}", f"({squeeze(arguments)})")
    names = re.findall(r"^#define (\w+) \S", text, re.M)
    expansions = run([*compiler, "-E", "-P"],
                     includes() + "".join(f'@@"{name}" {name}\n' for name in names))
    for name, expansion in re.findall(r'^@@ ?"(\w+)" (.*)$', expansions, re.M):
        if expansion.startswith('"'):
            listing.add(f"text {name}", expansion)
        else:
            listing.compute(f"constant {name}", "{}", name)


def interface(compiler: list[str]) -> dict[str, str]:
    """The lines of the interface: key and value."""
    text = text_of_headers(compiler)
    listing = Listing()
    for declaration in declarations(text):
        list_declaration(declaration, listing)
    list_macros(compiler, text, listing)
    return listing.finish(compiler)


# ---- Records ----


def header_version() -> tuple[int, ...]:
    text = (INCLUDE / "quenra_version.h").read_text()
    return tuple(int(re.search(rf"^#define QUENRA_VERSION_{part} (\d+)$", text, re.M)[1])
                 for part in ("MAJOR", "MINOR", "PATCH"))


def text_of(version: tuple[int, ...]) -> str:
    return ".".join(map(str, version))


def records() -> dict[tuple[int, ...], pathlib.Path]:
    return {tuple(map(int, path.stem.removeprefix("abi-").split("."))): path
            for path in FOLDER.glob("abi-*.txt")}


def read_record(path: pathlib.Path) -> dict[str, str]:
    lines = [line for line in path.read_text().splitlines() if line and not line.startswith("#")]
    return dict(line.split(": ", 1) for line in lines)


def compare(recorded: dict[str, str], present: dict[str, str], record: tuple[int, ...],
            version: tuple[int, ...]) -> tuple[list[str], list[str]]:
    """The differences that the version permits, and those that it does not."""
    breaking = [f"removed: {key}: {value}" for key, value in recorded.items() if key not in present]
    breaking += [f"changed: {key}: {value}; now: {present[key]}" for key, value in recorded.items()
                 if present.get(key, value) != value]
    added = [f"added: {key}: {value}" for key, value in present.items() if key not in recorded]
    refused = (breaking if version[0] <= record[0] else []) + (added if version[:2] <= record[:2] else [])
    return [line for line in breaking + added if line not in refused], refused


def check(compiler: list[str]) -> int:
    versions = sorted(records())
    if not versions:
        raise Fault(f"there is no record in {FOLDER}")
    last, version = versions[-1], header_version()
    recorded, present = read_record(records()[last]), interface(compiler)
    permitted, refused = compare(recorded, present, last, version)
    for line in permitted:
        print(f"permitted: {line}")
    for line in refused:
        print(f"not permitted in {text_of(version)}: {line}")
    print(f"{len(present)} entries; {len(recorded)} in {records()[last].name}, {len(refused)} differences that "
          f"{text_of(version)} does not permit")
    if refused:
        print("A change or removal breaks programs: restore the interface, or raise the major version. An "
              f"addition needs a new minor version; before {text_of(last)} is released, record it with "
              "./dev generate --abi")
    return 1 if refused else 0


def record(compilers: list[str]) -> int:
    version = header_version()
    listings = [interface([compiler]) for compiler in compilers]
    if any(listing != listings[0] for listing in listings):
        raise Fault(f"the interface differs between {' and '.join(compilers)}")
    older = [known for known in sorted(records()) if known < version]
    if older:
        _, refused = compare(read_record(records()[older[-1]]), listings[0], older[-1], version)
        if refused:
            raise Fault(f"{text_of(version)} does not permit, after {text_of(older[-1])}:\n" + "\n".join(refused))
    path = FOLDER / f"abi-{text_of(version)}.txt"
    path.write_text(f"# The binary interface of quenra {text_of(version)}, written by ./dev generate --abi.\n"
                    "# docs/compatibility.md describes the promise.\n\n"
                    + "".join(f"{key}: {value}\n" for key, value in listings[0].items()))
    print(f"wrote {path.relative_to(ROOT)}: {len(listings[0])} entries")
    return 0


def main() -> int:
    commands = {"check": check, "record": record}
    if len(sys.argv) < 3 or sys.argv[1] not in commands:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        return commands[sys.argv[1]](sys.argv[2:])
    except Fault as fault:
        print(fault, file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
