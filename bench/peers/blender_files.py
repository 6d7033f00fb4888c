"""Opens FBX files in Blender and times its own ways to the trails of everything that moves in them.

    blender -b --factory-startup --python bench/peers/blender_files.py -- OUT.json FILE.fbx FRAMES...
    python  bench/peers/blender_files.py OUT.json FILE.fbx FRAMES...        (an interpreter that has bpy)

It makes motion paths of every animated object and of every bone of every armature, and it runs a loop that sets each
frame and reads their positions, both over so many frames from the start of the file's first action on. OUT gets the
seconds of each, and of opening the file, the fastest of three, with the number of objects.
"""

import json
import os
import sys
import time

import bpy
import addon_utils  # found once bpy is there

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))  # Blender does not do this
from timing import REPEATS, fastest


def open_file(path, frames):
    """Opens the file as the current scene; returns the seconds of reading it."""
    bpy.ops.wm.read_factory_settings(use_empty=True)
    addon_utils.enable("io_scene_fbx")
    start = time.perf_counter()
    bpy.ops.import_scene.fbx(filepath=path)
    seconds = time.perf_counter() - start
    scene = bpy.context.scene
    for thing in scene.objects:  # hidden objects get no motion path
        thing.hide_viewport = False
        thing.hide_set(False)
    scene.frame_start = int(min(action.frame_range[0] for action in bpy.data.actions))
    scene.frame_end = scene.frame_start + frames - 1
    return seconds


def paths(things, armatures):
    """Makes all motion paths. Objects with bones are done one by one, because the operator works on the active one."""
    view = bpy.context.view_layer
    for thing in bpy.context.scene.objects:
        thing.select_set(thing in things)
    if things:
        view.objects.active = things[0]
        bpy.ops.object.paths_calculate(display_type="RANGE", range="SCENE")
    for armature in armatures:
        view.objects.active = armature
        bpy.ops.object.mode_set(mode="POSE")
        bpy.ops.pose.select_all(action="SELECT")
        bpy.ops.pose.paths_calculate(display_type="RANGE", range="SCENE")
        bpy.ops.object.mode_set(mode="OBJECT")


def loop(scene, things, bones):
    for frame in range(scene.frame_start, scene.frame_end + 1):
        scene.frame_set(frame)
        [thing.matrix_world.translation.copy() for thing in things]
        [(armature.matrix_world @ bone.matrix).translation for armature, bone in bones]


def measure(path, frames):
    imported = min(open_file(path, frames) for _ in range(REPEATS))
    scene = bpy.context.scene
    things = [o for o in scene.objects if o.animation_data and o.animation_data.action]
    armatures = [o for o in scene.objects if o.type == "ARMATURE"]
    bones = [(armature, bone) for armature in armatures for bone in armature.pose.bones]
    return {"objects": len(things) + len(bones), "frames": frames, "import": imported,
            "ways": {"motion paths": fastest(lambda: paths(things, armatures)),
                     "frame_set loop": fastest(lambda: loop(scene, things, bones))}}


def main(out, *arguments):
    files = zip(arguments[::2], map(int, arguments[1::2]))
    report = {"version": "Blender " + bpy.app.version_string,
              "files": {os.path.basename(path): measure(path, frames) for path, frames in files}}
    with open(out, "w") as file:
        json.dump(report, file)


main(*(sys.argv[sys.argv.index("--") + 1:] if "--" in sys.argv else sys.argv[1:]))
