"""Which calls of Maya the engine makes: functions, positional arguments, keywords and order, as they arrive."""

import os
import shutil
import sys
import tempfile
import types
import unittest

from support import EngineTest

FILE_ACTIVITY = ["om.MFileIO.isReadingFile()", "om.MFileIO.isWritingFile()", "om.MFileIO.isOpeningFile()",
                 "om.MFileIO.isNewingFile()"]
CLOCK = ["time.time()"]
RANGE = ["cmds.playbackOptions(min=True, q=True)", "cmds.playbackOptions(max=True, q=True)"]
SHAPE = "|vantorelixs_grp|vlx_ball_viz|vlx_ball_vizShape"
AGAIN = ["cmds.evalDeferred(<_rebuild_step>, lowestPriority=True)"]
LISTENING = ["oma.MAnimMessage.addAnimCurveEditedCallback(<_on_anim_edit>)",
             "oma.MAnimMessage.addAnimKeyframeEditedCallback(<_on_anim_edit>)",
             "om.MDGMessage.addNodeRemovedCallback(<_on_anim_edit>, 'animCurve')"]
GUARDS = FILE_ACTIVITY + ["oma.MAnimControl.isPlaying()"] + CLOCK


def spelled(call):
    """A call as text; sequences of triples by their length, objects by their class, functions by their name."""
    what, args, kwargs = call

    def text(value):
        if callable(value):
            return "<%s>" % value.__name__
        if isinstance(value, list) and value and not isinstance(value[0], str) or value == []:
            return "<%d>" % len(value)
        if isinstance(value, (str, float, int, tuple, list)) or value is None:
            return repr(value)
        return "<%s>" % type(value).__name__

    return "%s(%s)" % (what, ", ".join([text(a) for a in args] +
                                       ["%s=%s" % (k, text(kwargs[k])) for k in sorted(kwargs)]))


def evaluation(t, node="|ball"):
    return ["om.MTime(%r, 6)" % t, "om.MDGContext(<MTime>)", "om.MPlug.asMObject(<MDGContext>)",
            "om.MFnMatrixData((%r, %r))" % (node, t), "om.MFnMatrixData.matrix()", "om.MMatrix.getElement(3, 0)",
            "om.MMatrix.getElement(3, 1)", "om.MMatrix.getElement(3, 2)"]


def evaluations(times, clock=()):
    return [line for t in times for line in evaluation(t) + list(clock)]


def plug(node, attribute):
    return ["om.MSelectionList()", "om.MSelectionList.add(%r)" % node, "om.MSelectionList.getDependNode(0)",
            "om.MFnDependencyNode(%r)" % node, "om.MFnDependencyNode.findPlug(%r, False)" % attribute]


FAST_SAMPLER = (plug("|ball", "worldMatrix") + ["om.MPlug.elementByLogicalIndex(0)", "om.MTime.uiUnit()",
                                                "cmds.currentTime(q=True)"] + evaluation(1.0) +
                ["cmds.getAttr('|ball.worldMatrix[0]', time=1.0)"])
KEY_TIMES = ["cmds.keyframe('|ball', q=True, timeChange=True)"]
SHAPES = ["cmds.listRelatives('vlx_ball_viz', fullPath=True, s=True)"]


def array(attribute, n):
    return plug(SHAPE, attribute) + ["om.MVectorArray(<%d>)" % n, "om.MFnVectorArrayData()",
                                     "om.MFnVectorArrayData.create(<MVectorArray>)",
                                     "om.MPlug.setMObject(<MVectorArray>)"]


def push(n, keys):
    return (SHAPES + array("points", n) + array("colors", n) + array("keyPoints", keys) + array("keyColors", keys) +
            array("keyTimes", keys))


def attributes(*pairs):
    return ["cmds.setAttr('%s.%s', %s)" % (SHAPE, name, value) for name, value in pairs]


FRAME_ATTRIBUTES = SHAPES + attributes(("startFrame", "1.0"), ("frameStep", "1.0"))


def preferences(*names):
    return ["cmds.optionVar(exists='Vantorelix_%s')" % name for name in names]


def message(text):
    return ["cmds.inViewMessage(alpha=0.9, amg=%r, fade=True, pos='midCenter')" % text]


class ContractTest(EngineTest):
    def setUp(self):
        super(ContractTest, self).setUp()
        self.engine._set_msg_handler(None)

    def calls(self):
        return [spelled(call) for call in self.maya.taken(without=())]

    def expect(self, *runs):
        self.maxDiff = None
        self.assertEqual(self.calls(), [line for run in runs for line in run])


class Creation(ContractTest):
    ALL = preferences("samplesPerFrame", "lineWidth", "pointSize", "showLine", "showDots", "xrayMode", "colorMode")
    SELECTION = ["cmds.ls(long=True, sl=True)"]

    def test_asks_for_no_more_than_preferences_and_selection_when_nothing_is_selected(self):
        self.maya.selection = []
        self.engine.create_trail()
        self.expect(self.ALL, self.SELECTION, message("Select an animated object first."))

    def test_makes_a_trail(self):
        self.engine.create_trail(samples_per_frame=1, color_mode=2)
        self.expect(
            preferences("lineWidth", "pointSize", "showLine", "showDots", "xrayMode"), self.SELECTION,
            ["cmds.pluginInfo('Vantorelix_plugin', loaded=True, q=True)", "cmds.objExists('vantorelixs_grp')",
             "cmds.group(em=True, name='vantorelixs_grp')", "cmds.setAttr('vantorelixs_grp.overrideEnabled', 1)",
             "cmds.setAttr('vantorelixs_grp.overrideDisplayType', 2)"],
            RANGE, CLOCK, ["cmds.objExists('vlx_ball_viz')"], FAST_SAMPLER,
            evaluation(1.0), evaluations([5.0, 3.0, 2.0, 4.0], CLOCK), CLOCK, KEY_TIMES, evaluations([1.0, 5.0]),
            ["cmds.createNode('vantorelix', name='vlx_ball_vizShape')",
             "cmds.listRelatives('vlx_ball_vizShape', fullPath=True, parent=True)",
             "cmds.rename('|transform1', 'vlx_ball_viz')", "cmds.parent('vlx_ball_viz', 'vantorelixs_grp')"],
            push(5, 2), SHAPES,
            attributes(("lineWidth", "2.5"), ("pointSize", "6.0"), ("showLine", "True"), ("showDots", "True"),
                       ("xrayMode", "True"), ("colorMode", "2")),
            ["cmds.playbackOptions(min=True, q=True)"], attributes(("startFrame", "1.0"), ("frameStep", "1.0")),
            LISTENING,
            ["cmds.getPanel(type='modelPanel')", "cmds.modelEditor('modelPanel1', motionTrails=True, q=True)",
             "cmds.modelEditor('modelPanel4', motionTrails=True, q=True)",
             "cmds.modelEditor('modelPanel4', e=True, motionTrails=True)",
             "cmds.objExists('|ball')", "cmds.select(['|ball'], replace=True)"],
            message("Trail built for 1 object(s)."), ["cmds.refresh()"])
        self.assertEqual(self.points(), [(t, 0.0, 0.0) for t in (1.0, 2.0, 3.0, 4.0, 5.0)])
        self.assertEqual(self.maya.shape("ball")["keyTimes"], [(1.0, 0.0, 0.0), (5.0, 0.0, 0.0)])

    def test_display_values_arrive_as_they_were_passed(self):
        odd = object()
        self.engine.create_trail(line_width=odd, point_size="9", show_line=None, show_dots=0, xray_mode=[1])
        shape = self.maya.shape("ball")
        self.assertIs(shape["lineWidth"], odd)
        self.assertEqual((shape["pointSize"], shape["showLine"], shape["showDots"]), ("9", True, 0))

    def test_an_array_that_cannot_be_made_at_once_is_made_one_by_one(self):
        self.make_trail()
        whole = self.maya.om.MVectorArray

        def only_empty(*args):
            if args:
                raise TypeError("no sequences here")
            return whole()

        self.maya.om.MVectorArray = only_empty
        self.engine._set_vector_array_attr(SHAPE, "points", [(1, 2, 3), (4, 5, 6)])
        self.assertEqual([c for c in self.calls() if "Vector" in c],
                         ["om.MVectorArray()", "om.MVector(1.0, 2.0, 3.0)", "om.MVectorArray.append(<MVector>)",
                          "om.MVector(4.0, 5.0, 6.0)", "om.MVectorArray.append(<MVector>)", "om.MFnVectorArrayData()",
                          "om.MFnVectorArrayData.create(<MVectorArray>)", "om.MPlug.setMObject(<MVectorArray>)"])

    def test_clears(self):
        self.make_trail()
        self.engine.clear_trails()
        self.expect(["om.MMessage.removeCallback(%d)" % i for i in (11, 12, 13)],
                    ["cmds.objExists('vantorelixs_grp')", "cmds.delete('vantorelixs_grp')"],
                    message("All trails cleared."))

    def test_converts_to_curves(self):
        self.make_trail()
        self.maya.taken(without=())
        self.engine.convert_to_nurbs()
        self.expect(self.SELECTION, ["cmds.objExists('|ball')"], RANGE, FAST_SAMPLER,
                    evaluations([1.0, 2.0, 3.0, 4.0, 5.0]), KEY_TIMES, evaluations([1.0, 5.0]),
                    ["cmds.curve(d=3, name='vlx_ball_curve', p=<5>)", "cmds.select(['vlx_ball_curve'])"],
                    message("Created 1 standalone NURBS curve(s)."))


class Rebuild(ContractTest):
    def setUp(self):
        super(Rebuild, self).setUp()
        self.make_trail()

    def test_an_edit_queues_one_step_and_a_second_edit_none(self):
        self.maya.send("addAnimCurveEditedCallback")
        self.maya.send("addAnimKeyframeEditedCallback")
        self.expect(FILE_ACTIVITY, CLOCK, ["cmds.about(batch=True)"], AGAIN, FILE_ACTIVITY, CLOCK)

    def test_a_step_rebuilds_after_the_quiet(self):
        self.edit()
        self.maya.taken(without=())
        self.maya.run_deferred()
        self.expect(GUARDS, RANGE, CLOCK, CLOCK, ["cmds.objExists('|ball')", "cmds.objExists('vlx_ball_viz')"],
                    FAST_SAMPLER, evaluations([1.0, 2.0, 3.0, 4.0, 5.0], CLOCK), KEY_TIMES,
                    evaluations([1.0, 5.0], CLOCK), push(5, 2), FRAME_ATTRIBUTES, ["cmds.refresh()"])

    def test_a_step_waits_for_quiet_playback_and_files(self):
        self.maya.send("addAnimCurveEditedCallback")
        self.maya.taken(without=())
        self.maya.run_deferred()
        self.expect(GUARDS, AGAIN)
        self.maya.busy = {"isPlaying"}
        self.maya.run_deferred()
        self.expect(FILE_ACTIVITY, ["oma.MAnimControl.isPlaying()"], AGAIN)
        self.maya.busy = {"isOpeningFile"}
        self.maya.run_deferred()
        self.expect(FILE_ACTIVITY[:3], AGAIN)

    def test_everything_at_once(self):
        self.engine._rebuild_all_sync("whatever")
        self.expect(["cmds.objExists('|ball')", "cmds.objExists('vlx_ball_viz')"], RANGE, FAST_SAMPLER,
                    evaluations([1.0, 2.0, 3.0, 4.0, 5.0]), KEY_TIMES, evaluations([1.0, 5.0]), push(5, 2),
                    ["cmds.playbackOptions(min=True, q=True)"], FRAME_ATTRIBUTES)

    def test_a_trail_whose_object_has_gone(self):
        del self.maya.motions["|ball"]
        self.engine._rebuild_all()
        self.expect(["cmds.objExists('|ball')", "cmds.objExists('vlx_ball_viz')", "cmds.delete('vlx_ball_viz')"])
        self.assertEqual(len(self.engine._REGISTRY), 0)

    def test_listening_is_installed_once_and_removed(self):
        self.engine._ensure_callback()
        self.expect()
        self.assertEqual(self.engine._CB_ID, (11, 12, 13))
        self.engine._remove_callback()
        self.engine._ensure_callback()
        self.expect(["om.MMessage.removeCallback(%d)" % i for i in (11, 12, 13)], LISTENING)

    def test_preferences_reach_every_node_then_the_density(self):
        self.engine.apply_prefs_to_existing_trails(rebuild_if_samples_changed=True)
        short = "vlx_ball_vizShape"
        display = [("lineWidth", "2.5"), ("pointSize", "6.0"), ("showLine", "True"), ("showDots", "True"),
                   ("xrayMode", "True"), ("colorMode", "0")]
        self.expect(["cmds.ls(type='vantorelix')"],
                    preferences("lineWidth", "pointSize", "showLine", "showDots", "xrayMode", "colorMode"),
                    ["cmds.setAttr('%s.%s', %s)" % (short, name, value) for name, value in display],
                    preferences("samplesPerFrame"), SHAPES, attributes(("frameStep", "1.0")),
                    ["cmds.playbackOptions(min=True, q=True)"], attributes(("startFrame", "1.0")),
                    FILE_ACTIVITY, CLOCK, ["cmds.about(batch=True)"], AGAIN, ["cmds.refresh()"])

    def test_a_wrapped_command_is_the_one_that_is_called(self):
        seen = []
        original = self.maya.cmds.setAttr
        self.maya.cmds.setAttr = lambda *args: seen.append(args) or original(*args)
        self.engine.set_color_mode(3)
        self.assertEqual(seen, [("vlx_ball_vizShape.colorMode", 3)])

    def test_a_handle_is_looked_up_for_each_call(self):
        self.engine.set_color_mode(3)
        original, other = self.engine.cmds, types.ModuleType("other")
        self.engine.cmds = other
        self.assertRaisesRegex(AttributeError, "'other' has no attribute 'ls'", self.engine.set_color_mode, 2)
        seen = []
        other.ls = lambda **flags: seen.append(flags) or []
        other.refresh = lambda: None
        self.engine.set_color_mode(2)
        self.assertEqual(seen, [{"type": "vantorelix"}])
        del self.engine.cmds
        self.assertRaisesRegex(NameError, "cmds", self.engine.set_color_mode, 2)
        self.engine.cmds = original
        self.engine.set_color_mode(2)
        self.assertEqual(seen, [{"type": "vantorelix"}])


class Commands(ContractTest):
    def test_preferences_are_option_variables_of_their_type(self):
        e = self.engine
        e._set_pref_samples("5")
        e._set_pref_line_width(3)
        e._set_pref_xray(None)
        e._set_pref_color_mode(7.9)
        e._set_pref_line_width("abc")
        self.expect(["cmds.optionVar(iv=('Vantorelix_samplesPerFrame', 5))",
                     "cmds.optionVar(fv=('Vantorelix_lineWidth', 3.0))",
                     "cmds.optionVar(iv=('Vantorelix_xrayMode', 0))", "cmds.optionVar(iv=('Vantorelix_colorMode', 7))"])
        self.assertEqual((e._get_pref_samples(), e._get_pref_line_width(), e._get_pref_xray()), (5, 3.0, False))
        self.expect(*[preferences(n) + ["cmds.optionVar(q='Vantorelix_%s')" % n]
                      for n in ("samplesPerFrame", "lineWidth", "xrayMode")])

    def test_a_stored_value_of_the_wrong_kind_reads_as_the_default(self):
        self.maya.options["Vantorelix_samplesPerFrame"] = ["a", "b"]
        self.assertEqual(self.engine._get_pref_samples(), 1)
        self.maya.options["Vantorelix_samplesPerFrame"] = 7.8
        self.assertEqual(self.engine._get_pref_samples(), 7)

    def test_colour_mode_and_ghost(self):
        self.make_trail()
        self.engine.set_color_mode(2)
        self.expect(["cmds.optionVar(iv=('Vantorelix_colorMode', 2))", "cmds.ls(type='vantorelix')",
                     "cmds.setAttr('vlx_ball_vizShape.colorMode', 2)", "cmds.refresh()"],
                    message("Color mode -> Flow"))
        self.engine.toggle_ghost()
        self.expect(preferences("xrayMode"), ["cmds.optionVar(iv=('Vantorelix_xrayMode', 0))",
                                              "cmds.ls(type='vantorelix')",
                                              "cmds.setAttr('vlx_ball_vizShape.xrayMode', False)", "cmds.refresh()"],
                    message("Ghost OFF on 1 trail(s)"))

    def test_the_mini_menu_is_tried_two_ways(self):
        opened = []
        menu = types.ModuleType("Vantorelix")
        self.addCleanup(sys.modules.pop, "Vantorelix", None)
        sys.modules["Vantorelix"] = menu
        self.assertIs(self.engine._open_menu(), False)
        menu.show_trail_mini_menu = lambda: opened.append(1)
        self.assertIs(self.engine._open_menu(), True)
        self.engine.pellark_entry("  RMB ")
        self.assertEqual(len(opened), 2)

        def fail():
            opened.append(1)
            raise RuntimeError("no interface")

        menu.show_trail_mini_menu = fail
        self.assertIs(self.engine._open_menu(), False)
        self.assertEqual(len(opened), 4)

    def test_an_action_is_stripped_and_lowered_as_the_interpreter_does_it(self):
        class Action(str):
            pass

        class Word(object):
            def strip(self):
                return self

            def lower(self):
                return "clear"

        for action in ("\u00a0Clear\u3000", Action(" CLEAR"), Word()):
            self.engine.pellark_entry(action)
            self.expect(["cmds.objExists('vantorelixs_grp')"], message("All trails cleared."))
        self.engine.pellark_entry(b"clear")  # bytes are never equal to a text: the menu, which is not there
        self.expect()
        with self.assertRaisesRegex(AttributeError, "'(int|float)' object has no attribute 'strip'"):
            self.engine.pellark_entry(7)

    def test_numbers_in_texts_are_read_as_the_interpreter_reads_them(self):
        for given, stored in (("\u0665", 5), ("1_000", 1000), (b" 7 ", 7), ("\uff11\uff12", 12)):
            self.engine._set_pref_samples(given)
            self.assertEqual(self.engine._get_pref_samples(), stored, given)
        for given, stored in (("1_0.5", 10.5), ("\u0661.5", 1.5), (b"2.5", 2.5)):
            self.engine._set_pref_line_width(given)
            self.assertEqual(self.engine._get_pref_line_width(), stored, given)
        with self.assertRaisesRegex(ValueError, "invalid literal for int"):
            self.engine._set_pref_samples("1__0")

    def test_gestures(self):
        self.engine.pellark_entry("shift_lmb")
        self.expect(["cmds.objExists('vantorelixs_grp')"], message("All trails cleared."))
        self.engine.pellark_entry("past_future")
        self.assertEqual(self.maya.options["Vantorelix_colorMode"], 2)


class Bootstrap(ContractTest):
    def test_the_plugin_is_staged_loaded_and_looked_for_everywhere(self):
        folder = tempfile.mkdtemp().replace(os.sep, "/")  # as Maya has paths, on Windows, too
        self.addCleanup(shutil.rmtree, folder)
        self.addCleanup(os.environ.pop, "MAYA_PLUG_IN_PATH", None)
        self.maya.loaded = False
        self.maya.user_folder = folder + "/"
        self.assertIs(self.engine._ensure_plugin(), False)
        plug_ins = folder + "/2024/plug-ins"
        warning = self.maya.calls[-1][1][0]
        calls = self.calls()
        self.assertEqual(calls[:5], ["cmds.pluginInfo('Vantorelix_plugin', loaded=True, q=True)",
                                     "cmds.internalVar(userAppDir=True)", "cmds.about(version=True)",
                                     "cmds.optionVar(q='SafeModeAllowedlistPaths')",
                                     "cmds.optionVar(stringValueAppend=('SafeModeAllowedlistPaths', %r))" % plug_ins])
        self.assertEqual(calls[-2], "cmds.loadPlugin('Vantorelix_plugin', quiet=True)")
        self.assertIn("[Vantorelix] Plugin 'Vantorelix_plugin.py' not found. Tried: %s | "
                      % os.path.join(plug_ins, "Vantorelix_plugin.py"), warning)
        self.assertIn("| last error: Plug-in, ", warning)
        self.assertEqual(os.environ["MAYA_PLUG_IN_PATH"].split(os.pathsep)[-1], plug_ins)

    def test_search_path_entries_that_are_no_texts_are_skipped(self):
        self.maya.user_folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.maya.user_folder)
        before = list(sys.path)
        self.addCleanup(setattr, sys, "path", before)
        sys.path = before + [None, 7, "/somewhere"]
        candidates = self.engine._candidate_plugin_paths()
        self.assertIn(os.path.join("/somewhere", "Vantorelix_plugin.py"), candidates)
        self.assertEqual(candidates[-2:], ["Vantorelix_plugin.py", "Vantorelix_plugin"])


if __name__ == "__main__":
    unittest.main()
