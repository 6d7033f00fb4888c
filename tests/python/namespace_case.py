"""What the tests of namespaces share."""

import contextlib
import io
import os
import re
import tempfile

from companion import HostTest


def in_namespace(scene, name):
    """The text of a scene file with its nodes in a namespace, as a file has them into which a rig was imported."""
    return "".join(re.sub(r'"(\w)', r'"%s:\1' % name, line)
                   if line.startswith(("createNode", "connectAttr")) and "script" not in line else line
                   for line in scene.splitlines(True))


class NamespaceTest(HostTest):
    def setUp(self):
        super(NamespaceTest, self).setUp()
        self.shown = io.StringIO()
        shown = contextlib.redirect_stderr(self.shown)
        shown.__enter__()
        self.addCleanup(shown.__exit__, None, None, None)

    def open_arms(self, *namespaces):
        """A scene with an arm in each namespace."""
        with open(self.ARM) as file:
            scene = file.read()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "rigs.ma")
        with open(path, "w") as file:
            file.writelines(in_namespace(scene, name) if name else scene for name in namespaces)
        self.cmds.file(path, open=True, force=True)

    def all_namespaces(self):
        return self.cmds.namespaceInfo(":", listOnlyNamespaces=True, recurse=True) or []

    def make(self, *namespaces):
        for name in namespaces:
            self.cmds.namespace(add=":" + name)

    def current(self):
        return self.cmds.namespaceInfo(currentNamespace=True)
