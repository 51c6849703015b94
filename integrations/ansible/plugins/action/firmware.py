"""The part of the module firmware that runs on the control node."""

from __future__ import annotations

from ansible.plugins.action import ActionBase

from ansible_collections.quenra.rack.plugins.plugin_utils.rack import COMMAND_OPTION, Rack
from ansible_collections.quenra.rack.plugins.plugin_utils.update import Record, Update

OPTIONS = COMMAND_OPTION | {
    "image": {"type": "str", "required": True},
    "records": {"type": "path", "required": True},
    "restart": {"type": "bool", "default": True},
    "restart_command": {"type": "str", "default": "shutdown /r /t 5"},
    "restart_delay": {"type": "int", "default": 120},
    "restart_timeout": {"type": "int", "default": 900},
}
FAILURES = ("refused", "failed", "unknown")


class ActionModule(ActionBase):
    _supports_check_mode = True

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        _, options = self.validate_argument_spec(OPTIONS)
        update = Update(Rack(self, options["command"]),
                        Record(options["records"], task_vars["inventory_hostname"]), options,
                        self._task.check_mode, self.reset_connection)
        result.update(update.run())
        if result["state"] in FAILURES:
            result["failed"] = True
            result["msg"] = f"{result['state']}: {' '.join(result['reasons'])}"
        return result

    def reset_connection(self):
        """Ends a connection that a restart has left behind."""
        reset = getattr(self._connection, "reset", None)
        if reset is not None:
            try:
                reset()
            except Exception:  # pylint: disable=broad-except
                pass  # it is broken: the next command opens another one
