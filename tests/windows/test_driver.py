"""The library over a kernel driver, with no simulator in its own process."""

import unittest

import machine
from application import Application

FAST = "pace=fast,seed=7"
FRAME_BYTES = 640 * 480


class DriverTest(unittest.TestCase):
    def test_a_camera_is_counted_opened_streamed_and_closed(self):
        with machine.cameras(FAST), Application() as application:
            self.assertEqual(application.count(), (0, 1))
            self.assertEqual(application.open(), 0)
            self.assertEqual(application.call("OrmidexStartVideoStream", "$h"), 0)
            application.ask(f"buffer 0 {FRAME_BYTES}")
            empty = application.ask(f"crc 0 {FRAME_BYTES}")
            self.assertEqual(application.call("OrmidexReturnVideoData", "$h", FRAME_BYTES, "@0"), 0)
            self.assertNotEqual(application.ask(f"crc 0 {FRAME_BYTES}"), empty)
            self.assertEqual(application.call("OrmidexStopVideoStream", "$h"), 0)
            self.assertEqual(application.close(), 0)
            self.assertEqual(application.variable("h"), 0)


if __name__ == "__main__":
    unittest.main()
