"""The part of the module image that runs on the control node."""

from __future__ import annotations

import base64
import hashlib
import re

from ansible.plugins.action import ActionBase

from ansible_collections.quenra.rack.plugins.plugin_utils.rack import (
    COMMAND_OPTION, Rack, RackError, reasons_of, sentence, versions_of)

OPTIONS = COMMAND_OPTION | {
    "path": {"type": "str", "required": True},
    "source": {"type": "path"},
    "versions": {"type": "dict", "default": {}},
}


def payload_hash(text):
    """The SHA-256 of a payload, by the rules of docs/firmware-image.md: other characters are skipped."""
    digits = re.sub(rb"[^A-Za-z0-9+/]", b"", text)
    usable = digits[:len(digits) - 1] if len(digits) % 4 == 1 else digits
    return hashlib.sha256(base64.b64decode(usable + b"=" * (-len(usable) % 4))).hexdigest()


def sections_of_file(path):
    """Version, device and SHA-256 of each section of an image on the control node."""
    with open(path, "rb") as file:
        parts = file.read().split(b"HeaderVersion::")[1:]
    sections = []
    for part in parts:
        header, _, payload = part.partition(b"\r\n\r\n")
        keys = dict(line.split(b"::", 1) for line in header.split(b"\r\n") if b"::" in line)
        sections.append({name: keys.get(key, b"").strip(b'"').decode("utf-8", "replace")
                         for name, key in (("version", b"Version"), ("device", b"TargetDevice"))})
        sections[-1]["sha256"] = payload_hash(payload)
    return sections


def is_copy(image, source):
    """Whether the image on the rack, as quenra describes it, is the file on the control node."""
    return [{name: section.get(name) for name in ("version", "device", "sha256")}
            for section in image["sections"]] == sections_of_file(source)


def faults_of(image):
    for section in image["sections"]:
        if section["fault"]:
            yield sentence(section["fault"]["reason"], section["fault"]["remedy"])
        for remark in section["remarks"]:
            if remark["refused"]:
                yield sentence(remark["fact"], remark["remedy"])


class ActionModule(ActionBase):
    TRANSFERS_FILES = True
    _supports_check_mode = True

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        _, options = self.validate_argument_spec(OPTIONS)
        try:
            result.update(self.verified(Rack(self, options["command"]), options))
        except RackError as error:
            result.update(failed=True, state="refused", reasons=error.reasons,
                          msg=f"the image {options['path']} is refused: {' '.join(error.reasons)}")
        return result

    def verified(self, rack, options):
        changed = False
        image = self.image_on(rack, options["path"])
        if options["source"]:
            source = self._find_needle("files", options["source"])
            changed = not isinstance(image, dict) or not is_copy(image, source)
            if changed and self._task.check_mode:
                return {"changed": True, "state": "planned", "versions": versions_of(sections_of_file(source)),
                        "reasons": ["The image would be copied; only then can the update be planned."]}
            if changed:
                self._connection.put_file(source, options["path"])
                image = self.image_on(rack, options["path"])
                if isinstance(image, dict) and not is_copy(image, source):
                    raise RackError(f"The copy at {options['path']} differs from {source}.")
        if not isinstance(image, dict):
            raise RackError(*image)
        if not image["valid"]:
            raise RackError(*dict.fromkeys(faults_of(image)) or ["It has no section."])
        versions = versions_of(image["sections"])
        for device, version in options["versions"].items():
            if versions.get(device) != version:
                raise RackError(f"Its version for the {device} is {versions.get(device, 'missing')}, "
                                f"and {version} was requested.")
        return {"changed": changed, "state": "ready", "versions": versions}

    @staticmethod
    def image_on(rack, path):
        """The description of the image, or the reasons why there is none."""
        document = rack.document("firmware", "verify", path)
        return document["image"] if document["kind"] == "firmware-verify" else reasons_of(document)
