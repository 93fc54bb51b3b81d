"""Every member of the Python module, on a colour and on a monochrome camera."""

import ast
import os
import pathlib
import tempfile
import unittest

# The library reads its cameras' description once.
os.environ["ORMIDEX_SIMULATOR"] = "pace=fast,serial=0xABC;pace=fast,imager=mono;fault=busy"

import numpy as np  # noqa: E402
import ormidex  # noqa: E402


def public_names(path):
    """The names that a module, or its stub, gives, with those of its classes."""
    names = set()
    for node in ast.parse(path.read_text()).body:
        if isinstance(node, (ast.FunctionDef, ast.ClassDef)):
            names.add(node.name)
        if isinstance(node, ast.ClassDef):
            for item in node.body:
                if isinstance(item, ast.FunctionDef):
                    names.add(f"{node.name}.{item.name}")
                elif isinstance(item, ast.AnnAssign):
                    names.add(f"{node.name}.{item.target.id}")
    return {name for name in names if not name.startswith("_") and "._" not in name}


class ModuleTest(unittest.TestCase):
    def test_opens_cameras(self):
        self.assertEqual(ormidex.count(), 3)
        with ormidex.Camera() as camera:
            self.assertEqual(camera.serial_number, 0xABC)
            self.assertTrue(camera.is_colour)
        with ormidex.Camera(1) as camera:
            self.assertFalse(camera.is_colour)
        camera.close()  # a second time does nothing

    def test_raises_what_the_function_returned(self):
        with self.assertRaises(ormidex.Error) as caught:
            ormidex.Camera(2)
        self.assertEqual(caught.exception.status, 1)
        self.assertEqual(caught.exception.function, "OrmidexInitialize")
        self.assertIn("could not be opened", str(caught.exception))
        self.assertEqual(ormidex.describe(0), "success")
        self.assertEqual(ormidex.describe(99), "the driver's own status")

    def test_makes_and_reads_settings(self):
        with ormidex.Camera() as camera:
            camera.exposure_time = 10
            self.assertAlmostEqual(camera.exposure_time, 10, delta=0.1)
            camera.gains = 21, 22, 23
            self.assertEqual(camera.gains, (21, 22, 23))
            camera.sub_window = ormidex.SubWindow(2, 128, 64, 640, 480)
            self.assertEqual(camera.sub_window, (2, 128, 64, 640, 480))
            self.assertEqual(camera.make_frame().shape, (240, 320))
            camera.bits_per_pixel = 16
            self.assertEqual(camera.bits_per_pixel, 16)
            self.assertEqual(camera.make_frame().dtype, np.uint16)
            with self.assertRaises(ormidex.Error):
                camera.gains = 64, 0, 0

    def test_reads_and_converts(self):
        with ormidex.Camera() as camera:
            camera.start_stream()
            frame = camera.read_frame()
            self.assertEqual((frame.shape, frame.dtype), ((480, 640), np.uint8))
            again = np.zeros_like(frame)
            self.assertIs(camera.read_frame(again), again)
            self.assertGreater(int(again.max()), int(again.min()))
            self.assertEqual(camera.convert(frame).shape, (480, 640, 3))
            camera.stop_stream()
            with self.assertRaises(ormidex.Error):
                camera.read_frame()

    def test_expands_monochrome_frames(self):
        with ormidex.Camera(1) as camera:
            camera.start_stream()
            frame = camera.read_frame()
            image = camera.convert(frame)
            for channel in range(3):
                np.testing.assert_array_equal(image[::-1, :, channel], frame)

    def test_refuses_arrays_that_do_not_fit(self):
        with ormidex.Camera() as camera:
            camera.start_stream()
            frame = camera.read_frame()
            with self.assertRaises(ValueError):
                camera.read_frame(np.zeros((480, 1280), np.uint8)[:, ::2])
            closed = np.zeros((480, 640), np.uint8)
            closed.flags.writeable = False
            with self.assertRaises(ValueError):
                camera.read_frame(closed)
            with self.assertRaises(ormidex.Error):
                camera.read_frame(np.zeros((10, 10), np.uint8))
            with self.assertRaises(ValueError):
                camera.convert(frame.astype(np.float32))
            with self.assertRaises(ValueError):
                camera.save_bitmap(np.zeros((10, 10, 3), np.uint8), "/dev/null")
            with self.assertRaises(ValueError):
                camera.save_tiff(np.zeros((480, 640), np.uint16), "/dev/null")

    def test_saves(self):
        with tempfile.TemporaryDirectory() as folder, ormidex.Camera() as camera:
            camera.start_stream()
            frame = camera.read_frame()
            image = camera.convert(frame)
            path = pathlib.Path(folder)
            camera.save_bitmap(image, path / "a.bmp")
            camera.save_jpeg(image, path / "a.jpg")
            camera.save_tiff(frame, path / "a.tif")
            self.assertEqual((path / "a.bmp").stat().st_size, 54 + 640 * 480 * 3)
            self.assertEqual((path / "a.jpg").read_bytes()[:2], b"\xff\xd8")
            self.assertEqual((path / "a.tif").read_bytes()[:2], b"II")
            stored = np.frombuffer((path / "a.bmp").read_bytes()[54:], np.uint8)
            np.testing.assert_array_equal(stored.reshape(image.shape), image)

    def test_controls_automatically(self):
        with ormidex.Camera() as camera:
            camera.start_stream()
            before = camera.exposure_time
            camera.auto_exposure(20)
            self.assertLess(camera.exposure_time, before)
            camera.white_balance()

    def test_the_stub_has_what_the_module_has(self):
        module = pathlib.Path(ormidex.__file__)
        made_by_the_constructor = {"Error.status", "Error.function"}
        self.assertEqual(public_names(module) | made_by_the_constructor,
                         public_names(module.with_suffix(".pyi")))


if __name__ == "__main__":
    unittest.main()
