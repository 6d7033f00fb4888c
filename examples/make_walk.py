#!/usr/bin/env python3
"""Writes walk.bvh beside this file: a figure of 19 joints that walks four strides.

Plain Python, no random numbers: the same file every time. Lengths are centimetres, Y is up, the figure walks
along +Z at 24 frames a second.
"""
import math
import pathlib

FRAMES = 97
STRIDE = 24  # frames of one whole cycle, left step and right step
SPEED = 5.4  # centimetres a frame

# name, parent, offset from the parent; a name that ends in "_end" is an end site.
JOINTS = [
    ("Hips", None, (0, 0, 0)),
    ("Spine", "Hips", (0, 11, 0)),
    ("Chest", "Spine", (0, 17, 0)),
    ("Neck", "Chest", (0, 22, 0)),
    ("Head", "Neck", (0, 9, 1)),
    ("Head_end", "Head", (0, 18, 0)),
]
for side, sign in (("Left", 1), ("Right", -1)):
    JOINTS += [
        (side + "Shoulder", "Chest", (sign * 4, 18, 0)),
        (side + "Arm", side + "Shoulder", (sign * 13, 0, 0)),
        (side + "ForeArm", side + "Arm", (sign * 3, -27, 0)),
        (side + "Hand", side + "ForeArm", (sign * 1, -25, 0)),
        (side + "Hand_end", side + "Hand", (0, -17, 0)),
        (side + "UpLeg", "Hips", (sign * 9, -3, 0)),
        (side + "Leg", side + "UpLeg", (0, -43, 0)),
        (side + "Foot", side + "Leg", (0, -42, 0)),
        (side + "Foot_end", side + "Foot", (0, -8, 14)),
    ]


def pose(frame):
    """Rotations in degrees (z, x, y) by joint name, and the hips' position."""
    phase = 2 * math.pi * frame / STRIDE
    turn = {
        "Hips": (2.5 * math.sin(phase), 2, 6 * math.sin(phase)),
        "Spine": (-1.5 * math.sin(phase), 3, -4 * math.sin(phase)),
        "Chest": (-1.5 * math.sin(phase), 2, -7 * math.sin(phase)),
        "Neck": (0, 2, 2 * math.sin(phase)),
        "Head": (0, -6 + 2 * math.cos(2 * phase), 3 * math.sin(phase)),
    }
    for side, at in (("Left", phase), ("Right", phase + math.pi)):
        sign = 1 if side == "Left" else -1
        swing = math.sin(at)
        turn[side + "UpLeg"] = (0, -4 - 27 * swing, 0)
        turn[side + "Leg"] = (0, 24 + 24 * math.cos(at + 0.35), 0)
        turn[side + "Foot"] = (0, -10 - 14 * math.cos(at - 0.5), 0)
        turn[side + "Shoulder"] = (sign * 2 * swing, 0, 0)
        turn[side + "Arm"] = (sign * 4, 24 * swing, 0)
        turn[side + "ForeArm"] = (0, -24 - 12 * math.sin(at + math.pi - 0.6), 0)
        turn[side + "Hand"] = (0, -8 + 6 * math.sin(at + math.pi - 1.2), 0)
    hips = (2.2 * math.cos(phase), 93 + 2.1 * math.cos(2 * phase), SPEED * frame)
    return hips, turn


def hierarchy(name, depth, lines):
    indent = "\t" * depth
    _, parent, offset = next(j for j in JOINTS if j[0] == name)
    end = name.endswith("_end")
    lines.append(indent + ("End Site" if end else ("ROOT " if parent is None else "JOINT ") + name))
    lines.append(indent + "{")
    lines.append(indent + "\tOFFSET %.4f %.4f %.4f" % offset)
    order = []
    if not end:
        channels = "Zrotation Xrotation Yrotation"
        if parent is None:
            channels = "Xposition Yposition Zposition " + channels
        lines.append(indent + "\tCHANNELS %d %s" % (len(channels.split()), channels))
        order.append(name)
    for child in (j[0] for j in JOINTS if j[1] == name):
        order += hierarchy(child, depth + 1, lines)
    lines.append(indent + "}")
    return order


def main():
    lines = ["HIERARCHY"]
    order = hierarchy("Hips", 0, lines)
    lines += ["MOTION", "Frames: %d" % FRAMES, "Frame Time: 0.0416667"]
    for frame in range(FRAMES):
        hips, turn = pose(frame)
        values = list(hips) + [v for name in order for v in turn.get(name, (0, 0, 0))]
        lines.append(" ".join("%.4f" % (v + 0.0) for v in values))
    path = pathlib.Path(__file__).with_name("walk.bvh")
    path.write_bytes(("\n".join(lines).replace("-0.0000", "0.0000") + "\n").encode("ascii"))


if __name__ == "__main__":
    main()
