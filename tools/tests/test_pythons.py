"""Which interpreters are listed, and in which order."""

import contextlib
import io
import os
import sys
import unittest
from unittest import mock

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import pythons  # noqa: E402


class Listed(unittest.TestCase):
    """On a machine with three that can be built for."""

    def listed(self, *arguments):
        usable = {(3, minor): "/other/python3.%d" % minor for minor in (7, 9, 13)}
        printed = io.StringIO()
        with mock.patch.object(pythons, "interpreters", lambda: (usable, {})), contextlib.redirect_stdout(printed), \
                mock.patch.object(pythons, "ask", lambda path: ((3, int(path.rpartition(".")[2])), True)):
            self.assertEqual(pythons.main(list(arguments)), 0)
        return printed.getvalue().strip()

    def test_the_oldest_comes_first(self):
        self.assertEqual(self.listed(), "/other/python3.7;/other/python3.9;/other/python3.13")

    def test_one_that_is_named_comes_first_and_stands_for_its_version(self):
        self.assertEqual(self.listed("--first", "/mine/python3.9"), "/mine/python3.9;/other/python3.7;/other/python3.13")

    def test_the_ends_are_the_oldest_and_the_newest(self):
        self.assertEqual(self.listed("--ends"), "/other/python3.7;/other/python3.13")


if __name__ == "__main__":
    unittest.main()
