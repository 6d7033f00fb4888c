"""The mini menu and the options, on recorded windows and menus."""

import sys
import types
import unittest
from unittest import mock

from companion import PLUGIN, load_companion
from menu_support import COMMANDS, MODES, NO_QT, MenuTest

FILTER = "vantorelixDisplayFilter"


class Action(object):
    def __init__(self, label):
        self.label, self.checkable, self.checked, self.triggered = label, False, False, self
        self.called = []

    def setCheckable(self, on):
        self.checkable = on

    def setChecked(self, on):
        self.checked = on

    def connect(self, function):
        self.called.append(function)

    def trigger(self):
        for function in self.called:
            function(False)


class Menu(object):
    """As much of Qt's menu as the mini menu takes."""

    def __init__(self, parent=None):
        self.parent, self.actions, self.at = parent, [], None

    def addAction(self, label):
        self.actions.append(Action(label))
        return self.actions[-1]

    def popup(self, position):
        self.at = position


def qt(package):
    """Modules that stand for Qt's, under the name of `package`."""
    gui, widgets = types.ModuleType(package + ".QtGui"), types.ModuleType(package + ".QtWidgets")
    gui.QCursor = types.SimpleNamespace(pos=lambda: (300, 200))
    widgets.QMenu = Menu
    widgets.QApplication = types.SimpleNamespace(activeWindow=lambda: "Maya")
    return {package: types.ModuleType(package), gui.__name__: gui, widgets.__name__: widgets}


NO_QT = {name: None for name in ("PySide2", "PySide6")}


class Import(MenuTest):
    ALLOWED = {"about", "runTimeCommand"}

    def test_importing_does_nothing_in_maya_but_name_the_commands_for_hotkeys(self):
        calls = []  # Kept rather than raised: the engine forgives its host many an error.
        names = [name for name in dir(self.cmds) if callable(getattr(self.cmds, name)) and name not in self.ALLOWED]
        with mock.patch.multiple(self.cmds, **{name: lambda *_, **__: calls.append(1) for name in names}), \
                mock.patch.multiple(self.engine, **{name: lambda *_, **__: calls.append(1) for name in COMMANDS}):
            load_companion("Vantorelix")
            self.assertEqual(calls, [])
            self.engine._get_pref_samples()
            self.assertNotEqual(calls, [])

    def test_its_names_are_those_that_scripts_and_shelves_hold(self):
        self.assertEqual(self.menu.SHELF_COMMAND, "import Vantorelix; Vantorelix.shelf_clicked()")
        for name in ("show_trail_mini_menu", "show_options", "bind_gestures", "unbind_gestures", "add_shelf_button",
                     "remove_shelf_button", "shelf_clicked", "run_command", "make_commands"):
            self.assertTrue(callable(getattr(self.menu, name)), name)


class Entries(MenuTest):
    EXPECTED = (("Build trail", "create_trail", ()), ("Clear trails", "clear_trails", ()),
                ("Standard", "set_color_mode", (0,)), ("Spacing", "set_color_mode", (1,)),
                ("Flow", "set_color_mode", (2,)), ("Beats", "set_color_mode", (3,)), ("Ghost", "toggle_ghost", ()),
                ("Convert to NURBS", "convert_to_nurbs", ()))

    def test_the_popup_at_the_cursor_calls_the_engine(self):
        self.record_commands()
        for package in ("PySide2", "PySide6"):
            self.show(qt(package))
            popup = self.popup()
            self.assertEqual((popup.at, popup.parent), ((300, 200), "Maya"))
            actions = {action.label: action for action in popup.actions}
            for label, command, arguments in self.EXPECTED:
                actions.pop(label).trigger()
                self.assertEqual(self.called.pop(), (command, arguments, {}))
            self.assertEqual(list(actions), ["Options..."])
            actions["Options..."].trigger()
            self.assertTrue(self.cmds.window("vantorelixOptions", exists=True))

    def test_the_window_where_there_is_no_qt_calls_the_engine(self):
        self.record_commands()
        self.show()
        for label, command, arguments in self.EXPECTED:
            self.ui.press(self.ui.labelled(label, "vantorelixMenu"))
            self.assertEqual(self.called.pop(), (command, arguments, {}))
        self.ui.press(self.ui.labelled("Options...", "vantorelixMenu"))
        self.assertTrue(self.cmds.window("vantorelixOptions", query=True, visible=True))

    def marked(self):
        return [entry.label for entry in self.part("menu").entries() if entry.checked]

    def test_the_current_mode_and_the_ghost_are_marked(self):
        self.engine._set_pref_xray(False)
        for index, label in enumerate(("Standard", "Spacing", "Flow", "Beats")):
            self.engine.set_color_mode(index)
            self.assertEqual(self.marked(), [label])
            self.show(qt("PySide2"))
            self.assertEqual([action.label for action in self.popup().actions if action.checked], [label])
        self.engine.set_ghost(True)
        self.assertEqual(self.marked(), ["Beats", "Ghost"])
        self.engine._set_pref_color_mode(99)
        self.assertEqual(self.marked(), ["Ghost"])

    def test_only_what_can_be_marked_has_a_mark(self):
        self.show(qt("PySide2"))
        self.assertEqual([action.label for action in self.popup().actions if action.checkable],
                         ["Standard", "Spacing", "Flow", "Beats", "Ghost"])

    def test_the_window_moves_its_mark_after_a_choice(self):
        self.show()
        self.ui.press(self.ui.labelled("Flow", "vantorelixMenu"))
        self.deferred()
        marks = {label: self.ui.labelled(label, "vantorelixMenu").flags["value"] for label in MODES}
        self.assertEqual(marks, {"Standard": False, "Spacing": False, "Flow": True, "Beats": False})
        self.assertEqual(self.engine._get_pref_color_mode(), 2)

    def test_shown_twice_there_is_one_window(self):
        self.show()
        self.show()
        self.assertEqual([c.name for c in self.ui.controls.values() if c.kind == "window"], ["vantorelixMenu"])

    def test_an_error_of_the_engine_is_told_to_the_user(self):
        self.engine.clear_trails = mock.Mock(side_effect=RuntimeError("the group is locked"))
        self.show()
        self.ui.press(self.ui.labelled("Clear trails", "vantorelixMenu"))
        self.assertEqual(self.told, ["RuntimeError: the group is locked. See the Script Editor for details."])

    def test_an_error_while_showing_is_told_to_the_user_and_not_raised(self):
        broken = qt("PySide2")
        broken["PySide2.QtWidgets"].QMenu = mock.Mock(side_effect=RuntimeError("no screen"))
        self.show(broken)
        self.assertEqual(self.told, ["RuntimeError: no screen. See the Script Editor for details."])

    def test_the_engine_opens_it_for_the_right_button(self):
        with mock.patch.dict(sys.modules, dict(NO_QT, Vantorelix=self.menu)):
            self.engine.pellark_entry("rmb")
        self.assertTrue(self.cmds.window("vantorelixMenu", exists=True))


class Batch(MenuTest):
    batch = True

    def test_without_maya_s_window_it_says_so(self):
        self.show()
        self.assertEqual(self.told, [
            "The menu needs Maya's window. In batch mode, call the functions of Vantorelix_engine."])
        self.assertFalse(self.cmds.window("vantorelixMenu", exists=True))


class Options(MenuTest):
    """Each preference: its control, and a value that is not the default."""

    VALUES = {"samples": 4, "line_width": 3.5, "point_size": 9.25, "show_line": False, "show_dots": False,
              "xray": False, "color_mode": 2}

    def prefs(self):
        return {name: getattr(self.engine, "_get_pref_" + name)() for name in self.VALUES}

    def shown(self):
        values = {}
        for name in self.VALUES:
            control = self.ui.controls[self.part("options").control_of(name)]
            values[name] = control.flags["select"] - 1 if control.kind == "optionMenu" else control.flags["value"]
        return values

    def type_in(self, name, value):
        self.ui.choose(self.part("options").control_of(name), value + 1 if name == "color_mode" else value)

    def press(self, label):
        self.ui.press(self.ui.labelled(label, "vantorelixOptions"))

    def test_it_shows_every_preference_as_it_is(self):
        self.menu.show_options()
        self.assertEqual(self.shown(), self.prefs())
        for name, value in self.VALUES.items():
            getattr(self.engine, "_set_pref_" + name)(value)
        self.menu.show_options()
        self.assertEqual(self.shown(), self.VALUES)

    def test_each_preference_is_set_alone(self):
        for name, value in self.VALUES.items():
            before = self.prefs()
            self.menu.show_options()
            self.type_in(name, value)
            self.assertEqual(self.prefs(), before)
            self.press("Apply")
            self.assertEqual(self.prefs(), dict(before, **{name: value}))

    def test_trails_are_sampled_anew_only_at_another_density(self):
        self.record_commands()
        self.menu.show_options()
        for name, value, density in (("line_width", 4.0, False), ("samples", 3, True), ("samples", 3, False),
                                     ("color_mode", 1, False), ("samples", 1, True)):
            self.type_in(name, value)
            self.press("Apply")
            self.assertEqual(self.called, [("apply_prefs_to_existing_trails", (),
                                            {"rebuild_if_samples_changed": density})], name)
            self.called = []

    def test_trails_in_the_scene_follow(self):
        self.cmds.loadPlugin(PLUGIN)
        self.cmds.createNode("vantorelix", name="trailShape")
        self.menu.show_options()
        for name, value in self.VALUES.items():
            self.type_in(name, value)
        self.press("Apply")
        self.assertEqual([self.cmds.getAttr("trailShape." + name) for name in (
            "lineWidth", "pointSize", "showLine", "showDots", "xrayMode", "colorMode")],
            [3.5, 9.25, False, False, False, 2])

    def test_closing_stores_nothing(self):
        before = self.prefs()
        self.menu.show_options()
        self.type_in("samples", 5)
        self.press("Close")
        self.assertFalse(self.cmds.window("vantorelixOptions", exists=True))
        self.assertEqual(self.prefs(), before)

    def test_apply_and_close_does_both(self):
        self.menu.show_options()
        self.type_in("samples", 5)
        self.press("Apply and close")
        self.deferred()
        self.assertFalse(self.cmds.window("vantorelixOptions", exists=True))
        self.assertEqual(self.engine._get_pref_samples(), 5)

    def test_a_mode_without_a_name_is_shown_as_the_first(self):
        self.engine._set_pref_color_mode(99)
        self.menu.show_options()
        self.assertEqual(self.shown()["color_mode"], 0)


class ShowInViewport(MenuTest):
    """The switch of the display filter, for the viewport that the menu is opened in."""

    LABEL = "Show trails in this viewport"

    def entry(self, panel=None):
        with mock.patch.object(self.part("menu").log, "exception") as failed:
            found = [entry for entry in self.part("menu").entries(panel) if entry.label == self.LABEL]
        failed.assert_not_called()
        return found[0] if found else None

    def register(self):
        self.cmds.pluginDisplayFilter(FILTER, register=True, label="Trails", classification="drawdb/geometry/x")

    def shown(self):
        return [panel for panel in self.cmds.getPanel(type="modelPanel")
                if self.cmds.modelEditor(panel, query=True, queryPluginObjects=FILTER)]

    def test_there_is_no_switch_without_the_plug_in_s_filter(self):
        self.assertIsNone(self.entry())
        self.register()
        self.assertTrue(self.entry().checked)

    def test_it_is_switched_in_the_viewport_with_the_focus_alone(self):
        self.register()
        self.entry().run()
        self.assertEqual(self.shown(), ["modelPanel1", "modelPanel2", "modelPanel3"])
        self.assertFalse(self.entry().checked)
        self.entry().run()
        self.assertEqual(len(self.shown()), 4)

    def test_a_marking_menu_switches_its_own_viewport(self):
        self.register()
        self.menu.bind_gestures()
        self.ui.open_menu(self.part("gestures").MARKING_MENU + "modelPanel2")
        self.ui.press(self.ui.labelled(self.LABEL, self.part("gestures").MARKING_MENU + "modelPanel2"))
        self.assertEqual(self.shown(), ["modelPanel1", "modelPanel3", "modelPanel4"])

    def test_a_maya_without_display_filters_still_has_a_menu(self):
        with mock.patch.object(self.cmds, "pluginDisplayFilter", side_effect=TypeError("Invalid flag")), \
                self.assertLogs("Vantorelix", "ERROR") as logged:
            self.show(qt("PySide2"))
        self.assertEqual(len(self.popup().actions), 9)
        self.assertIn("TypeError: Invalid flag", logged.output[0])
        self.assertEqual(self.told, [])

    def test_the_focus_elsewhere_leaves_nothing_to_switch(self):
        self.register()
        self.ui.state["focus"] = "outlinerPanel1"
        self.assertIsNone(self.entry())


if __name__ == "__main__":
    unittest.main()
