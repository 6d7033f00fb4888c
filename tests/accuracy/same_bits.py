#!/usr/bin/env python3
"""Compiles base/mathematics/mathematics.cpp with every compiler and for every processor found here, at different levels of
optimisation, and compares hashes of a million results of each function. Run in the root of the checkout."""

import argparse
import itertools
import os
import shutil
import subprocess
import sys
import tempfile

SOURCES = ["base/mathematics/mathematics.cpp", "tests/accuracy/hashes.cpp"]
FLAGS = ["-std=c++20", "-I.", "-ffp-contract=off"]
# The compiler, flags of its own, and what runs the program.
TARGETS = [
    ("g++", [], []),
    ("g++", ["-march=native"], []),
    ("clang++", [], []),
    ("clang++", ["-march=native"], []),
    ("aarch64-linux-gnu-g++", ["-static"], ["qemu-aarch64"]),
    ("arm-linux-gnueabihf-g++", ["-static"], ["qemu-arm"]),
]


def hashes(folder, command, runner):
    program = os.path.join(folder, "hashes")
    subprocess.run(command + FLAGS + SOURCES + ["-o", program], check=True)
    return subprocess.run(runner + [program], check=True, stdout=subprocess.PIPE, universal_newlines=True).stdout


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--levels", default="O0,O3", help="of optimisation, separated by commas")
    arguments = parser.parse_args()
    found = {}
    for (compiler, flags, runner), level in itertools.product(TARGETS, arguments.levels.split(",")):
        command = [compiler] + flags + ["-" + level]
        if not all(map(shutil.which, [compiler] + runner)):
            print("%s: not here" % " ".join(command))
            continue
        with tempfile.TemporaryDirectory() as folder:
            result = hashes(folder, command, runner)
        print("%s:\n%s" % (" ".join(command), result), flush=True)
        found.setdefault(result, []).append(" ".join(command))
    if len(found) != 1:
        sys.exit("%d different results: %s" % (len(found), list(found.values())))
    print("%d builds, the same bits" % len(found.popitem()[1]))


if __name__ == "__main__":
    main()
