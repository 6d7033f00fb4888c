"""npm's packages in a folder shared by all builds, as a lock file has them."""

import contextlib
import hashlib
import os
import shutil
import subprocess

import clients
import node
from clients import Failure  # noqa: F401 (the users of this file raise and catch it)

try:
    import fcntl
except ImportError:  # Windows
    fcntl = None

# What npm installs from.
FILES = ("package.json", "package-lock.json", ".npmrc")


def digest(folder, names=None):
    """A hash of the names and bytes of files below a folder."""
    if names is None:
        names = sorted(os.path.relpath(os.path.join(top, name), folder)
                       for top, _, files in os.walk(folder) for name in files)
    total = hashlib.sha256()
    for name in names:
        with open(os.path.join(folder, name), "rb") as file:
            total.update(("%s\n%s\n" % (name, hashlib.sha256(file.read()).hexdigest())).encode())
    return total.hexdigest()


def read(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except FileNotFoundError:
        return b""


def write(path, data):
    """Writes the file completely or not at all."""
    with open(path + ".part", "wb") as file:
        file.write(data)
    os.replace(path + ".part", path)


@contextlib.contextmanager
def locked(folder):
    """Holds a lock, so that two builds do not work in the folder at once."""
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "lock"), "w", encoding="utf-8") as file:
        if fcntl:
            fcntl.flock(file, fcntl.LOCK_EX)
        yield


def npm(*arguments, folder, environment=None):
    """Runs npm, with everything that it prints in stdout."""
    return node.find().npm(*arguments, folder=folder, environment=environment, stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, encoding="utf-8", errors="replace")


def install(source, folder):
    """Installs what the lock file in the folder `source` names into folder/node_modules. Needs no network if all of it
    is there. The packages' own scripts are not run. Raises Failure."""
    wanted = digest(source, FILES).encode()
    stamp = os.path.join(folder, "installed")
    if read(stamp) == wanted:
        return
    with contextlib.suppress(FileNotFoundError):
        os.remove(stamp)
    for name in FILES:
        shutil.copy(os.path.join(source, name), folder)
    clients.fetch("npm", "what %s names" % os.path.relpath(os.path.join(source, "package-lock.json")), lambda added: npm(
        "ci", "--ignore-scripts", "--no-audit", "--no-fund", "--no-update-notifier", "--fetch-retry-mintimeout=1000",
        "--fetch-retry-maxtimeout=5000", folder=folder, environment=added))
    write(stamp, wanted)
