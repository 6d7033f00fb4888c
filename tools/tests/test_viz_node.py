"""The tables of the node plug-in become C++, and a plug-in without them is refused."""

import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import viz_node  # noqa: E402

PLUGIN = """import maya.api.OpenMaya as om
NODE_ID = om.MTypeId(7)
FIRST, LAST = range(2)
ARRAYS = {"points": "p"}
DOUBLES = {"width": ("w", 2.5, (0.0, 20.0))}
SWITCHES = {"on": ("o", True, None)}
INTEGERS = {"mode": ("m", LAST, (FIRST, LAST))}
"""


class VizNode(unittest.TestCase):
    def test_every_table_stands_in_the_source_with_its_defaults(self):
        source = viz_node.cpp(viz_node.tables(PLUGIN, "plugin.py"))
        for line in ('"points",', '{"width", 2.5},', '{"on", true},', '{"mode", 1},'):
            self.assertIn("      " + line + "\n", source)

    def test_a_plugin_without_a_table_is_refused_by_name(self):
        with self.assertRaisesRegex(ValueError, "plugin.py: the table SWITCHES is missing"):
            viz_node.tables(PLUGIN.replace("SWITCHES", "TOGGLES"), "plugin.py")


if __name__ == "__main__":
    unittest.main()
