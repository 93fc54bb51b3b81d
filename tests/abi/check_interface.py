#!/usr/bin/env python3
"""Compares the public header, the table of exports and a built library.

Each check prints what differs and exits with 1, or prints what it compared.
"""

import argparse
import re
import subprocess
import sys

TABLE_ROW = re.compile(r"^ORMIDEX_EXPORT\((\d+), (\w+), (\d+), (shared|exclusive)\)$", re.M)
DECLARATION = re.compile(
    r"(?:/\*\*(?P<doc>(?:(?!\*/).)*?)\*/\s*)?"
    r"ORMIDEX_API\s+OrmidexStatus\s+ORMIDEX_CALL\s+(?P<name>\w+)\((?P<arguments>[^;]*)\);",
    re.S,
)
STATUS_NAME = re.compile(r"^\s*(ORMIDEX_\w+) = \d+,?$", re.M)

# They take no handle, or the address of one.
WITHOUT_HANDLE = {"OrmidexGetNumberDevices", "OrmidexInitialize", "OrmidexUninitialize"}

# Libraries of the oldest supported systems, and functions that those lack though
# today's tool chains like to call them.
OLD_LIBRARIES = {
    "kernel32.dll", "user32.dll", "gdi32.dll", "advapi32.dll",
    "ole32.dll", "oleaut32.dll", "winmm.dll", "msvcrt.dll",
}
TOO_NEW = {
    "AcquireSRWLockExclusive", "AddVectoredExceptionHandler", "CreateEventExA",
    "DecodePointer", "EncodePointer", "FlsAlloc", "GetModuleHandleExA", "GetModuleHandleExW",
    "GetNativeSystemInfo", "GetTickCount64", "InitializeConditionVariable",
    "InitializeCriticalSectionEx", "InitOnceExecuteOnce", "RegGetValueA",
    "RemoveVectoredExceptionHandler", "SleepConditionVariableCS", "SetThreadStackGuarantee",
    "WakeAllConditionVariable", "WakeConditionVariable",
}


class Function:
    def __init__(self, name, arguments, doc):
        self.name = name
        self.doc = doc
        self.arguments = [
            re.search(r"(\w+)(?:\[\d+\])?$", one.strip()).group(1)
            for one in arguments.split(",")
        ]


def read_header(text):
    return [Function(m["name"], m["arguments"], m["doc"]) for m in DECLARATION.finditer(text)]


def read_table(text):
    return {m[2]: (int(m[1]), int(m[3])) for m in TABLE_ROW.finditer(text)}


def compare_sets(what, found, wanted):
    faults = [f"{what}: {name} is missing" for name in sorted(wanted - found)]
    return faults + [f"{what}: {name} is too much" for name in sorted(found - wanted)]


def check_signatures(functions, table):
    faults = compare_sets("header", {f.name for f in functions}, set(table))
    if len(functions) != 97:
        faults.append(f"header: {len(functions)} functions instead of 97")
    for function in functions:
        if function.name in table and 4 * len(function.arguments) != table[function.name][1]:
            faults.append(
                f"{function.name}: {len(function.arguments)} arguments,"
                f" the table has {table[function.name][1]} bytes")
        if function.name not in WITHOUT_HANDLE and function.arguments[0] != "handle":
            faults.append(f"{function.name}: the first argument is not the handle")
    return faults


def documentation_faults(function, statuses):
    if function.doc is None:
        yield "is not documented"
        return
    doc = re.sub(r"^\s*\* ?", "", function.doc, flags=re.M)
    if not doc.split("@", 1)[0].strip().endswith("."):
        yield "does not begin with a sentence"
    described = re.findall(r"^@param (\w+)[ ]+(?=\S)", doc, re.M)
    if described != function.arguments:
        yield f"documents the arguments {described}, but takes {function.arguments}"
    results = re.findall(r"^@retval (\w+)[ ]+(?=\S)", doc, re.M)
    if len(results) != len(set(results)):
        yield "documents a status twice"
    unknown = [status for status in results if status not in statuses]
    for status in unknown:
        yield f"documents the status {status}, which does not exist"
    if not unknown and results != sorted(results, key=statuses.index):
        yield "does not list its statuses in their order"
    needed = {"ORMIDEX_OK"}
    if function.name != "OrmidexGetNumberDevices":
        needed.add("ORMIDEX_NO_CAMERA")
    for status in sorted(needed - set(results)):
        yield f"does not document {status}"
    if re.search(r"`(?!handle`)\w+` (or `\w+` )?is null", doc):
        if not {"ORMIDEX_NULL_POINTER", "ORMIDEX_OUT_OF_RANGE"} & set(results):
            yield "speaks of a null pointer without a status for it"
    if len(re.findall(r"^@remark Threads: \S", doc, re.M)) != 1:
        yield "has no thread line"


def check_documentation(functions, header_text):
    statuses = STATUS_NAME.findall(
        re.search(r"enum OrmidexStatusCode \{(.*?)\};", header_text, re.S)[1])
    return [f"{f.name} {fault}" for f in functions for fault in documentation_faults(f, statuses)]


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def check_elf_exports(table, nm, library):
    exported = {line.split()[-1] for line in run(nm, "-D", "--defined-only", library).splitlines()}
    exported -= {"ORMIDEX_1", "ORMIDEX_1@@ORMIDEX_1"}  # the version itself
    return compare_sets("library", exported, {f"{name}@@ORMIDEX_1" for name in table})


def check_symbol_list(nm, library, symbols):
    """The built library against the list that packages are made with."""
    exported = {line.split()[-1].replace("@@", "@")
                for line in run(nm, "-D", "--defined-only", library).splitlines()}
    exported = {name if "@" in name else f"{name}@{name}" for name in exported}
    with open(symbols, encoding="ascii") as file:
        listed = {line.split()[0] for line in file if line.startswith(" ")}
    return compare_sets("library", exported, listed)


def check_elf_soname(objdump, library):
    found = re.search(r"SONAME\s+(\S+)", run(objdump, "-p", library))
    return [] if found and found[1] == "libormidex.so.1" else [f"soname is {found and found[1]}"]


def check_dll_exports(table, objdump, library):
    text = run(objdump, "-p", library)
    base = int(re.search(r"Ordinal Base\s+(\d+)", text)[1])
    names = re.search(r"\[Ordinal/Name Pointer\] Table.*?\n((?:\s*\[.*\n)+)", text)[1]
    found = {m[2]: base + int(m[1])
             for m in re.finditer(r"\[\s*(\d+)\]\s+(?:\+base\[\s*\d+\]\s+\w+\s+)?(\S+)", names)}
    addresses = len(re.findall(r"^\s*\[\s*\d+\] \+base\[\s*\d+\] \w+ Export RVA", text, re.M))
    faults = compare_sets("DLL", set(found), set(table))
    if addresses != len(table):
        faults.append(f"DLL: {addresses} exports, named or not, instead of {len(table)}")
    return faults + [f"{name} has ordinal {found[name]} instead of {ordinal}"
                     for name, (ordinal, _) in table.items()
                     if name in found and found[name] != ordinal]


def check_dll_imports(objdump, library):
    text = run(objdump, "-p", library)
    libraries = {name.lower() for name in re.findall(r"DLL Name: (\S+)", text)}
    functions = set(re.findall(r"^\t[0-9a-f]+\s+\d+\s+(\w+)", text, re.M))
    if not functions:
        return ["DLL: no imports were found"]
    return [f"DLL needs {name}" for name in sorted(libraries - OLD_LIBRARIES)] + [
        f"DLL calls {name}" for name in sorted(functions & TOO_NEW)]


def check_decorated(table, nm, objects):
    text = run(nm, "--undefined-only", *objects)
    found = set(re.findall(r"\b_(Ormidex\w+@\d+)", text))
    return compare_sets("object", found, {f"{n}@{size}" for n, (_, size) in table.items()})


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--header", required=True)
    parser.add_argument("--table", required=True)
    parser.add_argument("check")
    parser.add_argument("inputs", nargs="*", help="a binary tool and the files to look at")
    options = parser.parse_args()
    with open(options.header, encoding="ascii") as file:
        header_text = file.read()
    with open(options.table, encoding="ascii") as file:
        table = read_table(file.read())
    functions = read_header(header_text)
    files = [name for one in options.inputs for name in one.split(";")]
    faults = {
        "signatures": lambda: check_signatures(functions, table),
        "documentation": lambda: check_documentation(functions, header_text),
        "elf-exports": lambda: check_elf_exports(table, *files),
        "symbol-list": lambda: check_symbol_list(*files),
        "elf-soname": lambda: check_elf_soname(*files),
        "dll-exports": lambda: check_dll_exports(table, *files),
        "dll-imports": lambda: check_dll_imports(*files),
        "decorated": lambda: check_decorated(table, files[0], files[1:]),
    }[options.check]()
    if len(table) != 97:
        faults.append(f"table: {len(table)} rows instead of 97")
    for fault in faults:
        print(fault)
    print(f"{options.check}: {len(functions)} functions, {len(table)} rows, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
