"""The fixed-pattern-noise values of the registry.

A camera of the first generation shows which values were taken: opening sets
clocking 0, which writes the fourth of the six values to register 145.
"""

import unittest

import machine
from application import Application

# Firmware before 2.2.5 holds no values of its own, so without the registry the
# defaults stand: 25, then 17 five times.
CAMERA = "generation=1,firmware=0x02020100,serial=0x12345678,pace=fast"
DEFAULT = 17
# The serial number's bytes from the lowest to the highest.
MATCHING, OTHER = "78563412", "12345678"
VALUE = "m_FpnRegisterValues"
CLOCKING_REGISTER = 145


def six(fourth):
    return bytes([1, 3, 5, fourth, 9, 11]).hex()


class FpnTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.machine = machine.cameras(CAMERA)
        cls.machine.__enter__()

    @classmethod
    def tearDownClass(cls):
        cls.machine.__exit__(None, None, None)

    def clocking_value(self):
        with Application() as application:
            self.assertEqual(application.open(), 0)
            self.assertEqual(
                application.call("OrmidexReadRegister", "$h", CLOCKING_REGISTER, "&v"), 0)
            self.assertEqual(application.close(), 0)
            return application.variable("v")

    def test_without_a_key_the_defaults_stand(self):
        self.assertEqual(self.clocking_value(), DEFAULT)

    def test_a_value_directly_under_the_key_is_taken(self):
        with machine.registry_value(machine.FPN_KEY_NT, VALUE, six(41)):
            self.assertEqual(self.clocking_value(), 41)

    def test_the_key_itself_wins_over_a_matching_subkey(self):
        with machine.registry_value(machine.FPN_KEY_NT, VALUE, six(41)):
            machine.set_value(f"{machine.FPN_KEY_NT}\\{MATCHING}", VALUE, six(43), "REG_BINARY")
            self.assertEqual(self.clocking_value(), 41)

    def test_the_subkey_of_the_cameras_serial_number_is_taken(self):
        with machine.registry_value(f"{machine.FPN_KEY_NT}\\{MATCHING}", VALUE, six(43)):
            self.assertEqual(self.clocking_value(), 43)
        machine.delete_key(machine.FPN_KEY_NT)

    def test_longer_subkey_names_match_by_their_first_eight_characters(self):
        with machine.registry_value(f"{machine.FPN_KEY_NT}\\{MATCHING}ABCD", VALUE, six(45)):
            self.assertEqual(self.clocking_value(), 45)
        machine.delete_key(machine.FPN_KEY_NT)

    def test_subkeys_of_other_cameras_and_short_names_are_passed_over(self):
        for name in (OTHER, "7856341"):
            machine.set_value(f"{machine.FPN_KEY_NT}\\{name}", VALUE, six(47), "REG_BINARY")
        try:
            self.assertEqual(self.clocking_value(), DEFAULT)
            machine.set_value(f"{machine.FPN_KEY_NT}\\{MATCHING}", VALUE, six(43), "REG_BINARY")
            self.assertEqual(self.clocking_value(), 43)
        finally:
            machine.delete_key(machine.FPN_KEY_NT)

    def test_a_value_that_is_too_short_is_passed_over(self):
        with machine.registry_value(machine.FPN_KEY_NT, VALUE, "0103052909"):
            self.assertEqual(self.clocking_value(), DEFAULT)
            # ... and the subkeys are looked at.
            machine.set_value(f"{machine.FPN_KEY_NT}\\{MATCHING}", VALUE, six(43), "REG_BINARY")
            self.assertEqual(self.clocking_value(), 43)

    def test_of_a_longer_value_the_first_six_bytes_are_taken(self):
        with machine.registry_value(machine.FPN_KEY_NT, VALUE, six(41) + "63636363"):
            self.assertEqual(self.clocking_value(), 41)

    def test_consumer_systems_have_a_key_of_their_own(self):
        with machine.registry_value(machine.FPN_KEY_CONSUMER, VALUE, six(37)), \
                machine.registry_value(machine.FPN_KEY_NT, VALUE, six(41)):
            self.assertEqual(self.clocking_value(), 41)
            with machine.system_version("win98"):
                self.assertEqual(self.clocking_value(), 37)


if __name__ == "__main__":
    unittest.main()
