"""quenra-sim as its users run it, checked by the state that quenra then reads."""

import json
import pathlib
import re
import subprocess
import tempfile
import time
import unittest

from commandline import CommandLineTest, command, start


class Simulator(CommandLineTest):
    def sim(self, *words, exit_code=0):
        result = start("QUENRA_SIM_EXE", words)
        self.assertEqual(result.returncode, exit_code, (words, result))
        return result

    def pending(self):
        return json.loads(self.sim("pending", "list", "--json").stdout)["pending"]

    def wait_for(self, condition):
        deadline = time.monotonic() + 20
        while not condition():
            self.assertLess(time.monotonic(), deadline, "it does not come")
            time.sleep(0.05)

    def holder(self):
        """A program with a request pending on the controller; it ends when its input does."""
        holder = subprocess.Popen(command("QUENRA_PENDING_HOLDER_EXE"), stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE)
        self.addCleanup(holder.communicate)
        return holder

    def status(self):
        return json.loads(self.sim("status", "--json").stdout)

    def log(self):
        return json.loads(self.sim("log", "--json").stdout)["entries"]

    def test_status_lists_the_present_interfaces(self):
        status = self.status()
        self.assertEqual((status["controllers"], status["martens"], status["devicePaths"]), (1, 1, 1))
        self.assertIn(b"Marten interfaces       1\n", self.sim("status").stdout)

    def test_scenario_changes_presence_until_reset(self):
        self.sim("scenario", "--martens", "0", "--device-paths", "0")
        self.assertEqual(self.status()["martens"], 0)
        self.quenra("get", "device-path", exit_code=4)
        self.sim("reset")
        self.assertEqual(self.status()["martens"], 1)
        self.quenra("get", "device-path")

    def test_table_from_a_file_is_handed_over(self):
        with tempfile.TemporaryDirectory() as folder:
            table = pathlib.Path(folder, "table.bin")
            table.write_bytes(b"")
            self.sim("scenario", "--table", f"Z:{table}")
            self.assertEqual(self.status()["tableSize"], 0)
            self.quenra("info", exit_code=4)
            table.write_bytes(b"x" * 65537)
            self.assertIn(b"more than 65536 bytes",
                          self.sim("scenario", "--table", f"Z:{table}", exit_code=2).stderr)

    def test_structures_of_the_table_can_be_changed(self):
        size = self.status()["tableSize"]
        self.assertEqual(self.quenra("get", "0x2004B000").out, "1\n")
        self.sim("scenario", "--structure-byte", "0x9D/4=7", "--structure-byte", "158/5=0x0")
        self.assertEqual(self.quenra("get", "0x2004B000").out, "7\n")
        self.assertEqual(self.status()["tableSize"], size)
        self.sim("scenario", "--without-structure", "0x9D")
        self.quenra("get", "0x2004B000", exit_code=3)
        self.assertLess(self.status()["tableSize"], size)
        self.sim("scenario", "--without-structure", "0x9D", exit_code=2)

    def test_texts_of_the_table_can_be_changed(self):
        self.sim("scenario", "--structure-text", "1/7=<b>17 = 18", "--structure-text", "0/5=2.2.0f1")
        self.assertEqual(self.quenra("get", "serial-number").out, "<b>17 = 18\n")
        self.assertEqual(self.quenra("get", "firmware-version", "--controller").out, "2.2.0f1\n")
        self.assertEqual(self.quenra("get", "product-name").out, "qctl-8840\n")
        for wrong in ("1/7", "1/7=", "300/7=x", "1/200=x", "x"):
            self.sim("scenario", "--structure-text", wrong, exit_code=2)
        self.assertEqual(self.quenra("get", "serial-number").out, "<b>17 = 18\n")

    def test_attribute_is_given_and_removed(self):
        self.sim("attribute", "set", "controller", "0x20044C00", "--bytes", "04 03,0201")
        self.assertEqual(self.quenra("get", "driver-setting-1").out, f"{0x01020304}\n")
        self.sim("attribute", "remove", "controller", "0x20044C00")
        self.quenra("get", "driver-setting-1", exit_code=3)

    def test_answers_are_scripted_and_cleared(self):
        self.sim("answer", "add", "controller", "exchange-values", "--code", "-1")
        self.quenra("info", exit_code=1)
        self.quenra("info")  # the answer applied to one request only
        self.sim("answer", "add", "controller", "any", "--times", "0", "--windows-error", "5")
        self.assertIn("QUENRA_STATUS_ACCESS_DENIED", self.quenra("info", exit_code=1).error)
        self.sim("answer", "clear")
        self.quenra("info")

    def test_log_lists_requests_and_can_be_cleared(self):
        self.quenra("get", "driver-setting-1")
        requests = [entry for entry in self.log() if entry["event"] == "request"]
        self.assertEqual([entry["request"] for entry in requests],
                         ["exchange-values", "exchange-values", "get-attribute"])
        self.assertEqual(requests[2]["input"][:16], "004c042000000000")
        lines = self.sim("log", "--clear").stdout.decode().splitlines()
        self.assertIn("get-attribute attribute=0x20044C00", "\n".join(lines))
        self.assertEqual(self.log(), [])

    def test_counters_count_created_and_released_objects(self):
        before = json.loads(self.sim("counters", "--json").stdout)
        self.quenra("info")
        after = json.loads(self.sim("counters", "--json").stdout)
        self.assertEqual(after["filesOpened"], before["filesOpened"] + 2)
        self.assertEqual(after["filesOpened"], after["filesClosed"])
        self.assertEqual(len(self.sim("counters").stdout.splitlines()), len(after))

    def test_no_routes_are_printed_without_sessions(self):
        self.assertEqual(json.loads(self.sim("routes", "--json").stdout), {"routes": []})
        self.assertEqual(self.sim("routes").stdout, b"")
        self.sim("demote", "1", exit_code=1)
        self.sim("scenario", "--path-length", "40", "--topography", "other")
        self.sim("scenario", "--path-length", "1", exit_code=1)

    def test_pending_requests_are_shown_accepted_and_completed(self):
        self.assertEqual(self.pending(), [])
        self.sim("pending", "acceptance", "later")
        holder = self.holder()
        self.wait_for(self.pending)
        self.assertEqual([(entry["handle"], entry["interface"], entry["a"], entry["b"], entry["c"])
                          for entry in self.pending()], [(0, "controller", 1, 2, 3)])
        self.assertIn(b"waiting process ", self.sim("pending", "list").stdout)
        self.sim("pending", "accept")
        self.assertEqual(holder.stdout.readline().strip(), b"0")
        handle = self.pending()[0]["handle"]
        self.assertIn(f"handle {handle} process ".encode(), self.sim("pending", "list").stdout)
        self.sim("pending", "complete", str(handle), "--windows-error", "121")
        self.assertEqual(self.pending(), [])
        self.sim("pending", "complete", str(handle), exit_code=1)
        events = [entry["event"] for entry in self.log()]
        self.assertEqual(events, ["open", "request", "accepted", "completed"])
        self.assertIn(f"completed pending-request handle={handle} -> Windows error 121",
                      self.sim("log").stdout.decode())

    def test_pending_requests_can_be_refused(self):
        self.sim("answer", "add", "controller", "pending-request", "--windows-error", "21")
        self.assertEqual(self.holder().stdout.readline().strip(), b"-52010")
        self.sim("pending", "acceptance", "never")
        self.assertEqual(self.holder().stdout.readline().strip(), b"0")
        self.assertEqual(self.pending(), [])

    def test_wrong_usage_is_reported(self):
        for words in (
            [],
            ["frob"],
            ["scenario"],
            ["scenario", "--controllers", "3"],
            ["scenario", "--table", "Z:/does/not/exist"],
            ["scenario", "--structure-byte", "0x9D"],
            ["scenario", "--structure-byte", "0x9D/4=256"],
            ["scenario", "--structure-byte", "0x9D/-1=0"],
            ["scenario", "--structure-byte", "0x9D/6=0"],
            ["scenario", "--structure-byte", "0xF0/4=0"],
            ["scenario", "--without-structure", "256"],
            ["attribute", "set", "controller", "0x20044C00"],
            ["attribute", "set", "elsewhere", "0x20044C00", "--number", "1"],
            ["attribute", "set", "controller", "0x20044C00", "--bytes", "0g"],
            ["answer", "add", "controller"],
            ["answer", "add", "controller", "any", "--windows-error", "0"],
            ["pending"],
            ["demote"],
            ["scenario", "--path-length", "-1"],
            ["scenario", "--topography", "x" * 256],
            ["pending", "acceptance", "sometimes"],
            ["pending", "complete"],
            ["pending", "complete", "1", "--windows-error", "65536"],
        ):
            with self.subTest(words=words):
                result = self.sim(*words, exit_code=2)
                # The fault with its word and reason, and the correction.
                self.assertRegex(result.stderr, rb"(?s)^quenra-sim: [^\n]+\n  [^\n]+\n")
                self.assertEqual(result.stdout, b"")

    def test_rejected_scenario_is_reported(self):
        result = self.sim("attribute", "allow-writes", "controller", "0x70000000", exit_code=1)
        self.assertIn(b"refused request 0x80A02430 with Windows error 87", result.stderr)

    def test_absent_route_and_request_are_named(self):
        self.assertEqual(self.sim("demote", "999", exit_code=1).stderr,
                         b"quenra-sim: no programmed route has ticket 999\n")
        self.assertEqual(self.sim("pending", "complete", "77", exit_code=1).stderr,
                         b"quenra-sim: no pending request has handle 77\n")

    def verbs(self):
        text = self.sim("help").stdout.decode().split("Verbs:\n")[1].split("Examples:")[0]
        return re.findall(r"(?m)^  ([a-z-]+(?: [a-z-]+)?)  ", text)

    def test_every_verb_has_help(self):
        verbs = self.verbs()
        self.assertLess({"install", "attribute set", "pending list", "log"}, set(verbs))
        for verb in verbs:
            text = self.sim(*verb.split(), "--help").stdout.decode()
            self.assertIn(f"\nUsage: quenra-sim {verb}", text)
            self.assertIn(f"Examples:\n  quenra-sim {verb}", text)
            self.assertEqual(self.sim("help", *verb.split()).stdout.decode(), text)

    def test_misspelt_words_are_met_with_a_suggestion(self):
        self.assertEqual(self.sim("statsu", exit_code=2).stderr,
                         b"quenra-sim: unknown verb 'statsu'\n  Did you mean status?\n"
                         b"  Run 'quenra-sim --help' to list the verbs.\n")
        self.assertIn(b"Did you mean --martens?", self.sim("scenario", "--marten", "1", exit_code=2).stderr)

    def test_states_of_the_services_reject_options_of_the_display(self):
        self.sim("encryption", "on", "--json", exit_code=2)
        self.sim("driver-store", "missing", "--seconds", "1", exit_code=2)
        self.assertEqual(json.loads(self.sim("encryption", "--json").stdout)["protection"], "off")

    def test_installing_again_brings_the_default_machine(self):
        self.sim("scenario", "--martens", "0")
        self.sim("install")
        self.assertEqual(self.status()["martens"], 1)

    def test_without_the_machine_programs_say_so(self):
        self.sim("uninstall")
        try:
            result = self.sim("status", exit_code=4)
            self.assertIn(b"quenra-sim install", result.stderr)
            self.quenra("info", exit_code=4)
        finally:
            self.sim("install")


if __name__ == "__main__":
    unittest.main()
