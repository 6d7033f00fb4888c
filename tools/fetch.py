#!/usr/bin/env python3
"""Fetches what a build needs from outside, before anything is compiled: tools/fetch.py [PART...] (default: every part)

What is there already is not fetched again. Afterwards a build needs no network. The parts are

  sources   of the C libraries in the program, from cargo and pip (tools/sources.py)
  page      npm's packages that the page is built and tested with, and Node.js where it is missing or too old
  browser   a Chromium for the page's tests, where the machine has none that runs
  compiler  what ./dev release and ./dev package compile with
  windows   the CPythons that the modules for Windows are built with and tested on, with Maven
  shots     what vantorelix-shots is tested with
  stubs     two descriptions of Maya, for ./dev lint

The exit code is 1 if a part could not be fetched; the others are fetched all the same. The browser and the compiler are
an exception, and so are the CPythons for Windows and what vantorelix-shots is tested with: a failure to fetch them is only
reported, because what needs them can be left out.
"""

import os
import sys

import browser
import package
import page
import packages
import shots_python
import sources
import zig
from clients import Failure
from rules import maya_stubs


def _page():
    folder = os.path.join(page.ROOT, "build", "page")
    with packages.locked(folder):
        page.install(folder)


# The browser, the compiler, the CPythons for Windows and the packages for shots report a failure themselves.
PARTS = {
    "sources": sources.fetch,
    "page": _page,
    "browser": browser.tell,
    "compiler": zig.compiler,
    "windows": package.windows_interpreters,
    "shots": shots_python.tell,
    "stubs": lambda: maya_stubs.fetch(page.ROOT),
}


def main(arguments):
    if set(arguments) - set(PARTS):
        print(__doc__, file=sys.stderr)
        return 2
    code = 0
    for part in arguments or PARTS:
        try:
            PARTS[part]()
        except Failure as failure:
            print("fetch: %s" % failure, file=sys.stderr)
            code = 1
    return code


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
