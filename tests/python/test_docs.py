"""docs/scripts.md and docs/maya.md say what is so."""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

from companion import CHECKOUT, COMPANION, PLUGIN, HostTest
from menu_support import MenuTest


def read_page(name):
    with open(os.path.join(CHECKOUT, "docs", name), encoding="utf-8") as file:
        return file.read()


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ, "VANTORELIX_MODULE names no folder")
class ScriptsPage(HostTest):
    def setUp(self):
        super(ScriptsPage, self).setUp()
        self.page = read_page("scripts.md")

    def block(self, kind):
        return re.search(r"^```%s\n(.*?)^```" % kind, self.page, re.DOTALL | re.MULTILINE).group(1)

    def test_its_script_prints_what_it_says(self):
        path = [os.environ["VANTORELIX_HOST"], os.environ["VANTORELIX_MODULE"]]
        environment = dict(os.environ, PYTHONPATH=os.pathsep.join(map(os.path.abspath, path)))
        with tempfile.TemporaryDirectory() as folder:
            script = os.path.join(folder, "script.py")
            with open(script, "w") as file:
                file.write(self.block("python"))
            shown = subprocess.check_output([sys.executable, "-m", "vantorelix_scene", self.ARM, script],
                                            env=environment, universal_newlines=True)
        self.assertEqual(shown, re.search(r"\nprints\n\n```\n(.*?)^```", self.page, re.DOTALL | re.MULTILINE).group(1))

    def test_it_names_the_commands_that_are_covered(self):
        rows = re.findall(r"^\| [a-z, ]+ \| (`.*`) \|$", self.page, re.MULTILINE)
        named = re.findall(r"`(\w+)`", " ".join(rows))
        self.assertEqual(sorted(named), sorted(name for name in vars(self.cmds)
                                               if not name.startswith("_") and callable(getattr(self.cmds, name))))


class MayaPage(MenuTest):
    """What docs/maya.md tells the animator to type, and the tables of what there is."""

    def setUp(self):
        super(MayaPage, self).setUp()
        self.page = read_page("maya.md")

    def blocks(self, word):
        blocks = re.findall(r"^```python\n(.*?)^```", self.page, re.DOTALL | re.MULTILINE)
        return [text for text in blocks if word in text]

    def run_block(self, word):
        (text,) = self.blocks(word)
        exec(text, {})

    def rows(self, heading):
        """The rows of the table below a heading, without the first two."""
        text = self.page.split("\n%s\n" % heading)[1].split("\n#")[0]
        return [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines()
                if line.startswith("|")][2:]

    def test_its_snippets_run_and_do_what_they_are_for(self):
        self.addCleanup(sys.modules.pop, "Vantorelix")
        sys.modules["Vantorelix"] = self.menu
        self.run_block("add_shelf_button()")
        self.assertEqual([c.parent for c in self.ui.controls.values() if c.kind == "shelfButton"], ["Animation"])
        self.menu.bind_gestures()
        self.run_block("remove_shelf_button()")
        self.assertEqual([c.name for c in self.ui.controls.values() if c.kind in ("shelfButton", "popupMenu")], [])
        self.cmds.loadPlugin(PLUGIN)
        self.cmds.createNode("transform", name="ball")
        for frame in (1, 11):
            self.cmds.setKeyframe("ball", at="tx", t=frame, v=frame)
        self.cmds.select("ball")
        self.run_block("create_trail(")
        self.assertEqual(self.told, ["Trail built for 1 object(s).", "Ghost OFF on 1 trail(s)", "All trails cleared."])
        self.assertEqual(len(self.blocks("")), 4)

    def test_the_line_for_user_setup_makes_the_commands_for_hotkeys(self):
        self.ui.hotkeys.clear()
        with mock.patch.dict(sys.modules), mock.patch.object(sys, "path", [COMPANION] + sys.path):
            self.run_block("executeDeferred")
            self.assertEqual(self.ui.hotkeys, {})
            self.deferred()
        self.assertIn("VantorelixMenu", self.ui.hotkeys)

    def test_the_menu_and_the_hotkeys_are_those_in_its_table(self):
        self.cmds.pluginDisplayFilter(self.part("menu").FILTER, register=True, label="", classification="")
        rows = self.rows("### The menu")
        self.assertEqual([row[0] for row in rows], [entry.label for entry in self.part("menu").entries()])
        self.assertEqual(sorted([row[2].strip("`") for row in rows if row[2]] + ["VantorelixMenu"]), sorted(self.ui.hotkeys))

    def test_the_options_are_those_in_its_table(self):
        labels = [label.partition(" (")[0] for _, label, _ in self.part("options").PREFERENCES]
        self.assertEqual(", ".join(row[0] for row in self.rows("### Options")), ", ".join(labels))

    def test_its_pictures_are_there(self):
        pictures = re.findall(r"!\[[^]]+\]\(([^)]+)\)", self.page)
        self.assertEqual(len(pictures), 4)
        for picture in pictures:
            self.assertTrue(os.path.isfile(os.path.join(CHECKOUT, "docs", picture)), picture)


if __name__ == "__main__":
    unittest.main()
