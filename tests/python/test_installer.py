"""Installing into Maya's folder of modules, checking, replacing, taking away, and failing at each step."""

import hashlib
import importlib.util
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import types
import unittest
from unittest import mock

CHECKOUT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PACKAGE = os.path.join(CHECKOUT, "maya", "package")
INSTALLER = os.path.join(PACKAGE, "install_vantorelix.py")
PLUGIN = "contents/plug-ins/Vantorelix_plugin.py"


def load_installer():
    description = importlib.util.spec_from_file_location("install_vantorelix", INSTALLER)
    module = importlib.util.module_from_spec(description)
    description.loader.exec_module(module)
    return module


def write(path, text):
    folder = os.path.dirname(path)
    if not os.path.isdir(folder):
        os.makedirs(folder)
    with open(path, "w") as file:
        file.write(text)


def read(path):
    with open(path) as file:
        return file.read()


def tree(folder):
    """Every file below `folder` with what it holds."""
    return {os.path.relpath(os.path.join(above, name), folder): read(os.path.join(above, name))
            for above, _, names in os.walk(folder) for name in names}


class InstallerTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.installer = load_installer()
        self.modules = os.path.join(self.folder, "maya", "modules")
        self.installed = os.path.join(self.modules, "vantorelix")
        self.package = self.make_package("1")

    def make_package(self, version):
        package = os.path.join(self.folder, "vantorelix-" + version)
        files = {"contents/python-3.7/_vantorelix.so": "binary " + version,
                 "contents/python-3.7/Vantorelix_engine.py": "engine " + version,
                 "contents/python-3.11/Vantorelix_engine.py": "engine " + version,
                 PLUGIN: "plugin " + version}
        for name in ("install_vantorelix.py", "Vantorelix.mod"):
            files[name] = read(os.path.join(PACKAGE, name))
        for path, text in files.items():
            write(os.path.join(package, path), text)
        write(os.path.join(package, "manifest.json"),
              json.dumps({path: hashlib.sha256(text.encode()).hexdigest() for path, text in files.items()}))
        return package

    def install(self, package=None):
        self.installer.install(package or self.package, self.modules)

    def engine(self):
        return read(os.path.join(self.installed, "contents", "python-3.7", "Vantorelix_engine.py"))


class Installing(InstallerTest):
    def test_every_file_arrives_and_nothing_else_is_left_behind(self):
        self.install()
        self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])
        wanted = tree(self.package)
        for python in ("python-3.7", "python-3.11"):
            wanted[os.path.join("contents", python, "Vantorelix_plugin.py")] = "plugin 1"
        self.assertEqual(tree(self.installed), wanted)

    def test_files_that_the_package_does_not_list_stay_where_they_are(self):
        write(os.path.join(self.package, "contents", "notes.txt"), "mine")
        self.install()
        self.assertFalse(os.path.exists(os.path.join(self.installed, "contents", "notes.txt")))

    def test_a_newer_version_replaces_all_of_the_older_one(self):
        self.install()
        newer = self.make_package("2")
        os.remove(os.path.join(newer, "contents", "python-3.11", "Vantorelix_engine.py"))
        manifest = json.loads(read(os.path.join(newer, "manifest.json")))
        del manifest["contents/python-3.11/Vantorelix_engine.py"]
        write(os.path.join(newer, "manifest.json"), json.dumps(manifest))
        self.install(newer)
        self.assertEqual(self.engine(), "engine 2")
        self.assertFalse(os.path.exists(os.path.join(self.installed, "contents", "python-3.11")))
        self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])

    def test_what_is_installed_can_install_itself_again(self):
        self.install()
        self.install(self.installed)
        self.assertEqual(self.engine(), "engine 1")

    def test_the_installed_plugin_is_newer_than_copies_that_the_engine_made_of_an_older_one(self):
        plugin = os.path.join(self.package, PLUGIN)
        os.utime(plugin, (1000, 1000))
        self.install()
        beside = os.path.join(self.installed, "contents", "python-3.7", "Vantorelix_plugin.py")
        self.assertGreater(os.stat(beside).st_mtime, 1000)

    def test_a_folder_of_somebody_else_is_left_alone(self):
        write(os.path.join(self.installed, "theirs.txt"), "theirs")
        self.assertRaises(self.installer.InstallError, self.install)
        self.assertEqual(tree(self.modules), {os.path.join("vantorelix", "theirs.txt"): "theirs"})


class Damage(InstallerTest):
    def expect_refused(self, words):
        self.assertRaisesRegex(self.installer.InstallError, words, self.install)
        self.assertFalse(os.path.exists(self.modules))

    def test_a_changed_file_is_refused(self):
        write(os.path.join(self.package, PLUGIN), "changed")
        self.expect_refused("Vantorelix_plugin.py is damaged")

    def test_a_missing_file_is_refused(self):
        os.remove(os.path.join(self.package, PLUGIN))
        self.expect_refused("cannot be read")

    def test_a_package_without_its_list_is_refused(self):
        os.remove(os.path.join(self.package, "manifest.json"))
        self.expect_refused("no list")

    def test_paths_out_of_the_package_are_refused(self):
        for path in ("../elsewhere", os.path.abspath(os.sep + "elsewhere"), "contents/../../elsewhere",
                     "..\\elsewhere"):
            write(os.path.join(self.package, "manifest.json"), json.dumps({path: "00"}))
            self.expect_refused("outside")

    def test_an_installation_is_checked_likewise(self):
        self.install()
        self.assertEqual(len(self.installer.verify(self.installed)), 6)
        write(os.path.join(self.installed, PLUGIN), "changed")
        self.assertRaises(self.installer.InstallError, self.installer.verify, self.installed)


class Failing(InstallerTest):
    """Whatever step fails, what was there before is there again, and the next try succeeds."""

    STEPS = (("shutil", "copy2"), ("os", "rename"), ("os", "replace"), ("os", "utime"), ("os", "makedirs"))

    def failing_at(self, module, name, count):
        """The function, raising at its call `count`, counted from 1; and a list that is empty until it did."""
        real, calls, raised = getattr(getattr(self.installer, module), name), [], []

        def fail(*args, **kwargs):
            calls.append(args)
            if len(calls) == count:
                raised.append(True)
                raise OSError("the disk is full")
            return real(*args, **kwargs)
        return mock.patch.object(getattr(self.installer, module), name, fail), raised

    def sweep(self, prepare):
        """Fails at each call of each step in turn; afterwards all must be as `prepare` left it."""
        failures, package = 0, self.make_package("2")
        for module, name in self.STEPS:
            count, raised = 0, [True]
            while raised:
                shutil.rmtree(os.path.join(self.folder, "maya"), ignore_errors=True)
                prepare()
                before = tree(self.modules)
                count += 1
                patch, raised = self.failing_at(module, name, count)
                with patch:
                    try:
                        self.install(package)
                    except OSError:
                        self.assertTrue(raised)
                if raised:
                    failures += 1
                    self.assertEqual(tree(self.modules), before, "{0}.{1}".format(module, name))
                    self.assertLessEqual(set(os.listdir(self.modules)), {"Vantorelix.mod", "vantorelix"})
        return failures

    def test_the_earlier_version_is_whole_again(self):
        self.assertGreater(self.sweep(self.install), 15)

    def test_a_first_installation_leaves_nothing_for_maya_to_find(self):
        self.assertGreater(self.sweep(lambda: os.makedirs(self.modules)), 15)

    def test_an_installation_that_was_killed_between_its_renames_is_mended_by_the_next(self):
        self.install()
        os.rename(self.installed, os.path.join(self.modules, ".vantorelix-previous"))
        write(os.path.join(self.modules, ".vantorelix-incoming", "half"), "half")
        broken = self.make_package("3")
        write(os.path.join(broken, PLUGIN), "damaged")
        self.assertRaises(self.installer.InstallError, self.install, broken)
        self.assertTrue(self.installer.uninstall(self.modules))
        self.assertEqual(os.listdir(self.modules), [])

    def test_after_a_kill_the_previous_version_is_put_back_before_anything_else(self):
        self.install()
        os.rename(self.installed, os.path.join(self.modules, ".vantorelix-previous"))
        patch, _ = self.failing_at("shutil", "copy2", 1)
        with patch:
            self.assertRaises(OSError, self.install, self.make_package("2"))
        self.assertEqual(self.engine(), "engine 1")


class Removing(InstallerTest):
    def test_everything_goes_and_the_rest_stays(self):
        write(os.path.join(self.modules, "Other.mod"), "theirs")
        self.install()
        self.assertTrue(self.installer.uninstall(self.modules))
        self.assertEqual(tree(self.modules), {"Other.mod": "theirs"})

    def test_copies_of_the_plugin_go_along_but_not_one_that_was_changed(self):
        self.install()
        copies = [os.path.join(self.folder, "maya", version, "plug-ins", "Vantorelix_plugin.py")
                  for version in ("2022", "2025")]
        write(copies[0], "plugin 1")
        write(copies[1], "plugin of my own")
        self.installer.uninstall(self.modules)
        self.assertEqual([os.path.exists(copy) for copy in copies], [False, True])

    def test_nothing_installed_is_told(self):
        self.assertFalse(self.installer.uninstall(self.modules))


class Dropped(InstallerTest):
    """The installer as Maya runs it, from within the package."""

    def drop(self, choice):
        said = []

        def dialog(**flags):
            said.append(flags["message"])
            return choice if "Cancel" in flags["button"] else "OK"
        cmds = types.ModuleType("maya.cmds")
        cmds.confirmDialog = dialog
        cmds.internalVar = lambda userAppDir: os.path.join(self.folder, "maya") + "/"
        maya = types.ModuleType("maya")
        maya.cmds = cmds
        self.installer.__file__ = os.path.join(self.package, "install_vantorelix.py")
        with mock.patch.dict(sys.modules, {"maya": maya, "maya.cmds": cmds}):
            self.installer.onMayaDroppedPythonFile(None)
        return said

    def test_install_and_uninstall(self):
        self.assertIn("Start Maya again", self.drop("Install")[-1])
        self.assertEqual(self.engine(), "engine 1")
        self.assertIn("removed", self.drop("Uninstall")[-1])
        self.assertEqual(os.listdir(self.modules), [])
        self.assertIn("not installed", self.drop("Uninstall")[-1])

    def test_cancel_does_nothing(self):
        self.assertEqual(len(self.drop("Cancel")), 1)
        self.assertFalse(os.path.exists(self.modules))

    def test_an_error_is_told_and_not_raised(self):
        write(os.path.join(self.package, PLUGIN), "changed")
        self.assertIn("damaged", self.drop("Install")[-1])


class CommandLine(InstallerTest):
    def run_installer(self, *arguments):
        script = os.path.join(self.package, "install_vantorelix.py")
        done = subprocess.run([sys.executable, script] + list(arguments), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, universal_newlines=True)
        return done.returncode, done.stdout.strip()

    def test_installs_verifies_and_uninstalls(self):
        self.assertEqual(self.run_installer(self.modules), (0, "Installed."))
        self.assertEqual(self.run_installer("--verify", self.modules), (0, "6 files are as they should be."))
        self.assertEqual(self.run_installer("--uninstall", self.modules), (0, "Removed."))
        code, told = self.run_installer("--verify", self.modules)
        self.assertEqual(code, 1)
        self.assertIn("no list of its files", told)


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ and "VANTORELIX_HOST" in os.environ,
                     "VANTORELIX_MODULE and VANTORELIX_HOST name no folders")
class RealFiles(InstallerTest):
    """The module and what lies beside it, installed and used in an interpreter of its own."""

    PYTHON = "python-{0}.{1}".format(*sys.version_info[:2])
    SESSION = """
import sys
from maya import cmds, host
host.restart(plugin_loaded=False, user_app_dir=sys.argv[1])
import Vantorelix_engine, Vantorelix
ball = cmds.createNode("transform", name="ball")
for frame in (1, 24):
    cmds.setKeyframe(ball, attribute="translateX", time=frame, value=frame)
cmds.select(ball)
Vantorelix_engine.create_trail()
print(cmds.pluginInfo("Vantorelix_plugin", query=True, path=True))
print(len(cmds.ls(type="vantorelix")))
print(Vantorelix.__file__)
"""

    def make_package(self, version):
        package = super(RealFiles, self).make_package(version)
        companion, python = os.path.join(CHECKOUT, "maya", "companion"), os.path.join(package, "contents", self.PYTHON)
        shutil.rmtree(os.path.join(package, "contents"))
        shutil.copytree(os.environ["VANTORELIX_MODULE"], python, ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copy2(os.path.join(companion, "Vantorelix.py"), python)
        os.makedirs(os.path.dirname(os.path.join(package, PLUGIN)))
        shutil.copy2(os.path.join(companion, "Vantorelix_plugin.py"), os.path.join(package, PLUGIN))
        os.remove(os.path.join(package, "manifest.json"))
        files = {os.path.relpath(os.path.join(above, name), package).replace(os.sep, "/"): self.installer.digest(
            os.path.join(above, name)) for above, _, names in os.walk(package) for name in names}
        write(os.path.join(package, "manifest.json"), json.dumps(files))
        return package

    def test_an_animator_s_first_trail_loads_the_plugin_from_the_installation(self):
        self.install()
        maya = os.path.dirname(self.modules)
        folder = os.path.join(self.installed, "contents", self.PYTHON)
        paths = [folder, os.path.abspath(os.environ["VANTORELIX_HOST"])]
        environment = dict(os.environ, PYTHONPATH=os.pathsep.join(paths))
        environment.pop("MAYA_PLUG_IN_PATH", None)
        done = subprocess.run([sys.executable, "-c", self.SESSION, maya + "/"], stdout=subprocess.PIPE, cwd=self.folder,
                              stderr=subprocess.PIPE, universal_newlines=True, env=environment)
        self.assertEqual(done.returncode, 0, done.stderr)
        plugin, count, front = done.stdout.strip().splitlines()[-3:]
        self.assertEqual((count, front), ("1", os.path.join(folder, "Vantorelix.py")))
        self.assertTrue(os.path.samefile(os.path.dirname(os.path.dirname(os.path.dirname(plugin))), maya), plugin)
        self.assertTrue(self.installer.uninstall(self.modules))
        self.assertFalse(os.path.exists(plugin))


class Description(unittest.TestCase):
    """The file that tells Maya which folder is for which of its versions."""

    def test_each_maya_gets_the_interpreter_that_it_embeds(self):
        lines = read(os.path.join(PACKAGE, "Vantorelix.mod")).splitlines()
        found = {}
        for line in lines:
            head = re.match(r"\+ MAYAVERSION:(\d+) PLATFORM:linux Vantorelix (\S+) \./vantorelix/contents$", line)
            path = re.match(r"PYTHONPATH\+:=python-(3\.\d+)$", line)
            if head:
                version = head.group(1)
                self.assertIn("VERSION {0} ".format(head.group(2)), read(os.path.join(CHECKOUT, "CMakeLists.txt")))
            elif path:
                found[version] = path.group(1)
            else:
                self.assertTrue(not line or line.startswith("//"), line)
        self.assertEqual(found, {"2022": "3.7", "2023": "3.9", "2024": "3.10", "2025": "3.11", "2026": "3.11"})


if __name__ == "__main__":
    unittest.main()
