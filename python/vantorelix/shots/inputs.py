"""The files of a scene, and whether they are still what was read."""

from __future__ import annotations

import hashlib
import json
import os
import urllib.parse
from typing import List

_PIECE = 1 << 20
_MOST_JSON = 1 << 28


def files_of(path: str) -> List[str]:
    """The scene's own file, and the buffers beside a glTF."""
    return [path] + (_buffers_of(path) if path.lower().endswith(".gltf") else [])


def _buffers_of(path: str) -> List[str]:
    try:
        if os.path.getsize(path) > _MOST_JSON:
            return []
        with open(path, encoding="utf-8") as file:
            names = [buffer.get("uri", "") for buffer in json.load(file).get("buffers", [])]
    except (OSError, ValueError, AttributeError, TypeError):
        return []  # the reader says what is wrong with it
    folder = os.path.dirname(path)
    return [os.path.join(folder, urllib.parse.unquote(name)) for name in names
            if isinstance(name, str) and name and not name.startswith("data:")]


def stamp(path: str) -> str:
    """Sizes and times of the scene's files: while it stays the same, the files are taken to be. "" for what is not there."""
    return " ".join(_stamp_of(file) for file in files_of(path)).strip()


def _stamp_of(file: str) -> str:
    try:
        found = os.stat(file)
    except OSError:
        return ""
    return "%d:%d" % (found.st_size, found.st_mtime_ns)


def digest(path: str) -> str:
    """A hash of what the scene's files hold; "" where one cannot be read."""
    total = hashlib.sha256()
    try:
        for file in files_of(path):
            with open(file, "rb") as opened:
                for piece in iter(lambda: opened.read(_PIECE), b""):
                    total.update(piece)
            total.update(b"|")
    except OSError:
        return ""
    return total.hexdigest()


def size(path: str) -> int:
    """Bytes of the scene's own file; 0 for what is not there."""
    try:
        return os.path.getsize(path)
    except OSError:
        return 0
