#!/usr/bin/env python3
"""Runs the tests of the Windows build inside Wine's root.

usage: run.py [NAME...]

Without names: every cross-compiled test program and every test_*.py of this
folder. A name chooses test programs or test files that contain it. The results
go where scripts/totals.py finds them.
"""

import sys
import time
import unittest
import xml.etree.ElementTree as ElementTree
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import wine

HERE = Path(__file__).parent
PROGRAMS_AT_ONCE = 2
# What a program tells of speeds is shown even when all is well.
SPEED = "[ speed "


def test_programs(names):
    programs = sorted(wine.BUILD.glob("tests/*/*_test.exe"))
    return [p for p in programs if not names or any(name in p.stem for name in names)]


def run_program(program):
    """Runs one GoogleTest program; returns (name, succeeded, seconds)."""
    started = time.monotonic()
    report = wine.windows_path(wine.RESULTS / f"{program.stem}.xml")
    try:
        result = wine.run(program, "--gtest_color=no", f"--gtest_output=xml:{report}",
                          cwd=program.parent, timeout=600)
        succeeded, output = result.returncode == 0, result.stdout
    except AssertionError as hung:
        succeeded, output = False, str(hung)
    seconds = time.monotonic() - started
    print(f"{'ok    ' if succeeded else 'FAILED'} {program.stem} ({seconds:.1f} s)", flush=True)
    shown = output if not succeeded else "\n".join(
        line for line in output.splitlines() if line.startswith(SPEED))
    if shown:
        print(shown, flush=True)
    return program.stem, succeeded, seconds


class Recorder(unittest.TextTestResult):
    """Remembers each test's name, outcome and time."""

    def __init__(self, *arguments):
        super().__init__(*arguments)
        self.outcomes = []

    def startTest(self, test):
        super().startTest(test)
        self._started = time.monotonic()

    def stopTest(self, test):
        super().stopTest(test)
        broken = [broken_test for broken_test, _ in self.failures + self.errors]
        # A subtest's failure is that of the test it belongs to.
        failed = any(getattr(one, "test_case", one) is test for one in broken)
        self.outcomes.append((test.id(), not failed, time.monotonic() - self._started))


def run_python_tests(names):
    suite = unittest.TestSuite()
    for file in sorted(HERE.glob("test_*.py")):
        if not names or any(name in file.stem for name in names):
            suite.addTests(unittest.defaultTestLoader.loadTestsFromName(file.stem))
    runner = unittest.TextTestRunner(stream=sys.stdout, verbosity=2, resultclass=Recorder)
    result = runner.run(suite)
    # What broke before any test began (an import, a class's preparation).
    recorded = {name for name, _, _ in result.outcomes}
    outside = [(test.id(), False, 0.0) for test, _ in result.errors
               if getattr(test, "test_case", test).id() not in recorded]
    return result.outcomes + outside


def write_report(outcomes):
    root = ElementTree.Element("testsuite", name="windows", tests=str(len(outcomes)))
    for name, succeeded, seconds in outcomes:
        ElementTree.SubElement(root, "testcase", name=name, time=f"{seconds:.3f}",
                               status="run" if succeeded else "fail")
    ElementTree.ElementTree(root).write(wine.RESULTS / "ctest.xml")


def main(names):
    display = wine.start_windows()
    try:
        with ThreadPoolExecutor(PROGRAMS_AT_ONCE) as pool:
            outcomes = list(pool.map(run_program, test_programs(names)))
        outcomes += run_python_tests(names)
    finally:
        wine.stop_windows(display)
    write_report(outcomes)
    return 0 if outcomes and all(succeeded for _, succeeded, _ in outcomes) else 1


if __name__ == "__main__":
    sys.path.insert(0, str(HERE))
    sys.dont_write_bytecode = True
    sys.exit(main(sys.argv[1:]))
