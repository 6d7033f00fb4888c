"""Downloads the source of a Python package, checked against its hash: fetch_source.py REQUIREMENTS PACKAGE FOLDER.

The archive ends in FOLDER; pip's environment too, in FOLDER/pip.
"""

import os
import sys

import pypi


def main():
    requirements, package, folder = sys.argv[1:]
    pypi.pip(os.path.join(folder, "pip"), "download", requirements, "--no-deps", "--no-binary", package, "--dest", folder)


if __name__ == "__main__":
    main()
