"""The tool of the package: other programs under trace, and what stops it."""

import shutil
import unittest

import machine
import wine

PACKAGE = wine.PROJECT / "dist/ormidex-win32"


class ToolTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.programs = wine.SCRATCH / "tool"
        shutil.copytree(PACKAGE / "bin", cls.programs)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.programs)

    def tool(self, code, *arguments):
        result = wine.run(self.programs / "ormidex.exe", *arguments, cwd=self.programs)
        self.assertEqual(result.returncode, code, result.stdout)
        return result.stdout

    def test_it_shows_the_requests_of_another_program_to_the_driver(self):
        with machine.cameras("pace=fast"):
            words = self.tool(0, "trace", "--", "first_picture.exe", "a picture.bmp")
        self.assertRegex(words, r"START_STREAM +<- 640 x 480, 307200 bytes")
        self.assertRegex(words, r"READ_REGISTERS +register 15 \(chip\) -> 0x50")
        self.assertTrue((self.programs / "a picture.bmp").exists())

    def test_it_passes_on_the_exit_code_of_the_program(self):
        self.assertIn("no camera 7", self.tool(
            3, "trace", "--simulate", "--", "ormidex.exe", "info", "--camera", "7"))
        self.assertIn("could not be started", self.tool(1, "trace", "--", "none.exe"))

    def test_it_reads_its_own_traces(self):
        self.tool(0, "capture", "--simulate", "pace=fast", "--trace", "t.json", "-o", "t.bmp")
        self.assertIn("STOP_STREAM", self.tool(0, "trace", "t.json"))
        self.assertIn("are the same", self.tool(0, "trace", "t.json", "--compare", "t.json"))

    def test_it_says_that_there_is_no_camera(self):
        self.assertIn("no camera is connected", self.tool(3, "list"))

    def test_it_says_that_the_driver_refuses_a_camera(self):
        with machine.cameras("fault=busy"):
            words = self.tool(4, "capture", "-o", "busy.bmp")
        self.assertIn("another program may hold it", words)


if __name__ == "__main__":
    unittest.main()
