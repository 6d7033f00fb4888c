"""What goes around the compiler in making the package; the package itself is tested in tests/python/package_test.py."""

import contextlib
import hashlib
import io
import json
import os
import subprocess
import sys
import tempfile
import unittest
import zipfile
from unittest import mock

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import manual  # noqa: E402
import package  # noqa: E402
import pypi  # noqa: E402
import pythons  # noqa: E402


class Package(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path


class Zip(Package):
    def test_the_same_files_give_the_same_package_whenever_they_were_made(self):
        files, written = {"b/c": self.write("c", "see"), "a": self.write("a", "ay")}, []
        for time, order in ((1000000000, sorted(files)), (1500000000, sorted(files, reverse=True))):
            os.utime(files["a"], (time, time))
            written.append(package.package("top", {name: files[name] for name in order}))
        self.assertEqual(written[0], written[1])

    def test_it_lists_the_hash_of_every_file(self):
        with zipfile.ZipFile(io.BytesIO(package.package("top", {"a": self.write("a", "ay")}))) as made:
            self.assertEqual(made.namelist(), ["top/a", "top/manifest.json"])
            self.assertEqual(made.read("top/a"), b"ay")
            self.assertEqual(json.loads(made.read("top/manifest.json").decode()), {"a": hashlib.sha256(b"ay").hexdigest()})

    def test_two_modules_where_one_is_needed_end_it(self):
        self.write("a.so", "")
        self.assertEqual(os.path.basename(package.only(os.path.join(self.folder, "*.so"))), "a.so")
        self.write("b.so", "")
        self.assertRaises(SystemExit, package.only, os.path.join(self.folder, "*.so"))


class Contents(Package):
    def test_every_companion_but_the_plugin_goes_to_each_python(self):
        companions = set(os.listdir(os.path.join(package.ROOT, "maya", "companion"))) - {"__pycache__"}
        for system, ending in (("linux", "so"), ("windows", "pyd")):
            for version in ("3.7", "3.11"):
                module = os.path.join(self.folder, "modules-" + system, "module-" + version)
                os.makedirs(module)
                for name in ("_vantorelix." + ending, "Vantorelix_engine.py", "Vantorelix_engine.pyi"):
                    self.write(os.path.join(module, name), "")
            with mock.patch.object(package.zig, "FOLDER", self.folder):
                files = package.modules(system, [(3, 7), (3, 11)])
            for version in ("3.7", "3.11"):
                top = "contents/%s/python-%s/" % (system, version)
                self.assertEqual({path[len(top):] for path in files if path.startswith(top)},
                                 companions - {"Vantorelix_plugin.py"} | set(os.listdir(module)))
        self.assertIn("contents/plug-ins/Vantorelix_plugin.py", package.common())

    def test_our_licence_goes_along_if_there_is_one(self):
        with mock.patch.object(package, "ROOT", self.folder):
            self.assertNotIn("LICENSE", package.licences("zig/zig"))
            ours = self.write("LICENSE", "ours")
            files = package.licences("zig/zig")
        self.assertEqual(files["LICENSE"], ours)
        self.assertEqual(files["licences/libunwind.txt"], os.path.join("zig", "lib", "libunwind", "LICENSE.TXT"))


class Versions(Package):
    def check(self, **texts):
        """What is said of a checkout where these files differ from ours; None when nothing is."""
        files = {"CMakeLists": "project(vantorelix VERSION 1.5.0 LANGUAGES CXX)\n",
                 "Vantorelix": "+ MAYAVERSION:2022 PLATFORM:linux Vantorelix 1.5.0 ./x\n\n"
                               "+ MAYAVERSION:2023 PLATFORM:linux Vantorelix 1.5.0 ./x\n",
                 "Vantorelix_plugin": 'VENDOR = "x"\nVERSION = "1.5.0"\n'}
        files.update(texts)
        with mock.patch.object(package, "read", lambda path: files[os.path.basename(path).split(".")[0]]):
            try:
                self.assertEqual(package.project_version(), "1.5.0")
            except SystemExit as end:
                return end.code
        return None

    def test_one_version_everywhere_passes(self):
        self.assertIsNone(self.check())

    def test_another_one_anywhere_ends_it_and_is_told(self):
        told = self.check(Vantorelix_plugin='VERSION = "1.0"\n')
        self.assertIn("the version must be the same", told)
        self.assertIn("CMakeLists.txt has 1.5.0", told)
        self.assertIn("Vantorelix_plugin.py has 1.0", told)
        self.assertIn("has 1.4.0 and 1.5.0", self.check(
            Vantorelix="+ MAYAVERSION:2022 Vantorelix 1.5.0 ./x\n+ MAYAVERSION:2027 Vantorelix 1.4.0 ./x\n"))
        self.assertIn("has 1.4", self.check(CMakeLists="project(vantorelix VERSION 1.4)\n"))

    def test_a_file_without_one_is_told(self):
        self.assertIn("Vantorelix_plugin.py has none", self.check(Vantorelix_plugin='NAME = "x"\n'))

    def test_this_checkout_has_one_version(self):
        self.assertRegex(package.project_version(), r"^\d+\.\d+\.\d+$")


class Manual(Package):
    PAGES = ("maya.md", "studio.md")

    def page(self, body):
        return manual.page("maya.md", "<h1>In Maya</h1>\n" + body, self.PAGES)

    def test_links_between_its_pages_and_to_the_web_work(self):
        html, pictures = self.page('<a href="studio.md">s</a> <a href="studio.md#a-b">s</a> <a href="#c">c</a> '
                                   '<a href="https://example.org/x.md">x</a>')
        for link in ("studio.html", "studio.html#a-b", "#c", "https://example.org/x.md"):
            self.assertIn('<a href="%s">' % link, html)
        self.assertEqual(pictures, [])

    def test_a_link_to_what_is_not_in_the_package_ends_it(self):
        for target in ("cli.md", "../README.md", "images/a.png"):
            with self.assertRaises(SystemExit) as end:
                self.page('<a href="%s">x</a>' % target)
            self.assertIn("maya.md links to %s" % target, end.exception.code)

    def test_it_knows_the_pictures_that_it_shows(self):
        html, pictures = self.page('<p><img src="images/a.png" alt="A"/> <img src="images/b.svg" alt="B" /></p>')
        self.assertEqual(pictures, ["images/a.png", "images/b.svg"])
        self.assertIn('<img src="images/a.png"', html)

    def test_headings_are_known_by_the_names_that_links_use(self):
        html, _ = self.page('<h2>In <code>a.py</code>, and so on</h2>')
        self.assertIn('<h2 id="in-apy-and-so-on">In <code>a.py</code>, and so on</h2>', html)
        self.assertIn("<title>In Maya</title>", html)

    def test_pages_and_pictures_are_where_the_links_look(self):
        os.mkdir(os.path.join(self.folder, "docs"))
        for name in self.PAGES:
            self.write(os.path.join("docs", name), '<h1>%s</h1><img src="images/%s.png"/>' % (name, name))
        with mock.patch.object(manual, "rendered", lambda python, text: text):
            files = manual.write("python", os.path.join(self.folder, "docs"), self.PAGES, os.path.join(self.folder, "out"))
        self.assertEqual(sorted(files), ["images/maya.md.png", "images/studio.md.png", "maya.html", "studio.html"])
        with open(files["studio.html"], encoding="utf-8") as file:
            self.assertIn("<title>studio.md</title>", file.read())


class Missing(Package):
    """No interpreter but 3.7 on Linux, none on Windows."""

    def run_main(self, *arguments, **replaced):
        """(exit code, what was said on standard error, the versions that were compiled for or None)."""
        said, compiled = io.StringIO(), []
        replaced.setdefault("compiler", lambda: "zig")
        replaced.setdefault("windows", {})
        with mock.patch.object(pythons, "interpreters", return_value=({(3, 7): "python3.7"}, {})), \
                mock.patch.object(package.zig, "compiler", replaced["compiler"]), \
                mock.patch.multiple(package, pages=dict, licences=lambda zig: {}, modules=lambda system, versions: {},
                                    windows_interpreters=lambda: replaced["windows"],
                                    compile_modules=lambda zig, *found: compiled.append((found[0], sorted(found[1])))), \
                contextlib.redirect_stderr(said), contextlib.redirect_stdout(io.StringIO()):
            code = package.main(["--dist", self.folder] + list(arguments))
        return code, said.getvalue(), compiled

    def test_the_versions_of_maya_are_needed(self):
        self.assertEqual(package.required(), [(3, 7), (3, 9), (3, 10), (3, 11), (3, 13)])
        code, said, compiled = self.run_main()
        self.assertEqual((code, compiled), (1, []))
        self.assertIn("NO CPYTHON FOR linux WITH Python.h FOR 3.9, 3.10, 3.11, 3.13", said)
        self.assertIn("NO CPYTHON FOR windows WITH Python.h FOR 3.7, 3.9, 3.10, 3.11, 3.13", said)

    def test_a_partial_package_says_what_it_lacks(self):
        code, said, compiled = self.run_main("--partial")
        self.assertEqual((code, compiled), (0, [("linux", [(3, 7)])]))
        self.assertIn("FOR 3.9, 3.10, 3.11, 3.13", said)

    def test_each_system_gets_its_own(self):
        self.assertEqual(self.run_main("--partial", windows={(3, 9): "folder"})[2],
                         [("linux", [(3, 7)]), ("windows", [(3, 9)])])

    def test_without_a_compiler_there_is_no_package(self):
        failing = mock.patch.object(pypi, "pip", side_effect=subprocess.CalledProcessError(1, "pip"))
        with failing:
            code, said, compiled = self.run_main("--partial", compiler=package.zig.compiler)
        self.assertEqual((code, compiled), (1, []))
        self.assertIn("THE COMPILER COULD NOT BE FETCHED", said)


if __name__ == "__main__":
    unittest.main()
