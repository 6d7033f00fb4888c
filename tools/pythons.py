#!/usr/bin/env python3
"""The CPythons of this machine that the module can be built for: tools/pythons.py [--first PYTHON] [--ends] [--only X.Y
...] [--require X.Y ...]

Prints one interpreter for each version from 3.7 on, oldest first, as a list for CMake. With --first PYTHON that
interpreter comes first, and is the one for its version. With --ends only the oldest and the newest are printed, with
--only those of the versions named. It looks at pyenv's versions, and on PATH for python3 and python3.Y. An interpreter
without Python.h is left out and named on standard error. So are versions asked for with --require that are missing; the
exit code is 1 then.
"""

import argparse
import glob
import os
import re
import subprocess
import sys

_QUESTION = ("import os, platform, sys, sysconfig; print('%d.%d' % sys.version_info[:2], platform.python_implementation(), "
             "os.path.exists(os.path.join(sysconfig.get_path('include'), 'Python.h')))")


def candidates():
    found = glob.glob(os.path.join(os.environ.get("PYENV_ROOT", os.path.expanduser("~/.pyenv")), "versions/*/bin/python3"))
    for folder in os.environ.get("PATH", os.defpath).split(os.pathsep):
        if not folder.endswith("shims"):
            found += [p for p in sorted(glob.glob(os.path.join(folder, "python3*")))
                      if re.match(r"python3(\.\d+)?$", os.path.basename(p))]
    return found


def ask(python):
    """(version as a pair, whether it is CPython with Python.h), or None if it does not run."""
    try:
        run = subprocess.run([python, "-c", _QUESTION], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=60,
                             universal_newlines=True)
        version, kind, headers = run.stdout.split()
    except (OSError, ValueError, subprocess.TimeoutExpired):
        return None
    major, minor = version.split(".")
    return (int(major), int(minor)), kind == "CPython" and headers == "True"


def interpreters():
    """{version: path}, the first of each version that can be built for; and the versions that cannot."""
    usable, others = {}, {}
    for python in candidates():
        answer = ask(python)
        if answer and answer[0] >= (3, 7):
            (usable if answer[1] else others).setdefault(answer[0], python)
    return usable, {version: path for version, path in others.items() if version not in usable}


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--first", metavar="PYTHON")
    parser.add_argument("--ends", action="store_true")
    parser.add_argument("--only", nargs="*", metavar="X.Y")
    parser.add_argument("--require", nargs="*", default=[], metavar="X.Y")
    options = parser.parse_args(arguments)
    usable, others = interpreters()
    for version, path in sorted(others.items()):
        print("pythons: %s has no Python.h and is left out; install its development files" % path, file=sys.stderr)
    missing = [v for v in options.require if tuple(map(int, v.split("."))) not in usable]
    for version in missing:
        print("pythons: THIS MACHINE HAS NO PYTHON %s: the module is not tested on it; install it with its Python.h" % version,
              file=sys.stderr)
    versions = sorted(v for v in usable if options.only is None or "%d.%d" % v in options.only)
    if options.ends and len(versions) > 2:
        versions = [versions[0], versions[-1]]
    first = ask(options.first)[0] if options.first else None
    print(";".join(([options.first] if first else []) + [usable[v] for v in versions if v != first]))
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
