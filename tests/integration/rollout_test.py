"""The Ansible collection of integrations/ansible/ against a fleet of simulated racks.

QUENRA_ANSIBLE: a folder with another version of ansible-core than that of the system, for PYTHONPATH.
"""

import ast
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import threading
import time
import unittest

from fleet_test import FLEET, ROOT, TIME_LIMIT_SECONDS, fleet, on_rack

COLLECTION = ROOT / "integrations" / "ansible"
WORK = ROOT / "build" / "integration" / "rollout"
RACKS = [f"rack-{number}" for number in range(1, 8)]
NEW = {"bios": "2.2.0f1", "marten": "1.4.2f7"}
ENCRYPTED = "drive C: is encrypted, and the protection is on. Suspend the protection"


def environment():
    result = {name: value for name, value in os.environ.items() if not name.startswith("ANSIBLE_")}
    return result | {"ANSIBLE_COLLECTIONS_PATH": str(WORK), "ANSIBLE_NOCOLOR": "1", "LC_ALL": "C.UTF-8",
                     "ANSIBLE_LOCALHOST_WARNING": "0", "ANSIBLE_FORKS": "4",
                     "ANSIBLE_LOCAL_TEMP": str(WORK / "temporary"), "ANSIBLE_HOME": str(WORK / "home"),
                     "PYTHONDONTWRITEBYTECODE": "1", "PYTHONPATH": os.environ.get("QUENRA_ANSIBLE", "")}


def ansible(program, *words):
    return subprocess.run(["/usr/bin/python3", "-m", "ansible", program, *words], cwd=WORK, env=environment(),
                          stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          timeout=TIME_LIMIT_SECONDS, check=False)


class Run:
    """A playbook that has run: its exit code, its output, and the racks of its summary."""

    def __init__(self, playbook, *words):
        result = ansible("playbook", "-i", str(FLEET / "inventory.yml"), playbook, *words)
        self.exit_code, self.text = result.returncode, result.stdout + result.stderr

    def states(self):
        """The results of the last table: each row begins with a rack."""
        table = self.text.rpartition("\nRack ")[2]
        return {match[1]: match[2] for match in re.finditer(
            r"^(\S+) +(updated|current|planned|refused|failed|unknown|unreachable|not started|awaits restart)\b",
            table, re.MULTILINE)}

    def changed(self):
        return sum(map(int, re.findall(r"\bchanged=(\d+)", self.text)))

    def __repr__(self):
        return f"exit code {self.exit_code}\n{self.text}"


def make_image(name, sections):
    """Writes an image. A payload begins with the version that a simulated rack then starts."""
    image = WORK / name
    image.unlink(missing_ok=True)
    for device, version, file_name in sections:
        payload = WORK / "payload.bin"
        payload.write_bytes(f"{version}\n".encode() + bytes(range(256)) * 64)
        more = ["--append"] if image.exists() else []
        more += ["--file-name", file_name] if file_name else []
        on_rack(RACKS[0], "quenra", "firmware", "build", str(payload), "--output", str(image), "--device", device,
                "--firmware-version", version, *more)
    return str(image)


def options_of(path, name, names):
    """The value of a variable in the source of a plugin."""
    for statement in ast.parse(path.read_text(encoding="utf-8")).body:
        if isinstance(statement, ast.Assign) and statement.targets[0].id == name:
            return eval(compile(ast.Expression(statement.value), path, "eval"), dict(names))
    raise AssertionError(f"{path} has no {name}")


class FleetTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(fleet, "off")
        fleet("off")
        fleet(str(len(RACKS)))
        shutil.rmtree(WORK, ignore_errors=True)
        installed = WORK / "ansible_collections" / "quenra" / "rack"
        installed.parent.mkdir(parents=True)
        shutil.copytree(COLLECTION, installed)
        cls.image = make_image("update.fwi", [("MARTEN", NEW["marten"], None), ("BIOS", NEW["bios"], None),
                                              ("BIOS", NEW["bios"], "tool.inf")])

    def update(self, *words, image=None, wave=3, limit=50):
        return Run("quenra.rack.update", "-e", json.dumps({"quenra_update_image": image or self.image}),
                   "-e", f"quenra_wave={wave}", "-e", f"quenra_limit={limit}", *words)

    def received(self, rack):
        return json.loads(on_rack(rack, "quenra-sim", "firmware", "--json"))["payloads"]

    def installed(self, rack):
        plan = json.loads(on_rack(rack, "quenra", "update", self.image, "--plan", "--json",
                                  exit_code=1 if self.is_encrypted(rack) else 0))
        return {device: plan["installed"][device] for device in ("bios", "marten")}

    @staticmethod
    def is_encrypted(rack):
        return json.loads(on_rack(rack, "quenra-sim", "encryption", "--json"))["protection"] == "on"

    def assert_untouched(self, rack, installed):
        self.assertEqual(self.received(rack), [], rack)
        self.assertEqual(self.installed(rack), installed, rack)


class Rollout(FleetTest):
    """One fleet, in the order of a rollout that meets each obstacle."""

    def kill_update_of(self, rack):
        """Kills quenra on a rack while the driver-store tool runs; returns when it has."""
        disk = f"WINEPREFIX={FLEET / rack / 'disk'}".encode()
        deadline = time.monotonic() + TIME_LIMIT_SECONDS
        while time.monotonic() < deadline:
            if json.loads(on_rack(rack, "quenra-sim", "driver-store", "--json"))["runs"]:
                break
            time.sleep(0.2)
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if disk in (process / "environ").read_bytes().split(b"\0") and (
                        b"quenra.exe" in (process / "cmdline").read_bytes()):
                    os.kill(int(process.name), signal.SIGKILL)
                    self.killed += 1
            except OSError:
                pass

    def test_rollout(self):
        before = {rack: self.installed(rack) for rack in RACKS}
        self.wrong_image_is_refused_before_any_rack_is_touched(before)
        self.check_mode_changes_nothing(before)
        self.wave_stops_at_the_limit(before)
        self.second_run_completes()
        self.further_run_changes_nothing()

    def wrong_image_is_refused_before_any_rack_is_touched(self, before):
        path = WORK / "broken.fwi"
        path.write_bytes(pathlib.Path(self.image).read_bytes().replace(b"ByteCount::", b"ByteCount::1", 1))
        for words, reason in (({"image": str(path)}, "does not decode to ByteCount bytes"),
                              ({"image": str(WORK / "missing.fwi")}, "no such file")):
            run = self.update(**words)
            self.assertNotEqual(run.exit_code, 0, run)
            self.assertEqual(run.states(), {rack: "refused" if rack in RACKS[:3] else "not started"
                                            for rack in RACKS}, run)
            self.assertIn(reason, run.text)
        run = self.update("-e", '{"quenra_update_versions": {"MARTEN": "1.4.3f0"}}')
        self.assertIn("Its version for the MARTEN is 1.4.2f7, and 1.4.3f0 was requested.", run.text)
        for rack in RACKS:
            self.assert_untouched(rack, before[rack])

    def check_mode_changes_nothing(self, before):
        run = self.update("--check")
        self.assertEqual(run.exit_code, 0, run)
        self.assertEqual(run.states(), {rack: "planned" for rack in RACKS}, run)
        self.assertIn("2.0.1f2 -> 2.2.0f1  1.3.2f4 -> 1.4.2f7", run.text)
        for rack in RACKS:
            self.assert_untouched(rack, before[rack])
        self.assertEqual(self.records(), [])

    def wave_stops_at_the_limit(self, before):
        on_rack("rack-2", "quenra-sim", "encryption", "on")
        on_rack("rack-5", "quenra-sim", "driver-store", "working", "--seconds", "10")
        self.wrong_version_of("rack-4")
        self.killed = 0
        killer = threading.Thread(target=self.kill_update_of, args=("rack-5",))
        killer.start()
        run = self.update()
        killer.join()
        self.assertEqual(self.killed, 1)
        self.assertNotEqual(run.exit_code, 0, run)
        self.assertEqual(run.states(), {"rack-1": "updated", "rack-2": "refused", "rack-3": "updated",
                                        "rack-4": "failed", "rack-5": "unknown", "rack-6": "updated",
                                        "rack-7": "not started"}, run)
        self.assertIn(ENCRYPTED, run.text)
        self.assertIn("The MARTEN reports version 1.4.0f7, and the image has 1.4.2f7.", run.text)
        self.assertIn("The result of the update is not known", run.text)
        for rack in ("rack-1", "rack-3", "rack-6"):
            self.assertEqual(self.installed(rack), NEW)
        for rack in ("rack-2", "rack-7"):
            self.assert_untouched(rack, before[rack])
        self.assertEqual(self.installed("rack-5")["marten"], "0.0.0f0")
        self.assertEqual(self.records(), ["rack-5.json"])
        summary = json.loads((FLEET / "quenra-records" / "summary.json").read_text())["racks"]
        self.assertEqual((summary["rack-3"]["before"], summary["rack-3"]["after"]), (before["rack-3"], NEW))
        self.assertEqual(summary["rack-7"]["state"], "not started")

    def second_run_completes(self):
        on_rack("rack-2", "quenra-sim", "encryption", "off")
        on_rack("rack-5", "quenra-sim", "driver-store", "working")
        self.wrong_version_of(None)
        sent = len(self.received("rack-5"))
        run = self.update()
        self.assertEqual(run.exit_code, 0, run)
        self.assertEqual(run.states(), {rack: "current" if rack in ("rack-1", "rack-3", "rack-6") else "updated"
                                        for rack in RACKS}, run)
        for rack in RACKS:
            self.assertEqual(self.installed(rack), NEW, rack)
        # Before its restart, the rack received the complete firmware.
        self.assertEqual([payload["interface"] for payload in self.received("rack-5")[sent:]],
                         ["controller", "marten"])
        self.assertEqual(self.records(), [])

    def further_run_changes_nothing(self):
        received = {rack: self.received(rack) for rack in RACKS}
        run = self.update()
        self.assertEqual((run.exit_code, run.changed()), (0, 0), run)
        self.assertEqual(run.states(), {rack: "current" for rack in RACKS}, run)
        self.assertEqual({rack: self.received(rack) for rack in RACKS}, received)

    @staticmethod
    def records():
        """The files of updates without a known result."""
        return [path.name for path in (FLEET / "quenra-records").iterdir() if path.name != "summary.json"]

    @staticmethod
    def wrong_version_of(rack):
        """The restart of a rack starts its old firmware, or no longer does."""
        variables = FLEET / "host_vars"
        shutil.rmtree(variables, ignore_errors=True)
        if rack:
            variables.mkdir()
            (variables / f"{rack}.yml").write_text(
                f"quenra_update_restart_command: \"'{ROOT}/dev' fleet restart {rack} --marten 1.4.0f7\"\n")


class Parts(FleetTest):
    """Single promises, each on racks of its own."""

    def test_inventory_describes_each_rack(self):
        run = Run("quenra.rack.inventory")
        self.assertEqual((run.exit_code, run.changed()), (0, 0), run)
        racks = json.loads((FLEET / "racks.json").read_text())["racks"]
        self.assertEqual(sorted(racks), RACKS)
        self.assertEqual({name: racks["rack-7"][name] for name in
                          ("serial_number", "bios", "marten", "memory_mib", "self_test", "awaits_restart")},
                         {"serial_number": "VQ03028693", "bios": "2.0.1f2", "marten": "1.4.1f0",
                          "memory_mib": 32768, "self_test": True, "awaits_restart": False})
        self.assertRegex(run.text, r"rack-7 +qctl-8840 +VQ03028693 +2\.0\.1f2 +1\.4\.1f0 +32768 MiB +passed")

    def test_unreachable_and_failing_racks_are_in_the_tables(self):
        inventory = WORK / "unreachable.yml"
        inventory.write_text("racks:\n  hosts:\n    rack-9:\n      ansible_connection: ssh\n"
                             "      ansible_host: 127.0.0.1\n      ansible_port: 1\n")
        on_rack("rack-6", "quenra-sim", "scenario", "--controllers", "0")
        self.addCleanup(on_rack, "rack-6", "quenra-sim", "scenario", "--controllers", "1")
        words = ("-i", str(inventory), "--limit", "rack-6,rack-7,rack-9")
        run = Run("quenra.rack.inventory", *words)
        self.assertRegex(run.text, r"rack-9 +- .* not reached: .*Connection refused")
        self.assertRegex(run.text, r"rack-6 +- .* failed: cannot open the controller")
        self.assertRegex(run.text, r"rack-7 +qctl-8840 ")
        for run in (Run("quenra.rack.inventory", "-i", str(inventory), "--limit", "rack-9"),
                    self.update("-i", str(inventory), "--limit", "rack-9")):
            self.assertRegex(run.text, r"\nrack-9 .*Connection refused")
            self.assertNotEqual(run.exit_code, 0)
        run = self.update("--check", *words, limit=100)
        self.assertEqual(run.states(), {"rack-6": "refused", "rack-7": "planned", "rack-9": "unreachable"}, run)
        self.assertNotEqual(run.exit_code, 0)

    def test_image_is_copied_once_and_only_if_it_differs(self):
        copy = FLEET / "rack-5" / "copied.fwi"
        source = ("-e", f"quenra_update_source={self.image}", "--limit", "rack-5")
        run = self.update("--check", *source, image=str(copy))
        self.assertEqual((run.exit_code, copy.exists(), run.states()), (0, False, {"rack-5": "planned"}), run)
        self.assertEqual(self.update(*source, image=str(copy)).states(), {"rack-5": "updated"})
        self.assertEqual(copy.read_bytes(), pathlib.Path(self.image).read_bytes())
        self.assertEqual(self.update(*source, image=str(copy)).changed(), 0)
        copy.write_bytes(copy.read_bytes().replace(b"Version::1.4.2f7", b"Version::1.4.3f7"))
        run = self.update(*source, image=str(copy))
        self.assertEqual((run.states(), run.changed()), ({"rack-5": "current"}, 1), run)
        self.assertEqual(copy.read_bytes(), pathlib.Path(self.image).read_bytes())

    def test_update_without_restart_awaits_it(self):
        words = ("--limit", "rack-4")
        for changed in (1, 0):
            run = self.update("-e", '{"quenra_update_restart": false}', *words)
            self.assertEqual((run.exit_code, run.states(), run.changed()),
                             (0, {"rack-4": "awaits restart"}, changed), run)
        sent = len(self.received("rack-4"))
        run = self.update(*words)
        self.assertEqual((run.exit_code, run.states()), (0, {"rack-4": "updated"}), run)
        self.assertEqual((len(self.received("rack-4")), self.installed("rack-4")), (sent, NEW))

    def test_driver_that_rejects_the_firmware_is_a_failure_and_the_next_run_repeats_it(self):
        on_rack("rack-2", "quenra-sim", "answer", "add", "controller", "send-command", "--code", "-1")
        run = self.update("--limit", "rack-2")
        self.assertEqual((run.states(), run.changed()), ({"rack-2": "failed"}, 1), run)
        self.assertEqual(self.received("rack-2"), [])
        run = self.update("--limit", "rack-2")
        self.assertEqual((run.exit_code, run.states(), self.installed("rack-2")),
                         (0, {"rack-2": "updated"}, NEW), run)

    def test_rack_without_controller_after_the_restart_has_failed(self):
        restart = (f"{ROOT}/dev fleet restart rack-3 && {ROOT}/dev fleet run rack-3 -- quenra-sim scenario"
                   " --controllers 0")
        run = self.update("--limit", "rack-3", "-e", f"quenra_update_restart_command='{restart}'",
                          "-e", "quenra_update_restart_timeout=3")
        self.addCleanup(on_rack, "rack-3", "quenra-sim", "scenario", "--controllers", "1")
        self.assertEqual(run.states(), {"rack-3": "failed"}, run)
        self.assertIn("After 3 s the rack has no controller", run.text)

    def test_wrong_arguments_name_the_argument(self):
        run = Run("quenra.rack.update", "--limit", "rack-1")
        self.assertIn("missing required arguments: quenra_update_image", run.text)
        run = self.update("--limit", "rack-1", image='a"b.fwi')
        self.assertIn("has a character that not every shell passes on", run.text)

    def test_program_that_is_missing_is_named(self):
        run = Run("quenra.rack.inventory", "--limit", "rack-1", "-e", "quenra_command=no-such-program")
        self.assertRegex(run.text, r"'no-such-program info --json' ended with exit code 127 .*not found")


class Collection(unittest.TestCase):
    def setUp(self):
        shutil.rmtree(WORK, ignore_errors=True)
        WORK.mkdir(parents=True)
        self.addCleanup(shutil.rmtree, WORK, ignore_errors=True)

    def test_collection_builds_installs_and_is_documented(self):
        build = ansible("galaxy", "collection", "build", str(COLLECTION), "--output-path", str(WORK))
        self.assertEqual(build.returncode, 0, build)
        archive, = WORK.glob("quenra-rack-*.tar.gz")
        header = (ROOT / "include" / "quenra_version.h").read_text(encoding="utf-8")
        version = ".".join(re.findall(r"#define QUENRA_VERSION_\w+ (\d+)$", header, re.MULTILINE))
        self.assertEqual(archive.name, f"quenra-rack-{version}.tar.gz")
        install = ansible("galaxy", "collection", "install", str(archive), "-p", str(WORK))
        self.assertEqual(install.returncode, 0, install)
        for playbook in ("inventory", "update"):
            check = ansible("playbook", "--syntax-check", "-i", "localhost,", f"quenra.rack.{playbook}")
            self.assertEqual(check.returncode, 0, check)
        for name in ("firmware", "image", "info", "report"):
            document = ansible("doc", "--json", f"quenra.rack.{name}")
            self.assertEqual(document.returncode, 0, document)
            self.assert_options_are_those_of_the_action(name, json.loads(document.stdout))

    def test_linter_has_no_findings(self):
        # It finds modules by their collection, and has to be started in its folder.
        folder = WORK / "ansible_collections" / "quenra" / "rack"
        shutil.copytree(COLLECTION, folder)
        lint = subprocess.run(["/usr/bin/ansible-lint", "--offline", "--nocolor", "-p"], cwd=folder,
                              env=environment() | {"PYTHONPATH": ""}, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=TIME_LIMIT_SECONDS, check=False)
        self.assertEqual(lint.returncode, 0, lint.stdout + lint.stderr)

    def assert_options_are_those_of_the_action(self, name, document):
        command = options_of(COLLECTION / "plugins/plugin_utils/rack.py", "COMMAND_OPTION", {})
        options = options_of(COLLECTION / f"plugins/action/{name}.py", "OPTIONS", {"COMMAND_OPTION": command})
        documented = document[f"quenra.rack.{name}"]["doc"]["options"]
        self.assertEqual({option: {key: row[key] for key in ("type", "default", "required", "choices")
                                   if row.get(key) not in (None, False)}
                          for option, row in documented.items()},
                         {option: {key: value for key, value in row.items() if value not in (None, False)}
                          for option, row in options.items()})


if __name__ == "__main__":
    unittest.main()
