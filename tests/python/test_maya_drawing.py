"""What the package `maya` has for plug-ins that draw: the Show menus of the viewports."""

import unittest

from companion import HostTest


class ShowMenus(HostTest):
    def test_a_display_filter_is_there_until_it_is_deregistered_as_often_as_it_was_registered(self):
        filters = self.cmds.pluginDisplayFilter
        for _ in range(2):
            filters("mine", register=True, label="My nodes", classification="drawdb/geometry/mine")
        self.assertEqual((filters(q=True, lf=True), filters("mine", q=True, l=True)), (["mine"], "My nodes"))
        self.assertEqual(filters("mine", query=True, classification=True), "drawdb/geometry/mine")
        filters("mine", dr=True)
        self.assertTrue(filters(ex="mine"))
        filters("mine", deregister=True)
        self.assertFalse(filters(exists="mine"))
        self.raises(RuntimeError, "not registered", filters, "mine", deregister=True)

    def test_each_panel_shows_a_filter_and_locators_until_it_is_told_not_to(self):
        self.cmds.pluginDisplayFilter("mine", register=True)
        first, other = self.cmds.getPanel(type="modelPanel")[:2]
        for panel in (first, other):
            self.assertTrue(self.cmds.modelEditor(panel, q=True, queryPluginObjects="mine"))
            self.assertTrue(self.cmds.modelEditor(panel, q=True, locators=True))
        self.cmds.modelEditor(first, e=True, pluginObjects=("mine", False))
        self.cmds.modelEditor(first, e=True, lc=False)
        self.assertEqual([self.cmds.modelEditor(panel, q=True, qpo="mine") for panel in (first, other)], [False, True])
        self.assertEqual([self.cmds.modelEditor(panel, q=True, lc=True) for panel in (first, other)], [False, True])
        self.cmds.modelEditor(first, e=True, po=("mine", True))
        self.assertTrue(self.cmds.modelEditor(first, q=True, qpo="mine"))

    def test_what_nobody_registered_is_refused_and_so_is_batch_mode(self):
        panel = self.cmds.getPanel(type="modelPanel")[0]
        self.raises(RuntimeError, "not registered", self.cmds.modelEditor, panel, q=True, queryPluginObjects="no")
        self.raises(RuntimeError, "not registered", self.cmds.modelEditor, panel, e=True, pluginObjects=("no", True))
        self.raises(RuntimeError, "not found", self.cmds.modelEditor, "nowhere", e=True, locators=True)
        self.raises(RuntimeError, "not covered", self.cmds.modelEditor, panel, e=True)
        self.host.restart(batch=True)
        self.raises(RuntimeError, "batch", self.cmds.pluginDisplayFilter, "mine", register=True)


if __name__ == "__main__":
    unittest.main()
