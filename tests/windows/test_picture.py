"""The package's programs: the example over the kernel driver, and the tool.

A simulated camera with the same seed must give the same picture, byte for byte,
wherever it is: behind the kernel driver, in the program's own process, and in
the Linux build, whose picture the test run has made beforehand.
"""

import shutil
import unittest

import machine
import wine

PACKAGE = wine.PROJECT / "dist/ormidex-win32"
LINUX_PICTURES = wine.RESULTS / "linux"
# The first frame of a stream: what both programs of the comparison take.
CAMERA = "pace=fast,seed=11,noise=2"


class PictureTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.programs = wine.SCRATCH / "package"
        shutil.copytree(PACKAGE / "bin", cls.programs)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.programs)

    def picture(self, program, *arguments, **variables):
        path = self.programs / "picture.bmp"
        path.unlink(missing_ok=True)
        result = wine.run(self.programs / program, *arguments, cwd=self.programs,
                          variables=variables)
        self.assertEqual(result.returncode, 0, result.stdout)
        return path.read_bytes()

    def test_the_example_over_the_driver_takes_the_picture_of_the_linux_library(self):
        expected = (LINUX_PICTURES / "example.bmp").read_bytes()
        self.assertEqual(len(expected), 54 + 640 * 480 * 3)
        with machine.cameras(CAMERA):
            actual = self.picture("first_picture.exe", "picture.bmp")
        self.assertTrue(actual == expected, self.difference(actual, expected))

    def test_the_example_with_its_own_simulator_takes_it_too(self):
        expected = (LINUX_PICTURES / "example.bmp").read_bytes()
        actual = self.picture("first_picture.exe", "picture.bmp", ORMIDEX_SIMULATOR=CAMERA)
        self.assertTrue(actual == expected, self.difference(actual, expected))

    def test_the_tool_over_the_driver_takes_the_picture_of_the_linux_tool(self):
        expected = (LINUX_PICTURES / "tool.bmp").read_bytes()
        with machine.cameras(CAMERA):
            actual = self.picture("ormidex.exe", "capture", "-o", "picture.bmp")
        self.assertTrue(actual == expected, self.difference(actual, expected))

    def test_the_example_without_a_camera_says_so(self):
        result = wine.run(self.programs / "first_picture.exe", cwd=self.programs)
        self.assertEqual(result.returncode, 1)
        self.assertIn("opening the camera: status 1", result.stdout)

    @staticmethod
    def difference(actual, expected):
        if len(actual) != len(expected):
            return f"{len(actual)} bytes, expected {len(expected)}"
        places = [i for i, (a, b) in enumerate(zip(actual, expected)) if a != b]
        first = places[0] if places else 0
        return (f"{len(places)} of {len(expected)} bytes differ, the first at {first}: "
                f"{actual[first]}, expected {expected[first]}")


if __name__ == "__main__":
    unittest.main()
