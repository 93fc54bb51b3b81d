#!/usr/bin/env python3
"""Makes an import library as Microsoft's linker makes them.

usage: import_library.py EXPORT-TABLE DLL-NAME OUTPUT

Its members are short import records: a function is called by its decorated name
(_OrmidexGetGamma@8) and imported from the DLL by the name without decoration.
Three ordinary objects around them build the DLL's entry in a program's import
table.
"""

import re
import struct
import sys
from pathlib import Path

MACHINE_I386 = 0x14C
CODE, IMPORT_BY_UNDECORATED_NAME = 0, 3
ROW = re.compile(r"^ORMIDEX_EXPORT\((\d+), (\w+), (\d+), \w+\)$", re.M)

INITIALISED_DATA_RW, ALIGN_2, ALIGN_4 = 0xC0000040, 0x00200000, 0x00300000
EXTERNAL, STATIC, SECTION_CLASS = 2, 3, 104
DIR32NB = 7  # a relocation to an address relative to the image


class Object:
    """A small COFF object: sections with relocations, and symbols."""

    def __init__(self):
        self.sections = []
        self.symbols = []
        self._strings = b""

    def section(self, name, data, flags, relocations=()):
        self.sections.append((name, data, flags, relocations))

    def symbol(self, name, section=0, value=0, storage=EXTERNAL):
        self.symbols.append((name, value, section, storage))

    def _symbol_name(self, name):
        raw = name.encode("ascii")
        if len(raw) <= 8:
            return raw.ljust(8, b"\0")
        offset = 4 + len(self._strings)
        self._strings += raw + b"\0"
        return struct.pack("<II", 0, offset)

    def bytes(self):
        place = 20 + 40 * len(self.sections)
        headers = bodies = b""
        for name, data, flags, relocations in self.sections:
            fixups = b"".join(struct.pack("<IIH", *one) for one in relocations)
            headers += struct.pack("<8sIIIIIIHHI", name.encode(), 0, 0, len(data), place,
                                   place + len(data) if fixups else 0, 0, len(relocations), 0,
                                   flags)
            bodies += data + fixups
            place += len(data) + len(fixups)
        symbols = b"".join(
            self._symbol_name(name) + struct.pack("<IhHBB", value, section, 0, storage, 0)
            for name, value, section, storage in self.symbols)
        header = struct.pack("<HHIIIHH", MACHINE_I386, len(self.sections), 0, place,
                             len(self.symbols), 0, 0)
        return (header + headers + bodies + symbols +
                struct.pack("<I", 4 + len(self._strings)) + self._strings)


def descriptor_object(dll):
    """The DLL's import descriptor, filled in by the linker's sorting of .idata."""
    stem = dll.rsplit(".", 1)[0]
    made = Object()
    # Symbols 2, 3 and 4 are the name, the lookup table and the address table.
    made.section(".idata$2", bytes(20), INITIALISED_DATA_RW | ALIGN_4,
                 [(12, 2, DIR32NB), (0, 3, DIR32NB), (16, 4, DIR32NB)])
    made.section(".idata$6", dll.encode() + b"\0" * (2 - len(dll) % 2),
                 INITIALISED_DATA_RW | ALIGN_2)
    made.symbol(f"__IMPORT_DESCRIPTOR_{stem}", 1)
    made.symbol(".idata$2", 1, 0xC0000040, SECTION_CLASS)
    made.symbol(".idata$6", 2, 0, STATIC)
    made.symbol(".idata$4", 0, 0xC0000040, SECTION_CLASS)
    made.symbol(".idata$5", 0, 0xC0000040, SECTION_CLASS)
    made.symbol("__NULL_IMPORT_DESCRIPTOR")
    made.symbol(f"\x7f{stem}_NULL_THUNK_DATA")
    return f"__IMPORT_DESCRIPTOR_{stem}", made


def null_descriptor_object():
    made = Object()
    made.section(".idata$3", bytes(20), INITIALISED_DATA_RW | ALIGN_4)
    made.symbol("__NULL_IMPORT_DESCRIPTOR", 1)
    return "__NULL_IMPORT_DESCRIPTOR", made


def null_thunk_object(dll):
    name = f"\x7f{dll.rsplit('.', 1)[0]}_NULL_THUNK_DATA"
    made = Object()
    made.section(".idata$5", bytes(4), INITIALISED_DATA_RW | ALIGN_4)
    made.section(".idata$4", bytes(4), INITIALISED_DATA_RW | ALIGN_4)
    made.symbol(name, 1)
    return name, made


def import_record(dll, name, argument_bytes, ordinal):
    symbol = f"_{name}@{argument_bytes}"
    data = symbol.encode() + b"\0" + dll.encode() + b"\0"
    kind = CODE | IMPORT_BY_UNDECORATED_NAME << 2
    header = struct.pack("<HHHHIIHH", 0, 0xFFFF, 0, MACHINE_I386, 0, len(data), ordinal, kind)
    return [f"__imp_{symbol}", symbol], header + data


def archive_member(name, data):
    header = f"{name:<16}{0:<12}{'':<6}{'':<6}{0:<8}{len(data):<10}`\n".encode("ascii")
    return header + data + b"\n" * (len(data) % 2)


def archive(dll, members):
    """members: list of (symbols, data). Both of the linker's indexes are written."""
    symbols = [(symbol, index) for index, (names, _) in enumerate(members) for symbol in names]
    long_name = dll.encode() + b"\0"
    first_bytes = 4 + 4 * len(symbols) + sum(len(name) + 1 for name, _ in symbols)
    second_bytes = 8 + 4 * len(members) + 2 * len(symbols) + first_bytes - 4 - 4 * len(symbols)
    place = 8
    for size in (first_bytes, second_bytes, len(long_name)):
        place += 60 + size + size % 2
    offsets = []
    for _, data in members:
        offsets.append(place)
        place += 60 + len(data) + len(data) % 2
    names = b"".join(name.encode("latin-1") + b"\0" for name, _ in symbols)
    first = struct.pack(">I", len(symbols)) + b"".join(
        struct.pack(">I", offsets[index]) for _, index in symbols) + names
    ordered = sorted(symbols, key=lambda one: one[0].encode("latin-1"))
    second = (struct.pack("<I", len(members)) + b"".join(struct.pack("<I", o) for o in offsets) +
              struct.pack("<I", len(ordered)) +
              b"".join(struct.pack("<H", index + 1) for _, index in ordered) +
              b"".join(name.encode("latin-1") + b"\0" for name, _ in ordered))
    return (b"!<arch>\n" + archive_member("/", first) + archive_member("/", second) +
            archive_member("//", long_name) +
            b"".join(archive_member("/0", data) for _, data in members))


def main(table, dll, output):
    members = [([name], made.bytes()) for name, made in (
        descriptor_object(dll), null_descriptor_object(), null_thunk_object(dll))]
    for ordinal, name, argument_bytes in ROW.findall(Path(table).read_text(encoding="ascii")):
        members.append(import_record(dll, name, argument_bytes, int(ordinal)))
    Path(output).write_bytes(archive(dll, members))


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
