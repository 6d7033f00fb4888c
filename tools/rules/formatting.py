"""C++ files are formatted by clang-format-14. Other versions format differently, so the version is fixed."""

import subprocess

from . import files
from .includes import OURS

PROGRAM = "clang-format-14"


def problems(root, options=None):
    paths = files.walk(root, files.CPP, OURS)
    if not paths:
        return []
    try:
        run = subprocess.run([PROGRAM, "--dry-run", "-Werror", "--style=file"] + paths, cwd=root,
                             stderr=subprocess.PIPE, universal_newlines=True)
    except FileNotFoundError:
        return ["%s is not installed; ./dev lint installs it" % PROGRAM]
    if run.returncode == 0:
        return []
    places = [line for line in run.stderr.splitlines() if ": error:" in line]
    wrong = sorted({line.split(":")[0] for line in places}) or [run.stderr]
    return ["%s:1: not formatted; run ./dev format" % path for path in wrong]
