"""The generated parts of docs/attributes.md and docs/status-codes.md."""

import description

TITLES = ("Id", "Name", "Type", "Access", "Instances", "Unit", "Meaning", "Source")
FIRST_SECTION = "Success"


def table_row(cells) -> str:
    return f"| {' | '.join(cell or '-' for cell in cells)} |\n"


def instances(row: description.Attribute) -> str:
    if row.instances is None:
        return ""
    counter = f", counted by {row.instances.counted_by}" if row.instances.counted_by else ""
    return f"1 per {row.instances.text}{counter}"


def attributes(api: description.Description) -> str:
    text = table_row(TITLES) + "|" + "---|" * len(TITLES) + "\n"
    for row in api.listed:
        text += table_row([f"`0x{row.id:08X}`", f"`{row.name}`", row.type, row.access, instances(row),
                           row.unit, row.description, row.source])
    return text


def anchor(title: str) -> str:
    """The fragment of a heading."""
    return "#" + title.lower().replace(" ", "-")


def reporters(api: description.Description, status: description.Status) -> str:
    if not status.reported_by:
        return "no function; the library uses the code internally"
    links = []
    for entry in status.reported_by:
        if entry in api.functions:
            title = api.functions[entry].title
            links.append(f"[{title}]({anchor(title)})")
        else:
            links.append(f"`{entry}`")
    return ", ".join(links)


def statuses(api: description.Description) -> str:
    text = f"### {FIRST_SECTION}\n"
    for row in api.statuses:
        if row.section:
            text += f"\n### {row.section}\n"
        text += (f"\n#### {row.constant}\n\n- **Code:** {row.code}\n- **Cause:** {row.cause}\n"
                 f"- **Remedy:** {row.remedy}\n- **Reported by:** {reporters(api, row)}\n")
    return text


def status_index(api: description.Description) -> str:
    text = table_row(("Code", "Constant")) + "|---|---|\n"
    for row in sorted(api.statuses, key=lambda row: (abs(row.code), row.code)):
        text += table_row((str(row.code), f"[`{row.constant}`]({anchor(row.constant)})"))
    return text


def functions(api: description.Description) -> str:
    return "\n".join(f"### {group.title[0].upper()}{group.title[1:]}\n\n"
                     + "".join(f"- `{name}`\n" for name in group.names)
                     for group in api.functions.values())
