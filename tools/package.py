#!/usr/bin/env python3
"""Makes dist/vantorelix-<version>-linux-x86_64.zip: the module for every CPython found, with all that goes into Maya.

The modules are compiled by zig (tools/zig.py), so that they load on older versions of Linux, too.
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
import zig

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
            "zig": "../LICENSE", "glibc": "libc/glibc/io/stat-2.32.c"}


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
    return sorted({tuple(map(int, v)) for v in re.findall(r"PYTHONPATH\+:=python-(\d+)\.(\d+)", read(DESCRIPTION))})


def compile_modules(compiler, interpreters):
    """Leaves module-X.Y in zig.FOLDER for each of {version: interpreter}."""
    versions = sorted(interpreters)
    zig.build(compiler, "cmake", {"VANTORELIX_MODULE_FOLDER": zig.FOLDER,
                                  "VANTORELIX_PYTHONS": ";".join(interpreters[v] for v in versions)},
              ["module-%d.%d" % v for v in versions])


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


def modules(versions):
    """{path in the package: the file} for what Maya reads, and for the installer."""
    companions = glob.glob(os.path.join(ROOT, "maya", "companion", "*.py"))
    files = {"contents/plug-ins/" + PLUGIN: os.path.join(ROOT, "maya", "companion", PLUGIN)}
    for name in ("Vantorelix.mod", "install_vantorelix.py"):
        files[name] = os.path.join(ROOT, "maya", "package", name)
    for version in versions:
        module = os.path.join(zig.FOLDER, "module-%d.%d" % version)
        parts = [only(os.path.join(module, "_vantorelix*.so"))]
        parts += [os.path.join(module, "Vantorelix_engine." + kind) for kind in ("py", "pyi")]
        for part in parts + [path for path in companions if os.path.basename(path) != PLUGIN]:
            files["contents/python-%d.%d/%s" % (version + (os.path.basename(part),))] = part
    return files


def package(top, files):
    """The bytes of a zip of `files` below the folder `top`, with a list of their hashes."""
    hashes = {}
    for name, path in files.items():
        with open(path, "rb") as file:
            hashes[name] = hashlib.sha256(file.read()).hexdigest()
    manifest = {"manifest.json": json.dumps(hashes, indent=2, sort_keys=True).encode()}
    return archives.as_zip({top + "/" + name: content for name, content in dict(files, **manifest).items()})


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dist", default=os.path.join(ROOT, "dist"), help="the folder for the package")
    parser.add_argument("--partial", action="store_true", help="make the package even if a version that Maya needs is missing")
    parser.add_argument("--pythons", action="store_true", help="only print the versions of Python that Maya needs")
    options = parser.parse_args(arguments)
    if options.pythons:
        print(" ".join("%d.%d" % version for version in required()))
        return 0
    interpreters, _ = pythons.interpreters()
    missing = ", ".join("%d.%d" % v for v in required() if v not in interpreters)
    if missing:
        print("package: THIS MACHINE HAS NO CPYTHON WITH Python.h FOR %s: install it, or leave it out with --partial" % missing,
              file=sys.stderr)
        if not options.partial:
            return 1
    compiler = zig.compiler()
    if not compiler:
        return 1
    top = "vantorelix-" + project_version()
    files = dict(pages(), **licences(compiler))
    compile_modules(compiler, interpreters)
    files.update(modules(sorted(interpreters)))
    archives.write(os.path.join(options.dist, top + "-linux-x86_64.zip"), package(top, files))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
