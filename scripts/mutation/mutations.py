"""Generates the mutants of a source, each with one changed operator or constant.

The module relies on formatted sources: a binary operator is between spaces or at the end of a line;
the marks of pointers, references and templates are not.
"""

import collections
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
    scope: str  # the function, or the variable of an initialization outside functions
    before: str
    after: str
    occurrence: int  # of this change in its scope, counted from one

    @property
    def key(self):
        return self.path, self.scope, self.before, self.after, self.occurrence


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
    """[(the mutated line, the token, its replacement)]"""
    if SKIPPED_LINE.match(line):
        return []
    return [(line[:match.start()] + replacement + line[match.end():], match[0], replacement)
            for match in TOKEN.finditer(line)
            for replacement in replacements(match.lastgroup, match[0])]


CLASS = re.compile(r"(?:class|struct|union)\s+(?:\[\[.*?\]\]\s*)?(\w+)")
FUNCTION = re.compile(r"([~\w]+(?:::[~\w]+)*|operator\W+)\(")
VARIABLE = re.compile(r"(\w+)(?:\[[^\]]*\])*(?:\{|\s*=|;)")


def declared_name(line):
    """The name that a formatted line outside function bodies declares, or None."""
    code = line.split("//")[0]
    function, variable = FUNCTION.search(code), VARIABLE.search(code)
    if function and (not variable or function.start() < variable.start()):
        return function[1].strip()
    return variable[1] if variable else None


class Scopes:
    """Follows the lines of a formatted source and names the function or variable of each."""

    def __init__(self):
        self._class, self._name, self._indent = "", "", 0

    def enter(self, line):
        text = line.strip()
        indent = len(line) - len(line.lstrip())
        if not text or text[0] in "#/}" or text.endswith(":") or indent > self._indent:
            self._leave(line)
            return self.name
        if match := CLASS.match(text):
            self._class, self._name, self._indent = match[1], "", indent + 2
        elif name := declared_name(text):
            self._name = name
        return self.name

    def _leave(self, line):
        if line.startswith("};"):
            self._class, self._name, self._indent = "", "", 0

    @property
    def name(self):
        return "::".join(filter(None, (self._class, self._name))) or "-"


def mutants_of(path, source):
    found, in_assertion, scopes, counts = [], False, Scopes(), collections.Counter()
    for number, line in enumerate(source.splitlines(), 1):
        scope = scopes.enter(line)
        in_assertion = in_assertion or line.strip().startswith("static_assert")
        for mutated, before, after in [] if in_assertion else mutants_of_line(line):
            counts[scope, before, after] += 1
            found.append(Mutant(path, number, line, mutated, scope, before, after,
                                counts[scope, before, after]))
        in_assertion = in_assertion and not line.rstrip().endswith(";")
    return found


def apply(mutant, source):
    lines = source.split("\n")
    lines[mutant.line - 1] = mutant.mutated
    return "\n".join(lines)
