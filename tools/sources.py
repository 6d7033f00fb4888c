#!/usr/bin/env python3
"""The sources of C libraries that are compiled into the program: tools/sources.py [--into FOLDER] [--present] [NAME...]

Prints the folder of each library that is named (default: all), below FOLDER (build/third_party). A library is fetched
if its files are not those of cmake/NAME.sha256. With --present nothing is fetched; the exit code is then 1.

Where they come from: not every distribution has ufbx and cgltf, and Debian has mimalloc only as a shared library, which
a program would need at run time. The authors of ufbx publish it as a Rust package only (the package ufbx on PyPI has an
older ufbx.c without its header), and the source of mimalloc is in a Rust package, too. So cargo fetches these two, in
one call, and compiles nothing. cgltf is in the source package of MaterialX on PyPI. The files can also be put in place
by hand.
"""

import argparse
import collections
import hashlib
import os
import shutil
import subprocess
import sys
import tarfile
import tempfile

import clients
import packages
import pypi
from clients import Failure

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build", "third_party")
# The folder of a library, and of its files in what the client fetches. The folder of ufbx has the version of its
# package; the library in it is 0.23.1.
Source = collections.namedtuple("Source", "folder client inside")
SOURCES = {
    "ufbx": Source("ufbx-0.11.5", "cargo", "ufbx/ufbx"),
    "mimalloc": Source("mimalloc-2.2.4", "cargo", "libmimalloc-sys/c_src/mimalloc/v2"),
    "cgltf": Source("cgltf-1.13", "pip", "materialx-1.39.5/source/MaterialXRender/External/Cgltf"),
}
# Of the Rust packages; the last two are what libmimalloc-sys asks for.
CRATES = {"ufbx": "0.11.5", "libmimalloc-sys": "0.1.44", "cc": "1.0.83", "libc": "0.2.150"}


def hashes(name):
    """{path: SHA-256} of the files of a library."""
    with open(os.path.join(ROOT, "cmake", name + ".sha256"), encoding="utf-8") as file:
        return {path: digest for digest, path in (line.split() for line in file)}


def wrong(name, folder):
    """What is wrong with the library's files in a folder; None if they are the right ones."""
    for path, wanted in hashes(name).items():
        data = packages.read(os.path.join(folder, path))
        if not data:
            return "%s is missing" % path
        if hashlib.sha256(data).hexdigest() != wanted:
            return "%s is not the file it should be (by its SHA-256)" % path
    return None


def _crates(work):
    """Fetches CRATES; the folder they lie in."""
    cargo = shutil.which("cargo") or shutil.which("cargo", path=os.path.expanduser("~/.cargo/bin"))
    if not cargo:
        raise Failure("the program cargo is not installed. Install it (Debian: apt-get install cargo)")
    manifest = ['[package]', 'name = "fetch"', 'version = "0.0.0"', 'edition = "2018"', '[lib]', 'path = "empty.rs"',
                '[workspace]', '[dependencies]'] + ['%s = "=%s"' % crate for crate in CRATES.items()]
    packages.write(os.path.join(work, "Cargo.toml"), "\n".join(manifest).encode())
    packages.write(os.path.join(work, "empty.rs"), b"")
    # Without these the cargo of Debian 12 would clone the whole index of packages.
    settings = {"RUSTC_BOOTSTRAP": "1", "CARGO_UNSTABLE_SPARSE_REGISTRY": "true", "CARGO_NET_RETRY": "1"}
    clients.fetch("cargo", "the Rust packages " + ", ".join(sorted(CRATES)), lambda added: subprocess.run(
        [cargo, "vendor", "--quiet"], cwd=work, env=dict(os.environ, **settings, **added), stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, universal_newlines=True))
    return os.path.join(work, "vendor")


def _source_package(work):
    """Fetches the source package of tools/cgltf.txt; the folder it lies in."""
    pypi.pip(os.path.join(work, "pip"), "download", os.path.join(ROOT, "tools", "cgltf.txt"), "--no-deps", "--no-binary",
             "materialx", "--dest", work)
    inside = SOURCES["cgltf"].inside
    with tarfile.open(os.path.join(work, inside.split("/")[0] + ".tar.gz")) as archive:
        for path in hashes("cgltf"):
            target = os.path.join(work, inside, path)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            packages.write(target, archive.extractfile(inside + "/" + path).read())
    return work


CLIENTS = {"cargo": _crates, "pip": _source_package}


def _take(name, fetched, into):
    """Moves a library's files to their place, after checking them."""
    source, target = os.path.join(fetched, SOURCES[name].inside), os.path.join(into, SOURCES[name].folder)
    problem = wrong(name, source)
    if problem:
        raise Failure("in what was fetched for %s, %s; check which registry %s uses" % (name, problem, SOURCES[name].client))
    for path in hashes(name):
        os.makedirs(os.path.dirname(os.path.join(target, path)), exist_ok=True)
        packages.write(os.path.join(target, path), packages.read(os.path.join(source, path)))


def missing(names=tuple(SOURCES), into=FOLDER):
    return [name for name in names if wrong(name, os.path.join(into, SOURCES[name].folder))]


def fetch(names=tuple(SOURCES), into=FOLDER):
    """Fetches those of the libraries that are missing. Raises Failure."""
    with packages.locked(into):
        lacking = missing(names, into)
        for client in sorted({SOURCES[name].client for name in lacking}):
            taken = [name for name in lacking if SOURCES[name].client == client]
            try:
                with tempfile.TemporaryDirectory(prefix="fetch-", dir=into) as work:
                    fetched = CLIENTS[client](work)
                    for name in taken:
                        _take(name, fetched, into)
            except Failure as failure:
                places = ", ".join(os.path.join(into, SOURCES[name].folder) for name in taken)
                raise Failure("the source of %s is missing: %s\nOr put the files that cmake/NAME.sha256 lists into %s by hand."
                              % (" and ".join(taken), failure, places)) from failure


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("names", nargs="*", metavar="NAME", help="any of " + ", ".join(SOURCES))
    parser.add_argument("--into", default=FOLDER)
    parser.add_argument("--present", action="store_true", help="only tell whether they are there")
    options = parser.parse_args(arguments)
    names = options.names or list(SOURCES)
    if options.present:
        return 1 if missing(names, options.into) else 0
    try:
        fetch(names, os.path.abspath(options.into))
    except Failure as failure:
        print("sources: %s" % failure, file=sys.stderr)
        return 1
    print("\n".join(os.path.join(os.path.abspath(options.into), SOURCES[name].folder) for name in names))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
