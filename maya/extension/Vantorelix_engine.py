"""Vantorelix, the motion-trail engine, for the Python inside Maya.

Trails of the selected objects:

    import Vantorelix_engine
    Vantorelix_engine.create_trail()

The engine itself is compiled and lies beside this file. Reloading the module starts the engine again: trails that are
in the scene stay there, but no longer follow edits. If `Vantorelix_layer` is on the path, its commands are put in front
of Maya's; without it, this file and the engine are all that is needed.
"""

import os
import sys

if sys.version_info[0] < 3:
    raise ImportError("Vantorelix needs Python 3; start Maya 2022 without MAYA_PYTHON_VERSION=2.")

import time
from bisect import bisect_left, bisect_right

import maya.cmds as cmds
import maya.api.OpenMaya as om
import maya.api.OpenMayaAnim as oma

__import__("_vantorelix").start(sys.modules[__name__])

try:
    __import__("Vantorelix_layer").install(sys.modules[__name__])
except ImportError as missing:
    if missing.name != "Vantorelix_layer":
        raise
