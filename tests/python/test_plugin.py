"""The trail node in Viewport 2.0: what it holds, what is drawn in each mode, and what is not done again."""

import os
import unittest
from unittest import mock

from companion import CHECKOUT, PLUGIN, CompanionTest

POINTS = [(0.0, 1.0, 2.0), (3.0, -1.0, 0.0), (4.0, 0.0, -5.0), (4.5, 0.5, 1.0), (6.0, 2.0, 0.0)]
COLORS = [(0.1, 0.2, 0.3), (0.4, 0.5, 0.6), (0.7, 0.8, 0.9), (1.0, 0.0, 0.5), (0.0, 1.0, 0.25)]
KEY_TIMES = [11.0, 13.0]
STANDARD, SPACING, FLOW, BEATS = range(4)


class PluginTest(CompanionTest):
    def setUp(self):
        super(PluginTest, self).setUp()
        self.warned = []
        patch = mock.patch.object(self.maya.api.OpenMaya.MGlobal, "displayWarning", staticmethod(self.warned.append))
        patch.start()
        self.addCleanup(patch.stop)
        self.cmds.loadPlugin(PLUGIN)
        self.addCleanup(self.host.restart)
        self.plugin = self.host.plugins["Vantorelix_plugin"][1]
        self.viewport = self.render.Viewport()

    def make_node(self, mode=STANDARD, name="trailShape"):
        self.cmds.createNode("vantorelix", name=name)
        self.put(name, points=POINTS, colors=COLORS, keyPoints=POINTS[1:3], keyColors=[(1.0, 1.0, 1.0)] * 2,
                 keyTimes=[(time, 0.0, 0.0) for time in KEY_TIMES])
        for attribute, value in (("startFrame", 10.0), ("frameStep", 1.0), ("lineWidth", 2.5), ("pointSize", 6.0),
                                 ("showLine", True), ("showDots", True), ("xrayMode", False), ("colorMode", mode)):
            self.cmds.setAttr(name + "." + attribute, value)
        return name

    def put(self, name, **arrays):
        for attribute, values in arrays.items():
            self.engine._set_vector_array_attr(name, attribute, values)

    def set(self, **values):
        for attribute, value in values.items():
            self.cmds.setAttr("trailShape." + attribute, value)

    def drawn(self, name="trailShape"):
        return self.viewport.refresh()[name]

    def names(self):
        return [call[0] for call in self.drawn()]

    def colors(self):
        """Of the line."""
        meshes = [arguments for call, arguments in self.drawn() if call == "mesh"]
        return [(color.r, color.g, color.b) for color in meshes[0][3]]


class Node(PluginTest):
    def attributes(self):
        return self.plugins.node_types["vantorelix"].attributes

    def test_it_is_a_locator_with_a_number_from_the_range_that_is_free_for_all(self):
        kind = self.plugins.node_types["vantorelix"]
        self.assertEqual(kind.kind, self.maya.api.OpenMaya.MPxNode.kLocatorNode)
        self.assertTrue(0 <= kind.id.id() <= 0x7FFFF)
        self.assertEqual(list(self.render.MDrawRegistry.creators), [kind.classification])
        self.assertTrue(kind.classification.startswith("drawdb/geometry/"))

    def test_every_attribute_has_its_type_and_default(self):
        om = self.maya.api.OpenMaya
        vectors, double = ("typed", om.MFnData.kVectorArray), ("numeric", om.MFnNumericData.kDouble)
        switch, whole = ("numeric", om.MFnNumericData.kBoolean), ("numeric", om.MFnNumericData.kInt)
        found = {name: (made.kind, made.default) for name, made in self.attributes().items()}
        for name in ("points", "colors", "keyPoints", "keyColors", "keyTimes"):
            kind, empty = found.pop(name)
            self.assertEqual((kind, len(empty.data)), (vectors, 0), name)
        self.assertEqual(found, {
            "startFrame": (double, 1.0), "frameStep": (double, 1.0), "lineWidth": (double, 2.5),
            "pointSize": (double, 6.0), "showLine": (switch, True), "showDots": (switch, True),
            "xrayMode": (switch, True), "colorMode": (whole, 0)})

    def test_every_attribute_is_stored_with_the_scene_and_can_be_written(self):
        for name, made in self.attributes().items():
            self.assertTrue(made.storable and made.writable and made.readable, name)

    def test_names_are_unique_and_no_value_is_refused(self):
        made = self.attributes().values()
        self.assertEqual(len({each.shortName for each in made}), 13)
        self.assertEqual([each.hard for each in made], [[None, None]] * 13)

    def test_the_host_has_the_same_attributes(self):
        self.make_node()
        node = self.maya.api.OpenMaya.MSelectionList().add("trailShape").getDependNode(0)
        for name in self.attributes():
            self.assertTrue(self.maya.api.OpenMaya.MFnDependencyNode(node).hasAttribute(name), name)


class Parts(PluginTest):
    def test_line_dots_and_keys_with_their_sizes(self):
        self.make_node()
        om, manager = self.maya.api.OpenMaya, self.render.MUIDrawManager
        points = om.MPointArray([om.MPoint(*point) for point in POINTS])
        keys = om.MPointArray([om.MPoint(*point) for point in POINTS[1:3]])
        colors = om.MColorArray([om.MColor(color) for color in self.engine.compute_standard_colors(5)])
        white = om.MColorArray([om.MColor(1.0, 1.0, 1.0)] * 2)
        self.assertEqual(self.drawn(), [
            ("beginDrawable", ()),
            ("setLineWidth", (2.5,)), ("mesh", (manager.kLineStrip, points, None, colors, None, None)),
            ("setPointSize", (6.0,)), ("mesh", (manager.kPoints, points, None, colors, None, None)),
            ("setPointSize", (6.0 * 1.6,)), ("mesh", (manager.kPoints, keys, None, white, None, None)),
            ("endDrawable", ())])

    def modes(self):
        return [arguments[0] for call, arguments in self.drawn() if call == "mesh"]

    def test_each_switch_takes_its_part_away(self):
        self.make_node()
        line, points = self.render.MUIDrawManager.kLineStrip, self.render.MUIDrawManager.kPoints
        self.set(showLine=False)
        self.assertEqual(self.modes(), [points, points])
        self.set(showLine=True, showDots=False)
        self.assertEqual(self.modes(), [line, points])

    def test_no_width_is_no_line_and_no_size_is_no_dot(self):
        self.make_node()
        self.set(lineWidth=0.0)
        self.assertNotIn("setLineWidth", self.names())
        self.set(lineWidth=-1.0, pointSize=-1.0)
        self.assertEqual(self.names(), ["beginDrawable", "endDrawable"])

    def test_xray_is_drawn_through_geometry(self):
        self.make_node()
        self.set(xrayMode=True)
        names = self.names()
        self.assertEqual(names[:2] + names[-2:], ["beginDrawable", "beginDrawInXray", "endDrawInXray", "endDrawable"])
        self.assertEqual(names.count("mesh"), 3)

    def test_a_trail_that_is_still_empty_draws_nothing(self):
        self.cmds.createNode("vantorelix", name="trailShape")
        self.assertEqual(set(self.names()) - {"beginDrawInXray", "endDrawInXray"}, {"beginDrawable", "endDrawable"})

    def test_a_trail_made_by_the_engine_is_drawn(self):
        self.host.open_scene(os.path.join(CHECKOUT, "examples", self.example()))
        self.cmds.select(self.moving())
        self.engine.create_trail()
        shape = self.cmds.ls(type="vantorelix")[0]
        mesh = [arguments for call, arguments in self.drawn(shape) if call == "mesh"][0]
        self.assertEqual([tuple(point)[:3] for point in mesh[1]], [tuple(v) for v in self.stored(shape, "points")])
        self.assertGreater(len(mesh[1]), 2)

    def example(self):
        return sorted(name for name in os.listdir(os.path.join(CHECKOUT, "examples")) if name.endswith(".ma"))[0]

    def moving(self):
        return [node for node in self.cmds.ls(transforms=True, long=True)
                if self.cmds.keyframe(node, query=True, timeChange=True)][0]

    def stored(self, shape, attribute):
        om = self.maya.api.OpenMaya
        node = om.MFnDependencyNode(om.MSelectionList().add(shape).getDependNode(0))
        return om.MFnVectorArrayData(node.findPlug(attribute, False).asMObject()).array()


class Colors(PluginTest):
    def test_standard(self):
        self.make_node(STANDARD)
        self.assertEqual(self.colors(), self.engine.compute_standard_colors(5))

    def test_spacing_shows_what_was_pushed(self):
        self.make_node(SPACING)
        self.assertEqual(self.colors(), COLORS)

    def test_flow_parts_the_past_from_the_future(self):
        self.make_node(FLOW)
        self.cmds.currentTime(12.0)
        colors = self.colors()
        self.assertEqual(colors, self.engine.compute_temperature_colors(5, 10.0, 1.0))
        self.assertEqual(len(set(colors[:3])), 1)
        self.assertNotEqual(colors[2], colors[3])

    def test_a_step_of_nothing_is_taken_as_one_frame(self):
        self.make_node(FLOW)
        self.cmds.currentTime(12.0)
        self.set(frameStep=0.0)
        self.assertEqual(self.colors(), self.engine.compute_temperature_colors(5, 10.0, 1.0))
        self.assertEqual(self.warned, [])

    def test_beats_change_at_the_keys(self):
        self.make_node(BEATS)
        colors = self.colors()
        self.assertEqual(colors, self.engine.compute_beats_colors(5, 10.0, 1.0, KEY_TIMES))
        self.assertEqual(len(set(colors)), 2)

    def test_a_mode_without_a_name_is_drawn_as_standard(self):
        self.make_node(7)
        self.assertEqual(self.colors(), self.engine.compute_standard_colors(5))

    def test_switching_the_mode_switches_the_colors(self):
        self.make_node(SPACING)
        self.drawn()
        self.engine.set_color_mode(BEATS)
        self.assertEqual(self.colors(), self.engine.compute_beats_colors(5, 10.0, 1.0, KEY_TIMES))

    def test_points_whose_colors_are_yet_to_come_are_drawn(self):
        self.make_node(SPACING)
        self.put("trailShape", colors=COLORS[:2])
        self.assertEqual(self.colors(), COLORS[:2] + [(0.15, 0.75, 0.65)] * 3)
        self.put("trailShape", colors=COLORS + COLORS)
        self.assertEqual(self.colors(), COLORS)


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
            self.assertEqual(self.work(self.plugins.twins[0].node.redraw), (0, 1))
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
        self.assertEqual(self.colors(), self.engine.compute_beats_colors(4, 11.0, 0.5, [12.0]))

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
        self.assertEqual(self.colors(), self.engine.compute_temperature_colors(5, 10.0, 1.0))


class Box(PluginTest):
    def test_it_holds_every_point_and_key(self):
        self.make_node()
        self.put("trailShape", keyPoints=[(0.0, 9.0, 0.0)], keyColors=[(1.0, 1.0, 1.0)])
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (6.0, 9.0, 2.0)))

    def test_it_follows_the_points(self):
        self.make_node()
        self.drawn()
        self.put("trailShape", points=[(100.0, 0.0, 0.0), (101.0, 0.0, 0.0)], keyPoints=[])
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((100.0, 0.0, 0.0), (101.0, 0.0, 0.0)))

    def test_it_follows_the_points_alone(self):
        self.make_node()
        self.drawn()
        self.put("trailShape", points=[(0.0, 50.0, 0.0)] * 2)
        self.drawn()
        self.assertEqual(self.viewport.box("trailShape"), ((0.0, -1.0, -5.0), (4.0, 50.0, 0.0)))

    def test_it_is_right_before_anything_was_drawn(self):
        self.make_node()
        self.plugins.catch_up()
        box = self.plugins.twins[0].node.boundingBox()
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

        def refuse(node, name, networked):
            if name == "points":
                raise RuntimeError("no points")
            return real(node, name, networked)
        with mock.patch.object(self.plugin.om.MFnDependencyNode, "findPlug", refuse), \
                mock.patch.object(self.plugins._Twin, "tell_changes"):
            self.plugins.twins[0].node._stale.update(["points", "colors"])
            self.plugins.twins[0].node.redraw()
            self.assertEqual(self.colors(), COLORS[2:] + [(0.15, 0.75, 0.65)] * 2)
        self.assertEqual(len(self.warned), 1)
        self.set(lineWidth=3.0)
        self.assertEqual(len(self.colors()), 3)

    def test_without_the_engine_trails_are_drawn_and_one_warning_is_given(self):
        self.make_node(BEATS)
        with mock.patch.dict("sys.modules", {"Vantorelix_engine": None}):
            self.assertEqual(self.colors(), COLORS)
            self.set(colorMode=FLOW)
            self.assertEqual(self.colors(), COLORS)
            self.set(colorMode=STANDARD)
            self.assertEqual(self.colors(), [(0.15, 0.75, 0.65)] * 5)
        self.assertEqual(len(self.warned), 1)

    def test_a_node_that_is_gone_raises_nothing(self):
        self.make_node()
        self.drawn()
        shown = list(self.viewport._shown.values())[0]
        self.cmds.delete("trailShape")
        shown.prepare()
        shown.override.boundingBox(shown.path, None)
        self.plugin._on_time_changed(None)
        self.assertTrue(self.warned)


class Loading(PluginTest):
    def registered(self):
        return (len(self.plugins.node_types), len(self.render.MDrawRegistry.creators),
                len([each for each in self.host.subscribers if each.event == self.plugins.TIME_CHANGED]))

    def test_unloading_takes_everything_back_and_loading_again_works(self):
        self.assertEqual(self.registered(), (1, 1, 1))
        self.cmds.unloadPlugin("Vantorelix_plugin")
        self.assertEqual(self.registered(), (0, 0, 0))
        self.cmds.loadPlugin(PLUGIN)
        self.assertEqual(self.registered(), (1, 1, 1))

    def test_a_failure_at_any_step_leaves_nothing_registered(self):
        self.cmds.unloadPlugin("Vantorelix_plugin")
        om = self.maya.api.OpenMaya
        for owner, name in ((om.MFnPlugin, "registerNode"), (self.render.MDrawRegistry, "registerDrawOverrideCreator"),
                            (om.MDGMessage, "addTimeChangeCallback")):
            with mock.patch.object(owner, name, side_effect=RuntimeError("refused")):
                self.assertRaisesRegex(RuntimeError, "refused", self.cmds.loadPlugin, PLUGIN)
            self.assertEqual(self.registered(), (0, 0, 0), name)

    def test_the_engine_finds_it_and_makes_trails_with_it(self):
        self.assertTrue(self.engine._ensure_plugin())

    def test_it_says_that_it_speaks_version_two(self):
        self.assertTrue(callable(self.plugin.maya_useNewAPI))


if __name__ == "__main__":
    unittest.main()
