"""Installing into Maya's folder of modules, replacing, taking away, and failing at each step."""

import contextlib
import glob
import io
import json
import os
import re
import shutil
import subprocess
import sys
import types
import unittest
from unittest import mock

from installer_case import CHECKOUT, PACKAGE, PLUGIN, InstallerTest, RealPackageTest, read, tree, write


class Installing(InstallerTest):
    def test_every_file_arrives_and_nothing_else_is_left_behind(self):
        self.assertEqual(self.install(), [])
        self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])
        wanted = dict(tree(self.package), **{"earlier-plugins.json": "[]"})
        for python in ("linux/python-3.7", "linux/python-3.11", "windows/python-3.7"):
            wanted[os.path.join("contents", os.path.normpath(python), "Vantorelix_plugin.py")] = "plugin 1"
        self.assertEqual(tree(self.installed), wanted)

    def test_files_that_the_package_does_not_list_stay_where_they_are(self):
        write(os.path.join(self.package, "contents", "notes.txt"), "mine")
        self.install()
        self.assertFalse(os.path.exists(os.path.join(self.installed, "contents", "notes.txt")))

    def test_a_newer_version_replaces_all_of_the_older_one(self):
        self.install()
        newer = self.make_package("2")
        os.remove(os.path.join(newer, "contents", "linux", "python-3.11", "Vantorelix_engine.py"))
        manifest = json.loads(read(os.path.join(newer, "manifest.json")))
        del manifest["contents/linux/python-3.11/Vantorelix_engine.py"]
        write(os.path.join(newer, "manifest.json"), json.dumps(manifest))
        self.assertEqual(self.install(newer), [])
        self.assertEqual(self.engine(), "engine 2")
        self.assertFalse(os.path.exists(os.path.join(self.installed, "contents", "linux", "python-3.11")))
        self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])

    def test_what_is_installed_can_install_itself_again(self):
        self.install()
        self.install(self.installed)
        self.assertEqual(self.engine(), "engine 1")

    def test_everybody_can_read_it_who_can_read_the_folder_of_modules(self):
        before = os.umask(0o022)
        self.addCleanup(os.umask, before)
        self.install()
        for above, folders, names in os.walk(self.modules):
            for name in folders + names:
                mode = os.stat(os.path.join(above, name)).st_mode
                self.assertEqual(mode & 0o044, 0o044, name)

    def test_the_installed_plugin_is_newer_than_copies_that_the_engine_made_of_an_older_one(self):
        plugin = os.path.join(self.package, PLUGIN)
        os.utime(plugin, (1000, 1000))
        self.install()
        beside = os.path.join(self.installed, "contents", "linux", "python-3.7", "Vantorelix_plugin.py")
        self.assertGreater(os.stat(beside).st_mtime, 1000)

    def test_a_folder_of_somebody_else_is_left_alone(self):
        write(os.path.join(self.installed, "theirs.txt"), "theirs")
        self.assertRaises(self.installer.InstallError, self.install)
        self.assertRaises(self.installer.InstallError, self.installer.uninstall, self.modules)
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

    def test_every_file_that_is_not_what_it_was_is_named(self):
        write(os.path.join(self.package, PLUGIN), "changed")
        os.remove(os.path.join(self.package, "contents", "linux", "python-3.11", "Vantorelix_engine.py"))
        write(os.path.join(self.package, "Vantorelix.mod"), "changed")
        self.expect_refused(r"(?s)Vantorelix.mod is damaged.*python-3.11/Vantorelix_engine.py cannot be read.*"
                            r"Vantorelix_plugin.py is damaged.*Unpack the package again")

    def test_a_package_without_its_list_is_refused(self):
        os.remove(os.path.join(self.package, "manifest.json"))
        self.expect_refused(r"list of files .*manifest.json cannot be read")

    def test_a_list_of_something_else_is_refused(self):
        for content in ([PLUGIN, "Vantorelix.mod"], 5, {"a": "00"}):
            write(os.path.join(self.package, "manifest.json"), json.dumps(content))
            self.expect_refused("not a package of Vantorelix")

    def test_paths_out_of_the_package_are_refused(self):
        for path in ("../elsewhere", os.path.abspath(os.sep + "elsewhere"), "contents/../../elsewhere",
                     "..\\elsewhere"):
            write(os.path.join(self.package, "manifest.json"), json.dumps({path: "00", PLUGIN: "00", "Vantorelix.mod": "00"}))
            self.expect_refused("outside")


class Interrupting(InstallerTest):
    """What an installation does one by one, stopped before each in turn."""

    STEPS = (("shutil", "copy2"), ("os", "rename"), ("os", "replace"), ("os", "utime"), ("os", "makedirs"),
             ("tempfile", "mkdtemp"), ("json", "dump"))

    def stopping_at(self, module, name, count, stop):
        """The function, calling `stop` before its call `count`, counted from 1; and the list of its calls."""
        real, calls = getattr(getattr(self.installer, module), name), []

        def call(*args, **kwargs):
            calls.append(args)
            if len(calls) == count:
                stop()
            return real(*args, **kwargs)
        return mock.patch.object(getattr(self.installer, module), name, call), calls

    def each_step(self, prepare):
        """Every (module, function, number of its call) of installing version 2 over what `prepare` makes."""
        self.start_again(prepare)
        counts = []
        with contextlib.ExitStack() as patches:
            for module, name in self.STEPS:
                patch, calls = self.stopping_at(module, name, 0, None)
                patches.enter_context(patch)
                counts.append(calls)
            self.install(self.newer)
        for (module, name), calls in zip(self.STEPS, counts):
            for count in range(1, len(calls) + 1):
                self.start_again(prepare)
                yield module, name, count

    def start_again(self, prepare):
        shutil.rmtree(self.maya, ignore_errors=True)
        prepare()

    def setUp(self):
        super(Interrupting, self).setUp()
        self.newer = self.make_package("2")

    def version(self):
        """The version that is there as a whole; None where there is none."""
        if not os.path.exists(os.path.join(self.modules, "Vantorelix.mod")):
            return None
        self.assertGreater(self.installer.verify(self.modules), 6)
        engine, description = self.engine(), read(os.path.join(self.modules, "Vantorelix.mod"))
        self.assertEqual(engine[-1], description[-1])
        return engine[-1]

    def assert_no_file_but_the_description(self):
        files = [name for name in os.listdir(self.modules) if os.path.isfile(os.path.join(self.modules, name))]
        self.assertLessEqual(set(files), {"Vantorelix.mod"})


def fail():
    raise OSError(28, "the disk is full")


class Failing(Interrupting):
    """Whatever step fails, what was there before is there again; or the new version is, and nothing was raised."""

    def sweep(self, prepare):
        outcomes = []
        for module, name, count in self.each_step(prepare):
            before = tree(self.modules)
            patch, calls = self.stopping_at(module, name, count, fail)
            with patch:
                try:
                    left = self.install(self.newer)
                except OSError:
                    outcomes.append("failed")
                    self.assertEqual(tree(self.modules), before, (module, name, count))
                    self.assertLessEqual(set(os.listdir(self.modules)), {"Vantorelix.mod", "vantorelix"})
                else:
                    outcomes.append("succeeded")
                    self.assertEqual(self.version(), "2")
                    self.assertEqual(len(left), 1, (module, name, count))
            self.assertGreaterEqual(len(calls), count)
            self.assert_no_file_but_the_description()
            self.assertEqual(self.install(self.newer), [])
            self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])
        return outcomes

    def test_the_earlier_version_is_whole_again(self):
        outcomes = self.sweep(self.install)
        self.assertGreater(outcomes.count("failed"), 15)
        self.assertGreater(outcomes.count("succeeded"), 0)

    def test_a_first_installation_leaves_nothing_for_maya_to_find(self):
        self.assertGreater(self.sweep(lambda: os.makedirs(self.modules)).count("failed"), 15)

    def test_an_old_version_that_cannot_be_deleted_is_named_and_the_new_one_is_installed(self):
        self.install()
        with mock.patch.object(self.installer.shutil, "rmtree", side_effect=OSError(39, "Directory not empty")):
            told, = self.install(self.newer)
            self.assertEqual(self.version(), "2")
            rubbish, = glob.glob(os.path.join(self.modules, ".vantorelix-*"))
            self.assertIn(rubbish + " is not needed any more but could not be deleted: Directory not empty.", told)
            self.assertEqual(len(self.install(self.make_package("3"))), 2)
        self.assertEqual(self.install(self.newer), [])
        self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])

    def test_an_old_version_that_is_half_deleted_is_none_to_go_back_to(self):
        self.install()
        with mock.patch.object(self.installer.shutil, "rmtree", side_effect=OSError(39, "Directory not empty")):
            self.install(self.newer)
        shutil.rmtree(self.installed)
        self.installer.uninstall(self.modules)
        self.assertEqual(os.listdir(self.modules), [])


@unittest.skipUnless(hasattr(os, "fork"), "this system has no fork")
class Killed(Interrupting):
    def kill_at(self, module, name, count):
        child = os.fork()
        if not child:
            with self.stopping_at(module, name, count, lambda: os._exit(9))[0]:
                try:
                    self.install(self.newer)
                finally:
                    os._exit(0)
        return os.waitpid(child, 0)[1] >> 8

    def sweep(self, prepare, versions):
        """What the next installer finds is one of `versions` as a whole."""
        found = []
        for module, name, count in self.each_step(prepare):
            self.assertEqual(self.kill_at(module, name, count), 9)
            self.assert_no_file_but_the_description()
            self.installer._recover(self.modules)
            found.append(self.version())
            self.assertLessEqual(set(os.listdir(self.modules)), {"Vantorelix.mod", "vantorelix"})
        self.assertEqual(set(found), set(versions))
        self.assertGreater(len(found), 15)

    def test_an_upgrade_leaves_the_old_version_or_the_new_one(self):
        self.sweep(self.install, "12")

    def test_a_first_installation_leaves_nothing_or_all(self):
        self.sweep(lambda: os.makedirs(self.modules), [None, "2"])

    def prepare_with_copy(self):
        self.install()
        self.copy = self.copy_of_plugin("2025", "plugin 1")

    def test_the_next_installation_or_removal_goes_through(self):
        for module, name, count in self.each_step(self.prepare_with_copy):
            self.kill_at(module, name, count)
            self.assertIn(read(self.copy), ("plugin 1", "plugin 2"))
            self.assertEqual(self.install(self.newer), [])
            self.assertEqual(self.version(), "2")
            self.assertEqual(sorted(os.listdir(self.modules)), ["Vantorelix.mod", "vantorelix"])
            self.assertEqual(tree(os.path.dirname(self.copy)), {"Vantorelix_plugin.py": "plugin 2"})
        for module, name, count in self.each_step(self.prepare_with_copy):
            self.kill_at(module, name, count)
            self.assertEqual(self.installer.uninstall(self.modules), [])
            self.assertEqual(os.listdir(self.modules), [])
            self.assertEqual(os.listdir(os.path.dirname(self.copy)), [])

    def test_checking_tells_of_an_interruption(self):
        self.install()
        self.assertEqual(self.kill_at("os", "rename", 2), 9)
        self.assertRaisesRegex(self.installer.InstallError, "not installed in .* left over from an interrupted installation",
                               self.installer.verify, self.modules)


class Removing(InstallerTest):
    def test_everything_goes_and_the_rest_stays(self):
        write(os.path.join(self.modules, "Other.mod"), "theirs")
        self.install()
        self.assertEqual(self.installer.uninstall(self.modules), [])
        self.assertEqual(tree(self.modules), {"Other.mod": "theirs"})

    def test_what_cannot_be_deleted_is_named_and_maya_does_not_look_into_it(self):
        self.install()
        with mock.patch.object(self.installer.shutil, "rmtree", side_effect=OSError(39, "Directory not empty")):
            told, = self.installer.uninstall(self.modules)
        rubbish, = os.listdir(self.modules)
        self.assertIn(os.path.join(self.modules, rubbish), told)
        self.assertIsNone(self.installer.uninstall(self.modules))
        self.assertEqual(os.listdir(self.modules), [])

    def test_nothing_installed_is_told(self):
        self.assertIsNone(self.installer.uninstall(self.modules))


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

    def test_an_error_of_the_system_names_the_file_and_what_to_check(self):
        write(self.modules, "a file where the folder of modules should be")
        told = self.drop("Install")[-1].replace(os.sep, "/")  # Maya's own paths have slashes, on Windows, too
        self.assertRegex(told, re.escape(self.modules.replace(os.sep, "/")) + ".*: .*[Cc]heck that you may write there")


class CommandLine(InstallerTest):
    def test_installs_verifies_and_uninstalls(self):
        self.assertEqual(self.run_installer(self.modules), (0, "Installed.", ""))
        self.assertEqual(self.run_installer("--verify", self.modules), (0, "12 files are as they should be.", ""))
        self.assertEqual(self.run_installer("--uninstall", self.modules), (0, "Removed.", ""))
        self.assertEqual(self.run_installer("--uninstall", self.modules), (0, "Vantorelix was not installed.", ""))
        code, _, told = self.run_installer("--verify", self.modules)
        self.assertEqual(code, 1)
        self.assertIn("not installed", told)

    def test_quiet_is_silent_about_what_went_well_only(self):
        self.assertEqual(self.run_installer("--quiet", self.modules), (0, "", ""))
        self.assertEqual(self.run_installer("--quiet", "--verify", self.modules), (0, "", ""))
        copy = self.copy_of_plugin("2025", "changed")
        code, said, told = self.run_installer("--quiet", self.modules)
        self.assertEqual((code, said), (0, ""))
        self.assertIn(copy + " was left", told)
        code, said, told = self.run_installer("--quiet", "--verify", self.modules)
        self.assertEqual((code, said), (1, ""))
        self.assertIn(copy, told)

    def test_an_old_version_that_cannot_be_deleted_is_told_on_standard_error_and_is_no_failure(self):
        self.install()
        self.installer.__file__ = os.path.join(self.make_package("2"), "install_vantorelix.py")
        undeletable = mock.patch.object(self.installer.shutil, "rmtree", side_effect=OSError(39, "Directory not empty"))
        with undeletable, mock.patch("sys.stdout", io.StringIO()) as said, mock.patch("sys.stderr", io.StringIO()) as told:
            self.installer.main([self.modules])
        self.assertEqual(said.getvalue(), "Installed.\n")
        self.assertRegex(told.getvalue(), r"\.vantorelix-rubbish-\S+ is not needed any more but could not be deleted")
        self.assertEqual(self.engine(), "engine 2")

    def test_a_failure_and_wrong_arguments_have_exit_codes_of_their_own(self):
        write(os.path.join(self.package, PLUGIN), "changed")
        code, _, told = self.run_installer(self.modules)
        self.assertEqual(code, 1)
        self.assertIn("Vantorelix_plugin.py is damaged", told)
        self.assertEqual(self.run_installer()[0], 2)
        self.assertEqual(self.run_installer("--uninstall", "--verify", self.modules)[0], 2)


class RealFiles(RealPackageTest):
    """What an animator meets, in an interpreter of its own."""

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

    def test_an_animator_s_first_trail_loads_the_plugin_from_the_installation(self):
        self.install()
        maya = self.maya
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
        self.assertEqual(self.installer.uninstall(self.modules), [])
        self.assertFalse(os.path.exists(plugin))


class Description(unittest.TestCase):
    """The file that tells Maya which folder is for which of its versions."""

    def test_each_maya_gets_the_interpreter_that_it_embeds(self):
        lines = read(os.path.join(PACKAGE, "Vantorelix.mod")).splitlines()
        found = {}
        for line in lines:
            head = re.match(r"\+ MAYAVERSION:(\d+) PLATFORM:(\w+) Vantorelix (\S+) \./vantorelix/contents$", line)
            path = re.match(r"PYTHONPATH\+:=(\w+)/python-(3\.\d+)$", line)
            if head:
                version, system = head.group(1), head.group(2)
                self.assertIn("VERSION {0} ".format(head.group(3)), read(os.path.join(CHECKOUT, "CMakeLists.txt")))
            elif path:
                found.setdefault((system, path.group(1)), {})[version] = path.group(2)
            else:
                self.assertTrue(not line or line.startswith("//"), line)
        pythons = {"2022": "3.7", "2023": "3.9", "2024": "3.10", "2025": "3.11", "2026": "3.11", "2027": "3.13"}
        self.assertEqual(found, {("linux", "linux"): pythons, ("win64", "windows"): pythons})


if __name__ == "__main__":
    unittest.main()
