"""Cameras among the system's video devices."""

import unittest

import machine
from application import Application


class CountingTest(unittest.TestCase):
    def count(self, *devices):
        with machine.listed_devices(*devices), Application() as application:
            return application.count()

    def test_an_empty_category_counts_as_no_camera(self):
        self.assertEqual(self.count(), (0, 0))

    def test_cameras_are_counted_among_other_devices(self):
        self.assertEqual(self.count(machine.other_device(), machine.camera(0),
                                    machine.other_device("Capture Card"), machine.camera(1),
                                    machine.camera(2)), (0, 3))

    def test_other_devices_alone_are_no_camera(self):
        self.assertEqual(self.count(machine.other_device(), machine.other_device("Card")), (0, 0))

    def test_a_name_that_only_begins_like_the_cameras_is_another(self):
        self.assertEqual(self.count(machine.other_device(machine.CAMERA_NAME + " 2"),
                                    machine.other_device(machine.CAMERA_NAME.lower())), (0, 0))

    def test_a_camera_without_a_path_counts(self):
        self.assertEqual(self.count({"FriendlyName": machine.CAMERA_NAME}), (0, 1))

    def test_a_device_without_any_property_is_skipped(self):
        self.assertEqual(self.count({}, machine.camera(0)), (0, 1))

    def test_every_device_type_name_counts_the_same_cameras(self):
        with machine.listed_devices(machine.camera(0)), Application() as application:
            for name in ("QV-H520 Series Imaging Module", "Torvenal(tm) Imaging Module",
                         r"\\.\QV1394CAM", r"\\.\QV-H520", "anything", ""):
                application.ask("set n 77")
                self.assertEqual(application.call("OrmidexGetNumberDevices", f'"{name}"', "&n"), 0)
                self.assertEqual(application.variable("n"), 1, name)

    def test_a_null_name_is_refused_after_the_count_was_cleared(self):
        with machine.listed_devices(machine.camera(0)), Application() as application:
            application.ask("set n 77")
            self.assertEqual(application.call("OrmidexGetNumberDevices", 0, "&n"), 2)
            self.assertEqual(application.variable("n"), 0)


class OpeningTest(unittest.TestCase):
    def open(self, index, *devices):
        with machine.listed_devices(*devices), Application() as application:
            application.ask("set h 77")
            status = application.open(index)
            self.assertEqual(application.variable("h"), 0)
            return status

    def test_an_index_past_the_last_camera_is_not_found(self):
        devices = [machine.camera(0), machine.other_device()]
        self.assertEqual(self.open(1, *devices), 3)
        self.assertEqual(self.open(0xFFFFFFFF, *devices), 3)

    def test_a_camera_without_a_path_cannot_be_opened(self):
        self.assertEqual(self.open(0, {"FriendlyName": machine.CAMERA_NAME}), 1)

    def test_a_camera_without_a_path_before_the_wanted_one_stops_the_search(self):
        self.assertEqual(self.open(1, {"FriendlyName": machine.CAMERA_NAME}, machine.camera(0)), 1)

    def test_a_path_that_leads_nowhere_cannot_be_opened(self):
        self.assertEqual(self.open(0, machine.camera(7)), 1)

    def test_the_index_counts_cameras_and_not_devices(self):
        description = "pace=fast,serial=0x111;pace=fast,serial=0x222"
        listing = [machine.other_device(), machine.camera(0), machine.other_device(),
                   machine.camera(1)]
        with machine.driver(description), machine.listed_devices(*listing):
            with Application() as application:
                for index, serial in ((0, 0x111), (1, 0x222)):
                    self.assertEqual(application.open(index), 0)
                    self.assertEqual(application.call("OrmidexGetSerialNumber", "$h", "&s"), 0)
                    self.assertEqual(application.variable("s"), serial)
                    self.assertEqual(application.close(), 0)


if __name__ == "__main__":
    unittest.main()
