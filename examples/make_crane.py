#!/usr/bin/env python3
"""Writes crane.gltf: a crane that lifts a load, in one clip, and lets it swing, in another.

The turntable turns (quaternions, linear), the boom rises (quaternions, cubic spline), the trolley runs out along the
boom (linear), the rope lengthens (cubic spline) and a lamp at its end jumps from place to place (step). The mast is
given as a matrix. The same bytes come out on every machine.
"""
import base64
import json
import math
import os
import struct

FLOAT = 5126

buffer = bytearray()
views, accessors = [], []


def numbers(rows, kind):
    """An accessor over rows of floats."""
    flat = [v for row in rows for v in row]
    views.append({"buffer": 0, "byteOffset": len(buffer), "byteLength": 4 * len(flat)})
    buffer.extend(struct.pack("<%df" % len(flat), *flat))
    accessor = {"bufferView": len(views) - 1, "componentType": FLOAT, "count": len(rows), "type": kind}
    if kind == "SCALAR":
        accessor.update(min=[flat[0]], max=[flat[-1]])
    accessors.append(accessor)
    return len(accessors) - 1


def turn(axis, degrees):
    half = math.radians(degrees) / 2
    q = [0.0, 0.0, 0.0, round(math.cos(half), 9)]
    q["xyz".index(axis)] = round(math.sin(half), 9)
    return q


def clip(name, channels):
    """channels: node, path, interpolation, times, values; a spline's values have tangents before and behind them."""
    result = {"name": name, "channels": [], "samplers": []}
    for node, path, interpolation, times, values in channels:
        result["channels"].append({"sampler": len(result["samplers"]), "target": {"node": node, "path": path}})
        result["samplers"].append({
            "input": numbers([[t] for t in times], "SCALAR"), "interpolation": interpolation,
            "output": numbers(values, "VEC4" if path == "rotation" else "VEC3")})
    return result


NODES = [
    {"name": "base", "children": [1]},
    {"name": "mast", "matrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 6, 0, 1], "children": [2]},
    {"name": "turntable", "children": [3]},
    {"name": "boom", "children": [4]},
    {"name": "trolley", "translation": [2, 0, 0], "children": [5]},
    {"name": "rope", "translation": [0, -1, 0], "children": [6, 7]},
    {"name": "load", "translation": [0, -0.5, 0]},
    {"name": "lamp", "translation": [0.3, 0, 0]},
]
TURNTABLE, BOOM, TROLLEY, ROPE, LAMP = 2, 3, 4, 5, 7

still4, still3 = [0.0] * 4, [0.0] * 3


def spline(values, tangents):
    return [row for value, tangent in zip(values, tangents) for row in (tangent, value, tangent)]


lift = clip("lift", [
    (TURNTABLE, "rotation", "LINEAR", [0, 1, 2.5, 4], [turn("y", a) for a in (0, 0, 110, 150)]),
    (BOOM, "rotation", "CUBICSPLINE", [0, 2, 4],
     spline([turn("z", a) for a in (0, 25, 10)], [still4, [0, 0, 0.05, -0.01], still4])),
    (TROLLEY, "translation", "LINEAR", [0, 1.5, 3], [[2, 0, 0], [6, 0, 0], [4.5, 0, 0]]),
    (ROPE, "translation", "CUBICSPLINE", [0, 1, 2, 4],
     spline([[0, -1, 0], [0, -5, 0], [0, -5, 0], [0, -1.5, 0]], [still3, still3, [0, 1, 0], still3])),
    (LAMP, "translation", "STEP", [0, 1, 2, 3], [[0.3, 0, 0], [0, 0, 0.3], [-0.3, 0, 0], [0, 0, -0.3]]),
])
swing = clip("swing", [
    (TROLLEY, "rotation", "LINEAR", [i / 8 for i in range(17)],
     [turn("z", round(30 * math.exp(-i / 8) * math.cos(math.pi * i / 4), 6)) for i in range(17)]),
    (LAMP, "scale", "STEP", [0, 1], [[1, 1, 1], [2, 2, 2]]),
])


def main():
    document = {
        "asset": {"version": "2.0", "generator": "make_crane.py"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": NODES, "animations": [lift, swing], "accessors": accessors, "bufferViews": views,
        "buffers": [{"byteLength": len(buffer),
                     "uri": "data:application/octet-stream;base64," + base64.b64encode(bytes(buffer)).decode()}]}
    target = os.path.join(os.path.dirname(os.path.abspath(__file__)), "crane.gltf")
    with open(target, "w", encoding="ascii", newline="\n") as out:
        json.dump(document, out, separators=(",", ":"))
        out.write("\n")


if __name__ == "__main__":
    main()
