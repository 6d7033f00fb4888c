#!/usr/bin/env python3
"""What people install is compiled by zig (cmake/zig.cmake): tools/zig.py fetches it and prints its path.

So it runs on older versions of Linux than the one that it is built on, and can be built for other systems. zig comes from
PyPI (tools/package.txt), together with what the manual of the package for Maya is made with.
"""

import os
import subprocess
import sys

import pypi
from clients import Failure

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build", "package")
TOOLS = os.path.join(FOLDER, "tools")  # an environment for what comes from PyPI
# The systems that things are made for, of x86-64 where nothing else is said, and what zig calls each.
TARGETS = {"linux": "x86_64-linux-gnu.2.17", "windows": "x86_64-windows-gnu",
           "macos": "x86_64-macos.11.0-none", "macos-arm64": "aarch64-macos.11.0-none", "web": "wasm32-wasi"}


def compiler():
    """The path of zig, which is installed if it is missing; None, with the reason on standard error, if that fails."""
    question = "import os, ziglang; print(os.path.join(os.path.dirname(ziglang.__file__), 'zig'))"
    try:
        pypi.pip(TOOLS, "install", os.path.join(ROOT, "tools", "package.txt"))
        return subprocess.run([pypi.interpreter(TOOLS), "-c", question], check=True, stdout=subprocess.PIPE,
                              universal_newlines=True).stdout.strip()
    except (Failure, OSError, subprocess.CalledProcessError) as error:
        print("zig: THE COMPILER COULD NOT BE FETCHED, SO WHAT IT COMPILES IS NOT MADE: %s" % error, file=sys.stderr)
        return None


def build(zig, system, targets, settings=None):
    """Builds CMake's targets for a system, one of TARGETS, with further settings {name: value}; returns the build folder. All
    that is made for a system comes from one folder, so that what it shares is compiled once; settings stay there."""
    environment = dict(os.environ, ZIG_GLOBAL_CACHE_DIR=os.path.join(FOLDER, "zig-cache"))
    environment.pop("CMAKE_CXX_COMPILER_LAUNCHER", None)  # ccache would take "c++" in "zig c++" for a source file
    path = os.path.join(FOLDER, system)
    common = {"CMAKE_BUILD_TYPE": "Release", "CMAKE_UNITY_BUILD": "ON", "CMAKE_POSITION_INDEPENDENT_CODE": "ON",
              "CMAKE_TOOLCHAIN_FILE": os.path.join(ROOT, "cmake", "zig.cmake"), "VANTORELIX_TESTS": "OFF",
              "VANTORELIX_ZIG": zig, "VANTORELIX_ZIG_TARGET": TARGETS[system],
              "VANTORELIX_MODULE_FOLDER": modules_folder(system), "VANTORELIX_LIVE": "ON"}
    subprocess.run(["cmake", "-S", ROOT, "-B", path, "-G", "Ninja"] +
                   ["-D%s=%s" % setting for setting in sorted(dict(common, **settings or {}).items())],
                   check=True, env=environment)
    subprocess.run(["cmake", "--build", path, "--target"] + targets, check=True, env=environment)
    return path


def modules_folder(system):
    """Where the modules and packages of Python are left."""
    return os.path.join(FOLDER, "modules-" + system)


def main():
    zig = compiler()
    if zig:
        print(zig)
    return 0 if zig else 1


if __name__ == "__main__":
    sys.exit(main())
