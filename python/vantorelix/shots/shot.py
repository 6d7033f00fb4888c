"""What is asked for: a shot of the list, and the settings that hold for all of them."""

from __future__ import annotations

import dataclasses
import hashlib
import json
import os
from typing import Any, Dict, Optional, Tuple

import vantorelix

Ends = Tuple[Optional[float], Optional[float]]

LAYOUT = 2
"""The number of the files' layout: other numbers are made anew."""


class UsageError(Exception):
    """The list or the options are wrong. The text names what is wrong and the remedy."""


@dataclasses.dataclass(frozen=True)
class Shot:
    """One line of the list."""

    name: str  # unique in the list
    path: str  # absolute
    take: Optional[str] = None
    range: Optional[Ends] = None  # first and last frame; None leaves either to the scene
    select: Tuple[str, ...] = ()  # patterns; none leaves that to the settings
    free: Tuple[Tuple[str, str], ...] = ()  # the list's other columns, by name


@dataclasses.dataclass(frozen=True)
class Settings:
    """How every shot is measured, as `vantorelix.open` and `Scene.trails` know these names."""

    select: Tuple[str, ...] = ()
    exclude: Tuple[str, ...] = ()
    ignore_case: bool = False
    all: bool = False
    samples_per_frame: int = 1
    fps: Optional[float] = None  # for glTF
    axis: Optional[str] = None  # for FBX
    unit: Optional[str] = None  # for FBX

    def reading(self, path: str) -> Dict[str, Any]:
        """What `vantorelix.open` is told about this file: only what its format has a use for."""
        extension = os.path.splitext(path)[1].lower()
        if extension in (".gltf", ".glb"):
            return {"fps": self.fps}
        return {"axis": self.axis, "unit": self.unit} if extension == ".fbx" else {}


def options_hash(shot: Shot, settings: Settings) -> str:
    """Changes with everything but the file that the result of a shot depends on."""
    told = [LAYOUT, vantorelix.__version__, shot.take, shot.range, shot.select, dataclasses.astuple(settings)]
    return hashlib.sha256(json.dumps(told).encode()).hexdigest()
