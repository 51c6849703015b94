import hashlib
import json
import unittest

from commandline import CommandLineTest, Files, Started

MARKER = "0.0.0f0"


class Update(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.files = Files(self)
        self.image = self.files.typed("update.fwi")

    def add(self, device, payload, version="9.0.0f1", file_name=None):
        """Adds a section to the image."""
        self.files["payload"].write_bytes(payload)
        more = ["--append"] if self.files["update.fwi"].exists() else []
        more += ["--file-name", file_name] if file_name else []
        self.quenra("firmware", "build", self.files.typed("payload"), "--output", self.image,
                    "--device", device, "--firmware-version", version, *more)

    def received(self):
        payloads = json.loads(self.machine("firmware", "--json"))["payloads"]
        return [(payload["interface"], payload["sha256"]) for payload in payloads]

    def marten(self):
        return self.quenra("get", "firmware-version", "--marten").out.strip()

    def packages(self):
        return json.loads(self.machine("driver-store", "--json"))["runs"]

    def test_everything_arrives_where_it_is_said_to(self):
        bios, marten = bytes(range(256)) * 300, b"marten" * 9000
        package = b"[Version]\r\nSignature=\"$Windows NT$\"\r\n"
        self.add("MARTEN", marten)
        self.add("BIOS", package, file_name="Größe.inf")
        self.add("SAFEMODE", b"ignored")
        self.add("BIOS", bios)
        run = self.quenra("update", self.image)
        self.assertIn("installed: BIOS 2.1.0f3, Marten 1.4.0f7\n", run.out)
        self.assertRegex(run.out, r"\ndone after \d+\.\d s\n")
        self.assertIn("section 4, BIOS 9.0.0f1, 76800 bytes: sent to the controller interface\n",
                      run.out)
        self.assertIn("section 1, MARTEN 9.0.0f1, 54000 bytes: sent to the Marten interface\n",
                      run.out)
        self.assertEqual(run.error, "")
        self.assertEqual(self.received(), [("controller", hashlib.sha256(bios).hexdigest()),
                                           ("marten", hashlib.sha256(marten).hexdigest())])
        self.assertEqual([run["sha256"] for run in self.packages()],
                         [hashlib.sha256(package).hexdigest()])
        self.assertEqual(self.marten(), MARKER)

    def test_document_of_an_update(self):
        self.add("MARTEN", b"firmware")
        document = self.document("update", self.image, kind="update")
        self.assertEqual(document["installed"], {"bios": "2.1.0f3", "marten": "1.4.0f7",
                                                 "awaitsRestart": False})
        self.assertEqual([section["action"] for section in document["sections"]], ["send-to-marten"])

    def test_only_newer_skips_sections_that_are_not_newer(self):
        self.add("BIOS", b"bios", version="2.1.0f3")
        self.add("MARTEN", b"marten", version="1.4.0f7")
        document = self.document("update", "--only-newer", self.image, kind="update")
        self.assertEqual([section["action"] for section in document["sections"]],
                         ["leave-out", "leave-out"])
        self.assertEqual(document["outcome"], "nothing-to-do")
        self.assertEqual(self.received(), [])
        self.assertEqual(self.marten(), "1.4.0f7")
        self.quenra("update", self.image)
        self.assertEqual(len(self.received()), 2)

    def test_plan_lists_the_actions_of_the_update(self):
        self.add("BIOS", b"bios", version="2.1.0f4")
        self.add("MARTEN", b"marten", version="1.3.0f0")
        self.add("BIOS", b"package", version="1.0.0f0", file_name="a.inf")
        self.add("BIOS", b"data", version="1.0.0f0", file_name="a.bin")
        for options in ((), ("--only-newer",)):
            with self.subTest(options=options):
                self.machine("reset")
                plan = self.document("update", "--plan", self.image, *options, kind="update-plan")
                self.assertEqual(plan["obstacles"], [])
                self.assertEqual((self.received(), self.packages(), self.marten()),
                                 ([], [], "1.4.0f7"))
                done = self.document("update", self.image, *options, kind="update")
                self.assertEqual([{name: member for name, member in section.items()
                                   if name != "result"} for section in done["sections"]],
                                 plan["sections"])
                actions = [section["action"] for section in plan["sections"]]
                self.assertEqual([interface for interface, _ in self.received()],
                                 [action[len("send-to-"):] for action in actions
                                  if action.startswith("send-to-")])
                self.assertEqual(len(self.packages()), actions.count("install-package"))

    def assert_foreseen(self, code, exit_code=1):
        """The plan reports the reason, and the update is refused for the same reason."""
        plan = self.document("update", "--plan", self.image, kind="update-plan",
                             exit_code=exit_code)
        self.assertEqual(plan["obstacles"][0]["status"]["code"], code)
        document = self.document("update", self.image, kind="error", exit_code=exit_code)
        self.assertEqual(document["error"]["code"], code)
        self.assertFalse(document["update"]["started"])
        self.assertEqual(document["update"]["obstacles"], plan["obstacles"])
        self.assertEqual(self.received(), [])
        return plan

    def test_file_section_that_is_not_newer_marks_its_device_as_current(self):
        self.add("BIOS", b"bios", version="9.0.0f0")
        self.add("BIOS", b"package", version="2.1.0f3", file_name="a.inf")
        run = self.quenra("update", "--only-newer", self.image)
        self.assertIn("another section of the device is not newer", run.out)
        self.assertEqual((self.received(), len(self.packages())), ([], 1))

    def test_only_newer_with_an_older_image_changes_nothing(self):
        self.add("MARTEN", b"older", version="1.3.0f0")
        for _ in range(2):
            run = self.quenra("update", "--only-newer", self.image)
            self.assertTrue(run.out.endswith("\nnothing to do\n"), run)
        self.assertEqual((self.received(), self.marten()), ([], "1.4.0f7"))

    def test_only_newer_before_the_restart_needs_force(self):
        self.add("MARTEN", b"newer", version="1.5.0f0")
        self.quenra("update", self.image)
        self.assertEqual(self.marten(), MARKER)
        run = self.quenra("update", "--only-newer", self.image, exit_code=1)
        self.assertIn("an update awaits a restart", run.error)
        self.assertEqual(len(self.received()), 1)
        self.quenra("update", "--only-newer", "--force", self.image)
        self.assertEqual(len(self.received()), 2)

    def test_file_without_a_section_changes_nothing(self):
        self.files["update.fwi"].write_bytes(b"")
        self.document("update", self.image, kind="error", exit_code=1)
        self.document("update", "--plan", self.image, kind="error", exit_code=1)
        self.assertEqual(self.marten(), "1.4.0f7")

    def test_path_in_an_image_needs_allow_any_path(self):
        name = self.files.typed("written")
        self.add("BIOS", b"content", file_name="a" * len(name))
        path = self.files["update.fwi"]
        path.write_bytes(path.read_bytes().replace(b"a" * len(name), name.encode()))
        run = self.quenra("update", self.image, exit_code=1)
        self.assertIn("is not plain: it has a path separator\n", run.error)
        self.document("update", "--plan", self.image, kind="update-plan", exit_code=1)
        self.assertFalse(self.files["written"].exists())
        self.quenra("update", "--allow-any-path", self.image)
        self.assertEqual(self.files["written"].read_bytes(), b"content")

    def test_driver_store_tool_that_is_no_program(self):
        self.add("BIOS", b"package", file_name="a.inf")
        self.machine("driver-store", "broken")
        plan = self.assert_foreseen(-26938)
        self.assertEqual(plan["obstacles"][0]["line"], 2359)
        self.assertIn("the driver-store tool could not be started: ",
                      plan["obstacles"][0]["fact"])
        self.assertEqual(self.marten(), "1.4.0f7")

    def test_encrypted_drive_or_failing_query_is_an_obstacle(self):
        self.add("MARTEN", b"marten")
        self.machine("encryption", "on")
        self.assert_foreseen(-26942)
        for step, line in (("locator", 2863), ("connect", 2879), ("query", 2912)):
            self.machine("encryption", "fail", step)
            self.assertEqual(self.assert_foreseen(-26937)["obstacles"][0]["line"], line)
        for harmless in ("unknown", "no-volume"):
            self.machine("encryption", harmless)
            self.quenra("update", "--plan", self.image)
        self.assertEqual(self.received(), [])

    def test_machine_without_firmware_updates(self):
        self.add("MARTEN", b"marten")
        self.machine("scenario", "--structure-byte", "0x9E/4=0")
        self.assert_foreseen(-26934, exit_code=3)
        self.machine("reset")
        self.machine("scenario", "--without-structure", "0x9E")
        self.assert_foreseen(-26932, exit_code=3)

    def test_section_without_its_device(self):
        self.add("MARTEN", b"marten")
        self.machine("scenario", "--martens", "0")
        self.assert_foreseen(-26938)

    def test_image_with_a_fault(self):
        self.add("MARTEN", b"123456789")
        path = self.files["update.fwi"]
        path.write_bytes(path.read_bytes().replace(b"MTIz", b"MTI0"))
        self.assertEqual(self.assert_foreseen(-26938)["obstacles"][0]["line"], 258)
        self.assertEqual(self.marten(), "1.4.0f7")

    def test_driver_package_without_the_tool(self):
        self.add("BIOS", b"package", file_name="a.inf")
        self.machine("driver-store", "missing")
        self.assertEqual(self.assert_foreseen(-26937)["obstacles"][0]["line"], 2331)
        self.assertEqual(self.marten(), "1.4.0f7")

    def test_every_obstacle_is_reported_at_once(self):
        self.add("MARTEN", b"marten")
        self.add("BIOS", b"package", file_name="a.inf")
        self.machine("scenario", "--martens", "0", "--structure-byte", "0x9E/4=0")
        self.machine("encryption", "on")
        self.machine("driver-store", "missing")
        run = self.quenra("update", "--plan", self.image, exit_code=1)
        self.assertIn("\n4 obstacles\n", run.out)
        self.assertEqual(run.error.count("\n  Advice: "), 4)

    def test_without_a_controller_the_exit_code_says_so(self):
        self.add("MARTEN", b"marten")
        self.machine("scenario", "--controllers", "0", "--martens", "0")
        self.assert_failure(self.quenra("update", self.image, exit_code=4), -26932,
                            "QUENRA_STATUS_NO_CONTROLLER")
        self.document("update", "--plan", self.image, kind="update-plan", exit_code=4)

    def test_failure_of_the_driver_gives_the_version_back(self):
        self.add("MARTEN", b"marten")
        self.machine("answer", "add", "marten", "send-command", "--code", "-777")
        document = self.document("update", self.image, kind="error", exit_code=1)
        self.assertEqual(document["error"]["code"], -777)
        self.assertTrue(document["update"]["started"])
        self.assertEqual(document["update"]["sections"][0]["result"], "failed")
        self.assertEqual(self.marten(), "1.4.0f7")

    def test_ctrl_c_stops_nothing(self):
        self.add("BIOS", b"package", file_name="a.inf")
        self.machine("driver-store", "working", "--seconds", "3")
        update = Started(self, "update", self.image)
        update.read_until("updating")
        update.interrupt()
        self.assertEqual(update.warned(),
                         "quenra: the update cannot be interrupted; wait for its end\n")
        out, _ = update.end(0)
        self.assertIn("package passed to the driver store, which reports no result\n", out)
        self.assertEqual(len(self.packages()), 1)

    def start_slow_update(self):
        self.add("BIOS", b"package", file_name="a.inf")
        self.machine("driver-store", "working", "--seconds", "6")
        update = Started(self, "update", self.image)
        update.read_until("updating")
        return update

    def test_second_update_waits_for_the_first(self):
        first = self.start_slow_update()
        run = self.quenra("update", "--no-wait", self.image, exit_code=1)
        self.assertIn("another update is running on this machine", run.error)
        second = Started(self, "update", self.image)
        self.assertIn("another update is running; waiting", second.warned())
        first.end(0)
        self.machine("driver-store", "working")
        out, _ = second.end(0)
        self.assertIn("done after", out)
        self.assertEqual(len(self.packages()), 2)

    def test_ctrl_c_ends_the_wait(self):
        first = self.start_slow_update()
        second = Started(self, "update", self.image)
        self.assertIn("another update is running; waiting", second.warned())
        second.interrupt()
        self.assertIn("interrupted while another update was running", second.warned())
        second.end(1)
        first.end(0)
        self.assertEqual(len(self.packages()), 1)

    def test_update_after_one_that_was_killed(self):
        first = self.start_slow_update()
        first.kill()
        self.machine("reset")
        self.quenra("update", self.image)

    def test_missing_file_and_missing_name(self):
        run = self.quenra("update", self.image, exit_code=1)
        self.assertEqual(run.error, f"quenra: cannot read '{self.image}': no such file\n")
        self.document("update", "--plan", self.image, kind="error", exit_code=1)
        self.quenra("update", exit_code=2)

    # ---- Events ----

    def test_events_of_an_update(self):
        path = self.image_for_events()
        lines = self.events(self.quenra("update", path, "--json-lines").out)
        self.assertEqual([line["event"] for line in lines],
                         ["plan", "update-started", "update-ended", "result"])
        self.assertEqual(lines[1]["sections"], [1])
        self.assertEqual(lines[2]["status"]["code"], 0)
        self.assertEqual((lines[3]["kind"], lines[3]["outcome"]), ("update", "done"))

    def test_events_of_an_update_that_is_not_started(self):
        path = self.image_for_events()
        self.machine("encryption", "on")
        lines = self.events(self.quenra("update", path, "--json-lines", exit_code=1).out)
        self.assertEqual([line["event"] for line in lines], ["plan", "result"])
        self.assertEqual(lines[0]["obstacles"][0]["status"]["code"], -26942)
        self.assertFalse(lines[1]["update"]["started"])

    def test_events_of_a_plan_are_its_document(self):
        path = self.image_for_events()
        lines = self.events(self.quenra("update", path, "--plan", "--json-lines").out)
        self.assertEqual([line["event"] for line in lines], ["result"])
        self.assertEqual(lines[0]["kind"], "update-plan")

    def image_for_events(self):
        files = Files(self)
        files["payload"].write_bytes(b"123456789")
        self.quenra("firmware", "build", files.typed("payload"), "--output", files.typed("update.fwi"),
                    "--device", "MARTEN", "--firmware-version", "9.9.9f9")
        return files.typed("update.fwi")


if __name__ == "__main__":
    unittest.main()
