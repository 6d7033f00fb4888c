#!/usr/bin/env python3
"""Makes dist/vantorelix-maya-<version>.zip: the modules for every CPython that Maya has, with all that goes into Maya.

The modules are compiled by zig (tools/zig.py), so that they load on older versions of Linux, too, and on Windows. For Linux
they are built with the CPythons found here, for Windows with those of tools/windows_pythons.py.
The package also has the manual, which is made from pages of docs, and the licences of what zig links into the modules.
"""

import argparse
import glob
import hashlib
import json
import os
import re
import sys

import archives
import manual
import pypi
import pythons
import windows_pythons
import zig
from clients import Failure

ROOT = zig.ROOT
PLUGIN = "Vantorelix_plugin.py"
DESCRIPTION = os.path.join("maya", "package", "Vantorelix.mod")
# Where the version stands.
VERSIONS = {"CMakeLists.txt": r"project\(vantorelix VERSION ([\d.]+)",
            DESCRIPTION: r"^\+ .*\bVantorelix (\S+) ",
            os.path.join("maya", "companion", PLUGIN): r'^VERSION = "(.*)"'}
PAGES = ("maya.md", "studio.md")
# The licences of what zig links into a module: their name in the package, and their path in zig.
LICENCES = {"libc++": "libcxx/LICENSE.TXT", "libc++abi": "libcxxabi/LICENSE.TXT", "libunwind": "libunwind/LICENSE.TXT",
            "zig": "../LICENSE", "glibc": "libc/glibc/io/stat-2.32.c", "mingw-w64": "libc/mingw/COPYING"}
# The systems that modules are made for, and the ending of a module.
SYSTEMS = {"linux": ".so", "windows": ".pyd", "macos": ".so", "macos-arm64": ".so"}


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def project_version():
    """The version. It is stated in several files; the program ends if they differ."""
    stated = {path: sorted(set(re.findall(pattern, read(path), re.MULTILINE))) for path, pattern in VERSIONS.items()}
    if len({version for found in stated.values() for version in found}) != 1 or not all(stated.values()):
        sys.exit("package: the version must be the same in every file: " + ", ".join(
            "%s has %s" % (path, " and ".join(found) or "none") for path, found in stated.items()))
    return stated["CMakeLists.txt"][0]


def required():
    """The versions of Python for which the package tells Maya of a module."""
    return sorted({tuple(map(int, v)) for v in re.findall(r"PYTHONPATH\+:=linux/python-(\d+)\.(\d+)", read(DESCRIPTION))})


def windows_interpreters():
    """{version: folder}, fetched if they are missing; none, with the reason on standard error, if that fails."""
    try:
        windows_pythons.fetch()
    except Failure as failure:
        print("package: %s" % failure, file=sys.stderr)
        return {}
    return {tuple(map(int, v.split("."))): windows_pythons.folder_of(v) for v in windows_pythons.archives()}


def compile_modules(compiler, system, interpreters):
    """Leaves module-X.Y in zig.modules_folder(system) for each of {version: interpreter}."""
    versions = sorted(interpreters)
    zig.build(compiler, system, ["module-%d.%d" % v for v in versions],
              {"VANTORELIX_PYTHONS": ";".join(interpreters[v] for v in versions)})


def only(pattern):
    found = glob.glob(pattern)
    if len(found) != 1:
        sys.exit("package: %d files match %s instead of one; delete build/package and try again" % (len(found), pattern))
    return found[0]


def licences(compiler):
    """{path in the package: the file} for our licence, if there is one, and those of what is linked in."""
    library = os.path.join(os.path.dirname(compiler), "lib")
    files = {"licences/%s.txt" % name: os.path.join(library, path) for name, path in LICENCES.items()}
    files["licences/README.txt"] = os.path.join(ROOT, "maya", "package", "licences.txt")
    files.update((os.path.basename(path), path) for path in glob.glob(os.path.join(ROOT, "LICENSE*")))
    return files


def pages():
    """{path in the package: the file} for the manual."""
    files = manual.write(pypi.interpreter(zig.TOOLS), os.path.join(ROOT, "docs"), PAGES, os.path.join(zig.FOLDER, "manual"))
    return {"manual/" + name: path for name, path in files.items()}


def common():
    """{path in the package: the file} for what is there once."""
    files = {name: os.path.join(ROOT, "maya", "package", name) for name in ("Vantorelix.mod", "install_vantorelix.py")}
    files["contents/plug-ins/" + PLUGIN] = os.path.join(ROOT, "maya", "companion", PLUGIN)
    return files


def modules(system, versions):
    """{path in the package: the file} for the modules of a system, and what lies beside each."""
    companions = glob.glob(os.path.join(ROOT, "maya", "companion", "*.py"))
    files = {}
    for version in versions:
        module = os.path.join(zig.modules_folder(system), "module-%d.%d" % version)
        parts = [only(os.path.join(module, "_vantorelix*" + SYSTEMS[system]))]
        parts += [os.path.join(module, "Vantorelix_engine." + kind) for kind in ("py", "pyi")]
        for part in parts + [path for path in companions if os.path.basename(path) != PLUGIN]:
            files["contents/%s/python-%d.%d/%s" % ((system,) + version + (os.path.basename(part),))] = part
    return files


def package(top, files):
    """The bytes of a zip of `files` below the folder `top`, with a list of their hashes."""
    hashes = {}
    for name, path in files.items():
        with open(path, "rb") as file:
            hashes[name] = hashlib.sha256(file.read()).hexdigest()
    manifest = {"manifest.json": json.dumps(hashes, indent=2, sort_keys=True).encode()}
    return archives.as_zip({top + "/" + name: content for name, content in dict(files, **manifest).items()})


def lacks(interpreters):
    """Whether a version that Maya has is missing in {system: {version: interpreter}}; says which."""
    missing = False
    for system, found in sorted(interpreters.items()):
        versions = ", ".join("%d.%d" % v for v in required() if v not in found)
        if versions:
            missing = True
            print("package: THIS MACHINE HAS NO CPYTHON FOR %s WITH Python.h FOR %s: install it, or leave it out with --partial"
                  % (system, versions), file=sys.stderr)
    return missing


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dist", default=os.path.join(ROOT, "dist"), help="the folder for the package")
    parser.add_argument("--partial", action="store_true", help="make the package even if a version that Maya needs is missing")
    parser.add_argument("--pythons", action="store_true", help="only print the versions of Python that Maya needs")
    options = parser.parse_args(arguments)
    if options.pythons:
        print(" ".join("%d.%d" % version for version in required()))
        return 0
    interpreters = {"linux": pythons.interpreters()[0], "windows": windows_interpreters()}
    if lacks(interpreters) and not options.partial:
        return 1
    compiler = zig.compiler()
    if not compiler:
        return 1
    top = "vantorelix-maya-" + project_version()
    files = dict(pages(), **licences(compiler))
    files.update(common())
    for system, found in sorted(interpreters.items()):
        if found:
            compile_modules(compiler, system, found)
            files.update(modules(system, sorted(found)))
    archives.write(os.path.join(options.dist, top + ".zip"), package(top, files))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
