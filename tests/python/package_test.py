"""The package: complete, loadable on older Linux and by this interpreter, installed and taken away again.

Run by itself (run.py package_test.py), for it is about another module than the rest. VANTORELIX_PACKAGE is the folder of
the package; VANTORELIX_MODULE and VANTORELIX_HOST are as in support.py.
"""

import glob
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

import support
import test_installer
from elf import Library, problems
from installer_case import CHECKOUT
from recording_maya import Maya

PACKAGE = max(glob.glob(os.path.join(os.environ["VANTORELIX_PACKAGE"], "vantorelix-maya-*.zip")),
              key=os.path.getmtime)
TOP = os.path.basename(PACKAGE)[:-len(".zip")] + "/"
THIS_VERSION = "linux/python-%d.%d" % sys.version_info[:2]


class PackageTest(unittest.TestCase):
    def setUp(self):
        self.zip = zipfile.ZipFile(PACKAGE)
        self.addCleanup(self.zip.close)
        self.names = self.zip.namelist()

    def libraries(self):
        found = [name for name in self.names if name.endswith(".so")]
        self.assertTrue(found)
        return {name: Library(self.zip.read(name)) for name in found}

    def unpack(self):
        """The folder of the package, unpacked somewhere."""
        folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, folder)
        self.zip.extractall(folder)
        return os.path.join(folder, TOP)


class Contents(PackageTest):
    def test_there_is_a_module_with_its_companions_for_this_python(self):
        folder = TOP + "contents/" + THIS_VERSION + "/"
        modules = [name for name in self.names if re.match(re.escape(folder) + r"_vantorelix\.cpython-\w+-x86_64", name)]
        self.assertEqual(len(modules), 1)
        companions = {os.path.basename(path) for path in glob.glob(os.path.join(CHECKOUT, "maya", "companion", "*.py"))}
        self.assertIn("Vantorelix.py", companions)
        for name in companions - {"Vantorelix_plugin.py"} | {"Vantorelix_engine.py", "Vantorelix_engine.pyi"}:
            self.assertIn(folder + name, self.names)

    def test_each_python_that_the_description_names_is_there(self):
        named = set(re.findall(r"PYTHONPATH\+:=(\S+)", self.zip.read(TOP + "Vantorelix.mod").decode()))
        self.assertTrue(named)
        missing = [n for n in sorted(named) if TOP + "contents/%s/Vantorelix_engine.py" % n not in self.names]
        if missing:  # Each interpreter of this machine runs the test above.
            self.skipTest("THE PACKAGE IS NOT COMPLETE: this machine has no " + ", ".join(missing))

    def test_its_list_has_every_other_file_with_its_hash(self):
        others = [name for name in self.names if name != TOP + "manifest.json"]
        self.assertEqual(json.loads(self.zip.read(TOP + "manifest.json").decode()),
                         {name[len(TOP):]: hashlib.sha256(self.zip.read(name)).hexdigest() for name in others})


    def test_the_manual_opens_from_disk_with_its_pictures(self):
        pages = [name for name in self.names if name.endswith(".html")]
        self.assertEqual(pages, [TOP + "manual/maya.html", TOP + "manual/studio.html"])
        for name in pages:
            text = self.zip.read(name).decode("utf-8")
            self.assertIn("<table>", text)
            for target in re.findall(r' (?:href|src)="([^"]*)"', text):
                path, _, place = target.partition("#")
                if path.startswith("https://"):
                    continue
                self.assertIn(TOP + "manual/" + path if path else name, self.names)
                if place:
                    page = self.zip.read(TOP + "manual/" + path if path else name).decode("utf-8")
                    self.assertIn('id="%s"' % place, page)

    def test_the_licences_of_what_is_linked_in_are_there(self):
        listed = re.findall(r"\S+\.txt", self.zip.read(TOP + "licences/README.txt").decode())
        folder = TOP + "licences/"
        self.assertEqual(sorted(listed + ["README.txt"]),
                         [name[len(folder):] for name in self.names if name.startswith(folder)])
        for name, words in (("libc++", "LLVM Project"), ("libc++abi", "LLVM Project"), ("libunwind", "LLVM Project"),
                            ("zig", "Zig contributors"), ("glibc", "permission to link the compiled version")):
            self.assertIn(words, self.zip.read(folder + name + ".txt").decode("utf-8"))


class Modules(PackageTest):
    def test_they_need_nothing_but_an_old_glibc_and_the_interpreter(self):
        for name, library in self.libraries().items():
            self.assertTrue(library.needed and library.versions and library.unversioned, name)
            self.assertEqual(problems(library), [], name)

    def test_they_keep_their_insides_to_themselves(self):
        for name, library in self.libraries().items():
            self.assertEqual(library.exported, ["PyInit__vantorelix"], name)

    def test_one_of_this_machines_compiler_would_pass_neither(self):
        path, = glob.glob(os.path.join(support.MODULE, "_vantorelix*.so"))
        with open(path, "rb") as file:
            library = Library(file.read())
        self.assertIn("needs libstdc++.so.6", problems(library))
        self.assertGreater(len(library.exported), 1)


class InUse(PackageTest):
    def run_python(self, *arguments, **environment):
        done = subprocess.run((sys.executable,) + arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True, env=dict(os.environ, **environment))
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.strip().splitlines()

    def test_the_module_makes_a_trail_on_a_recording_maya(self):
        maya, folder = Maya(), os.path.join(self.unpack(), "contents", THIS_VERSION)
        sys.path.insert(0, folder)
        self.addCleanup(sys.path.remove, folder)
        import Vantorelix_engine
        self.assertTrue(sys.modules["_vantorelix"].__file__.startswith(folder))
        # The layer in front of Maya's commands asks for more than the engine does; the test below uses it.
        self.assertEqual(Vantorelix_engine.cmds.__name__, "Vantorelix_layer.cmds")
        Vantorelix_engine.cmds = sys.modules["maya.cmds"]
        Vantorelix_engine.create_trail()
        self.assertEqual(maya.shape("ball")["points"], [(t, 0.0, 0.0) for t in (1.0, 2.0, 3.0, 4.0, 5.0)])
        Vantorelix_engine.clear_trails()

    def test_it_is_installed_used_on_a_scene_and_taken_away(self):
        package = self.unpack()
        installer, maya = os.path.join(package, "install_vantorelix.py"), os.path.join(package, "maya")
        modules = os.path.join(maya, "modules")
        self.addCleanup(os.environ.pop, "MAYA_APP_DIR")
        os.environ["MAYA_APP_DIR"] = maya
        self.assertEqual(self.run_python(installer, modules), ["Installed."])
        plugins = len({os.path.dirname(name) for name in self.names if "/python-" in name})
        self.assertEqual(self.run_python(installer, "--verify", modules),
                         ["%d files are as they should be." % (len(self.names) + plugins)])
        installed = os.path.join(modules, "vantorelix", "contents", THIS_VERSION)
        plugin, count, front = self.run_python(
            "-c", test_installer.RealFiles.SESSION, maya + "/",
            PYTHONPATH=os.pathsep.join([installed, os.path.abspath(os.environ["VANTORELIX_HOST"])]))[-3:]
        self.assertEqual((count, front), ("1", os.path.join(installed, "Vantorelix.py")))
        self.assertTrue(os.path.exists(plugin))
        self.assertEqual(self.run_python(installer, "--uninstall", modules), ["Removed."])
        self.assertEqual((os.listdir(modules), os.path.exists(plugin)), ([], False))


if __name__ == "__main__":
    unittest.main()
