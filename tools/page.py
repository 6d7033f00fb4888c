#!/usr/bin/env python3
"""Builds the page of viewer/ and turns it into a C++ source:

    tools/page.py --folder FOLDER --source FILE [--page FILE]
    tools/page.py --folder FOLDER --engine-source FILE [--page FILE] [--wasm FILE]

The folder is shared by all build folders: it holds npm's packages, which are installed again when the lock file
changes, and the page, which is built again when what it is made of changes. With --page that page is taken, and none is
built. The second form writes what a live page has besides: the engine as WebAssembly and the script of its Worker, which
lies beside the page as worker.js; without --wasm, that there is none.
"""

import argparse
import base64
import gzip
import os
import re
import shutil
import sys

import packages
from packages import Failure, locked, read, write

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
VIEWER = os.path.join(ROOT, "viewer")
WEB = os.path.join(ROOT, "web")  # what the page calls the engine with, and its tests the native one
# What working on the page may have left there.
GENERATED = {"node_modules", "dist"}
PLACE = b"<!--trails-->"
_POLICY = re.compile(rb'http-equiv="Content-Security-Policy" content="([^"]*)"')
ELSEWHERE = "or configure with -DVANTORELIX_PAGE=FILE, where FILE is a page that was built elsewhere"
# Every compiler takes a literal of 16 KB, and a byte may take four characters in it.
PIECE = 4000


def copy_sources(top):
    """Puts viewer/, and what of web/ it uses, beside each other into a folder; returns the copy of viewer/."""
    shutil.rmtree(top, ignore_errors=True)
    parts = {"viewer": VIEWER, "web/src": os.path.join(WEB, "src"), "web/tests/support": os.path.join(WEB, "tests", "support")}
    for name, source in parts.items():
        shutil.copytree(source, os.path.join(top, name), ignore=lambda folder, names: GENERATED & set(names))
    return os.path.join(top, "viewer")


def install(folder):
    """Installs what the page is built and tested with. The caller holds the lock."""
    try:
        packages.install(VIEWER, folder)
    except Failure as failure:
        raise Failure("%s\n%s" % (failure, ELSEWHERE)) from failure


def build(folder):
    """The path of the page, which is built if it is missing or old. The caller holds the lock."""
    page, worker, stamp, top = (os.path.join(folder, name) for name in ("index.html", "worker.js", "built", "source"))
    source = copy_sources(top)
    wanted = packages.digest(top).encode()
    if read(stamp) != wanted or not (os.path.exists(page) and os.path.exists(worker)):
        install(folder)
        output = os.path.join(folder, "output")
        run = packages.npm("run", "build", "--", "--outDir", output, folder=source)
        if run.returncode != 0:
            raise Failure("the page could not be built: correct viewer/, %s. npm printed:\n%s" % (ELSEWHERE, run.stdout))
        for path in (page, worker):
            os.replace(os.path.join(output, os.path.basename(path)), path)
        write(stamp, wanted)
    return page


def _literal(data):
    def escaped(byte):
        plain = 32 <= byte < 127 and chr(byte) not in '"\\?'
        return chr(byte) if plain else "\\n" if byte == 10 else "\\%03o" % byte
    return '"%s"' % "".join(map(escaped, data))


def _pieces(data):
    return [data[at:at + PIECE] for at in range(0, len(data), PIECE)]


def _policy(page):
    found = _POLICY.findall(page)
    if len(found) != 1:
        raise Failure("the page has %d policies instead of one; correct viewer/vite.config.ts" % len(found))
    return found[0]


def _source(body):
    return "\n".join(["// Made by tools/page.py.", '#include "cli/output/page/page.h"', "", "namespace vantorelix::cli {", ""] + body +
                     ["", "}  // namespace vantorelix::cli", ""]).encode()


def _lines(pieces):
    return ["    {%s, %d}," % (_literal(piece), len(piece)) for piece in pieces]


def cpp_source(page):
    """A C++ source with the bytes of a page, which must have exactly one place for the data and one policy."""
    if page.count(PLACE) != 1:
        raise Failure("the page has %d places for the data (%s) instead of one; correct viewer/index.html"
                      % (page.count(PLACE), PLACE.decode()))
    policy = _policy(page)
    parts = re.split(b"(%s|%s)" % (re.escape(PLACE), re.escape(policy)), page, maxsplit=2)
    pieces = [piece for part in parts for piece in ([part] if part in (PLACE, policy) else _pieces(part))]
    return _source(["const std::vector<std::string_view>& page() {",
                    "  static const std::vector<std::string_view> pieces = {"] + _lines(pieces) + ["  };", "  return pieces;", "}", "",
                   "std::string_view page_policy() { return {%s, %d}; }" % (_literal(policy), len(policy))])


def live_policy(policy):
    """What a page may do in which the engine runs: besides what any page may, compile it, in a Worker made of the page."""
    return re.sub(rb"(script-src [^;]*)", rb"\1 'wasm-unsafe-eval'", policy) + b"; worker-src blob:"


def engine_blocks(worker, wasm):
    """The elements of a live page with the script of the Worker and the compressed WebAssembly, which no script runs."""
    script = re.sub(rb"<(/script|!--)", rb"<\\\1", worker, flags=re.IGNORECASE)
    return (b'<script type="text/plain" id="engine-worker">%s</script>\n' % script +
            b'<script type="application/octet-stream" id="engine-wasm">%s</script>\n'
            % base64.b64encode(gzip.compress(wasm, 9, mtime=0)))


def engine_source(policy, blocks):
    """A C++ source with what a live page has besides; `blocks` may be empty."""
    return _source(["std::string_view live_policy() { return {%s, %d}; }" % (_literal(policy), len(policy)), "",
                    "const std::vector<std::string_view>& engine_blocks() {",
                    "  static const std::vector<std::string_view> pieces = {"] + _lines(_pieces(blocks)) +
                   ["  };", "  return pieces;", "}"])


def _engine(path, wasm):
    if not wasm:
        return engine_source(b"", b"")
    worker = read(os.path.join(os.path.dirname(path), "worker.js"))
    if not worker or not read(wasm):
        raise Failure("a live page needs worker.js beside the page %s, and %s; one of them is missing" % (path, wasm))
    return engine_source(live_policy(_policy(read(path))), engine_blocks(worker, read(wasm)))


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--folder", required=True, help="where npm's packages and the page are")
    parser.add_argument("--source", help="the C++ source of the page to write")
    parser.add_argument("--engine-source", help="the C++ source of the engine in the page to write")
    parser.add_argument("--page", help="a page that is already built")
    parser.add_argument("--wasm", help="the engine as WebAssembly")
    options = parser.parse_args(arguments)
    try:
        folder = os.path.abspath(options.folder)
        with locked(folder):
            path = options.page or build(folder)
            page = read(path)
            engine = _engine(path, options.wasm) if options.engine_source else None
        if options.source:
            write(options.source, cpp_source(page))
        if engine:
            write(options.engine_source, engine)
    except Failure as failure:
        print("page: %s" % failure, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
