#!/usr/bin/env python3
"""Runs a script on a Python that has what vantorelix-shots needs, and its readers: tools/shots_python.py SCRIPT [ARGUMENT...]

The environment lies in build, made by the Python that runs this with the packages of tools/shots.txt. The exit code is 77
where it is not there and cannot be made: the Python is too old, or PyPI cannot be reached.
"""

import os
import subprocess
import sys

import packages
import pypi
from clients import Failure

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
REQUIREMENTS = os.path.join(ROOT, "tools", "shots.txt")
OLDEST = (3, 10)
SKIPPED = 77


def environment():
    """The interpreter of the environment, which is made if it is missing or has other packages. Raises Failure."""
    if sys.version_info < OLDEST:
        raise Failure("vantorelix-shots needs CPython %d.%d or later, which this is not" % OLDEST)
    folder = os.path.join(ROOT, "build", "shots-python-%d.%d" % sys.version_info[:2])
    installed = os.path.join(folder, "installed")
    with packages.locked(folder):
        wanted = packages.read(REQUIREMENTS)
        if packages.read(installed) != wanted:
            pypi.pip(folder, "install", REQUIREMENTS, "--only-binary=:all:")
            with open(installed, "wb") as file:
                file.write(wanted)
    return pypi.interpreter(folder)


def tell():
    """Makes the environment, or says why it is not there."""
    try:
        environment()
    except Failure as failure:
        print("fetch: what vantorelix-shots is tested with is left out: %s" % failure, file=sys.stderr)


def main(arguments):
    if not arguments:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        python = environment()
    except Failure as failure:
        print(failure, file=sys.stderr)
        return SKIPPED
    return subprocess.call([python] + arguments)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
