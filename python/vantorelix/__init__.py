"""Motion trails of animated objects: where they have been, how fast, and where their keys are.

    import vantorelix

    scene = vantorelix.open("walk.bvh")
    for trail in scene.trails("*Foot", samples_per_frame=2):
        print(trail.source, trail.length, trail.points.shape)

Arrays are read-only memory views of float64, which numpy.asarray takes without a copy. Positions are in the scene's unit,
times in frames, speeds in units a second, angles in degrees.
"""

from __future__ import annotations

import os
from typing import Any, Optional, Sequence, Union

from ._errors import ClosedError, Error, FormatError, MissingFileError, NotFoundError
from ._library import library as _library
from ._scene import COLOR_MODES, Scene, SceneObject, Take
from ._scene import open_scene as _open_scene
from ._scene import reading_of as _reading_of
from ._samples import sampled_scene as _sampled_scene
from ._tables import Tables
from ._trail import Trail

__all__ = [
    "COLOR_MODES",
    "ClosedError",
    "Error",
    "FormatError",
    "MissingFileError",
    "NotFoundError",
    "Scene",
    "SceneObject",
    "Tables",
    "Take",
    "Trail",
    "open",
    "scene",
]

__version__: str = _library.vlx_version().decode()


def open(
    path: Union[str, "os.PathLike[str]"],
    take: Optional[str] = None,
    fps: Optional[float] = None,
    axis: Optional[str] = None,
    unit: Optional[str] = None,
) -> Scene:
    """Reads a scene file: Maya ASCII (.ma), FBX (.fbx), glTF (.gltf, .glb), BVH (.bvh) or samples (.samples).

    take: the FBX take or glTF clip (default: the first).
    fps: frames a second of a glTF scene, which has none (default: 24).
    axis: "y-up" or "z-up" turns an FBX scene (default: its own axes).
    unit: "mm", "cm", "m", "km", "in", "ft" or "yd" converts the lengths of an FBX scene (default: its own unit).

    Raises MissingFileError, FormatError, or Error for an option that the format has no use for.
    """
    return _open_scene(path, _reading_of(take, fps, axis, unit))


def scene(
    names: Sequence[str],
    parents: Optional[Sequence[Optional[int]]],
    fps: float,
    matrices: Any,
    start: float = 0.0,
    unit: str = "unknown",
    up_axis: str = "y",
    name: str = "scene",
) -> Scene:
    """A scene of objects that another tool has evaluated. Nothing that is passed is kept.

    names: of each object. parents: of each object the index of one before it, which it hangs on, or None; None where
    nothing hangs on anything. Parents give paths and bones; they move nothing.
    fps: frames a second, above 0.
    matrices: world matrices of shape (frames, objects, 4, 4), float64 in C order, by the buffer protocol (numpy, array,
    memoryview): row vectors, the position in the last row, the last column 0, 0, 0, 1.
    start: the first frame. unit: of lengths. up_axis: "y" or "z". name: what errors call the scene, and its `path`.

    At a frame an object's position is the given one, to the last bit; between frames it moves on a straight line.
    Raises FormatError where the arrays do not fit each other or hold what cannot be, TypeError and ValueError.
    """
    return _sampled_scene(names, parents, fps, matrices, start, unit, up_axis, name)
