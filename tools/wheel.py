#!/usr/bin/env python3
"""Makes dist/vantorelix-<version>-py3-none-manylinux2014_x86_64.whl: the Python package, with its library and the program.

Both are compiled by zig (tools/zig.py) for glibc 2.17, so that one wheel serves every CPython from 3.8 on. The same files
give the same wheel.
"""

import argparse
import base64
import hashlib
import os
import re
import subprocess
import sys

import archives
import package
import zig

TAG = "py3-none-manylinux2014_x86_64"
PYTHONS = ["3.8", "3.9", "3.10", "3.11", "3.12", "3.13"]

_METADATA = """Metadata-Version: 2.1
Name: vantorelix
Version: {version}
Summary: Motion trails of animated scenes: where objects have been, how fast, and where their keys are
Requires-Python: >=3.8
Classifier: Operating System :: POSIX :: Linux
{classifiers}
Provides-Extra: numpy
Requires-Dist: numpy; extra == "numpy"
Provides-Extra: shots
Requires-Dist: dask[distributed]>=2024.8.0,<2027; extra == "shots"
Requires-Dist: pyarrow>=17,<27; extra == "shots"
Description-Content-Type: text/markdown

{description}"""
_COMMANDS = "[console_scripts]\nvantorelix-shots = vantorelix._shots_command:main\n"
_WHEEL = "Wheel-Version: 1.0\nGenerator: vantorelix\nRoot-Is-Purelib: false\nTag: %s\n" % TAG


def metadata(version):
    classifiers = "\n".join("Classifier: Programming Language :: Python :: %s" % python for python in PYTHONS)
    with open(os.path.join(zig.ROOT, "docs", "python.md"), encoding="utf-8") as page:
        description = re.sub(r"\[([^]]+)\]\([^)]*\)", r"\1", page.read())  # its links lead to other pages of the checkout
    return _METADATA.format(version=version, classifiers=classifiers, description=description)


def _package(folder):
    """The files of the package and of those in it."""
    return [os.path.join(place, name) for place, _, names in os.walk(folder) for name in names
            if name.endswith((".py", ".so", ".html", "py.typed"))]


def contents(tree, version):
    """{name in the wheel: the file or its bytes}, but for the list of them."""
    info = "vantorelix-%s.dist-info/" % version
    package_folder = os.path.join(zig.modules_folder("linux"), "python-package", "vantorelix")
    program = os.path.join(tree, "bin", "vantorelix")
    files = {os.path.relpath(path, os.path.dirname(package_folder)): path for path in _package(package_folder)}
    files["vantorelix-%s.data/scripts/vantorelix" % version] = program
    files[info + "METADATA"] = metadata(version).encode()
    files[info + "entry_points.txt"] = _COMMANDS.encode()
    files[info + "WHEEL"] = _WHEEL.encode()
    files[info + "licenses/LICENCES.txt"] = subprocess.run([program, "--licences"], check=True,
                                                           stdout=subprocess.PIPE).stdout
    return files


def _bytes(source):
    if isinstance(source, bytes):
        return source
    with open(source, "rb") as file:
        return file.read()


def record(files, name):
    """The list of the files with their hashes, which names itself without one."""
    lines = []
    for path in sorted(files):
        data = _bytes(files[path])
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        lines.append("%s,sha256=%s,%d\n" % (path, digest, len(data)))
    return ("".join(lines) + "%s,,\n" % name).encode()


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dist", default=os.path.join(zig.ROOT, "dist"), help="the folder for the wheel")
    options = parser.parse_args(arguments)
    compiler = zig.compiler()
    if not compiler:
        return 1
    version = package.project_version()
    files = contents(zig.build(compiler, "linux", ["vantorelix", "vantorelix_python_package"]), version)
    name = "vantorelix-%s.dist-info/RECORD" % version
    files[name] = record(files, name)
    archives.write(os.path.join(options.dist, "vantorelix-%s-%s.whl" % (version, TAG)), archives.as_zip(files))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
