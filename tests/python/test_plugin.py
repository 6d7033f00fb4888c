"""The trail node in Viewport 2.0: what it holds, and what is drawn in each mode."""

import os
import re
import sys
import unittest
import warnings
from unittest import mock

from companion import CHECKOUT, PLUGIN
from plugin_support import (BEATS, COLORS, FLOW, KEY_TIMES, PLAIN, POINTS, SPACING, STANDARD, PluginTest, single)


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

    def test_the_host_has_the_same_attributes_with_the_same_defaults(self):
        self.maya.cmds.createNode("vantorelix", name="untouchedShape")
        node = self.maya.api.OpenMaya.MSelectionList().add("untouchedShape").getDependNode(0)
        for name, made in self.attributes().items():
            self.assertTrue(self.maya.api.OpenMaya.MFnDependencyNode(node).hasAttribute(name), name)
            if made.kind[0] == "numeric":
                value = self.maya.cmds.getAttr("untouchedShape." + name)
                self.assertEqual((value, type(value)), (made.default, type(made.default)), name)


class Parts(PluginTest):
    def test_line_dots_and_keys_with_their_sizes(self):
        self.make_node()
        om, manager = self.maya.api.OpenMaya, self.render.MUIDrawManager
        points = om.MPointArray([om.MPoint(*point) for point in POINTS])
        keys = om.MPointArray([om.MPoint(*point) for point in POINTS[1:3]])
        colors = om.MColorArray([om.MColor(color) for color in self.engine.compute_standard_colors(5)])
        white = om.MColorArray([om.MColor((1.0, 1.0, 1.0))] * 2)
        pieces = om.MUintArray([0, 1, 1, 2, 2, 3, 3, 4])
        self.assertEqual(self.drawn(), [
            ("beginDrawable", (manager.kNonSelectable,)),
            ("setLineWidth", (2.5,)), ("mesh", (manager.kLines, points, None, colors, pieces, None)),
            ("setPointSize", (6.0,)), ("mesh", (manager.kPoints, points, None, colors, None, None)),
            ("setPointSize", (6.0 * 1.6,)), ("mesh", (manager.kPoints, keys, None, white, None, None)),
            ("endDrawable", ())])

    def modes(self):
        return [arguments[0] for call, arguments in self.drawn() if call == "mesh"]

    def test_each_switch_takes_its_part_away(self):
        self.make_node()
        line, points = self.render.MUIDrawManager.kLines, self.render.MUIDrawManager.kPoints
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

    def test_the_line_follows_the_number_of_points(self):
        self.make_node()
        for count, pieces in ((2, [0, 1]), (3, [0, 1, 1, 2]), (1, None), (0, None), (4, [0, 1, 1, 2, 2, 3])):
            self.put("trailShape", points=POINTS[:count])
            lines = [list(arguments[4]) for call, arguments in self.drawn() if call == "mesh" and arguments[4]]
            self.assertEqual(lines, [pieces] if pieces else [])

    def test_whatever_sequences_this_maya_makes_arrays_of_the_same_is_drawn(self):
        arrays = sys.modules["maya.api._arrays"]
        self.make_node(SPACING)
        wanted = self.drawn()
        for kinds in ((tuple,), (self.maya.api.OpenMaya.MVector,), ()):
            self.cmds.unloadPlugin("Vantorelix_plugin")
            with mock.patch.object(arrays._OfNumbers, "also_takes", kinds):
                self.cmds.loadPlugin(PLUGIN)
                self.viewport = self.render.Viewport()
                self.assertEqual(self.drawn(), wanted, kinds)
        self.assertEqual((len(wanted), self.warned), (8, []))

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
        self.assertEqual(self.colors(), single(self.engine.compute_standard_colors(5)))

    def test_spacing_shows_what_was_pushed(self):
        self.make_node(SPACING)
        self.assertEqual(self.colors(), single(COLORS))

    def test_flow_draws_a_point_on_the_current_frame_as_past(self):
        self.make_node(FLOW)
        self.put("trailShape", points=[(float(i), 0.0, 0.0) for i in range(12)])
        self.set(startFrame=0.0, frameStep=0.1)
        for time in (0.95, 1.0):  # 1.0 // 0.1 is 9, 1.0 / 0.1 is 10.
            self.cmds.currentTime(time)
            self.assertEqual(self.colors(), single(self.engine.compute_temperature_colors(12, 0.0, 0.1)), time)

    def test_flow_parts_the_past_from_the_future(self):
        self.make_node(FLOW)
        self.cmds.currentTime(12.0)
        colors = self.colors()
        self.assertEqual(colors, single(self.engine.compute_temperature_colors(5, 10.0, 1.0)))
        self.assertEqual(len(set(colors[:3])), 1)
        self.assertNotEqual(colors[2], colors[3])

    def test_a_step_of_nothing_is_taken_as_one_frame(self):
        self.make_node(FLOW)
        self.cmds.currentTime(12.0)
        self.set(frameStep=0.0)
        self.assertEqual(self.colors(), single(self.engine.compute_temperature_colors(5, 10.0, 1.0)))
        self.assertEqual(self.warned, [])

    def test_beats_change_at_the_keys(self):
        self.make_node(BEATS)
        colors = self.colors()
        self.assertEqual(colors, single(self.engine.compute_beats_colors(5, 10.0, 1.0, KEY_TIMES)))
        self.assertEqual(len(set(colors)), 2)

    def test_a_mode_without_a_name_is_drawn_as_standard(self):
        self.make_node(7)
        self.assertEqual(self.colors(), single(self.engine.compute_standard_colors(5)))

    def test_switching_the_mode_switches_the_colors(self):
        self.make_node(SPACING)
        self.drawn()
        self.engine.set_color_mode(BEATS)
        self.assertEqual(self.colors(), single(self.engine.compute_beats_colors(5, 10.0, 1.0, KEY_TIMES)))

    def test_points_whose_colors_are_yet_to_come_are_drawn(self):
        self.make_node(SPACING)
        self.put("trailShape", colors=COLORS[:2])
        self.assertEqual(self.colors(), single(COLORS[:2] + [PLAIN] * 3))
        self.put("trailShape", colors=COLORS + COLORS)
        self.assertEqual(self.colors(), single(COLORS))


class Loading(PluginTest):
    def registered(self):
        return (len(self.plugins.node_types), len(self.render.MDrawRegistry.creators), len(self.host.display_filters),
                len([each for each in self.host.subscribers if each.event == self.plugins.TIME_CHANGED]))

    def test_unloading_takes_everything_back_and_loading_again_works(self):
        self.assertEqual(self.registered(), (1, 1, 1, 1))
        self.cmds.unloadPlugin("Vantorelix_plugin")
        self.assertEqual(self.registered(), (0, 0, 0, 0))
        self.cmds.loadPlugin(PLUGIN)
        self.assertEqual(self.registered(), (1, 1, 1, 1))

    def test_a_failure_at_any_step_leaves_nothing_registered(self):
        self.cmds.unloadPlugin("Vantorelix_plugin")
        om = self.maya.api.OpenMaya
        for owner, name in ((om.MFnPlugin, "registerNode"), (self.render.MDrawRegistry, "registerDrawOverrideCreator"),
                            (om.MDGMessage, "addTimeChangeCallback"), (self.cmds, "about")):
            with mock.patch.object(owner, name, side_effect=RuntimeError("refused")):
                self.assertRaisesRegex(RuntimeError, "refused", self.cmds.loadPlugin, PLUGIN)
            self.assertEqual(self.registered(), (0, 0, 0, 0), name)

    def test_the_engine_finds_it_and_makes_trails_with_it(self):
        self.assertTrue(self.engine._ensure_plugin())

    def test_it_says_that_it_speaks_version_two(self):
        self.assertTrue(callable(self.plugin.maya_useNewAPI))

    def test_its_version_is_that_of_the_whole(self):
        with open(os.path.join(CHECKOUT, "CMakeLists.txt")) as file:
            version = re.search(r"project\(vantorelix VERSION ([0-9.]+)", file.read()).group(1)
        self.assertEqual(self.plugin.VERSION, version)

    def test_what_is_kept_between_draws_is_made_in_the_way_of_every_maya_from_2022_on(self):
        self.make_node()
        with warnings.catch_warnings():
            warnings.simplefilter("error", DeprecationWarning)
            self.assertEqual(len(self.drawn()), 8)
        self.assertEqual(self.warned, [])


class DisplayFilter(PluginTest):
    NAME = "vantorelixDisplayFilter"

    def show(self, shown, panel="modelPanel4"):
        self.cmds.modelEditor(panel, edit=True, pluginObjects=(self.NAME, shown))

    def test_it_is_an_entry_of_the_show_menu_for_what_the_plug_in_draws(self):
        self.assertEqual(self.cmds.pluginDisplayFilter(query=True, listFilters=True), [self.NAME])
        self.assertEqual(self.cmds.pluginDisplayFilter(self.NAME, query=True, label=True), "Vantorelix Trails")
        self.assertEqual(self.cmds.pluginDisplayFilter(self.NAME, query=True, classification=True),
                         self.plugins.node_types["vantorelix"].classification)

    def test_a_panel_hides_trails_and_shows_them_again_as_they_are_by_then(self):
        self.make_node()
        self.assertTrue(self.cmds.modelEditor("modelPanel4", query=True, queryPluginObjects=self.NAME))
        self.assertIn("trailShape", self.viewport.refresh())
        self.show(False)
        self.assertFalse(self.cmds.modelEditor("modelPanel4", query=True, queryPluginObjects=self.NAME))
        self.set(lineWidth=7.0)
        self.assertEqual(self.viewport.refresh(), {})
        self.assertIn("trailShape", self.viewport.refresh("modelPanel1"))
        self.set(lineWidth=8.0)
        self.assertEqual(self.viewport.refresh(), {})
        self.show(True)
        self.assertIn(("setLineWidth", (8.0,)), self.drawn())

    def test_it_is_counted_so_another_plug_in_may_register_it_as_well(self):
        self.cmds.pluginDisplayFilter(self.NAME, register=True)
        self.cmds.unloadPlugin("Vantorelix_plugin")
        self.assertTrue(self.cmds.pluginDisplayFilter(exists=self.NAME))
        self.cmds.pluginDisplayFilter(self.NAME, deregister=True)
        self.assertFalse(self.cmds.pluginDisplayFilter(exists=self.NAME))

    def test_hiding_locators_leaves_trails(self):
        self.make_node()
        self.cmds.modelEditor("modelPanel4", edit=True, locators=False)
        self.assertIn("trailShape", self.viewport.refresh())

    def reload_with(self, function):
        self.cmds.unloadPlugin("Vantorelix_plugin")
        with mock.patch.object(self.cmds, "pluginDisplayFilter", function):
            if function is None:
                del self.cmds.pluginDisplayFilter
            self.cmds.loadPlugin(PLUGIN)
            self.make_node()
            self.assertEqual(len(self.drawn()), 8)
            self.cmds.unloadPlugin("Vantorelix_plugin")
            if function is None:
                self.cmds.pluginDisplayFilter = None  # For the patch to take away.

    def test_a_maya_without_the_command_draws_trails_all_the_same(self):
        self.reload_with(None)
        self.assertEqual(self.warned, [])

    def test_a_maya_that_refuses_draws_trails_and_says_so(self):
        self.reload_with(mock.Mock(side_effect=RuntimeError("no such menu")))
        self.assertEqual(len(self.warned), 1)
        self.assertIn("no such menu", self.warned[0])


class Batch(PluginTest):
    batch = True

    def test_there_is_no_menu_and_no_entry_in_it(self):
        self.assertEqual(self.host.display_filters, {})
        self.make_node()
        self.assertEqual(len(self.drawn()), 8)
        self.cmds.unloadPlugin("Vantorelix_plugin")
        self.assertEqual(self.warned, [])


if __name__ == "__main__":
    unittest.main()
