"""What the tests share: the example scenes, the program's own answers, and small clips."""

import json
import os
import struct
import subprocess
import tempfile
import unittest

import vantorelix

CHECKOUT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
EXAMPLES = os.path.join(CHECKOUT, "examples")
SCENES = sorted(name for name in os.listdir(EXAMPLES) if name.endswith((".ma", ".bvh", ".fbx", ".gltf")))
PROGRAM = os.environ.get("VANTORELIX_PROGRAM", os.path.join(CHECKOUT, "build", "bin", "vantorelix"))
ARRAYS = ("points", "colors", "key_points", "key_colors", "key_times")


def example(name):
    return os.path.join(EXAMPLES, name)


def program_json(path, *options):
    """What the program writes about a scene."""
    command = [PROGRAM, "trails", path, "--out=-.json", "--quiet"] + list(options)
    return json.loads(subprocess.check_output(command))


def rows(view):
    """The values of an array, a list or number a row; [] for one without rows."""
    return view.tolist() if len(view) else []


def bits(numbers):
    """Nested lists of numbers as bytes: two are alike to the last bit, or not at all."""
    if isinstance(numbers, (list, tuple)):
        return b"".join(map(bits, numbers))
    return struct.pack("d", float("nan") if numbers is None else numbers)


def bvh(joints, motion, frames):
    """The text of a clip: `joints` are lines of the hierarchy, `motion(row)` the values of a row."""
    values = "\n".join(" ".join(map(repr, motion(row))) for row in range(frames))
    return "HIERARCHY\n%s\nMOTION\nFrames: %d\nFrame Time: 0.04\n%s\n" % (joints, frames, values)


CHANNELS = "OFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\n"
TWINS = ("ROOT body {\n" + CHANNELS + "JOINT left {\n" + CHANNELS + "JOINT hand {\n" + CHANNELS + "}\n}\n"
         "JOINT right {\n" + CHANNELS + "JOINT hand {\n" + CHANNELS + "}\n}\n}")
BALL = "ROOT ball {\n" + CHANNELS + "}"


class SceneTest(unittest.TestCase):
    def clip(self, text):
        """The path of a file with this text, which goes with the test."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "clip.bvh")
        with open(path, "w") as file:
            file.write(text)
        return path

    def twins(self):
        """A body whose two hands bear the same name, over frames 0 to 20."""
        return self.clip(bvh(TWINS, lambda row: [row * 0.5 + k for k in range(15)], 21))

    def large(self, frames=20000):
        """A ball, made for work that takes long: with `samples_per_frame=2000` its trail takes seconds."""
        return self.clip(bvh(BALL, lambda row: [row, 1, 2], frames))

    def open(self, path, **options):
        scene = vantorelix.open(path, **options)
        self.addCleanup(scene.close)
        return scene

    def assertSameBits(self, found, wanted, text=None):
        self.assertEqual(bits(found), bits(wanted), text)

    def assertExact(self, scene, trail):
        """The trail is where the scene says that its object is, at every sample and key."""
        frames = [trail.start_frame + i * trail.frame_step for i in range(len(trail))]
        for times, points in ((frames, trail.points), (trail.key_times.tolist(), trail.key_points)):
            matrices = scene.world_matrices(trail.source, times)
            self.assertSameBits(rows(points), [matrix[3][:3] for matrix in rows(matrices)])
