"""What the plug-in does when something changes: no more than is needed, and never at the cost of Maya's drawing."""

import contextlib
import gc
import sys
import types
import unittest
from unittest import mock

from companion import PLUGIN
from plugin_support import BEATS, COLORS, FLOW, PLAIN, POINTS, SPACING, STANDARD, PluginTest, single


class Work(PluginTest):
    """What is done for a redraw: the engine's generators are counted."""

    def setUp(self):
        super(Work, self).setUp()
        self.calls = []
        for name in ("compute_standard_colors", "compute_temperature_colors", "compute_beats_colors"):
            real = getattr(self.engine, name)
            setattr(self.engine, name, lambda *args, _real=real: self.calls.append(args) or _real(*args))

    def work(self, change=lambda: None):
        """How often colours were generated, how often the node was prepared, for one refresh after a change."""
        calls, prepared = len(self.calls), self.viewport.prepared().get("trailShape", 0)
        change()
        self.viewport.refresh()
        return len(self.calls) - calls, self.viewport.prepared()["trailShape"] - prepared

    def test_a_redraw_without_a_change_does_nothing_at_all(self):
        for mode in (STANDARD, FLOW, BEATS):
            self.cmds.file(new=True, force=True)
            self.viewport = self.render.Viewport()
            self.make_node(mode)
            self.assertEqual(self.work(), (1, 1))
            for _ in range(3):
                self.assertEqual(self.work(), (0, 0))

    def test_being_asked_again_without_a_change_reads_no_array_and_makes_no_color(self):
        self.make_node(FLOW)
        self.drawn()
        with mock.patch.object(self.maya.api.OpenMaya.MFnVectorArrayData, "array", side_effect=AssertionError):
            self.assertEqual(self.work(self.node().redraw), (0, 1))
        self.assertEqual(self.warned, [])

    def test_what_colors_do_not_depend_on_makes_none(self):
        self.make_node(BEATS)
        self.drawn()
        for change in (dict(lineWidth=4.0), dict(pointSize=1.0), dict(showDots=False), dict(xrayMode=True)):
            self.assertEqual(self.work(lambda: self.set(**change)), (0, 1), change)

    def test_what_colors_depend_on_makes_them_once(self):
        self.make_node(BEATS)
        self.drawn()
        for change in (lambda: self.set(startFrame=11.0), lambda: self.set(frameStep=0.5),
                       lambda: self.put("trailShape", keyTimes=[(12.0, 0.0, 0.0)]),
                       lambda: self.put("trailShape", points=POINTS[:4])):
            self.assertEqual(self.work(change), (1, 1))
        self.assertEqual(self.colors(), single(self.engine.compute_beats_colors(4, 11.0, 0.5, [12.0])))

    def test_colors_that_depend_on_the_number_of_points_stay_while_it_does(self):
        self.make_node(STANDARD)
        self.drawn()
        self.assertEqual(self.work(lambda: self.put("trailShape", points=POINTS[::-1], colors=COLORS[::-1])), (0, 1))
        self.assertEqual(self.work(lambda: self.put("trailShape", points=POINTS[:3])), (1, 1))
        self.assertEqual(len(self.colors()), 3)

    def test_time_refreshes_the_flow_and_nothing_else(self):
        for mode, made in ((STANDARD, 0), (SPACING, 0), (FLOW, 1), (BEATS, 0)):
            self.cmds.file(new=True, force=True)
            self.viewport = self.render.Viewport()
            self.make_node(mode)
            self.drawn()
            self.assertEqual(self.work(lambda: self.cmds.currentTime(13.0)), (made, made), mode)
            self.cmds.currentTime(1.0)

    def test_time_that_passes_no_point_makes_no_colors(self):
        self.make_node(FLOW)
        self.cmds.currentTime(5.0)
        self.drawn()
        self.assertEqual(self.work(lambda: self.cmds.currentTime(9.5))[0], 0)
        self.assertEqual(self.work(lambda: self.cmds.currentTime(10.0))[0], 1)
        self.assertEqual(self.work(lambda: self.cmds.currentTime(12.0))[0], 1)
        self.assertEqual(self.work(lambda: self.cmds.currentTime(12.5))[0], 0)
        self.assertEqual(self.work(lambda: self.cmds.currentTime(13.0))[0], 1)
        self.assertEqual(self.work(lambda: self.cmds.currentTime(100.0))[0], 1)
        self.assertEqual(self.work(lambda: self.cmds.currentTime(101.0))[0], 0)
        self.assertEqual(self.colors(), single(self.engine.compute_temperature_colors(5, 10.0, 1.0)))


class Box(PluginTest):
    def test_it_holds_every_point_and_key(self):
        self.make_node()
        self.put("trailShape", keyPoints=[(0.0, 9.0, 0.0)], keyColors=[(1.0, 1.0, 1.0)])
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (6.0, 9.0, 2.0)))

    def test_it_follows_the_points(self):
        self.make_node()
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (6.0, 2.0, 2.0)))
        self.put("trailShape", points=[(100.0, 0.0, 0.0), (101.0, 0.0, 0.0)], keyPoints=[])
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((100.0, 0.0, 0.0), (101.0, 0.0, 0.0)))

    def test_it_follows_the_points_alone(self):
        self.make_node()
        self.drawn()
        self.put("trailShape", points=[(0.0, 50.0, 0.0)] * 2)
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (4.0, 50.0, 0.0)))

    def test_it_follows_the_keys(self):
        self.make_node()
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (6.0, 2.0, 2.0)))
        self.put("trailShape", keyPoints=[(0.0, 70.0, 0.0)])
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (6.0, 70.0, 2.0)))

    def test_it_is_right_before_anything_was_drawn(self):
        self.make_node()
        box = self.node().boundingBox()
        self.assertEqual((tuple(box.min)[:3], tuple(box.max)[:3]), ((0.0, -1.0, -5.0), (6.0, 2.0, 2.0)))

    def test_an_empty_trail_has_a_box_of_no_size(self):
        self.cmds.createNode("vantorelix", name="trailShape")
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, 0.0, 0.0), (0.0, 0.0, 0.0)))


class Errors(PluginTest):
    def test_a_call_that_maya_refuses_is_told_once_and_the_drawing_is_closed(self):
        self.make_node()
        self.set(xrayMode=True)
        with mock.patch.object(self.render.MUIDrawManager, "mesh", side_effect=RuntimeError("no device")):
            for width in (1.0, 2.0, 3.0):
                self.set(lineWidth=width)
                names = self.names()
        self.assertEqual(names[-2:], ["endDrawInXray", "endDrawable"])
        self.assertEqual(len(self.warned), 1)
        self.assertIn("no device", self.warned[0])
        self.set(lineWidth=4.0)
        self.assertEqual(self.names().count("mesh"), 3)

    def test_an_attribute_that_cannot_be_read_leaves_the_rest_as_it_was(self):
        self.make_node(SPACING)
        self.drawn()
        self.put("trailShape", points=POINTS[:3], colors=COLORS[2:])
        real = self.maya.api.OpenMaya.MFnDependencyNode.findPlug

        shape = self.maya.api.OpenMaya.MFnDependencyNode(self.node().thisMObject())
        plugs = [shape.findPlug(name, False) for name in ("points", "colors")]

        def refuse(node, name, networked):
            if name == "points":
                raise RuntimeError("no points")
            return real(node, name, networked)
        with mock.patch.object(self.plugin.om.MFnDependencyNode, "findPlug", refuse), \
                self.untold():
            for plug in plugs:
                self.node().setDependentsDirty(plug, [])
            self.assertEqual(self.colors(), single(COLORS[2:] + [PLAIN] * 2))
        self.assertEqual(len(self.warned), 1)
        self.set(lineWidth=3.0)
        self.assertEqual(len(self.colors()), 3)

    def test_an_interrupt_is_not_a_failure_and_passes(self):
        self.make_node()
        with mock.patch.object(self.render.MUIDrawManager, "mesh", side_effect=KeyboardInterrupt):
            self.assertRaises(KeyboardInterrupt, self.drawn)
        self.assertEqual(self.warned, [])

    def test_a_number_that_cannot_be_read_stays_as_it_was(self):
        self.make_node(SPACING)
        self.drawn()
        self.put("trailShape", points=POINTS[:3])
        with mock.patch.object(self.maya.api.OpenMaya.MPlug, "asInt", side_effect=RuntimeError("no mode")):
            self.assertEqual(self.colors(), single(COLORS[:3]))
        self.assertEqual(len(self.warned), 1)
        self.assertIn("no mode", self.warned[0])

    def test_without_the_engine_trails_are_drawn_and_one_warning_is_given(self):
        self.make_node(BEATS)
        with mock.patch.dict("sys.modules", {"Vantorelix_engine": None}):
            self.assertEqual(self.colors(), single(COLORS))
            self.set(colorMode=FLOW)
            self.assertEqual(self.colors(), single(COLORS))
            self.set(colorMode=STANDARD)
            self.assertEqual(self.colors(), single([PLAIN] * 5))
        self.assertEqual(len(self.warned), 1)
        self.assertRegex(self.warned[0], r"^\[Vantorelix\] Vantorelix_engine cannot give colors: .*\w\. Install Vantorelix again\.$")

    def test_a_node_that_is_gone_raises_nothing(self):
        self.make_node()
        self.drawn()
        shown = list(self.viewport._known.values())[0]
        self.cmds.delete("trailShape")
        shown.dirty, shown._box = True, None
        shown.refresh()
        shown.box()
        self.plugin._on_time_changed(None)
        self.assertTrue(self.warned)


class Gone(PluginTest):
    """A deleted node, of which the undo queue holds the Python object."""

    def test_it_is_not_redrawn_and_the_others_follow_the_time(self):
        kept = []
        for name in ("firstShape", "lastShape", "trailShape"):
            self.make_node(FLOW, name)
            self.drawn(name)
        for name in ("firstShape", "lastShape"):
            kept.append(self.node())
            self.cmds.delete(name)
        self.cmds.currentTime(12.0)
        self.assertEqual(self.colors(), single(self.engine.compute_temperature_colors(5, 10.0, 1.0)))
        for node in kept:
            self.assertIn(node, self.plugin.TrailNode.alive)
            node.redraw()
        self.assertEqual((self.render.MRenderer.dirty, self.warned), ([], []))


class Evaluation(PluginTest):
    """What Maya's evaluation manager and its cached playback ask of a node."""

    def evaluate(self, call, *changing, **during):
        """Tells the node that an evaluation is about to change these attributes, by preEvaluation or postEvaluation."""
        om, node = self.maya.api.OpenMaya, self.node()
        attributes = self.plugins.node_types["vantorelix"].attributes
        evaluation = om.MEvaluationNode(attributes[name] for name in changing)
        context = during.get("context", om.MDGContext.kNormal)
        getattr(node, call)(context, evaluation, *([0] if call == "postEvaluation" else []))

    CALLS = ("preEvaluation", "postEvaluation")

    def test_what_an_evaluation_changes_is_drawn(self):
        for call in self.CALLS:
            self.cmds.file(new=True, force=True)
            self.make_node(SPACING)
            self.drawn()
            with self.untold():
                self.put("trailShape", points=POINTS[::-1], colors=COLORS[::-1])
                self.set(lineWidth=9.0)
                self.assertEqual(self.colors(), single(COLORS))
                self.evaluate(call, "points", "colors", "lineWidth")
                self.assertEqual(self.colors(), single(COLORS[::-1]), call)
                self.assertIn(("setLineWidth", (9.0,)), self.drawn())

    def test_an_animated_width_reads_no_array(self):
        self.make_node(SPACING)
        self.drawn()
        for call in self.CALLS:
            with self.untold(), mock.patch.object(self.maya.api.OpenMaya.MFnVectorArrayData, "array",
                                                  side_effect=AssertionError):
                self.set(lineWidth=3.0 + self.CALLS.index(call))
                self.evaluate(call, "lineWidth")
                self.assertIn(("setLineWidth", (3.0 + self.CALLS.index(call),)), self.drawn())
        self.assertEqual(self.warned, [])

    def test_an_evaluation_that_changes_nothing_of_a_trail_redraws_nothing(self):
        self.make_node()
        self.drawn()
        for call in self.CALLS:
            self.evaluate(call)
        self.assertEqual(self.render.MRenderer.dirty, [])

    def test_filling_the_cache_in_the_background_leaves_what_is_drawn(self):
        self.make_node(SPACING)
        self.drawn()
        om = self.maya.api.OpenMaya
        for call in self.CALLS:
            self.evaluate(call, "points", "colors", "lineWidth", context=om.MDGContext(om.MTime(5.0)))
        self.assertEqual(self.render.MRenderer.dirty, [])
        with mock.patch.object(om.MFnVectorArrayData, "array", side_effect=AssertionError):
            self.node().redraw()
            self.assertEqual(self.colors(), single(COLORS))
        self.assertEqual(self.warned, [])

    def test_it_wants_to_be_cached_and_switches_no_caching_off(self):
        self.make_node()
        om, node = self.maya.api.OpenMaya, self.node()
        asked = om.MEvaluationNode(), om.MNodeCacheDisablingInfo(), om.MNodeCacheSetupInfo(), []
        with mock.patch.object(om.MPxNode, "getCacheSetup") as base:
            node.getCacheSetup(*asked)
        base.assert_called_once_with(node, *asked)
        self.assertTrue(asked[2].getPreference(om.MNodeCacheSetupInfo.kWantToCacheByDefault))
        self.assertFalse(asked[1].getCacheDisabled())
        self.assertEqual(self.warned, [])

    def test_a_maya_without_caching_for_python_misses_nothing(self):
        self.cmds.unloadPlugin("Vantorelix_plugin")
        om = self.maya.api.OpenMaya
        base, info = om.MPxNode.getCacheSetup, om.MNodeCacheSetupInfo
        self.addCleanup(setattr, om.MPxNode, "getCacheSetup", base)
        self.addCleanup(setattr, om, "MNodeCacheSetupInfo", info)
        del om.MPxNode.getCacheSetup, om.MNodeCacheSetupInfo
        self.cmds.loadPlugin(PLUGIN)
        self.make_node()
        self.assertEqual((len(self.drawn()), self.warned), (8, []))


def kept_by(*roots):
    """All that is reached from these objects, and that would not be there without them."""
    seen, waiting = {}, list(roots)
    while waiting:
        each = waiting.pop()
        if id(each) not in seen and not isinstance(each, (type, types.ModuleType, types.FunctionType)):
            seen[id(each)] = each
            waiting += gc.get_referents(each)
    return list(seen.values())


class Long(PluginTest):
    """Trails of many samples."""

    def make_long(self, mode, count):
        name = self.make_node(mode)
        self.put(name, points=[(i * 0.25, i % 7 - 3.0, 1e6 / (i + 1)) for i in range(count)],
                 colors=[(i % 256 / 255.0, 0.5, 0.25) for i in range(count)])
        return name

    def test_a_drawn_sample_takes_56_bytes_a_point_its_color_and_its_piece_of_the_line(self):
        for mode in (STANDARD, SPACING, FLOW, BEATS):
            sizes = [sum(map(sys.getsizeof, self.kept_for(mode, count))) for count in (1000, 3000)]
            self.assertEqual((sizes[1] - sizes[0]) / 2000.0, 56.0, mode)

    def kept_for(self, mode, count):
        """What the plug-in keeps for a trail that was drawn."""
        self.cmds.file(new=True, force=True)
        self.viewport = self.render.Viewport()
        self.make_long(mode, count)
        self.assertEqual(len(self.drawn()), 8)
        [shown] = self.viewport._known.values()
        return kept_by(shown.twin.node, shown.override, shown.data, shown.box())

    def test_no_element_of_an_array_is_kept_for_it_is_a_reference_into_it(self):
        for mode in (STANDARD, SPACING, FLOW, BEATS):
            points = [each for each in self.kept_for(mode, 10)
                      if isinstance(each, (self.maya.api.OpenMaya.MPoint, self.maya.api.OpenMaya.MColor))]
            self.assertEqual([point for point in points if point.is_reference()], [])
            self.assertEqual(len(points), 2)  # the corners of the box

    def steps(self, mode, count):
        """How many steps Python takes in the plug-in's own code for the update of a trail."""
        self.cmds.file(new=True, force=True)
        self.viewport = self.render.Viewport()
        self.make_long(mode, count)
        steps = []

        def trace(frame, event, argument):
            if frame.f_globals is not vars(self.plugin):
                return None
            frame.f_trace_opcodes = True
            if event == "opcode":
                steps.append(event)
            return trace

        before = sys.gettrace()
        sys.settrace(trace)
        try:
            self.drawn()
            self.viewport.box("trailShape")
        finally:
            sys.settrace(before)
        return len(steps)

    def test_an_update_takes_python_the_same_steps_for_any_number_of_samples(self):
        for mode in (STANDARD, SPACING, FLOW, BEATS):
            self.steps(mode, 10)  # Python 3.12 tells of these steps only from the second time on
            few = self.steps(mode, 10)
            self.assertGreater(few, 100)
            self.assertEqual(self.steps(mode, 300), few, mode)

    def test_drawing_runs_no_command_sets_no_plug_and_waits_for_no_event(self):
        utils, plug = __import__("maya.utils").utils, self.maya.api.OpenMaya.MPlug
        doors = [(self.cmds, name) for name in dir(self.cmds) if callable(getattr(self.cmds, name)) and name[0] != "_"]
        doors += [(plug, name) for name in dir(plug) if name.startswith("set")] + [(utils, "processIdleEvents")]
        for mode in (STANDARD, SPACING, FLOW, BEATS):
            self.cmds.file(new=True, force=True)
            self.viewport = self.render.Viewport()
            self.make_long(mode, 10)
            with contextlib.ExitStack() as closed:
                refuse = mock.Mock(side_effect=AssertionError)
                for owner, name in doors:
                    closed.enter_context(mock.patch.object(owner, name, refuse))
                self.assertEqual(len(self.drawn()), 8)
                self.node().boundingBox()
                self.viewport.box("trailShape")
            self.assertFalse(refuse.called)
        self.assertEqual(self.warned, [])


if __name__ == "__main__":
    unittest.main()
