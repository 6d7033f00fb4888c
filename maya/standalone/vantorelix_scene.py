"""Runs a Python script on a scene, without Maya.

    PYTHONPATH=build/standalone-python:build/module-3.11 python3.11 -m vantorelix_scene SCENE SCRIPT.py [ARG...]

The script finds the scene open, `maya` and `Vantorelix_engine` importable, and its arguments in sys.argv as usual.
Deferred calls run when the script calls maya.utils.processIdleEvents(). The exit code is that of the script; it is 1
after an error in the script, in a callback or in a deferred call, each with its traceback, and 2 when the scene or the
script cannot be opened.
"""

import argparse
import os
import runpy
import sys


def _arguments(given):
    parser = argparse.ArgumentParser(
        prog="python3 -m vantorelix_scene",
        usage="%(prog)s [-h] [--batch] SCENE SCRIPT.py [ARG...]",
        description="Runs a Python script on a scene: the script finds the scene open and the package maya importable.",
    )
    parser.add_argument("--batch", action="store_true", help="run as Maya's batch mode would")
    parser.add_argument("scene", metavar="SCENE", help="the scene: .ma, .fbx, .gltf, .glb or .bvh")
    parser.add_argument("script", metavar="SCRIPT.py", help="the script to run")
    parser.add_argument("rest", metavar="ARG", nargs=argparse.REMAINDER, help="arguments for the script (sys.argv)")
    arguments = parser.parse_args(given)
    for path in (arguments.scene, arguments.script):
        if not os.path.exists(path):
            parser.error("%s: no such file; check the path" % path)
        if os.path.isdir(path):
            parser.error("%s: is a folder; name a file in it" % path)
    return parser, arguments


def main(given=None):
    parser, arguments = _arguments(given)
    from maya import cmds, host

    host.restart(batch=arguments.batch)
    try:
        cmds.file(arguments.scene, open=True, force=True)
    except RuntimeError as error:
        parser.error(str(error))
    sys.argv[:] = [arguments.script] + arguments.rest
    sys.path.insert(0, os.path.dirname(os.path.abspath(arguments.script)))
    runpy.run_path(arguments.script, run_name="__main__")
    return 1 if host.failures else 0


if __name__ == "__main__":
    sys.exit(main())
