"""The part of the module info that runs on the control node."""

from __future__ import annotations

from ansible.plugins.action import ActionBase

from ansible_collections.quenra.rack.plugins.plugin_utils.rack import (
    COMMAND_OPTION, INCOMPLETE_VERSION, Rack, RackError, reasons_of)

OPTIONS = COMMAND_OPTION | {"self_test": {"type": "bool", "default": True}}
KIBIBYTES = 0x8000  # the unit of a memory size with this bit
UNKNOWN_SIZES = (0x7FFF, 0xFFFF)  # 32 GiB or more, which the field cannot represent; unknown


def memory_of(sizes):
    """The memory in MiB, or None if the size of a module is not known."""
    if not sizes or any(size in UNKNOWN_SIZES for size in sizes):
        return None
    return sum((size & ~KIBIBYTES) // 1024 if size & KIBIBYTES else size for size in sizes)


def rack_of(document):
    """The facts of a rack, from the document of `quenra info`."""
    readings = [reading for subject in document["subjects"] for reading in subject["attributes"]
                if reading["state"] == "value" and reading["name"]]
    values = {}
    for reading in readings:
        values.setdefault((reading["name"], reading["interface"]), []).append(reading["value"])

    def value(name, interface="default"):
        return values.get((name, interface), [None])[0]

    sizes = values.get(("memory-size", "default"), [])
    marten = value("firmware-version", "marten")
    return {
        "manufacturer": value("system-manufacturer"),
        "product": value("product-name"),
        "serial_number": value("serial-number"),
        "revision": value("system-version"),
        "bios": value("firmware-version", "controller"),
        "marten": marten,
        "awaits_restart": marten == INCOMPLETE_VERSION,
        "update_supported": bool(value("firmware-update-support")),
        "memory_mib": memory_of(sizes),
        "memory_modules": len(sizes),
        "slots": value("slot-count"),
    }


class ActionModule(ActionBase):
    _supports_check_mode = True

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        _, options = self.validate_argument_spec(OPTIONS)
        rack = Rack(self, options["command"])
        try:
            document = rack.document("info")
            if document["kind"] != "info":
                raise RackError(*reasons_of(document))
            facts = rack_of(document)
            if options["self_test"]:
                facts["self_test"] = rack.document("self-test")["kind"] == "self-test"
            result.update(rack=facts, ansible_facts={"quenra_rack": facts})
        except RackError as error:
            result.update(failed=True, reasons=error.reasons, msg=" ".join(error.reasons))
        return result
