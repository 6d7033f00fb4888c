"""Trails as columns: the same as trails one by one, to the last bit."""

import gc
import unittest

import vantorelix
from support import BALL, SCENES, SceneTest, bits, bvh, example, rows

TOLD = ("source", "name", "node", "parent", "viz", "samples_per_frame", "color_mode", "start_frame", "frame_step", "warnings")


def joined(trails, name):
    return [row for trail in trails for row in rows(getattr(trail, name))]


class Columns(SceneTest):
    def assertLikeTrails(self, scene, *patterns, **arguments):
        trails, found = scene.trails(*patterns, **arguments), scene.tables(*patterns, **arguments)
        self.assertEqual([{name: trail[name] for name in TOLD} for trail in found.trails],
                         [{name: getattr(trail, name) for name in TOLD} for trail in trails])
        self.assertEqual([(trail["samples"], trail["keys"]) for trail in found.trails],
                         [(len(trail), len(trail.key_times)) for trail in trails])
        for index, axis in enumerate("xyz"):
            self.assertSameBits(rows(found.samples[axis]), [point[index] for point in joined(trails, "points")], axis)
            self.assertSameBits(rows(found.keys[axis]), [point[index] for point in joined(trails, "key_points")], axis)
        self.assertSameBits(rows(found.keys["frame"]), joined(trails, "key_times"), "frame")
        self.assertMeasures(trails, found)

    def assertMeasures(self, trails, found):
        self.assertEqual(found.units, trails[0].units)
        self.assertEqual(list(found.measures), list(found.units))
        for name, column in found.measures.items():
            wanted = [getattr(trail, name) if name.endswith("_per_frame") else trail.measures[name] for trail in trails]
            self.assertSameBits(rows(column), wanted, name)

    def test_columns_of_every_example_are_those_of_its_trails(self):
        for name in SCENES:
            with self.subTest(name):
                self.assertLikeTrails(self.open(example(name)))

    def test_patterns_ranges_and_rates_mean_what_they_mean_for_trails(self):
        self.assertLikeTrails(self.open(example("walk.bvh")), "*foot", samples_per_frame=2, range=(3, 9.5), ignore_case=True,
                              exclude="Right*")
        self.assertLikeTrails(self.open(example("walk.bvh")), all=True)

    def test_a_speed_is_that_of_the_way_to_the_next_sample_and_the_last_has_none(self):
        scene = self.open(self.clip(bvh(BALL, lambda row: [row * row, 0, 0], 3)))
        speeds = rows(scene.tables().samples["speed"])
        self.assertEqual(speeds[:2], [25.0, 75.0])
        self.assertEqual(bits(speeds[2]), bits(None))

    def test_columns_stay_when_the_tables_and_the_scene_go(self):
        scene = self.open(example("walk.bvh"))
        column = scene.tables().samples["y"]
        before = rows(column)
        scene.close()
        del scene
        gc.collect()
        self.assertEqual(rows(column), before)
        with self.assertRaises(TypeError):
            column[0] = 1.0

    def test_edits_do_not_change_what_was_handed_out(self):
        scene = self.open(example("walk.bvh"))
        before = scene.tables("Hips")
        held = rows(before.samples["x"])
        scene.set_key("Hips", "tx", 3, 1000.0)
        scene.follow()
        self.assertEqual(rows(before.samples["x"]), held)
        self.assertIn(1000.0, rows(scene.tables("Hips").samples["x"]))

    def test_a_pattern_without_objects_is_refused_as_it_is_for_trails(self):
        with self.assertRaisesRegex(vantorelix.NotFoundError, "Nobody"):
            self.open(example("walk.bvh")).tables("Nobody")


if __name__ == "__main__":
    unittest.main()
