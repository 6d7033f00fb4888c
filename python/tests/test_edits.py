"""Edits of keys, and trails that follow them."""

import gc
import unittest

import vantorelix
from support import SceneTest, example, rows


class Keys(SceneTest):
    def setUp(self):
        self.scene = self.open(example("walk.bvh"))

    def at(self, frame, axis=1):
        return self.scene.world_matrices("Hips", [frame]).tolist()[0][3][axis]

    def test_key_times_are_in_order_and_each_once(self):
        self.assertEqual(self.scene.key_times("Hips").tolist(), list(range(96)))
        self.assertEqual(self.scene.key_times("End Site of Head").tolist(), [])

    def test_a_key_is_set_by_the_long_and_by_the_short_name(self):
        for attribute, value in (("ty", 3.0), ("translateY", 4.0)):
            self.scene.set_key("Hips", attribute, 12, value)
            self.assertEqual(self.at(12), value)

    def test_a_key_at_a_new_frame_is_one_more(self):
        self.scene.set_key("Hips", "ty", 12.5, 3.0)
        self.assertEqual(self.scene.key_times("Hips").tolist()[12:15], [12, 12.5, 13])
        self.assertEqual(self.at(12.5), 3.0)

    def test_angles_are_in_degrees(self):
        scene = self.open(self.twins())
        scene.set_key("body", "rz", 0, 90)
        x_axis = scene.world_matrices("body", [0]).tolist()[0][0]
        for found, wanted in zip(x_axis, (0, 1, 0, 0)):
            self.assertAlmostEqual(found, wanted, 15)

    def test_a_key_moves_and_goes(self):
        before = self.at(12)
        self.scene.move_key("Hips", "ty", 12, 12.25)
        self.assertEqual(self.at(12.25), before)
        self.assertNotEqual(self.at(12), before)
        self.scene.remove_key("Hips", "ty", 12.25)
        self.assertNotEqual(self.at(12.25), before)

    def test_a_key_that_is_not_there_is_named(self):
        for call in (lambda: self.scene.move_key("Hips", "ty", 12.5, 13),
                     lambda: self.scene.remove_key("Hips", "ty", 12.5)):
            with self.assertRaisesRegex(vantorelix.NotFoundError, "walk.bvh: Hips has no key of translateY at frame 12.5"):
                call()


class Following(SceneTest):
    def test_a_trail_has_its_new_arrays_and_those_handed_out_stay(self):
        scene = self.open(example("walk.bvh"))
        (trail,) = scene.trails("LeftFoot", samples_per_frame=2)
        old, copy = trail.points, rows(trail.points)
        scene.set_key("Hips", "ty", 12, 3.0)
        self.assertIs(trail.points, old)
        scene.follow()
        self.assertNotEqual(rows(trail.points), copy)
        self.assertSameBits(rows(old), copy)
        self.assertExact(scene, trail)

    def test_every_trail_of_every_call_is_exact(self):
        scene = self.open(self.twins())
        sets = [scene.trails(), scene.trails("left", samples_per_frame=3), scene.trails("hand", range=(5, 9)),
                scene.trails("right", range=(1, 20), samples_per_frame=2), scene.trails("body")]
        wanted = [[(trail.source, trail.start_frame, len(trail)) for trail in trails] for trails in sets]
        for value in (50.0, 60.0):
            scene.set_key("body", "tx", 7, value)
            scene.set_key("|body|left|hand", "tz", 8, value)
            scene.follow()
            self.assertEqual([[(trail.source, trail.start_frame, len(trail)) for trail in trails] for trails in sets],
                             wanted)
            for trails in sets:
                for trail in trails:
                    self.assertExact(scene, trail)
            self.assertEqual(sets[4][0].points.tolist()[7][0], value)

    def test_new_keys_are_keys_of_the_trail(self):
        scene = self.open(example("walk.bvh"))
        (trail,) = scene.trails("Hips")
        scene.set_key("Hips", "ty", 12.5, 3.0)
        scene.follow()
        self.assertIn(12.5, trail.key_times.tolist())

    def test_the_first_keys_of_a_channel_move_what_hangs_on_it(self):
        scene = self.open(self.twins())
        (hand,) = scene.trails("left|hand")
        before = rows(hand.points)
        scene.set_key("body", "rz", 0, 0)
        scene.set_key("body", "rz", 20, 90)
        scene.follow()
        self.assertNotEqual(rows(hand.points), before)
        self.assertExact(scene, hand)

    def test_following_without_edits_changes_no_value(self):
        scene = self.open(self.twins())
        trails = scene.trails()
        points = [rows(trail.points) for trail in trails]
        scene.follow()
        self.assertSameBits([rows(trail.points) for trail in trails], points)

    def test_trails_that_nobody_holds_are_followed_no_more(self):
        scene = self.open(self.twins())
        kept = scene.trails("left")
        scene.trails()
        gc.collect()
        self.assertEqual(len(scene._sets), 1)
        scene.set_key("body", "tx", 7, 50.0)
        scene.follow()
        self.assertExact(scene, kept[0])

    def test_two_scenes_follow_by_turns(self):
        scenes = [self.open(example("walk.bvh")) for _ in range(2)]
        trails = [scene.trails("LeftFoot")[0] for scene in scenes]
        for turn in range(3):
            for number, scene in enumerate(scenes):
                scene.set_key("Hips", "ty", 12, 10.0 * turn + number)
            for scene, trail in zip(reversed(scenes), reversed(trails)):
                scene.follow()
                self.assertExact(scene, trail)
        self.assertNotEqual(rows(trails[0].points), rows(trails[1].points))


if __name__ == "__main__":
    unittest.main()
