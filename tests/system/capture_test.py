"""capture, the captured machine elsewhere, and the simulated machine as a captured one."""

import json
import unittest

from commandline import CommandLineTest, Files


def without_durations(document):
    """The document without the members that hold durations."""
    if isinstance(document, dict):
        return {name: without_durations(member) for name, member in document.items()
                if name != "microseconds"}
    if isinstance(document, list):
        return [without_durations(item) for item in document]
    return document


def reading(capture, name):
    return next(r for r in capture["library"]["readings"] if r["name"] == name)


class CaptureTest(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.files = Files(self)

    def capture(self, name, *options):
        """Captures the machine and returns the file's document, which follows its schema."""
        run = self.quenra("capture", self.files.typed(name), *options)
        self.assertIn(f"wrote '{self.files.typed(name)}'", run.out)
        document = json.loads(self.files[name].read_text(encoding="utf-8"))
        self.schema.check(document)
        return document

    def load(self, name):
        self.machine("load", self.files.typed(name))


class Capture(CaptureTest):
    def test_holds_the_answers_of_driver_and_library(self):
        capture = self.capture("a.json")
        self.assertEqual(capture["interfaces"], {"controller": 1, "marten": 1, "router": 1})
        self.assertEqual(capture["library"]["opening"]["status"], 0)
        self.assertEqual(reading(capture, "serial-number")["value"], "VQ02C47A9")
        self.assertEqual(capture["driver"]["smbios"]["values"]["tableSize"],
                         len("".join(capture["driver"]["smbios"]["table"])) // 2)
        self.assertIn({"id": "0x20051400", "status": 0, "size": 4, "bytes": "fa000000", "shown": "250"},
                      without_durations(capture["driver"]["controller"]["attributes"]))
        self.assertEqual(len(capture["library"]["terminals"]["list"]), 11)
        self.assertEqual(capture["versions"]["program"], capture["versions"]["library"])

    def test_writes_nothing_to_the_controller(self):
        self.machine("log", "--clear")
        self.capture("a.json")
        sent = {entry["request"] for entry in self.log() if entry.get("request")}
        self.assertIn("exchange-values", sent)
        self.assertEqual({request for request in sent
                          if "set-attribute" in request or "send-command" in request
                          or "program" in request or "reserve" in request}, set())

    def test_anonymous_capture_holds_no_serial_number(self):
        self.capture("a.json", "--anonymous")
        text = self.files["a.json"].read_text(encoding="utf-8")
        digits = "".join(text.replace('"', "").replace(",", "").split())
        for number in ("VQ02C47A9", "5A0C11D7"):
            self.assertNotIn(number, text)
            self.assertNotIn(number.encode().hex(), digits)

    def test_machine_without_controller_is_captured_with_the_reason(self):
        self.machine("scenario", "--controllers", "0")
        run = self.quenra("capture", self.files.typed("a.json"))
        self.assertIn("the controller cannot be opened, which the capture shows: -26932", run.error)
        document = self.document("capture", self.files.typed("b.json"), kind="capture")
        self.assertEqual(document["opening"]["status"]["code"], -26932)

    def test_existing_file_is_kept_without_force(self):
        self.capture("a.json")
        run = self.quenra("capture", self.files.typed("a.json"), exit_code=1)
        self.assertIn("already exists", run.error)
        self.capture("a.json", "--force")

    def test_info_and_plan_show_the_captured_machine(self):
        self.capture("a.json")
        here = self.document("info", kind="info")
        self.machine("scenario", "--controllers", "0")
        self.quenra("info", exit_code=4)
        there = self.document("info", "--from", self.files.typed("a.json"), kind="info")
        self.assertEqual(there, here)

    def test_captures_of_two_machines_differ(self):
        self.capture("a.json")
        self.machine("attribute", "set", "marten", "0x10000400", "--text", "1.5.0f1")
        self.capture("b.json")
        run = self.quenra("diff", self.files.typed("a.json"), self.files.typed("b.json"), exit_code=9)
        self.assertRegex(run.out, r"(?m)^firmware-version\[marten\] +1\.4\.0f7 +1\.5\.0f1$")
        run = self.quenra("diff", self.files.typed("a.json"), self.files.typed("b.json"), "--json",
                          exit_code=9)
        document = json.loads(run.out)
        self.schema.check(document)
        self.assertIn("firmware-version[marten]",
                      [difference["subject"] for difference in document["differences"]])


class Load(CaptureTest):
    def test_loaded_machine_is_captured_with_the_same_content(self):
        self.machine("scenario", "--martens", "0", "--structure-byte", "0x9D/4=0")
        self.machine("attribute", "remove", "controller", "0x20044C00")
        self.machine("encryption", "on")
        first = self.capture("a.json")
        self.machine("reset")
        self.load("a.json")
        self.assertEqual(without_durations(self.capture("b.json")), without_durations(first))
        run = self.quenra("diff", self.files.typed("a.json"), self.files.typed("b.json"))
        self.assertEqual(run.out, "no differences\n")

    def test_loaded_delay_is_that_of_the_capture(self):
        capture = self.capture("a.json")
        for answer in capture["driver"]["controller"]["attributes"]:
            answer["microseconds"] = 300_000 if answer["id"] == "0x20051400" else 0
        self.files["slow.json"].write_text(json.dumps(capture), encoding="utf-8")
        self.load("slow.json")
        slow = self.capture("b.json")
        times = {r["name"]: r["microseconds"] for r in slow["library"]["readings"]}
        self.assertGreater(times["driver-setting-2"], 290_000)
        self.assertLess(times["driver-setting-1"], 290_000)

    def test_capture_that_cannot_be_imitated_changes_nothing(self):
        capture = self.capture("a.json")
        capture["driver"]["smbios"]["table"] = ["00" * 32] * 2049
        self.files["large.json"].write_text(json.dumps(capture), encoding="utf-8")
        with self.assertRaisesRegex(RuntimeError, "65568 bytes of SMBIOS table"):
            self.load("large.json")
        self.assertEqual(self.quenra("get", "product-name").out, "qctl-8840\n")

    def test_file_that_is_no_capture_is_refused_with_the_member_at_fault(self):
        self.files["none.json"].write_text("{}", encoding="utf-8")
        with self.assertRaisesRegex(RuntimeError, "kind is missing"):
            self.load("none.json")


if __name__ == "__main__":
    unittest.main()
