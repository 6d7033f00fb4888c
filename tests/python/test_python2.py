"""Maya 2022 can still start with Python 2: whatever it finds there says one clear sentence."""

import glob
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

from installer_case import CHECKOUT, INSTALLER

SENTENCE = "Vantorelix needs Python 3; start Maya 2022 without MAYA_PYTHON_VERSION=2."
COMPANION = os.path.join(CHECKOUT, "maya", "companion")
ENGINE = os.path.join(CHECKOUT, "maya", "extension", "Vantorelix_engine.py")
PLUGIN = os.path.join(COMPANION, "Vantorelix_plugin.py")


def python2():
    """A Python 2.7 that runs, or None."""
    pyenv = os.environ.get("PYENV_ROOT", os.path.expanduser("~/.pyenv"))
    for path in sorted(glob.glob(os.path.join(pyenv, "versions/2.7*/bin/python2.7"))) + [shutil.which("python2.7")]:
        try:
            if path and b"2.7" in subprocess.check_output([path, "--version"], stderr=subprocess.STDOUT):
                return path
        except (OSError, subprocess.CalledProcessError):
            continue
    return None


@unittest.skipUnless(python2(), "THIS MACHINE HAS NO PYTHON 2.7")
class Python2(unittest.TestCase):
    def setUp(self):
        """A folder as Maya 2022 gets it on its Python path, with a stand-in of `maya`."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.files = [ENGINE, INSTALLER] + glob.glob(os.path.join(COMPANION, "*.py"))
        for path in self.files:
            shutil.copy(path, self.folder)
        os.mkdir(os.path.join(self.folder, "maya"))
        for name in ("__init__.py", "cmds.py", "mel.py"):
            with open(os.path.join(self.folder, "maya", name), "w") as file:
                file.write("def internalVar(**flags): return 'nowhere/'\n"
                           "def confirmDialog(**flags): print(flags['message'])\n")

    def run_code(self, code):
        """(exit code, standard output, standard error)."""
        done = subprocess.run([python2(), "-B", "-c", code], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True, cwd=self.folder,
                              env={name: value for name, value in os.environ.items() if not name.startswith("PYTHON")})
        return done.returncode, done.stdout.strip(), done.stderr.strip()

    def test_every_file_that_it_finds_can_be_read_by_it(self):
        for path in self.files:
            name = os.path.basename(path)
            code, _, told = self.run_code("compile(open(%r).read(), %r, 'exec')" % (name, name))
            self.assertEqual((code, told), (0, ""), name)

    def test_importing_the_engine_the_menu_or_the_plugin_says_so(self):
        for name in ("Vantorelix", "Vantorelix_engine", "Vantorelix_plugin"):
            code, _, told = self.run_code("import " + name)
            self.assertEqual((code, told.splitlines()[-1]), (1, "ImportError: " + SENTENCE), name)

    def test_so_does_every_other_file_that_can_be_imported_by_itself(self):
        for path in self.files:
            name = os.path.basename(path)[:-3]
            code, _, told = self.run_code("import " + name)
            if code:
                self.assertEqual(told.splitlines()[-1], "ImportError: " + SENTENCE, name)

    def test_the_plugin_says_so_also_where_it_lies_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            self.folder = folder
            shutil.copy(PLUGIN, folder)
            self.assertEqual(self.run_code("import Vantorelix_plugin")[2].splitlines()[-1], "ImportError: " + SENTENCE)

    def test_the_installer_says_so_dropped_into_maya_and_run(self):
        dropped = "import install_vantorelix; install_vantorelix.onMayaDroppedPythonFile(None)"
        self.assertEqual(self.run_code(dropped), (0, "Vantorelix could not be installed or uninstalled:\n" + SENTENCE, ""))
        done = subprocess.run([python2(), "-B", INSTALLER, "modules"], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True, cwd=self.folder)
        self.assertEqual((done.returncode, done.stderr.strip()), (1, "install_vantorelix: " + SENTENCE))
        self.assertFalse(os.path.exists(os.path.join(self.folder, "modules")))


class Python3(unittest.TestCase):
    def test_the_sentence_is_the_same_everywhere(self):
        for path in (ENGINE, PLUGIN, INSTALLER):
            with open(path) as file:
                self.assertEqual(file.read().count(SENTENCE), 1, path)


if __name__ == "__main__":
    unittest.main()
