#!/usr/bin/env python3
"""Tells how much of the library's own source the native tests run, per folder.

Usage: report.py ROOT TRACE [--missing]

TRACE is what `llvm-cov export -format=lcov` writes. Exit code 1 when less than the limits is run, when
something is not run that unreached.txt does not list, or when it lists something that is run.
--missing shows each place that is not run, the listed ones too.
"""

import argparse
import collections
import dataclasses
import pathlib
import sys

LIBRARY = ("source/user/", "zoapal/protons/", "codegen/apalcodegen/", "zosmbios/", "zoarkra/",
           "routingadaptorinterface/")
FEWEST_LINES, FEWEST_BRANCHES = 98.0, 92.0  # of a hundred


@dataclasses.dataclass
class File:
    lines: dict = dataclasses.field(default_factory=dict)  # {line: executions}
    branches: dict = dataclasses.field(default_factory=dict)  # {(line, block, branch): taken}

    def missed(self):
        """{line: what was not run there}"""
        found = collections.defaultdict(list)
        for line, count in self.lines.items():
            if count == 0:
                found[line].append("line")
        for (line, *_), count in self.branches.items():
            if count == 0 and self.lines.get(line, 1) != 0:
                found[line].append("branch")
        return dict(sorted(found.items()))


@dataclasses.dataclass
class Sum:
    lines: int = 0
    lines_run: int = 0
    branches: int = 0
    branches_run: int = 0

    def add(self, file):
        self.lines += len(file.lines)
        self.lines_run += sum(count > 0 for count in file.lines.values())
        self.branches += len(file.branches)
        self.branches_run += sum(count > 0 for count in file.branches.values())

    @property
    def line_share(self):
        return 100 * self.lines_run / self.lines if self.lines else 100.0

    @property
    def branch_share(self):
        return 100 * self.branches_run / self.branches if self.branches else 100.0

    def __str__(self):
        return (f"{self.lines_run:6} of {self.lines:5} lines {self.line_share:6.2f} %"
                f"{self.branches_run:7} of {self.branches:5} branches {self.branch_share:6.2f} %")


def read_trace(trace, root):
    """{path in the project: File} of the library's own source."""
    files, file = {}, None
    for record in trace.splitlines():
        kind, _, value = record.partition(":")
        if kind == "SF":
            name = value.removeprefix(f"{root}/")
            file = files.setdefault(name, File()) if name.startswith(LIBRARY) else None
        elif file is not None and kind == "DA":
            line, count = map(int, value.split(",")[:2])
            file.lines[line] = file.lines.get(line, 0) + count
        elif file is not None and kind == "BRDA":
            *place, taken = value.split(",")
            place = tuple(map(int, place))
            file.branches[place] = file.branches.get(place, 0) + (int(taken) if taken != "-" else 0)
    return files


def read_unreached(text):
    """{(path, text of the line): reason}"""
    entries, path, line = {}, "", ""
    for number, row in enumerate(text.splitlines(), 1):
        if not row.strip() or row.startswith("#"):
            continue
        if row.startswith("- "):
            line = row[2:].strip()
        elif row.startswith("  ") and line:
            entries[path, line] = row.strip()
            line = ""
        elif row[0] not in "- ":
            path = row.strip()
        else:
            raise ValueError(f"unreached.txt:{number}: a place is two lines: - and the reason")
    return entries


def find_missed(files, sources):
    """[(path, line, text, what)]"""
    return [(path, line, sources[path][line - 1].strip(), what)
            for path, file in sorted(files.items()) for line, what in file.missed().items()]


def faults_of(total, missed, unreached):
    """What is wrong, as texts."""
    if total.lines == 0:
        return ["nothing of the library was run"]
    faults = []
    if total.line_share < FEWEST_LINES:
        faults.append(f"fewer than {FEWEST_LINES:g} % of the lines are run")
    if total.branch_share < FEWEST_BRANCHES:
        faults.append(f"fewer than {FEWEST_BRANCHES:g} % of the branches are run")
    places = {(path, text) for path, _, text, _ in missed}
    faults += [f"unreached.txt lists what is run or is not there: {path}: {text}"
               for path, text in unreached if (path, text) not in places]
    faults += [f"{path}:{line} is not run ({', '.join(what)}), and unreached.txt does not tell why:"
               f" {text}" for path, line, text, what in missed if (path, text) not in unreached]
    return faults


def print_folders(files):
    folders, total = collections.defaultdict(Sum), Sum()
    for path, file in files.items():
        folders[path.rpartition("/")[0]].add(file)
        total.add(file)
    width = max(map(len, [*folders, "together"]))
    for folder in sorted(folders):
        print(f"{folder:{width}} {folders[folder]}")
    print(f"{'together':{width}} {total}")
    return total


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("trace", type=pathlib.Path)
    parser.add_argument("--missing", action="store_true")
    arguments = parser.parse_args()
    files = read_trace(arguments.trace.read_text(), arguments.root)
    sources = {path: (arguments.root / path).read_text().splitlines() for path in files}
    unreached = read_unreached(pathlib.Path(__file__).with_name("unreached.txt").read_text())
    missed = find_missed(files, sources)
    total = print_folders(files)
    if arguments.missing:
        for path, line, text, what in missed:
            print(f"{path}:{line}: {', '.join(what)}: {text}")
    faults = faults_of(total, missed, unreached)
    for fault in faults:
        print(fault)
    print(f"{len(unreached)} places are listed as not to be reached")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
