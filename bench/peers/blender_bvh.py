"""Reads BVH clips in Blender, and where their joints are."""

import importlib
import time

import bpy
import addon_utils  # found once bpy is there


def empty_scene(frames):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    scene = bpy.context.scene
    scene.frame_start, scene.frame_end = 1, frames
    return scene


def read_clip(path, frames):
    """Opens the clip in an empty scene of so many frames; returns the seconds of reading it."""
    scene = empty_scene(frames)
    addon_utils.enable("io_anim_bvh")
    # The add-on of Blender 3.4 opens files in a mode that newer versions of Python refuse.
    importlib.import_module("io_anim_bvh.import_bvh").open = lambda path, mode: open(path, mode.replace("U", ""))
    start = time.perf_counter()
    bpy.ops.import_anim.bvh(filepath=path, update_scene_fps=True, update_scene_duration=True)
    seconds = time.perf_counter() - start
    scene.frame_start, scene.frame_end = 1, frames  # the add-on has added to them
    return seconds


def loop(positions_now):
    """Goes through the frames of the scene; returns what `positions_now` reads at each."""
    scene, found = bpy.context.scene, []
    for frame in range(scene.frame_start, scene.frame_end + 1):
        scene.frame_set(frame)
        found.append(positions_now())
    return found


def joint_positions(armature):
    """What reads the world position of every joint now."""
    bones = armature.pose.bones
    return lambda: [(armature.matrix_world @ bone.matrix).translation for bone in bones]
