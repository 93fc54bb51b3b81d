"""Reads what a Windows executable file says of itself: imports, exports, resources."""

import struct


class Image:
    """A 32-bit PE file. Attributes: machine, subsystem_version, characteristics."""

    EXPORTS, IMPORTS, RESOURCES = 0, 1, 2

    def __init__(self, path):
        self._bytes = path.read_bytes()
        header = self._word(0x3C)
        if self._bytes[header:header + 4] != b"PE\0\0":
            raise ValueError(f"{path} is not a PE file")
        self.machine, sections = struct.unpack_from("<HH", self._bytes, header + 4)
        optional_bytes, self.characteristics = struct.unpack_from("<HH", self._bytes, header + 20)
        optional = header + 24
        self.subsystem_version = struct.unpack_from("<HH", self._bytes, optional + 48)
        self._directories = [struct.unpack_from("<II", self._bytes, optional + 96 + 8 * index)
                             for index in range(16)]
        table = optional + optional_bytes
        self._sections = [struct.unpack_from("<IIII", self._bytes, table + 40 * index + 8)
                          for index in range(sections)]

    def _word(self, offset):
        return struct.unpack_from("<I", self._bytes, offset)[0]

    def _offset(self, address):
        for _, start, raw_bytes, raw in self._sections:
            if start <= address < start + raw_bytes:
                return raw + address - start
        raise ValueError(f"no section holds address {address:#x}")

    def _text(self, address):
        start = self._offset(address)
        return self._bytes[start:self._bytes.index(b"\0", start)].decode("ascii")

    def imports(self):
        """{library in lower case: set of function names}"""
        found = {}
        entry = self._offset(self._directories[self.IMPORTS][0])
        while True:
            names, _, _, library, addresses = struct.unpack_from("<IIIII", self._bytes, entry)
            if library == 0:
                return found
            found[self._text(library).lower()] = self._imported_names(names or addresses)
            entry += 20

    def _imported_names(self, table):
        names = set()
        place = self._offset(table)
        while self._word(place) != 0:
            value = self._word(place)
            names.add(f"#{value & 0xFFFF}" if value >> 31 else self._text(value + 2))
            place += 4
        return names

    def exports(self):
        """{name: ordinal}, and the number of exported addresses."""
        directory = self._offset(self._directories[self.EXPORTS][0])
        base, functions, names, _, name_table, ordinal_table = struct.unpack_from(
            "<IIIIII", self._bytes, directory + 16)
        name_place, ordinal_place = self._offset(name_table), self._offset(ordinal_table)
        found = {}
        for index in range(names):
            ordinal = struct.unpack_from("<H", self._bytes, ordinal_place + 2 * index)[0]
            found[self._text(self._word(name_place + 4 * index))] = base + ordinal
        return found, functions

    def resources(self):
        """{type number: set of resource numbers}"""
        root = self._offset(self._directories[self.RESOURCES][0])
        found = {}
        for kind, place in self._resource_entries(root, root):
            found[kind] = {number for number, _ in self._resource_entries(root, place)}
        return found

    def _resource_entries(self, root, directory):
        named, numbered = struct.unpack_from("<HH", self._bytes, directory + 12)
        for index in range(named + numbered):
            number, place = struct.unpack_from("<II", self._bytes, directory + 16 + 8 * index)
            yield number & 0x7FFFFFFF, root + (place & 0x7FFFFFFF)
