#!/usr/bin/env python3
"""Writes scenes of any size, and measures what reading them takes.

    bench/large_scenes.py FOLDER --sizes 20,100,200 [--program build/bin/vantorelix]

For each kind (BVH, Maya ASCII, FBX as text and binary) and each size in MB one file is made in the folder, unless it
exists. With a program, `info` is run on each file, and a line gives its times, its peak memory, and its own time and
memory per megabyte. If these two stay the same from size to size, reading is linear. The system's time is mostly spent
on memory. The memory can be measured on Linux only.
"""

import argparse
import array
import math
import os
import pathlib
import struct
import subprocess
import sys
import time

MEGABYTE = 1 << 20
KEYS = 200
AXES = "XYZ"
TICKS = 46186158000 // 24


def wave(seed, count):
    """That many values of a smooth motion, none of them a round number."""
    return [math.sin(0.1 * i + seed) * (10 + seed % 7) for i in range(count)]


def write_bvh(out, size):
    """A clip of 60 joints, with as many frames as the size needs."""
    joints = 60
    head = "HIERARCHY\n" + "".join(
        "%s j%d\n{\nOFFSET 0 1 0\nCHANNELS 3 Zrotation Xrotation Yrotation\n" % ("JOINT" if i else "ROOT", i)
        for i in range(joints)) + "}\n" * joints
    rows = ["".join("%.6f " % value for value in wave(row, 3 * joints)) + "\n" for row in range(500)]
    length = sum(map(len, rows))
    count = max(1, (size - len(head)) * len(rows) // length)
    out.write((head + "MOTION\nFrames: %d\nFrame Time: 0.0416667\n" % count).encode())
    block = "".join(rows).encode()
    for _ in range(count // len(rows)):
        out.write(block)
    out.write("".join(rows[:count % len(rows)]).encode())


def write_ma(out, size):
    """Transforms with nine curves each, ten of them one below the other."""
    out.write(b'//Maya ASCII 2022 scene\nrequires maya "2022";\ncurrentUnit -l centimeter -a degree -t film;\n')
    keys = [" ".join("%d %.9g" % (i, value) for i, value in enumerate(wave(seed, KEYS))) for seed in range(9)]
    node, connections = 0, []
    while out.tell() < size * 0.96:
        parent = ' -p "n%d"' % (node - 1) if node % 10 else ""
        text = 'createNode transform -n "n%d"%s;\n\tsetAttr ".v" yes;\n' % (node, parent)
        for channel in range(9):
            attribute = ("translate", "rotate", "scale")[channel // 3] + AXES[channel % 3]
            curve = "n%d_%s" % (node, attribute)
            text += 'createNode animCurveT%s -n "%s";\n\tsetAttr ".tan" 18;\n\tsetAttr -s %d ".ktv[0:%d]"  %s;\n' % (
                "LAU"[channel // 3], curve, KEYS, KEYS - 1, keys[channel])
            connections.append('connectAttr "%s.o" "n%d.%s%s";\n' % (curve, node, "trs"[channel // 3], "xyz"[channel % 3]))
        out.write(text.encode())
        node += 1
    out.write("".join(connections).encode() + b"// End of scene.ma\n")


class TextFbx:
    """Elements as text."""

    def __init__(self, out):
        self.out = out
        out.write(b"; FBX 7.5.0 project file\n")

    def begin(self, name, *values):
        shown = ",".join('"%s"' % value if isinstance(value, str) else "%d" % value for value in values)
        self.out.write(("%s: %s {\n" % (name, shown)).encode())

    def leaf(self, name, *values):
        shown = ",".join('"%s"' % value if isinstance(value, str) else repr(value) for value in values)
        self.out.write(("%s: %s\n" % (name, shown)).encode())

    def numbers(self, name, code, values):
        text = ",".join("%.7g" % value if code == "f" else "%d" % value for value in values)
        self.out.write(("%s: *%d {\na: %s\n}\n" % (name, len(values), text)).encode())

    def end(self):
        self.out.write(b"}\n")

    def finish(self):
        pass

    @staticmethod
    def named(name, kind):
        return "%s::%s" % (kind, name)


class BinaryFbx:
    """Elements as version 7500 stores them: end, count and length of the properties, name, properties, elements."""

    def __init__(self, out):
        self.out, self.open = out, []
        out.write(b"Kaydara FBX Binary  \x00\x1a\x00" + struct.pack("<I", 7500))

    @staticmethod
    def property(value):
        if isinstance(value, str):
            return b"S" + struct.pack("<I", len(value)) + value.encode("latin-1")
        return b"D" + struct.pack("<d", value) if isinstance(value, float) else b"L" + struct.pack("<q", value)

    def element(self, name, properties, count):
        start = self.out.tell()
        self.out.write(struct.pack("<QQQB", 0, count, len(properties), len(name)) + name.encode() + properties)
        return start

    def close(self, start):
        end = self.out.tell()
        self.out.seek(start)
        self.out.write(struct.pack("<Q", end))
        self.out.seek(end)

    def begin(self, name, *values):
        self.open.append(self.element(name, b"".join(map(self.property, values)), len(values)))

    def leaf(self, name, *values):
        self.close(self.element(name, b"".join(map(self.property, values)), len(values)))

    def numbers(self, name, code, values):
        data = array.array({"l": "q", "i": "i", "f": "f"}[code], values).tobytes()
        self.close(self.element(name, code.encode() + struct.pack("<III", len(values), 0, len(data)) + data, 1))

    def end(self):
        self.out.write(b"\0" * 25)
        self.close(self.open.pop())

    def finish(self):
        self.out.write(b"\0" * 25)

    @staticmethod
    def named(name, kind):
        return "%s\0\1%s" % (name, kind)


def write_fbx(out, size, kind):
    """Nodes with nine curves each, ten of them one below the other."""
    fbx = kind(out)
    fbx.begin("FBXHeaderExtension")
    fbx.leaf("FBXHeaderVersion", 1003)
    fbx.leaf("FBXVersion", 7500)
    fbx.end()
    fbx.begin("Objects")
    links, node, number = [], 0, 100
    stack, layer = 1, 2
    fbx.begin("AnimationStack", stack, fbx.named("take", "AnimStack"), "")
    fbx.end()
    fbx.begin("AnimationLayer", layer, fbx.named("base", "AnimLayer"), "")
    fbx.end()
    links.append(("OO", layer, stack))
    times = [i * TICKS for i in range(KEYS)]
    values = [wave(seed, KEYS) for seed in range(9)]
    above = 0
    while out.tell() < size * 0.98:
        model, number = number, number + 1
        fbx.begin("Model", model, fbx.named("n%d" % node, "Model"), "Null")
        fbx.end()
        links.append(("OO", model, above if node % 10 else 0))
        above = model
        for group, name in enumerate(("Lcl Translation", "Lcl Rotation", "Lcl Scaling")):
            driver, number = number, number + 1
            fbx.begin("AnimationCurveNode", driver, fbx.named("T", "AnimCurveNode"), "")
            fbx.end()
            links += [("OO", driver, layer), ("OP", driver, model, name)]
            for axis in range(3):
                curve, number = number, number + 1
                fbx.begin("AnimationCurve", curve, fbx.named("", "AnimCurve"), "")
                fbx.numbers("KeyTime", "l", times)
                fbx.numbers("KeyValueFloat", "f", values[3 * group + axis])
                fbx.numbers("KeyAttrFlags", "i", [4])
                fbx.numbers("KeyAttrDataFloat", "f", [0, 0, 0, 0])
                fbx.numbers("KeyAttrRefCount", "i", [KEYS])
                fbx.end()
                links.append(("OP", curve, driver, "d|" + AXES[axis]))
        node += 1
    fbx.end()
    fbx.begin("Connections")
    for link in links:
        fbx.leaf("C", *link)
    fbx.end()
    fbx.begin("Takes")
    fbx.leaf("Current", "")
    fbx.end()
    fbx.finish()


WRITERS = {
    "scene.bvh": write_bvh,
    "scene.ma": write_ma,
    "text.fbx": lambda out, size: write_fbx(out, size, TextFbx),
    "binary.fbx": lambda out, size: write_fbx(out, size, BinaryFbx),
}


def measure(program, scene):
    """What `info` takes: its own seconds, the system's, those of the clock, and the most MB of memory."""
    start = time.monotonic()
    process = subprocess.Popen([str(program), "info", str(scene)], stdout=subprocess.DEVNULL)
    _, status, used = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit("%s: info failed" % scene)
    return used.ru_utime, used.ru_stime, time.monotonic() - start, used.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser(description="Writes scenes of any size, and measures what reading them takes.")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--sizes", default="20,100,200", help="in MB, separated by commas")
    parser.add_argument("--program", type=pathlib.Path, help="the program to run on them")
    options = parser.parse_args()
    options.folder.mkdir(parents=True, exist_ok=True)
    print("%-16s %7s %8s %8s %8s %8s %10s %8s" % (
        "scene", "MB", "own", "system", "clock", "MB most", "ms each MB", "MB each"))
    for name, write in WRITERS.items():
        for size in map(int, options.sizes.split(",")):
            scene = options.folder / ("%d_%s" % (size, name))
            if not scene.exists():
                with open(str(scene), "wb") as out:
                    write(out, size * MEGABYTE)
            if options.program:
                megabytes = scene.stat().st_size / MEGABYTE
                own, system, clock, most = measure(options.program, scene)
                print("%-16s %7.1f %6.2f s %6.2f s %6.2f s %8.0f %10.1f %8.2f" % (
                    scene.name, megabytes, own, system, clock, most, own / megabytes * 1000, most / megabytes))


if __name__ == "__main__":
    main()
