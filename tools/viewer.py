#!/usr/bin/env python3
"""Runs the tests of the page, or takes its pictures.

    tools/viewer.py test --program FILE --engine-colors FILE --report FILE [--native FILE] [--first] [--no-browser] [--firefox FILE]
    tools/viewer.py pictures PAGES OUT [NAME...]

Environment variables tell the tests what to test: VANTORELIX_PROGRAM, VANTORELIX_NATIVE (native_results, or
nothing where the program has no engine for pages: then tests of live pages are left out), VANTORELIX_ENGINE_COLORS, VANTORELIX_PAGE (the
page without trails), VANTORELIX_CHROMIUM and VANTORELIX_DATA (real scenes, which may be missing). With --first, VANTORELIX_PAGE_TESTS is "first", and of the tests in a
browser one of each group is run. docs and examples lie beside viewer/, as in the checkout. Without a browser the tests
fail, unless --no-browser leaves out those that need one. With --firefox they run in that Firefox, on a virtual screen
(xvfb-run).

The pictures are those that viewer/pictures lists. They are taken of the pages in the folder PAGES; without a browser
there are none.
"""

import argparse
import contextlib
import glob
import os
import shutil
import sys
import tempfile

import browser
import node
import packages
import page


def browser_tests():
    """The files of tests that open the page in a browser."""
    tests = sorted(glob.glob(os.path.join(page.VIEWER, "tests", "**", "*.test.ts"), recursive=True))
    return [os.path.relpath(path, page.VIEWER) for path in tests if b"useBrowser(" in packages.read(path)]


@contextlib.contextmanager
def workshop(folder):
    """A copy of viewer/ to run npm's scripts in, beside its packages; the page is built."""
    with packages.locked(folder):
        page.build(folder)
    with tempfile.TemporaryDirectory(prefix="run-", dir=folder) as top:
        copy = page.copy_sources(os.path.join(top, "sources"))
        for name in ("docs", "examples"):
            os.symlink(os.path.join(page.ROOT, name), os.path.join(top, "sources", name))
        yield copy


def test(options):
    chromium = "" if options.no_browser else browser.find()
    if chromium is None:
        raise packages.Failure("there is no Chromium that runs; install one, name one in VANTORELIX_CHROMIUM, or leave out its "
                               "tests with -DVANTORELIX_BROWSER_TESTS=OFF")
    paths = {"PROGRAM": options.program, "NATIVE": options.native, "ENGINE_COLORS": options.engine_colors,
             "PAGE": os.path.join(options.folder, "index.html")}
    paths["DATA"] = os.environ.get("VANTORELIX_DATA") or os.path.join(page.ROOT, "..", "shared", "data")
    variables = {"VANTORELIX_" + name: path and os.path.abspath(path) for name, path in paths.items()}
    if not options.native:
        print("viewer: NOT RUN, BECAUSE THE PROGRAM HAS NO ENGINE FOR PAGES: tests/live/*.test.ts", flush=True)
    left_out = browser_tests() if options.no_browser else []
    if left_out:
        print("viewer: NOT RUN, BECAUSE THEY NEED A BROWSER: " + ", ".join(left_out), flush=True)
    with workshop(options.folder) as copy:
        return node.find().npm("test", "--", "--reporter=default", "--reporter=junit",
                               "--outputFile.junit=" + os.path.abspath(options.report),
                               *("--exclude=" + path for path in left_out),
                               folder=copy, environment=dict(
                                   variables, VANTORELIX_CHROMIUM=chromium,
                                   VANTORELIX_PAGE_TESTS="first" if options.first else "",
                                   VANTORELIX_FIREFOX=options.firefox, LIBGL_ALWAYS_SOFTWARE="1")).returncode


def pictures(options):
    chromium = browser.find()
    if chromium is None:
        print("viewer: no pictures of the page are taken, because there is no Chromium that runs; install one", file=sys.stderr)
        return 0
    with workshop(options.folder) as copy:
        return node.find().npm("run", "--silent", "pictures", "--", os.path.abspath(options.pages), os.path.abspath(options.out),
                               *options.names, folder=copy, environment={"VANTORELIX_CHROMIUM": chromium}).returncode


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--folder", default=os.path.join(page.ROOT, "build", "page"), help="where tools/page.py builds")
    verbs = parser.add_subparsers(dest="verb")
    verbs.required = True
    tests = verbs.add_parser("test")
    for name in ("program", "engine-colors", "report"):
        tests.add_argument("--" + name, required=True)
    tests.add_argument("--native", default="", help="the program native_results, where the program has the engine for live pages")
    tests.add_argument("--first", action="store_true", help="of the tests in a browser one of each group")
    tests.add_argument("--no-browser", action="store_true", help="leave out what needs one")
    tests.add_argument("--firefox", default="", help="run the tests in this Firefox, which needs a screen")
    tests.set_defaults(run=test)
    shots = verbs.add_parser("pictures")
    shots.add_argument("pages")
    shots.add_argument("out")
    shots.add_argument("names", nargs="*")
    shots.set_defaults(run=pictures)
    options = parser.parse_args(arguments)
    options.folder = os.path.abspath(options.folder)
    try:
        return options.run(options)
    except packages.Failure as failure:
        print("viewer: %s" % failure, file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
