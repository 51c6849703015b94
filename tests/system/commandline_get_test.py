import unittest

from commandline import CommandLineTest


class Get(CommandLineTest):
    def value(self, *words):
        """The value as text; the document must contain the same value."""
        printed = self.quenra("get", *words).out
        document = self.document("get", *words, kind="get")
        self.assertEqual(document["attribute"]["state"], "value")
        self.assertEqual(printed, f"{document['attribute']['value']}\n")
        return document["attribute"]["value"]

    def test_text_by_name_constant_and_id(self):
        for name in ("product-name", "QUENRA_ATTRIBUTE_PRODUCT_NAME", "0x10000100", "268435712"):
            self.assertEqual(self.value(name), "qctl-8840", name)

    def test_number_is_printed_without_its_unit_where_no_terminal_is(self):
        self.assertEqual(self.value("memory-size", "--instance", "2"), 8192)
        self.assertEqual(self.value("0x2000D002"), 8192)

    def test_several_attributes(self):
        names = ("product-name", "serial-number", "memory-size")
        self.assertEqual(self.quenra("get", *names, "--instance", "2").out,
                         "qctl-8840\nVQ02C47A9\n8192\n")
        document = self.document("get", *names, "--instance", "2", kind="get")
        self.assertEqual([reading["value"] for reading in document["readings"]],
                         ["qctl-8840", "VQ02C47A9", 8192])
        self.assertNotIn("attribute", document)

    def test_failure_among_several_attributes_leaves_its_line_empty(self):
        self.machine("attribute", "remove", "controller", "0x20044C00")
        run = self.quenra("get", "driver-setting-1", "driver-setting-2", exit_code=3)
        self.assertEqual(run.out, "\n250\n")
        self.assertIn("driver-setting-1 is not supported", run.error)
        document = self.document("get", "driver-setting-1", "driver-setting-2", kind="get", exit_code=3)
        self.assertEqual([reading["state"] for reading in document["readings"]],
                         ["notSupported", "value"])

    def test_unit_is_in_the_document(self):
        attribute = self.document("get", "memory-speed", kind="get")["attribute"]
        self.assertEqual((attribute["unit"], attribute["shown"]), ("MT/s", "3200 MT/s"))

    def test_interface_is_chosen(self):
        self.assertEqual(self.value("firmware-version"), "1.4.0f7")
        self.assertEqual(self.value("firmware-version", "--marten"), "1.4.0f7")
        self.assertEqual(self.value("firmware-version", "--controller"), "2.1.0f3")

    def test_value_set_in_the_driver_is_read(self):
        self.machine("attribute", "set", "controller", "0x20051400", "--number", "4000000000")
        self.assertEqual(self.value("driver-setting-2"), 4000000000)

    def test_long_text_is_printed_completely(self):
        text = "x" * 255
        self.machine("attribute", "set", "marten", "0x10200400", "--text", text)
        self.assertEqual(self.value("firmware-version", "--marten"), text)

    def test_device_path_needs_no_controller(self):
        self.machine("scenario", "--controllers", "0", "--martens", "0")
        self.assertTrue(self.value("device-path").startswith("\\\\?\\"))

    def test_unlisted_id_is_read_from_the_driver(self):
        self.machine("attribute", "set", "marten", "0x20212300", "--number", "7")
        self.assertEqual(self.value("0x20212300"), 7)
        attribute = self.document("get", "0x20012300", "--marten", kind="get")["attribute"]
        self.assertIsNone(attribute["name"])

    def test_escape_codes_in_a_text_are_shown_rather_than_sent(self):
        self.machine("attribute", "set", "marten", "0x10200400", "--bytes", "41 1B 5B 33 31 6D FF 00")
        run = self.quenra("get", "firmware-version", "--marten")
        self.assertEqual(run.out, "A\\x1B[31m\N{REPLACEMENT CHARACTER}\n")
        attribute = self.document("get", "firmware-version", "--marten", kind="get")["attribute"]
        self.assertEqual(attribute["value"], "A\x1b[31m\N{REPLACEMENT CHARACTER}")

    def test_warning_of_the_driver_goes_with_the_value(self):
        self.machine("answer", "add", "controller", "get-attribute", "--times", "0", "--add-code", "77")
        run = self.quenra("get", "driver-setting-1")
        self.assertEqual(run.out, "5\n")
        self.assertIn("quenra: warning: reading driver-setting-1\n  77\n", run.error)
        document = self.document("get", "driver-setting-1", kind="get")
        self.assertEqual([warning["code"] for warning in document["warnings"]], [77])
        self.assertEqual(document["attribute"]["value"], 5)


if __name__ == "__main__":
    unittest.main()
