import json
import unittest

from commandline import CommandLineTest


class Doctor(CommandLineTest):
    def deviations(self, exit_code=0):
        """The results of the checks that are not ok."""
        checks = self.document("doctor", kind="doctor", exit_code=exit_code)["checks"]
        return {check["check"]: check["result"] for check in checks if check["result"] != "ok"}

    def test_default_machine_passes_every_check(self):
        version = json.loads(self.quenra("--version", "--json").out)["version"]
        run = self.quenra("doctor")
        self.assertEqual(run.error, "")
        self.assertRegex(run.out, rf"(?m)^ok +library +quenra\.dll {version}$")
        self.assertRegex(run.out, r"(?m)^ok +interfaces +1 controller interface, 1 Marten interface$")
        self.assertRegex(run.out, r"(?m)^ok +table +the SMBIOS table is that of a qctl-8840$")
        self.assertEqual([line.split()[0] for line in run.out.splitlines()], ["ok"] * 8)
        self.assertEqual(self.deviations(), {})

    def test_nothing_is_written(self):
        self.quenra("doctor")
        requests = {entry.get("request", "") for entry in self.log()}
        self.assertFalse({request for request in requests if "set" in request or "firmware" in request},
                         requests)

    def test_missing_controller_fails(self):
        self.machine("scenario", "--controllers", "0", "--martens", "0")
        self.assertEqual(self.deviations(exit_code=4),
                         {"interfaces": "failed", "driver": "skipped", "table": "skipped",
                          "pending-update": "skipped"})

    def test_second_controller_fails(self):
        self.machine("scenario", "--controllers", "2")
        self.assertEqual(self.deviations(exit_code=1)["interfaces"], "failed")

    def test_driver_that_fails_a_read_fails(self):
        self.machine("answer", "add", "controller", "get-attribute", "--times", "0", "--code", "-52007")
        self.assertEqual(self.deviations(exit_code=1), {"driver": "failed"})

    def test_requirements_of_an_update_are_warnings(self):
        self.machine("encryption", "on")
        self.machine("driver-store", "missing")
        self.machine("attribute", "set", "marten", "0x10200400", "--text", "0.0.0f0")
        self.assertEqual(self.deviations(), {"encryption": "warning", "driver-store-tool": "warning",
                                             "pending-update": "warning"})

    def test_encryption_that_cannot_be_read_is_a_warning(self):
        self.machine("encryption", "fail", "connect")
        self.assertEqual(self.deviations(), {"encryption": "warning"})

    def test_machine_without_marten_passes(self):
        self.machine("scenario", "--martens", "0")
        self.assertEqual(self.deviations(), {"pending-update": "skipped"})


if __name__ == "__main__":
    unittest.main()
