"""The files of the checkout that rules look at."""

import os

_GENERATED = {"build", "dist", "__pycache__", "node_modules"}
CPP = (".h", ".cpp")


def walk(root, suffixes, folders=None):
    """Paths relative to `root`, with forward slashes, sorted; generated and hidden folders are left out."""
    found = []
    for top in folders or [""]:
        for folder, below, names in os.walk(os.path.join(root, top)):
            below[:] = [b for b in below if b not in _GENERATED and b != ".git"]
            for name in names:
                if name.endswith(tuple(suffixes)):
                    found.append(os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/"))
    return sorted(set(found))


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        return file.read()
