"""The module on a real scene, over the standalone host: the same trails as the program's, and live."""

import contextlib
import io
import json
import os
import subprocess
import tempfile
import time
import unittest
from unittest import mock

from companion import CHECKOUT, HostTest
from support import import_engine

PROGRAM = os.environ.get("VANTORELIX_PROGRAM", os.path.join(CHECKOUT, "build", "bin", "vantorelix"))
SCENES = {"arm.ma": ["fingertip", "wrist"], "bounce.ma": ["ball"], "walk.bvh": ["LeftHand", "Head"]}
ARRAYS = {"points": "points", "colors": "colors", "key_points": "keyPoints", "key_colors": "keyColors"}
SETTINGS = {"color_mode": "colorMode", "start_frame": "startFrame", "frame_step": "frameStep"}


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ, "VANTORELIX_MODULE names no folder")
class RealSceneTest(HostTest):
    def setUp(self):
        super(RealSceneTest, self).setUp()
        self.engine = import_engine()
        self.told = []
        self.engine._set_msg_handler(self.told.append)
        quiet = contextlib.redirect_stdout(io.StringIO())
        quiet.__enter__()
        self.addCleanup(quiet.__exit__, None, None, None)

    def open(self, scene):
        self.cmds.file(os.path.join(CHECKOUT, "examples", scene), open=True, force=True)

    def make_trails(self, objects, **settings):
        self.cmds.select(objects)
        # The clock stands: on a busy machine the time for exact trails would be over first.
        with mock.patch("time.time", return_value=time.time()):
            self.engine.create_trail(**settings)
        self.utils.processIdleEvents()
        self.assertEqual(self.told[-1:], ["Trail built for %d object(s)." % len(objects)])

    def shape(self, name):
        return "vlx_%s_vizShape" % name

    def array(self, name, attribute):
        return [list(triple) for triple in self.cmds.getAttr(self.shape(name) + "." + attribute)]

    def assert_exact(self, name):
        """The trail is where its object is, bit for bit."""
        first = self.cmds.playbackOptions(q=True, min=True)
        last = self.cmds.playbackOptions(q=True, max=True)
        points = self.array(name, "points")
        self.assertEqual(len(points), int(last - first) + 1)
        for place, point in enumerate(points):
            self.assertEqual(point, self.cmds.getAttr(name + ".worldMatrix[0]", time=first + place)[12:15])
        return points


@unittest.skipUnless(os.path.exists(PROGRAM), "NOT TESTED: %s is not built, so nothing is compared with it; ./dev build makes it" % PROGRAM)
class SameAsTheProgram(RealSceneTest):
    def trails_of_the_program(self, scene, objects, *options):
        with tempfile.TemporaryDirectory() as folder:
            out = os.path.join(folder, "trails.json")
            command = [PROGRAM, "trails", os.path.join(CHECKOUT, "examples", scene), "--out", out]
            for each in objects:
                command += ["--select", each]
            subprocess.check_output(command + list(options), stderr=subprocess.STDOUT)
            with open(out) as file:
                return json.load(file)["trails"]

    def compare(self, scene, objects, options=(), **settings):
        self.open(scene)
        self.make_trails(objects, **settings)
        trails = self.trails_of_the_program(scene, objects, *options)
        self.assertEqual([trail["viz"] for trail in trails], ["vlx_%s_viz" % name for name in objects])
        for name, trail in zip(objects, trails):
            self.assertGreater(len(trail["points"]), 40)
            for theirs, ours in ARRAYS.items():
                self.assertEqual(self.array(name, ours), trail[theirs], theirs)
            self.assertEqual([time[0] for time in self.array(name, "keyTimes")], trail["key_times"])
            for theirs, ours in SETTINGS.items():
                self.assertEqual(self.cmds.getAttr(self.shape(name) + "." + ours), trail[theirs], theirs)

    def test_every_example_gives_the_same_arrays_bit_for_bit(self):
        for scene, objects in sorted(SCENES.items()):
            with self.subTest(scene):
                self.compare(scene, objects)

    def test_so_it_is_with_samples_between_frames_and_other_colours(self):
        self.compare("arm.ma", ["fingertip"], ["--samples-per-frame", "4", "--color-mode", "spacing"],
                     samples_per_frame=4, color_mode=1)


class LiveTrails(RealSceneTest):
    def test_an_edited_key_makes_the_trail_exact_again(self):
        self.open("arm.ma")
        self.make_trails(["fingertip"])
        before = self.assert_exact("fingertip")
        self.cmds.setKeyframe("upperArm", at="rotateZ", t=20, v=33)
        self.assertEqual(self.array("fingertip", "points"), before)
        self.utils.processIdleEvents()
        self.assertNotEqual(self.assert_exact("fingertip"), before)

    def test_a_removed_curve_makes_the_trail_exact_again(self):
        self.open("arm.ma")
        self.make_trails(["fingertip"])
        before = self.assert_exact("fingertip")
        self.cmds.delete("wrist_rotateZ")
        self.utils.processIdleEvents()
        self.assertNotEqual(self.assert_exact("fingertip"), before)

    def test_in_batch_mode_the_trail_is_exact_within_the_edit(self):
        self.host.restart(batch=True)
        self.open("arm.ma")
        self.cmds.select("fingertip")
        self.engine.create_trail()
        before = self.assert_exact("fingertip")
        self.cmds.setKeyframe("upperArm", at="rotateZ", t=20, v=33)
        self.assertEqual(self.utils.deferred_count(), 0)
        self.assertNotEqual(self.assert_exact("fingertip"), before)

    def test_clearing_leaves_nothing_behind(self):
        self.open("arm.ma")
        nodes = self.cmds.ls()
        self.make_trails(["fingertip", "wrist"])
        self.assertNotEqual(self.cmds.ls(), nodes)
        self.engine.clear_trails()
        self.utils.processIdleEvents()
        self.assertEqual(self.cmds.ls(type="vantorelix"), [])
        self.assertEqual(len(self.host.subscribers), 0)
        self.assertEqual(self.host.failures, 0)

    def test_trails_become_curves(self):
        self.open("arm.ma")
        self.make_trails(["fingertip"])
        self.engine.convert_to_nurbs()
        shapes = self.cmds.ls(type="nurbsCurve")
        self.assertEqual(len(shapes), 1)


if __name__ == "__main__":
    unittest.main()
