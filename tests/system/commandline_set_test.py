import struct
import unittest

from commandline import CommandLineTest

NUMBER_SETTING = 0x20051400
SETTING_OF_BOTH = 0x18000000
MARTEN_SELECTOR = 0x00200000
ANY_CHARACTERS = "Größe 漢字 🔧 *?\"'\\ %PATH%"


class Set(CommandLineTest):
    def requests(self):
        """The writes in the driver's log: interface, attribute id and size of each."""
        return [
            (entry["interface"],) + struct.unpack("<I12xi", bytes.fromhex(entry["input"])[:20])
            for entry in self.log()
            if entry.get("request") == "set-attribute"
        ]

    def written(self, *words):
        """The writes that the driver receives from a run of `set`. A success prints nothing."""
        self.machine("log", "--clear")
        run = self.quenra("set", *words)
        self.assertEqual((run.out, run.error), ("", ""), run)
        return self.requests()

    def test_number_is_read_back_from_the_interface_it_was_written_to(self):
        self.quenra("set", "driver-setting-2", "4000000000")
        self.quenra("set", "driver-setting-2", "0x11", "--marten")
        self.assertEqual(self.quenra("get", "driver-setting-2").out, "4000000000\n")
        self.assertEqual(self.quenra("get", "driver-setting-2", "--marten").out, "17\n")
        self.quenra("set", "driver-setting-2", "1", "--controller")
        self.assertEqual(self.quenra("get", "driver-setting-2").out, "1\n")

    def test_text_of_any_characters_is_read_back(self):
        self.machine("attribute", "allow-writes", "marten", "0x10000400")
        for text in (ANY_CHARACTERS, "", "*.py", "x" * 255):
            with self.subTest(text=text):
                self.quenra("set", "firmware-version", text)
                self.assertEqual(self.quenra("get", "firmware-version", "--marten").out, text + "\n")
                document = self.document("get", "firmware-version", "--marten", kind="get")
                self.assertEqual(document["attribute"]["value"], text)

    def test_number_is_a_request_of_four_bytes(self):
        self.assertEqual(self.written("driver-setting-2", "7"),
                         [("controller", NUMBER_SETTING, 4)])
        self.assertEqual(self.written("driver-setting-2", "7", "--marten"),
                         [("marten", NUMBER_SETTING | MARTEN_SELECTOR, 4)])

    def test_text_is_a_request_with_its_nul(self):
        size = len("Größe".encode()) + 1
        both = [("controller", SETTING_OF_BOTH, size),
                ("marten", SETTING_OF_BOTH | MARTEN_SELECTOR, size)]
        self.assertEqual(self.written("text-setting-of-both", "Größe"), both)
        self.assertEqual(self.written("text-setting-of-both", "Größe", "--both"), both)
        self.assertEqual(self.written("text-setting-of-both", "Größe", "--marten"), both[1:])

    def test_text_that_the_controller_does_not_take_is_offered_to_the_marten(self):
        self.machine("attribute", "allow-writes", "marten", "0x10000400")
        self.assertEqual(self.written("firmware-version", "9"),
                         [("controller", 0x10000400, 2), ("marten", 0x10000400, 2)])

    def test_document_contains_the_written_value(self):
        attribute = self.document("set", "driver-setting-1", "0x10", kind="set")["attribute"]
        self.assertEqual((attribute["id"], attribute["interface"], attribute["value"]),
                         ("0x20044C00", "default", 16))
        attribute = self.document("set", "text-setting-of-both", ANY_CHARACTERS, kind="set")["attribute"]
        self.assertEqual((attribute["interface"], attribute["value"]), ("both", ANY_CHARACTERS))

    def test_wrong_input_reaches_no_driver(self):
        for words in (
            ("driver-setting-1",),
            ("driver-setting-1", "x"),
            ("driver-setting-1", "4294967296"),
            ("driver-setting-1", "1", "--both"),
            ("product-name", "a", "--controller"),
            ("text-setting-of-both", "a", "--controller"),
            ("text-setting-of-both", "a", "--instance", "1"),
            ("driver-setting-1", "1", "--controller", "--marten"),
            ("no-such-name", "1"),
        ):
            with self.subTest(words=words):
                self.assertEqual(self.quenra("set", *words, exit_code=2).out, "")
                error = self.document("set", *words, kind="error", exit_code=2)["error"]
                self.assertEqual(error["cause"], "usage")
        self.assertEqual(self.log(), [])

    def test_read_only_attribute_is_rejected(self):
        for words in (("product-name", "a"), ("processor-setting", "1"), ("driver-setting-1", "1", "--marten")):
            with self.subTest(words=words):
                run = self.quenra("set", *words, exit_code=3)
                self.assert_failure(run, -26934, "QUENRA_STATUS_NOT_SUPPORTED")
                self.assertIn(" is read-only on th", run.error)
                self.document("set", *words, kind="error", exit_code=3)

    def test_marten_interface_of_a_machine_without_one(self):
        self.machine("scenario", "--martens", "0")
        run = self.quenra("set", "driver-setting-2", "1", "--marten", exit_code=3)
        self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")
        self.assertEqual(self.written("text-setting-of-both", "a"), [("controller", SETTING_OF_BOTH, 2)])

    def test_text_that_is_too_long_is_not_written(self):
        self.machine("log", "--clear")
        run = self.quenra("set", "text-setting-of-both", "x" * 256, exit_code=2)
        self.assertIn("the text has 256 bytes; at most 255 are accepted\n", run.error)
        self.assertEqual(self.requests(), [])

    def test_failure_and_warning_of_the_driver_are_printed(self):
        self.machine("answer", "add", "controller", "set-attribute", "--code", "-52007")
        run = self.quenra("set", "driver-setting-1", "1", exit_code=1)
        self.assert_failure(run, -52007, "QUENRA_STATUS_TIME_OUT")
        self.machine("answer", "add", "controller", "set-attribute", "--times", "0", "--add-code", "77")
        run = self.quenra("set", "driver-setting-1", "1")
        self.assertIn("quenra: warning: writing driver-setting-1\n  77\n", run.error)
        document = self.document("set", "driver-setting-1", "1", kind="set")
        self.assertEqual(document["attribute"]["status"]["code"], 77)

    def test_absent_controller_has_its_exit_code(self):
        self.machine("scenario", "--controllers", "0")
        run = self.quenra("set", "driver-setting-1", "1", exit_code=4)
        self.assert_failure(run, -26932, "QUENRA_STATUS_NO_CONTROLLER")


if __name__ == "__main__":
    unittest.main()
