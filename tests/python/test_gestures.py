"""The gestures with the mouse, and the marking menu of each viewport."""

import unittest
from unittest import mock

from menu_support import CTRL, MODES, SHIFT, MenuTest


class Gestures(MenuTest):
    def state(self):
        return (self.ui.state["tool"], sorted(self.ui.controls))

    def test_unbinding_restores_what_was_there(self):
        for tool in ("moveSuperContext", "selectSuperContext"):
            self.cmds.setToolTo(tool)
            before = self.state()
            self.menu.bind_gestures()
            self.menu.bind_gestures()
            self.assertEqual(self.cmds.currentCtx(), self.part("gestures").CONTEXT)
            self.menu.unbind_gestures()
            self.assertEqual(self.state(), before)
            self.menu.unbind_gestures()
            self.assertEqual(self.state(), before)

    def test_a_tool_that_was_taken_meanwhile_stays(self):
        self.menu.bind_gestures()
        self.cmds.setToolTo("scaleSuperContext")
        self.menu.unbind_gestures()
        self.assertEqual(self.cmds.currentCtx(), "scaleSuperContext")

    def test_an_earlier_tool_that_is_gone_gives_way_to_the_select_tool(self):
        self.cmds.draggerContext("other")
        self.cmds.setToolTo("other")
        self.menu.bind_gestures()
        self.cmds.deleteUI("other", toolContext=True)
        self.menu.unbind_gestures()
        self.assertEqual(self.cmds.currentCtx(), "selectSuperContext")

    def test_each_gesture_has_its_name(self):
        self.record_commands()
        self.menu.bind_gestures()
        for button, modifiers, name in ((1, 0, "lmb"), (1, CTRL, "ctrl_lmb"), (1, SHIFT, "shift_lmb"),
                                        (2, 0, "mouse2"), (2, CTRL, "ctrl_rmb"), (3, 0, "rmb"), (3, CTRL, "ctrl_rmb"),
                                        (1, SHIFT | CTRL, "ctrl_shift_lmb"), (2, SHIFT, "shift_mouse2")):
            self.ui.click(button, modifiers)
            self.assertEqual(self.called.pop(), ("pellark_entry", (name,), {}))

    def test_the_engine_knows_the_names(self):
        self.menu.bind_gestures()
        expected = (("create_trail", 1, 0), ("convert_to_nurbs", 1, CTRL), ("clear_trails", 1, SHIFT),
                    ("toggle_ghost", 2, CTRL))
        for label, button, modifiers in expected:
            self.told = []
            self.engine._set_msg_handler(self.told.append)
            self.ui.click(button, modifiers)
            self.assertEqual(self.told[-1], {
                "create_trail": "Select an animated object first.", "clear_trails": "All trails cleared.",
                "convert_to_nurbs": "No trails to convert. Build a trail first.",
                "toggle_ghost": "Ghost OFF on 0 trail(s)"}[label])

    def marking_menu(self, panel):
        return self.part("gestures").MARKING_MENU + panel

    def test_every_viewport_has_the_marking_menu_in_its_own_layout_and_none_is_left(self):
        torn_off = self.ui.tear_off()
        before = self.state()
        self.menu.bind_gestures()
        menus = [control for control in self.ui.controls.values() if control.kind == "popupMenu"]
        panels = ["modelPanel1", "modelPanel2", "modelPanel3", "modelPanel4", torn_off]
        self.assertEqual([(menu.name, menu.parent) for menu in menus],
                         [(self.marking_menu(panel), self.ui.layout_of(panel)) for panel in panels])
        self.menu.unbind_gestures()
        self.assertEqual(self.state(), before)

    def test_a_viewport_torn_off_later_gets_the_menu_at_the_next_binding(self):
        self.menu.bind_gestures()
        torn_off = self.ui.tear_off()
        self.menu.bind_gestures()
        self.assertEqual(len(self.ui.open_menu(self.marking_menu(torn_off))), 9)
        self.ui.close_window_of(torn_off)
        self.menu.unbind_gestures()
        self.assertEqual([c.name for c in self.ui.controls.values() if c.kind == "popupMenu"], [])

    def test_a_viewport_that_is_shown_nowhere_gets_none(self):
        hidden = self.ui.tear_off()
        self.ui.close_window_of(hidden)
        self.menu.bind_gestures()
        self.assertFalse(self.cmds.popupMenu(self.marking_menu(hidden), exists=True))
        self.assertEqual(self.told, [])
        self.menu.unbind_gestures()

    def test_the_marking_menu_is_made_as_things_stand_when_it_opens(self):
        self.record_commands()
        self.menu.bind_gestures()
        for mode in (1, 3):
            self.engine._set_pref_color_mode(mode)
            items = self.ui.open_menu(self.marking_menu("modelPanel4"))
            self.assertEqual(len(items), 9)
            self.assertEqual([item.flags["label"] for item in items if item.flags.get("checkBox")],
                             [MODES[mode], "Ghost"])
            places = [item.flags["radialPosition"] for item in items if "radialPosition" in item.flags]
            self.assertEqual(sorted(places), ["E", "N", "NE", "NW", "S", "SE", "SW", "W"])
        for item in items[:-1]:
            self.ui.press(item)
        self.assertEqual([name for name, _, _ in self.called],
                         ["create_trail", "clear_trails"] + ["set_color_mode"] * 4 +
                         ["toggle_ghost", "convert_to_nurbs"])

    def test_the_marking_menu_takes_no_press_of_maya_s_own(self):
        self.menu.bind_gestures()
        flags = self.ui.controls[self.marking_menu("modelPanel1")].flags
        self.assertEqual((flags["button"], flags["ctrlModifier"], flags["altModifier"]), (3, True, True))

    def test_an_error_is_told_and_not_raised(self):
        self.menu.bind_gestures()
        self.engine.pellark_entry = mock.Mock(side_effect=RuntimeError("locked"))
        self.ui.click(1)
        self.assertEqual(self.told, ["RuntimeError: locked. See the Script Editor for details."])


if __name__ == "__main__":
    unittest.main()
