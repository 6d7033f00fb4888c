"""docs/python.md says what is so."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

from companion import CHECKOUT, HostTest


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ, "VANTORELIX_MODULE names no folder")
class ScriptsPage(HostTest):
    def setUp(self):
        super(ScriptsPage, self).setUp()
        with open(os.path.join(CHECKOUT, "docs", "python.md"), encoding="utf-8") as file:
            self.page = file.read()

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


if __name__ == "__main__":
    unittest.main()
