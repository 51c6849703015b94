#!/usr/bin/env python3
"""Reports the line and branch coverage of the library's own source by the native tests, per folder.

Usage: report.py ROOT TRACE [--missing]

TRACE is the output of `llvm-cov export`. Exits with 1 if the coverage is below the limits, if
unreached.txt lacks an unexecuted line, or if it lists an executed one. --missing prints each
unexecuted line and branch, including the listed ones.
"""

import argparse
import collections
import dataclasses
import json
import os
import pathlib
import sys

LIBRARY = ("source/user/", "zoapal/protons/", "codegen/apalcodegen/", "zosmbios/", "zoarkra/",
           "routingadaptorinterface/")
FEWEST_LINES, FEWEST_BRANCHES = 98.0, 92.0  # of a hundred


@dataclasses.dataclass
class File:
    lines: dict = dataclasses.field(default_factory=dict)  # {line: executions}
    branches: dict = dataclasses.field(default_factory=dict)  # {(line, ..., outcome): taken}

    def missed_runs(self):
        """[(first line, last line)] of each run of consecutive unexecuted lines."""
        runs, before = [], None
        for line, count in sorted(self.lines.items()):
            if count == 0 and before == 0:
                runs[-1] = (runs[-1][0], line)
            elif count == 0:
                runs.append((line, line))
            before = count
        return runs

    def missed_branches(self):
        """The executed lines with a branch outcome that did not occur."""
        return sorted({place[0] for place, count in self.branches.items()
                       if count == 0 and self.lines.get(place[0], 1) != 0})


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


def line_count(segments, before):
    """Executions of a line in which these segments begin; None for a line without code.

    A segment is (line, column, count, has a count, begins a region, is a gap between statements).
    """
    entries = [segment for segment in segments if segment[3] and segment[4] and not segment[5]]
    skipped = segments and not segments[0][3] and segments[0][4]
    if skipped or not (entries or (before and before[3])):
        return None
    return max([segment[2] for segment in entries] + ([before[2]] if before else []))


def count_lines(segments):
    by_line, lines, before = collections.defaultdict(list), {}, None
    for segment in segments:
        by_line[segment[0]].append(segment)
    for line in range(segments[0][0], segments[-1][0] + 1) if segments else ():
        count = line_count(by_line[line], before)
        if count is not None:
            lines[line] = count
        before = by_line[line][-1] if by_line[line] else before
    return lines


def count_branches(branches):
    """Merges the branches of all instances of a template."""
    counts = collections.Counter()
    for *place, when_true, when_false, _, _, _ in branches:
        counts[*place, True] += when_true
        counts[*place, False] += when_false
    return dict(counts)


def read_trace(trace, root):
    """{path in the project: File} for the library's own source."""
    files = {}
    for entry in trace["data"][0]["files"]:
        name = os.path.normpath(entry["filename"]).removeprefix(f"{root}/")
        if name.startswith(LIBRARY):
            files[name] = File(count_lines(entry["segments"]), count_branches(entry["branches"]))
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
            raise ValueError(f"unreached.txt:{number}: lines are told by two rows: - and the reason")
    return entries


def find_missed(files, sources):
    """[(path, first line, last line, text of the first)]"""
    return [(path, first, last, sources[path][first - 1].strip())
            for path, file in sorted(files.items()) for first, last in file.missed_runs()]


def faults_of(total, missed, unreached):
    """Violations, as messages."""
    if total.lines == 0:
        return ["nothing of the library was run"]
    faults = []
    if total.line_share < FEWEST_LINES:
        faults.append(f"fewer than {FEWEST_LINES:g} % of the lines are run")
    if total.branch_share < FEWEST_BRANCHES:
        faults.append(f"fewer than {FEWEST_BRANCHES:g} % of the branches are run")
    places = {(path, text) for path, _, _, text in missed}
    faults += [f"unreached.txt lists what is run or is not there: {path}: {text}"
               for path, text in unreached if (path, text) not in places]
    faults += [f"{path}:{first} is not run, and unreached.txt does not tell why: {text}"
               for path, first, _, text in missed if (path, text) not in unreached]
    return faults


def print_missing(files, sources, missed):
    for path, first, last, text in missed:
        print(f"{path}:{first}-{last}: not run: {text}")
    for path, file in sorted(files.items()):
        for line in file.missed_branches():
            print(f"{path}:{line}: not with every outcome: {sources[path][line - 1].strip()}")


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
    files = read_trace(json.loads(arguments.trace.read_text()), arguments.root)
    sources = {path: (arguments.root / path).read_text().splitlines() for path in files}
    unreached = read_unreached(pathlib.Path(__file__).with_name("unreached.txt").read_text())
    missed = find_missed(files, sources)
    total = print_folders(files)
    if arguments.missing:
        print_missing(files, sources, missed)
    faults = faults_of(total, missed, unreached)
    for fault in faults:
        print(fault)
    print(f"{len(unreached)} places are listed as not to be reached")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
