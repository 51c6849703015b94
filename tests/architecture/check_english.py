#!/usr/bin/env python3
"""Checks the English of comments, headings and test names.

Usage: check_english.py ROOT

A rule refuses comments, headings and test names that begin with a question word without a question, and
homely words that have a trade term. `english: allow` in the same line silences a finding. Prints each
finding; exit code 1 if there is one.
"""

import pathlib
import re
import sys

QUESTION = re.compile(r"(What|Whoever|Who|Whom|Whether)\b(?!.*\?)")
HOMELY = re.compile(r"\b(told|whoever|nobody|anew|one that is none)\b", re.IGNORECASE)
SILENCE = "english: allow"

SOURCE_SUFFIXES = {".h", ".hpp", ".c", ".cpp"}
SCRIPT_SUFFIXES = {".py", ".cmake", ".sh"}
SCRIPT_NAMES = {"CMakeLists.txt", "dev"}
# Texts of others, and the document that names the words.
SKIPPED = {"build", ".git", "corpus", "data"}

TEST_NAME = re.compile(r"^TEST(?:_[FP])?\(\w+, *(\w+)\)|^\s*def (test_\w+)\(")
QUESTION_IN_NAME = re.compile(
    r"(?:^|_)(What|Whoever|Who|Whom|Whether)(?=[A-Z])|^test_(what|whoever|who|whom|whether)_")
HOMELY_IN_NAME = re.compile(
    r"Told|Whoever|Nobod(?:y|ies)|Anew|ThatIsNone|_(?:told|whoever|nobody|anew|that_is_none)(?=_|$)")


def comment_of_source(line, state):
    """The comment of a line of C or C++. `state` holds whether a block comment is open."""
    if state["block"]:
        text, end, _ = line.partition("*/")
        state["block"] = not end
        return text.strip().lstrip("*").strip()
    code = re.sub(r'"(?:\\.|[^"\\])*"', '""', line)
    block, slashes = code.find("/*"), code.find("//")
    if block >= 0 and (slashes < 0 or block < slashes):
        text, end, _ = code[block + 2:].partition("*/")
        state["block"] = not end
        return text.strip().lstrip("*").strip()
    return code[slashes + 2:].strip() if slashes >= 0 else None


def comment_of_script(line):
    match = re.match(r"\s*#(?!!)\s*(.*)", line)
    return match.group(1) if match else None


def heading_of_page(line):
    match = re.match(r"#+\s+(.*)", line)
    return match.group(1) if match else None


def kind_of(path):
    if path.suffix in SOURCE_SUFFIXES:
        return "source"
    if path.suffix in SCRIPT_SUFFIXES or path.name in SCRIPT_NAMES:
        return "script"
    return "page" if path.suffix == ".md" else None


def findings_in(path, text):
    """The line number and the reason of each finding."""
    kind = kind_of(path)
    state = {"block": False}
    continues = False
    for number, line in enumerate(text.splitlines(), 1):
        if kind == "source":
            comment = comment_of_source(line, state)
        elif kind == "script":
            comment = comment_of_script(line)
        else:
            comment = heading_of_page(line)
        match = TEST_NAME.match(line) if kind in ("source", "script") else None
        name = match and (match[1] or match[2])
        if SILENCE not in line:
            if comment and not continues and QUESTION.match(comment):
                yield number, f"begins with '{comment.split()[0]}'"
            if comment and (word := HOMELY.search(comment)):
                yield number, f"'{word.group(0)}' has a trade term"
            if name and (word := QUESTION_IN_NAME.search(name) or HOMELY_IN_NAME.search(name)):
                found = word[0].removeprefix("test_").strip("_")
                yield number, f"'{found}' in a test name"
        # A sentence may continue on the next line with any word.
        continues = bool(comment) and not comment.endswith((".", ":", ";", "?", "!"))


def files_of(root):
    for path in sorted(root.rglob("*")):
        relative = path.relative_to(root)
        if path.is_file() and kind_of(path) and not SKIPPED & set(relative.parts):
            yield path


def main():
    root = pathlib.Path(sys.argv[1])
    count = 0
    for path in files_of(root):
        for number, reason in findings_in(path, path.read_text(errors="replace")):
            print(f"{path.relative_to(root)}:{number}: {reason}")
            count += 1
    print(f"{count} findings")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main())
