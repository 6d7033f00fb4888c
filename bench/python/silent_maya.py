"""A `maya` of C types that does nothing (silent_types.cpp), compiled for the interpreter that runs this."""

import importlib
import os
import shlex
import subprocess
import sys
import sysconfig
import tempfile
import types

SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "silent_types.cpp")


def compiled():
    """The extension module. Its file is deleted after loading."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "silent_types" + sysconfig.get_config_var("EXT_SUFFIX"))
        subprocess.run(shlex.split(os.environ.get("CXX", "c++")) + [
            "-std=c++20", "-O2", "-Wall", "-Werror", "-shared", "-fPIC", "-isystem", sysconfig.get_path("include"),
            SOURCE, "-o", path], check=True)
        sys.path.insert(0, folder)
        try:
            return importlib.import_module("silent_types")
        finally:
            sys.path.remove(folder)


def install():
    """Makes it the `maya` that modules import from now on, with its submodules."""
    maya, api = types.ModuleType("maya"), types.ModuleType("maya.api")
    cmds, om, oma = (types.ModuleType("maya." + name) for name in ("cmds", "api.OpenMaya", "api.OpenMayaAnim"))
    compiled().fill(cmds, om, oma)
    maya.cmds, maya.api, api.OpenMaya, api.OpenMayaAnim = cmds, api, om, oma
    maya.__path__ = api.__path__ = []
    sys.modules.update({"maya": maya, "maya.api": api, "maya.cmds": cmds, "maya.api.OpenMaya": om,
                        "maya.api.OpenMayaAnim": oma})
