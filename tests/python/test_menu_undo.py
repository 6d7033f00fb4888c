"""Whatever the user asks for is one step of the undo queue, under the name that the user knows."""

import unittest
from unittest import mock

from companion import load_companion
from layer_case import LayerTest


class OneStep(LayerTest):
    def setUp(self):
        super(OneStep, self).setUp()
        self.commands = load_companion("Vantorelix_commands")
        self.run_of = {command.label: command.run for command in self.commands.COMMANDS}
        self.names = self.balls(2)
        self.cmds.select(self.names)
        self.cmds.flushUndo()

    def expect_step(self, label):
        self.assertEqual((self.count(), self.cmds.undoInfo(query=True, undoName=True)), (1, label))
        self.assertEqual(self.cmds.undoInfo(query=True, chunkName=True), "")
        self.cmds.flushUndo()

    def test_for_each_command_of_the_menu(self):
        for label in ("Build trail", "Standard", "Spacing", "Flow", "Beats", "Ghost", "Convert to NURBS", "Clear trails"):
            self.run_of.pop(label)()
            self.pump()
            self.expect_step(label)
        self.assertEqual(self.run_of, {})

    def test_for_each_gesture_that_changes_the_scene(self):
        for action, label in (("lmb", "Build trail"), ("ctrl_lmb", "Convert to NURBS"), ("ctrl_rmb", "Ghost"),
                              ("shift_lmb", "Clear trails")):
            self.commands.gesture(action)
            self.pump()
            self.expect_step(label)

    def test_for_applied_options(self):
        self.run_of["Build trail"]()
        options = load_companion("Vantorelix_options")
        options.show_options()
        self.pump()
        self.cmds.flushUndo()
        self.maya._ui.choose(options.control_of("samples"), 3)
        options.apply_options()
        self.pump()
        self.expect_step("Trail options")

    def test_that_is_closed_when_the_command_fails(self):
        with mock.patch.object(self.engine, "clear_trails", side_effect=RuntimeError("locked")):
            self.run_of["Clear trails"]()
        self.assertEqual(self.told, ["RuntimeError: locked. See the Script Editor for details."])
        self.assertEqual(self.count(), 0)
        self.cmds.createNode("transform")
        self.expect_step("createNode")

    def test_and_undoing_it_takes_all_of_it_back(self):
        before = self.cmds.ls(long=True), self.cmds.ls(selection=True)
        self.run_of["Build trail"]()
        self.run_of["Flow"]()
        self.pump()
        self.cmds.undo()
        self.assertEqual(self.cmds.getAttr("vlx_ball0_vizShape.colorMode"), 0)
        self.cmds.undo()
        self.assertEqual((self.cmds.ls(long=True), self.cmds.ls(selection=True)), before)


if __name__ == "__main__":
    unittest.main()
