#!/usr/bin/env python3
"""Writes walk.bvh: a figure that walks three strides along an arc.

The feet are planted: each keeps its place on the ground through its stance, and two-bone inverse kinematics gives
hip and knee. The rest is a handful of sines in step with the stride. The same numbers come out on every machine.
"""
import math
import os

FRAMES = 96
FRAME_TIME = 1 / 30
STRIDE_FRAMES = 32        # one stride: left and right step
STRIDE = 116.0            # centimetres travelled in a stride
RADIUS = 340.0            # of the arc that is walked
STANCE = 0.6              # part of a stride that a foot stands
ANKLE = 9.0               # height of the ankle of a foot that stands flat
THIGH, SHIN = 44.0, 42.0
HIP_WIDTH = 9.5
FOOT_TRACK = 7.0          # half the distance between the lines that the feet walk on

# name, parent, offset, end site (or None)
SKELETON = [
    ("Hips", None, (0, 0, 0), None),
    ("Spine", "Hips", (0, 11, 0), None),
    ("Chest", "Spine", (0, 19, -1), None),
    ("Neck", "Chest", (0, 23, 0), None),
    ("Head", "Neck", (0, 9, 1), (0, 19, 0)),
    ("LeftShoulder", "Chest", (3, 18, 0), None),
    ("LeftArm", "LeftShoulder", (14, 0, 0), None),
    ("LeftForeArm", "LeftArm", (0, -28, 0), None),
    ("LeftHand", "LeftForeArm", (0, -25, 0), (0, -16, 0)),
    ("RightShoulder", "Chest", (-3, 18, 0), None),
    ("RightArm", "RightShoulder", (-14, 0, 0), None),
    ("RightForeArm", "RightArm", (0, -28, 0), None),
    ("RightHand", "RightForeArm", (0, -25, 0), (0, -16, 0)),
    ("LeftUpLeg", "Hips", (HIP_WIDTH, -4, 0), None),
    ("LeftLeg", "LeftUpLeg", (0, -THIGH, 0), None),
    ("LeftFoot", "LeftLeg", (0, -SHIN, 0), None),
    ("LeftToe", "LeftFoot", (0, -6, 13), (0, 0, 7)),
    ("RightUpLeg", "Hips", (-HIP_WIDTH, -4, 0), None),
    ("RightLeg", "RightUpLeg", (0, -THIGH, 0), None),
    ("RightFoot", "RightLeg", (0, -SHIN, 0), None),
    ("RightToe", "RightFoot", (0, -6, 13), (0, 0, 7)),
]


def axis_rotation(axis, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    i, j = (axis + 1) % 3, (axis + 2) % 3
    m = [[float(row == column) for column in range(3)] for row in range(3)]
    m[i][i], m[i][j], m[j][i], m[j][j] = c, -s, s, c
    return m


def product(a, b):
    return [[sum(a[i][k] * b[k][j] for k in range(3)) for j in range(3)] for i in range(3)]


def transposed(m):
    return [list(row) for row in zip(*m)]


def applied(m, v):
    return [sum(m[i][k] * v[k] for k in range(3)) for i in range(3)]


def zxy_angles(m):
    """Degrees about Z, X and Y, with m = Z X Y on column vectors."""
    x = math.asin(max(-1.0, min(1.0, m[2][1])))
    z = math.atan2(-m[0][1], m[1][1])
    y = math.atan2(-m[2][0], m[2][2])
    return [math.degrees(a) for a in (z, x, y)]


def rotation_zxy(z, x, y):
    return product(product(axis_rotation(2, z), axis_rotation(0, x)), axis_rotation(1, y))


def on_arc(side, height, forward):
    """A point given along a straight walk, on the arc that is walked."""
    heading = forward / RADIUS
    return [(RADIUS + side) * math.cos(heading) - RADIUS, height, (RADIUS + side) * math.sin(heading)]


def smooth(t):
    t = max(0.0, min(1.0, t))
    return t * t * (3 - 2 * t)


def foot(strides):
    """Where an ankle is after so many strides of its own foot: forward, height, and the foot's pitch in degrees."""
    step, phase = math.floor(strides), strides - math.floor(strides)
    plant = (step + STANCE / 2) * STRIDE
    if phase < STANCE:
        strike = 1 - smooth(phase / 0.1)
        lift = smooth((phase - 0.35) / 0.25)
        return plant - 2 * strike + 7 * lift, ANKLE + 8 * lift, -18 * strike + 38 * lift
    swing = (phase - STANCE) / (1 - STANCE)
    start, end = plant + 7, plant + STRIDE - 2
    height = ANKLE + 8 * (1 - smooth(swing)) + 7 * math.sin(math.pi * swing) ** 2
    pitch = 38 * (1 - smooth(swing * 1.4)) - 18 * smooth(swing * 1.4 - 0.4)
    return start + (end - start) * smooth(swing), height, pitch


def leg(hip, ankle, heading):
    """World rotations of thigh and shin that bring the ankle as near to its place as the bones allow."""
    reach = [a - h for a, h in zip(ankle, hip)]
    distance = min(math.sqrt(sum(r * r for r in reach)), 0.999 * (THIGH + SHIN))
    bend_hip = math.acos((THIGH ** 2 + distance ** 2 - SHIN ** 2) / (2 * THIGH * distance))
    bend_knee = math.pi - math.acos((THIGH ** 2 + SHIN ** 2 - distance ** 2) / (2 * THIGH * SHIN))
    local = applied(transposed(heading), reach)
    sideways = math.degrees(math.atan2(local[0], -local[1]))
    forwards = math.degrees(math.atan2(-local[2], math.hypot(local[0], local[1])))
    plane = product(heading, axis_rotation(2, sideways))
    thigh = product(plane, axis_rotation(0, forwards - math.degrees(bend_hip)))
    return thigh, product(thigh, axis_rotation(0, math.degrees(bend_knee)))


def pose(frame):
    """The root's place, and the world or local rotation of every joint, as Z, X, Y angles."""
    strides = frame / STRIDE_FRAMES
    turn = 2 * math.pi * strides
    forward = strides * STRIDE
    root = on_arc(3.0 * math.sin(turn + 0.6), 90.0 - 2.2 * math.cos(2 * turn + 0.4), forward)
    heading = axis_rotation(1, -math.degrees(forward / RADIUS))
    hips = product(heading, rotation_zxy(2.5 * math.sin(turn + 0.6), 3.0, 6.0 * math.cos(turn)))
    angles = {"Hips": zxy_angles(hips)}
    angles["Spine"] = [-1.5 * math.sin(turn + 0.6), 2.0, -4.0 * math.cos(turn)]
    angles["Chest"] = [-1.0 * math.sin(turn + 0.6), 1.5 + math.cos(2 * turn), -7.0 * math.cos(turn)]
    angles["Neck"] = [0.0, -2.0, 2.0 * math.cos(turn)]
    angles["Head"] = [0.5 * math.sin(turn), -2.5 - math.cos(2 * turn + 0.8), 2.5 * math.cos(turn)]
    for side, sign, shift in (("Left", 1, 0.0), ("Right", -1, 0.5)):
        own = strides + shift
        swing = math.cos(2 * math.pi * own)
        angles[side + "Shoulder"] = [2.0 * sign, 0.0, 2.0 * swing]
        angles[side + "Arm"] = [9.0 * sign, 24.0 * swing + 4.0, 0.0]
        angles[side + "ForeArm"] = [0.0, -22.0 + 13.0 * math.cos(2 * math.pi * own - 0.5), 0.0]
        angles[side + "Hand"] = [-4.0 * sign, -6.0 + 8.0 * math.cos(2 * math.pi * own - 1.1), 0.0]
        at, height, pitch = foot(own)
        at -= shift * STRIDE
        ankle = on_arc(sign * FOOT_TRACK, height, at)
        hip = [r + o for r, o in zip(root, applied(hips, (sign * HIP_WIDTH, -4, 0)))]
        thigh, shin = leg(hip, ankle, heading)
        sole = product(axis_rotation(1, -math.degrees(at / RADIUS)), axis_rotation(0, pitch))
        angles[side + "UpLeg"] = zxy_angles(product(transposed(hips), thigh))
        angles[side + "Leg"] = zxy_angles(product(transposed(thigh), shin))
        angles[side + "Foot"] = zxy_angles(product(transposed(shin), sole))
        angles[side + "Toe"] = [0.0, -0.7 * max(0.0, pitch), 0.0]
    return root, angles


def number(value):
    return "%.4f" % (value + 0.0 if abs(value) >= 0.00005 else 0.0)


def hierarchy(lines, name, parent, offset, end, depth):
    pad = "\t" * depth
    lines.append(f"{pad}{'JOINT' if parent else 'ROOT'} {name}")
    lines.append(pad + "{")
    lines.append(f"{pad}\tOFFSET {' '.join(number(o) for o in offset)}")
    places = "" if parent else "Xposition Yposition Zposition "
    lines.append(f"{pad}\tCHANNELS {3 if parent else 6} {places}Zrotation Xrotation Yrotation")
    for child in SKELETON:
        if child[1] == name:
            hierarchy(lines, *child, depth + 1)
    if end:
        lines += [pad + "\tEnd Site", pad + "\t{", f"{pad}\t\tOFFSET {' '.join(number(o) for o in end)}", pad + "\t}"]
    lines.append(pad + "}")


def in_file_order(name):
    yield name
    for child in SKELETON:
        if child[1] == name:
            yield from in_file_order(child[0])


def main():
    lines = ["HIERARCHY"]
    hierarchy(lines, *SKELETON[0], 0)
    lines += ["MOTION", f"Frames: {FRAMES}", f"Frame Time: {FRAME_TIME:.7f}"]
    for frame in range(FRAMES):
        root, angles = pose(frame)
        row = root + [a for name in in_file_order("Hips") for a in angles[name]]
        lines.append(" ".join(number(value) for value in row))
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "walk.bvh"), "w", newline="\n") as out:
        out.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
