"""The generated parts of include/quenra_attributes.h and include/quenra_status.h."""

import textwrap

import description

WIDTH = 100

# The enumerations of the header and the attributes that each contains.
ENUMERATIONS = {
    "QUENRA_TextAttribute": lambda row: row.is_text and row.readable,
    "QUENRA_TextSetting": lambda row: row.is_text and not row.readable,
    "QUENRA_UnsignedAttribute": lambda row: not row.is_text,
}
INVENTORIES = {
    "QUENRA_FOR_EACH_TEXT_ATTRIBUTE": "QUENRA_TextAttribute",
    "QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE": "QUENRA_UnsignedAttribute",
}
INVENTORY_COMMENT = """\
/* Inventories: X(id, name) for each attribute that can be read. The name is that of the command line.
 *
 *   #define PRINT_TEXT(id, name) printText(id, name);
 *   QUENRA_FOR_EACH_TEXT_ATTRIBUTE(PRINT_TEXT) */
"""


def comment(text: str) -> str:
    """A comment of an enumerator."""
    # The end of the comment is part of the last word.
    lines = textwrap.wrap(text + "\0*/", WIDTH, initial_indent="  /* ", subsequent_indent="   * ",
                          break_long_words=False, break_on_hyphens=False)
    return "\n".join(lines).replace("\0", " ") + "\n"


def enumeration(name: str, entries: list[str]) -> str:
    """Entries are the text before the enumerator's comma and the line end."""
    return f"enum {name} {{\n" + ",\n".join(entries) + "\n};\n"


def rows_of(api: description.Description, name: str) -> list[description.Attribute]:
    return [row for row in api.attributes if ENUMERATIONS[name](row)]


def attribute(row: description.Attribute, first: bool) -> str:
    text = ""
    if row.section:
        text += ("" if first else "\n") + comment(row.section)
    if row.header:
        text += comment(row.header)
    return text + f"  {row.constant} = 0x{row.id:08X}"


def inventory(macro: str, rows: list[description.Attribute]) -> str:
    lines = [f"#define {macro}(X)"] + [f'  X({row.constant}, "{row.name}")' for row in rows]
    # The continuation marks are in one column, as clang-format places them.
    width = max(len(line) for line in lines[:-1])
    return "\n".join([f"{line:<{width}} \\" for line in lines[:-1]] + lines[-1:]) + "\n"


def attributes(api: description.Description) -> str:
    parts = []
    for name in ENUMERATIONS:
        rows = rows_of(api, name)
        parts.append(enumeration(name, [attribute(row, row is rows[0]) for row in rows]))
    inventories = [inventory(macro, rows_of(api, name)) for macro, name in INVENTORIES.items()]
    parts.append(INVENTORY_COMMENT + inventories[0])
    parts += inventories[1:]
    return "\n".join(parts)


def status(row: description.Status) -> str:
    title = f"\n  /* ---- {row.section} ---- */\n\n" if row.section else ""
    return title + comment(row.comment) + f"  {row.constant} = {row.code}"


def statuses(api: description.Description) -> str:
    return enumeration("QUENRA_Status", [status(row) for row in api.statuses])
