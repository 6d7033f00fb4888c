#!/usr/bin/env python3
"""Makes the engine as WebAssembly, and tests it in Node.js with what calls it from TypeScript (web/).

    tools/web.py make
    tools/web.py test --folder FOLDER --native FILE --report FILE [--first]
    tools/web.py times --folder FOLDER --native FILE

`make` leaves it at build/package/web/bin/vantorelix.wasm and prints that path and how large the file is. The tests compare
it with `native_results` (tests/web), over the scenes of examples and, where they are there, of VANTORELIX_DATA; with
--first over one scene alone. Environment variables tell them what to test: VANTORELIX_WASM, VANTORELIX_NATIVE,
VANTORELIX_SCENES (folders, with ":" between) and VANTORELIX_WEB_TESTS, "first" or "". The packages of npm are those of the
page, in FOLDER. `times` prints what a sample costs in both, and how long the engine takes to be ready.
"""

import argparse
import contextlib
import gzip
import os
import shutil
import sys
import tempfile

import node
import packages
import page
import zig

WEB = os.path.join(page.ROOT, "web")
WASM = os.path.join(zig.FOLDER, "web", "bin", "vantorelix.wasm")


def make():
    """Makes it; returns an exit code."""
    compiler = zig.compiler()
    if not compiler:
        return 1
    with packages.locked(os.path.join(zig.FOLDER, "web")):
        zig.build(compiler, "web", ["vantorelix_web"])
    content = packages.read(WASM)
    print("%s: %d bytes, %d gzipped" % (os.path.relpath(WASM), len(content), len(gzip.compress(content, 9))))
    return 0


@contextlib.contextmanager
def workshop(folder):
    """A copy of web/ to run npm's scripts in, beside its packages."""
    with packages.locked(folder):
        page.install(folder)
    with tempfile.TemporaryDirectory(prefix="run-", dir=folder) as top:
        copy = os.path.join(top, "web")
        shutil.copytree(WEB, copy, ignore=lambda _, names: page.GENERATED & set(names))
        yield copy


def environment(options, first):
    data = os.environ.get("VANTORELIX_DATA") or os.path.join(page.ROOT, "..", "shared", "data")
    scenes = [os.path.join(page.ROOT, "examples")] + ([data] if os.path.isdir(data) else [])
    return {"VANTORELIX_WASM": WASM, "VANTORELIX_NATIVE": os.path.abspath(options.native),
            "VANTORELIX_SCENES": ":".join(map(os.path.abspath, scenes)), "VANTORELIX_WEB_TESTS": "first" if first else ""}


def test(options):
    with workshop(options.folder) as copy:
        checked = node.find().npm("run", "--silent", "check", folder=copy)
        tested = node.find().npm("test", "--", "--reporter=default", "--reporter=junit",
                                 "--outputFile.junit=" + os.path.abspath(options.report), folder=copy,
                                 environment=environment(options, options.first))
        return checked.returncode or tested.returncode


def times(options):
    with workshop(options.folder) as copy:
        return node.find().npm("run", "--silent", "times", folder=copy, environment=environment(options, False)).returncode


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    verbs = parser.add_subparsers(dest="verb")
    verbs.required = True
    verbs.add_parser("make").set_defaults(run=lambda options: make())
    for name, run in (("test", test), ("times", times)):
        verb = verbs.add_parser(name)
        verb.add_argument("--folder", default=os.path.join(page.ROOT, "build", "page"), help="where tools/page.py builds")
        verb.add_argument("--native", required=True, help="the program native_results")
        verb.set_defaults(run=run)
    tests = verbs.choices["test"]
    tests.add_argument("--report", required=True)
    tests.add_argument("--first", action="store_true", help="one scene alone")
    options = parser.parse_args(arguments)
    if options.verb != "make":
        options.folder = os.path.abspath(options.folder)
    try:
        return options.run(options)
    except packages.Failure as failure:
        print("web: %s" % failure, file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
