"""Generates the mutants of a source, each with one changed operator or constant.

The module relies on formatted sources: a binary operator is between spaces or at the end of a line;
the marks of pointers, references and templates are not.
"""

import dataclasses
import re

OPERATORS = {
    "<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "|=": ["&="], "&=": ["|="], "^=": ["&="],
    ">>=": ["<<="], "<<=": [">>="],
}
TOKEN = re.compile(r"""
    (?P<comment>//.*|/\*.*?\*/)
  | (?P<text>"(?:[^"\\]|\\.)*")
  | (?P<character>'(?:[^'\\]|\\.[0-9a-fA-F]*)')
  | (?P<number>\b(?:0[xX][0-9a-fA-F]+|\d+)[uUlLzZ]*\b)
  | (?P<truth>\b(?:true|false)\b)
  | (?P<operator>(?<=\s)(?:<<=|>>=|[-+*/%&|^<>=!]=|&&|\|\||<<|>>|[-+*/%&|^<>])(?=\s|$))
  | (?P<step>\+\+|--)
  | (?P<negation>[!~](?=[A-Za-z_(]))
""", re.VERBOSE)
# Lines without run-time behaviour: preprocessor directives, static assertions, type declarations.
SKIPPED_LINE = re.compile(r"\s*(?:\#|//|\*|/\*|template\b|using\b|namespace\b|static_assert\b|extern \")")


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str
    line: int  # counted from one
    original: str
    mutated: str


def other_number(word):
    digits = re.match(r"0[xX][0-9a-fA-F]+|\d+", word)[0]
    suffix = word[len(digits):]
    value = int(digits, 16 if digits[:2].lower() == "0x" else 10)
    larger = f"{value + 1:#x}" if digits[:2].lower() == "0x" else str(value + 1)
    return [larger + suffix, "0" + suffix] if value == 1 else [larger + suffix]


def other_character(word):
    if word.startswith("'\\"):
        return ["'?'"]
    return ["'" + chr(ord(word[1]) + 1) + "'"] if word[1] not in "&[" else ["'?'"]


def other_text(word):
    return ['"?' + word[2:] if len(word) > 2 and word[1] != "\\" else '"?' + word[1:]]


def replacements(kind, word):
    if kind == "operator":
        return OPERATORS.get(word, [])
    if kind == "number":
        return other_number(word)
    if kind == "truth":
        return ["false" if word == "true" else "true"]
    if kind == "step":
        return ["--" if word == "++" else "++"]
    if kind == "negation":
        return [""]
    if kind == "character":
        return other_character(word)
    if kind == "text":
        return other_text(word)
    return []


def mutants_of_line(line):
    if SKIPPED_LINE.match(line):
        return []
    found = []
    for match in TOKEN.finditer(line):
        for replacement in replacements(match.lastgroup, match[0]):
            found.append(line[:match.start()] + replacement + line[match.end():])
    return found


def mutants_of(path, source):
    found, in_assertion = [], False
    for number, line in enumerate(source.splitlines(), 1):
        in_assertion = in_assertion or line.strip().startswith("static_assert")
        if not in_assertion:
            found += [Mutant(path, number, line, mutated) for mutated in mutants_of_line(line)]
        in_assertion = in_assertion and not line.rstrip().endswith(";")
    return found


def apply(mutant, source):
    lines = source.split("\n")
    lines[mutant.line - 1] = mutant.mutated
    return "\n".join(lines)
