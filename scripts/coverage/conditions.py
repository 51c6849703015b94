#!/usr/bin/env python3
"""Reports the condition coverage (MC/DC) of the five cores.

Usage: conditions.py GCOV ROOT BUILD_FOLDER

GCOV is the gcov of the compiler, version 14 or newer; BUILD_FOLDER has the notes and counters of a build
with -fcondition-coverage whose tests have run.

A condition is one operand of an expression of && and ||, or a test without them. Each has two outcomes; an
outcome is covered when a test shows that it alone decides the expression. A comment in the line of a
condition, or in the comment lines directly above, gives the reason why an outcome cannot occur:

    // condition 2 never false: REASON

The number counts the conditions of the line. Exit code 1 if an outcome without a reason is missing, or if a
reason names an outcome that is covered or does not exist.
"""

import collections
import dataclasses
import fnmatch
import json
import os
import pathlib
import re
import subprocess
import sys

# Patterns of paths; a star matches no slash. The kernels for vector instructions are checked
# against the plain ones, and run on few processors.
CORES = {
    "firmware image parser": ("source/user/firmware/*.cpp", "source/user/firmware/*.h",
                              "source/user/firmware/decoding/plain*.cpp",
                              "source/user/firmware/decoding/selection.cpp"),
    "SMBIOS provider": ("zosmbios/*.cpp", "zosmbios/*.h"),
    "merge rule": ("zoapal/protons/status/*.cpp", "zoapal/protons/status/*.h",
                   "routingadaptorinterface/clientstatus.cpp",
                   "routingadaptorinterface/clientstatus.h"),
    "attribute tables": ("source/user/attributes/*.cpp", "source/user/attributes/*.h",
                         "source/user/machine/*.cpp", "source/user/machine/*.h"),
    "marshalling": ("codegen/apalcodegen/*.cpp", "codegen/apalcodegen/*.h",
                    "zoapal/protons/driver/windowsu/transfer.cpp",
                    "zoapal/protons/driver/windowsu/transfer.h",
                    "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.cpp",
                    "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"),
}

NOT_EXECUTED = "cannot open data file, assuming not executed"
REASON = re.compile(r"// condition (\d+) never (true|false): (\S.*)")


@dataclasses.dataclass(frozen=True, order=True)
class Outcome:
    path: str
    line: int
    condition: int  # of the line, from 1
    value: str  # "true" or "false"

    def __str__(self):
        return f"{self.path}:{self.line}: condition {self.condition} never {self.value}"


def core_of(path, cores):
    for core, patterns in cores.items():
        # The star of fnmatch also matches a slash.
        if any(fnmatch.fnmatch(path, pattern) and path.count("/") == pattern.count("/")
               for pattern in patterns):
            return core
    return None


def expressions_of(lines):
    """(line, function, [gcov's record of each expression]) for each line with conditions."""
    for line in lines:
        if line.get("conditions"):
            yield line["line_number"], line.get("function_name"), line["conditions"]


def places_of(functions):
    """{name: place in the source}. Instances of a template and copies of a constructor share a place; two
    lambdas of one line do not."""
    return {function["name"]: (function["start_line"], function["start_column"])
            for function in functions}


def merge(documents, root, cores):
    """({Outcome: whether it is covered}, [paths with code]) of all of gcov's documents.

    The expressions of a line are those of one place of the source, in gcov's order. The instances of a
    template and the copies of an inline function in several object files are the same place: an outcome
    that one of them shows counts for all. Instances whose expressions differ in number or size, because
    `if constexpr` removed some, cannot be matched and count separately.
    """
    uncovered = {}  # {(path, line, place, sizes): the outcomes that no instance has shown}
    paths = set()
    for document in documents:
        for file in document["files"]:
            path = relative(file["file"], document["current_working_directory"], root)
            if path is None or core_of(path, cores) is None:
                continue
            paths.add(path)
            places = places_of(file["functions"])
            for line, function, expressions in expressions_of(file["lines"]):
                sizes = tuple(expression["count"] // 2 for expression in expressions)
                missing = set(outcomes_not_covered(expressions))
                key = path, line, places.get(function, (line, 0)), sizes
                uncovered[key] = uncovered.get(key, missing) & missing
    return numbered(uncovered), sorted(paths)


def outcomes_not_covered(expressions):
    before = 1
    for expression in expressions:
        for value in ("true", "false"):
            for term in expression[f"not_covered_{value}"]:
                yield before + term, value
        before += expression["count"] // 2


def numbered(uncovered):
    """{Outcome: whether it is covered}, with the conditions of each line numbered from 1."""
    covered = {}
    used = collections.Counter()
    for (path, line, _, sizes), missing in sorted(uncovered.items()):
        for condition in range(1, sum(sizes) + 1):
            for value in ("true", "false"):
                outcome = Outcome(path, line, used[path, line] + condition, value)
                covered[outcome] = (condition, value) not in missing
        used[path, line] += sum(sizes)
    return covered


def relative(name, folder, root):
    path = pathlib.Path(os.path.normpath(os.path.join(folder, name)))
    return path.relative_to(root).as_posix() if path.is_relative_to(root) else None


def reasons_in(path, text):
    """{Outcome: reason} of the comments of a source."""
    reasons, waiting = {}, []
    for number, line in enumerate(text.splitlines(), 1):
        waiting += REASON.findall(line)
        if not line.lstrip().startswith("//"):
            reasons |= {Outcome(path, number, int(condition), value): reason
                        for condition, value, reason in waiting}
            waiting = []
    return reasons


@dataclasses.dataclass(frozen=True)
class Findings:
    missing: list  # outcomes without a reason that are not covered
    explained: dict  # {Outcome: reason} of those with a reason
    stale: dict  # {Outcome: reason} of reasons at outcomes that are covered or do not exist


def findings(covered, reasons):
    not_covered = sorted(outcome for outcome, is_covered in covered.items() if not is_covered)
    explained = {outcome: reasons[outcome] for outcome in not_covered if outcome in reasons}
    return Findings([outcome for outcome in not_covered if outcome not in reasons], explained,
                    {outcome: reasons[outcome] for outcome in sorted(reasons) if outcome not in explained})


def table(covered, paths, cores):
    """Lines of a table: outcomes covered of all, for each file with conditions, core and all of them."""
    counts = {path: [0, 0] for path in paths}
    for outcome, is_covered in covered.items():
        counts[outcome.path][0] += is_covered
        counts[outcome.path][1] += 1
    for core in cores:
        rows = {path: count for path, count in counts.items() if core_of(path, cores) == core}
        yield row(core, rows.values())
        yield from (row(f"  {path}", [count]) for path, count in rows.items() if count[1])
    yield row("all", counts.values())


def row(name, counts):
    covered, every = (sum(column) for column in zip(*counts))
    return f"{name:<64} {covered:>5} of {every}"


def source_line(root, outcome):
    return (root / outcome.path).read_text().splitlines()[outcome.line - 1].strip()


def unmeasured(root, paths, cores):
    """Patterns that match no file of the source, and files that were not compiled."""
    for pattern in (pattern for patterns in cores.values() for pattern in patterns):
        files = [path.relative_to(root).as_posix() for path in root.glob(pattern)]
        if not files:
            yield f"{pattern}: no such file"
        yield from (f"{path}: not compiled" for path in sorted(files)
                    if path.endswith(".cpp") and path not in paths)


def notes_of(build):
    """The notes of the library and of the tests that ran. Notes of the library without counters are those of
    code that did not run: none of its conditions is covered."""
    for path in sorted(build.glob("**/*.gcno")):
        top = path.relative_to(build).parts[0]
        if top != "googletest" and (top != "tests" or path.with_suffix(".gcda").exists()):
            yield str(path.relative_to(build))


def documents_of(gcov, build):
    notes = list(notes_of(build))
    if not notes:
        raise SystemExit(f"{build} has no notes of a build with -fcondition-coverage")
    done = subprocess.run([gcov, "--json-format", "--stdout", "--conditions", *notes], cwd=build,
                          capture_output=True, text=True)
    faults = [line for line in done.stderr.splitlines() if not line.endswith(NOT_EXECUTED)]
    if done.returncode != 0 or faults:
        raise SystemExit("\n".join([f"{gcov} cannot read the counters; remove {build} and repeat",
                                    *faults]))
    return [json.loads(line) for line in done.stdout.splitlines()]


def main():
    gcov, root, build = sys.argv[1], *(pathlib.Path(folder).resolve() for folder in sys.argv[2:])
    covered, paths = merge(documents_of(gcov, build), root, CORES)
    reasons = {}
    for path in paths:
        reasons |= reasons_in(path, (root / path).read_text())
    found = findings(covered, reasons)

    print(*table(covered, paths, CORES), sep="\n")
    for outcome, reason in found.explained.items():
        print(f"{outcome}: {reason}")
    for outcome in found.missing:
        print(f"MISSING {outcome}, and no comment gives the reason\n    {source_line(root, outcome)}")
    for outcome, reason in found.stale.items():
        print(f"WRONG REASON {outcome}: this outcome is covered or does not exist: {reason}")
    absent = list(unmeasured(root, paths, CORES))
    for reason in absent:
        print(f"NOT MEASURED {reason}")
    return 1 if found.missing or found.stale or absent else 0


if __name__ == "__main__":
    sys.exit(main())
