#!/usr/bin/env python3
"""Tests of the description of the interface in api/ and of its generator.

The description agrees with the parts of the interface that are written by hand: the functions and their
contracts in the public headers, the constants of values, and the library's own table of attributes.
"""

import pathlib
import re
import shutil
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "api"))

import description  # noqa: E402
import generate  # noqa: E402

API = description.read()
HEADERS = {name: (ROOT / "include" / name).read_text()
           for name in ("quenra.h", "quenra_attributes.h", "quenra_routing.h", "quenra_status.h")}
FUNCTION = re.compile(r"\b(QUENRA_[a-z]\w*|zoroco_ra_quenra_\w+)\(([^;{]*)\);")


def functions_of(header: str):
    """The name, the arguments and the comment of each function of a header. Functions without a comment of
    their own share that of the function before."""
    text = HEADERS[header]
    code = re.sub(r"/\*.*?\*/", lambda comment: " " * len(comment[0]), text, flags=re.S)
    for match in FUNCTION.finditer(code):
        yield match[1], match[2], text[text.rindex("/*", 0, match.start()):match.start()]


class Contracts(unittest.TestCase):
    """The functions that report each code, against the headers."""

    def test_every_is_exactly_the_functions_with_a_status(self):
        with_status = {name for name, *_ in functions_of("quenra.h") if name != "QUENRA_closeController"}
        with_status |= {name for name, arguments, _ in functions_of("quenra_routing.h")
                        if "zoerr_Status* status" in arguments}
        self.assertEqual(len(with_status), 24)
        self.assertEqual(set(API.functions["every"].names), with_status)

    def test_groups_contain_the_functions_of_their_title(self):
        functions = API.functions
        self.assertEqual(set(functions["every"].names) - {"QUENRA_openController"},
                         set(functions["handle"].names) | set(functions["routing"].names))
        self.assertLess(set(functions["request"].names), set(functions["every"].names))

    def test_code_in_the_contract_of_a_function_is_reported_by_it(self):
        reported = {status.constant: API.reporters(status) for status in API.statuses}
        found = 0
        for header in ("quenra.h", "quenra_routing.h"):
            for name, _, comment in functions_of(header):
                listed = re.search(r"\b(Returns|Reports)\b(.*)", comment, re.S)
                for constant in re.findall(r"QUENRA_STATUS_\w+", listed[2] if listed else ""):
                    found += 1
                    self.assertIn(name, reported[constant], constant)
        self.assertGreater(found, 50)


class Values(unittest.TestCase):
    def test_constants_have_the_numbers_of_the_header(self):
        numbers = dict(re.findall(r"#define (QUENRA_\w+) UINT32_C\((\w+)\)", HEADERS["quenra_attributes.h"]))
        constants = [value for values in API.values.values() for value in values if value.constant]
        self.assertGreater(len(constants), 8)
        for value in constants:
            self.assertEqual(int(numbers[value.constant], 0), value.value, value.constant)

    def test_every_selector_and_kind_of_the_header_is_described(self):
        names = set(re.findall(r"#define (QUENRA_(?:SELECTOR|LINK|EXPANSION|KIND)_\w+) ",
                               HEADERS["quenra_attributes.h"]))
        self.assertEqual(names, {value.constant for values in API.values.values() for value in values
                                 if value.constant})


class Schemas(unittest.TestCase):
    def test_subjects_are_those_of_the_description(self):
        text = (ROOT / "docs/schema/info.schema.json").read_text()
        listed = re.search(r'"Today one of: ([a-z, -]+)\."', text)[1]
        self.assertEqual(listed.split(", "), [subject.key for subject in API.subjects])


class RuleTable(unittest.TestCase):
    """The library's own table of attributes: source/user/attributes/attributetables.h."""

    KINDS = {"textField": "text", "byteField": "byte", "wordField": "word", "quadWordField": "quad word"}
    # Sources that the table does not name, or names as one part only.
    OTHER_SOURCES = {
        "QUENRA_ATTRIBUTE_FIRMWARE_VERSION": "Marten interface, or SMBIOS type 0, text at 0x05",
        "QUENRA_ATTRIBUTE_CONTROLLER_KIND":
            "computed from SMBIOS types 0x97, 0x98, 0x9F and 0x96, byte at 0x0C",
        "QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT":
            "computed from SMBIOS type 0x9E, bytes at 0x04 and 0x05",
        "QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT": "counted when the controller is opened",
        "QUENRA_ATTRIBUTE_INTERFACES_PRESENT": "found when the controller is opened",
    }

    @classmethod
    def setUpClass(cls):
        text = (ROOT / "source/user/attributes/attributetables.h").read_text()
        cls.lists = {name: (kind, int(number, 16), int(offset, 16), int(step), int(capacity))
                     for name, kind, number, offset, step, capacity in re.findall(
                         r"tListSource (\w+)\{[\w:]+,\s*(\w+)\((0x\w+), (0x\w+)\),\s*(\d+),\s*(\d+),", text)}
        cls.rows = re.findall(r"^    \{(QUENRA_ATTRIBUTE_\w+), +(.*)\},$", text, re.M)

    @staticmethod
    def structure(number: int) -> str:
        return f"SMBIOS type {number}" if number < 0x80 else f"SMBIOS type 0x{number:02X}"

    def source(self, constant: str, cells: str) -> str:
        if constant in self.OTHER_SOURCES:
            return self.OTHER_SOURCES[constant]
        if "tUnsignedRule::driver" in cells:
            return "controller interface"
        if match := re.search(r"(k\w+)\.first", cells):
            kind, number, first, step, capacity = self.lists[match[1]]
            offsets = [f"0x{first + step * position:02X}" for position in range(capacity)]
            listed = (f"{offsets[0]} to {offsets[-1]}" if step == 1
                      else f"{offsets[0]}, {offsets[1]}, ... {offsets[-1]}")
            return f"{self.structure(number)}, {self.KINDS[kind]}s at {listed}"
        kind, number, offset = re.search(r"(\w+Field)\((0x\w+), (0x\w+)\)", cells).groups()
        return f"{self.structure(int(number, 16))}, {self.KINDS[kind]} at 0x{int(offset, 16):02X}"

    def test_has_a_row_for_each_readable_attribute(self):
        described = {row.constant for row in API.attributes if row.readable}
        # The device path is read without an open controller.
        self.assertEqual({constant for constant, _ in self.rows},
                         described - {"QUENRA_ATTRIBUTE_DEVICE_PATH"})
        self.assertEqual(len(self.rows), 49)

    def test_sources_are_those_of_the_description(self):
        described = {row.constant: row.source for row in API.attributes}
        for constant, cells in self.rows:
            self.assertEqual(described[constant], self.source(constant, cells), constant)

    def test_instances_are_those_of_the_description(self):
        described = {row.constant: row.instances for row in API.attributes}
        for constant, cells in self.rows:
            if "ofMemoryModule" in cells:
                self.assertEqual(described[constant].key, "memory-module", constant)
            elif match := re.search(r"&(k\w+)", cells):
                self.assertEqual(described[constant].maximum, self.lists[match[1]][-1], constant)
            elif described[constant] is not None:
                self.assertEqual(described[constant].key, "processor", constant)
                self.assertIn("(0x04,", cells, constant)


class Faults(unittest.TestCase):
    """Faults of the data are refused, with the file and the entry."""

    def refused(self, file: str, old: str, new: str, message: str):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("attributes.toml", "statuses.toml"):
                shutil.copy(ROOT / "api" / name, folder)
            path = pathlib.Path(folder) / file
            text = path.read_text()
            self.assertIn(old, text)
            path.write_text(text.replace(old, new, 1))
            with self.assertRaisesRegex(description.Fault, message):
                description.read(pathlib.Path(folder))

    def test_attribute_of_another_type_than_its_id(self):
        self.refused("attributes.toml", "id = 0x20000600", "id = 0x10000600",
                     "PLATFORM_CODE: the id 0x10000600 is not of type unsigned")

    def test_private_attribute_without_the_key(self):
        self.refused("attributes.toml", "private = true\n", "", "'private' does not agree with the id")

    def test_id_with_a_selector(self):
        self.refused("attributes.toml", "id = 0x20000600", "id = 0x20100600", "bits outside")

    def test_name_that_does_not_follow_from_the_constant(self):
        self.refused("attributes.toml", 'constant = "QUENRA_ATTRIBUTE_PLATFORM_CODE"',
                     'constant = "QUENRA_ATTRIBUTE_PLATFORM_CODES"', "has to be QUENRA_ATTRIBUTE_PLATFORM_CODE")

    def test_repeated_id(self):
        self.refused("attributes.toml", "id = 0x10000100", "id = 0x10000200", "id 268435968 appears twice")

    def test_attribute_without_a_subject(self):
        self.refused("attributes.toml", '  "product-name",\n', "", "PRODUCT_NAME: no subject lists")

    def test_subject_with_an_unknown_attribute(self):
        self.refused("attributes.toml", '  "product-name",\n', '  "product-name",\n  "product",\n',
                     "there is no attribute 'product'")

    def test_subject_that_repeats_an_attribute(self):
        self.refused("attributes.toml", '  "product-name",\n', '  "product-name",\n  "product-name",\n',
                     "name 'product-name' appears twice")

    def test_unknown_key(self):
        self.refused("attributes.toml", 'unit = "MHz"', 'units = "MHz"',
                     "PROCESSOR_MAXIMUM_SPEED: unknown key 'units'")

    def test_unknown_instances_and_values(self):
        self.refused("attributes.toml", 'instances = "slot"', 'instances = "slots"', "no table instances.slots")
        self.refused("attributes.toml", 'values = "link-kind"', 'values = "link"', "no list 'link' in values")

    def test_missing_key(self):
        self.refused("statuses.toml", 'remedy = "Wait a moment and try again."\n', "",
                     "QUENRA_STATUS_BUSY: 'remedy' is missing")

    def test_cause_that_is_no_sentence(self):
        self.refused("statuses.toml", '"The device is busy."', '"The device is busy"', "has to be a sentence")

    def test_repeated_code(self):
        self.refused("statuses.toml", "code = -52031", "code = -52006", "code -52006 appears twice")

    def test_unknown_function(self):
        self.refused("statuses.toml", 'reported-by = ["QUENRA_getAttributeUTF8"]',
                     'reported-by = ["QUENRA_getAttribute"]', "is neither a function with a status nor a group")


class Parts(unittest.TestCase):
    """The generated parts of a file."""

    BEGIN = "// ---- Generated by ./dev generate from api/a.toml ----\n"
    END = "// ---- End of the generated part ----\n"

    def test_only_the_lines_between_the_marks_are_replaced(self):
        text = f"a\n{self.BEGIN}old\n{self.END}b\n{self.BEGIN}{self.END}c\n"
        self.assertEqual(generate.with_parts("f", text, ["1\n", "2\n"]),
                         f"a\n{self.BEGIN}\n1\n\n{self.END}b\n{self.BEGIN}\n2\n\n{self.END}c\n")

    def test_missing_mark_is_refused(self):
        for text in ("", self.BEGIN, self.END, self.END + self.BEGIN,
                     self.BEGIN + self.BEGIN + self.END + self.END):
            with self.assertRaisesRegex(description.Fault, "f: 1 generated parts belong into the file"):
                generate.with_parts("f", text, ["1\n"])

    def test_difference_names_the_file_and_the_line(self):
        difference = generate.difference("docs/a.md", "1\n2\n", "1\n3\n")
        self.assertIn("--- docs/a.md (present)\n", difference)
        self.assertIn("-2\n+3\n", difference)


class Outputs(unittest.TestCase):
    def test_python_constants_have_the_numbers_of_the_header(self):
        constants = {}
        exec(generate.FILES["bindings/python/quenra/_constants.py"](API), constants)
        header = dict(re.findall(r"^  (QUENRA_\w+) = (-?\w+),?$",
                                 HEADERS["quenra_status.h"] + HEADERS["quenra_attributes.h"], re.M))
        read = {status.constant: status.value for status in constants["Status"]}
        read |= {row.constant: row.id for row in constants["ATTRIBUTES"].values()}
        self.assertEqual({name: int(number, 0) for name, number in header.items()}, read)
        self.assertEqual(constants["Status"](-26942).remedy,
                         "Suspend the protection, update, and resume it afterwards.")

    def test_csharp_constants_have_the_numbers_of_the_header(self):
        text = generate.FILES["bindings/csharp/Constants.cs"](API)
        statuses = set(re.findall(r"^        \w+ = (-?\d+),$", text, re.M))
        ids = set(re.findall(r'^                "[a-z-]+[a-z0-9-]*", "\w+", (0x\w+),$', text, re.M))
        self.assertEqual(statuses, {str(status.code) for status in API.statuses})
        self.assertEqual(ids, {f"0x{row.id:08X}" for row in API.attributes})


if __name__ == "__main__":
    unittest.main()
