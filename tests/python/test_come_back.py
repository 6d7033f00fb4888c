"""Trails that come back with an undo or a redo live again."""

import importlib
import sys
import unittest
from unittest import mock

from layer_case import LayerTest


class ComeBack(LayerTest):
    def build(self, names, **settings):
        self.cmds.select(names)
        with self.step("Build trail"):
            self.engine.create_trail(**settings)
        self.pump()

    def clear(self):
        with self.step("Clear trails"):
            self.engine.clear_trails()

    def test_when_a_clear_is_undone_and_live_again(self):
        names = self.trails(3)
        references = {key: list(settings["ref"]) for key, settings in self.engine._REGISTRY.items()}
        for _ in range(3):
            self.clear()
            self.assertEqual(len(self.engine._REGISTRY), 0)
            self.assertEqual(self.engine._CB_ID, None)
            self.cmds.undo()
            self.assertEqual({key: list(settings["ref"]) for key, settings in self.engine._REGISTRY.items()}, references)
            self.assertEqual(self.engine.trail_count(), 3)
            self.pump()
            self.assert_live(names)
        self.assertEqual(set(self.told), {"All trails cleared."})

    def test_and_are_right_although_keys_have_changed_meanwhile(self):
        names = self.trails(2)
        self.clear()
        with self.unrecorded():
            self.key("ball1", 55)
        self.cmds.undo()
        self.pump()
        self.assert_exact(names)

    def test_when_a_creation_is_done_again_and_live(self):
        names = self.balls(2)
        self.build(names, samples_per_frame=2)
        self.cmds.undo()
        # The engine must not go on with what is not there.
        self.assertEqual(len(self.engine._REGISTRY), 0)
        self.engine.convert_to_nurbs()
        self.assertEqual(self.told[-1], "No trails to convert. Build a trail first.")
        self.cmds.redo()
        self.pump()
        self.assertEqual([settings["samples_per_frame"] for settings in self.engine._REGISTRY.values()], [2, 2])
        self.assertEqual(len(self.points("ball1")), 47)
        entries = self.count()
        self.key("ball1", 77)
        self.pump()
        self.assertEqual(self.points("ball1")[-1], 77)
        self.assertEqual(self.count(), entries + 1)

    def test_a_trail_that_another_had_replaced_lives_again(self):
        names = self.balls(1)
        self.build(names, samples_per_frame=1)
        self.build(names, samples_per_frame=4)
        self.assertEqual(len(self.points("ball0")), 93)
        self.cmds.undo()
        self.pump()
        self.assert_live(names)
        self.cmds.redo()
        self.pump()
        self.assertEqual(self.engine._REGISTRY["vlx_ball0_viz"]["samples_per_frame"], 4)
        self.assertEqual(len(self.points("ball0")), 93)

    def test_what_the_user_deletes_with_the_group_lives_again(self):
        names = self.trails(2)
        self.cmds.delete("vantorelixs_grp")
        self.key("ball0", 44)
        self.pump()  # in which the engine drops both
        self.assertEqual(len(self.engine._REGISTRY), 0)
        self.cmds.undo()
        self.cmds.undo()
        self.pump()
        self.assert_live(names)

    def test_a_cleared_trail_that_was_kept_elsewhere_stays_as_it_is(self):
        self.trails(2)
        self.cmds.parent("vlx_ball0_viz", world=True)
        self.clear()
        self.cmds.setAttr("ball0.ry", 3)
        self.cmds.undo()
        self.assertEqual(len(self.engine._REGISTRY), 0)
        self.cmds.undo()
        self.assertEqual(list(self.engine._REGISTRY), ["vlx_ball1_viz"])

    def test_whose_object_is_not_there_are_told_of_once_and_live_when_it_is(self):
        names = self.trails(3)
        self.cmds.undoInfo(openChunk=True)
        self.cmds.delete(names[1:])
        self.cmds.undoInfo(closeChunk=True)
        self.pump()  # the engine deletes their trails: two entries
        self.assertEqual(self.count(), 3)
        self.cmds.undo()
        self.assertEqual(len(self.told), 1)
        self.assertIn("1 trail(s) came back, but do not follow edits", self.told[0])
        self.cmds.undo()
        self.assertEqual(len(self.told), 2)
        self.assertIn("1 trail(s) came back", self.told[1])
        self.assertRegex(self.told[1], r"objects are missing: vlx_ball[12]_viz\.")
        self.assertEqual(list(self.engine._REGISTRY), ["vlx_ball0_viz"])
        self.cmds.undo()
        self.pump()
        self.assertEqual(len(self.told), 2)
        self.assert_live(names)

    def test_after_a_reload_too(self):
        names = self.trails(2)
        self.clear()
        importlib.reload(self.engine)
        self.engine._set_msg_handler(self.told.append)
        self.cmds.undo()
        self.pump()
        self.assert_live(names)

    def test_in_another_scene_where_they_have_the_same_names(self):
        self.trails(2)
        self.cmds.file(new=True, force=True)
        names = self.trails(2)
        self.clear()
        self.cmds.undo()
        self.pump()
        self.assert_live(names)

    def test_nothing_is_kept_for_what_cannot_come_back(self):
        trails = sys.modules["Vantorelix_trails"]
        for _ in range(5):
            self.trails(2)
            self.cmds.file(new=True, force=True)
        self.assertEqual(len(trails._trails), 2)
        self.assertEqual(len([each for each in self.host.subscribers if each.event in ("Undo", "Redo")]), 2)

    def test_a_failure_to_remember_does_not_reach_the_engine(self):
        warnings = []
        with mock.patch.object(self.om, "MObjectHandle", side_effect=RuntimeError("no memory")), \
                mock.patch.object(self.cmds, "warning", warnings.append):
            names = self.trails(1)
        self.assert_live(names)
        self.assertIn("no memory", warnings[0])


if __name__ == "__main__":
    unittest.main()
