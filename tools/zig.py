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


def build(zig, tree, settings, targets):
    """Configures the folder `tree` below FOLDER with the settings {name: value}, builds the targets, and returns its path."""
    environment = dict(os.environ, ZIG_GLOBAL_CACHE_DIR=os.path.join(FOLDER, "zig-cache"))
    environment.pop("CMAKE_CXX_COMPILER_LAUNCHER", None)  # ccache would take "c++" in "zig c++" for a source file
    path = os.path.join(FOLDER, tree)
    common = {"CMAKE_BUILD_TYPE": "Release", "CMAKE_UNITY_BUILD": "ON", "VANTORELIX_TESTS": "OFF", "VANTORELIX_ZIG": zig,
              "CMAKE_TOOLCHAIN_FILE": os.path.join(ROOT, "cmake", "zig.cmake")}
    subprocess.run(["cmake", "-S", ROOT, "-B", path, "-G", "Ninja"] +
                   ["-D%s=%s" % setting for setting in sorted(dict(common, **settings).items())], check=True, env=environment)
    subprocess.run(["cmake", "--build", path, "--target"] + targets, check=True, env=environment)
    return path


def main():
    zig = compiler()
    if zig:
        print(zig)
    return 0 if zig else 1


if __name__ == "__main__":
    sys.exit(main())
