"""The button on the shelf."""

import sys
import unittest
from unittest import mock

from menu_support import CTRL, NO_QT, MenuTest


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

    def saved(self, shelf, *commands):
        self.ui.save_shelf(shelf, self.cmds.internalVar(userShelfDir=True), commands)

    def test_a_button_on_a_tab_that_was_not_opened_yet_is_found(self):
        self.saved("Custom", "print(1)", self.menu.SHELF_COMMAND)
        self.assertEqual(self.buttons(), [])
        self.menu.add_shelf_button()
        self.assertEqual([(button.parent, button.flags["command"]) for button in self.buttons()],
                         [("Custom", "print(1)"), ("Custom", self.menu.SHELF_COMMAND)])
        self.assertEqual(self.cmds.shelfTabLayout("ShelfLayout", query=True, selectTab=True), "Animation")

    def test_a_button_on_a_tab_that_was_not_opened_yet_is_removed(self):
        self.saved("Custom", "print(1)", self.menu.SHELF_COMMAND)
        self.menu.remove_shelf_button()
        self.assertEqual([button.flags["command"] for button in self.buttons()], ["print(1)"])

    def test_tabs_that_are_not_ours_stay_closed(self):
        self.saved("Custom", "print(1)")
        self.menu.add_shelf_button()
        self.assertEqual([button.flags["command"] for button in self.buttons()], [self.menu.SHELF_COMMAND])

    def test_removed_and_added_again_it_is_on_the_open_shelf_although_the_file_still_has_it(self):
        self.saved("Custom", self.menu.SHELF_COMMAND)
        self.menu.remove_shelf_button()
        self.assertEqual(self.buttons(), [])
        with self.assertLogs("Vantorelix", "WARNING") as logged:
            self.menu.add_shelf_button()
        self.assertEqual([button.parent for button in self.buttons()], ["Animation"])
        self.assertEqual([record.getMessage() for record in logged.records],
                         ["The shelf Custom was saved with a button of Vantorelix, but shows none. Open it and look."])

    def test_a_tab_that_cannot_be_opened_keeps_no_button_away(self):
        self.saved("Custom", self.menu.SHELF_COMMAND)
        self.ui.controls["ShelfLayout"].flags["changeCommand"] = "somethingElse()"
        with self.assertLogs("Vantorelix", "WARNING") as logged:
            self.menu.add_shelf_button()
        self.assertEqual([button.parent for button in self.buttons()], ["Animation"])
        self.assertIn('Cannot find procedure "somethingElse()"', logged.output[0])

    def test_without_a_shelf_it_says_so(self):
        self.cmds.deleteUI("ShelfLayout")
        self.menu.add_shelf_button()
        self.menu.remove_shelf_button()
        self.assertEqual(self.told, ["There is no shelf to put a button on. Show Maya's shelves and try again."])


if __name__ == "__main__":
    unittest.main()
