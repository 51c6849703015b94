"""Reports about the simulated machine: what they say, and that making them disturbs nothing."""

import json
import unittest

from commandline import CommandLineTest, Files, Started


class Report(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.files = Files(self)

    def report(self, *words):
        run = self.quenra("report", self.files.typed("a.html"), "--force", *words)
        self.assertEqual(run.error, "")
        return self.files["a.html"].read_text(encoding="utf-8")

    def route_requests(self):
        names = (entry.get("request", "") for entry in self.log())
        return [name for name in names if name.endswith("-route")]

    def hold_a_line(self):
        connection = Started(self, "route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig3")
        connection.next_line()
        return json.loads(self.machine("routes", "--json"))["routes"]

    def test_default_machine(self):
        text = self.report()
        for part in ("<h1>qctl-8840</h1>", "serial number VQ02C47A9", "No warnings", "<td>16384 MiB</td>",
                     '<th scope="row">PXI_Trig7</th><td>7</td><td>free</td>'):
            self.assertIn(part, text)

    def test_nothing_is_reserved_and_every_route_is_destroyed(self):
        self.hold_a_line()
        self.machine("log", "--clear")
        text = self.report()
        self.assertIn('<th scope="row">PXI_Trig3</th><td>3</td><td><span class="held">held</span>', text)
        self.assertEqual(text.count('<span class="held">held</span>'), 1)
        requests = self.route_requests()
        self.assertEqual(set(requests), {"calculate-route", "destroy-route"})
        self.assertEqual(requests.count("calculate-route"), requests.count("destroy-route"))

    def test_holders_are_named_on_request_and_keep_their_route(self):
        before = self.hold_a_line()
        self.machine("log", "--clear")
        text = self.report("--holders")
        self.assertIn(f"session {before[0]['session']} ticket {before[0]['ticket']}<", text)
        self.assertEqual(self.route_requests().count("reserve-route"), 1, "of the held line only")
        self.assertNotIn("program-route", self.route_requests())
        self.assertEqual(json.loads(self.machine("routes", "--json"))["routes"], before)

    def test_machine_without_a_controller_has_a_page(self):
        self.machine("scenario", "--controllers", "0")
        document = self.document("report", self.files.typed("a.html"), kind="report")
        self.assertEqual(document["reported"], ["cannot open the controller"])
        self.assertIn("<h1>Unknown controller</h1>", self.files["a.html"].read_text(encoding="utf-8"))

    def test_page_of_a_capture_has_the_values_of_the_machine(self):
        live = self.report()
        self.quenra("capture", self.files.typed("rack.json"))
        captured = self.report("--from", self.files.typed("rack.json"))

        def values(text):
            return text[text.index('<section aria-labelledby="modules"'):text.index("<footer>")]

        self.assertEqual(values(captured), values(live))

    def test_existing_file_stays_without_force(self):
        self.files["a.html"].write_text("old", encoding="utf-8")
        run = self.quenra("report", self.files.typed("a.html"), exit_code=1)
        self.assertIn("the file exists\n  Add --force to replace it.", run.error)
        self.assertEqual(self.files["a.html"].read_text(encoding="utf-8"), "old")


if __name__ == "__main__":
    unittest.main()
