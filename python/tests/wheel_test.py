"""The wheel, installed into an empty environment of this interpreter, where the other tests pass, too.

VANTORELIX_WHEEL names the folder that it lies in.
"""

import glob
import os
import subprocess
import sys
import tempfile
import unittest
import venv
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
CHECKOUT = os.path.dirname(os.path.dirname(HERE))
MOST_BYTES = 5000000


class Wheel(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        (cls.wheel,) = glob.glob(os.path.join(os.environ["VANTORELIX_WHEEL"], "*.whl"))
        cls.folder = tempfile.TemporaryDirectory()
        venv.create(cls.folder.name, with_pip=True)
        cls.python = os.path.join(cls.folder.name, "bin", "python")
        subprocess.check_output([cls.python, "-m", "pip", "install", "--no-index", "--quiet", cls.wheel],
                                stderr=subprocess.STDOUT)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def run_in(self, *arguments):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("PYTHON")}
        environment["VANTORELIX_PROGRAM"] = os.path.join(self.folder.name, "bin", "vantorelix")
        return subprocess.run([self.python] + list(arguments), env=environment, cwd=self.folder.name,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True)

    def test_its_tests_pass(self):
        run = self.run_in(os.path.join(CHECKOUT, "tests", "python", "run.py"), "--folder", HERE)
        self.assertEqual(run.returncode, 0, run.stdout)
        self.assertRegex(run.stdout, r"Python .*, [5-9]\d tests")

    def test_the_package_comes_from_the_environment(self):
        run = self.run_in("-c", "import vantorelix; print(vantorelix.__file__)")
        self.assertTrue(os.path.realpath(run.stdout.strip()).startswith(os.path.realpath(self.folder.name)), run.stdout)

    def test_the_program_runs_and_has_the_packages_version(self):
        program = os.path.join(self.folder.name, "bin", "vantorelix")
        shown = subprocess.check_output([program, "--version"], universal_newlines=True)
        version = self.run_in("-c", "import vantorelix; print(vantorelix.__version__)").stdout.strip()
        self.assertEqual(shown.split()[:2], ["vantorelix", version])
        self.assertIn("vantorelix-%s-" % version, self.wheel)

    def test_the_command_for_shots_says_what_to_install_without_its_extra(self):
        run = subprocess.run([os.path.join(self.folder.name, "bin", "vantorelix-shots"), "clips", "--out", "show"],
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, universal_newlines=True)
        self.assertEqual((run.returncode, run.stdout, run.stderr.count("\n")), (1, "", 1), run.stderr)
        self.assertIn("pip install 'vantorelix[shots]'", run.stderr)

    def test_pip_knows_every_file_and_takes_all_away(self):
        listed = self.run_in("-m", "pip", "show", "--files", "vantorelix").stdout
        for name in zipfile.ZipFile(self.wheel).namelist():
            self.assertIn(os.path.basename(name), listed)
        self.assertIn("numpy", zipfile.ZipFile(self.wheel).read(
            next(name for name in zipfile.ZipFile(self.wheel).namelist() if name.endswith("METADATA"))).decode())

    @unittest.skipUnless(sys.version_info[:2] == (3, 11), "numpy is tried on Python 3.11")
    def test_numpy_takes_its_arrays(self):
        pinned = os.path.join(HERE, "numpy.txt")
        run = self.run_in("-m", "pip", "install", "--quiet", "--require-hashes", "--only-binary=:all:", "-r", pinned)
        if run.returncode:
            self.skipTest("numpy cannot be had from PyPI: %s" % run.stdout)
        script = "import os, sys; os.environ['VANTORELIX_NUMPY'] = '1'; sys.path.insert(0, sys.argv.pop(1));"
        run = self.run_in("-c", script + "import unittest; unittest.main('test_trails', argv=['', 'Numpy', '-v'])", HERE)
        self.assertEqual(run.returncode, 0, run.stdout)
        self.assertNotIn("skipped", run.stdout)
        self.assertIn("numpy_takes_arrays_without_a_copy", run.stdout)

    def test_it_is_small(self):
        self.assertLess(os.path.getsize(self.wheel), MOST_BYTES)

    def test_it_needs_no_newer_glibc_than_its_name_says(self):
        sys.path.insert(0, os.path.join(CHECKOUT, "tests", "python"))
        self.addCleanup(sys.path.pop, 0)
        import elf

        programs = 0
        with zipfile.ZipFile(self.wheel) as archive:
            for name in archive.namelist():
                data = archive.read(name)
                if not data.startswith(b"\x7fELF"):
                    continue
                programs += 1
                library = elf.Library(data)
                for version in library.versions:
                    number = tuple(map(int, version.replace("GLIBC_", "").split(".")))
                    self.assertLessEqual(number, (2, 17), name)
                self.assertFalse([needed for needed in library.needed if "stdc++" in needed], name)
                if name.endswith(".so"):
                    self.assertTrue(all(symbol.startswith("vlx_") for symbol in library.exported), library.exported)
        self.assertEqual(programs, 2)


if __name__ == "__main__":
    unittest.main()
