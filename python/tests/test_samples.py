"""Scenes from arrays."""

import array
import json
import os
import struct
import unittest

import vantorelix
from support import SCENES, SceneTest, example, program_json, rows


def matrices(values, shape):
    return memoryview(array.array("d", values)).cast("B").cast("d", shape)


def at(x, y, z):
    return [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1]


class Samples(SceneTest):
    def scene(self, *arguments, **options):
        scene = vantorelix.scene(*arguments, **options)
        self.addCleanup(scene.close)
        return scene

    def test_a_scene_is_what_its_arrays_say(self):
        given = matrices(at(0, 1, 0) + at(1, 0, 2) + at(0, 2, 0) + at(4, 0, 2), (2, 2, 4, 4))
        scene = self.scene(["Hips", "Foot"], [None, 0], 25, given, start=10, unit="m", up_axis="z", name="walk")
        self.assertEqual((scene.fps, scene.range, scene.unit, scene.up_axis, scene.path), (25, (10, 11), "m", "z", "walk"))
        hips, foot = scene.trails(samples_per_frame=2)
        self.assertEqual(foot.points.tolist(), [[1, 0, 2], [2.5, 0, 2], [4, 0, 2]])
        self.assertEqual((foot.source, foot.parent, foot.key_times.tolist()), ("|Hips|Foot", "|Hips", [10, 11]))
        self.assertEqual(hips.top_speed, 25)

    def test_every_example_comes_back_to_the_last_bit(self):
        for name in SCENES:
            with self.subTest(name):
                self.assertComesBack(self.open(example(name)))

    def assertComesBack(self, scene):
        objects = scene.objects()
        number = {found.source: index for index, found in enumerate(objects)}
        first, last = scene.range
        frames = [first + index for index in range(int(last - first) + 1)]
        worlds = [scene.world_matrices(found.source, frames).tolist() for found in objects]
        flat = [value for frame in range(len(frames)) for world in worlds for row in world[frame] for value in row]
        again = self.scene([found.name for found in objects], [number.get(found.parent) for found in objects], scene.fps,
                           matrices(flat, (len(frames), len(objects), 4, 4)), start=first)
        for wanted, found in zip(scene.trails(all=True), again.trails(all=True)):
            self.assertSameBits(rows(found.points), rows(wanted.points))
        for found, world in zip(again.objects(), worlds):
            for one, other in zip(again.world_matrices(found.source, frames).tolist(), world):
                for a, b in zip(sum(one, []), sum(other, [])):
                    self.assertAlmostEqual(a, b, delta=1e-12 * max(1, abs(b)))

    def test_a_stream_makes_the_trails_that_arrays_make(self):
        values = [value for k in range(20) for value in at(k * 0.1, k * k, 1 / (k + 1))]
        head = dict(format="vantorelix-samples", version=1, frames=20, fps=30, names=["ball"])
        path = os.path.join(os.path.dirname(self.clip("")), "ball.samples")
        with open(path, "wb") as file:
            file.write(json.dumps(head).encode() + b"\n" + struct.pack("<320d", *values))
        (written,) = program_json(path)["trails"]
        for scene in (self.open(path), self.scene(["ball"], None, 30, matrices(values, (20, 1, 4, 4)))):
            (trail,) = scene.trails()
            self.assertSameBits(rows(trail.points), written["points"])

    def test_read_only_arrays_are_taken_and_none_is_kept(self):
        values = array.array("d", at(0, 0, 0) + at(1, 2, 3))
        given = memoryview(values).cast("B").cast("d", (2, 1, 4, 4))
        scenes = [self.scene(["a"], None, 24, given), self.scene(["a"], None, 24, given.toreadonly())]
        values[12] = 99.0
        for scene in scenes:
            self.assertEqual(scene.trails()[0].points.tolist(), [[0, 0, 0], [1, 2, 3]])
        del given
        values.append(5.0)  # which Python refuses while anything holds the memory

    def test_edits_move_the_object_alone(self):
        given = matrices((at(0, 0, 0) + at(1, 0, 0)) * 2 + at(3, 0, 0) + at(4, 0, 0), (3, 2, 4, 4))
        scene = self.scene(["a", "b"], [None, 0], 24, given)
        a, b = scene.trails()
        scene.set_key("a", "tx", 1, 7.0)
        scene.follow()
        self.assertEqual((a.points[1, 0], b.points[1, 0]), (7.0, 1.0))

    def test_what_cannot_be_is_refused(self):
        good = matrices(at(0, 0, 0), (1, 1, 4, 4))
        for kind, call in (
            (TypeError, lambda: vantorelix.scene("a", None, 24, good)),
            (TypeError, lambda: vantorelix.scene([5], None, 24, good)),
            (TypeError, lambda: vantorelix.scene(["a"], ["b"], 24, good)),
            (ValueError, lambda: vantorelix.scene(["a"], [None, None], 24, good)),
            (vantorelix.FormatError, lambda: vantorelix.scene(["a"], [0], 24, good)),
            (ValueError, lambda: vantorelix.scene(["a"], [-2], 24, good)),
            (vantorelix.FormatError, lambda: vantorelix.scene(["a"], None, 0, good)),
            (ValueError, lambda: vantorelix.scene(["a", "b"], None, 24, good)),
            (ValueError, lambda: vantorelix.scene([], [], 24, good)),
            (TypeError, lambda: vantorelix.scene(["a"], None, 24, [[1.0]])),
            (TypeError, lambda: vantorelix.scene(["a"], None, 24, memoryview(array.array("f", at(0, 0, 0))))),
            (ValueError, lambda: vantorelix.scene(["a"], None, 24, array.array("d", at(0, 0, 0)))),
            (ValueError, lambda: vantorelix.scene(["a"], None, 24, good, up_axis="x")),
            (vantorelix.FormatError,
             lambda: vantorelix.scene(["a"], None, 24, matrices(at(float("nan"), 0, 0), (1, 1, 4, 4)))),
        ):
            with self.assertRaises(kind):
                call()


if __name__ == "__main__":
    unittest.main()
