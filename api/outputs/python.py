"""bindings/python/quenra/_constants.py: the constants of the Python package."""

import textwrap

import description
from outputs import NOTICE, literal

WIDTH = 100

PREAMBLE = '''\
"""The status codes and the attributes of the controller.

{notice}
"""

from __future__ import annotations

import dataclasses
import enum
from typing import Any, Dict, Generic, Optional, Tuple, Type, TypeVar

Value = TypeVar("Value", str, int)


class Status(enum.IntEnum):
    """A status code of the library: 0 is success, a negative code a failure, a positive code a warning.

    The library returns codes of the driver unchanged, so that a call can return other codes.
    """
'''

STATUS_PROPERTIES = '''\

    @property
    def constant(self) -> str:
        """The name in quenra_status.h: "QUENRA_STATUS_NOT_SUPPORTED"."""
        return "QUENRA_STATUS_" + self.name

    @property
    def cause(self) -> str:
        """The meaning of the code, a sentence."""
        return _STATUS_TEXTS[self][0]

    @property
    def remedy(self) -> str:
        """The advice to a user, a sentence."""
        return _STATUS_TEXTS[self][1]


# Cause and remedy of each code.
_STATUS_TEXTS: Dict[int, Tuple[str, str]] = {
'''

ATTRIBUTE_CLASS = '''\
@dataclasses.dataclass(frozen=True)
class Attribute(Generic[Value]):
    """An attribute of the controller; the type parameter is the type of its value."""

    name: str
    """The name in Python: "product_name"."""
    constant: str
    """The name in quenra_attributes.h: "QUENRA_ATTRIBUTE_PRODUCT_NAME"."""
    id: int
    """The id with selector and instance 0."""
    type: Type[Value]
    """str or int."""
    documentation: str
    """A description in sentences."""
    unit: Optional[str] = None
    """The unit of a number, None if it has none."""
    readable: bool = True
    """False for a write-only attribute."""
    writable: bool = False
    """True if drivers permit programs to write the attribute."""
    instances: Optional[str] = None
    """The thing that each instance belongs to, None for an attribute with instance 0 only."""
    counted_by: Optional[str] = None
    """The name of the attribute that holds the number of instances, None if no attribute does."""
    maximum_instances: int = 1
    """The library serves at most this many instances."""

    @property
    def command_line_name(self) -> str:
        """The name on the command line: "product-name"."""
        return self.name.replace("_", "-")

'''

ENUMERATION_TEXTS = {
    "interface": "The interface that answers, where there is a choice: added to an attribute's id.",
    "link-kind": "The values of LINK_KIND.",
    "expansion-kind": "The values of EXPANSION_KIND.",
}


def docstring(text: str, indentation: str) -> str:
    """A docstring of one or more lines."""
    escaped = text.replace("\\", "\\\\")
    closing = ' """' if escaped.endswith('"') else '"""'
    lines = textwrap.wrap(escaped, WIDTH - len(indentation) - 6, break_on_hyphens=False)
    if len(lines) == 1:
        return f'{indentation}"""{lines[0]}{closing}\n'
    return "".join([f'{indentation}"""{lines[0]}\n', *(f"{indentation}{line}\n" for line in lines[1:]),
                    f'{indentation}"""\n'])


def long_literal(text: str, indentation: str) -> str:
    """A string literal, as adjacent literals on several lines if it is too long for one."""
    if len(indentation) + len(literal(text)) + 1 <= WIDTH:
        return indentation + literal(text)
    lines = textwrap.wrap(text, WIDTH - len(indentation) - 8, break_on_hyphens=False)
    parts = [line + " " for line in lines[:-1]] + lines[-1:]
    return "\n".join(indentation + literal(part) for part in parts)


def statuses(api: description.Description) -> str:
    text = ""
    for status in api.statuses:
        text += f"\n    {status.identifier} = {status.code}\n" + docstring(status.cause, "    ")
    text += STATUS_PROPERTIES
    for status in api.statuses:
        text += (f"    Status.{status.identifier}: (\n{long_literal(status.cause, ' ' * 8)},\n"
                 f"{long_literal(status.remedy, ' ' * 8)},\n    ),\n")
    return text + "}\n"


def enumerations(api: description.Description) -> str:
    text = ""
    for key, name in description.ENUMERATIONS.items():
        text += f"\n\nclass {description.camel_case(name)}(enum.IntEnum):\n"
        text += docstring(ENUMERATION_TEXTS[key], "    ") + "\n"
        for value in api.values[key]:
            text += f"    {description.value_identifier(value)} = 0x{value.value:X}\n"
    return text


def attribute(row: description.Attribute) -> str:
    kind = "str" if row.is_text else "int"
    fields = [
        f"name={literal(row.name.replace('-', '_'))}", f"constant={literal(row.constant)}",
        f"id=0x{row.id:08X}", f"type={kind}",
        "documentation=(\n" + long_literal(description.documentation(row), " " * 8) + "\n    )",
    ]
    if row.unit:
        fields.append(f"unit={literal(row.unit)}")
    if not row.readable:
        fields.append("readable=False")
    if row.writable:
        fields.append("writable=True")
    if row.instances:
        fields.append(f"instances={literal(row.instances.each)}")
        if row.instances.counted_by:
            fields.append(f"counted_by={literal(row.instances.counted_by.replace('-', '_'))}")
        fields.append(f"maximum_instances={row.instances.maximum}")
    return (f"\n{row.identifier}: Attribute[{kind}] = Attribute(\n"
            + "".join(f"    {field},\n" for field in fields) + ")\n"
            + docstring(description.documentation(row), ""))


def constants(api: description.Description) -> str:
    text = PREAMBLE.format(notice=NOTICE) + statuses(api) + enumerations(api) + "\n\n" + ATTRIBUTE_CLASS
    text += "".join(attribute(row) for row in api.listed)
    text += "\nATTRIBUTES: Dict[str, Attribute[Any]] = {\n"
    text += "".join(f'    "{row.identifier.lower()}": {row.identifier},\n' for row in api.listed)
    return text + '}\n"""All attributes by name, in the order of the listings."""\n'
