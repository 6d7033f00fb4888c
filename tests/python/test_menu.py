"""The mini menu, the options, the gestures and the shelf button, on recorded windows and menus."""

import sys
import types
import unittest
from unittest import mock

from companion import PLUGIN, CompanionTest, load_companion

SHIFT, CTRL = 1, 4
# The commands of the engine that the menu may call.
COMMANDS = ("create_trail", "clear_trails", "set_color_mode", "toggle_ghost", "convert_to_nurbs", "pellark_entry",
            "apply_prefs_to_existing_trails")


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


class MenuTest(CompanionTest):
    def setUp(self):
        super(MenuTest, self).setUp()
        self.menu = load_companion("Vantorelix")
        self.called = []

    def record_commands(self):
        for name in COMMANDS:
            setattr(self.engine, name, lambda *args, _name=name, **kwargs: self.called.append((_name, args, kwargs)))

    def show(self, modules=None):
        with mock.patch.dict(sys.modules, NO_QT if modules is None else dict(NO_QT, **modules)):
            self.menu.show_trail_mini_menu()

    def deferred(self):
        from maya import utils
        utils.processIdleEvents()


class Import(MenuTest):
    def test_importing_does_nothing_in_maya(self):
        calls = []  # Kept rather than raised: the engine forgives its host many an error.
        names = [name for name in dir(self.cmds) if callable(getattr(self.cmds, name))]
        with mock.patch.multiple(self.cmds, **{name: lambda *_, **__: calls.append(1) for name in names}), \
                mock.patch.multiple(self.engine, **{name: lambda *_, **__: calls.append(1) for name in COMMANDS}):
            load_companion("Vantorelix")
            self.assertEqual(calls, [])
            self.engine._get_pref_samples()
            self.assertNotEqual(calls, [])


class Entries(MenuTest):
    EXPECTED = (("Build trail", "create_trail", ()), ("Clear trails", "clear_trails", ()),
                ("Standard", "set_color_mode", (0,)), ("Spacing", "set_color_mode", (1,)),
                ("Flow", "set_color_mode", (2,)), ("Beats", "set_color_mode", (3,)), ("Ghost", "toggle_ghost", ()),
                ("Convert to NURBS", "convert_to_nurbs", ()))

    def test_the_popup_at_the_cursor_calls_the_engine(self):
        self.record_commands()
        for package in ("PySide2", "PySide6"):
            self.show(qt(package))
            popup = self.menu._shown
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
        return [entry.label for entry in self.menu.entries() if entry.checked]

    def test_the_current_mode_and_the_ghost_are_marked(self):
        self.engine._set_pref_xray(False)
        for index, label in enumerate(("Standard", "Spacing", "Flow", "Beats")):
            self.engine.set_color_mode(index)
            self.assertEqual(self.marked(), [label])
            self.show(qt("PySide2"))
            self.assertEqual([action.label for action in self.menu._shown.actions if action.checked], [label])
        self.engine.set_ghost(True)
        self.assertEqual(self.marked(), ["Beats", "Ghost"])
        self.engine._set_pref_color_mode(99)
        self.assertEqual(self.marked(), ["Ghost"])

    def test_only_what_can_be_marked_has_a_mark(self):
        self.show(qt("PySide2"))
        self.assertEqual([action.label for action in self.menu._shown.actions if action.checkable],
                         ["Standard", "Spacing", "Flow", "Beats", "Ghost"])

    def test_the_window_moves_its_mark_after_a_choice(self):
        self.show()
        self.ui.press(self.ui.labelled("Flow", "vantorelixMenu"))
        self.deferred()
        marks = {label: self.ui.labelled(label, "vantorelixMenu").flags["value"] for label in self.menu.MODES}
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
        self.assertEqual(self.told, ["RuntimeError: the group is locked"])

    def test_an_error_while_showing_is_told_to_the_user_and_not_raised(self):
        broken = qt("PySide2")
        broken["PySide2.QtWidgets"].QMenu = mock.Mock(side_effect=RuntimeError("no screen"))
        self.show(broken)
        self.assertEqual(self.told, ["RuntimeError: no screen"])

    def test_the_engine_opens_it_for_the_right_button(self):
        with mock.patch.dict(sys.modules, dict(NO_QT, Vantorelix=self.menu)):
            self.engine.pellark_entry("rmb")
        self.assertTrue(self.cmds.window("vantorelixMenu", exists=True))


class Batch(MenuTest):
    batch = True

    def test_without_maya_s_window_it_says_so(self):
        self.show()
        self.assertEqual(self.told, ["The menu needs Maya's window."])
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
            control = self.ui.controls[self.menu.control_of(name)]
            values[name] = control.flags["select"] - 1 if control.kind == "optionMenu" else control.flags["value"]
        return values

    def type_in(self, name, value):
        self.ui.choose(self.menu.control_of(name), value + 1 if name == "color_mode" else value)

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


class Gestures(MenuTest):
    def state(self):
        return (self.ui.state["tool"], sorted(self.ui.controls))

    def test_unbinding_restores_what_was_there(self):
        for tool in ("moveSuperContext", "selectSuperContext"):
            self.cmds.setToolTo(tool)
            before = self.state()
            self.menu.bind_gestures()
            self.menu.bind_gestures()
            self.assertEqual(self.cmds.currentCtx(), self.menu.CONTEXT)
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

    def test_the_marking_menu_is_made_as_things_stand_when_it_opens(self):
        self.record_commands()
        self.menu.bind_gestures()
        for mode in (1, 3):
            self.engine._set_pref_color_mode(mode)
            items = self.ui.open_menu(self.menu.MARKING_MENU)
            self.assertEqual(len(items), 9)
            self.assertEqual([item.flags["label"] for item in items if item.flags.get("checkBox")],
                             [self.menu.MODES[mode], "Ghost"])
            places = [item.flags["radialPosition"] for item in items if "radialPosition" in item.flags]
            self.assertEqual(sorted(places), ["E", "N", "NE", "NW", "S", "SE", "SW", "W"])
        for item in items[:-1]:
            self.ui.press(item)
        self.assertEqual([name for name, _, _ in self.called],
                         ["create_trail", "clear_trails"] + ["set_color_mode"] * 4 +
                         ["toggle_ghost", "convert_to_nurbs"])

    def test_the_marking_menu_takes_no_press_of_maya_s_own(self):
        self.menu.bind_gestures()
        flags = self.ui.controls[self.menu.MARKING_MENU].flags
        self.assertEqual((flags["button"], flags["ctrlModifier"], flags["altModifier"]), (3, True, True))

    def test_an_error_is_told_and_not_raised(self):
        self.menu.bind_gestures()
        self.engine.pellark_entry = mock.Mock(side_effect=RuntimeError("locked"))
        self.ui.click(1)
        self.assertEqual(self.told, ["RuntimeError: locked"])


class Shelf(MenuTest):
    def buttons(self):
        return [control for control in self.ui.controls.values() if control.kind == "shelfButton"]

    def test_added_twice_there_is_one_button_on_the_open_shelf(self):
        self.menu.add_shelf_button()
        self.cmds.shelfTabLayout("ShelfLayout", edit=True, selectTab="Custom")
        self.menu.add_shelf_button()
        self.assertEqual([button.parent for button in self.buttons()], ["Animation"])

    def test_removing_leaves_the_buttons_of_others(self):
        before = sorted(self.ui.controls)
        self.cmds.shelfButton("theirs", parent="Animation", command="print(1)", label="theirs")
        self.menu.add_shelf_button()
        self.menu.remove_shelf_button()
        self.menu.remove_shelf_button()
        self.assertEqual(sorted(self.ui.controls), sorted(before + ["theirs"]))

    def test_its_command_is_text_that_runs_alone(self):
        self.record_commands()
        self.menu.add_shelf_button()
        self.ui.state["modifiers"] = CTRL
        with mock.patch.dict(sys.modules, Vantorelix=self.menu):
            exec(self.buttons()[0].flags["command"], {})
        self.assertEqual(self.called, [("pellark_entry", ("ctrl_lmb",), {})])

    def test_its_menu_opens_the_menu_and_the_options(self):
        self.menu.add_shelf_button()
        with mock.patch.dict(sys.modules, dict(NO_QT, Vantorelix=self.menu)):
            for _label, command in self.buttons()[0].flags["menuItem"]:
                exec(command, {})
        for window in ("vantorelixMenu", "vantorelixOptions"):
            self.assertTrue(self.cmds.window(window, exists=True))

    def test_without_a_shelf_it_says_so(self):
        self.cmds.deleteUI("ShelfLayout")
        self.menu.add_shelf_button()
        self.menu.remove_shelf_button()
        self.assertEqual(self.told, ["There is no shelf to put a button on."])


if __name__ == "__main__":
    unittest.main()
