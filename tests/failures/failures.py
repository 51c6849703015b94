#!/usr/bin/env python3
"""Lists, at the end of a long run, the tests that failed and the ends of their outputs.

    failures.py REPORT…

Each REPORT is the JUnit file of one run of ctest, named after its preset: native.xml. Exits with 1
if a test failed or a report cannot be read, with 0 otherwise. A failure is printed thousands of
lines before the end of a run, and readers start at the end of a log.
"""

import pathlib
import sys
import xml.etree.ElementTree as xml

LINES_OF_A_TEST = 40
TESTS_IN_FULL = 10


def has_failed(test):
    """True if a test failed, or if it did not run although it did not request to be skipped."""
    if test.get("status") != "notrun":
        return test.get("status") == "fail"
    return not test.find("skipped").get("message").startswith("SKIP_")


def read_failures(text):
    """The names and outputs of the tests that failed."""
    return [(test.get("name"), test.findtext("system-out") or "")
            for test in xml.fromstring(text).iter("testcase") if has_failed(test)]


def tell(run, failures):
    """The lines of output for one run."""
    lines = [f"{run}: {len(failures)} failed" if failures else f"{run}: every test passed"]
    for name, output in failures[:TESTS_IN_FULL]:
        lines.append(f"  {name}")
        lines += [f"    {line}" for line in output.splitlines()[-LINES_OF_A_TEST:]]
    return lines + [f"  {name}" for name, _ in failures[TESTS_IN_FULL:]]


def main(reports):
    failed = not reports
    for report in map(pathlib.Path, reports):
        try:
            failures = read_failures(report.read_text(encoding="utf-8", errors="replace"))
            lines = tell(report.stem, failures)
            failed |= bool(failures)
        except (OSError, xml.ParseError) as error:
            lines = [f"{report.stem}: no report: {error}"]
            failed = True
        print("\n".join(lines))
    return int(failed)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
