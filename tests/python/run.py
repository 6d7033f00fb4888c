"""Runs the tests beside this file: run.py [--report FILE] [--folder FOLDER] [PATTERN]

The report is in the form of JUnit. --folder names other tests. PATTERN picks test files (test_*.py). Exit code 1 when a
test failed.
"""

import argparse
import os
import sys
import time
import unittest
from xml.etree import ElementTree


class Recorded(unittest.TextTestResult):
    """Keeps what a report needs."""

    def __init__(self, *args, **kwargs):
        super(Recorded, self).__init__(*args, **kwargs)
        self.cases = []

    def startTest(self, test):
        super(Recorded, self).startTest(test)
        self.cases.append((test.id(), []))

    def addError(self, test, error):
        super(Recorded, self).addError(test, error)
        self._note(test, "failure", self.errors[-1][1])

    def addFailure(self, test, error):
        super(Recorded, self).addFailure(test, error)
        self._note(test, "failure", self.failures[-1][1])

    def addSkip(self, test, reason):
        super(Recorded, self).addSkip(test, reason)
        self._note(test, "skipped", reason)

    def addSubTest(self, test, subtest, error):
        super(Recorded, self).addSubTest(test, subtest, error)
        if error is not None:
            self._note(test, "failure", str(subtest))

    def _note(self, test, kind, text):
        # What goes wrong before a first test (a file that cannot be imported) is a case of its own.
        if not self.cases or self.cases[-1][0] != test.id():
            self.cases.append((test.id(), []))
        self.cases[-1][1].append((kind, text))

    def write(self, path):
        suite = ElementTree.Element("testsuite", name="python")
        for name, notes in self.cases:
            case = ElementTree.SubElement(suite, "testcase", name=name)
            for kind, text in notes:
                ElementTree.SubElement(case, kind).text = "".join(c for c in text if c.isprintable() or c in "\n\t")
        os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
        ElementTree.ElementTree(suite).write(path, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--report", metavar="FILE")
    parser.add_argument("--folder", default=os.path.dirname(os.path.abspath(__file__)))
    parser.add_argument("pattern", nargs="?", default="test_*.py")
    options = parser.parse_args()
    suite = unittest.defaultTestLoader.discover(options.folder, options.pattern, options.folder)
    start = time.time()
    result = unittest.TextTestRunner(resultclass=Recorded).run(suite)
    if options.report:
        result.write(options.report)
    print("Python %s, %d tests, %.0f s" % (sys.version.split()[0], result.testsRun, time.time() - start))
    return 0 if result.wasSuccessful() and result.testsRun else 1


if __name__ == "__main__":
    sys.exit(main())
