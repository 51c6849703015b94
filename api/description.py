"""Reads and checks the description of the interface: attributes.toml and statuses.toml."""

from __future__ import annotations

import dataclasses
import pathlib
import re
import tomllib

FOLDER = pathlib.Path(__file__).resolve().parent
ROOT = FOLDER.parent

TYPE_OF_BITS = {1: "text", 2: "unsigned"}
PRIVATE_BIT = 0x08000000
ACCESSES = ("read", "read, write", "write")
FORMS = ("plain", "hexadecimal", "memory-size", "interface-set")
# An id has eight bits for the instance.
INSTANCE_LIMIT = 256


class Fault(Exception):
    """A fault of the data, with the file and the entry."""


@dataclasses.dataclass(frozen=True)
class Instances:
    key: str
    each: str
    counted_by: str | None
    maximum: int

    @property
    def text(self) -> str:
        """As in "1 per slot, at most 4"."""
        limit = "" if self.maximum == INSTANCE_LIMIT else f", at most {self.maximum}"
        return self.each + limit


@dataclasses.dataclass(frozen=True)
class Value:
    value: int
    name: str
    constant: str | None


@dataclasses.dataclass(frozen=True)
class Attribute:
    constant: str
    name: str
    id: int
    type: str
    description: str
    source: str
    access: str
    form: str
    unit: str | None
    instances: Instances | None
    values: str | None
    per_interface: bool
    subject: str
    section: str | None
    header: str | None

    @property
    def readable(self) -> bool:
        return self.access != "write"

    @property
    def writable(self) -> bool:
        return self.access != "read"

    @property
    def is_text(self) -> bool:
        return self.type == "text"

    @property
    def identifier(self) -> str:
        """The constant without its prefix: PRODUCT_NAME, TEXT_SETTING_OF_BOTH."""
        return self.name.replace("-", "_").upper()


@dataclasses.dataclass(frozen=True)
class Subject:
    key: str
    title: str
    attributes: tuple[Attribute, ...]


@dataclasses.dataclass(frozen=True)
class Functions:
    """A group of functions with its name."""

    key: str
    title: str
    names: tuple[str, ...]


@dataclasses.dataclass(frozen=True)
class Status:
    constant: str
    code: int
    cause: str
    remedy: str
    section: str | None
    header: str | None
    reported_by: tuple[str, ...]

    @property
    def identifier(self) -> str:
        """The constant without its prefix: NOT_SUPPORTED."""
        return self.constant.removeprefix("QUENRA_STATUS_")

    @property
    def comment(self) -> str:
        """The text of the header."""
        return self.header or self.cause


@dataclasses.dataclass(frozen=True)
class Description:
    subjects: tuple[Subject, ...]
    instances: tuple[Instances, ...]
    values: dict[str, tuple[Value, ...]]
    attributes: tuple[Attribute, ...]
    functions: dict[str, Functions]
    statuses: tuple[Status, ...]

    def reporters(self, status: Status) -> set[str]:
        """The names of the functions that report a code."""
        names = set()
        for entry in status.reported_by:
            names.update(self.functions[entry].names if entry in self.functions else [entry])
        return names

    @property
    def listed(self) -> list[Attribute]:
        """The attributes in the order of the listings."""
        return [attribute for subject in self.subjects for attribute in subject.attributes]


def words(identifier: str) -> list[str]:
    return identifier.lower().split("_")


def camel_case(identifier: str) -> str:
    """ProductName for PRODUCT_NAME."""
    return "".join(word.capitalize() for word in words(identifier))


def sentence(text: str) -> str:
    return text if text.endswith((".", "?", "!")) else text + "."


def documentation(attribute: Attribute) -> str:
    """The attribute in sentences, for the reader of a program."""
    sentences = [attribute.description]
    if attribute.unit and attribute.form == "plain":
        sentences.append(f"In {attribute.unit}")
    if attribute.instances:
        sentences.append(f"One for each {attribute.instances.text}")
    if attribute.access != "read":
        sentences.append("Write-only" if not attribute.readable else "Can be written")
    return " ".join(dict.fromkeys(sentence(text) for text in sentences))


# The lists of values that the bindings have as enumerations, with the name of the enumeration.
ENUMERATIONS = {"interface": "SELECTOR", "link-kind": "LINK_KIND", "expansion-kind": "EXPANSION_KIND"}
VALUE_PREFIX = re.compile(r"QUENRA_(SELECTOR|LINK|EXPANSION|KIND)_")


def value_identifier(value: Value) -> str:
    """THUNDERBOLT for QUENRA_LINK_THUNDERBOLT."""
    return VALUE_PREFIX.sub("", value.constant)


# ---- Reading ----


class Entry:
    """A table of the data, whose keys are read once each; `finish` refuses the others."""

    def __init__(self, place: str, table: dict):
        self.place = place
        self.table = dict(table)

    def fail(self, reason: str):
        raise Fault(f"{self.place}: {reason}")

    def take(self, key: str, kind: type, default=None, required: bool = False):
        if key not in self.table:
            if required:
                self.fail(f"'{key}' is missing")
            return default
        value = self.table.pop(key)
        if type(value) is not kind:
            self.fail(f"'{key}' is {value!r}, not of type {kind.__name__}")
        if kind is str and (not value or value != " ".join(value.split())):
            self.fail(f"'{key}' is empty or has needless white space: {value!r}")
        return value

    def need(self, key: str, kind: type):
        return self.take(key, kind, required=True)

    def choice(self, key: str, choices, default: str) -> str:
        value = self.take(key, str, default)
        if value not in choices:
            self.fail(f"'{key}' is '{value}', not one of: {'; '.join(choices)}")
        return value

    def finish(self):
        if self.table:
            self.fail(f"unknown key '{next(iter(self.table))}'")


def read_instances(tables: dict) -> dict[str, Instances]:
    result = {}
    for key, table in tables.items():
        entry = Entry(f"attributes.toml, instances.{key}", table)
        result[key] = Instances(key, entry.need("each", str), entry.take("counted-by", str),
                                entry.take("maximum", int, INSTANCE_LIMIT))
        entry.finish()
    return result


def read_values(sets: dict) -> dict[str, tuple[Value, ...]]:
    result = {}
    for key, tables in sets.items():
        values = []
        for table in tables:
            entry = Entry(f"attributes.toml, values.{key}", table)
            values.append(Value(entry.need("value", int), entry.need("name", str),
                                entry.take("constant", str)))
            entry.finish()
        result[key] = tuple(values)
    return result


def check_attribute(entry: Entry, attribute: Attribute, private: bool):
    """The rules by which id, type, constant and name of an attribute belong together."""
    if TYPE_OF_BITS.get(attribute.id >> 28) != attribute.type:
        entry.fail(f"the id 0x{attribute.id:08X} is not of type {attribute.type}")
    if attribute.id & 0x07F000FF:
        entry.fail(f"the id 0x{attribute.id:08X} has bits outside type, private and number")
    if bool(attribute.id & PRIVATE_BIT) != private:
        entry.fail(f"'private' does not agree with the id 0x{attribute.id:08X}")
    prefix = "QUENRA_ATTRIBUTE_" if attribute.readable else "QUENRA_"
    if attribute.constant != prefix + attribute.identifier:
        entry.fail(f"the constant of '{attribute.name}' has to be {prefix}{attribute.identifier}")
    if not re.fullmatch(r"[a-z]+(-[a-z]+|-\d)*", attribute.name):
        entry.fail(f"'{attribute.name}' is no name")


def read_attribute(table: dict, instances: dict, values: dict, subject_of: dict) -> Attribute:
    entry = Entry(f"attributes.toml, {table.get('constant', 'an attribute without a constant')}", table)
    name = entry.need("name", str)
    key = entry.take("instances", str)
    value_set = entry.take("values", str)
    if key is not None and key not in instances:
        entry.fail(f"there is no table instances.{key}")
    if value_set is not None and value_set not in values:
        entry.fail(f"there is no list '{value_set}' in values")
    if name not in subject_of:
        entry.fail("no subject lists the attribute")
    attribute = Attribute(
        constant=entry.need("constant", str), name=name, id=entry.need("id", int),
        type=entry.need("type", str), description=entry.need("description", str),
        source=entry.need("source", str), access=entry.choice("access", ACCESSES, "read"),
        form=entry.choice("form", FORMS, "plain"), unit=entry.take("unit", str),
        instances=instances.get(key), values=value_set,
        per_interface=entry.take("per-interface", bool, False), subject=subject_of[name],
        section=entry.take("section", str), header=entry.take("header", str))
    check_attribute(entry, attribute, entry.take("private", bool, False))
    entry.finish()
    return attribute


def check_unique(file: str, entries, *keys: str):
    for key in keys:
        seen = set()
        for entry in entries:
            value = getattr(entry, key)
            if value in seen:
                raise Fault(f"{file}: {key} {value!r} appears twice")
            seen.add(value)


def read_attributes(document: dict):
    instances = read_instances(document.pop("instances"))
    values = read_values(document.pop("values"))
    subject_tables = document.pop("subject")
    subject_of = {name: table["key"] for table in subject_tables for name in table["attributes"]}
    attributes = tuple(read_attribute(table, instances, values, subject_of)
                       for table in document.pop("attribute"))
    check_unique("attributes.toml", attributes, "constant", "name", "id", "description")
    by_name = {attribute.name: attribute for attribute in attributes}
    subjects = []
    for table in subject_tables:
        entry = Entry(f"attributes.toml, subject '{table['key']}'", table)
        names = entry.need("attributes", list)
        for name in names:
            if name not in by_name:
                entry.fail(f"there is no attribute '{name}'")
        subjects.append(Subject(entry.need("key", str), entry.need("title", str),
                                tuple(by_name[name] for name in names)))
        entry.finish()
    listed = [attribute for subject in subjects for attribute in subject.attributes]
    check_unique("attributes.toml, subjects", listed, "name")
    for counted in instances.values():
        if counted.counted_by is not None and counted.counted_by not in by_name:
            raise Fault(f"attributes.toml, instances.{counted.key}: there is no attribute "
                        f"'{counted.counted_by}'")
    return tuple(subjects), tuple(instances.values()), values, attributes


def read_functions(tables: dict) -> dict[str, Functions]:
    result = {}
    for key, table in tables.items():
        entry = Entry(f"statuses.toml, functions.{key}", table)
        result[key] = Functions(key, entry.need("title", str), tuple(entry.need("names", list)))
        entry.finish()
    return result


def check_status(entry: Entry, status: Status, functions: dict[str, Functions]):
    if not re.fullmatch(r"QUENRA_STATUS_[A-Z_]+", status.constant):
        entry.fail("the constant has to begin with QUENRA_STATUS_")
    for key in ("cause", "remedy"):
        if not getattr(status, key).endswith("."):
            entry.fail(f"'{key}' has to be a sentence")
    known = functions["every"].names
    for name in status.reported_by:
        if name not in functions and name not in known:
            entry.fail(f"'{name}' in 'reported-by' is neither a function with a status nor a group")


def read_statuses(document: dict):
    functions = read_functions(document.pop("functions"))
    statuses = []
    for table in document.pop("status"):
        entry = Entry(f"statuses.toml, {table.get('constant', 'a status without a constant')}", table)
        status = Status(
            constant=entry.need("constant", str), code=entry.need("code", int),
            cause=entry.need("cause", str), remedy=entry.need("remedy", str),
            section=entry.take("section", str), header=entry.take("header", str),
            reported_by=tuple(entry.need("reported-by", list)))
        check_status(entry, status, functions)
        entry.finish()
        statuses.append(status)
    check_unique("statuses.toml", statuses, "constant", "code")
    return functions, tuple(statuses)


def read(folder: pathlib.Path = FOLDER) -> Description:
    attributes = tomllib.loads((folder / "attributes.toml").read_text(encoding="utf-8"))
    statuses = tomllib.loads((folder / "statuses.toml").read_text(encoding="utf-8"))
    return Description(*read_attributes(attributes), *read_statuses(statuses))
