"""The page becomes a C++ source with the same bytes, is built once for the same sources, and fails with what to do."""

import base64
import gzip
import os
import re
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import browser  # noqa: E402
import clients  # noqa: E402
import node  # noqa: E402
import packages  # noqa: E402
import page  # noqa: E402

POLICY = b"default-src 'none'; script-src 'sha256-x='; style-src 'y'"
HEAD = b'<meta http-equiv="Content-Security-Policy" content="%s">' % POLICY
CXX = os.environ.get("CXX", "c++")
ROOT = page.ROOT


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, text, mode=0o644):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, mode)
        return path


class CppSource(Folder):
    def round_trip(self, content):
        self.write("page.cpp", page.cpp_source(content).decode())
        self.write("main.cpp", '#include <cstdio>\n#include "cli/output/page/page.h"\nint main() {\n'
                               "  for (auto piece : vantorelix::cli::page()) std::fwrite(piece.data(), 1, piece.size(), stdout);\n}\n")
        program = os.path.join(self.folder, "print")
        subprocess.run([CXX, "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-I", ROOT,
                        os.path.join(self.folder, "page.cpp"), os.path.join(self.folder, "main.cpp"), "-o", program], check=True)
        return subprocess.run([program], check=True, stdout=subprocess.PIPE).stdout

    def test_every_byte_comes_out_again(self):
        every = bytes(range(256)) * 40 + b'??="\\\\n%s 1' + "\u2028\u00e9".encode()
        content = HEAD + every + page.PLACE + every[::-1]
        self.assertEqual(self.round_trip(content), content)

    def test_the_place_of_the_data_is_a_piece_of_its_own(self):
        for before in (b"", b"x" * 10, b"x" * page.PIECE, b"x" * (page.PIECE + 1)):
            lines = page.cpp_source(HEAD + before + page.PLACE + b"after").decode().splitlines()
            pieces = [line for line in lines if line.startswith("    {")]
            self.assertEqual(pieces[1], '    {"%s", %d},' % (POLICY.decode(), len(POLICY)))
            self.assertEqual(pieces.index('    {"<!--trails-->", 13},'), 2 + -(-len(b'">' + before) // page.PIECE), before)

    def test_no_piece_is_longer_than_compilers_take(self):
        source = page.cpp_source(HEAD + b"\xff" * 100000 + page.PLACE).decode()
        self.assertLess(max(len(literal) for literal in re.findall(r'"(.*)"', source)), 16380)

    def test_a_page_without_one_place_is_refused(self):
        for content in (b"no place", page.PLACE * 2):
            with self.assertRaisesRegex(packages.Failure, "places for the data"):
                page.cpp_source(content)

    def test_a_page_without_one_policy_is_refused(self):
        for content in (page.PLACE, HEAD + HEAD + page.PLACE):
            with self.assertRaisesRegex(packages.Failure, "policies instead of one"):
                page.cpp_source(content)


class Engine(unittest.TestCase):
    def test_a_live_page_may_compile_it_and_start_its_worker_and_nothing_else(self):
        self.assertEqual(page.live_policy(POLICY), b"default-src 'none'; script-src 'sha256-x=' 'wasm-unsafe-eval'; style-src 'y'; "
                                                   b"worker-src blob:")

    def test_it_lies_in_elements_that_nothing_in_it_ends(self):
        blocks = page.engine_blocks(b"a = '</SCRIPT><!--'", b"wasm" * 100)
        script, wasm = re.findall(b"<script[^>]*>(.*?)</script>", blocks)
        self.assertEqual(script, b"a = '<\\/SCRIPT><\\!--'")
        self.assertEqual(gzip.decompress(base64.b64decode(wasm)), b"wasm" * 100)

    def test_a_program_without_it_has_no_blocks(self):
        self.assertNotIn(b"    {", page._engine("index.html", None))

    def test_what_is_missing_of_it_is_named(self):
        with self.assertRaisesRegex(packages.Failure, "none.wasm; one of them is missing"):
            page._engine("none/index.html", "none.wasm")


class Build(Folder):
    """With an npm that only notes what it is asked."""

    def setUp(self):
        super().setUp()
        self.viewer, self.shared = os.path.join(self.folder, "viewer"), os.path.join(self.folder, "shared")
        for name in packages.FILES + ("src/main.ts", "node_modules/huge"):
            self.write("viewer/" + name, name)
        self.asked, self.code = [], 0
        for what in (mock.patch.object(page, "VIEWER", self.viewer), mock.patch.object(node, "find", lambda: self),
                     mock.patch.object(clients, "PAUSES", ())):
            what.start()
            self.addCleanup(what.stop)

    def npm(self, *arguments, folder, **options):
        self.asked.append(arguments[0])
        if arguments[0] == "run":
            self.assertFalse(os.path.exists(os.path.join(folder, "node_modules")))
            os.makedirs(arguments[-1], exist_ok=True)
            for name in ("index.html", "worker.js"):
                with open(os.path.join(arguments[-1], name), "wb") as file:
                    file.write(b"a" + page.PLACE)
        return subprocess.CompletedProcess(arguments, self.code, "npm's words" if self.code else "")

    def build(self):
        self.asked = []
        with packages.locked(self.shared):
            path = page.build(self.shared)
        self.assertEqual(packages.read(path), b"a" + page.PLACE)
        return self.asked

    def test_the_same_sources_are_built_once(self):
        self.assertEqual(self.build(), ["ci", "run"])
        self.assertEqual(self.build(), [])

    def test_a_changed_source_is_built_without_installing_again(self):
        self.build()
        self.write("viewer/src/other.ts", "new")
        self.assertEqual(self.build(), ["run"])
        self.assertEqual(self.build(), [])

    def test_a_changed_lock_file_installs_again(self):
        self.build()
        self.write("viewer/package-lock.json", "new")
        self.assertEqual(self.build(), ["ci", "run"])

    def test_a_failure_tells_what_npm_said_and_is_not_taken_for_built(self):
        self.code = 1
        with self.assertRaisesRegex(packages.Failure, "(?s)npm's words.*VANTORELIX_PAGE"):
            self.build()
        self.code = 0
        self.assertEqual(self.build(), ["ci", "run"])


class Node(Folder):
    def on_path(self, version, npm=True):
        self.write("bin/node", "#!/bin/sh\necho %s\n" % version, 0o755)
        if npm:
            self.write("bin/npm", "#!/bin/sh\necho npm $*\n", 0o755)
        with mock.patch.dict(os.environ, PATH=os.path.join(self.folder, "bin")):
            return node.on_path()

    def test_one_that_is_new_enough_is_taken(self):
        found = self.on_path("v18.0.0")
        said = found.npm("ci", folder=self.folder, stdout=subprocess.PIPE).stdout
        self.assertEqual(said, b"npm ci\n")

    def test_one_that_is_too_old_or_without_npm_is_not(self):
        self.assertIsNone(self.on_path("v16.20.2"))
        self.assertIsNone(self.on_path("nonsense"))
        os.remove(os.path.join(self.folder, "bin", "npm"))
        self.assertIsNone(self.on_path("v20.1.0", npm=False))

    def test_without_one_and_without_the_network_the_remedy_is_told(self):
        with mock.patch.object(node.pypi, "pip", side_effect=node.Failure("pip's cause")):
            with self.assertRaisesRegex(node.Failure, "Install them, or correct why they cannot be fetched: pip's cause"):
                node.fetched()


class Browser(Folder):
    def find(self, **environment):
        with mock.patch.dict(os.environ, environment), mock.patch.object(browser, "fetched", lambda: "fetched"):
            return browser.find()

    def test_a_stub_that_does_not_run_counts_as_none(self):
        stub = self.write("bin/chromium-browser", "#!/bin/sh\necho install the snap; exit 1\n", 0o755)
        self.assertEqual(self.find(PATH=os.path.dirname(stub), VANTORELIX_CHROMIUM=""), "fetched")

    def test_the_one_on_the_path_is_taken(self):
        real = self.write("bin/chromium", "#!/bin/sh\necho Chromium 1\n", 0o755)
        self.assertEqual(self.find(PATH=os.path.dirname(real), VANTORELIX_CHROMIUM=""), real)

    def test_one_that_is_named_and_does_not_run_is_not_replaced_by_another(self):
        self.assertIsNone(self.find(VANTORELIX_CHROMIUM=os.path.join(self.folder, "none")))


if __name__ == "__main__":
    unittest.main()
