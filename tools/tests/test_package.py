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
            path = os.path.join(self.folder, "dist", "%d.zip" % time)
            package.write_package(path, "top", {name: files[name] for name in order})
            with open(path, "rb") as file:
                written.append(file.read())
        self.assertEqual(written[0], written[1])

    def test_it_lists_the_hash_of_every_file(self):
        path = os.path.join(self.folder, "a.zip")
        package.write_package(path, "top", {"a": self.write("a", "ay")})
        with zipfile.ZipFile(path) as made:
            self.assertEqual(made.namelist(), ["top/a", "top/manifest.json"])
            self.assertEqual(made.read("top/a"), b"ay")
            self.assertEqual(json.loads(made.read("top/manifest.json").decode()), {"a": hashlib.sha256(b"ay").hexdigest()})

    def test_two_modules_where_one_is_needed_end_it(self):
        self.write("a.so", "")
        self.assertEqual(os.path.basename(package.only(os.path.join(self.folder, "*.so"))), "a.so")
        self.write("b.so", "")
        self.assertRaises(SystemExit, package.only, os.path.join(self.folder, "*.so"))


class Missing(Package):
    """No interpreter but 3.7."""

    def run_main(self, *arguments, **replaced):
        """(exit code, what was said on standard error, the versions that were compiled for or None)."""
        said, compiled = io.StringIO(), []
        replaced.setdefault("compiler", lambda: "zig")
        with mock.patch.object(pythons, "interpreters", return_value=({(3, 7): "python3.7"}, {})), \
                mock.patch.multiple(package, contents=lambda versions: {},
                                    compile_modules=lambda zig, found: compiled.append(sorted(found)), **replaced), \
                contextlib.redirect_stderr(said), contextlib.redirect_stdout(io.StringIO()):
            code = package.main(["--dist", self.folder] + list(arguments))
        return code, said.getvalue(), compiled

    def test_the_versions_of_maya_are_needed(self):
        self.assertEqual(package.required(), [(3, 7), (3, 9), (3, 10), (3, 11)])
        code, said, compiled = self.run_main()
        self.assertEqual((code, compiled), (1, []))
        self.assertIn("NO CPYTHON WITH Python.h FOR 3.9, 3.10, 3.11", said)

    def test_a_partial_package_says_what_it_lacks(self):
        code, said, compiled = self.run_main("--partial")
        self.assertEqual((code, compiled), (0, [[(3, 7)]]))
        self.assertIn("FOR 3.9, 3.10, 3.11", said)

    def test_without_a_compiler_there_is_no_package(self):
        failing = mock.patch.object(pypi, "pip", side_effect=subprocess.CalledProcessError(1, "pip"))
        with failing:
            code, said, compiled = self.run_main("--partial", compiler=package.compiler)
        self.assertEqual((code, compiled), (1, []))
        self.assertIn("THE COMPILER CANNOT BE FETCHED", said)


if __name__ == "__main__":
    unittest.main()
