"""What the tests of the node plug-in share: a trail on the standalone host, and a viewport that records."""

import contextlib
from array import array
from unittest import mock

from companion import PLUGIN, CompanionTest

POINTS = [(0.0, 1.0, 2.0), (3.0, -1.0, 0.0), (4.0, 0.0, -5.0), (4.5, 0.5, 1.0), (6.0, 2.0, 0.0)]
COLORS = [(0.1, 0.2, 0.3), (0.4, 0.5, 0.6), (0.7, 0.8, 0.9), (1.0, 0.0, 0.5), (0.0, 1.0, 0.25)]
KEY_TIMES = [11.0, 13.0]
STANDARD, SPACING, FLOW, BEATS = range(4)
PLAIN = (0.15, 0.75, 0.65)


def single(colors):
    """As Maya keeps colors, in single precision."""
    return [tuple(array("f", color)) for color in colors]


class PluginTest(CompanionTest):
    def setUp(self):
        super(PluginTest, self).setUp()
        self.warned = []
        patch = mock.patch.object(self.maya.api.OpenMaya.MGlobal, "displayWarning", staticmethod(self.warned.append))
        patch.start()
        self.addCleanup(patch.stop)
        self.cmds.loadPlugin(PLUGIN)
        self.addCleanup(self.host.restart)
        self.plugin = self.host.plugins["Vantorelix_plugin"][1]
        self.viewport = self.render.Viewport()

    def make_node(self, mode=STANDARD, name="trailShape"):
        self.cmds.createNode("vantorelix", name=name)
        self.put(name, points=POINTS, colors=COLORS, keyPoints=POINTS[1:3], keyColors=[(1.0, 1.0, 1.0)] * 2,
                 keyTimes=[(time, 0.0, 0.0) for time in KEY_TIMES])
        for attribute, value in (("startFrame", 10.0), ("frameStep", 1.0), ("lineWidth", 2.5), ("pointSize", 6.0),
                                 ("showLine", True), ("showDots", True), ("xrayMode", False), ("colorMode", mode)):
            self.cmds.setAttr(name + "." + attribute, value)
        return name

    def put(self, name, **arrays):
        for attribute, values in arrays.items():
            self.engine._set_vector_array_attr(name, attribute, values)

    def set(self, **values):
        for attribute, value in values.items():
            self.cmds.setAttr("trailShape." + attribute, value)

    def drawn(self, name="trailShape"):
        return self.viewport.refresh()[name]

    @contextlib.contextmanager
    def untold(self):
        """As under the evaluation manager: the node is not told when its attributes change."""
        with mock.patch.object(self.plugins._Twin, "tell_changes"):
            yield

    def node(self):
        """The Python object of the first trail."""
        self.plugins.catch_up()
        return self.plugins.twins[0].node

    def names(self):
        return [call[0] for call in self.drawn()]

    def colors(self):
        """Of the line."""
        meshes = [arguments for call, arguments in self.drawn() if call == "mesh"]
        return [(color.r, color.g, color.b) for color in meshes[0][3]]
