#!/usr/bin/env python3
"""Builds the page of viewer/ and turns it into a C++ source: tools/page.py --folder FOLDER --source FILE [--page FILE]

The folder is shared by all build folders: it holds npm's packages, which are installed again when the lock file
changes, and the page, which is built again when what it is made of changes. With --page that page is taken, and none is
built.
"""

import argparse
import os
import shutil
import sys

import packages
from packages import Failure, locked, read, write

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
VIEWER = os.path.join(ROOT, "viewer")
# What working on the page may have left there.
GENERATED = {"node_modules", "dist"}
PLACE = b"<!--trails-->"
ELSEWHERE = "or configure with -DVANTORELIX_PAGE=FILE, where FILE is a page that was built elsewhere"
# Every compiler takes a literal of 16 KB, and a byte may take four characters in it.
PIECE = 4000


def copy_viewer(target):
    shutil.rmtree(target, ignore_errors=True)
    shutil.copytree(VIEWER, target, ignore=lambda folder, names: GENERATED & set(names))


def install(folder):
    """Installs what the page is built and tested with. The caller holds the lock."""
    try:
        packages.install(VIEWER, folder)
    except Failure as failure:
        raise Failure("%s\n%s" % (failure, ELSEWHERE)) from failure


def build(folder):
    """The path of the page, which is built if it is missing or old. The caller holds the lock."""
    page, stamp, source = (os.path.join(folder, name) for name in ("index.html", "built", "source"))
    copy_viewer(source)
    wanted = packages.digest(source).encode()
    if read(stamp) != wanted or not os.path.exists(page):
        install(folder)
        output = os.path.join(folder, "output")
        run = packages.npm("run", "build", "--", "--outDir", output, folder=source)
        if run.returncode != 0:
            raise Failure("the page could not be built: correct viewer/, %s. npm printed:\n%s" % (ELSEWHERE, run.stdout))
        os.replace(os.path.join(output, "index.html"), page)
        write(stamp, wanted)
    return page


def _literal(data):
    def escaped(byte):
        plain = 32 <= byte < 127 and chr(byte) not in '"\\?'
        return chr(byte) if plain else "\\n" if byte == 10 else "\\%03o" % byte
    return '"%s"' % "".join(map(escaped, data))


def cpp_source(page):
    """A C++ source with the bytes of a page, which must have exactly one place for the data."""
    if page.count(PLACE) != 1:
        raise Failure("the page has %d places for the data (%s) instead of one; correct viewer/index.html"
                      % (page.count(PLACE), PLACE.decode()))
    before, after = page.split(PLACE)
    pieces = [part[at:at + PIECE] for part in (before, after) for at in range(0, len(part), PIECE)]
    pieces.insert(-(-len(before) // PIECE), PLACE)
    lines = ["    {%s, %d}," % (_literal(piece), len(piece)) for piece in pieces]
    return "\n".join(['// Made by tools/page.py.', '#include "cli/output/page.h"', "", "namespace vantorelix::cli {", "",
                      "const std::vector<std::string_view>& page() {",
                      "  static const std::vector<std::string_view> pieces = {"] + lines +
                     ["  };", "  return pieces;", "}", "", "}  // namespace vantorelix::cli", ""]).encode()


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--folder", required=True, help="where npm's packages and the page are")
    parser.add_argument("--source", required=True, help="the C++ source to write")
    parser.add_argument("--page", help="a page that is already built")
    options = parser.parse_args(arguments)
    try:
        folder = os.path.abspath(options.folder)
        with locked(folder):
            page = read(options.page or build(folder))
        write(options.source, cpp_source(page))
    except Failure as failure:
        print("page: %s" % failure, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
