#!/usr/bin/env python3
"""Fetches what a build needs from outside, before anything is compiled: tools/fetch.py [PART...] (default: every part)

Whatever is there is not asked for again, so that afterwards a build needs no network. The parts are

  sources   of the C libraries in the program, from cargo and pip (tools/sources.py)
  page      npm's packages that the page is built and tested with, and Node.js where it is missing or too old
  browser   a Chromium for the page's tests, where the machine has none that runs
  compiler  what ./dev package compiles and writes its manual with
  stubs     two descriptions of Maya, for ./dev lint

Exit code 1 when one could not be fetched; the others are fetched all the same. Without a browser or a compiler the tests
that need it are left out, so that failing to fetch those is told and forgiven.
"""

import os
import sys

import browser
import package
import page
import packages
import sources
from clients import Failure
from rules import maya_stubs


def _page():
    folder = os.path.join(page.ROOT, "build", "page")
    with packages.locked(folder):
        page.install(folder)


# Those that are forgiven tell by themselves what they could not fetch.
PARTS = {
    "sources": sources.fetch,
    "page": _page,
    "browser": browser.tell,
    "compiler": package.compiler,
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
