"""Metrics of the simulated machine, and a file of them that is always complete."""

import re
import time
import unittest

from commandline import CommandLineTest, Files, Started


def samples(text):
    """The values of the samples by name and labels."""
    return dict(line.rsplit(" ", 1) for line in text.splitlines() if not line.startswith("#"))


class Metrics(CommandLineTest):
    def metrics(self, *words):
        run = self.quenra("metrics", *words)
        self.assertEqual(run.error, "")
        return run.out

    def test_default_machine(self):
        found = samples(self.metrics())
        self.assertEqual(found["quenra_controller_up"], "1")
        self.assertEqual(found["quenra_self_test_passed"], "1")
        self.assertIn('quenra_firmware_info{device="BIOS",version="2.1.0f3"}', found)
        self.assertIn('quenra_firmware_info{device="MARTEN",version="1.4.0f7"}', found)
        self.assertEqual(found['quenra_memory_module_size_bytes{module="2"}'], str(8192 * 2**20))
        self.assertEqual(found["quenra_memory_modules"], "3")
        self.assertEqual(found["quenra_firmware_update_supported"], "1")
        self.assertEqual(found["quenra_firmware_restart_pending"], "0")
        self.assertEqual(found["quenra_routes_programmed_total"], "0")
        self.assertLess(abs(float(found["quenra_last_collection_timestamp_seconds"]) - time.time()), 60)
        self.assertGreater(float(found["quenra_controller_open_duration_seconds"]), 0)

    def test_machine_without_a_controller_is_down_with_its_code(self):
        self.machine("scenario", "--controllers", "0")
        text = self.metrics()
        self.assertIn("\nquenra_controller_up 0\n", text)
        self.assertIn('{operation="open",code="-26932",constant="QUENRA_STATUS_NO_CONTROLLER"} 1\n', text)
        self.assertNotIn("quenra_firmware_info", text)

    def test_nothing_is_written_to_the_controller(self):
        self.machine("log", "--clear")
        self.metrics()
        requests = {entry["request"] for entry in self.log() if "request" in entry}
        self.assertEqual(requests - {"exchange-values", "get-attribute"}, set())

    def test_document(self):
        document = self.document("metrics", kind="metrics")
        self.assertEqual(samples(document["text"])["quenra_controller_up"], "1")

    def test_watched_file_is_complete_at_any_time(self):
        files = Files(self)
        watch = Started(self, "metrics", "--output", files.typed("a.prom"), "--watch", "0.05")
        self.assertRegex(watch.next_line(), r"^writing '.*a\.prom' every 0\.0 s, until Ctrl-C\n$")
        found = set()
        end = time.monotonic() + 5
        while time.monotonic() < end and (len(found) < 10 or time.monotonic() < end - 3):
            try:
                text = files["a.prom"].read_text(encoding="utf-8")
            except FileNotFoundError:
                self.assertEqual(found, set(), "the file disappeared")
                continue
            self.assertTrue(text.startswith("# HELP quenra_build ") and text.endswith("\n# EOF\n"), text)
            found.add(re.search(r"\nquenra_last_collection_timestamp_seconds (.*)\n", text)[1])
        self.assertGreaterEqual(len(found), 10)
        watch.interrupt()
        _, error = watch.end(0)
        self.assertEqual(error, "")
        self.assertEqual([path.name for path in files.folder.iterdir()], ["a.prom"])

    def test_folder_that_appears_later(self):
        files = Files(self)
        watch = Started(self, "metrics", "--output", files.typed("later/a.prom"), "--watch", "0.1")
        self.assertIn("no such directory", watch.warned())
        self.assertEqual(watch.warned(), "  Trying again until it succeeds.\n")
        files["later"].mkdir()
        self.assertIn("is written again", watch.warned())
        watch.interrupt()
        watch.end(0)
        self.assertTrue(files["later/a.prom"].read_text(encoding="utf-8").endswith("# EOF\n"))


if __name__ == "__main__":
    unittest.main()
