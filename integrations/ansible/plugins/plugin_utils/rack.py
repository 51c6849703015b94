"""quenra on a rack: command lines over the connection of a task, and the documents that they print."""

from __future__ import annotations

import json
import re

# The version that a Marten reports from the beginning of an update until it has started new firmware.
INCOMPLETE_VERSION = "0.0.0f0"
DEVICES = ("BIOS", "MARTEN")
COMMAND_OPTION = {"command": {"type": "str", "default": "quenra"}}

PLAIN_WORD = re.compile(r"[A-Za-z0-9_.:/=+-]+")
# Between double quotes, one of the shells of Windows and Unix replaces these, or ends the text.
SPECIAL_CHARACTERS = '"$`%\r\n\0'
VERSION = re.compile(r"(\d+)\.(\d+)\.(\d+)([dabf])(\d+)")


class RackError(Exception):
    """A rack gave no answer that could be used. Each reason is a sentence for people."""

    def __init__(self, *reasons):
        super().__init__(" ".join(reasons))
        self.reasons = list(reasons)


class NoDocumentError(RackError):
    """A program on a rack ended without printing its document."""


def quoted(word):
    """A word of a command line for cmd.exe, PowerShell and sh."""
    if PLAIN_WORD.fullmatch(word):
        return word
    if any(character in word for character in SPECIAL_CHARACTERS):
        raise RackError(f"'{word}' has a character that not every shell passes on, one of \" $ ` %.")
    return f'"{word}"'


class Rack:
    """Runs programs on the rack of a task."""

    def __init__(self, action, command):
        self._action = action
        self._command = command

    def run(self, line):
        """Runs a command line; returns its exit code, output and error output. Needs only a shell there."""
        # Not sudoable: the connection then requests no terminal, whose escape codes would be in the output.
        result = self._action._low_level_execute_command(line, sudoable=False, executable=False)
        return result["rc"], result["stdout"], result["stderr"]

    def document(self, *words):
        """The document of a command line of quenra, also that of a failure."""
        line = " ".join([self._command, *map(quoted, words), "--json"])
        exit_code, out, error = self.run(line)
        try:
            document = json.loads(out)
        except ValueError:
            said = (error.strip() or out.strip()).splitlines()
            raise NoDocumentError(
                f"'{line}' ended with exit code {exit_code} and without its document"
                + (f": {said[0].strip()}" if said else ".")) from None
        if not isinstance(document, dict) or document.get("format") != 1:
            raise NoDocumentError(f"'{line}' printed a document of another format than 1.")
        return document


def sentence(fact, remedy=None):
    text = fact.strip().rstrip(".") + "."
    return f"{text} {remedy.strip()}" if remedy else text


def reasons_of(document):
    """Why a document of quenra is no success, each with its remedy."""
    update = document.get("update") or document
    reasons = [sentence(obstacle["fact"], obstacle["remedy"]) for obstacle in update.get("obstacles") or ()]
    error = document.get("error")
    if error and not reasons:
        reasons = [sentence(error["message"], error.get("advice"))]
    return reasons


def version_key(version):
    """A key that orders versions; a text of another form is the oldest version, as for the library."""
    match = VERSION.match(version or "")
    if not match:
        return (-1,)
    major, minor, update, phase, build = match.groups()
    return (int(major), int(minor), int(update), "dabf".index(phase), int(build))


def versions_of(sections):
    """The version of each device after an update with these sections has been started."""
    versions = {}
    for section in sections:
        device, version = section["device"], section["version"]
        if device in DEVICES and (device not in versions or
                                  version_key(version) > version_key(versions[device])):
            versions[device] = version
    return versions
