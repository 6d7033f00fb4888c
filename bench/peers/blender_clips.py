"""Opens BVH clips in Blender and times the import and the world positions of all joints over all frames.

    blender -b --factory-startup --python bench/peers/blender_clips.py -- OUT.json CLIP.bvh...
    python  bench/peers/blender_clips.py OUT.json CLIP.bvh...        (an interpreter that has bpy)

OUT gets the seconds of both for each clip. The first clip is gone through once before anything is timed, but for --once before
the clips, with which whoever runs this times the whole process.
"""

import json
import os
import re
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))  # Blender does not do this
import bpy
from blender_bvh import joint_positions, loop, read_clip


def frames_of(path):
    with open(path, encoding="ascii") as file:
        return int(re.search(r"Frames: (\d+)", file.read()).group(1))


def measure(path, frames):
    opened = read_clip(path, frames)
    positions_now = joint_positions(bpy.context.scene.objects[0])
    start = time.perf_counter()
    found = loop(positions_now)
    seconds = time.perf_counter() - start
    assert len(found) == frames
    return opened, seconds


def main(out, *clips):
    once = clips[0] == "--once"
    clips = clips[once:]
    frames = {path: frames_of(path) for path in clips}
    if not once:
        measure(clips[0], frames[clips[0]])  # what happens once happens here
    report = {"version": "Blender " + bpy.app.version_string, "clips": [measure(path, frames[path]) for path in clips]}
    with open(out, "w") as file:
        json.dump(report, file)


main(*(sys.argv[sys.argv.index("--") + 1:] if "--" in sys.argv else sys.argv[1:]))
