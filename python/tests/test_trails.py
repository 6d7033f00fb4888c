"""Scenes, their trails and arrays: the same as the program writes, to the last bit."""

import gc
import os
import pathlib
import unittest
import weakref

import vantorelix
from support import ARRAYS, BALL, SCENES, TWINS, SceneTest, bvh, example, program_json, rows

FIELDS = ("viz", "source", "name", "node", "parent", "samples_per_frame", "color_mode", "start_frame", "frame_step",
          "warnings", "length", "mean_speed", "top_speed", "mean_speed_per_frame", "top_speed_per_frame", "measures")


class TrailsOfTheExamples(SceneTest):
    def assertLikeTheProgram(self, name, arguments, options, reading=None, patterns=()):
        scene = self.open(example(name), **(reading or {}))
        written = program_json(example(name), *options)
        self.assertEqual([scene.fps, scene.unit, scene.up_axis], [written[key] for key in ("fps", "unit", "up_axis")])
        if "range" not in arguments:
            self.assertEqual(list(scene.range), written["range"])
        trails = scene.trails(*patterns, **arguments)
        self.assertEqual(len(trails), len(written["trails"]))
        self.assertGreater(len(trails), 0)
        for trail, wanted in zip(trails, written["trails"]):
            self.assertEqual(trail.units, written["units"])
            for field in FIELDS:
                self.assertEqual(getattr(trail, field), wanted[field], field)
            for field in ARRAYS:
                self.assertSameBits(rows(getattr(trail, field)), wanted[field], field)

    def test_trails_of_every_example_are_those_of_the_program(self):
        self.assertGreater(len(SCENES), 5)
        for name in SCENES:
            with self.subTest(name):
                self.assertLikeTheProgram(name, {}, [])

    def test_samples_colours_and_ranges_are_those_of_the_program(self):
        for name in SCENES:
            with self.subTest(name):
                self.assertLikeTheProgram(name, dict(samples_per_frame=3, color_mode="flow", range=(2, 7.5)),
                                          ["--samples-per-frame", "3", "--color-mode", "flow", "--range", "2:7.5"])

    def test_every_object_of_every_example_is_that_of_the_program(self):
        for name in SCENES:
            with self.subTest(name):
                self.assertLikeTheProgram(name, dict(all=True), ["--all"])

    def test_patterns_choose_what_they_choose_in_the_program(self):
        self.assertLikeTheProgram("walk.bvh", dict(ignore_case=True, exclude="Right*"),
                                  ["--select", "*foot", "--select", "Hips", "--ignore-case", "--exclude", "Right*"],
                                  patterns=["*foot", "Hips"])

    def test_takes_rates_axes_and_units_are_those_of_the_program(self):
        self.assertLikeTheProgram("robot.fbx", {}, ["--take", "wave", "--axis", "z-up", "--unit", "m"],
                                  dict(take="wave", axis="z-up", unit="m"))
        self.assertLikeTheProgram("crane.gltf", {}, ["--fps", "60"], dict(fps=60))

    def test_an_end_of_the_range_that_is_none_is_the_scenes_own(self):
        (trail,) = self.open(example("walk.bvh")).trails("Hips", range=(90, None))
        self.assertEqual((trail.start_frame, len(trail)), (90, 6))

    def test_measures_are_those_of_the_points(self):
        path = self.clip("HIERARCHY\nROOT ball {\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\n}\nMOTION\n"
                         "Frames: 3\nFrame Time: 0.5\n0 0 0\n3 4 0\n3 4 2\n")
        (trail,) = self.open(path).trails()
        self.assertEqual((trail.length, trail.mean_speed, trail.top_speed), (7.0, 7.0, 10.0))
        self.assertEqual([trail.measures[name] for name in ("length", "mean_speed", "top_speed")], [7.0, 7.0, 10.0])
        self.assertEqual(trail.units["top_jerk"], "units per second cubed")

    def test_measures_that_are_not_known_are_none(self):
        (trail,) = self.open(self.clip(bvh(BALL, lambda row: [row, 0, 0], 3))).trails()
        self.assertIsNone(trail.measures["top_jerk"])
        self.assertIsNone(trail.measures["slide_share"])
        self.assertEqual((trail.measures["holds"], trail.measures["contacts"]), ([], []))

    def test_measures_follow_edits_and_outlive_the_scene(self):
        scene = self.open(example("walk.bvh"))
        (trail,) = scene.trails("LeftFoot")
        before = trail.measures
        self.assertGreater(before["contact_share"], 0.3)
        scene.set_key("Hips", "ty", 40, 300.0)
        self.assertEqual(trail.measures, before)
        scene.follow()
        after = trail.measures
        self.assertGreater(after["top_pop"], 3 * before["top_pop"])
        self.assertEqual(after["top_pop_frame"], 40)
        scene.close()
        self.assertEqual(trail.measures, after)


class Scenes(SceneTest):
    def test_a_scene_tells_what_is_in_it(self):
        scene = self.open(example("robot.fbx"))
        self.assertEqual([take.name for take in scene.takes], ["reach", "wave"])
        self.assertEqual(scene.take, "reach")
        self.assertEqual(self.open(example("robot.fbx"), take="wave").take, "wave")
        self.assertEqual(scene.names, [found.source for found in scene.objects()])
        for found in scene.objects():
            self.assertEqual(found.parent, found.source.rpartition("|")[0] or None)

    def test_an_object_is_animated_when_it_or_what_it_hangs_on_moves(self):
        scene = self.open(self.clip(bvh(TWINS, lambda row: [0] * 3 + [row] * 3 + [0] * 9, 5)))
        self.assertEqual([found.source for found in scene.objects() if found.animated], ["|body|left", "|body|left|hand"])
        self.assertEqual([trail.source for trail in scene.trails()], ["|body|left", "|body|left|hand"])

    def test_a_scene_without_takes_has_none(self):
        scene = self.open(example("walk.bvh"))
        self.assertEqual((scene.takes, scene.take, scene.warnings), ([], None, []))

    def test_what_cannot_be_followed_is_in_the_warnings(self):
        path = self.clip("HIERARCHY\nROOT ball {\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\n}\nMOTION\n"
                         "Frames: 2\nFrame Time: 0.5\n0 0 0\n3 4 0\n3 4 2\n3 4 2\n")
        (warning,) = self.open(path).warnings
        self.assertRegex(warning, r"^a motion row after those that 'Frames:' announces .* \(2 times\)$")

    def test_the_nodes_of_trails_are_no_objects(self):
        scene = self.open(example("bounce.ma"))
        names = scene.names
        for _ in range(2):
            trails = scene.trails(all=True)
            self.assertEqual([trail.source for trail in trails], names)
        self.assertEqual(scene.names, names)
        with self.assertRaisesRegex(vantorelix.NotFoundError, "only nodes of trails match"):
            scene.trails("vlx_*")

    def test_paths_may_be_path_objects(self):
        with vantorelix.open(pathlib.Path(example("walk.bvh"))) as scene:
            self.assertEqual(scene.path, example("walk.bvh"))
        self.assertTrue(scene.closed)

    def test_world_matrices_are_row_vectors_at_the_given_frames(self):
        scene = self.open(example("walk.bvh"))
        matrices = scene.world_matrices("Hips", [0, 0.5, 95])
        self.assertEqual((matrices.shape, matrices.format, matrices.readonly), ((3, 4, 4), "d", True))
        for matrix in matrices.tolist():
            self.assertEqual([row[3] for row in matrix], [0, 0, 0, 1])
        (trail,) = scene.trails("Hips", samples_per_frame=2)
        self.assertSameBits([matrix[3][:3] for matrix in matrices.tolist()],
                            [trail.points.tolist()[index] for index in (0, 1, 190)])
        self.assertEqual(scene.world_matrices("Hips", []).shape, (0, 4, 4))

    def test_two_scenes_work_by_turns(self):
        alone = {name: [rows(trail.points) for trail in self.open(example(name)).trails(samples_per_frame=2)]
                 for name in ("walk.bvh", "arm.ma")}
        scenes = {name: self.open(example(name)) for name in alone}
        for _ in range(2):
            for name, scene in scenes.items():
                self.assertSameBits([rows(trail.points) for trail in scene.trails(samples_per_frame=2)], alone[name])


class Arrays(SceneTest):
    def test_arrays_are_read_only_views_of_doubles(self):
        (trail,) = self.open(example("walk.bvh")).trails("Hips")
        for name in ARRAYS:
            array = getattr(trail, name)
            self.assertIsInstance(array, memoryview)
            self.assertEqual((array.shape, array.format), ((96,) if name == "key_times" else (96, 3), "d"))
            self.assertTrue(array.readonly and array.c_contiguous)
            self.assertIs(array, getattr(trail, name))

    def test_an_array_without_rows_has_the_shape_of_one(self):
        (trail,) = self.open(example("walk.bvh")).trails("End Site of Head")
        self.assertEqual((trail.key_points.shape, trail.key_times.shape), ((0, 3), (0,)))

    def test_an_array_outlives_its_trail_and_its_scene(self):
        for end in (vantorelix.Scene.close, lambda scene: None):
            scene = vantorelix.open(example("walk.bvh"))
            trail = scene.trails("Hips")[0]
            points, wanted = trail.points, rows(trail.points)
            end(scene)
            gone = weakref.ref(scene), weakref.ref(trail)
            del scene, trail
            gc.collect()
            self.assertEqual([reference() for reference in gone], [None, None])
            others = [vantorelix.open(example("walk.bvh")).trails() for _ in range(3)]
            self.assertSameBits(rows(points), wanted)
            del others

    def test_a_trail_stays_readable_when_its_scene_is_closed(self):
        scene = vantorelix.open(example("walk.bvh"))
        (trail,) = scene.trails("Hips")
        scene.close()
        self.assertEqual((trail.source, len(trail), trail.points.shape), ("|Hips", 96, (96, 3)))
        self.assertGreater(trail.length, 0)

    def test_memory_goes_with_the_last_view(self):
        (trail,) = self.open(example("walk.bvh")).trails("Hips")
        owner = weakref.ref(trail.points.obj.owner)
        points = trail.points
        del trail
        gc.collect()
        self.assertIsNotNone(owner())
        part = points[10:20]
        del points
        gc.collect()
        self.assertIsNotNone(owner())
        del part
        gc.collect()
        self.assertIsNone(owner())


@unittest.skipUnless("VANTORELIX_NUMPY" in os.environ, "VANTORELIX_NUMPY is not set")
class Numpy(SceneTest):
    def test_numpy_takes_arrays_without_a_copy(self):
        import numpy

        scene = self.open(example("walk.bvh"))
        (trail,) = scene.trails("Hips")
        points = numpy.asarray(trail.points)
        self.assertEqual((points.shape, points.dtype, points.flags.writeable), ((96, 3), numpy.float64, False))
        address = numpy.frombuffer(trail.points.obj, dtype="d").__array_interface__["data"][0]
        self.assertEqual(points.__array_interface__["data"][0], address)
        self.assertSameBits(points.tolist(), rows(trail.points))
        matrices = numpy.asarray(scene.world_matrices("Hips", numpy.arange(96)))
        self.assertSameBits(matrices[:, 3, :3].tolist(), rows(trail.points))
        (still,) = scene.trails("End Site of Head")
        self.assertEqual(numpy.asarray(still.key_points).shape, (0, 3))


if __name__ == "__main__":
    unittest.main()
