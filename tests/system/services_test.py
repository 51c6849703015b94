"""The management service and the driver-store tool of the simulated machine."""

import hashlib
import json
import pathlib
import subprocess
import tempfile
import unittest

from commandline import CommandLineTest, command_of, start, start_program


class Services(CommandLineTest):
    TOOL = r"C:\Windows\Sysnative\pnputil.exe"

    def sim(self, *words, exit_code=0):
        result = start("QUENRA_SIM_EXE", words)
        self.assertEqual(result.returncode, exit_code, (words, result))
        return result

    def shown(self, verb):
        return json.loads(self.sim(verb, "--json").stdout)

    def add_driver(self, *words):
        return start_program(self.TOOL, "/add-driver", *words, "/install").returncode

    # ---- Encryption ----

    def test_encryption_is_off_at_first(self):
        self.assertEqual(self.shown("encryption"), {"protection": "off", "failingStep": ""})
        self.assertIn(b"protection of drive C:  off\n", self.sim("encryption").stdout)

    def test_encryption_changes_until_reset(self):
        for protection in ("on", "unknown", "no-volume", "off", "on"):
            self.sim("encryption", protection)
            self.assertEqual(self.shown("encryption")["protection"], protection)
        self.sim("reset")
        self.assertEqual(self.shown("encryption")["protection"], "off")

    def test_step_that_fails_is_shown_until_another_answer(self):
        for step in ("locator", "connect", "query", "result", "property"):
            self.sim("encryption", "fail", step)
            self.assertEqual(self.shown("encryption")["failingStep"], step)
        self.assertIn(b"step that fails         property\n", self.sim("encryption").stdout)
        self.sim("encryption", "on")
        self.assertEqual(self.shown("encryption")["failingStep"], "")

    # ---- The driver store ----

    def test_driver_store_prints_the_received_commands(self):
        with tempfile.TemporaryDirectory() as folder:
            package = pathlib.Path(folder, "driver.inf")
            package.write_bytes(b"[Version]\r\n" * 1000)
            self.assertEqual(self.add_driver(f"Z:{package}"), 0)
            runs = self.shown("driver-store")["runs"]
            self.assertEqual(len(runs), 1)
            self.assertEqual(runs[0]["file"], f"Z:{package}")
            self.assertTrue(runs[0]["commandLine"].endswith(f" /add-driver Z:{package} /install"))
            self.assertEqual(runs[0]["size"], 11000)
            self.assertEqual(runs[0]["sha256"], hashlib.sha256(package.read_bytes()).hexdigest())
            self.assertIn(runs[0]["sha256"].encode(), self.sim("driver-store", "--clear").stdout)
        self.assertEqual(self.shown("driver-store")["runs"], [])

    def test_package_that_cannot_be_read_is_noted(self):
        self.assertEqual(self.add_driver(r"C:\nothing.inf"), 2)
        runs = self.shown("driver-store")["runs"]
        self.assertEqual([run["file"] for run in runs], [r"C:\nothing.inf"])
        self.assertNotIn("sha256", runs[0])
        self.assertIn(b"not readable", self.sim("driver-store").stdout)

    def test_reset_waits_for_a_tool_that_still_runs(self):
        self.sim("driver-store", "working", "--seconds", "2")
        with subprocess.Popen(command_of(self.TOOL, "/add-driver", r"C:\slow.inf", "/install"),
                              stdin=subprocess.DEVNULL) as tool:
            while not self.shown("driver-store")["runs"]:
                self.assertIsNone(tool.poll())
            self.sim("reset")
        self.assertEqual(self.shown("driver-store")["tool"], "working")

    def test_runs_keep_their_order(self):
        names = [rf"C:\{number}.inf" for number in range(12)]
        for name in names:
            self.add_driver(name)
        self.assertEqual([run["file"] for run in self.shown("driver-store")["runs"]], names)

    def test_tool_exits_with_the_scripted_code(self):
        self.sim("driver-store", "working", "--exit-code", "9", "--seconds", "1")
        shown = self.shown("driver-store")
        self.assertEqual((shown["tool"], shown["seconds"], shown["exitCode"]), ("working", 1, 9))
        self.assertEqual(self.add_driver(r"C:\windows\win.ini"), 9)
        self.sim("reset")
        self.assertEqual(self.add_driver(r"C:\windows\win.ini"), 0)

    def test_tool_can_be_missing_or_broken_until_reset(self):
        for state in ("missing", "broken"):
            self.sim("driver-store", state)
            self.assertEqual(self.shown("driver-store")["tool"], state)
            self.assertNotEqual(self.add_driver(r"C:\windows\win.ini"), 0)
            self.sim("reset")
            self.assertEqual(self.shown("driver-store")["tool"], "working")
            self.assertEqual(self.add_driver(r"C:\windows\win.ini"), 0)

    # ---- Firmware ----

    def test_at_first_no_firmware_was_received(self):
        self.assertEqual(self.shown("firmware"), {"payloads": []})
        self.assertEqual(self.sim("firmware", "--clear").stdout, b"no firmware was received\n")

    def test_marten_version_is_an_attribute(self):
        self.sim("attribute", "set", "marten", "0x10200400", "--text", "3.1.4f15")
        self.assertEqual(self.quenra("get", "firmware-version").out, "3.1.4f15\n")

    # ---- The complete environment ----

    def test_wrong_usage_is_reported(self):
        for words in (
            ["encryption", "half"],
            ["encryption", "fail"],
            ["encryption", "fail", "everything"],
            ["driver-store", "gone"],
            ["driver-store", "working", "--seconds", "-1"],
            ["firmware", "now"],
        ):
            with self.subTest(words=words):
                result = self.sim(*words, exit_code=2)
                self.assertTrue(result.stderr.strip(), result)
                self.assertEqual(result.stdout, b"")

    def test_every_verb_has_help(self):
        for verb in ("encryption", "driver-store", "firmware"):
            self.assertIn(b"--help", self.sim(verb, "--help").stdout)

    def test_uninstall_removes_the_tool_and_install_restores_it(self):
        self.sim("uninstall")
        try:
            self.assertEqual(self.shown("driver-store")["tool"], "missing")
        finally:
            self.sim("install")
        self.assertEqual(self.shown("driver-store")["tool"], "working")


if __name__ == "__main__":
    unittest.main()
