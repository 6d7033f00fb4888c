#!/usr/bin/env python3
"""Writes robot.fbx: a robot arm with two takes, as text.

In "reach" it fetches a part from the left and puts it down on the right. In "wave" it greets: a short wave is keyed once
and repeats, and a second animation layer lets the elbow tremble. The same bytes come out on every machine.
"""
import os
import struct

TICKS = 46186158000 // 24          # of FBX time in a frame, at 24 frames a second
AUTO, WEIGHTED, LINEAR, STEPPED = 0x108, 0x3000C08, 0x4, 0x2

# name, parent, kind, properties
NODES = [
    ("base", None, "Null", {"Lcl Translation": (0, 12, 0)}),
    ("shoulder", "base", "LimbNode", {"Lcl Translation": (0, 30, 0), "PreRotation": (0, 0, 90)}),
    ("elbow", "shoulder", "LimbNode", {"Lcl Translation": (45, 0, 0), "InheritType": 2}),
    ("wrist", "elbow", "LimbNode", {"Lcl Translation": (38, 0, 0), "InheritType": 2, "RotationOrder": 4}),
    ("gripper", "wrist", "LimbNode", {"Lcl Translation": (11, 0, 0), "InheritType": 2}),
    # Turns about its hinge, which is at its edge.
    ("finger", "gripper", "Null", {"Lcl Translation": (4, 3, 0), "RotationPivot": (-4, 0, 0), "RotationOffset": (0, 1, 0)}),
]

# take: (first frame, last frame, layers); layer: (name, properties, curves)
# curve: node, property, axis, keys, what comes before and after; key: frame, value, flags, slopes, weights
TAKES = {
    "reach": (1, 60, [("BaseLayer", {}, [
        ("base", "Lcl Rotation", "Y", [(1, 70), (22, 75), (44, -60), (60, -60)], "CC"),
        ("shoulder", "Lcl Rotation", "Z",
         [(1, 10, WEIGHTED, (0, 0), (5000, 6500)), (16, -80, WEIGHTED, (0, 0), (3333, 3333)), (26, -30), (44, -20),
          (52, -82), (60, 5)], "CC"),
        ("elbow", "Lcl Rotation", "Z", [(1, -80), (16, -28), (30, -75), (52, -20), (60, -85)], "CC"),
        ("wrist", "Lcl Rotation", "Z", [(1, -30), (16, -72), (30, -45), (52, -78), (60, -30)], "CC"),
        ("wrist", "Lcl Rotation", "X", [(16, 0, LINEAR), (52, 90, LINEAR), (60, 90, LINEAR)], "CC"),
        ("finger", "Lcl Rotation", "Z", [(1, 40, STEPPED), (18, 5, STEPPED), (54, 40, STEPPED)], "CC"),
    ])]),
    "wave": (1, 96, [("BaseLayer", {}, [
        ("base", "Lcl Rotation", "Y", [(1, -25), (48, 25), (96, -25)], "CC"),
        ("shoulder", "Lcl Rotation", "Z", [(1, 0), (14, 8)], "CC"),
        ("elbow", "Lcl Rotation", "Z", [(1, -70), (14, -20)], "CC"),
        ("wrist", "Lcl Rotation", "Y", [(14, -35), (20, 35), (26, -35)], "CR"),
        ("gripper", "Lcl Scaling", "X", [(1, 1), (48, 1.4), (96, 1)], "CC"),
    ]), ("tremble", {"BlendMode": 0, "Weight": 60}, [
        ("elbow", "Lcl Rotation", "Z", [(14, 0), (16, 3), (20, -4), (23, 2), (26, 0)], "CM"),
    ])]),
}


class Writer:
    def __init__(self):
        self.objects, self.connections, self.ids, self.last = [], [], {}, 100000

    def element(self, kind, space, name, sort, lines):
        self.last += 1
        self.objects += ['\t%s: %d, "%s::%s", "%s" {' % (kind, self.last, space, name, sort)]
        self.objects += ["\t\t" + line for line in lines] + ["\t}"]
        return self.last

    def connect(self, child, parent, name=None):
        self.connections.append('\tC: "%s",%d,%d%s' % ("OP" if name else "OO", child, parent, ', "%s"' % name if name else ""))

    def node(self, name, parent, kind, values):
        self.ids[name] = node = self.element("Model", "Model", name, kind, properties(values))
        self.connect(node, self.ids[parent] if parent else 0)
        if kind == "LimbNode":
            self.connect(self.element("NodeAttribute", "NodeAttribute", "", kind, ['TypeFlags: "Skeleton"']), node)

    def take(self, name, first, last, layers):
        times = ['P: "%s", "KTime", "Time", "",%d' % (which, frame * TICKS)
                 for which, frame in (("LocalStart", first), ("LocalStop", last))]
        stack = self.element("AnimationStack", "AnimStack", name, "", ["Properties70:  {"] + times + ["}"])
        for layer_name, values, curves in layers:
            layer = self.element("AnimationLayer", "AnimLayer", layer_name, "", properties(values))
            self.connect(layer, stack)
            driven = {}
            for node, name, axis, keys, beyond in curves:
                if (node, name) not in driven:
                    rest = float(name == "Lcl Scaling")
                    driven[node, name] = self.element("AnimationCurveNode", "AnimCurveNode", name[4], "",
                                                      properties({"d|" + a: rest for a in "XYZ"}))
                    self.connect(driven[node, name], layer)
                    self.connect(driven[node, name], self.ids[node], name)
                self.connect(self.curve(keys, beyond), driven[node, name], "d|" + axis)

    def curve(self, keys, beyond):
        keys = [key + (AUTO, (0, 0), (3333, 3333))[len(key) - 2:] for key in keys]
        bits = [struct.unpack("<i", struct.pack("<f", slope))[0] for key in keys for slope in key[3]]
        data = [n for i, key in enumerate(keys)
                for n in (bits[2 * i], bits[2 * i + 1], key[4][1] << 16 | key[4][0], 0)]
        lines = []
        for name, numbers in (("KeyTime", [key[0] * TICKS for key in keys]), ("KeyValueFloat", [key[1] for key in keys]),
                              ("KeyAttrFlags", [key[2] for key in keys]), ("KeyAttrDataFloat", data),
                              ("KeyAttrRefCount", [1] * len(keys))):
            lines += ["%s: *%d {" % (name, len(numbers)), "\ta: " + ",".join(str(n) for n in numbers), "}"]
        for name, letter in zip(("Pre", "Post"), beyond):
            lines += [name + "-Extrapolation:  {", "\tType: " + letter, "\tRepetition: -1", "}"]
        return self.element("AnimationCurve", "AnimCurve", "", "", lines)

    def text(self):
        settings = properties({"UpAxis": 1, "UpAxisSign": 1, "FrontAxis": 2, "FrontAxisSign": 1, "CoordAxis": 0,
                               "CoordAxisSign": 1, "UnitScaleFactor": 1.0, "TimeMode": 11})
        return "\n".join(["; FBX 7.5.0 project file", "FBXHeaderExtension:  {", "\tFBXHeaderVersion: 1003",
                          "\tFBXVersion: 7500", "}", "GlobalSettings:  {", "\tVersion: 1000"]
                         + ["\t" + line for line in settings] + ["}", "Objects:  {"] + self.objects
                         + ["}", "Connections:  {"] + self.connections
                         + ["}", "Takes:  {", '\tCurrent: ""', "}"]) + "\n"


def properties(values):
    lines = []
    for name, value in values.items():
        numbers = value if isinstance(value, tuple) else (value,)
        kind = "Vector3D" if len(numbers) == 3 else "double" if isinstance(value, float) else "int"
        lines.append('\tP: "%s", "%s", "", "A",%s' % (name, kind, ",".join("%g" % n for n in numbers)))
    return ["Properties70:  {"] + lines + ["}"]


def main():
    writer = Writer()
    for node in NODES:
        writer.node(*node)
    for name, take in TAKES.items():
        writer.take(name, *take)
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "robot.fbx"), "w", newline="\n") as out:
        out.write(writer.text())


if __name__ == "__main__":
    main()
