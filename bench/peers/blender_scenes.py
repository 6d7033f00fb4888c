"""Builds the scenes of bench/scenes.cpp in Blender and times its own ways to the same positions.

    blender -b --factory-startup --python bench/peers/blender_scenes.py -- CLIP.bvh OUT.json
    python  bench/peers/blender_scenes.py CLIP.bvh OUT.json        (an interpreter that has bpy)

The two ways are the motion-path operator, and a loop that sets each frame and reads every object's world position. OUT
gets the seconds of each, the fastest of three.
"""

import json
import math
import os
import sys

import bpy

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))  # Blender does not do this
from blender_bvh import empty_scene, joint_positions, loop, read_clip
from timing import REPEATS, fastest

KEYS = 5


def key_value(index, channel, key):
    wave = math.sin(1.7 * key + 0.9 * channel + 0.37 * index)
    return 10.0 * wave if channel < 3 else math.radians(45.0 * wave)


def add_keyed(scene, index, parent, frames):
    thing = bpy.data.objects.new("object%d" % index, None)
    scene.collection.objects.link(thing)
    thing.parent = parent
    for key in range(KEYS):
        frame = 1.0 + (frames - 1.0) * key / (KEYS - 1)
        thing.location = [key_value(index, c, key) for c in range(3)]
        thing.rotation_euler = [key_value(index, c, key) for c in range(3, 6)]
        thing.keyframe_insert("location", frame=frame)
        thing.keyframe_insert("rotation_euler", frame=frame)
    return thing


def separate_objects(count, frames):
    scene = empty_scene(frames)
    return [add_keyed(scene, i, None, frames) for i in range(count)]


def chain(links, frames):
    scene, last = empty_scene(frames), None
    for i in range(links):
        last = add_keyed(scene, i, last, frames)
    return [last]


def binary_tree(count, frames):
    scene, things = empty_scene(frames), []
    for i in range(count):
        things.append(add_keyed(scene, i, things[(i - 1) // 2] if i else None, frames))
    return things


def ways_of_objects(things):
    for thing in bpy.context.scene.objects:
        thing.select_set(thing in things)
    bpy.context.view_layer.objects.active = things[0]
    return {
        "motion paths": fastest(lambda: bpy.ops.object.paths_calculate(display_type="RANGE", range="SCENE")),
        "frame_set loop": fastest(lambda: loop(lambda: [t.matrix_world.translation.copy() for t in things])),
    }


def rebuild(things):
    """Makes all motion paths again after one key was moved."""
    bpy.ops.object.paths_calculate(display_type="RANGE", range="SCENE")

    def once():
        things[0].location.x += 0.01
        things[0].keyframe_insert("location", frame=1)
        bpy.ops.object.paths_update()

    return {"motion paths": fastest(once)}


def ways_of_clip():
    armature = bpy.context.scene.objects[0]
    bpy.context.view_layer.objects.active = armature
    positions_now = joint_positions(armature)
    ways = {"frame_set loop": fastest(lambda: loop(positions_now))}
    bpy.ops.object.mode_set(mode="POSE")
    bpy.ops.pose.select_all(action="SELECT")
    ways["motion paths"] = fastest(lambda: bpy.ops.pose.paths_calculate(display_type="RANGE", range="SCENE"))
    return ways


def main(clip, out):
    scenes = {
        "one_object": ways_of_objects(separate_objects(1, 10000)),
        "chain_leaf": ways_of_objects(chain(50, 1000)),
        "tree": ways_of_objects(binary_tree(100, 1000)),
    }
    things = separate_objects(1000, 250)
    scenes["many_objects"] = ways_of_objects(things)
    scenes["rebuild"] = rebuild(things)
    scenes["clip_load"] = {"import": min(read_clip(clip, 1000) for _ in range(REPEATS))}
    scenes["clip_all_joints"] = ways_of_clip()
    with open(out, "w") as file:
        json.dump({"version": "Blender " + bpy.app.version_string, "scenes": scenes}, file)


main(*sys.argv[-2:])
