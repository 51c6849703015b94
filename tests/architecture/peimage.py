"""Reads the parts of a 64-bit PE image that the checks use."""

import dataclasses
import pathlib
import struct

EXPORTS, IMPORTS, RESOURCES, EXCEPTIONS, DEBUG, LOAD_CONFIGURATION = 0, 1, 2, 3, 6, 10
IMPORT_ADDRESSES = 12
VERSION_RESOURCE = 16

HIGH_ENTROPY_VA, DYNAMIC_BASE, NX_COMPAT = 0x20, 0x40, 0x100
RELOCATIONS_STRIPPED = 0x1
SECTION_EXECUTES, SECTION_IS_WRITTEN = 0x20000000, 0x80000000


@dataclasses.dataclass(frozen=True)
class Section:
    name: str
    address: int
    virtual_size: int
    place: int
    size: int
    flags: int


class Image:
    """Addresses are relative to the image base; places are offsets in the file."""

    def __init__(self, path):
        self.bytes = pathlib.Path(path).read_bytes()
        header = self._number("I", 0x3C)
        if self.bytes[header:header + 4] != b"PE\0\0":
            raise ValueError(f"{path} is no image")
        optional = header + 24
        if self._number("H", optional) != 0x20B:
            raise ValueError(f"{path} is not for 64 bits")
        self.time = self._number("I", header + 8)
        self.flags = self._number("H", header + 22)
        self.base = self._number("Q", optional + 24)
        self.system_version = struct.unpack_from("<HH", self.bytes, optional + 40)
        self.subsystem_version = struct.unpack_from("<HH", self.bytes, optional + 48)
        self.checksum_place = optional + 64
        self.checksum = self._number("I", self.checksum_place)
        self.dll_flags = self._number("H", optional + 70)
        self.directories = [struct.unpack_from("<II", self.bytes, optional + 112 + 8 * index)
                            for index in range(self._number("I", optional + 108))]
        first = optional + self._number("H", header + 20)
        self.sections = [self._section(first + 40 * index)
                         for index in range(self._number("H", header + 6))]
        self._symbols = (self._number("I", header + 12), self._number("I", header + 16))

    def _number(self, layout, place):
        return struct.unpack_from("<" + layout, self.bytes, place)[0]

    def _section(self, place):
        name = self.bytes[place:place + 8].rstrip(b"\0").decode("ascii")
        virtual_size, address, size, raw = struct.unpack_from("<IIII", self.bytes, place + 8)
        return Section(name, address, virtual_size, raw, size, self._number("I", place + 36))

    def place(self, address):
        for section in self.sections:
            if section.address <= address < section.address + section.size:
                return section.place + address - section.address
        raise ValueError(f"nothing of the file is at {address:#x}")

    def number(self, layout, address):
        return self._number(layout, self.place(address))

    def text(self, address):
        start = self.place(address)
        return self.bytes[start:self.bytes.index(b"\0", start)].decode("ascii")

    def imported_libraries(self):
        address, _ = self.directories[IMPORTS]
        names = []
        while name := self.number("I", address + 12):
            names.append(self.text(name).lower())
            address += 20
        return names

    def imported_functions(self):
        """(library, function) of each import; a function without a name is "#" and its number."""
        address, _ = self.directories[IMPORTS]
        while name := self.number("I", address + 12):
            library = self.text(name).lower()
            entry = self.number("I", address) or self.number("I", address + 16)
            while value := self.number("Q", entry):
                by_number = value >> 63
                yield library, f"#{value & 0xFFFF}" if by_number else self.text(value + 2)
                entry += 8
            address += 20

    def symbols(self):
        """{name: address} of the symbols that lie in a section."""
        table, count = self._symbols
        strings, found, index = table + 18 * count, {}, 0
        while index < count:
            place = table + 18 * index
            value, section = struct.unpack_from("<Ih", self.bytes, place + 8)
            if section > 0:
                found[self._symbol_name(place, strings)] = self.sections[section - 1].address + value
            index += 1 + self.bytes[place + 17]
        return found

    def _symbol_name(self, place, strings):
        if self._number("I", place):
            return self.bytes[place:place + 8].rstrip(b"\0").decode("latin-1")
        start = strings + self._number("I", place + 4)
        return self.bytes[start:self.bytes.index(b"\0", start)].decode("latin-1")

    def resource(self, kind):
        """The bytes of the first resource of that kind, or nothing."""
        root, _ = self.directories[RESOURCES]
        if not root:
            return b""
        entry = self._resource_entry(root, kind)
        while entry is not None and entry & 0x80000000:
            entry = self._resource_entry(root + (entry & 0x7FFFFFFF))
        if entry is None:
            return b""
        start = self.place(self.number("I", root + entry))
        return self.bytes[start:start + self.number("I", root + entry + 4)]

    def _resource_entry(self, directory, wanted=None):
        count = self.number("H", directory + 12) + self.number("H", directory + 14)
        for entry in range(directory + 16, directory + 16 + 8 * count, 8):
            if wanted is None or self.number("I", entry) == wanted:
                return self.number("I", entry + 4)
        return None
