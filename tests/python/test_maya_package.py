"""The package `maya` over the standalone host: what scripts may rely on without Maya."""

import contextlib
import io
import os
import subprocess
import sys
import tempfile
import unittest

from companion import CHECKOUT, HostTest

IDENTITY = [1.0, 0, 0, 0, 0, 1.0, 0, 0, 0, 0, 1.0, 0, 0, 0, 0, 1.0]


class NotCovered(HostTest):
    def test_an_unknown_command_says_so(self):
        self.raises(AttributeError, "maya.cmds.polySphere is not covered", lambda: self.cmds.polySphere)
        self.assertFalse(hasattr(self.cmds, "polySphere"))

    def test_an_unknown_class_says_so(self):
        self.raises(AttributeError, "not covered", lambda: self.om.MFnMesh)
        self.raises(AttributeError, "not covered", lambda: self.oma.MFnAnimCurve)

    def test_an_unknown_flag_says_so_and_does_nothing(self):
        self.raises(TypeError, "Invalid flag 'uuid': not covered by ls", self.cmds.ls, uuid=True)
        self.raises(TypeError, "not covered", self.cmds.createNode, "transform", shared=True)
        self.assertEqual(self.cmds.ls(), [])

    def test_a_flag_under_both_names_is_an_error(self):
        self.raises(TypeError, "given twice", self.cmds.ls, sl=True, selection=True)


class Nodes(HostTest):
    def test_flags_have_long_and_short_names(self):
        self.cmds.createNode("transform", n="a")
        self.cmds.createNode("transform", name="b", parent="a")
        for flags in ({"sl": True, "l": True}, {"selection": True, "long": True}):
            self.assertEqual(self.cmds.ls(**flags), ["|a|b"])
        for flags in ({"p": True, "f": True}, {"parent": True, "fullPath": True}):
            self.assertEqual(self.cmds.listRelatives("b", **flags), ["|a"])

    def test_listing_nothing_is_an_empty_list_and_no_relatives_are_none(self):
        self.cmds.createNode("transform", n="a")
        self.cmds.select(clear=True)
        self.assertEqual(self.cmds.ls(sl=True), [])
        self.assertEqual(self.cmds.ls("nothing*"), [])
        for flags in ({"parent": True}, {"shapes": True}, {}):
            self.assertIsNone(self.cmds.listRelatives("a", **flags))

    def test_relatives_of_a_hierarchy(self):
        self.open_arm()
        self.assertEqual(self.cmds.listRelatives("forearm"), ["forearmShape", "wrist"])
        self.assertEqual(self.cmds.listRelatives("forearm", s=True, f=True), ["|arm|upperArm|forearm|forearmShape"])
        self.assertEqual(self.cmds.listRelatives("forearm", ad=True, type="transform"), ["fingertip", "wrist"])

    def test_a_missing_object_is_a_value_error_that_names_it(self):
        for command in (self.cmds.select, self.cmds.listRelatives, self.cmds.delete, self.cmds.nodeType):
            self.raises(ValueError, "No object matches name: nobody", command, "nobody")
        self.raises(ValueError, "No object matches name: nobody.tx", self.cmds.getAttr, "nobody.tx")

    def test_names_are_made_unique_and_given_back(self):
        self.assertEqual(self.cmds.createNode("transform", name="a"), "a")
        self.assertEqual(self.cmds.createNode("transform", name="a"), "a1")
        self.assertEqual(self.cmds.rename("a1", "b"), "b")
        self.assertEqual(self.cmds.group(em=True, n="a"), "a1")
        self.raises(RuntimeError, "Unknown object type: nonsense", self.cmds.createNode, "nonsense")

    def test_selecting_replaces_adds_toggles_and_takes_away(self):
        for name in "abc":
            self.cmds.createNode("transform", name=name)
        chosen = lambda: self.cmds.ls(sl=True)
        self.cmds.select(["a", "b"])
        self.assertEqual(chosen(), ["a", "b"])
        self.cmds.select("c", add=True)
        self.assertEqual(chosen(), ["a", "b", "c"])
        self.cmds.select("a", d=True)
        self.assertEqual(chosen(), ["b", "c"])
        self.cmds.select("a", "b", tgl=True)
        self.assertEqual(chosen(), ["c", "a"])
        self.cmds.select("b", r=True)
        self.assertEqual(chosen(), ["b"])

    def test_parenting_that_would_move_an_object_must_be_asked_for(self):
        self.cmds.createNode("transform", name="far")
        self.cmds.setAttr("far.translateX", 5)
        self.cmds.createNode("transform", name="child")
        self.raises(RuntimeError, "not covered", self.cmds.parent, "child", "far")
        self.assertEqual(self.cmds.ls("child", l=True), ["|child"])
        self.assertEqual(self.cmds.parent("child", "far", relative=True), ["child"])
        self.assertEqual(self.cmds.ls("child", l=True), ["|far|child"])
        self.assertEqual(self.cmds.getAttr("child.worldMatrix[0]")[12:15], [5.0, 0.0, 0.0])

    def test_a_curve_needs_points_of_three_numbers(self):
        self.assertEqual(self.cmds.curve(d=1, p=[(0, 0, 0), (1, 2, 3)], name="path"), "path")
        self.assertEqual(self.cmds.nodeType(self.cmds.listRelatives("path", s=True)[0]), "nurbsCurve")
        self.raises(RuntimeError, "degree+1", self.cmds.curve, d=3, p=[(0, 0, 0)])
        self.raises(TypeError, "three numbers", self.cmds.curve, d=1, p=[(0, 0), (1, 1)])


class Attributes(HostTest):
    def test_numbers_triples_and_matrices_have_their_shapes(self):
        self.cmds.createNode("transform", name="a")
        self.cmds.setAttr("a.translate", 1, 2, 3, type="double3")
        self.cmds.setAttr("a.ry", 90)
        self.assertEqual(self.cmds.getAttr("a.tz"), 3.0)
        self.assertEqual(self.cmds.getAttr("a.translate"), [(1.0, 2.0, 3.0)])
        self.assertAlmostEqual(self.cmds.getAttr("a.rotateY"), 90.0)
        self.assertEqual(self.cmds.getAttr("a.matrix")[12:], [1.0, 2.0, 3.0, 1.0])
        self.assertIs(self.cmds.getAttr("a.visibility"), True)

    def test_an_animated_attribute_is_read_at_any_time(self):
        self.ball()
        self.cmds.currentTime(3)
        self.assertAlmostEqual(self.cmds.getAttr("ball.tx"), 2.0)
        self.assertAlmostEqual(self.cmds.getAttr("ball.translate", t=6)[0][0], 5.0)
        self.assertAlmostEqual(self.cmds.getAttr("ball.worldMatrix[0]", time=11)[12], 10.0)

    def test_locked_driven_and_missing_attributes_are_errors(self):
        self.ball()
        self.raises(RuntimeError, "locked or connected", self.cmds.setAttr, "ball.tx", 1)
        self.cmds.setAttr("ball.ty", lock=True)
        self.raises(RuntimeError, "locked or connected", self.cmds.setAttr, "ball.ty", 1)
        self.cmds.setAttr("ball.ty", l=False)
        self.cmds.setAttr("ball.ty", 4)
        self.assertEqual(self.cmds.getAttr("ball.ty"), 4.0)
        self.raises(ValueError, "No object matches name: ball.nothing", self.cmds.setAttr, "ball.nothing", 1)
        self.raises(ValueError, "not finite", self.cmds.setAttr, "ball.tz", float("nan"))

    def test_attributes_can_be_added_and_asked_for(self):
        self.cmds.createNode("transform", name="a")
        self.assertFalse(self.cmds.attributeQuery("note", node="a", exists=True))
        self.cmds.addAttr("a", ln="note", dt="string")
        self.cmds.setAttr("a.note", "text", type="string")
        self.assertEqual(self.cmds.getAttr("a.note"), "text")
        self.assertTrue(self.cmds.attributeQuery("note", n="a", ex=True))


class Animation(HostTest):
    def test_key_times_come_as_a_list_or_none(self):
        self.ball()
        self.cmds.createNode("transform", name="still")
        self.assertEqual(self.cmds.keyframe("ball", q=True, timeChange=True), [1.0, 11.0])
        self.assertEqual(self.cmds.keyframe("ball.tx", query=True, vc=True), [0.0, 10.0])
        self.assertEqual(self.cmds.keyframe("ball", q=True, kc=True), 2)
        self.assertEqual(self.cmds.keyframe("ball", at="tx", q=True, tc=True, t=(5, 20)), [11.0])
        self.assertIsNone(self.cmds.keyframe("still", q=True, timeChange=True))

    def test_keys_are_set_moved_changed_and_cut(self):
        self.ball()
        self.assertEqual(self.cmds.setKeyframe("ball.tx", t=6, v=9), 1)
        self.assertEqual(self.cmds.keyframe("ball.tx", e=True, t=(6, 6), timeChange=7), 1)
        self.assertEqual(self.cmds.keyframe("ball.tx", edit=True, time=(7,), relative=True, valueChange=-1), 1)
        self.assertEqual(self.cmds.keyframe("ball", q=True, tc=True, vc=True), [1.0, 0.0, 7.0, 8.0, 11.0, 10.0])
        self.assertEqual(self.cmds.keyframe("ball.tx", e=True, r=True, timeChange=4), 3)
        self.assertEqual(self.cmds.keyframe("ball", q=True, tc=True), [5.0, 11.0, 15.0])
        self.assertEqual(self.cmds.cutKey("ball", at="translateX", t=(10, 20)), 2)
        self.assertEqual(self.cmds.keyframe("ball", q=True, tc=True), [5.0])
        self.cmds.cutKey("ball")
        self.assertFalse(self.cmds.objExists("ball_translateX"))

    def test_angles_are_degrees(self):
        self.cmds.createNode("joint", name="knee")
        self.cmds.setKeyframe("knee.rz", t=1, v=90)
        self.assertAlmostEqual(self.cmds.keyframe("knee.rz", q=True, vc=True)[0], 90.0)
        self.assertAlmostEqual(self.cmds.getAttr("knee.worldMatrix[0]")[1], 1.0)

    def test_tangents_and_infinity_shape_the_curve(self):
        self.ball()
        self.assertEqual(self.cmds.keyTangent("ball.tx", q=True, ott=True), ["linear", "linear"])
        self.cmds.keyTangent("ball.tx", e=True, itt="step", ott="step")
        self.assertEqual(self.cmds.getAttr("ball.tx", t=10), 0.0)
        self.cmds.keyTangent("ball.tx", itt="linear", ott="linear")
        self.cmds.setInfinity("ball.tx", poi="linear")
        self.assertAlmostEqual(self.cmds.getAttr("ball.tx", t=21), 20.0)
        self.assertEqual(self.cmds.setInfinity("ball.tx", q=True, postInfinite=True), ["linear"])

    def test_scene_time(self):
        self.cmds.playbackOptions(min=10, maxTime=20)
        self.assertEqual(self.cmds.playbackOptions(q=True, min=True), 10.0)
        self.assertEqual(self.cmds.playbackOptions(query=True, max=True), 20.0)
        self.assertEqual(self.cmds.currentTime(12.5), 12.5)
        self.assertEqual(self.cmds.currentTime(q=True), 12.5)
        self.assertEqual(self.cmds.currentUnit(q=True, time=True), "film")


class Application(HostTest):
    def test_deferred_calls_run_in_order_with_the_lowest_priority_last(self):
        ran = []
        self.cmds.evalDeferred(lambda: ran.append("last"), lowestPriority=True)
        self.cmds.evalDeferred(lambda: ran.append("low"), low=True)
        self.utils.executeDeferred(ran.append, "first")
        self.cmds.evalDeferred(lambda: (ran.append("second"), self.cmds.evalDeferred(lambda: ran.append("third"))))
        self.assertEqual(ran, [])
        self.utils.processIdleEvents()
        self.assertEqual(ran, ["first", "second", "third", "low", "last"])

    def test_a_deferred_call_that_fails_is_shown_and_the_next_one_runs(self):
        ran, shown = [], io.StringIO()
        self.cmds.evalDeferred(lambda: 1 / 0)
        self.cmds.evalDeferred(lambda: ran.append(1))
        with contextlib.redirect_stderr(shown):
            self.utils.processIdleEvents()
        self.assertEqual((ran, self.host.failures), ([1], 1))
        self.assertIn("ZeroDivisionError", shown.getvalue())

    def test_an_interrupt_leaves_the_idle_loop(self):
        def interrupt():
            raise KeyboardInterrupt

        self.cmds.evalDeferred(interrupt)
        self.assertRaises(KeyboardInterrupt, self.utils.processIdleEvents)

    def test_option_variables_keep_their_type(self):
        self.cmds.optionVar(iv=("i", 3), floatValue=("f", 2), sv=("s", "x"))
        self.cmds.optionVar(sva=("s", "y"))
        self.assertEqual([self.cmds.optionVar(q=name) for name in "ifs"], [3, 2.0, ["x", "y"]])
        self.assertIsInstance(self.cmds.optionVar(q="f"), float)
        self.assertEqual((self.cmds.optionVar(ex="i"), self.cmds.optionVar(exists="no")), (True, False))
        self.assertEqual(self.cmds.optionVar(q="no"), 0)

    def test_option_variables_outlive_the_host_in_a_file(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "options.json")
            self.host.restart(preferences=path)
            self.cmds.optionVar(iv=("samples", 4))
            self.host.restart(preferences=path)
            self.assertEqual(self.cmds.optionVar(q="samples"), 4)
            self.host.restart()
            self.assertFalse(self.cmds.optionVar(exists="samples"))

    def test_messages_in_the_viewport_are_kept_except_in_batch_mode(self):
        self.cmds.inViewMessage(amg="done", pos="midCenter", fade=True, alpha=0.9)
        self.assertEqual(self.host.messages, ["done"])
        self.host.restart(batch=True)
        self.assertTrue(self.cmds.about(batch=True))
        self.raises(RuntimeError, "batch", self.cmds.inViewMessage, amg="done")

    def test_panels_show_motion_trails_or_not(self):
        panel = self.cmds.getPanel(type="modelPanel")[0]
        self.assertFalse(self.cmds.modelEditor(panel, q=True, motionTrails=True))
        self.cmds.modelEditor(panel, e=True, motionTrails=True)
        self.assertTrue(self.cmds.modelEditor(panel, query=True, motionTrails=True))
        self.raises(RuntimeError, "not found", self.cmds.modelEditor, "nowhere", q=True, motionTrails=True)

    def test_plug_ins_are_found_loaded_once_and_unloaded(self):
        self.host.restart(plugin_loaded=False)
        self.raises(RuntimeError, "Unknown object type", self.cmds.createNode, "vantorelix")
        self.raises(RuntimeError, "was not found", self.cmds.loadPlugin, "Vantorelix_plugin", quiet=True)
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "Vantorelix_plugin.py")
            open(path, "w").close()
            self.assertEqual(self.cmds.loadPlugin(path, qt=True), ["Vantorelix_plugin"])
        self.assertTrue(self.cmds.pluginInfo("Vantorelix_plugin", q=True, loaded=True))
        self.assertEqual(self.cmds.createNode("vantorelix", name="v"), "v")
        self.cmds.unloadPlugin("Vantorelix_plugin")
        self.assertFalse(self.cmds.pluginInfo("Vantorelix_plugin", q=True, l=True))

    def test_files_that_cannot_be_opened_leave_the_scene(self):
        self.ball()
        self.raises(RuntimeError, "not found", self.cmds.file, "nowhere.ma", open=True)
        self.raises(RuntimeError, "run.py", self.cmds.file, os.path.join(CHECKOUT, "tests/python/run.py"), o=True)
        self.assertTrue(self.cmds.objExists("ball"))
        self.raises(RuntimeError, "not covered", self.cmds.file, force=True)


class ObjectModel(HostTest):
    def test_a_context_gives_the_same_world_matrix_as_a_query(self):
        self.open_arm()
        plug = self.plug("fingertip", "worldMatrix").elementByLogicalIndex(0)
        for frame in (1.0, 17.25, 78.0):
            context = self.om.MDGContext(self.om.MTime(frame, self.om.MTime.uiUnit()))
            matrix = self.om.MFnMatrixData(plug.asMObject(context)).matrix()
            asked = self.cmds.getAttr("fingertip.worldMatrix[0]", time=frame)
            self.assertEqual([matrix.getElement(i // 4, i % 4) for i in range(16)], asked)
            self.assertNotEqual(asked, IDENTITY)

    def test_times_are_converted_between_units(self):
        time = self.om.MTime(48.0, self.om.MTime.kFilm)
        self.assertEqual(time.asUnits(self.om.MTime.kSeconds), 2.0)
        self.assertEqual(self.om.MTime.uiUnit(), self.om.MTime.kFilm)
        self.ball()
        context = self.om.MDGContext(self.om.MTime(0.25, self.om.MTime.kSeconds))
        data = self.plug("ball", "worldMatrix").elementByLogicalIndex(0).asMObject(context)
        self.assertAlmostEqual(self.om.MFnMatrixData(data).matrix().getElement(3, 0), 5.0)

    def test_vector_arrays_go_onto_a_node_and_come_back_bit_for_bit(self):
        self.cmds.createNode("vantorelix", name="v")
        values = self.om.MVectorArray([(0.1, 1e-300, -0.0)])
        values.append(self.om.MVector(1, float("inf"), 3))
        self.plug("v", "points").setMObject(self.om.MFnVectorArrayData().create(values))
        read = self.cmds.getAttr("v.points")
        self.assertEqual(repr(read), "[(0.1, 1e-300, -0.0), (1.0, inf, 3.0)]")
        back = self.om.MFnVectorArrayData(self.plug("v", "points").asMObject()).array()
        self.assertEqual([tuple(vector) for vector in back], read)
        self.raises(TypeError, "triples", self.om.MVectorArray, [(1, 2)])

    def test_objects_that_are_gone_are_errors(self):
        self.ball()
        plug = self.plug("ball", "worldMatrix").elementByLogicalIndex(0)
        self.cmds.file(new=True, force=True)
        self.cmds.createNode("transform", name="other")  # may get the number that the ball had
        self.raises(RuntimeError, "Object does not exist", plug.asMObject)
        self.raises(RuntimeError, "Object does not exist", self.om.MSelectionList().add, "ball")
        self.raises(RuntimeError, "Cannot find item", self.plug, "other", "nothing")
        self.raises(RuntimeError, "Unexpected", self.plug("other", "worldMatrix").elementByLogicalIndex, 1)


class Messages(HostTest):
    def listen(self):
        heard = []
        add = self.oma.MAnimMessage
        self.curve = add.addAnimCurveEditedCallback(lambda curves, data: heard.append("curve"))
        self.key = add.addAnimKeyframeEditedCallback(lambda *_: heard.append("key"))
        self.removed = self.om.MDGMessage.addNodeRemovedCallback(
            lambda node, data: heard.append(self.om.MFnDependencyNode(node).name() + data), "animCurve", "!"
        )
        return heard

    def test_edits_are_told_inside_the_edit_until_the_callback_is_removed(self):
        self.ball()
        heard = self.listen()
        self.cmds.setKeyframe("ball.tx", t=5, v=1)
        self.assertEqual(sorted(heard), ["curve", "key"])
        self.om.MMessage.removeCallback(self.curve)
        del heard[:]
        self.cmds.keyframe("ball.tx", e=True, t=5, vc=2)
        self.assertEqual(heard, ["key"])
        self.cmds.delete("ball")
        self.assertEqual(heard[1:], ["ball_translateX!"])
        self.raises(RuntimeError, "not valid", self.om.MMessage.removeCallback, self.curve)

    def test_a_new_scene_tells_of_its_nodes_while_it_says_so(self):
        self.ball()
        busy = []
        self.om.MDGMessage.addNodeRemovedCallback(lambda *_: busy.append(self.om.MFileIO.isNewingFile()), "animCurve")
        self.cmds.file(newFile=True)
        self.assertEqual((busy, self.om.MFileIO.isNewingFile()), ([True], False))
        self.ball()  # callbacks outlive scenes
        self.cmds.delete("ball")
        self.assertEqual(busy, [True, False])

    def test_a_callback_may_remove_itself_and_others(self):
        self.ball()
        heard = []

        def first(*_):
            heard.append("first")
            self.om.MMessage.removeCallbacks(identifiers)

        identifiers = [self.oma.MAnimMessage.addAnimCurveEditedCallback(first)]
        identifiers.append(self.oma.MAnimMessage.addAnimCurveEditedCallback(lambda *_: heard.append("second")))
        for _ in range(2):
            self.cmds.setKeyframe("ball.tx", t=5, v=1)
        self.assertEqual(heard, ["first"])

    def test_a_callback_that_fails_is_shown_and_the_edit_is_done(self):
        self.ball()
        self.oma.MAnimMessage.addAnimCurveEditedCallback(lambda *_: 1 / 0)
        shown = io.StringIO()
        with contextlib.redirect_stderr(shown):
            self.cmds.setKeyframe("ball.tx", t=5, v=1)
        self.assertIn("ZeroDivisionError", shown.getvalue())
        self.assertEqual(self.cmds.keyframe("ball", q=True, kc=True), 3)

    def test_an_interrupt_in_a_callback_reaches_whoever_edits(self):
        self.ball()

        def interrupt(*_):
            raise KeyboardInterrupt

        self.oma.MAnimMessage.addAnimCurveEditedCallback(interrupt)
        self.assertRaises(KeyboardInterrupt, self.cmds.setKeyframe, "ball.tx", t=5, v=1)
        self.assertEqual(self.cmds.keyframe("ball", q=True, kc=True), 3)
        self.assertTrue(self.cmds.objExists("ball"))  # the next call is not an interrupt


class RunningScripts(HostTest):
    def run_script(self, script, *arguments, **options):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "script.py")
            with open(path, "w") as file:
                file.write(script)
            command = [sys.executable, "-m", "vantorelix_scene", options.get("scene", HostTest.ARM), path]
            search = os.path.abspath(os.environ["VANTORELIX_HOST"])
            done = subprocess.Popen(command + list(arguments), env=dict(os.environ, PYTHONPATH=search),
                                    stdout=subprocess.PIPE, stderr=subprocess.PIPE, universal_newlines=True)
            out, err = done.communicate()
            return done.returncode, out, err

    def test_the_script_finds_the_scene_open_and_its_arguments(self):
        code, out, err = self.run_script("import sys, maya.cmds as c\nprint(c.objExists('wrist'), sys.argv[1:])", "a", "-b")
        self.assertEqual((code, out), (0, "True ['a', '-b']\n"), err)

    def test_errors_of_the_script_its_callbacks_and_its_deferred_calls_are_exit_code_1(self):
        deferred = "import maya.cmds as c, maya.utils\nc.evalDeferred(lambda: 1 / 0)\nmaya.utils.processIdleEvents()"
        for script in ("1 / 0", deferred):
            code, _, err = self.run_script(script)
            self.assertEqual(code, 1)
            self.assertIn("Traceback", err)

    def test_a_missing_scene_is_exit_code_2(self):
        code, _, err = self.run_script("print(1)", scene="nowhere.ma")
        self.assertEqual(code, 2)
        self.assertIn("nowhere.ma: no such file", err)

    def test_the_script_has_its_own_exit_code(self):
        self.assertEqual(self.run_script("import sys; sys.exit(7)")[0], 7)


if __name__ == "__main__":
    unittest.main()
