"""Trails of rigs in namespaces: one for each object, whichever namespace is current, and none left empty."""

import itertools
import unittest
from unittest import mock

from companion import load_companion
from layer_case import LayerTest, forget_layer
from namespace_case import NamespaceTest


class TrailTest(NamespaceTest, LayerTest):
    TICK = 0.0  # trails are exact at once

    def make_trails(self, *objects):
        self.cmds.select(objects)
        self.engine.create_trail()
        self.assertEqual(self.told[-1:], ["Trail built for %d object(s)." % len(objects)])

    def trails(self):
        """The transforms of all trails, with their paths."""
        return sorted(self.cmds.listRelatives(shape, parent=True, fullPath=True)[0]
                      for shape in self.cmds.ls(type="vantorelix"))

    def assert_trails(self, *names):
        self.assertEqual(self.trails(), ["|vantorelixs_grp|" + name for name in sorted(names)])
        self.assertEqual(sorted(self.engine._REGISTRY), sorted(names))

    def under_all_conditions(self, check, *namespaces):
        """Runs `check` on a scene with a rig in each namespace, on a fresh host and engine, by each reading of rename,
        and with the root, the first rig's namespace and another one current."""
        for looked_up, current in itertools.product((True, False), (":", namespaces[0], "other:deep")):
            with self.subTest(looked_up=looked_up, current=current):
                self.host.restart()
                forget_layer()
                self.start_engine()
                self.open_arms(*namespaces)
                self.make("other:deep")
                self.host.rename_looks_up_namespaces = looked_up
                self.cmds.namespace(set=":" + current.strip(":"))
                check()
                self.assertEqual(self.current(), current)


class Trails(TrailTest):
    def test_a_second_trail_of_an_object_replaces_the_first_and_clearing_leaves_no_namespace(self):
        def check():
            nodes, namespaces = self.cmds.ls(), self.all_namespaces()
            for _click in range(3):
                self.make_trails("char:fingertip")
                self.assert_trails("vlx_char:fingertip_viz")
                self.assertEqual(self.all_namespaces(), namespaces + ["vlx_char"])
                self.assertEqual(self.cmds.ls(sl=True), ["char:fingertip"])
            self.engine.clear_trails()
            self.assert_trails()
            self.assertEqual((self.cmds.ls(), self.all_namespaces()), (nodes, namespaces))

        self.under_all_conditions(check, "char")

    def test_so_it_is_with_nested_namespaces(self):
        def check():
            namespaces = self.all_namespaces()
            for _click in range(2):
                self.make_trails("shot:char:fingertip", "shot:char:wrist")
                self.assert_trails("vlx_shot:char:fingertip_viz", "vlx_shot:char:wrist_viz")
                self.assertEqual(self.all_namespaces(), namespaces + ["vlx_shot", "vlx_shot:char"])
            self.engine.clear_trails()
            self.assertEqual(self.all_namespaces(), namespaces)

        self.under_all_conditions(check, "shot:char")

    def test_so_it_is_with_an_object_in_no_namespace(self):
        def check():
            for _click in range(2):
                self.make_trails("fingertip")
                self.assert_trails("vlx_fingertip_viz")
            self.engine.clear_trails()
            self.assert_trails()

        self.under_all_conditions(check, "char", "")

    def test_controls_of_one_name_in_several_rigs_have_a_trail_each(self):
        objects = ["a:fingertip", "b:fingertip", "a:b:fingertip", "a_b:fingertip", "fingertip"]

        def check():
            namespaces = self.all_namespaces()
            for _click in range(2):
                self.make_trails(*objects)
                self.assert_trails(*["vlx_%s_viz" % name for name in objects])
            self.make_trails("b:fingertip")
            self.assert_trails(*["vlx_%s_viz" % name for name in objects])
            self.engine.clear_trails()
            self.assertEqual(self.all_namespaces(), namespaces)

        self.under_all_conditions(check, "a", "b", "a:b", "a_b", "")

    def test_so_it_is_whichever_way_the_engine_is_called(self):
        def check():
            for click in (self.engine.create_trail, load_companion("Vantorelix").shelf_clicked,
                          lambda: self.engine.pellark_entry("lmb")):
                self.cmds.select("char:fingertip")
                click()
                self.assertEqual(self.told.pop(), "Trail built for 1 object(s).")
                self.assert_trails("vlx_char:fingertip_viz")
            self.engine.pellark_entry("clear")
            self.assert_trails()
            self.assertFalse(self.cmds.namespace(exists=":vlx_char"))

        self.under_all_conditions(check, "char")

    def test_a_trail_in_a_namespace_is_exact_and_follows_edits(self):
        def check():
            self.make_trails("char:fingertip")
            for _edit in range(2):
                points = self.cmds.getAttr("vlx_char:fingertip_vizShape.points")
                self.assertEqual(len(points), 78)
                for place, point in enumerate(points):
                    matrix = self.cmds.getAttr("char:fingertip.worldMatrix[0]", time=1 + place)
                    self.assertEqual(list(point), matrix[12:15])
                self.cmds.setKeyframe("char:upperArm", at="rotateZ", t=20, v=33)
                self.pump()

        self.under_all_conditions(check, "char")

    def test_a_trail_whose_object_goes_takes_its_namespace_along(self):
        def check():
            self.make_trails("char:fingertip", "b:fingertip")
            self.cmds.delete("char:wrist")
            self.cmds.setKeyframe("b:upperArm", at="rotateZ", t=20, v=33)
            self.pump()
            self.assert_trails("vlx_b:fingertip_viz")
            self.assertEqual([name for name in self.all_namespaces() if name.startswith("vlx_")], ["vlx_b"])

        self.under_all_conditions(check, "char", "b")


class Leftovers(TrailTest):
    def test_a_trail_deleted_by_hand_leaves_no_namespace_once_trails_are_cleared(self):
        self.open_arms("char")
        self.make_trails("char:fingertip")
        self.cmds.delete("vlx_char:fingertip_viz")
        self.assertEqual(self.all_namespaces(), ["char", "vlx_char"])
        self.engine.clear_trails()
        self.assertEqual(self.all_namespaces(), ["char"])

    def test_a_trail_of_an_earlier_version_is_replaced_whatever_it_is_called(self):
        for looked_up, former in ((True, "vlx_char:fingertip_viz"), (False, "fingertip_viz")):
            with self.subTest(former):
                self.host.restart()
                self.host.rename_looks_up_namespaces = looked_up
                forget_layer()
                self.start_engine()
                self.open_arms("char")
                own, self.engine.cmds = self.engine.cmds, self.cmds
                self.make_trails("char:fingertip")
                self.assert_trails(former)
                self.engine._REGISTRY.clear()  # as in a scene that was saved and opened again
                self.engine.cmds = own
                self.make_trails("char:fingertip")
                self.assert_trails("vlx_char:fingertip_viz")

    def test_nurbs_curves_keep_their_namespace_when_trails_are_cleared(self):
        self.open_arms("char")
        self.make_trails("char:fingertip")
        self.engine.convert_to_nurbs()
        self.engine.clear_trails()
        self.assertEqual(self.cmds.ls("vlx_*"), ["vlx_char:fingertip_curve"])
        self.assertEqual(self.all_namespaces(), ["char", "vlx_char"])

    def test_other_empty_namespaces_stay(self):
        self.open_arms("char")
        self.make("mine", "char:vlx_inner", "my_vlx_one")
        self.make_trails("char:fingertip")
        self.engine.clear_trails()
        self.assertEqual(self.all_namespaces(), ["char", "char:vlx_inner", "mine", "my_vlx_one"])

    def test_an_empty_one_that_is_current_stays_and_clearing_succeeds(self):
        self.open_arms("char")
        self.make_trails("char:fingertip")
        self.cmds.namespace(set="vlx_char")
        self.make_trails("char:fingertip")
        self.assert_trails("vlx_char:fingertip_viz")
        self.engine.clear_trails()
        self.assertEqual((self.current(), self.trails()), ("vlx_char", []))
        self.assertEqual(self.told[-1], "All trails cleared.")

    def test_a_locked_trail_is_an_error_and_its_namespace_stays(self):
        self.open_arms("char")
        self.make_trails("char:fingertip")
        self.cmds.lockNode("vlx_char:fingertip_viz")
        self.raises(RuntimeError, "locked", self.engine.clear_trails)
        self.assertEqual(self.all_namespaces(), ["char", "vlx_char"])


class Undo(TrailTest):
    def step(self, command):
        """As the menu runs it."""
        import Vantorelix_undo
        with Vantorelix_undo.step(self.cmds, "Trails"):
            command()

    def test_what_is_made_and_removed_is_undone_and_done_again_with_the_command(self):
        def check():
            self.cmds.select("char:fingertip")
            self.cmds.flushUndo()
            states = [(self.trails(), self.all_namespaces())]
            for command in (self.engine.create_trail, self.engine.create_trail, self.engine.clear_trails):
                self.step(command)
                states.append((self.trails(), self.all_namespaces()))
                self.assertEqual(self.cmds.undoInfo(query=True), len(states) - 1)
            for state in states[-2::-1]:
                self.cmds.undo()
                self.assertEqual((self.trails(), self.all_namespaces()), state)
            for state in states[1:]:
                self.cmds.redo()
                self.assertEqual((self.trails(), self.all_namespaces()), state)
            self.cmds.undo()
            self.pump()
            self.assert_trails("vlx_char:fingertip_viz")

        self.under_all_conditions(check, "char")

    def test_a_rebuild_of_trails_in_namespaces_is_no_step(self):
        self.open_arms("char")
        self.make_trails("char:fingertip")
        self.cmds.flushUndo()
        self.cmds.setKeyframe("char:upperArm", at="rotateZ", t=20, v=33)
        self.pump()
        self.assertEqual(self.cmds.undoInfo(query=True), 1)

    def test_commands_on_namespaces_are_steps_and_questions_are_none(self):
        self.cmds.flushUndo()
        self.cmds.namespace(add="a")
        self.cmds.namespace(set="a")
        self.cmds.namespace(exists="a")
        self.cmds.namespaceInfo(listNamespace=True)
        for wrong in ({"removeNamespace": ":a"}, {"set": "b"}, {"add": ":a"}, {}):
            self.assertRaises(RuntimeError, self.cmds.namespace, **wrong)
        self.assertEqual(self.cmds.undoInfo(query=True), 2)
        self.cmds.undo()
        self.assertEqual(self.current(), ":")
        self.cmds.namespace(removeNamespace="a")
        self.cmds.undo()
        self.assertEqual(self.all_namespaces(), ["a"])
        self.cmds.undo()
        self.assertEqual(self.all_namespaces(), [])


class Layer(TrailTest):
    """What reaches Maya."""

    def setUp(self):
        super(Layer, self).setUp()
        self.calls = []

    def record(self, *names):
        def recorded(name, command):
            def call(*args, **flags):
                self.calls.append((name, args, flags))
                return command(*args, **flags)
            return call
        for name in names:
            patch = mock.patch.object(self.cmds, name, recorded(name, getattr(self.cmds, name)))
            patch.start()
            self.addCleanup(patch.stop)

    def test_every_name_that_a_trail_gets_is_from_the_root(self):
        self.open_arms("char")
        self.cmds.namespace(set=":char")
        self.record("createNode", "rename")
        self.make_trails("char:fingertip", "char:wrist")
        given = [flags["name"] if name == "createNode" else args[1] for name, args, flags in self.calls]
        self.assertEqual(given, [":vantorelixs_grp", ":vlx_char:fingertip_vizShape", ":vlx_char:fingertip_viz",
                                 ":vlx_char:wrist_vizShape", ":vlx_char:wrist_viz"])

    def test_only_namespaces_that_are_empty_are_asked_to_go(self):
        self.open_arms("a:b", "c")
        self.make_trails("a:b:fingertip", "a:b:wrist", "c:wrist")
        self.record("namespace")
        self.make_trails("a:b:wrist")
        self.assertEqual(self.calls, [])
        self.make_trails("c:wrist")
        self.engine.clear_trails()
        self.assertEqual(self.calls, [("namespace", (), {"removeNamespace": name})
                                      for name in (":vlx_c", ":vlx_c", ":vlx_a:b", ":vlx_a")])

    def test_other_calls_of_scripts_reach_maya_as_they_come(self):
        self.make("rig")
        self.cmds.namespace(set="rig")
        cmds = self.engine.cmds
        self.assertEqual(cmds.createNode("transform", n="x"), "rig:x")
        self.assertEqual(cmds.createNode("joint"), "rig:joint1")
        self.assertEqual(cmds.rename("rig:x", "y"), "rig:y")
        self.assertEqual(cmds.group("rig:y"), "rig:group1")
        self.assertEqual(cmds.group(em=True, n="g"), "rig:g")
        cmds.select("rig:g")
        cmds.delete()
        self.assertFalse(cmds.objExists("rig:g"))


if __name__ == "__main__":
    unittest.main()
