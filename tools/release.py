#!/usr/bin/env python3
"""Makes dist/vantorelix-<version>-linux-x86_64.tar.xz: the program, with its manual page, completions, pages and examples;
and dist/vantorelix-<version>-windows-x86_64.zip: the program for Windows, with its pages and examples.

They hold what `cmake --install` puts in place, compiled by zig (tools/zig.py), so that it runs on older versions of Linux.
"""

import argparse
import os
import shutil
import subprocess
import sys

import archives
import package
import zig

# For each system what is built, the settings for that, what makes its archive, and the ending of that.
SYSTEMS = {
    "linux": (["vantorelix", "vantorelix_printed"], {}, archives.as_tar_xz, ".tar.xz"),
    "windows": (["vantorelix"], {"CMAKE_INSTALL_BINDIR": ".", "CMAKE_INSTALL_DOCDIR": "docs"}, archives.as_zip, ".zip"),
}


def installed(tree, prefix):
    """{path below the prefix: the file} of what a build folder installs."""
    shutil.rmtree(prefix, ignore_errors=True)
    subprocess.run(["cmake", "--install", tree, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
    found = [os.path.join(folder, name) for folder, _, names in os.walk(prefix) for name in names]
    return {os.path.relpath(path, prefix).replace(os.sep, "/"): path for path in found}


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dist", default=os.path.join(zig.ROOT, "dist"), help="the folder for the archive")
    parser.add_argument("systems", nargs="*", metavar="SYSTEM", help="any of %s (default: all)" % ", ".join(SYSTEMS))
    options = parser.parse_args(arguments)
    unknown = sorted(set(options.systems) - set(SYSTEMS))
    if unknown:
        parser.error("%s is not one of %s" % (unknown[0], ", ".join(SYSTEMS)))
    compiler = zig.compiler()
    if not compiler:
        return 1
    for system in options.systems or sorted(SYSTEMS):
        targets, settings, archive, ending = SYSTEMS[system]
        top = "vantorelix-%s-%s-x86_64" % (package.project_version(), system)
        tree = zig.build(compiler, system, targets, settings)
        files = installed(tree, os.path.join(zig.FOLDER, "installed-" + system))
        archives.write(os.path.join(options.dist, top + ending),
                       archive({top + "/" + name: path for name, path in files.items()}))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
