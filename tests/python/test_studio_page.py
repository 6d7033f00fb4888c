"""docs/studio.md says what is so: its snippets do what the page promises."""

import os
import re
import shutil
import subprocess
import sys
import unittest
from unittest import mock

from companion import PLUGIN, CompanionTest
from installer_case import CHECKOUT, InstallerTest, RealPackageTest, write


def snippet(kind, heading):
    """The first block of code of a kind under a heading."""
    with open(os.path.join(CHECKOUT, "docs", "studio.md"), encoding="utf-8") as file:
        section = re.search(r"^## %s\n(.*?)(?=^## |\Z)" % re.escape(heading), file.read(), re.DOTALL | re.MULTILINE)
    return re.search(r"^```%s\n(.*?)^```" % kind, section.group(1), re.DOTALL | re.MULTILINE).group(1)


@unittest.skipIf(os.name == "nt", "what the page shows there is a shell's")
class Server(InstallerTest):
    def run_snippet(self):
        """(exit code, everything said)."""
        modules = os.path.join(self.folder, "server", "modules")
        script = snippet("sh", "One installation for all").replace("/server/maya/modules", modules)
        script = script.replace("python3", sys.executable)
        done = subprocess.run(["sh", "-c", script], cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              universal_newlines=True)
        return done.returncode, done.stdout

    def test_it_installs_and_checks_without_a_word(self):
        self.assertEqual(self.run_snippet(), (0, ""))
        self.assertEqual(sorted(os.listdir(os.path.join(self.folder, "server", "modules"))),
                         ["Vantorelix.mod", "vantorelix"])

    def test_a_damaged_package_and_a_stray_copy_fail_it(self):
        self.copy_of_plugin("2025", "changed")
        code, said = self.run_snippet()
        self.assertEqual(code, 1)
        self.assertIn("Vantorelix_plugin.py was left", said)
        write(os.path.join(self.package, "Vantorelix.mod"), "changed")
        shutil.rmtree(os.path.join(self.folder, "server"))
        code, said = self.run_snippet()
        self.assertEqual(code, 1)
        self.assertIn("Vantorelix.mod is damaged", said)
        self.assertFalse(os.path.exists(os.path.join(self.folder, "server")))


class Starting(RealPackageTest):
    SESSION = """
import sys
from maya import cmds, host, _ui, utils
host.restart(plugin_loaded=False, batch=%r, user_app_dir=sys.argv[1])
_ui.reset()
exec(sys.argv[2])
utils.processIdleEvents()
print(len([control for control in _ui.controls.values() if control.kind == "shelfButton"]))
if cmds.pluginInfo("Vantorelix_plugin", query=True, loaded=True):
    print(cmds.pluginInfo("Vantorelix_plugin", query=True, path=True))
    import Vantorelix_engine
    ball = cmds.createNode("transform", name="ball")
    cmds.select(ball)
    Vantorelix_engine.create_trail()
    print(len(cmds.ls(type="vantorelix")), cmds.optionVar(exists="SafeModeAllowedlistPaths"))
"""

    def run_session(self, batch):
        folder = os.path.join(self.installed, "contents", self.PYTHON)
        paths = [folder, os.path.abspath(os.environ["VANTORELIX_HOST"])]
        done = subprocess.run([sys.executable, "-c", self.SESSION % batch, self.maya + "/",
                               snippet("python", "When Maya starts")], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True, env=dict(os.environ, PYTHONPATH=os.pathsep.join(paths)))
        self.assertEqual(done.returncode, 0, done.stderr)
        return [line for line in done.stdout.splitlines() if not line.startswith("[")]

    def test_the_button_is_there_and_the_engine_copies_nothing_and_allows_nothing(self):
        self.install()
        with mock.patch.dict(os.environ, MAYA_PLUG_IN_PATH=os.path.dirname(self.copy_of_plugin("2022", "stale"))):
            buttons, plugin, made = self.run_session(batch=False)
        self.assertEqual(buttons, "1")
        self.assertTrue(plugin.startswith(os.path.join(self.installed, "contents") + os.sep), plugin)
        self.assertIn(made, ("1 False", "1 0"))
        self.assertEqual(sorted(os.listdir(self.maya)), ["2022", "modules"])

    def test_in_batch_nothing_is_loaded(self):
        self.install()
        self.assertEqual(self.run_session(batch=True), ["0"])


class Stripping(CompanionTest):
    def strip(self):
        exec(snippet("python", "Stripping trails before publishing"), {})

    def make_trails(self):
        for name in ("ball", "cube"):
            self.cmds.createNode("transform", name=name)
        self.cmds.select(["ball", "cube"])
        self.cmds.loadPlugin(PLUGIN)
        self.engine.create_trail()

    def test_every_trail_goes_and_the_rest_stays(self):
        self.make_trails()
        self.cmds.parent(self.cmds.ls(type="vantorelix", long=True)[0].split("|")[-2], world=True)
        self.assertEqual(len(self.cmds.ls(type="vantorelix")), 2)
        others = set(self.cmds.ls(long=True)) - {node for node in self.cmds.ls(long=True) if "vlx_" in node}
        self.strip()
        self.assertEqual(self.cmds.ls(type="vantorelix") or [], [])
        self.assertEqual(set(self.cmds.ls(long=True)), others - {"|vantorelixs_grp"})

    def test_a_scene_without_trails_stays_as_it_is(self):
        self.cmds.createNode("transform", name="ball")
        before = self.cmds.ls(long=True)
        self.strip()
        self.assertEqual(self.cmds.ls(long=True), before)


if __name__ == "__main__":
    unittest.main()
