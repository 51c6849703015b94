"""./dev wine as a user calls it: from any folder, with signals to its process only."""

import json
import os
import pathlib
import shlex
import signal
import subprocess
import tempfile
import unittest

from commandline import TIME_LIMIT_SECONDS, CommandLineTest


@unittest.skipUnless(os.environ.get("QUENRA_RUNNER"), "needs ./dev wine")
class DevWine(CommandLineTest):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    @staticmethod
    def command(*words):
        return [*shlex.split(os.environ["QUENRA_RUNNER"]), *words]

    def connection(self):
        """A run of ./dev wine that holds a route; signals go to its process only."""
        process = subprocess.Popen(
            self.command("quenra", "route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig0",
                         "--for", "600", "--json"),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            start_new_session=True)
        self.addCleanup(self.end, process)
        self.assertIn(b"connected: ", process.stderr.readline())
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            os.killpg(process.pid, signal.SIGKILL)
        process.communicate()

    def test_paths_are_relative_to_the_folder_of_the_caller(self):
        (self.folder / "payload.bin").write_bytes(b"firmware")
        subprocess.run(
            self.command("quenra", "firmware", "build", "payload.bin", "--output", "image.fwi",
                         "--device", "MARTEN", "--firmware-version", "1.0.0f0"),
            cwd=self.folder, check=True, capture_output=True, timeout=TIME_LIMIT_SECONDS)
        self.assertTrue((self.folder / "image.fwi").exists())

    def test_interrupt_to_the_script_ends_the_program_in_order(self):
        process = self.connection()
        process.send_signal(signal.SIGINT)
        out, error = process.communicate(timeout=TIME_LIMIT_SECONDS)
        self.assertEqual(process.returncode, 0, error)
        self.assertTrue(json.loads(out)["interrupted"])
        self.assertEqual(self.machine("routes"), b"")

    def test_termination_of_the_script_releases_the_route(self):
        process = self.connection()
        process.send_signal(signal.SIGTERM)
        process.communicate(timeout=TIME_LIMIT_SECONDS)
        self.assertNotEqual(process.returncode, 0)
        self.assertEqual(self.machine("routes"), b"")


if __name__ == "__main__":
    unittest.main()
