"""Generated machines, unusual ones included: a capture of a loaded capture has the same content.

Machine N is always the same: its number seeds the generator. With QUENRA_KEEP_CAPTURES, a folder, the
captures are kept there.
"""

import copy
import json
import os
import pathlib
import random
import unittest

from capture_test import CaptureTest, without_durations

MACHINES = 26
NOT_SUPPORTED = -26934
CODES = (-1, NOT_SUPPORTED, -26930, -52007, -52009, 7)


def table_of(machine):
    return bytes.fromhex("".join(machine["driver"]["smbios"]["table"]))


def set_table(machine, table):
    lines = [table[i:i + 32].hex() for i in range(0, len(table), 32)]
    smbios = machine["driver"]["smbios"]
    smbios["table"] = lines
    smbios["sizes"]["tableSize"] = smbios["values"]["tableSize"] = len(table)


# ---- What makes a machine unusual ----

def without_marten(machine, _):
    machine["interfaces"]["marten"] = 0
    machine["driver"]["marten"] = {"opening": None, "attributes": []}


def without_router(machine, _):
    machine["interfaces"]["router"] = 0
    machine["driver"]["topography"] = None


def change_topography(machine, **members):
    if machine["driver"]["topography"]:  # not without a router
        machine["driver"]["topography"].update(members)


def unknown_topography(machine, _):
    change_topography(machine, bytes=b"a router of later years".hex())


def failing_topography(machine, generator):
    change_topography(machine, status=generator.choice(CODES), bytes="")


def without_controller(machine, _):
    machine["interfaces"]["controller"] = 0


def two_controllers(machine, _):
    machine["interfaces"]["controller"] = 2


def truncated_table(machine, generator):
    table = table_of(machine)
    set_table(machine, table[:generator.randrange(len(table))])


def empty_table(machine, _):
    set_table(machine, b"")


def damaged_bytes(machine, generator):
    table = bytearray(table_of(machine))
    for _ in range(generator.randint(1, 12)):
        table[generator.randrange(len(table))] = generator.randrange(256)
    set_table(machine, bytes(table))


def damaged_strings(machine, generator):
    table = table_of(machine)
    start = table.index(b"qctl-8840")
    replacement = bytes(generator.choice((0x01, 0x1B, 0x80, 0xC3, 0xFF, 0x41)) for _ in range(9))
    set_table(machine, table.replace(table[start:start + 9], replacement))


def table_without_end(machine, _):
    set_table(machine, table_of(machine).rstrip(b"\0"))


def failing_attribute(machine, generator):
    answer = generator.choice(machine["driver"]["controller"]["attributes"]
                              + machine["driver"]["marten"]["attributes"])
    answer["status"] = generator.choice(CODES)
    answer["size"] = generator.randrange(400)
    if answer["status"] < 0:
        answer["bytes"] = ""


def failing_attributes(machine, generator):
    for _ in range(4):
        failing_attribute(machine, generator)


def long_marten_text(machine, generator):
    text = bytes(generator.randrange(32, 127) for _ in range(255)) + b"\0"
    for answer in machine["driver"]["marten"]["attributes"]:
        if answer["id"].endswith("0400"):
            answer.update(bytes=text.hex(), size=len(text))


def marten_text_without_nul(machine, _):
    for answer in machine["driver"]["marten"]["attributes"]:
        if answer["id"].endswith("0400"):
            answer.update(bytes=b"1.4.0f7".hex(), size=7)


def failing_exchange(machine, generator):
    machine["driver"]["smbios"]["values"]["status"] = generator.choice(CODES)


def failing_sizes(machine, generator):
    machine["driver"]["smbios"]["sizes"]["status"] = generator.choice(CODES)


def encrypted_drive(machine, _):
    machine["update"]["drive"]["encrypted"] = True


def missing_tool(machine, _):
    machine["update"]["driverStoreTool"]["exists"] = False


CHANGES = (without_marten, without_router, unknown_topography, failing_topography,
           without_controller, two_controllers, truncated_table, empty_table, damaged_bytes,
           damaged_strings, table_without_end, failing_attribute, failing_attributes,
           long_marten_text, marten_text_without_nul, failing_exchange, failing_sizes,
           encrypted_drive, missing_tool)


def generated(usual, number):
    """The changes and the capture of machine `number`: each change alone, then three at a time."""
    generator = random.Random(number)
    changes = ([CHANGES[number]] if number < len(CHANGES) else generator.sample(CHANGES, 3))
    machine = copy.deepcopy(usual)
    for change in changes:
        change(machine, generator)
    return [change.__name__ for change in changes], machine


class Machines(CaptureTest):
    def test_capture_of_a_loaded_capture_has_the_same_content(self):
        usual = self.capture("usual.json")
        for number in range(MACHINES):
            names, machine = generated(usual, number)
            with self.subTest(number=number, changes=names):
                self.check(machine, "-".join(names).replace("_", "-"))

    def check(self, machine, name):
        self.files["generated.json"].write_text(json.dumps(machine), encoding="utf-8")
        self.load("generated.json")
        first = self.capture("first.json", "--force")
        self.keep(name)
        self.load("first.json")
        second = self.capture("second.json", "--force")
        self.assertEqual(without_durations(second), without_durations(first))
        # The capture is of the generated machine, not of another.
        self.assertEqual(first["interfaces"], machine["interfaces"])
        if first["library"]["opening"]["status"] >= 0:
            self.assertEqual(first["driver"]["smbios"]["table"], machine["driver"]["smbios"]["table"])

    def keep(self, name):
        folder = os.environ.get("QUENRA_KEEP_CAPTURES")
        if folder:
            text = self.files["first.json"].read_text(encoding="utf-8")
            (pathlib.Path(folder) / f"{name}.json").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    unittest.main()
