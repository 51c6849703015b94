"""Reads the list of equivalent mutants; equivalent.txt documents its format.

An entry names a mutant by its function, its change and the occurrence of that change in the function.
The key survives renamed variables and moved lines.
"""

import dataclasses
import re

ENTRY = re.compile(r"(?P<scope>\S+): (?P<before>.+?) -> (?P<after>.*?)(?: #(?P<occurrence>\d+))?: "
                   r"(?P<reason>.+)")


@dataclasses.dataclass(frozen=True)
class Equivalent:
    path: str
    scope: str
    before: str
    after: str
    occurrence: int
    reason: str

    @property
    def key(self):
        return self.path, self.scope, self.before, self.after, self.occurrence


class Equivalents:
    def __init__(self, entries):
        self.entries = entries
        self._keys = {entry.key for entry in entries}

    def covers(self, mutant):
        return mutant.key in self._keys

    def without(self, mutants):
        """The entries that match none of the mutants."""
        found = {mutant.key for mutant in mutants}
        return [entry for entry in self.entries if entry.key not in found]


def parse(text, name="equivalent.txt"):
    entries, path = [], ""
    for number, line in enumerate(text.splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        if not line.startswith(" "):
            path = line.strip()
            continue
        match = ENTRY.fullmatch(line.strip())
        if not match or not path:
            raise ValueError(f"{name}:{number}: expected 'FUNCTION: BEFORE -> AFTER [#N]: REASON'")
        entries.append(Equivalent(path, match["scope"], match["before"], match["after"],
                                  int(match["occurrence"] or 1), match["reason"]))
    return Equivalents(entries)


def read(path):
    return parse(path.read_text(), path)
