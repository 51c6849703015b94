"""The module report, which runs on the control node only."""

from __future__ import annotations

import json
import pathlib

from ansible.plugins.action import ActionBase

OPTIONS = {
    "kind": {"type": "str", "choices": ["inventory", "update"], "required": True},
    "file": {"type": "path"},
}
NONE = "-"
HEADINGS = {
    "inventory": ("Rack", "Product", "Serial number", "BIOS", "Marten", "Memory", "Self-test", "Remark"),
    "update": ("Rack", "Result", "BIOS", "Marten", "Reason"),
}


def table(headings, rows):
    """The lines of a table with aligned columns; the last column is not padded."""
    cells = [list(headings), *([str(cell) if cell not in (None, "") else NONE for cell in row] for row in rows)]
    widths = [max(len(row[column]) for row in cells) for column in range(len(headings))]
    return ["  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in cells]


def reason_of(result):
    return " ".join(result.get("reasons") or ()) or result.get("msg") or ""


def inventory_row(name, result):
    """The entry of a rack in the inventory, and its row."""
    if not result or not result.get("rack"):
        state = "not reached" if not result or result.get("unreachable") else "failed"
        entry = {"state": state, "reason": reason_of(result or {})}
        return entry, (name, "", "", "", "", "", "", ": ".join(filter(None, entry.values())))
    rack = dict(result["rack"])
    memory, self_test = rack["memory_mib"], rack.get("self_test")
    remark = "awaits a restart" if rack["awaits_restart"] else (
        "" if rack["update_supported"] else "no firmware updates")
    return {"state": "read", **rack}, (
        name, rack["product"], rack["serial_number"], rack["bios"], rack["marten"],
        f"{memory} MiB" if memory else "", "" if self_test is None else "passed" if self_test else "failed",
        remark)


def change(before, after):
    if after and before and before != after:
        return f"{before} -> {after}"
    return after or before


def update_row(name, result):
    """The entry of a rack in the summary of an update, and its row."""
    result = result or {}
    before, after = result.get("before") or {}, result.get("after") or {}
    state = "unreachable" if result.get("unreachable") else result.get("state") or (
        "failed" if result else "not started")
    if state == "planned":
        after = {device.lower(): version for device, version in (result.get("expected") or {}).items()}
    entry = {"state": state, "before": before, "after": after, "reason": reason_of(result)}
    return entry, (name, state.replace("_", " "), change(before.get("bios"), after.get("bios")),
                   change(before.get("marten"), after.get("marten")), entry["reason"])


class ActionModule(ActionBase):
    _requires_connection = False
    _supports_check_mode = True

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        _, options = self.validate_argument_spec(OPTIONS)
        kind = options["kind"]
        row_of = inventory_row if kind == "inventory" else update_row
        variable = f"quenra_{kind}_result"
        entries, rows = {}, []
        for name in task_vars["ansible_play_hosts_all"]:
            entries[name], row = row_of(name, task_vars["hostvars"][name].get(variable))
            rows.append(row)
        lines = table(HEADINGS[kind], rows)
        self._display.display("\n" + "\n".join(lines) + "\n")
        if options["file"] and not self._task.check_mode:
            self.write(pathlib.Path(options["file"]),
                       json.dumps({"racks": entries}, indent=2, sort_keys=True) + "\n")
        # A change is one of a rack, not of the report.
        result.update(changed=False, racks=entries, table=lines)
        return result

    @staticmethod
    def write(path, text):
        """Replaces the file at once: a reader never finds a part of it."""
        path.parent.mkdir(parents=True, exist_ok=True)
        temporary = path.with_name(path.name + ".tmp")
        temporary.write_text(text, encoding="utf-8")
        temporary.replace(path)
