"""The generated parts of include/quenra.hpp: the status codes with their explanations, and the attributes."""

from __future__ import annotations

import textwrap

import description
from outputs import literal

WIDTH = 100

# The enumeration of a list of values: its name, and the enumerator of a value whose name does not serve.
ENUMERATIONS = {
    "link-kind": ("link_type", "Kind of a link.", {"another": "other"}),
    "expansion-kind": ("expansion_type", "Kind of an expansion.", {"another": "other"}),
    "memory-type": ("memory_technology",
                    "Type of a memory module as SMBIOS numbers it; a module can report other numbers.", {}),
}
TYPE_OF_UNIT = {"MHz": "megahertz", "MT/s": "megatransfers"}
TYPE_OF_FORM = {"memory-size": "memory_capacity", "interface-set": "interface_set"}


def comment(text, indent=""):
    return textwrap.wrap(text if text.endswith((".", "?", "!")) else text + ".", WIDTH,
                         initial_indent=indent + "// ", subsequent_indent=indent + "// ")


def enumerator(name, others):
    return others.get(name, name.lower())


def status_lines(api):
    yield "enum class status : std::int32_t {"
    for status in api.statuses:
        yield f"  {status.identifier.lower()} = {status.constant},"
    yield "};"
    yield ""
    yield "namespace detail {"
    yield ""
    yield "inline constexpr explanation explanations[] = {"
    for status in api.statuses:
        yield f'    {{{status.constant}, "{status.constant}",'
        yield f"     {literal(status.cause)},"
        yield f"     {literal(status.remedy)}}},"
    yield "};"
    yield ""
    yield "}  // namespace detail"


def value_type(attribute):
    if attribute.is_text:
        return "std::string"
    if attribute.values in ENUMERATIONS:
        return ENUMERATIONS[attribute.values][0]
    if attribute.values == "no-or-yes":
        return "bool"
    if attribute.unit in TYPE_OF_UNIT:
        return TYPE_OF_UNIT[attribute.unit]
    return TYPE_OF_FORM.get(attribute.form, "std::uint32_t")


def attribute_type(attribute):
    template = "attribute" if attribute.instances is None else "attribute_array"
    access = {"read": "", "read, write": ", access::read_write", "write": ", access::write"}
    return f"{template}<{value_type(attribute)}{access[attribute.access]}>"


def enumerations(api):
    for key, (name, meaning, others) in ENUMERATIONS.items():
        yield from comment(meaning)
        yield f"enum class {name} : std::uint32_t {{"
        for value in api.values[key]:
            yield f"  {enumerator(value.name, others)} = {value.constant or value.value},"
        yield "};"
        yield ""


def attribute_lines(api):
    yield from enumerations(api)
    for subject in api.subjects:
        yield f"// {subject.title}."
        for attribute in subject.attributes:
            instances = "" if attribute.instances is None else f"; one for each {attribute.instances.text}"
            yield from comment(attribute.description + instances)
            line = f"inline constexpr {attribute_type(attribute)} {attribute.identifier.lower()}"
            constant = f"{attribute.constant}}};"
            yield from ([line + "{" + constant] if len(line + constant) < WIDTH
                        else [line + "{", "    " + constant])
        yield ""
    yield "// Calls visit(name, attribute) for each attribute; the name is that of the command line."
    yield "template <class Visitor>"
    yield "void for_each_attribute(Visitor&& visit) {"
    for attribute in api.listed:
        yield f'  visit(std::string_view("{attribute.name}"), {attribute.identifier.lower()});'
    yield "}"


def part(lines):
    """The text between the marks, which clang-format leaves alone."""
    return "\n".join(["// clang-format off", *lines, "// clang-format on", ""])


def statuses(api: description.Description) -> str:
    return part(status_lines(api))


def attributes(api: description.Description) -> str:
    return part(attribute_lines(api))
