"""What the package `maya` has for plug-ins that draw: arrays, the draw manager, and the Show menus of the viewports."""

import sys
import unittest

from companion import HostTest


class Arrays(HostTest):
    def test_they_take_what_they_take_in_maya(self):
        for kind, element, size in ((self.om.MPointArray, self.om.MPoint((1, 2, 3)), 32),
                                    (self.om.MColorArray, self.om.MColor((1, 0.5, 0)), 16),
                                    (self.om.MUintArray, 7, 4)):
            made = kind(1000, element)
            self.assertEqual(made, kind([element] * 1000))
            self.assertEqual(made, kind(made))
            self.assertEqual((len(made), len(kind())), (1000, 0))
            self.assertEqual(sys.getsizeof(made.numbers) - sys.getsizeof(kind().numbers), 1000 * size)

    def test_they_are_made_of_their_elements_and_of_what_is_seen_to_work(self):
        triples = [(1.0, 2.0, 3.0), (0.0, 0.5, 0.25)]
        for kind, element in ((self.om.MPointArray, self.om.MPoint), (self.om.MColorArray, self.om.MColor)):
            made = kind(list(map(element, triples)))
            self.assertEqual(list(map(tuple, made)), [triple + (1.0,) for triple in triples])
            self.assertEqual(kind(triples), made)
            self.assertEqual(kind(self.om.MVectorArray(triples)), made)
            self.raises(TypeError, "is wanted", kind, [7])
            self.raises(TypeError, "is wanted", kind, [(1.0, 2.0)])
        self.raises(TypeError, "a color is made of", self.om.MColor, self.om.MVector(1, 2, 3))
        self.assertEqual(tuple(self.om.MPoint(self.om.MVector(1, 2, 3))), (1.0, 2.0, 3.0, 1.0))

    def test_an_element_is_a_reference_and_an_error_when_the_array_has_shrunk_or_is_gone(self):
        points = self.om.MPointArray([(1.0, 2.0, 3.0), (4.0, 5.0, 6.0)])
        first, last = points[0], points[-1]
        points.numbers[0] = 9.0
        self.assertEqual((first.x, last.z), (9.0, 6.0))
        points.setLength(1)
        self.raises(ReferenceError, "shrunk or is gone", tuple, last)
        kept = self.om.MPoint(first)
        del points
        self.raises(ReferenceError, "shrunk or is gone", tuple, first)
        self.assertEqual(tuple(kept), (9.0, 2.0, 3.0, 1.0))

    def test_a_box_has_corners_of_its_own(self):
        points = self.om.MPointArray([(1.0, 2.0, 3.0), (4.0, 6.0, 8.0)])
        box = self.om.MBoundingBox(points[0], points[1])
        del points
        self.assertEqual((box.width, box.height, box.depth), (3.0, 4.0, 5.0))
        self.assertEqual(tuple(box.center)[:3], (2.5, 4.0, 5.5))


class DrawManager(HostTest):
    def setUp(self):
        super(DrawManager, self).setUp()
        self.manager = self.maya.api.OpenMayaRender.MUIDrawManager()
        self.points = self.om.MPointArray([(0.0, 0.0, 0.0), (1.0, 0.0, 0.0)])

    def test_through_geometry_it_draws_points_lines_and_triangles_only(self):
        manager = self.manager
        through = {manager.kPoints, manager.kLines, manager.kTriangles}
        every = through | {manager.kLineStrip, manager.kClosedLine, manager.kTriStrip}
        manager.beginDrawable()
        for mode in every:
            manager.mesh(mode, self.points)
        manager.beginDrawInXray()
        for mode in every:
            if mode in through:
                manager.mesh(mode, self.points)
            else:
                self.raises(RuntimeError, "in x-ray only points, lines and triangles", manager.mesh, mode, self.points)
        manager.endDrawInXray()
        manager.mesh(manager.kLineStrip, self.points)

    def test_what_does_not_fit_the_positions_is_refused(self):
        self.manager.beginDrawable()
        lines, color = self.manager.kLines, self.om.MColor((1, 1, 1))
        self.raises(TypeError, "positions", self.manager.mesh, lines, [(0, 0, 0)])
        self.raises(TypeError, "colors", self.manager.mesh, lines, self.points, None, self.om.MColorArray([color]))
        self.raises(TypeError, "indices", self.manager.mesh, lines, self.points, None, None, [0, 1])
        self.raises(TypeError, "indices", self.manager.mesh, lines, self.points, None, None,
                    self.om.MUintArray([1, 2]))
        self.manager.mesh(lines, self.points, None, self.om.MColorArray([color] * 2), self.om.MUintArray([0, 1]))
        self.assertEqual(len(self.manager.drawn), 2)


class ShowMenus(HostTest):
    def test_a_display_filter_is_there_until_it_is_deregistered_as_often_as_it_was_registered(self):
        filters = self.cmds.pluginDisplayFilter
        for _ in range(2):
            filters("mine", register=True, label="My nodes", classification="drawdb/geometry/mine")
        self.assertEqual((filters(q=True, lf=True), filters("mine", q=True, l=True)), (["mine"], "My nodes"))
        self.assertEqual(filters("mine", query=True, classification=True), "drawdb/geometry/mine")
        filters("mine", dr=True)
        self.assertTrue(filters(ex="mine"))
        filters("mine", deregister=True)
        self.assertFalse(filters(exists="mine"))
        self.raises(RuntimeError, "not registered", filters, "mine", deregister=True)

    def test_each_panel_shows_a_filter_and_locators_until_it_is_told_not_to(self):
        self.cmds.pluginDisplayFilter("mine", register=True)
        first, other = self.cmds.getPanel(type="modelPanel")[:2]
        for panel in (first, other):
            self.assertTrue(self.cmds.modelEditor(panel, q=True, queryPluginObjects="mine"))
            self.assertTrue(self.cmds.modelEditor(panel, q=True, locators=True))
        self.cmds.modelEditor(first, e=True, pluginObjects=("mine", False))
        self.cmds.modelEditor(first, e=True, lc=False)
        self.assertEqual([self.cmds.modelEditor(panel, q=True, qpo="mine") for panel in (first, other)], [False, True])
        self.assertEqual([self.cmds.modelEditor(panel, q=True, lc=True) for panel in (first, other)], [False, True])
        self.cmds.modelEditor(first, e=True, po=("mine", True))
        self.assertTrue(self.cmds.modelEditor(first, q=True, qpo="mine"))

    def test_what_nobody_registered_is_refused_and_so_is_batch_mode(self):
        panel = self.cmds.getPanel(type="modelPanel")[0]
        self.raises(RuntimeError, "not registered", self.cmds.modelEditor, panel, q=True, queryPluginObjects="no")
        self.raises(RuntimeError, "not registered", self.cmds.modelEditor, panel, e=True, pluginObjects=("no", True))
        self.raises(RuntimeError, "not found", self.cmds.modelEditor, "nowhere", e=True, locators=True)
        self.raises(RuntimeError, "not covered", self.cmds.modelEditor, panel, e=True)
        self.host.restart(batch=True)
        self.raises(RuntimeError, "batch", self.cmds.pluginDisplayFilter, "mine", register=True)


if __name__ == "__main__":
    unittest.main()
