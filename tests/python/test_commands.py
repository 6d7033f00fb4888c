"""The commands for hotkeys, the one place through which all commands go, and the log."""

import io
import logging
import sys
import unittest
from unittest import mock

from companion import load_companion
from menu_support import CTRL, NO_QT, SHIFT, MenuTest


class Hotkeys(MenuTest):
    EXPECTED = {"VantorelixBuildTrail": ("create_trail", ()), "VantorelixClearTrails": ("clear_trails", ()),
                "VantorelixColorStandard": ("set_color_mode", (0,)), "VantorelixColorSpacing": ("set_color_mode", (1,)),
                "VantorelixColorFlow": ("set_color_mode", (2,)), "VantorelixColorBeats": ("set_color_mode", (3,)),
                "VantorelixGhost": ("toggle_ghost", ()), "VantorelixConvertToNurbs": ("convert_to_nurbs", ())}
    WINDOWS = {"VantorelixMenu": "vantorelixMenu", "VantorelixOptions": "vantorelixOptions"}

    def press(self, name):
        with mock.patch.dict(sys.modules, dict(NO_QT, Vantorelix=self.menu)):
            self.ui.press_hotkey(name)

    def test_there_is_a_command_for_each_entry_under_a_name_that_never_changes(self):
        self.assertEqual(set(self.ui.hotkeys), set(self.EXPECTED) | set(self.WINDOWS))
        for flags in self.ui.hotkeys.values():
            self.assertEqual((flags["category"], flags["commandLanguage"], flags["default"]),
                             ("Vantorelix", "python", True))
            self.assertTrue(flags["annotation"].startswith("Vantorelix: "))

    def test_each_calls_the_engine(self):
        self.record_commands()
        for name, (command, arguments) in self.EXPECTED.items():
            self.press(name)
            self.assertEqual(self.called.pop(), (command, arguments, {}))

    def test_the_menu_and_the_options_open(self):
        for name, window in self.WINDOWS.items():
            self.press(name)
            self.assertTrue(self.cmds.window(window, exists=True))

    def test_loaded_again_they_are_made_once(self):
        before, made = dict(self.ui.hotkeys), mock.Mock(wraps=self.cmds.runTimeCommand)
        with mock.patch.object(self.cmds, "runTimeCommand", made):
            load_companion("Vantorelix")
        self.assertEqual(self.ui.hotkeys, before)
        self.assertEqual([call for call in made.call_args_list if call != mock.call(call[0][0], exists=True)], [])
        self.assertEqual(made.call_count, len(before))

    def test_an_error_is_told_and_not_raised(self):
        self.engine.clear_trails = mock.Mock(side_effect=RuntimeError("the group is locked"))
        self.press("VantorelixClearTrails")
        self.assertEqual(self.told, ["RuntimeError: the group is locked. See the Script Editor for details."])

    def test_a_name_that_is_not_one_of_them_is_refused_with_those_that_are(self):
        with self.assertRaises(ValueError) as caught:
            self.menu.run_command("VantorelixFly")
        self.assertIn("'VantorelixFly' is not a command of Vantorelix; its commands are: VantorelixBuildTrail",
                      str(caught.exception))

    def test_a_maya_that_refuses_them_does_not_keep_the_rest_away(self):
        self.ui.hotkeys.clear()
        with mock.patch.object(self.cmds, "runTimeCommand", side_effect=RuntimeError("locked")), \
                self.assertLogs("Vantorelix", "ERROR") as logged:
            load_companion("Vantorelix").show_options()
        self.assertIn("RuntimeError: locked", logged.output[0])
        self.assertEqual(self.told, [])
        self.assertTrue(self.cmds.window("vantorelixOptions", exists=True))


class BatchHotkeys(MenuTest):
    batch = True

    def test_without_a_window_there_are_none(self):
        self.assertEqual(self.ui.hotkeys, {})


class Door(MenuTest):
    """Whatever changes the scene passes one place once, under the name that the user knows it by."""

    def setUp(self):
        super(Door, self).setUp()
        self.record_commands()

    def labels(self, act, *arguments):
        with self.assertLogs("Vantorelix", "DEBUG") as logged:
            logging.getLogger("Vantorelix").debug("acting")
            act(*arguments)
        return [record.getMessage() for record in logged.records[1:]]

    def press(self, label, window):
        self.ui.press(self.ui.labelled(label, window))

    def test_the_menu_and_the_hotkeys_pass_it(self):
        self.show()
        for command in self.part("commands").COMMANDS:
            self.assertEqual(self.labels(self.press, command.label, "vantorelixMenu"), [command.label])
            self.assertEqual(self.labels(self.menu.run_command, "Vantorelix" + command.name), [command.label])
        self.assertEqual(len(self.called), 16)

    def test_gestures_and_the_shelf_pass_it(self):
        self.menu.bind_gestures()
        for button, modifiers, label in ((1, 0, "Build trail"), (1, SHIFT, "Clear trails"),
                                         (1, CTRL, "Convert to NURBS"), (2, CTRL, "Ghost")):
            self.assertEqual(self.labels(self.ui.click, button, modifiers), [label])
        self.ui.state["modifiers"] = SHIFT
        self.assertEqual(self.labels(self.menu.shelf_clicked), ["Clear trails"])

    def test_applied_options_pass_it(self):
        self.menu.show_options()
        self.assertEqual(self.labels(self.press, "Apply", "vantorelixOptions"), ["Trail options"])

    def test_what_only_opens_a_window_does_not(self):
        self.menu.bind_gestures()
        for act in (self.menu.show_options, self.show, lambda: self.ui.click(2)):
            self.assertEqual(self.labels(act), [])


class Log(MenuTest):
    """What a developer wants to know, apart from what the user is told."""

    def setUp(self):
        super(Log, self).setUp()
        self.printed = sys.stdout = io.StringIO()  # CompanionTest puts the other one back.
        self.logger = logging.getLogger("Vantorelix")

    def break_and_clear(self):
        self.engine.clear_trails = mock.Mock(side_effect=RuntimeError("the group is locked"))
        self.menu.run_command("VantorelixClearTrails")

    def test_an_error_leaves_one_message_and_its_traceback_in_the_log(self):
        self.break_and_clear()
        self.assertEqual(self.told, ["RuntimeError: the group is locked. See the Script Editor for details."])
        message, *record = self.printed.getvalue().splitlines()
        self.assertEqual(message, "[Vantorelix] RuntimeError: the group is locked. See the Script Editor for details.")
        self.assertEqual(record[:2], ["[Vantorelix] ERROR: Details of the error:",
                                      "Traceback (most recent call last):"])

    def test_nothing_reaches_the_loggers_above(self):
        above = []
        handler = logging.Handler()
        handler.emit = above.append
        logging.getLogger().addHandler(handler)
        self.addCleanup(logging.getLogger().removeHandler, handler)
        self.break_and_clear()
        self.assertEqual(above, [])
        logging.getLogger("SomebodyElse").error("heard")
        self.assertEqual(len(above), 1)

    def test_loaded_again_it_says_nothing_twice(self):
        self.menu = load_companion("Vantorelix")
        self.break_and_clear()
        self.assertEqual(self.printed.getvalue().count("Details of the error:"), 1)

    def test_a_studio_s_handler_outlives_a_reload(self):
        theirs = logging.NullHandler()
        self.logger.addHandler(theirs)
        self.addCleanup(self.logger.removeHandler, theirs)
        load_companion("Vantorelix")
        self.assertIn(theirs, self.logger.handlers)

    def test_the_engine_s_messages_stay_one_printed_line_each(self):
        with self.assertLogs("Vantorelix", "DEBUG") as logged:
            self.menu.run_command("VantorelixGhost")
        self.assertEqual([record.getMessage() for record in logged.records], ["Ghost"])
        self.assertEqual(self.printed.getvalue(), "[Vantorelix] Ghost OFF on 0 trail(s)\n")


if __name__ == "__main__":
    unittest.main()
