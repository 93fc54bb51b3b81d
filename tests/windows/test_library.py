"""The library's file, and its interface as seen by a plain program."""

import re
import unittest

import pe
import wine
from application import LIBRARY, Application

TABLE = wine.PROJECT / "src/frame/export_table.inc"
ALLOWED = wine.PROJECT / "tests/windows/allowed-imports.txt"
NULL_HANDLE = wine.BUILD / "src/frame/null_handle.exe"

ICON_GROUP, VERSION = 14, 16  # resource types


def allowed_imports():
    """{library: set of functions} of the checked-in list."""
    allowed, library = {}, None
    for line in ALLOWED.read_text(encoding="ascii").splitlines():
        line = line.partition("#")[0].rstrip()
        if line.startswith(" "):
            allowed[library].add(line.strip())
        elif line:
            library = line
            allowed[library] = set()
    return allowed


class FileTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.image = pe.Image(LIBRARY)

    def test_exports_are_the_97_of_the_table_with_their_ordinals(self):
        table = {name: int(ordinal) for ordinal, name in
                 re.findall(r"^ORMIDEX_EXPORT\((\d+), (\w+),", TABLE.read_text(), re.M)}
        exports, addresses = self.image.exports()
        self.assertEqual(len(table), 97)
        self.assertEqual(exports, table)
        self.assertEqual(addresses, 97, "exports, with and without a name")

    def test_imports_are_functions_that_windows_2000_has(self):
        allowed = allowed_imports()
        for library, functions in self.image.imports().items():
            self.assertIn(library, allowed, "a library that the list does not name")
            self.assertEqual(functions - allowed[library], set(),
                             f"imports from {library} that allowed-imports.txt does not name")

    def test_it_is_a_library_for_old_systems(self):
        self.assertEqual(self.image.machine, 0x14C, "i386")
        self.assertLessEqual(self.image.subsystem_version, (4, 0), "loads since version 4.0")

    def test_it_has_a_version_and_the_preview_icon(self):
        resources = self.image.resources()
        self.assertIn(131, resources.get(ICON_GROUP, set()), "the icon's number")
        self.assertIn(1, resources.get(VERSION, set()), "a version resource")


class LoadedTest(unittest.TestCase):
    def test_every_function_refuses_a_null_handle_and_keeps_the_stack_pointer(self):
        result = wine.run(NULL_HANDLE)
        self.assertEqual(result.stdout.strip(),
                         "97 functions, 94 refuse a null handle, 0 faults")
        self.assertEqual(result.returncode, 0)

    def test_the_icon_loads(self):
        with Application() as application:
            self.assertEqual(application.ask("resource 131"), "icon")
            self.assertEqual(application.ask("resource 132"), "no icon")

    def test_it_loads_again_after_unloading(self):
        with Application() as application:
            for _ in range(3):
                self.assertEqual(application.ask("unload"), "unloaded")
                self.assertEqual(application.ask("load"), "loaded")
            self.assertEqual(application.count(), (0, 0))

    def test_without_a_driver_and_a_listed_device_there_is_no_camera(self):
        with Application() as application:
            self.assertEqual(application.count(), (0, 0))
            self.assertEqual(application.open(), 1, "the category is empty")
            self.assertEqual(application.variable("h"), 0)


if __name__ == "__main__":
    unittest.main()
