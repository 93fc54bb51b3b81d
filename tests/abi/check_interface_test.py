#!/usr/bin/env python3
"""Shows that the interface checks find each kind of fault."""

import unittest

import check_interface

STATUSES = ["ORMIDEX_OK", "ORMIDEX_NO_CAMERA", "ORMIDEX_NULL_POINTER"]

GOOD = """
/**
 * Does a thing.
 *
 * @param handle  the camera.
 * @param value   receives the value.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `value` is null.
 * @remark Threads: any.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexThing(OrmidexHandle handle,
                                                    OrmidexUInt32* value);
"""


def faults_of(header):
    (function,) = check_interface.read_header(header)
    return list(check_interface.documentation_faults(function, STATUSES))


class DocumentationTest(unittest.TestCase):
    def test_accepts_a_complete_comment(self):
        self.assertEqual(faults_of(GOOD), [])

    def test_finds_a_missing_comment(self):
        self.assertEqual(faults_of(GOOD[GOOD.index("ORMIDEX_API"):]), ["is not documented"])

    def test_finds_each_missing_line(self):
        for line in GOOD.splitlines():
            if "@" in line and "NULL_POINTER" not in line or "Does a thing" in line:
                with self.subTest(line=line):
                    self.assertNotEqual(faults_of(GOOD.replace(line + "\n", "")), [])

    def test_finds_null_without_a_status(self):
        header = GOOD.replace("@retval ORMIDEX_NULL_POINTER  ", "")
        self.assertNotEqual(faults_of(header), [])

    def test_finds_a_misspelt_argument(self):
        self.assertNotEqual(faults_of(GOOD.replace("@param value", "@param valu")), [])

    def test_finds_an_unknown_status(self):
        self.assertNotEqual(faults_of(GOOD.replace("NULL_POINTER", "NIL_POINTER")), [])

    def test_finds_an_argument_without_a_description(self):
        self.assertNotEqual(faults_of(GOOD.replace("the camera.", "")), [])


class SignatureTest(unittest.TestCase):
    def setUp(self):
        self.functions = check_interface.read_header(GOOD)

    def faults(self, table):
        return [f for f in check_interface.check_signatures(self.functions, table)
                if "instead of 97" not in f]

    def test_accepts_the_right_size(self):
        self.assertEqual(self.faults({"OrmidexThing": (1, 8)}), [])

    def test_finds_a_wrong_size(self):
        self.assertEqual(len(self.faults({"OrmidexThing": (1, 12)})), 1)

    def test_finds_a_function_that_is_not_in_the_table(self):
        self.assertEqual(len(self.faults({})), 1)

    def test_finds_a_function_that_is_not_in_the_header(self):
        self.assertEqual(len(self.faults({"OrmidexThing": (1, 8), "OrmidexOther": (2, 4)})), 1)


if __name__ == "__main__":
    unittest.main()
