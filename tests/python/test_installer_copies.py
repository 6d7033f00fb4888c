"""What the installer does with copies of Vantorelix that Maya would find elsewhere: replaced, removed, left and told."""

import os
import shutil
import unittest
from unittest import mock

from installer_case import PLUGIN, InstallerTest, read, write


class StagedCopies(InstallerTest):
    """The engine copies the plug-in into the plug-ins folder of each version of Maya."""

    def test_an_upgrade_replaces_them(self):
        self.install()
        copies = [self.copy_of_plugin(version, "plugin 1") for version in ("2022", "2025")]
        self.assertEqual(self.install(self.make_package("2")), [])
        self.assertEqual([read(copy) for copy in copies], ["plugin 2"] * 2)
        self.assertEqual([os.listdir(os.path.dirname(copy)) for copy in copies], [["Vantorelix_plugin.py"]] * 2)

    def test_where_there_was_none_none_is_made(self):
        os.makedirs(os.path.join(self.maya, "2025", "plug-ins"))
        self.install()
        self.assertEqual(os.listdir(os.path.join(self.maya, "2025", "plug-ins")), [])

    def test_one_that_is_right_already_is_no_news(self):
        copy = self.copy_of_plugin("2025", "plugin 1")
        self.assertEqual(self.install(), [])
        self.assertEqual(read(copy), "plugin 1")

    def test_one_of_two_versions_ago_is_known_still(self):
        self.install()
        really_replace = os.replace
        with mock.patch.object(self.installer.os, "replace") as replace:
            copy = self.copy_of_plugin("2025", "plugin 1")
            replace.side_effect = lambda source, target: fail() if target == copy else really_replace(source, target)
            told, = self.install(self.make_package("2"))
        self.assertIn(copy + " was left: Permission denied.", told)
        self.assertEqual(os.listdir(os.path.dirname(copy)), ["Vantorelix_plugin.py"])
        self.assertEqual(self.install(self.make_package("3")), [])
        self.assertEqual(read(copy), "plugin 3")

    def test_one_that_somebody_has_changed_is_left_and_told(self):
        self.install()
        copy = self.copy_of_plugin("2025", "plugin 1, and a line of mine")
        for told in self.install(self.make_package("2")), self.installer.uninstall(self.modules):
            self.assertEqual(len(told), 1)
            self.assertIn(copy + " was left", told[0])
            self.assertIn("somebody may have changed it", told[0])
        self.assertEqual(read(copy), "plugin 1, and a line of mine")

    def test_removal_takes_them_along(self):
        self.install()
        self.install(self.make_package("2"))
        copies = [self.copy_of_plugin("2022", "plugin 1"), self.copy_of_plugin("2025", "plugin 2")]
        self.assertEqual(self.installer.uninstall(self.modules), [])
        self.assertEqual([os.path.exists(copy) for copy in copies], [False, False])

    def test_an_installation_for_others_minds_the_copies_in_the_installer_s_own_folder_of_maya(self):
        server = os.path.join(self.folder, "server", "modules")
        copy = self.copy_of_plugin("2025", "plugin 1")
        self.installer.install(self.package, server)
        self.installer.install(self.make_package("2"), server)
        self.assertEqual(read(copy), "plugin 2")


def fail():
    raise OSError(13, "Permission denied")


class Checking(InstallerTest):
    def setUp(self):
        super(Checking, self).setUp()
        self.install()

    def problems(self):
        """The lines of what is wrong."""
        try:
            self.installer.verify(self.modules)
        except self.installer.InstallError as error:
            return str(error).splitlines()
        return []

    def assert_found(self, path, words):
        lines = [line for line in self.problems() if line.startswith(path + " ")]
        self.assertEqual(len(lines), 1, self.problems())
        self.assertIn(words, lines[0])

    def test_a_whole_installation_passes(self):
        self.assertEqual(self.problems(), [])
        self.assertEqual(self.installer.verify(self.modules), 12)

    def test_every_damaged_file_is_named_with_the_remedy(self):
        for name in (PLUGIN, "contents/linux/python-3.7/_vantorelix.so"):
            write(os.path.join(self.installed, name), "changed")
        os.remove(os.path.join(self.installed, "Vantorelix.mod"))
        self.assert_found(os.path.join(self.installed, PLUGIN), "is damaged")
        self.assert_found(os.path.join(self.installed, "contents/linux/python-3.7/_vantorelix.so"), "is damaged")
        self.assert_found(os.path.join(self.installed, "Vantorelix.mod"), "cannot be read")
        self.assertEqual(self.problems()[-1], "Install Vantorelix again.")

    def test_the_plugin_beside_the_engine_is_checked(self):
        path = os.path.join(self.installed, "contents/linux/python-3.11/Vantorelix_plugin.py")
        write(path, "changed")
        self.assert_found(path, "is damaged")

    def test_the_description_is_checked(self):
        path = os.path.join(self.modules, "Vantorelix.mod")
        write(path, "+ MAYAVERSION:2022 PLATFORM:linux Vantorelix 1.0 ./elsewhere")
        self.assert_found(path, "is damaged")
        os.remove(path)
        self.assert_found(path, "cannot be read")

    def test_another_file_that_names_the_module_is_found_whatever_its_name(self):
        description = read(os.path.join(self.modules, "Vantorelix.mod"))
        elsewhere = os.path.join(self.folder, "elsewhere")
        os.environ["MAYA_MODULE_PATH"] = os.pathsep.join(["", elsewhere])
        for path in (os.path.join(self.modules, "Vantorelix.mod.bak"), os.path.join(self.modules, ".Vantorelix.mod"),
                     os.path.join(self.maya, "2025", "modules", "x"), os.path.join(elsewhere, "y.mod")):
            write(path, description)
            self.assert_found(path, "also names the module Vantorelix")
            self.assertEqual([line for line in self.install() if line.startswith(path + " ")],
                             [line for line in self.problems() if line.startswith(path + " ")])
            os.remove(path)
        for line in ("+ Vantorelix 1.4.0 /x", "+ LOCALE:en_US MAYAVERSION:2022 Vantorelix 1 /x"):
            self.assert_found(write(os.path.join(self.modules, "other"), line), "names the module")

    def test_other_modules_are_left_alone(self):
        for line in ("+ Other 1.0 /x", "// + Vantorelix 1.0 /x", "+ MAYAVERSION:2022 VantorelixTools 1.0 /x",
                     "PATH+:=Vantorelix 1"):
            write(os.path.join(self.modules, "other.mod"), line)
            self.assertEqual(self.problems(), [], line)

    def test_a_folder_of_modules_may_have_any_name(self):
        self.installer.uninstall(self.modules)
        modules = os.path.join(self.folder, "server", "ours [new]")
        self.installer.install(self.package, modules)
        self.installer.verify(modules)
        shutil.copy(os.path.join(modules, "Vantorelix.mod"), os.path.join(modules, "Vantorelix.old"))
        self.assertRaisesRegex(self.installer.InstallError, "Vantorelix.old also names", self.installer.verify, modules)

    def test_a_copy_where_maya_finds_plugins_and_scripts_must_be_the_installed_one(self):
        paths = [os.path.join(self.maya, "2025", "plug-ins", "Vantorelix_plugin.py"),
                 os.path.join(self.maya, "scripts", "Vantorelix_engine.py"),
                 os.path.join(self.maya, "2022", "scripts", "Vantorelix_engine.py"),
                 os.path.join(self.maya, "2022", "prefs", "scripts", "Vantorelix_engine.py")]
        for variable in ("MAYA_PLUG_IN_PATH", "MAYA_SCRIPT_PATH", "PYTHONPATH"):
            os.environ[variable] = os.path.join(self.folder, variable)
            paths.append(os.path.join(os.environ[variable], "Vantorelix_plugin.py"))
        for path in paths:
            write(path, "another")
            self.assert_found(path, "differs from the installed file")
            write(path, "engine 1" if "engine" in path else "plugin 1")
        self.assertEqual(self.problems(), [])
        self.assertEqual(self.installer.verify(self.modules), 12 + len(paths))

    def test_what_is_installed_is_no_copy_of_itself(self):
        os.environ["PYTHONPATH"] = os.path.join(self.installed, "contents", "linux", "python-3.7")
        write(os.path.join(self.installed, "contents/linux/python-3.7/Vantorelix_plugin.py"), "changed")
        self.assertEqual(len(self.problems()), 2)


if __name__ == "__main__":
    unittest.main()
