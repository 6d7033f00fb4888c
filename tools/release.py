#!/usr/bin/env python3
"""Makes the archives of the program, dist/vantorelix-<version>-<system>: with its manual page, completions, pages and
examples for Linux, with its pages and examples for the others.

They hold what `cmake --install` puts in place, compiled by zig (tools/zig.py), so that it runs on older versions of Linux.
Nobody has run what is for macOS; as there is no package for Maya there, its archives hold the modules, too.
"""

import argparse
import os
import shutil
import subprocess
import sys

import archives
import package
import pythons
import zig

# For each system its name in that of the archive, what is built, the settings for that, what makes the archive, and its ending.
SYSTEMS = {
    "linux": ("linux-x86_64", ["vantorelix", "vantorelix_printed"], {}, archives.as_tar_xz, ".tar.xz"),
    "windows": ("windows-x86_64", ["vantorelix"], {"CMAKE_INSTALL_BINDIR": ".", "CMAKE_INSTALL_DOCDIR": "docs"},
                archives.as_zip, ".zip"),
    "macos": ("macos-x86_64", ["vantorelix"], {}, archives.as_tar_xz, ".tar.xz"),
    "macos-arm64": ("macos-arm64", ["vantorelix"], {}, archives.as_tar_xz, ".tar.xz"),
}
NEVER_RUN = """Nobody has run what is in here: it was compiled on Linux, and there was no Mac to try it on.
maya/python-X.Y holds the module for Maya with that version of Python; maya.md in the checkout says what it needs around it.
"""


def installed(tree, prefix):
    """{path below the prefix: the file} of what a build folder installs."""
    shutil.rmtree(prefix, ignore_errors=True)
    subprocess.run(["cmake", "--install", tree, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
    found = [os.path.join(folder, name) for folder, _, names in os.walk(prefix) for name in names]
    return {os.path.relpath(path, prefix).replace(os.sep, "/"): path for path in found}


def for_macos(compiler, system):
    """{path in the archive: the file, or its bytes} of what there is for macOS besides the program."""
    interpreters, _ = pythons.interpreters()
    versions = sorted(version for version in interpreters if version in package.required())
    if versions:
        package.compile_modules(compiler, system, {version: interpreters[version] for version in versions})
    files = package.modules(system, versions)
    files = {path.replace("contents/%s/" % system, "maya/"): file for path, file in files.items()}
    return dict(files, **{"NEVER-RUN.txt": NEVER_RUN.encode()})


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
        name, targets, settings, archive, ending = SYSTEMS[system]
        top = "vantorelix-%s-%s" % (package.project_version(), name)
        tree = zig.build(compiler, system, targets, settings)
        files = installed(tree, os.path.join(zig.FOLDER, "installed-" + system))
        if system.startswith("macos"):
            files.update(for_macos(compiler, system))
        archives.write(os.path.join(options.dist, top + ending),
                       archive({top + "/" + name: path for name, path in files.items()}))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
