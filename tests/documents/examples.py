"""Finds the code blocks of a page and runs them as a reader does.

The first word after the fence is the language:

  console   commands after a prompt, each with its output, if shown: `$ ` in a shell in a clone,
            `> ` in the simulated machine, as `./dev wine --` runs them. A command without output on
            the page must succeed; one with output must print it
  sh        a script for a shell in a clone, which must succeed
  c, cpp    a program that is compiled for Windows without warnings. It also runs in the simulated
            machine, unless a command on the page runs it. Code without main is compiled as the body
            of a function
  python    a program
  json      one document
  text      anything else

Options follow the language:

  no-run="REASON"   the tests do not run the block
  tested-by="TEST"  another test runs the block, because it needs programs that not every system has
  save=NAME         the block is written to a file of this name, for the commands that follow

A comment before a block is not published:

  <!-- prepare      commands that run before the block, as in a console, and must succeed
  <!-- varies: A; B the numbers in these parts of the output differ from run to run. Later commands of
                    the block use them: `demote 9` after `ticket 9`

In expected output, a line `...` stands for any number of lines. The blocks of a page run in their order,
in one folder with the layout of a clone.

As a program, prints the blocks that the tests do not run, with the reasons.
"""

import dataclasses
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build" / "documents" / "examples"
PROGRAMS = ROOT / "build" / "windows" / "bin"
TIME_LIMIT_SECONDS = 120
LANGUAGES = ("console", "sh", "c", "cpp", "python", "json", "text")
# The tests of the bindings run the programs of their pages, with the library that a binding needs.
TESTED_ELSEWHERE = {
    ("docs/cpp.md", "cpp"): "tests/bindings/cpp/cpp_page.py",
    ("docs/python.md", "python"): "tests/bindings/python/test_guide.py",
    ("docs/csharp.md", "csharp"): "tests/bindings/csharp/package_test.py",
    ("docs/many-racks.md", "promql"): "tests/integration/metrics_test.py",
}
# Languages without a function below: their blocks state a reason.
READ_ONLY = ("bat", "cmake", "csharp", "powershell", "promql", "xml", "toml", "yaml", "ini")

FENCE = re.compile(r"(\s*)(`{3,})([^`]*)$")
OPTION = re.compile(r'([\w-]+)(?:=(?:"([^"]*)"|(\S+)))?')
COMMENT = re.compile(r"<!-- (prepare\n|varies: )(.*?)-->", re.DOTALL)
NUMBER = re.compile(r"[0-9a-f]{16,}|\d+(\\?\.\d+)?")
SHORT, LONG = r"\d+(?:\.\d+)?", "[0-9a-f]+"

PAGES = ["README.md", "CHANGELOG.md", "SECURITY.md",
         *sorted(f"docs/{page.name}" for page in (ROOT / "docs").glob("*.md"))]


class ExampleError(Exception):
    """An example does not do what its page shows. The message names the page and the line."""


@dataclasses.dataclass
class Block:
    page: str
    line: int
    language: str
    options: dict
    text: str
    prepare: str = ""
    varies: tuple = ()

    def error(self, message):
        return ExampleError(f"{self.page}:{self.line}: {message}")


@dataclasses.dataclass
class Command:
    prompt: str
    words: str
    output: list


# ---- Reading ----

def notes_of(lines):
    """The notes in the comments right before a block: prepare, varies."""
    before = "\n".join(lines).rstrip()
    notes = {"prepare": "", "varies": ()}
    while before.endswith("-->"):
        start = before.rindex("<!--")
        match = COMMENT.fullmatch(before[start:])
        if not match:
            break
        if match[1].startswith("varies"):
            notes["varies"] = tuple(part.strip() for part in match[2].split(";"))
        else:
            notes["prepare"] = match[2]
        before = before[:start].rstrip()
    return notes


def blocks_of(page, text):
    """The fenced blocks of a page."""
    lines = text.split("\n")
    at = 0
    while at < len(lines):
        opening = FENCE.match(lines[at])
        if not opening:
            at += 1
            continue
        margin, fence, info = opening.groups()
        end = at + 1
        while lines[end].strip() != fence:
            end += 1
        language, _, rest = info.strip().partition(" ")
        options = {match[1]: match[2] or match[3] or "" for match in OPTION.finditer(rest)}
        body = "\n".join(line.removeprefix(margin) for line in lines[at + 1:end])
        yield Block(page, at + 1, language, options, body + "\n", **notes_of(lines[:at]))
        at = end + 1


def indented_code(text):
    """The numbers of the lines that Markdown shows as code although no fence is around them."""
    fence, inside_comment, inside_list = "", False, False
    previous = ""
    for number, line in enumerate(text.split("\n"), 1):
        if match := FENCE.match(line):
            fence = match[2] if not fence else "" if match[2] == fence else fence
        inside_comment = (inside_comment or line.startswith("<!--")) and "-->" not in line
        if re.match(r"\s*([-*]|\d+\.) ", line):
            inside_list = True
        elif line.strip() and not line.startswith(" "):
            inside_list = False
        if line.startswith("    ") and not (previous or fence or inside_comment or inside_list):
            yield number
        previous = line.strip()


def commands_of(block, text):
    """The commands of a console, each with the output that follows it."""
    commands = []
    for line in text.rstrip("\n").split("\n"):
        prompt, words = line[:2], line[2:]
        if prompt in ("$ ", "> "):
            commands.append(Command(prompt[0], words, []))
        elif commands:
            commands[-1].output.append(line)
        else:
            raise block.error("a console begins with a prompt, `$ ` or `> `")
    for command in commands:
        while command.output and not command.output[-1].strip():
            command.output.pop()
    return commands


def words_of_windows(line):
    """The words of a command line for Windows: quotes group, backslashes are characters. A comment after
    `  #` is for the reader."""
    lexer = shlex.shlex(re.sub(r"\s+# .*$", "", line), posix=True, punctuation_chars=False)
    lexer.whitespace_split = True
    lexer.escape = ""
    lexer.quotes = '"'
    lexer.commenters = ""
    return list(lexer)


def is_run(block):
    options = block.options
    return not {"no-run", "tested-by"} & set(options) and (block.page, block.language) not in TESTED_ELSEWHERE


def check(block):
    """Requires a known language, and a reason for a block that no test runs."""
    if block.language not in LANGUAGES + READ_ONLY:
        raise block.error(f"the language '{block.language}' is none of {', '.join(LANGUAGES + READ_ONLY)}")
    if block.options.get("no-run") == "":
        raise block.error('state the reason: no-run="REASON"')
    if is_run(block) and block.language in READ_ONLY:
        raise block.error(f'no test can run {block.language}: state the reason, no-run="REASON"')


# ---- Comparing ----

def pattern_of(line, varies):
    """A regular expression for a line of expected output. It captures the numbers that vary."""
    pattern = re.escape(line)
    for part in varies:
        if part in line:
            loose = NUMBER.sub(lambda match: f"({LONG if len(match[0]) >= 16 else SHORT})", re.escape(part))
            pattern = pattern.replace(re.escape(part), loose)
    return pattern


def matches(expected, actual, varies=()):
    """The numbers that vary, as shown and as printed; None if the actual lines are not the expected ones.
    `...` in a line of its own is any number of lines."""
    pattern = "".join(r"(?:.*\n)*?" if line.strip() == "..." else pattern_of(line.rstrip(), varies) + "\n"
                      for line in expected)
    match = re.fullmatch(pattern, "".join(line.rstrip() + "\n" for line in actual))
    if not match:
        return None
    shown = [number for line in expected for number in numbers_of(line, varies)]
    return dict(zip(shown, match.groups()))


def numbers_of(line, varies):
    """The numbers of a line that vary, in their order."""
    return [match[0].replace("\\", "") for match in NUMBER.finditer(pattern_places(line, varies))]


def pattern_places(line, varies):
    """The line with everything but its varying parts blanked."""
    kept = [" "] * len(line)
    for part in varies:
        for match in re.finditer(re.escape(part), line):
            kept[match.start():match.end()] = match[0]
    return "".join(kept)


# ---- Running ----

class Reader:
    """Runs the blocks of one page in a folder with the layout of a clone."""

    def __init__(self, page):
        self.folder = FOLDER / pathlib.Path(page).stem
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        for entry in ROOT.iterdir():
            if entry.name != ".git":
                (self.folder / entry.name).symlink_to(entry)
        self.programs_before = set(PROGRAMS.iterdir())
        self.saved = set()

    def close(self):
        for program in set(PROGRAMS.iterdir()) - self.programs_before:
            program.unlink()
        shutil.rmtree(self.folder, ignore_errors=True)

    def run(self, block):
        check(block)
        if not is_run(block):
            return
        for command in commands_of(block, block.prepare) if block.prepare else ():
            self.command(block, command)
        if name := block.options.get("save"):
            (self.folder / name).write_text(block.text)
            self.saved.add(name)
        getattr(self, block.language)(block)

    def start(self, words, **options):
        environment = dict(os.environ, LC_ALL="C.UTF-8", **options.pop("environment", {}))
        return subprocess.run(words, cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=TIME_LIMIT_SECONDS, check=False, env=environment, **options)

    def wine(self, words):
        return self.start([ROOT / "dev", "wine", "--", *words])

    def succeed(self, block, subject, result):
        if result.returncode != 0:
            raise block.error(f"{subject}: exit code {result.returncode}\n{self.output(result)}")

    @staticmethod
    def output(result):
        return (result.stdout + result.stderr).decode("utf-8", "replace").replace("\r", "")

    # Each language has a function of its name.

    def text(self, block):
        del block

    @staticmethod
    def json(block):
        try:
            json.loads(block.text)
        except ValueError as error:
            raise block.error(f"invalid JSON: {error}") from error

    def console(self, block):
        numbers = {}
        for command in commands_of(block, block.text):
            words = re.sub(r"(?<!\S)\d+(?!\S)", lambda match: numbers.get(match[0], match[0]), command.words)
            numbers |= self.command(block, dataclasses.replace(command, words=words))

    def command(self, block, command):
        """Runs a command and returns the numbers of its output that vary."""
        if command.prompt == "$":
            result = self.start(["bash", "-c", command.words])
        else:
            result = self.wine(words_of_windows(command.words))
        if not command.output:
            self.succeed(block, command.words, result)
            return {}
        out = result.stdout.decode("utf-8", "replace").replace("\r", "").splitlines()
        error = result.stderr.decode("utf-8", "replace").replace("\r", "").splitlines()
        shown = [line for line in command.output if line.strip()]
        for streams in (out + error, error + out):
            numbers = matches(shown, [line for line in streams if line.strip()], block.varies)
            if numbers is not None:
                return numbers
        raise block.error("'{}' does not print this. Its output:\n{}".format(
            command.words, "\n".join(out + error)))

    def sh(self, block):
        self.succeed(block, "the script failed", self.start(["bash", "-euo", "pipefail", "-c", block.text]))

    def c(self, block):
        self.program(block, "c", ["x86_64-w64-mingw32-gcc", "-std=c11", "-Wall", "-Wextra", "-Werror"])

    def cpp(self, block):
        self.program(block, "cpp", ["x86_64-w64-mingw32-g++-posix", "-std=c++17", "-static", "-Wall", "-Wextra",
                                    "-Werror"])

    def program(self, block, suffix, compiler):
        complete = re.search(r"\bmain\(", block.text) is not None
        source = self.folder / f"example{block.line}.{suffix}"
        source.write_text(block.text if complete else self.function(block.text, suffix))
        program = PROGRAMS / f"documents-{block.line}.exe"
        files = [source, "-Iinclude", "build/windows/lib/libquenra.dll.a", "-o", program] if complete else [
            "-Wno-unused", "-Iinclude", "-c", source, "-o", self.folder / "example.o"]
        self.succeed(block, "the code does not compile", self.start([*compiler, *files]))
        if complete and "save" not in block.options and "compile-only" not in block.options:
            self.succeed(block, "the program failed", self.wine([str(program)]))

    @staticmethod
    def function(text, suffix):
        """A source file with the code as the body of a function. Its includes remain outside."""
        includes = "".join(re.findall(r"^#include .*\n", text, re.MULTILINE))
        body = re.sub(r"^#include .*\n", "", text, flags=re.MULTILINE)
        headers = "#include <stdio.h>\n#include <quenra.h>\n#include <quenra_routing.h>\n"
        if suffix == "cpp":
            headers += "#include <iostream>\n#include <string>\n"
        return f"{headers}{includes}int example(void);\nint example(void) {{\n{body}return 0;\n}}\n"

    def python(self, block):
        self.succeed(block, "the program failed", self.start([sys.executable, "-B", "-c", block.text]))


def reset_machine():
    subprocess.run([ROOT / "dev", "wine", "--", "quenra-sim", "reset"], stdin=subprocess.DEVNULL,
                   capture_output=True, timeout=TIME_LIMIT_SECONDS, check=True)


def main():
    for page in PAGES:
        for block in blocks_of(page, (ROOT / page).read_text()):
            if reason := block.options.get("no-run"):
                print(f"not run: {page}:{block.line}: {reason}")


if __name__ == "__main__":
    main()
