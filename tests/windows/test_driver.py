"""The library over a kernel driver, with no simulator in its own process."""

import json
import time
import unittest

import machine
import wine
from application import Application

FRAME_BYTES = 640 * 480
SECOND = "pace=fast,seed=7,serial=0x00052001"
SECOND_MONO = "imager=mono,pace=fast,seed=7"
FIRST = "generation=1,firmware=0x02020100,pace=fast,seed=7"

# Each line is one of an application; those that end in "= N" must answer N.
REGISTERS = """
    call OrmidexWriteRegister $h 0x40 0x5A 0 = 0
    call OrmidexReadRegister $h 0x40 &a = 0
    get a
    buffer 1 64
    call OrmidexReadMultRegister $h 0x10 16 @1 = 0
    hex 1 0 16
    call OrmidexWriteMultRegister $h 0x40 16 @1 0 = 0
    call OrmidexReadMultRegister $h 0x40 16 @1 = 0
    hex 1 0 16
    call OrmidexReadExtI2CRegister $h 0x60 0 &a
    call OrmidexWriteExtI2CRegister $h 0x60 0x40 1
    call OrmidexI2cWrite $h 0xA0 @1 4 = 0
    call OrmidexI2cRead $h 0xA0 @1 1 @1 8 = 0
    hex 1 0 8
"""
LINES = """
    call OrmidexWriteGpio $h 0x01020304 = 0
    call OrmidexReadGpio $h &a = 0
    get a
    call OrmidexSetGpo $h 1 f0.5 1 = 0
    call OrmidexSetGpo $h 1 f0 2 = 0
    call OrmidexGetGpo $h &a 1 = 0
    get a
    call OrmidexGetGpo $h &a 2 = 0
    get a
"""
DRIVER = """
    call OrmidexSetTimeout $h 2500 = 0
    call OrmidexGetTimeout $h &a = 0
    get a = 2500
    set b 0
    buffer 2 8
    call OrmidexGetFrameNumber $h &b @2 = 0
    get b
    hex 2 0 8
    call OrmidexSetGamma $h f1.8 = 0
    call OrmidexSetVideoMode $h 0 = 0
    call OrmidexSetDataTransferSize $h 16
    call OrmidexSetDataTransferSize $h 8
    call OrmidexSetVideoMode $h 1 = 0
    call OrmidexImageFlip $h 1 0 = 0
    call OrmidexImageFlip $h 0 0 = 0
"""
COMMANDS = """
    buffer 4 96
    call OrmidexWriteCommand $h @4 16 = 0
    call OrmidexReadCommand $h @4 16 = 0
    hex 4 0 16
"""
IDENTITY = """
    call OrmidexGetSerialNumber $h &a = 0
    get a
    call OrmidexGetSoftwareVersion $h &a = 0
    get a
    call OrmidexGetImagerType $h &a = 0
    get a
    call OrmidexGetImagerChipId $h &a
    get a
    call OrmidexGetLockValue $h &a
    call OrmidexIsExtOscillator $h &a
    buffer 5 128
    call OrmidexGetImagerName $h @5
    hex 5 0 81
    call OrmidexGetHardwareVersion $h @5
    hex 5 0 32
"""
STREAM = f"""
    call OrmidexStartVideoStream $h = 0
    buffer 0 {FRAME_BYTES}
    call OrmidexReturnVideoData $h {FRAME_BYTES} @0 = 0
    crc 0 {FRAME_BYTES}
    call OrmidexPauseVideoStream $h 1 = 0
    call OrmidexPauseVideoStream $h 0 = 0
    call OrmidexFlushVideoData $h = 0
    call OrmidexReturnVideoData $h {FRAME_BYTES} @0 = 0
    crc 0 {FRAME_BYTES}
    call OrmidexStopVideoStream $h = 0
    call OrmidexReturnStillFrame $h @0 f10 0 f0 0 f0 f0 = 0
    crc 0 {FRAME_BYTES}
"""
# Files, and the control loops, which read frames of their own.
FILES = r"""
    call OrmidexSaveFrameAsBitmap $h @3 "C:\scratch\a.bmp" = 0
    call OrmidexSaveFrameAsMono8 $h @0 "C:\scratch\a.bmp" = 0
    call OrmidexSaveFrameAsTiff $h @0 "C:\scratch\a.tif" 0 0 1 = 0
    call OrmidexSaveFrameAsJpeg $h @3 "C:\scratch\a.jpg" = 0
    call OrmidexColorCorrectRgb $h 640 480 @3 30 = 0
    call OrmidexStartVideoStream $h = 0
    call OrmidexAutoExposure $h 50 0 0 0 640 480 = 0
    call OrmidexWhiteBalance $h 0 0 0 640 480 128 128 128
    call OrmidexStopVideoStream $h = 0
"""
SECOND_ONLY = """
    call OrmidexSetLightSource $h 2 = 0
    call OrmidexSetSaturation $h 40
    call OrmidexGetSaturation $h &a
    get a
    call OrmidexRequestContinuousAutoExposure $h 1 2 = 0
"""
EVERY_FIRMWARE = IDENTITY + REGISTERS + LINES + DRIVER + STREAM
# Firmware before 3.0 has no command channel.
EVERYTHING = EVERY_FIRMWARE + COMMANDS


def play(test, application, script):
    """Runs a script; the result is the list of (line, answer)."""
    answers = []
    for line in filter(None, map(str.strip, script.splitlines())):
        command, _, expected = line.partition(" = ")
        answer = application.ask(command)
        if expected:
            test.assertEqual(answer, expected, command)
        answers.append((command, answer))
    return answers


def requests_of(trace):
    """What was sent and what came back, without times and names of devices."""
    return [{key: request[key] for key in ("code", "in", "out", "ok", "returned")}
            for request in map(json.loads, trace.read_text().splitlines())]


class SameAsInProcessTest(unittest.TestCase):
    """Every request gets through the kernel unchanged, and its answer back.

    The same application runs twice: with the simulator in its own process, and
    over the driver. Answers and traced requests must be the same.
    """

    def play(self, name, script, **variables):
        trace = wine.SCRATCH / f"{name}.jsonl"
        variables["ORMIDEX_TRACE"] = wine.windows_path(trace)
        with Application(variables=variables) as application:
            self.assertEqual(application.count(), (0, 1))
            self.assertEqual(application.open(), 0)
            answers = play(self, application, script)
            self.assertEqual(application.close(), 0)
        return answers, requests_of(trace)

    def check(self, description, script):
        expected, expected_requests = self.play("simulator", script, ORMIDEX_SIMULATOR=description)
        with machine.cameras(description):
            actual, actual_requests = self.play("driver", script)
        self.maxDiff = None
        self.assertEqual(actual, expected)
        for number, (request, wanted) in enumerate(zip(actual_requests, expected_requests)):
            self.assertEqual(request, wanted, f"request {number}")
        self.assertEqual(len(actual_requests), len(expected_requests))
        return {request["code"] for request in actual_requests}

    def test_second_generation_colour(self):
        codes = self.check(SECOND, EVERYTHING + SECOND_ONLY)
        # All but those that only a trigger, a system of kind 2 or an imager of the
        # first generation gets.
        missing = {f"0x{code:06x}" for code in (
            0x222000, 0x222004, 0x22200C, 0x222010, 0x222018, 0x222020, 0x222024, 0x222028,
            0x22202C, 0x222030, 0x222034, 0x222040, 0x222045, 0x222048, 0x222054, 0x222058,
            0x222088, 0x2220A0, 0x2220C0, 0x2220E4, 0x2220E8, 0x222170, 0x2223FC)} - {code.lower() for code in codes}
        self.assertEqual(missing, set(), "requests that were never made")

    def test_second_generation_monochrome(self):
        self.check(SECOND_MONO, EVERYTHING)

    def test_first_generation(self):
        codes = self.check(FIRST, EVERY_FIRMWARE + """
            buffer 4 96
            call OrmidexWriteCommand $h @4 16 = 12
        """)
        self.assertIn("0x222100", codes, "the request that flips the first generation's image")

    def test_requests_that_the_driver_fails(self):
        self.check(SECOND + ",fault=fail:gpio:1,fault=fail:get-frame-number:1", """
            call OrmidexReadGpio $h &a = 5
            call OrmidexReadGpio $h &a = 0
            buffer 2 8
            call OrmidexGetFrameNumber $h &b @2 = 5
            call OrmidexGetFrameNumber $h &b @2 = 0
        """)


class DriverTest(unittest.TestCase):
    def test_a_failed_request_is_status_5(self):
        with machine.cameras(SECOND + ",fault=fail:gpio:1"), Application() as application:
            self.assertEqual(application.open(), 0)
            self.assertEqual(application.call("OrmidexReadGpio", "$h", "&a"), 5)
            self.assertEqual(application.call("OrmidexReadGpio", "$h", "&a"), 0)
            self.assertEqual(application.close(), 0)

    def test_triggered_frames_arrive_until_trigger_mode_is_stopped(self):
        with machine.cameras("pace=real,trigger=hardware:50"), Application() as application:
            self.assertEqual(application.open(), 0)
            application.ask(f"buffer 0 {FRAME_BYTES}")
            self.assertEqual(application.call("OrmidexReturnFrameAfterTrigger", "$h", "f5", 0, "f0",
                                              0, "f0", "f0", "*t", 0, "@0", "@0", 1), 0)
            deadline = time.monotonic() + 10
            while application.variable("t") < 3 and time.monotonic() < deadline:
                application.ask("sleep 20")
            self.assertGreaterEqual(application.variable("t"), 3, "frames that were called back")
            self.assertEqual(application.call("OrmidexStopTriggerMode", "$h"), 0)
            calls = application.variable("t")
            application.ask("sleep 200")
            self.assertEqual(application.variable("t"), calls, "called back after the stop")
            self.assertEqual(application.close(), 0)

    def test_asynchronous_register_writes_arrive(self):
        with machine.cameras(SECOND), Application() as application:
            self.assertEqual(application.open(), 0)
            self.assertEqual(application.call("OrmidexWriteRegister", "$h", 0x40, 0x77, 1), 0)
            deadline = time.monotonic() + 10
            application.ask("set a 0")
            while application.variable("a") != 0x77 and time.monotonic() < deadline:
                self.assertEqual(application.call("OrmidexReadRegister", "$h", 0x40, "&a"), 0)
            self.assertEqual(application.variable("a"), 0x77)
            self.assertEqual(application.close(), 0)

    def test_two_cameras_are_told_apart_in_one_process(self):
        with machine.cameras("pace=fast,serial=0x11;pace=fast,serial=0x22", 2):
            with Application() as application:
                self.assertEqual(application.count(), (0, 2))
                self.assertEqual(application.open(0, "h"), 0)
                self.assertEqual(application.open(1, "i"), 0)
                self.assertEqual(application.call("OrmidexGetSerialNumber", "$h", "&a"), 0)
                self.assertEqual(application.call("OrmidexGetSerialNumber", "$i", "&b"), 0)
                self.assertEqual((application.variable("a"), application.variable("b")),
                                 (0x11, 0x22))
                self.assertEqual(application.close("h"), 0)
                self.assertEqual(application.call("OrmidexReadGpio", "$i", "&b"), 0)
                self.assertEqual(application.close("i"), 0)

    def test_every_stack_alignment_of_the_caller_is_good(self):
        with machine.cameras(SECOND), Application() as application:
            for offset in (4, 8, 12, 0):
                with self.subTest(offset=offset):
                    application.ask(f"offset {offset}")
                    application.ask(f"buffer 3 {3 * FRAME_BYTES}")
                    self.assertEqual(application.count(), (0, 1))
                    self.assertEqual(application.open(), 0)
                    play(self, application, EVERYTHING)
                    for algorithm in (0, 1, 2, 3, 4, 5, 255):
                        self.assertEqual(
                            application.call("OrmidexConvertColor8BppTo24Bpp", "$h", "@0", 640, 480,
                                             "@3", algorithm), 0, f"algorithm {algorithm}")
                    play(self, application, FILES)
                    self.assertEqual(application.close(), 0)


class SharingTest(unittest.TestCase):
    """Kinds 1 and 3 share a camera between processes."""

    def share(self):
        with machine.cameras(SECOND), Application() as first, Application() as second:
            self.assertEqual(first.open(), 0)
            self.assertEqual(second.open(), 0)
            # What one writes the other reads: it is one camera.
            self.assertEqual(first.call("OrmidexWriteRegister", "$h", 0x40, 0x33, 0), 0)
            self.assertEqual(second.call("OrmidexReadRegister", "$h", 0x40, "&a"), 0)
            self.assertEqual(second.variable("a"), 0x33)
            self.assertEqual(first.close(), 0)
            self.assertEqual(second.call("OrmidexReadRegister", "$h", 0x40, "&a"), 0)
            self.assertEqual(second.close(), 0)

    def test_on_nt_5(self):
        self.share()

    def test_on_a_consumer_system(self):
        with machine.system_version("win98"):
            self.share()

    def test_one_process_streams_while_another_reads_registers(self):
        with machine.cameras("pace=real"), Application() as streaming, Application() as other:
            self.assertEqual(streaming.open(), 0)
            self.assertEqual(other.open(), 0)
            self.assertEqual(streaming.call("OrmidexStartVideoStream", "$h"), 0)
            streaming.ask(f"buffer 0 {FRAME_BYTES}")
            for _ in range(5):
                streaming.send(f"call OrmidexReturnVideoData $h {FRAME_BYTES} @0")
                self.assertEqual(other.call("OrmidexReadRegister", "$h", 0, "&a"), 0)
                self.assertEqual(streaming.answer("OrmidexReturnVideoData"), "0")
            self.assertEqual(streaming.close(), 0)
            self.assertEqual(other.close(), 0)


class UnpluggedTest(unittest.TestCase):
    def test_the_driver_goes_while_a_frame_is_awaited(self):
        with machine.cameras("pace=real,trigger=hardware,fault=never:3"):
            with Application() as application:
                self.assertEqual(application.open(), 0)
                self.assertEqual(application.call("OrmidexSetTimeout", "$h", 60000), 0)
                self.assertEqual(application.call("OrmidexStartVideoStream", "$h"), 0)
                application.ask(f"buffer 0 {FRAME_BYTES}")
                for _ in range(2):
                    self.assertEqual(
                        application.call("OrmidexReturnVideoData", "$h", FRAME_BYTES, "@0"), 0)
                application.send(f"call OrmidexReturnVideoData $h {FRAME_BYTES} @0")
                time.sleep(0.5)
                machine.stop_driver()
                self.assertEqual(application.answer("OrmidexReturnVideoData"), "5")
                self.assertEqual(application.call("OrmidexReadGpio", "$h", "&a"), 5)
                self.assertEqual(application.close(), 0)
                self.assertEqual(application.variable("h"), 0)

    def test_the_driver_goes_while_the_camera_streams(self):
        with machine.cameras("pace=real"), Application() as application:
            self.assertEqual(application.open(), 0)
            self.assertEqual(application.call("OrmidexStartVideoStream", "$h"), 0)
            application.ask(f"buffer 0 {FRAME_BYTES}")
            self.assertEqual(
                application.call("OrmidexReturnVideoData", "$h", FRAME_BYTES, "@0"), 0)
            machine.stop_driver()
            self.assertEqual(
                application.call("OrmidexReturnVideoData", "$h", FRAME_BYTES, "@0"), 5)
            self.assertEqual(application.close(), 0)
            self.assertEqual(application.open(), 1, "a camera that is no longer there")

    def test_a_camera_that_comes_back_opens_again(self):
        with machine.cameras(SECOND), Application() as application:
            self.assertEqual(application.open(), 0)
            machine.stop_driver()
            self.assertEqual(application.call("OrmidexReadGpio", "$h", "&a"), 5)
            self.assertEqual(application.close(), 0)
            machine.start_driver()
            self.assertEqual(application.open(), 0)
            self.assertEqual(application.call("OrmidexReadGpio", "$h", "&a"), 0)
            self.assertEqual(application.close(), 0)


class UnloadingTest(unittest.TestCase):
    def test_with_a_streaming_camera_open(self):
        with machine.cameras("pace=real"), Application() as application:
            self.assertEqual(application.open(), 0)
            self.assertEqual(application.call("OrmidexStartVideoStream", "$h"), 0)
            self.assertEqual(application.ask("unload"), "unloaded")
            self.assertEqual(application.end(), 0)

    def test_a_process_that_ends_with_a_camera_open(self):
        with machine.cameras("pace=real"):
            with Application() as application:
                self.assertEqual(application.open(), 0)
                self.assertEqual(application.call("OrmidexStartVideoStream", "$h"), 0)
                self.assertEqual(application.end(), 0)
            with Application() as application:
                self.assertEqual(application.open(), 0, "the camera was left in use")
                self.assertEqual(application.close(), 0)


if __name__ == "__main__":
    unittest.main()
