"""The update of one rack, from the plan to the verification."""

from __future__ import annotations

import json
import pathlib
import time
import urllib.parse

from ansible.errors import AnsibleConnectionFailure

from ansible_collections.quenra.rack.plugins.plugin_utils.rack import (
    NoDocumentError, RackError, reasons_of, versions_of)

CHANGING_ACTIONS = ("send-to-controller", "send-to-marten", "install-package", "write-file")
POLL_SECONDS = 5


class Record:
    """A file on the control node while an update of a rack has begun and its result is not known."""

    def __init__(self, folder, rack):
        self._path = pathlib.Path(folder).expanduser() / (urllib.parse.quote(rack, safe="") + ".json")

    def is_open(self):
        return self._path.exists()

    def begin(self, image, expected):
        self._path.parent.mkdir(parents=True, exist_ok=True)
        self._path.write_text(json.dumps({"image": image, "expected": expected}, sort_keys=True) + "\n",
                              encoding="utf-8")

    def close(self):
        self._path.unlink(missing_ok=True)


class Update:
    """Brings the firmware of a rack to that of an image. `run` returns the members of the task's result."""

    def __init__(self, rack, record, options, check_mode, reset_connection):
        self.rack, self.record, self.options = rack, record, options
        self.check_mode, self.reset_connection = check_mode, reset_connection
        self.restarted = False
        self.result = {"changed": False, "state": "", "before": {}, "after": {}, "expected": {},
                       "reasons": []}

    def run(self):
        try:
            self.bring_up_to_date()
        except RackError as error:
            # After a change the rack is neither as it was, nor as it should be.
            self.end("failed" if self.result["changed"] else "refused", error.reasons)
        except AnsibleConnectionFailure as error:
            if not self.result["changed"]:
                raise  # the rack is unreachable, and as it was
            self.end("failed", [f"The connection ended after the update: {error}"])
        return self.result

    def end(self, state, reasons=()):
        self.result["state"] = state
        self.result["reasons"] = list(reasons)

    def bring_up_to_date(self):
        plan, force = self.plan(), False
        self.result["before"] = self.result["after"] = versions_installed(plan)
        self.result["expected"] = versions_of(plan["sections"])
        if plan["installed"]["awaitsRestart"]:
            if self.record.is_open():
                # The rack may have a part of the firmware only: do not restart it with that.
                plan, force = self.plan("--force"), True
            elif not self.options["restart"]:
                return self.end("awaits_restart")
            elif self.check_mode:
                self.result["changed"] = True
                return self.end("planned", ["An earlier update awaits a restart."])
            else:
                self.restart()
                plan = self.plan()
        if plan["obstacles"]:
            raise RackError(*reasons_of(plan))
        return self.follow(plan, force)

    def follow(self, plan, force):
        if not any(section["action"] in CHANGING_ACTIONS for section in plan["sections"]):
            if not self.check_mode:
                self.record.close()
            return self.verify() if self.restarted else self.end("current")
        if self.check_mode:
            self.result["changed"] = True
            return self.end("planned")
        if not self.apply(force):
            return None
        if not self.options["restart"]:
            return self.end("awaits_restart")
        self.restart()
        return self.verify()

    # ---- Steps ----

    def plan(self, *options):
        plan = self.rack.document("update", self.options["image"], "--only-newer", *options, "--plan")
        if plan["kind"] != "update-plan":
            raise RackError(*reasons_of(plan))
        return plan

    def apply(self, force):
        """Starts the update; returns whether it succeeded."""
        self.record.begin(self.options["image"], self.result["expected"])
        words = ["update", self.options["image"], "--only-newer"] + (["--force"] if force else [])
        try:
            document = self.rack.document(*words)
        except (NoDocumentError, AnsibleConnectionFailure) as error:
            # The record stays open: the next run completes the update.
            self.result["changed"] = True
            self.end("unknown", [f"The result of the update is not known: {error}",
                                 "Run the playbook again: it completes the update."])
            return False
        self.record.close()
        started = document["kind"] == "update" or document.get("update", {}).get("started", False)
        self.result["changed"] = self.result["changed"] or started
        if document["kind"] != "update":
            raise RackError(*reasons_of(document))
        return True

    def restart(self):
        self.result["changed"] = self.restarted = True
        begin = time.monotonic()
        try:
            exit_code, out, error = self.rack.run(self.options["restart_command"])
        except AnsibleConnectionFailure:
            exit_code, out, error = 0, "", ""  # the restart may end the connection
        if exit_code != 0:
            raise RackError(f"The restart failed with exit code {exit_code}: {(error or out).strip()}")
        self.wait(begin)

    def wait(self, begin):
        """Returns when the rack answers after its restart, with the firmware that it then has."""
        was_away = False
        while True:
            elapsed = time.monotonic() - begin
            try:
                plan = self.plan()
                installed = plan["installed"]
                is_up = any(installed[device] for device in ("bios", "marten"))
                if is_up and not installed["awaitsRestart"] and (
                        was_away or elapsed >= self.options["restart_delay"]):
                    return
                reason = ("still awaits its restart" if installed["awaitsRestart"] else
                          "has no controller" if not is_up else "did not restart")
            except (RackError, AnsibleConnectionFailure) as error:
                was_away, reason = True, f"does not answer: {error}"
                self.reset_connection()
            if elapsed >= self.options["restart_timeout"]:
                raise RackError(f"After {self.options['restart_timeout']} s the rack {reason}")
            time.sleep(min(POLL_SECONDS, max(self.options["restart_delay"] / 10, 1)))

    def verify(self):
        """Fails unless the rack reports the versions of the image and its self-test passes."""
        installed = self.result["after"] = versions_installed(self.plan())
        expected = self.result["expected"]
        reasons = [f"The {device} reports version {installed[device.lower()]}, and the image has {version}."
                   for device, version in expected.items() if installed[device.lower()] != version]
        self_test = self.rack.document("self-test")
        if self_test["kind"] != "self-test":
            reasons += [f"The self-test fails: {reason}" for reason in reasons_of(self_test)]
        if reasons:
            raise RackError(*reasons)
        self.end("updated")


def versions_installed(plan):
    return {"bios": plan["installed"]["bios"], "marten": plan["installed"]["marten"]}
