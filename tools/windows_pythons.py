#!/usr/bin/env python3
"""CPythons for Windows, for modules that are built and tested elsewhere: tools/windows_pythons.py

Prints the folder of each version as a list for CMake, oldest first. A folder has the interpreter (python.exe), its headers
(include) and its import library (libs). They are fetched if they are missing: Maven has them as org.bytedeco:cpython, of the
versions and hashes that cmake/cpython_windows.sha256 names.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

import clients
import packages
from clients import Failure

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build", "windows", "pythons")
PINNED = os.path.join(ROOT, "cmake", "cpython_windows.sha256")
INSIDE = "org/bytedeco/cpython/windows-x86_64/"
# Of no use here, and two thirds of the whole.
LEFT_OUT = ("share/", "bin/", "lib/test/", "lib/idlelib/", "lib/site-packages/", "lib/lib2to3/", "lib/turtledemo/", "lib/tkinter/",
            "lib/ensurepip/")


def archives():
    """{version as X.Y: (name of the archive, its SHA-256)}, oldest first."""
    found = {}
    for line in packages.read(PINNED).decode().splitlines():
        digest, name = line.split()
        found[re.match(r"cpython-(\d+\.\d+)", name).group(1)] = (name, digest)
    return dict(sorted(found.items(), key=lambda each: tuple(map(int, each[0].split(".")))))


def folder_of(version):
    return os.path.join(FOLDER, "python-" + version)


def _archive(name, work):
    """Has Maven copy an archive into the folder `work`; the path there."""
    if not shutil.which("mvn"):
        raise Failure("the program mvn is not installed. Install it (Debian: apt-get install maven)")
    version = re.match(r"cpython-(.*)-windows-x86_64\.jar", name).group(1)
    command = ["mvn", "--quiet", "--batch-mode", "dependency:copy", "-DoutputDirectory=" + work,
               "-Dartifact=org.bytedeco:cpython:%s:jar:windows-x86_64" % version]
    clients.fetch("mvn", "CPython %s for Windows" % version, lambda added: subprocess.run(
        command, cwd=work, env=dict(os.environ, **added), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        universal_newlines=True))
    return os.path.join(work, name)


def _unpack(archive, target):
    """Unpacks the parts that are needed into the folder `target`, which appears whole or not at all."""
    with zipfile.ZipFile(archive) as files, tempfile.TemporaryDirectory(dir=FOLDER) as work:
        for entry in files.infolist():
            path = entry.filename[len(INSIDE):]
            if entry.is_dir() or not entry.filename.startswith(INSIDE) or path.startswith(LEFT_OUT):
                continue
            place = os.path.join(work, "python", path)
            os.makedirs(os.path.dirname(place), exist_ok=True)
            packages.write(place, files.read(entry))
        shutil.rmtree(target, ignore_errors=True)
        os.replace(os.path.join(work, "python"), target)


def fetch():
    """Fetches the versions that are missing. Raises Failure."""
    with packages.locked(FOLDER):
        for version, (name, digest) in archives().items():
            done = os.path.join(folder_of(version), "archive.sha256")
            if packages.read(done).decode() == digest:
                continue
            with tempfile.TemporaryDirectory(prefix="fetch-", dir=FOLDER) as work:
                archive = _archive(name, work)
                if hashlib.sha256(packages.read(archive)).hexdigest() != digest:
                    raise Failure("%s is not the file it should be (by its SHA-256); check which registry mvn uses" % name)
                _unpack(archive, folder_of(version))
            packages.write(done, digest.encode())


def main(arguments):
    if arguments:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        fetch()
    except Failure as failure:
        print("windows_pythons: %s" % failure, file=sys.stderr)
        return 1
    print(";".join(folder_of(version) for version in archives()))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
