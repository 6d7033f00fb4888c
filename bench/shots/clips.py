"""Clips of a show that never was: figures that walk, each in a way of its own, as BVH files."""

import math
import os
import random

LIMBS = ("left_leg", "right_leg", "left_arm", "right_arm", "spine")
BONE = 10.0
RATE = 30.0


def make(folder, count, joints, frames):
    """The paths of so many clips in a folder of their own below `folder`; those that are there are taken as they are."""
    place = os.path.join(folder, "%d-joints-%d-frames" % (joints, frames), "%d" % count)
    os.makedirs(place, exist_ok=True)
    paths = [os.path.join(place, "shot%05d.bvh" % number) for number in range(count)]
    for number, path in enumerate(paths):
        if not os.path.exists(path):
            with open(path + ".part", "w", encoding="ascii") as file:
                file.write(text(number, joints, frames))
            os.replace(path + ".part", path)
    return paths


def text(seed, joints, frames):
    """A clip; other seeds give other motions of the same figure."""
    chance = random.Random(seed)
    swings = [(chance.uniform(5.0, 40.0), chance.uniform(0.05, 0.3), chance.uniform(0.0, 6.3)) for _ in range(3 * joints)]
    step = chance.uniform(1.0, 3.0)
    row = "%.4f " * (3 * joints + 3)
    rows = []
    for frame in range(frames):
        place = (step * frame, 30.0 + math.sin(0.4 * frame + seed), math.cos(0.2 * frame))
        rows.append(row % (place + tuple(size * math.sin(speed * frame + begin) for size, speed, begin in swings)))
    return "%s\nMOTION\nFrames: %d\nFrame Time: %.7f\n%s\n" % ("\n".join(_figure(joints)), frames, 1.0 / RATE, "\n".join(rows))


def _figure(joints):
    lines = ["HIERARCHY", "ROOT hips", "{", "OFFSET 0 0 0",
             "CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation"]
    for number, limb in enumerate(LIMBS):
        lines += _limb(limb, len(range(number, joints - 1, len(LIMBS))))
    return lines + ["}"]


def _limb(name, joints):
    way = (0.0, BONE if name == "spine" else -BONE, 0.0)
    offset = "OFFSET %g %g %g" % way
    begin = [line for number in range(joints) for line in (
        "JOINT %s_%d" % (name, number), "{", offset, "CHANNELS 3 Zrotation Xrotation Yrotation")]
    return begin + ["End Site", "{", offset, "}"] + ["}"] * joints if joints else []
