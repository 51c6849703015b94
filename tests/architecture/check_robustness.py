#!/usr/bin/env python3
"""Checks that every row of docs/robustness.md names a test that exists, and that it has a row for
every export.

Usage: check_robustness.py PROJECT
"""
import pathlib
import re
import sys

TEST = re.compile(r"^TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
NAMED = re.compile(r"`(\w+\.\w+)`\s*\|$")


def rows(page):
    """The rows of the page's tables with their line numbers, without headers and separators."""
    lines = page.splitlines()
    for number, line in enumerate(lines, 1):
        is_head = number < len(lines) and lines[number].startswith("|---")
        if line.startswith("|") and not line.startswith("|---") and not is_head:
            yield number, line


def bounds(page):
    """The rows of the table of bounds, which name no tests: other rows do."""
    section = page.partition("## Bounds")[2].partition("\n## ")[0]
    return set(section.splitlines())


def check(page, tests, exports):
    """The problems of the page, as messages."""
    exempt = bounds(page)
    problems = []
    for number, row in rows(page):
        if row in exempt:
            continue
        named = NAMED.search(row)
        if named is None:
            problems.append(f"line {number}: no test is named")
        elif named[1] not in tests:
            problems.append(f"line {number}: there is no test {named[1]}")
    for export in exports:
        if f"| `{export}` |" not in page:
            problems.append(f"no row for {export}")
    return problems


def tests_of(project):
    """The names of all tests."""
    names = set()
    for source in (project / "tests").rglob("*_test.cpp"):
        names |= {f"{suite}.{name}" for suite, name in TEST.findall(source.read_text())}
    return names


def main(project):
    page = (project / "docs/robustness.md").read_text()
    exports = (project / "tests/architecture/exports.txt").read_text().split()
    problems = check(page, tests_of(project), exports)
    for problem in problems:
        print(f"docs/robustness.md: {problem}")
    print(f"{len(list(rows(page)))} rows, {len(problems)} problems")
    return bool(problems)


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
