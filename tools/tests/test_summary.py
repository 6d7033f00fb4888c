"""The summary counts what the reports say, and takes nothing for granted where there is none."""

import contextlib
import io
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import summary  # noqa: E402

GTEST = """<testsuites><testsuite>
<testcase name="a" status="run"/><testcase name="b" status="run">%s</testcase><testcase name="c" status="notrun"/>
</testsuite></testsuites>"""
VITEST = """<testsuites tests="3"><testsuite name="tests/a.test.ts"><testcase classname="tests/a.test.ts" name="a"></testcase>
<testcase classname="tests/a.test.ts" name="b"><failure message="m">why</failure></testcase>
<testcase classname="tests/a.test.ts" name="c"><skipped/></testcase></testsuite></testsuites>"""
CTEST = '<testsuite><testcase name="unit" status="%s"/><testcase name="house" status="%s"/></testsuite>'


class Summary(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build = folder.name
        os.makedirs(os.path.join(self.build, "dev", "reports"))

    def write(self, name, text):
        with open(os.path.join(self.build, "dev", "reports", name), "w", encoding="utf-8") as file:
            file.write(text)

    def run_summary(self, code):
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            result = summary.main([self.build, "dev:%d:7" % code])
        return result, printed.getvalue().splitlines()[-1]

    def test_cases_of_test_programs_and_other_tests_are_added(self):
        self.write("ctest.xml", CTEST % ("run", "run"))
        self.write("unit.xml", GTEST % "")
        self.assertEqual(self.run_summary(0), (0, "3 passed, 0 failed"))

    def test_the_report_of_the_page_s_tests_counts_like_the_others(self):
        self.write("ctest.xml", '<testsuite><testcase name="viewer" status="fail"/></testsuite>')
        self.write("viewer.xml", VITEST)
        self.assertEqual(self.run_summary(8), (1, "1 passed, 1 failed"))

    def test_a_failed_case_and_a_failed_program_count_once_each(self):
        self.write("ctest.xml", CTEST % ("fail", "fail"))
        self.write("unit.xml", GTEST % "<failure/>")
        self.assertEqual(self.run_summary(8), (1, "1 passed, 2 failed"))

    def test_a_program_that_died_counts_as_failed(self):
        self.write("ctest.xml", CTEST % ("fail", "run"))
        self.assertEqual(self.run_summary(8), (1, "1 passed, 1 failed"))
        self.write("unit.xml", GTEST % "")
        self.assertEqual(self.run_summary(8), (1, "3 passed, 1 failed"))

    def test_a_stage_that_did_not_build_counts_as_failed(self):
        self.assertEqual(self.run_summary(1), (1, "0 passed, 1 failed"))

    def test_nothing_run_is_no_success(self):
        self.assertEqual(self.run_summary(0), (1, "0 passed, 0 failed"))


if __name__ == "__main__":
    unittest.main()
