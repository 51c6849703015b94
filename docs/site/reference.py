"""Makes the pages of the C reference from the public headers.

A header is a sequence of comments and declarations. A comment documents the declarations that follow it
without a blank line. In a comment, these forms are more than paragraphs:

  Returns, or Reports, and indented rows      a table: the code, two blanks, its meaning
  name:  text, continued with indentation     a definition, of a parameter for example
  1. text, continued with indentation         an item of a numbered list
  other indented lines                        an example

The pages use directives of Sphinx' C domain, so that each symbol has an anchor and an entry in the index
and in the search. `symbols_of` returns the names that the pages define.
"""

import dataclasses
import re
import textwrap

# Headers, each with the title of its page, in the order of the contents.
HEADERS = {
    "quenra.h": "Controller functions",
    "quenra_attributes.h": "Attribute constants",
    "quenra_status.h": "Status constants",
    "quenra_routing.h": "Routing functions",
    "quenra_version.h": "Version constants",
}

ANNOTATION = re.compile(
    r"\bQUENRA_(?:RETURNS_STATUS|NODISCARD|MAYBE_NULL|OUT|INOUT|INOUT_OPT|IN_TEXT)\b\s*"
    r"|\bQUENRA_(?:IN_BYTES_OPT|OUT_TEXT_OPT)\([^)]*\)\s*")
SECTION = re.compile(r"^-{4} (.+) -{4}$")
# A comment that opens a group of enumerators: "Memory: ..." or "The driver."
GROUP = re.compile(r"^[A-Z]\w*(?: \w+){0,3}[:.]")
# Names of parameters or members, and their description.
DEFINITION = re.compile(r"[a-z]\w*(?:, [a-z]\w*)*: ")
ITEM = re.compile(r"\s*(\d+\.) (.*)")
NAME = re.compile(r"\b(?:QUENRA|ZOROCO|zoroco|zoerr)_\w+")


@dataclasses.dataclass
class Comment:
    line: int
    text: str


@dataclasses.dataclass
class Declaration:
    line: int
    kind: str  # function, macro, enum, enumerator, struct, type, member
    name: str
    signature: str
    body: list = dataclasses.field(default_factory=list)
    value: str = ""


BLANK = object()


class HeaderError(Exception):
    pass


def comment_text(raw):
    """The text of a block comment without its frame, with its indentation."""
    text = raw.strip().removeprefix("/*").removesuffix("*/")
    lines = [re.sub(r"^\s*\* ?", "", line) for line in text.split("\n")]
    return "\n".join([lines[0].strip(), *(line.rstrip() for line in lines[1:])]).strip("\n")


def one_line(text):
    return re.sub(r"\s+", " ", ANNOTATION.sub("", text)).strip()


class Reader:
    """Splits a header into comments, declarations and blank lines."""

    def __init__(self, name, text):
        self.name = name
        self.lines = text.split("\n")
        self.at = 0

    def error(self, message):
        return HeaderError(f"include/{self.name}:{self.at + 1}: {message}")

    def read(self):
        items = []
        while self.at < len(self.lines):
            item = self.next_item(self.lines[self.at].strip())
            if item is not None:
                items.append(item)
        return items

    def next_item(self, line):
        if not line:
            self.at += 1
            return BLANK
        if line.startswith("/*"):
            return self.comment()
        if line.startswith("#define"):
            return self.macro()
        if line.startswith("#"):
            self.at += 1
            return None
        if line in ('extern "C" {', "}"):
            self.at += 1
            return None
        return self.declaration()

    def take_until(self, ends):
        start = self.at
        while self.at < len(self.lines):
            self.at += 1
            if ends("\n".join(self.lines[start:self.at])):
                return start + 1, "\n".join(self.lines[start:self.at])
        self.at = start
        raise self.error("does not end")

    def comment(self):
        line, raw = self.take_until(lambda text: text.rstrip().endswith("*/"))
        return Comment(line, comment_text(raw))

    def macro(self):
        line, raw = self.take_until(lambda text: not text.endswith("\\"))
        match = re.match(r"#define (\w+)(\([^)]*\))?\s*((?:.|\n)*)", raw.strip())
        if not match[3]:
            return None  # an include guard
        return Declaration(line, "macro", match[1], match[1] + (match[2] or ""), value=raw.strip())

    def declaration(self):
        line, raw = self.take_until(self.is_complete)
        if raw.startswith("QUENRA_STATIC_ASSERT"):
            return None
        if match := re.match(r"enum (\w+) \{", raw):
            return Declaration(line, "enum", match[1], match[1], self.enumerators(line, raw))
        if match := re.match(r"typedef struct (\w+) \{", raw):
            return Declaration(line, "struct", match[1], match[1], self.members(line, raw))
        if match := re.match(r"typedef struct (\w+) \1;", raw):
            return Declaration(line, "struct", match[1], match[1])
        if match := re.match(r"typedef .*?\(\*(\w+)\)", raw, re.DOTALL):
            signature = one_line(raw).removeprefix("typedef ").removesuffix(";")
            return Declaration(line, "type", match[1], signature)
        signature = one_line(raw.split("{")[0]).removesuffix(";")
        if match := re.match(r"[\w* ]+?[ *](\w+)\(.*\)$", signature):
            return Declaration(line, "function", match[1], signature)
        self.at = line - 1
        raise self.error("this declaration has a form that docs/site/reference.py does not know")

    @staticmethod
    def is_complete(text):
        code = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
        code = re.sub(r'"(?:\\.|[^"\\])*"|\'.\'', "", code)
        if code.count("{") != code.count("}") or code.count("(") != code.count(")"):
            return False
        return code.rstrip().endswith((";", "}"))

    def enumerators(self, line, raw):
        inner = Reader(self.name, raw[raw.index("{") + 1:raw.rindex("}")].strip("\n"))
        items = []
        while inner.at < len(inner.lines):
            text = inner.lines[inner.at].strip()
            if not text:
                items.append(BLANK)
            elif text.startswith("/*"):
                items.append(inner.comment())
                continue
            elif match := re.match(r"(\w+)\s*=\s*([^,]+),?$", text):
                items.append(Declaration(line, "enumerator", match[1], f"{match[1]} = {match[2]}"))
            else:
                self.at = line + inner.at
                raise self.error("this is not an enumerator with a value")
            inner.at += 1
        return items

    @staticmethod
    def members(line, raw):
        inner = raw[raw.index("{") + 1:raw.rindex("}")]
        members = []
        for text in filter(None, (part.strip() for part in inner.split(";"))):
            name = re.search(r"\(\*(\w+)\)|(\w+)$", text)
            members.append(Declaration(line, "member", name[1] or name[2], one_line(text)))
        return members


# ---- From comments to reStructuredText ----

class Texts:
    """Turns the text of comments into reStructuredText with links to the symbols."""

    ROLES = {"function": "c:func", "macro": "c:macro", "enum": "c:enum", "enumerator": "c:enumerator",
             "struct": "c:struct", "type": "c:type"}

    def __init__(self, kinds):
        self.kinds = kinds
        abbreviations = {name.removeprefix("zoroco_ra_quenra_"): name for name in kinds}
        self.abbreviations = {short: name for short, name in abbreviations.items()
                              if short != name and re.search(r"[a-z][A-Z]", short)}

    def inline(self, text):
        parts, end = [], 0
        for match in re.finditer(r"`[^`]+`|\b[A-Za-z]\w*_?\w*(?:\(\))?", text):
            replacement = self.word(match[0])
            if replacement is None:
                continue
            parts += [self.escape(text[end:match.start()]), replacement]
            end = match.end()
        joined = ""
        for part in [*parts, self.escape(text[end:])]:
            # A role or literal must be separated from letters and signs beside it.
            separator = "\\ " if joined and part and not joined[-1].isspace() and not part[0].isspace() else ""
            joined += separator + part
        return joined

    def word(self, word):
        if word.startswith("`"):
            return f"``{word.strip('`')}``"
        bare = word.removesuffix("()")
        name = self.abbreviations.get(bare, bare)
        if name in self.kinds:
            shown = bare + ("()" if self.kinds[name] == "function" else "")
            return f":{self.ROLES[self.kinds[name]]}:`{shown} <{name}>`"
        return f"``{word}``" if NAME.fullmatch(bare) else None

    @staticmethod
    def escape(text):
        return re.sub(r"([\\*`|_])", r"\\\1", text)

    def paragraph(self, lines):
        return [self.inline(" ".join(line.strip() for line in lines)), ""]

    def blocks(self, text):
        """reStructuredText of the text of a comment, as lines."""
        result = []
        item = None  # the columns of the text of a list's item, in the comment and on the page
        for block in re.split(r"\n\s*\n|\n(?=\s*\d+\. )", text):
            lines = block.split("\n")
            if match := ITEM.match(lines[0]):
                item = match.start(2), len(match[1]) + 1
            elif item and lines[0].startswith(" "):
                inner = []
                self.body([line[item[0]:] for line in lines], inner)
                result += [" " * item[1] + line if line else "" for line in inner]
                continue
            else:
                item = None
            while lines:
                lines = self.block(lines, result)
        return result

    def block(self, lines, result):
        """Appends the first construct of the lines to the result, and returns the lines that remain."""
        first = lines[0]
        if first.strip() in ("Returns", "Reports"):
            result += [f"**{first.strip()}**", "", *self.table(lines[1:])]
            return []
        if ITEM.match(first):
            return self.numbered(lines, result)
        if DEFINITION.match(first):
            return self.definition(lines, result)
        if first.startswith("  "):
            size = self.count(lines, lambda line: line.startswith("  "))
            result += ["::", "", *textwrap.indent(textwrap.dedent("\n".join(lines[:size])), "   ").split("\n"), ""]
            return lines[size:]
        size = self.count(lines, lambda line: not line.startswith("  ") and line.strip() not in ("Returns", "Reports"))
        result += self.paragraph(lines[:size])
        return lines[size:]

    @staticmethod
    def count(lines, condition):
        size = 1
        while size < len(lines) and condition(lines[size]):
            size += 1
        return size

    def definition(self, lines, result):
        size = self.count(lines, lambda line: line.startswith("  "))
        name, _, text = lines[0].partition(":")
        result.append(", ".join(f"``{part.strip()}``" for part in name.split(",")))
        body = textwrap.dedent("\n".join([" " * (len(lines[0]) - len(text.lstrip())) + text.lstrip(),
                                          *lines[1:size]]))
        inner = []
        self.body(body.split("\n"), inner)
        result += ["   " + line if line else "" for line in inner]
        return lines[size:]

    def body(self, lines, result):
        while lines:
            deep = lines[0].startswith("  ")
            size = self.count(lines, lambda line: line.startswith("  ") == deep)
            if deep:
                result += ["::", "", *textwrap.indent(textwrap.dedent("\n".join(lines[:size])), "   ").split("\n"), ""]
            else:
                result += self.paragraph(lines[:size])
            lines = lines[size:]

    def numbered(self, lines, result):
        size = self.count(lines, lambda line: not ITEM.match(line))
        match = ITEM.match(lines[0])
        inner = []
        self.body([match[2], *(line[match.start(2):] for line in lines[1:size])], inner)
        margin = " " * (len(match[1]) + 1)
        result += [f"{match[1]} {inner[0]}", *(margin + line if line else "" for line in inner[1:])]
        return lines[size:]

    def table(self, lines):
        rows = []
        for line in textwrap.dedent("\n".join(lines)).split("\n"):
            code, _, meaning = line.partition("  ")
            if line.startswith("  "):
                rows[-1][1].append(line.strip())
            else:
                rows.append((code, [meaning.strip()]))
        result = [".. list-table::", "   :widths: 2 3", "   :class: codes", ""]
        for code, meaning in rows:
            text = self.inline(" ".join(filter(None, meaning)))
            result += [f"   * - {self.inline(code)}", f"     -{' ' + text if text else ''}"]
        return [*result, ""]


# ---- Pages ----

def groups_of(items):
    """Comments with the declarations that follow without a blank line: (comments, declarations)."""
    comments, declarations = [], []
    for item in [*items, BLANK]:
        if item is BLANK or (isinstance(item, Comment) and declarations):
            if comments or declarations:
                yield comments, declarations
            comments, declarations = [], []
        if isinstance(item, Comment):
            comments.append(item)
        elif isinstance(item, Declaration):
            declarations.append(item)


def paragraphs_of(items):
    """The items between blank lines."""
    group = []
    for item in [*items, BLANK]:
        if item is not BLANK:
            group.append(item)
        elif group:
            yield group
            group = []


class Page:
    def __init__(self, header, title, texts):
        self.header, self.title, self.texts = header, title, texts
        self.lines = []

    def heading(self, title, mark):
        self.lines += [title, mark * len(title), ""]

    def add(self, lines, depth=0):
        self.lines += ["   " * depth + line if line else "" for line in lines]

    def write(self, items):
        self.heading(self.title, "=")
        self.add([f":download:`{self.header} <../include/{self.header}>`", ""])
        first, *rest = groups_of(items)
        self.add(self.texts.blocks(first[0][0].text))
        for comments, declarations in [([], first[1]), *rest]:
            self.group(comments, declarations)
        return "\n".join(self.lines) + "\n"

    def group(self, comments, declarations):
        for comment in comments[:-1]:
            self.lead(comment)
        if comments and (not declarations or SECTION.match(comments[-1].text)):
            self.lead(comments[-1])
            comments = []
        for kind, members in self.runs(declarations):
            self.declare(kind, members, comments[-1:])
            comments = []

    @staticmethod
    def runs(declarations):
        """Neighbours of one kind, which share a comment and a description."""
        runs = []
        for declaration in declarations:
            shared = declaration.kind in ("macro", "function")
            if runs and shared and runs[-1][0] == declaration.kind:
                runs[-1][1].append(declaration)
            else:
                runs.append((declaration.kind, [declaration]))
        return runs

    def lead(self, comment):
        if match := SECTION.match(comment.text):
            self.heading(match[1], "-")
        else:
            self.add(self.texts.blocks(comment.text))

    def declare(self, kind, members, comments):
        directive = f".. c:{kind}:: "
        self.add([(directive if member is members[0] else " " * len(directive)) + member.signature
                  for member in members])
        self.add([""])
        for comment in comments:
            self.add(self.texts.blocks(comment.text), 1)
        if kind == "macro":
            self.values(members)
        if kind == "struct":
            for member in members[0].body:
                self.add([f".. c:member:: {member.signature}", ""], 1)
        if kind == "enum":
            self.enumerators(members[0].body)

    def values(self, members):
        """The definitions of macros, except for long ones."""
        lines = [line for member in members for line in member.value.split("\n")]
        if len(lines) <= 12:
            self.add([".. code-block:: c", "", *("   " + line for line in lines), ""], 1)

    def enumerators(self, items):
        for group in paragraphs_of(items):
            first = next((item for item in group if isinstance(item, Comment)), None)
            size = sum(isinstance(item, Declaration) for item in group)
            for comments, declarations in groups_of(group):
                if comments and comments[0] is first and self.is_title(first, size, declarations):
                    self.subject(first)
                    comments = comments[1:]
                for declaration in declarations:
                    self.add([f".. c:enumerator:: {declaration.signature}", ""], 1)
                    for comment in comments:
                        self.add(self.texts.blocks(comment.text), 2)
                    comments = []

    @staticmethod
    def is_title(comment, size, declarations):
        return bool(not declarations or SECTION.match(comment.text) or
                    (size > 1 and GROUP.match(comment.text)))

    def subject(self, comment):
        match = SECTION.match(comment.text)
        text = match[1] if match else " ".join(comment.text.split())
        self.add([f".. rubric:: {self.texts.escape(text)}" if match else self.texts.inline(text), ""], 1)


def declared(items):
    for item in items:
        if isinstance(item, Declaration):
            yield item
            yield from (inner for inner in item.body if isinstance(inner, Declaration) and inner.kind == "enumerator")


def read_headers(folder):
    return {name: Reader(name, (folder / name).read_text()).read() for name in HEADERS}


def symbols_of(headers):
    """The kind of each symbol of the headers."""
    return {item.name: item.kind for items in headers.values() for item in declared(items)}


def pages(folder):
    """The pages of the reference: name of the file, reStructuredText."""
    headers = read_headers(folder)
    texts = Texts(symbols_of(headers))
    for name, items in headers.items():
        yield f"{name.removesuffix('.h')}.rst", Page(name, HEADERS[name], texts).write(items)
