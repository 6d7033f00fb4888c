#!/usr/bin/env python3
"""Makes dist/vantorelix-<version>-linux-x86_64.tar.xz: the program, with its manual page, completions, pages and examples.

It holds what `cmake --install` puts in place, compiled by zig (tools/zig.py), so that it runs on older versions of Linux.
"""

import argparse
import os
import shutil
import subprocess
import sys

import archives
import package
import zig

SYSTEM = "linux-x86_64"


def installed(tree, prefix):
    """{path below the prefix: the file} of what a build folder installs."""
    shutil.rmtree(prefix, ignore_errors=True)
    subprocess.run(["cmake", "--install", tree, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
    found = [os.path.join(folder, name) for folder, _, names in os.walk(prefix) for name in names]
    return {os.path.relpath(path, prefix).replace(os.sep, "/"): path for path in found}


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dist", default=os.path.join(zig.ROOT, "dist"), help="the folder for the archive")
    options = parser.parse_args(arguments)
    compiler = zig.compiler()
    if not compiler:
        return 1
    top = "vantorelix-%s-%s" % (package.project_version(), SYSTEM)
    tree = zig.build(compiler, SYSTEM, {}, ["all"])
    files = installed(tree, os.path.join(zig.FOLDER, "installed-" + SYSTEM))
    archives.write(os.path.join(options.dist, top + ".tar.xz"),
                   archives.as_tar_xz({top + "/" + name: path for name, path in files.items()}))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
