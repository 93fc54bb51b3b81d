#!/usr/bin/env python3
"""Adds up test results and prints "N passed, N failed" as its last line.

usage: totals.py RESULTS...

Each RESULTS is a folder with ctest.xml, the JUnit report of a CTest run, and
with one JUnit report per GoogleTest program (name.xml) that counts its cases. A
program without a report of its own counts as one test; one that failed although
none of its cases did (it crashed, or a sanitizer complained at its end) counts
as one failure more.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def case_counts(report):
    """(passed, failed, names of the failed) of a GoogleTest report; None without one."""
    try:
        root = ElementTree.parse(report).getroot()
    except (OSError, ElementTree.ParseError):
        return None
    passed, failures = 0, []
    for case in root.iter("testcase"):
        if case.find("failure") is not None or case.find("error") is not None:
            failures.append(f"{case.get('classname')}.{case.get('name')}")
        elif case.get("status") == "run" and case.find("skipped") is None:
            passed += 1
    return passed, failures


def program_counts(test, folder):
    name = test.get("name")
    succeeded = test.get("status") == "run"
    counts = case_counts(folder / f"{name}.xml")
    if counts is None:
        return (1, []) if succeeded else (0, [name])
    passed, failures = counts
    if not succeeded and not failures:
        failures = [f"{name} (the program itself)"]
    return passed, [f"{name}: {case}" if case in counts[1] else case for case in failures]


def main(folders):
    if not folders:
        print("0 passed, 1 failed (no test was run)")
        return 1
    passed, failures = 0, []
    for folder in map(Path, folders):
        report = folder / "ctest.xml"
        if not report.exists():
            failures.append(f"{folder}: no results, the run was cut short")
            continue
        for test in ElementTree.parse(report).getroot().iter("testcase"):
            more_passed, more_failures = program_counts(test, folder)
            passed += more_passed
            failures += [f"[{folder.name}] {name}" for name in more_failures]
    for name in failures:
        print(f"FAILED {name}")
    print(f"{passed} passed, {len(failures)} failed")
    return 1 if failures or passed == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
