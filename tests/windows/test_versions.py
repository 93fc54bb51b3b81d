"""The systems on which the library loads, and what kind of system it takes them for.

Each test is one that an application could make: kinds 1 and 3 find a listed
camera, kind 2 does not look at the list; kinds 1 and 3 differ in the registry
key of the fixed-pattern-noise values (test_registry.py).
"""

import unittest

import machine
import wine
from application import Application

ENUMERATING = ["win98", "winme", "win2k", "winxp", "win2003"]
# 95 is the consumer platform with minor version 0; the others are NT 3 and NT 6
# and later.
REFUSED = ["win95", "nt351", "vista", "win2008", "win7", "win8", "win10"]
# What the system's loader says of a library whose start-up failed.
ERROR_DLL_INIT_FAILED = 1114


class SupportedTest(unittest.TestCase):
    def test_systems_that_find_cameras_by_enumeration(self):
        with machine.listed_devices(machine.camera(0)):
            for version in ENUMERATING:
                with self.subTest(version), machine.system_version(version):
                    with Application() as application:
                        self.assertEqual(application.count(), (0, 1))
                        self.assertEqual(application.boxes, [])

    def test_on_nt_4_the_list_of_devices_does_not_count(self):
        with machine.listed_devices(machine.camera(0)), machine.system_version("nt40"):
            with Application() as application:
                self.assertEqual(application.count(), (0, 0))
                self.assertEqual(application.open(), 1)
                self.assertEqual(application.boxes, [])

    def test_on_nt_4_a_file_of_the_cameras_name_is_no_camera(self):
        name = wine.SCRATCH / machine.CAMERA_NAME
        name.write_bytes(b"not a camera")
        try:
            with machine.system_version("nt40"), Application(cwd=wine.SCRATCH) as application:
                # It opens, but does not answer the request for the device list.
                self.assertEqual(application.count(), (0, 0))
                self.assertEqual(application.open(), 1)
                self.assertEqual(application.variable("h"), 0)
            self.assertEqual(name.read_bytes(), b"not a camera")
        finally:
            name.unlink()


class RefusedTest(unittest.TestCase):
    def test_other_systems_are_refused_with_a_message_box(self):
        for version in REFUSED:
            with self.subTest(version), machine.system_version(version):
                with Application(load=False) as application:
                    self.assertEqual(application.ask("load"), f"refused {ERROR_DLL_INIT_FAILED}")
                    self.assertEqual(application.boxes, [{
                        "title": "Torvenal", "text": "Unsupported Operating System.",
                        "buttons": 1}])


if __name__ == "__main__":
    unittest.main()
