"""What the tests of the Python module share.

    VANTORELIX_MODULE=build/module-3.11 VANTORELIX_HOST=build/standalone-python \\
        python3 -m unittest discover tests/python

VANTORELIX_MODULE is the folder of the module for the interpreter that runs the tests; VANTORELIX_HOST that of the
package `maya` over the standalone host, for the tests that need a real scene.
"""

import importlib
import os
import sys
import unittest

from recording_maya import Maya

MODULE = os.path.abspath(os.environ.get("VANTORELIX_MODULE", ""))


def import_engine():
    """The engine, started anew on the `maya` that is there now."""
    if MODULE not in sys.path:
        sys.path.insert(0, MODULE)
    sys.modules.pop("Vantorelix_engine", None)
    return importlib.import_module("Vantorelix_engine")


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ, "VANTORELIX_MODULE names no folder")
class EngineTest(unittest.TestCase):
    """A fresh engine on a fresh recording stand-in, with one selected object that moves."""

    def setUp(self):
        self.maya = Maya()
        self.engine = import_engine()
        self.engine.time = self.maya.clock()
        self.printed = []
        self.engine._set_msg_handler(self.printed.append)
        stdout, sys.stdout = sys.stdout, open(os.devnull, "w")
        self.addCleanup(self.restore, stdout)

    def restore(self, stdout):
        sys.stdout.close()
        sys.stdout = stdout

    def make_trail(self):
        self.engine.create_trail()
        self.maya.taken()

    def edit(self):
        """An edit of the animation, as Maya tells it, and the quiet after it."""
        self.maya.send("addAnimCurveEditedCallback")
        self.maya.now += 1.0

    def run_queue(self):
        while self.maya.run_deferred():
            pass

    def points(self, name="ball"):
        return self.maya.shape(name)["points"]
