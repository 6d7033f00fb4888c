"""What is refused: an exception each time that names it, and the scene lives on."""

import os
import unittest

import vantorelix
from support import SceneTest, example


class Refusals(SceneTest):
    def setUp(self):
        self.scene = self.open(example("walk.bvh"))

    def assertRefused(self, kind, text, call, *arguments, **options):
        with self.assertRaisesRegex(kind, text):
            call(*arguments, **options)

    def test_a_file_that_cannot_be_read_is_named_with_its_line(self):
        path = self.clip("HIERARCHY\nROOT a {\nOFFSET 0 0 x\n")
        with self.assertRaisesRegex(vantorelix.FormatError, "clip.bvh:3: 'x' stands where an offset belongs") as caught:
            vantorelix.open(path)
        self.assertEqual(caught.exception.line, 3)
        self.assertRefused(vantorelix.MissingFileError, "nowhere.bvh: no such file; check the path", vantorelix.open,
                           "nowhere.bvh")
        self.assertRefused(FileNotFoundError, "nowhere", vantorelix.open, "nowhere.bvh")
        self.assertRefused(vantorelix.Error, "is a folder", vantorelix.open, os.path.dirname(path))

    def test_options_that_a_format_has_no_use_for_are_refused(self):
        for name, options in (("walk.bvh", dict(take="a")), ("walk.bvh", dict(fps=25)), ("crane.gltf", dict(axis="y-up")),
                              ("bounce.ma", dict(unit="cm"))):
            self.assertRefused(vantorelix.Error, "%s is for .* leave it out" % list(options)[0], vantorelix.open,
                               example(name), **options)
        self.assertRefused(vantorelix.FormatError, "jump", vantorelix.open, example("robot.fbx"), take="jump")

    def test_arguments_of_a_wrong_type_or_value_are_refused(self):
        scene, infinity = self.scene, float("inf")
        for kind, call in (
            (TypeError, lambda: vantorelix.open(7)),
            (TypeError, lambda: vantorelix.open(b"walk.bvh")),
            (ValueError, lambda: vantorelix.open("a\0b.bvh")),
            (TypeError, lambda: vantorelix.open("a.bvh", take=7)),
            (ValueError, lambda: vantorelix.open("a.gltf", fps=0)),
            (ValueError, lambda: vantorelix.open("a.gltf", fps=infinity)),
            (TypeError, lambda: vantorelix.open("a.gltf", fps="24")),
            (ValueError, lambda: vantorelix.open("a.fbx", axis="x-up")),
            (ValueError, lambda: vantorelix.open("a.fbx", unit="mile")),
            (TypeError, lambda: scene.trails(7)),
            (TypeError, lambda: scene.trails(None)),
            (ValueError, lambda: scene.trails("a\0")),
            (TypeError, lambda: scene.trails(exclude=7)),
            (TypeError, lambda: scene.trails(samples_per_frame=1.5)),
            (ValueError, lambda: scene.trails(samples_per_frame=0)),
            (ValueError, lambda: scene.trails(samples_per_frame=10 ** 30)),
            (ValueError, lambda: scene.trails(color_mode="red")),
            (ValueError, lambda: scene.trails(color_mode=4)),
            (TypeError, lambda: scene.trails(color_mode=1.5)),
            (TypeError, lambda: scene.trails(range=5)),
            (TypeError, lambda: scene.trails(range="15")),
            (ValueError, lambda: scene.trails(range=(1, 2, 3))),
            (ValueError, lambda: scene.trails(range=(5, 1))),
            (ValueError, lambda: scene.trails(range=(0, infinity))),
            (TypeError, lambda: scene.world_matrices("Hips", 5)),
            (TypeError, lambda: scene.world_matrices("Hips", b"12345678")),
            (TypeError, lambda: scene.world_matrices("Hips", ["a"])),
            (TypeError, lambda: scene.world_matrices(5, [0])),
            (TypeError, lambda: scene.key_times(None)),
            (TypeError, lambda: scene.set_key("Hips", "ty", "a", 1)),
            (ValueError, lambda: scene.set_key("Hips", "ty", 1, infinity)),
        ):
            self.assertRefused(kind, "", call)

    def test_names_that_stand_for_nothing_are_named(self):
        scene = self.scene
        for call in (lambda: scene.trails("Tail"), lambda: scene.key_times("Tail"),
                     lambda: scene.world_matrices("Tail", [0]), lambda: scene.world_matrices("Tail", []),
                     lambda: scene.set_key("Tail", "ty", 0, 0)):
            self.assertRefused(vantorelix.NotFoundError, "walk.bvh: no object .*'Tail'", call)
        for channel in ("size", "translate"):
            self.assertRefused(vantorelix.NotFoundError, "Hips has no channel '%s'" % channel, scene.set_key, "Hips",
                               channel, 0, 0)
        self.assertRefused(vantorelix.NotFoundError, "is excluded", scene.trails, exclude="*")
        self.assertRefused(vantorelix.Error, "not a valid pattern", scene.trails, "[a")
        self.assertRefused(LookupError, "Tail", scene.trails, "Tail")

    def test_a_name_that_several_objects_bear_asks_for_a_path(self):
        scene = self.open(self.twins())
        self.assertRefused(vantorelix.Error, "hand", scene.key_times, "hand")
        self.assertEqual(len(scene.key_times("|body|left|hand")), 21)
        self.assertEqual(len(scene.key_times("left|hand")), 21)

    def test_ranges_that_cannot_be_are_refused(self):
        self.assertRefused(vantorelix.Error, "fewer than two samples", self.scene.trails, range=(1, 1.5))
        self.assertRefused(vantorelix.Error, "100 million", self.scene.trails, range=(0, 1e12))
        self.assertEqual(len(self.scene.trails("Hips")[0]), 96)

    def test_a_closed_scene_says_so_in_every_call(self):
        scene = self.scene
        scene.close()
        scene.close()
        for call in (scene.trails, scene.objects, scene.follow, lambda: scene.names, lambda: scene.key_times("Hips"),
                     lambda: scene.world_matrices("Hips", [0]), lambda: scene.set_key("Hips", "ty", 0, 0)):
            self.assertRefused(vantorelix.ClosedError, "walk.bvh: the scene is closed", call)
        self.assertIn("closed", repr(scene))
        self.assertEqual(scene.range, (0, 95))


if __name__ == "__main__":
    unittest.main()
