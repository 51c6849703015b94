"""The generated parts of the command line's tables: tools/quenra/tables/."""

import description
from outputs import literal

FORMS = {"plain": "plain", "hexadecimal": "hexadecimal", "memory-size": "memorySize",
         "interface-set": "interfaceSet"}
ACCESSES = {"read": "tAccess::read", "read, write": "tAccess::readAndWrite", "write": "tAccess::write"}


def identifier(key: str) -> str:
    return description.camel_case(key.replace("-", "_"))


def subject_name(key: str) -> str:
    return f"k{identifier(key)}"


def instances_name(instances: description.Instances | None) -> str:
    return "kSingle" if instances is None else f"kPer{identifier(instances.key)}"


def values_name(key: str) -> str:
    return f"k{identifier(key)}Values"


def subjects(api: description.Description) -> str:
    text = "".join(f"constexpr tSubjectRow {subject_name(subject.key)}{{{literal(subject.key)}, "
                   f"{literal(subject.title)}}};\n" for subject in api.subjects)
    names = "".join(f"    &{subject_name(subject.key)},\n" for subject in api.subjects)
    return f"{text}\nconstexpr const tSubjectRow* kSubjectOrder[] = {{\n{names}}};\n"


def instances(api: description.Description) -> str:
    constants = {row.name: row.constant for row in api.attributes}
    text = 'constexpr tInstanceRow kSingle{""};\n'
    for row in api.instances:
        maximum = "kInstanceLimit" if row.maximum == description.INSTANCE_LIMIT else row.maximum
        text += (f"constexpr tInstanceRow {instances_name(row)}{{{literal(row.text)}, "
                 f"{constants.get(row.counted_by, 0)}, {maximum}}};\n")
    return text


def values(api: description.Description) -> str:
    used = {row.values for row in api.attributes}
    text = ""
    for key, entries in api.values.items():
        if key in used:
            rows = "".join(f"    {{{entry.constant or entry.value}, {literal(entry.name)}}},\n"
                           for entry in entries)
            text += f"constexpr tNamedValue {values_name(key)}[] = {{\n{rows}}};\n"
    return text


def attribute(row: description.Attribute) -> str:
    # Trailing members that have their default value are left out.
    defaults = ["plain", "{}", "tAccess::read", "false"]
    trailing = [FORMS[row.form], values_name(row.values) if row.values else "{}", ACCESSES[row.access],
                "true" if row.per_interface else "false"]
    while trailing and trailing[-1] == defaults[len(trailing) - 1]:
        trailing.pop()
    members = [row.constant, literal(row.name), f"&{subject_name(row.subject)}",
               f"&{instances_name(row.instances)}", literal(row.unit or "")]
    texts = [literal(row.description), literal(row.source), *trailing]
    return f"    {{{', '.join(members)},\n     {', '.join(texts)}}},\n"


def attributes(api: description.Description) -> str:
    readable = "".join(attribute(row) for row in api.listed if row.readable)
    settings = "".join(attribute(row) for row in api.listed if not row.readable)
    return "\n".join([
        subjects(api), instances(api), values(api),
        f"constexpr tAttributeRow kAttributeRows[] = {{\n{readable}}};\n",
        f"constexpr tAttributeRow kSettingRows[] = {{\n{settings}}};\n"])


def statuses(api: description.Description) -> str:
    rows = "".join(f"    {{{row.constant}, {literal(row.constant)},\n     {literal(row.cause)},\n"
                   f"     {literal(row.remedy)}}},\n" for row in api.statuses)
    return f"constexpr tStatusRow kRows[] = {{\n{rows}}};\n"
