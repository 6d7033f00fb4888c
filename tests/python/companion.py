"""What the tests of the files beside the engine share: the real engine on the standalone host's package `maya`."""

import contextlib
import glob
import importlib
import io
import os
import sys
import tempfile
import unittest

from support import import_engine

CHECKOUT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
COMPANION = os.path.join(CHECKOUT, "maya", "companion")
PLUGIN = os.path.join(COMPANION, "Vantorelix_plugin.py")
_host_modules = {}


def use_host():
    """Makes `maya` the package of VANTORELIX_HOST, whatever another test has put under that name."""
    for name in [name for name in sys.modules if name == "maya" or name.startswith("maya.")]:
        del sys.modules[name]
    sys.modules.update(_host_modules)
    folder = os.path.abspath(os.environ["VANTORELIX_HOST"])
    if folder not in sys.path:
        sys.path.insert(0, folder)
    import maya._ui, maya.api.OpenMaya, maya.api.OpenMayaAnim, maya.api.OpenMayaRender, maya.cmds, maya.host  # noqa
    _host_modules.update((name, module) for name, module in sys.modules.items() if name.startswith("maya"))
    return maya


def load_companion(name):
    """A file beside the engine, loaded anew with those that it imports, and not left where the engine would find it."""
    for path in glob.glob(os.path.join(COMPANION, "*.py")):
        sys.modules.pop(os.path.splitext(os.path.basename(path))[0], None)
    sys.path.insert(0, COMPANION)
    try:
        return importlib.import_module(name)
    finally:
        sys.path.remove(COMPANION)
        sys.modules.pop(name, None)


@unittest.skipUnless("VANTORELIX_HOST" in os.environ, "VANTORELIX_HOST names no folder")
class HostTest(unittest.TestCase):
    """A fresh host with an empty scene."""

    ARM = os.path.join(CHECKOUT, "examples", "arm.ma")

    def setUp(self):
        self.maya = use_host()
        self.host, self.cmds, self.utils = self.maya.host, self.maya.cmds, __import__("maya.utils").utils
        self.om, self.oma = self.maya.api.OpenMaya, self.maya.api.OpenMayaAnim
        self.host.restart()

    def open_arm(self):
        with contextlib.redirect_stderr(io.StringIO()):
            self.cmds.file(self.ARM, open=True, force=True)

    def ball(self):
        """A transform that moves from 0 to 10 in x over frames 1 to 11."""
        self.cmds.createNode("transform", name="ball")
        for frame, value in ((1, 0.0), (11, 10.0)):
            self.cmds.setKeyframe("ball", at="tx", t=frame, v=value, itt="linear", ott="linear")

    def plug(self, node, attribute):
        node = self.om.MSelectionList().add(node).getDependNode(0)
        return self.om.MFnDependencyNode(node).findPlug(attribute, False)

    def raises(self, kind, text, function, *args, **kwargs):
        with self.assertRaises(kind) as caught:
            function(*args, **kwargs)
        self.assertIn(text, str(caught.exception))


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ and "VANTORELIX_HOST" in os.environ,
                     "VANTORELIX_MODULE and VANTORELIX_HOST name no folders")
class CompanionTest(unittest.TestCase):
    """A fresh host with an empty scene, and a fresh engine on it. What the engine tells the user is in `told`."""

    batch = False

    def setUp(self):
        self.maya = use_host()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.host, self.cmds, self.ui = self.maya.host, self.maya.cmds, self.maya._ui
        self.host.restart(batch=self.batch, plugin_loaded=False, user_app_dir=folder.name)
        self.render, plugins = self.maya.api.OpenMayaRender, self.maya.api._plugin
        for kept in (plugins.node_types, plugins.twins, self.render.MDrawRegistry.creators,
                     self.render.MRenderer.dirty):
            kept.clear()
        self.plugins = plugins
        self.ui.reset()
        self.addCleanup(self.ui.reset)
        self.engine = import_engine()
        self.told = []
        self.engine._set_msg_handler(self.told.append)
        for name in ("stdout", "stderr"):
            self.silence(name)

    def silence(self, name):
        before, quiet = getattr(sys, name), open(os.devnull, "w")
        setattr(sys, name, quiet)
        self.addCleanup(quiet.close)
        self.addCleanup(setattr, sys, name, before)
