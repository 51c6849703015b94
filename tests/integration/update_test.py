"""The update of one rack in integrations/ansible/, against a scripted rack: lost connections and restarts."""

import importlib.util
import pathlib
import sys
import tempfile
import types
import unittest

PLUGINS = pathlib.Path(__file__).resolve().parents[2] / "integrations" / "ansible" / "plugins" / "plugin_utils"
PACKAGE = "ansible_collections.quenra.rack.plugins.plugin_utils"


class ConnectionLost(Exception):
    """As ansible.errors.AnsibleConnectionFailure."""


def load(name):
    spec = importlib.util.spec_from_file_location(f"{PACKAGE}.{name}", PLUGINS / f"{name}.py")
    module = sys.modules[spec.name] = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def load_plugins():
    """The modules, without Ansible."""
    parts = PACKAGE.split(".")
    for end in range(1, len(parts) + 1):
        sys.modules.setdefault(".".join(parts[:end]), types.ModuleType(parts[end - 1]))
    errors = types.ModuleType("ansible.errors")
    errors.AnsibleConnectionFailure = ConnectionLost
    sys.modules.update({"ansible": types.ModuleType("ansible"), "ansible.errors": errors})
    return load("rack"), load("update")


rack_module, update_module = load_plugins()

OLD, NEW, MARKER = "1.4.0f7", "1.4.2f7", "0.0.0f0"


class ScriptedRack:
    """A rack with a Marten. `script` names what happens to the next commands; then they succeed."""

    def __init__(self, marten=OLD):
        self.marten, self.received, self.restarts = marten, [], 0
        self.lose, self.away, self.starts, self.self_test = (), 0, NEW, True

    def document(self, *words):
        if self.away > 0:
            self.away -= 1
            raise ConnectionLost("no route to host")
        if words[0] == "self-test":
            return {"kind": "self-test"} if self.self_test else {
                "kind": "error", "error": {"message": "the driver did not answer", "advice": "Restart it."}}
        if "--plan" in words:
            return self.plan(words)
        self.received.append(words)
        self.marten = MARKER
        if self.lose:
            raise self.lose
        return {"kind": "update"}

    def plan(self, words):
        awaits = self.marten == MARKER
        obstacles = [{"fact": "an update awaits a restart", "remedy": "Restart."}] if (
            awaits and "--force" not in words) else []
        return {"kind": "update-plan", "installed": {"bios": None, "marten": self.marten, "awaitsRestart": awaits},
                "obstacles": obstacles,
                "sections": [{"device": "MARTEN", "version": NEW,
                              "action": "leave-out" if self.marten == NEW else "send-to-marten"}]}

    def run(self, line):
        assert line == "restart"
        self.restarts += 1
        self.marten = self.starts if self.received or self.starts != NEW else OLD
        return 0, "", ""


class Clock:
    """Time that passes when the update sleeps."""

    def __init__(self):
        self.now = 0

    def monotonic(self):
        return self.now

    def sleep(self, seconds):
        self.now += seconds


class OneRack(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.record = update_module.Record(folder.name, "rack/17")
        self.resets = 0
        update_module.time = self.clock = Clock()

    def update(self, rack, check_mode=False, **options):
        def reset():
            self.resets += 1
        options = {"image": "a.fwi", "restart": True, "restart_command": "restart", "restart_delay": 0,
                   "restart_timeout": 0} | options
        return update_module.Update(rack, self.record, options, check_mode, reset).run()

    def test_update_is_verified_and_leaves_no_record(self):
        result = self.update(ScriptedRack())
        self.assertEqual((result["state"], result["changed"], result["after"]["marten"]), ("updated", True, NEW))
        self.assertFalse(self.record.is_open())

    def test_lost_connection_during_the_update_is_an_unknown_result(self):
        for error in (ConnectionLost("reset by peer"), rack_module.NoDocumentError("killed")):
            rack = ScriptedRack()
            rack.lose = error
            result = self.update(rack)
            self.assertEqual((result["state"], rack.restarts, self.record.is_open()), ("unknown", 0, True))
            rack.lose = None
            result = self.update(rack)
            self.assertEqual((result["state"], len(rack.received), rack.restarts), ("updated", 2, 1))
            self.assertIn("--force", rack.received[-1])
            self.assertFalse(self.record.is_open())

    def test_check_mode_sends_and_records_nothing(self):
        rack = ScriptedRack()
        result = self.update(rack, check_mode=True)
        self.assertEqual((result["state"], rack.received, self.record.is_open()), ("planned", [], False))
        awaiting = ScriptedRack(MARKER)
        result = self.update(awaiting, check_mode=True)
        self.assertEqual((result["state"], awaiting.restarts), ("planned", 0))

    def test_rack_that_awaits_a_restart_is_restarted_without_another_update(self):
        rack = ScriptedRack(MARKER)
        rack.received.append("by another controller")
        result = self.update(rack)
        self.assertEqual((result["state"], len(rack.received), rack.restarts), ("updated", 1, 1))
        rack = ScriptedRack(MARKER)
        self.assertEqual(self.update(rack, restart=False)["state"], "awaits_restart")
        self.assertEqual(rack.restarts, 0)

    def test_rack_that_had_nothing_pending_is_updated_after_its_restart(self):
        rack = ScriptedRack(MARKER)  # its update was interrupted, and another controller has the record
        result = self.update(rack)
        self.assertEqual((result["state"], len(rack.received), rack.restarts), ("updated", 1, 2))

    def test_wait_ends_when_the_rack_answers_again(self):
        rack = ScriptedRack()
        run = rack.run

        def run_and_leave(line):
            rack.away = 2
            return run(line)
        rack.run = run_and_leave
        result = self.update(rack, restart_timeout=900, restart_delay=120)
        self.assertEqual((result["state"], self.resets), ("updated", 2))
        # It has been away, so the update did not wait for the delay.
        self.assertLess(self.clock.now, 20)

    def test_rack_that_never_leaves_counts_as_restarted_after_the_delay(self):
        self.assertEqual(self.update(ScriptedRack(), restart_timeout=900, restart_delay=120)["state"], "updated")
        self.assertGreaterEqual(self.clock.now, 120)
        self.assertLess(self.clock.now, 130)

    def test_wait_continues_while_the_marten_has_not_started_its_firmware(self):
        rack = ScriptedRack()
        rack.starts = MARKER
        self.assertIn("After 900 s the rack still awaits its restart",
                      self.update(rack, restart_timeout=900)["reasons"][0])
        self.assertGreaterEqual(self.clock.now, 900)

    def test_rack_that_stays_away_has_failed(self):
        rack = ScriptedRack()
        run = rack.run

        def run_and_leave(line):
            rack.away = 99
            return run(line)
        rack.run = run_and_leave
        result = self.update(rack)
        self.assertEqual(result["state"], "failed")
        self.assertIn("After 0 s the rack does not answer: no route to host", result["reasons"][0])

    def test_failing_self_test_and_wrong_version_are_both_reported(self):
        rack = ScriptedRack()
        rack.starts, rack.self_test = OLD, False
        result = self.update(rack)
        self.assertEqual((result["state"], result["reasons"]), ("failed", [
            "The MARTEN reports version 1.4.0f7, and the image has 1.4.2f7.",
            "The self-test fails: the driver did not answer. Restart it."]))

    def test_unreachable_rack_stays_unreachable(self):
        rack = ScriptedRack()
        rack.away = 1
        with self.assertRaises(ConnectionLost):
            self.update(rack)


class Words(unittest.TestCase):
    def test_words_are_quoted_for_every_shell(self):
        for word, expected in (("C:/fw/a.fwi", "C:/fw/a.fwi"), ("C:\\fw\\a b.fwi", '"C:\\fw\\a b.fwi"'),
                               ("a&b", '"a&b"'), ("", '""')):
            with self.subTest(word=word):
                self.assertEqual(rack_module.quoted(word), expected)
        for word in ('a"b', "a$b", "a`b", "%TEMP%", "a\nb"):
            with self.subTest(word=word), self.assertRaises(rack_module.RackError):
                rack_module.quoted(word)

    def test_versions_of_an_image_are_the_highest_of_each_device(self):
        sections = [{"device": "BIOS", "version": "2.10.0f1"}, {"device": "BIOS", "version": "2.9.0f1"},
                    {"device": "SAFEMODE", "version": "1.0.0f0"}, {"device": "MARTEN", "version": "1.0.0b9"},
                    {"device": "MARTEN", "version": "1.0.0f0"}, {"device": "MARTEN", "version": "new"}]
        self.assertEqual(rack_module.versions_of(sections), {"BIOS": "2.10.0f1", "MARTEN": "1.0.0f0"})


if __name__ == "__main__":
    unittest.main()
