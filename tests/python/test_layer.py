"""The commands that stand in front of Maya's: what the engine does on its own leaves the undo queue alone."""

import importlib
import os
import shutil
import sys
import tempfile
import unittest
from unittest import mock

from companion import COMPANION
from layer_case import LayerTest, forget_layer
from support import import_engine


class Rebuild(LayerTest):
    def test_of_fifty_trails_leaves_the_key_that_was_edited_and_what_can_be_done_again(self):
        names = self.trails(50)
        before = self.points("ball7")
        self.key("ball7", 55)
        self.pump()
        self.assert_exact(names)
        after = self.points("ball7")
        self.assertNotEqual(after, before)
        self.assertEqual((self.count(), self.cmds.undoInfo(query=True, undoName=True)), (1, "setKeyframe"))
        self.cmds.undo()
        self.pump()
        self.assertEqual(self.points("ball7"), before)
        self.assertEqual((self.count(), self.cmds.undoInfo(query=True, redoName=True)), (0, "setKeyframe"))
        self.cmds.redo()
        self.pump()
        self.assertEqual(self.points("ball7"), after)
        self.assertEqual(self.count(), 1)

    def test_would_be_two_entries_a_trail_without_the_layer(self):
        self.trails(50)
        self.engine.cmds = self.cmds
        self.key("ball7", 55)
        self.pump()
        self.assertEqual(self.count(), 101)

    def test_where_nothing_can_be_deferred_leaves_no_entry_either(self):
        names = self.trails(3)
        with mock.patch.object(self.cmds, "evalDeferred", side_effect=RuntimeError("no queue")):
            self.key("ball1", 55)
        self.assert_exact(names)
        self.assertEqual(self.count(), 1)

    def test_keeps_undo_switched_off_where_it_is_off(self):
        self.trails(2)
        self.cmds.undoInfo(stateWithoutFlush=False)
        self.key("ball0", 55)
        self.pump()
        self.assertFalse(self.cmds.undoInfo(query=True, state=True))
        self.cmds.undoInfo(stateWithoutFlush=True)
        self.assertEqual(self.count(), 0)

    def test_inside_a_chunk_that_a_tool_has_open_adds_nothing_to_it(self):
        names = self.trails(2)
        self.cmds.undoInfo(openChunk=True, chunkName="tool")
        self.key("ball0", 55)
        self.pump()
        self.key("ball1", 66)
        self.pump()
        self.cmds.undoInfo(closeChunk=True)
        self.assertEqual((self.count(), self.cmds.undoInfo(query=True, undoName=True)), (1, "tool"))
        self.cmds.setAttr("vlx_ball0_vizShape.frameStep", 7)
        self.cmds.undo()
        self.cmds.undo()
        self.assertEqual(self.cmds.keyframe("ball0", "ball1", query=True, valueChange=True), [0, 10, 1, 10])
        self.pump()
        self.assert_exact(names)

    def test_that_is_interrupted_while_it_sets_an_attribute_leaves_undo_on(self):
        self.trails(2)
        seen = []

        def interrupted(*_):
            seen.append(self.cmds.undoInfo(query=True, state=True))
            raise KeyboardInterrupt()

        self.key("ball0", 55)
        self.now += 1
        with mock.patch.object(self.cmds, "setAttr", interrupted):
            self.assertRaises(KeyboardInterrupt, self.utils.processIdleEvents)
        self.assertEqual(seen, [False])
        self.assertTrue(self.cmds.undoInfo(query=True, state=True))
        # And the step is not taken to be running for ever.
        self.cmds.undoInfo(state=True)
        before = self.count()
        self.engine.set_color_mode(1)
        self.assertEqual(self.count(), before + 2)

    def test_whose_attribute_is_locked_leaves_undo_on(self):
        self.trails(1)
        self.cmds.setAttr("vlx_ball0_vizShape.startFrame", lock=True)
        self.key("ball0", 55)
        self.pump()
        self.assertTrue(self.cmds.undoInfo(query=True, state=True))

    def test_makes_deletes_names_and_moves_nothing_that_is_not_recorded(self):
        names = self.trails(2)
        seen = []
        for command in ("delete", "createNode", "rename", "parent"):
            def watched(*arguments, _command=getattr(self.cmds, command), **flags):
                seen.append((_command.__name__, self.cmds.undoInfo(query=True, state=True)))
                return _command(*arguments, **flags)

            patch = mock.patch.object(self.cmds, command, watched)
            patch.start()
            self.addCleanup(patch.stop)
        self.cmds.delete(names[0])
        self.pump()
        self.assertEqual(seen, [("delete", True)] * 2)
        self.assertEqual(list(self.engine._REGISTRY), ["vlx_ball1_viz"])

    def test_calls_a_command_that_a_tool_has_wrapped_meanwhile(self):
        self.trails(1)
        calls, before = [], self.cmds.setAttr
        with mock.patch.object(self.cmds, "setAttr", lambda *a, **f: (calls.append(a[0]), before(*a, **f))):
            self.key("ball0", 55)
            self.pump()
        self.assertEqual([path.split(".")[1] for path in calls], ["startFrame", "frameStep"])


class BatchRebuild(LayerTest):
    batch = True

    def test_inside_the_edit_leaves_the_key_alone(self):
        names = self.balls(3)
        self.cmds.select(names)
        self.engine.create_trail()
        self.cmds.flushUndo()
        self.key("ball1", 55)
        self.assert_exact(names)
        self.assertEqual(self.count(), 1)
        self.cmds.undo()
        self.assert_exact(names)
        self.cmds.redo()
        self.assert_exact(names)
        self.assertEqual((self.count(), self.host.failures), (1, 0))


    def test_an_undone_clear_is_right_again_at_once(self):
        names = self.balls(2)
        self.cmds.select(names)
        self.engine.create_trail()
        self.cmds.flushUndo()
        with self.step("Clear trails"):
            self.engine.clear_trails()
        with self.unrecorded():
            self.key("ball1", 55)
        self.cmds.undo()
        self.assert_exact(names)
        self.assertEqual((self.count(), self.host.failures), (0, 0))


class Commands(LayerTest):
    def test_in_a_step_are_one_entry(self):
        self.balls(3)
        self.cmds.select("ball0", "ball1", "ball2")
        self.cmds.flushUndo()
        nodes, chosen = self.cmds.ls(long=True), self.cmds.ls(selection=True)
        with self.step("Build trail"):
            self.engine.create_trail()
        self.assertEqual((self.count(), self.cmds.undoInfo(query=True, undoName=True)), (1, "Build trail"))
        self.pump()
        self.cmds.undo()
        self.assertEqual((self.cmds.ls(long=True), self.cmds.ls(selection=True)), (nodes, chosen))
        with self.step("Nothing"):
            self.engine.has_any_trail()
        self.assertEqual(self.cmds.undoInfo(query=True, redoName=True), "Build trail")

    def test_that_fail_close_their_step(self):
        with self.assertRaises(KeyboardInterrupt), self.step("Ghost"):
            self.cmds.createNode("transform")
            raise KeyboardInterrupt()
        self.cmds.undo()

    def test_are_recorded_also_while_a_rebuild_waits(self):
        self.trails(2)
        self.key("ball0", 55)
        with self.step("Flow"):
            self.engine.set_color_mode(2)
        self.pump()
        self.assertEqual(self.count(), 2)
        self.cmds.undo()
        self.assertEqual(self.cmds.getAttr("vlx_ball0_vizShape.colorMode"), 0)


class Installed(LayerTest):
    def test_by_the_engine_alone_also_after_a_reload(self):
        for _ in range(2):
            self.assertIsNot(self.engine.cmds, self.cmds)
            self.cmds.file(new=True, force=True)
            names = self.balls(2)
            self.cmds.select(names)
            self.engine.pellark_entry("lmb")
            self.pump()
            self.cmds.flushUndo()
            self.key("ball0", 55)
            self.pump()
            self.assertEqual(self.count(), 1)
            self.engine.pellark_entry("clear")
            importlib.reload(self.engine)
            self.engine._set_msg_handler(self.told.append)

    def test_it_leaves_the_other_handles_alone(self):
        self.assertIs(self.engine.om, self.om)
        self.assertIs(self.engine.oma, self.oma)
        self.assertIs(self.engine.cmds.getAttr, self.cmds.getAttr)
        self.raises(AttributeError, "polyCube", lambda: self.engine.cmds.polyCube)

    def test_not_where_it_is_not_there(self):
        forget_layer()
        sys.path.remove(COMPANION)
        try:
            self.start_engine()
            self.assertIs(self.engine.cmds, self.cmds)
        finally:
            sys.path.insert(0, COMPANION)

    def test_an_incomplete_one_is_an_error(self):
        forget_layer()
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(os.path.join(COMPANION, "Vantorelix_layer.py"), folder)
            sys.path.remove(COMPANION)
            sys.path.insert(0, folder)
            try:
                self.raises(ImportError, "Vantorelix_", import_engine)
            finally:
                sys.path.remove(folder)
                sys.path.insert(0, COMPANION)
                sys.modules.pop("Vantorelix_engine", None)


if __name__ == "__main__":
    unittest.main()
