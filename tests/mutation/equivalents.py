"""Reads the list of equivalent mutants; equivalent.txt documents its format."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Equivalent:
    path: str
    original: str
    mutated: str
    reason: str


class Equivalents:
    def __init__(self, entries):
        self.entries = entries
        self._keys = {(entry.path, entry.original, entry.mutated) for entry in entries}

    @staticmethod
    def _key(mutant):
        return mutant.path, mutant.original.strip(), mutant.mutated.strip()

    def covers(self, mutant):
        return self._key(mutant) in self._keys

    def without(self, mutants):
        """The entries that match none of the mutants."""
        found = {self._key(mutant) for mutant in mutants}
        return [entry for entry in self.entries
                if (entry.path, entry.original, entry.mutated) not in found]


def read(path):
    entries, path_of_entries, original, mutated = [], "", "", ""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        mark, rest = line[:2], line[2:].strip()
        if not line.strip() or line.startswith("#"):
            continue
        if mark == "- ":
            original, mutated = rest, ""
        elif mark == "+ " and original:
            mutated = rest
        elif mark == "  " and mutated:
            entries.append(Equivalent(path_of_entries, original, mutated, rest))
            mutated = ""
        elif line[0] not in "-+ ":
            path_of_entries = line.strip()
        else:
            raise ValueError(f"{path}:{number}: a change is three lines: -, + and the reason")
    return Equivalents(entries)
