import re
import unittest

from commandline import CommandLineTest


def readings(document):
    return [r for subject in document["subjects"] for r in subject["attributes"]]


def values(document, name):
    return [r["value"] for r in readings(document) if r["name"] == name]


def states(document, name):
    return [r["state"] for r in readings(document) if r["name"] == name]


class Info(CommandLineTest):
    def test_shows_the_default_machine_as_an_aligned_table(self):
        run = self.quenra("info")
        self.assertEqual(run.error, "")
        self.assertRegex(run.out, r"(?m)^Identity$")
        self.assertRegex(run.out, r"(?m)^  product-name +qctl-8840$")
        self.assertRegex(run.out, r"(?m)^  memory-size\[2\] +8192 MiB$")
        self.assertRegex(run.out, r"(?m)^  link-kind +3 \(Thunderbolt\)$")
        rows = [row for row in run.out.splitlines() if row.startswith("  ")]
        columns = {re.match(r"  \S+ +", row).end() for row in rows}
        self.assertEqual(len(columns), 1, run)

    def test_document_holds_the_machines_values(self):
        document = self.document("info", kind="info")
        self.assertEqual(document["warnings"], [])
        self.assertEqual(values(document, "serial-number"), ["VQ02C47A9"])
        self.assertEqual(values(document, "memory-size"), [16384, 16384, 8192])
        self.assertEqual(values(document, "slot-location"), ["04:0", "04:1", "05:0", "11:0"])
        self.assertEqual(values(document, "slot-number"), [2, 3, 5, 8])
        self.assertEqual(values(document, "bridge-members")[0], "01:2,03:4")
        self.assertEqual(values(document, "processor-stepping"), [10])
        self.assertEqual(values(document, "interfaces-present"), [0x300000])
        self.assertEqual(values(document, "driver-setting-2"), [250])

    def test_document_holds_every_attribute_of_the_list(self):
        listed = self.document("attributes", kind="attributes")["attributes"]
        shown = {(r["name"], r["id"], r["type"]) for r in readings(self.document("info", kind="info"))}
        self.assertEqual({(a["name"], a["id"], a["type"]) for a in listed if a["readable"]}, shown)

    def test_attribute_that_the_driver_refuses_is_shown_as_not_supported(self):
        self.machine("attribute", "remove", "controller", "0x20044C00")
        self.assertRegex(self.quenra("info").out, r"(?m)^  driver-setting-1 +not supported$")
        document = self.document("info", kind="info")
        self.assertEqual(states(document, "driver-setting-1"), ["notSupported"])
        self.assertEqual(states(document, "driver-setting-2"), ["value"])

    def test_subject_limits_the_listing(self):
        document = self.document("info", "--subject", "memory", kind="info")
        self.assertEqual([subject["subject"] for subject in document["subjects"]], ["memory"])
        self.assertEqual(values(document, "memory-size"), [16384, 16384, 8192])
        self.assertTrue(self.quenra("info", "--subject", "memory").out.startswith("Memory\n"))
        self.quenra("info", "--subject", "nothing", exit_code=2)

    def test_machine_without_device_path_is_shown_as_such(self):
        self.machine("scenario", "--device-paths", "0")
        self.assertEqual(states(self.document("info", kind="info"), "device-path"), ["notAvailable"])

    def test_machine_without_marten_prints_the_bios_version(self):
        self.assertEqual(values(self.document("info", kind="info"), "firmware-version"),
                         ["2.1.0f3", "1.4.0f7"])
        self.machine("scenario", "--martens", "0")
        document = self.document("info", kind="info")
        self.assertEqual(values(document, "firmware-version"), ["2.1.0f3", None])
        self.assertRegex(self.quenra("info").out, r"(?m)^  firmware-version\[Marten\] +not available$")
        self.assertEqual(values(document, "interfaces-present"), [0x100000])

    def test_failed_read_is_shown_and_sets_the_exit_code(self):
        self.machine("answer", "add", "controller", "get-attribute", "--times", "0", "--code", "-52007")
        run = self.quenra("info", exit_code=1)
        self.assertRegex(run.out, r"(?m)^  driver-setting-1 +failed: -52007 QUENRA_STATUS_TIME_OUT$")
        self.assertIn("qctl-8840", run.out)
        self.assertIn("\n  -52007 QUENRA_STATUS_TIME_OUT\n", run.error)
        document = self.document("info", kind="info", exit_code=1)
        self.assertEqual(states(document, "driver-setting-1"), ["failed"])
        self.assertEqual(states(document, "product-name"), ["value"])


if __name__ == "__main__":
    unittest.main()
