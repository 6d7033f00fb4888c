"""Handing generated sources to the C++ compiler."""

import os
import subprocess
import sysconfig
import tempfile
from concurrent.futures import ThreadPoolExecutor

_FLAGS = ["-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion",
          "-Wno-sign-conversion", "-Werror", "-isystem", sysconfig.get_path("include")]  # for Python.h


def errors(compiler, root, source):
    """What the compiler says about `source` with `root` on its include path; empty when it accepts it."""
    with tempfile.TemporaryDirectory() as folder:
        unit = os.path.join(folder, "unit.cpp")
        with open(unit, "w", encoding="utf-8") as file:
            file.write(source)
        run = subprocess.run([compiler] + _FLAGS + ["-I", root, unit], stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, universal_newlines=True)
    return run.stderr if run.returncode else ""


def in_parallel(function, items):
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(function, items))
