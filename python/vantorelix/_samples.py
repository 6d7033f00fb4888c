"""Scenes from arrays."""

from __future__ import annotations

import ctypes
import operator
from typing import Any, Optional, Sequence

from ._arrays import number, text
from ._library import Samples, at_work, library, watched
from ._scene import Scene


def sampled_scene(
    names: Sequence[str],
    parents: Optional[Sequence[Optional[int]]],
    fps: float,
    matrices: Any,
    start: float,
    unit: str,
    up_axis: str,
    name: str,
) -> Scene:
    """As `vantorelix.scene`, which says what the arguments are."""
    if isinstance(names, (str, bytes)):
        raise TypeError("names must be a sequence of texts, not one")
    called = [text(each, "a name") for each in names]
    above = [-1] * len(called) if parents is None else [_parent(each) for each in parents]
    if len(above) != len(called):
        raise ValueError("parents must have an item for each of the %d names, not %d" % (len(called), len(above)))
    if up_axis not in ("y", "z"):
        raise ValueError("up_axis must be 'y' or 'z', not %r" % (up_axis,))
    given = _matrices(matrices, len(called))
    samples = Samples(
        names=(ctypes.c_char_p * len(called))(*called),
        parents=(ctypes.c_int64 * len(above))(*above),
        count=len(called),
        frames=given.shape[0],
        first=number(start, "start"),
        fps=number(fps, "fps"),
        unit=text(unit, "unit"),
        up_axis=up_axis.encode(),
    )
    pointer, called_scene = ctypes.c_void_p(), text(name, "name")
    address = _address(given)
    at_work(lambda: watched(library.vlx_samples, ctypes.byref(samples), address, called_scene, ctypes.byref(pointer)))
    return Scene(pointer, name)


def _parent(value: Optional[int]) -> int:
    index = -1 if value is None else operator.index(value)
    if not -1 <= index < 1 << 62:
        raise ValueError("a parent must be the index of an object or None, not %d" % index)
    return index


def _matrices(given: Any, objects: int) -> memoryview:
    try:
        view = memoryview(given)
    except TypeError:
        raise TypeError("matrices must be an array with the buffer protocol, not %s" % type(given).__name__) from None
    if view.format not in ("d", "<d", "=d", "@d"):
        raise TypeError("matrices must hold float64, not items of the format %r" % view.format)
    if view.ndim != 4 or view.shape[1:] != (objects, 4, 4) or 0 in view.shape:
        raise ValueError("matrices must have the shape (frames, %d, 4, 4), not %r" % (objects, view.shape))
    if not view.c_contiguous:
        raise ValueError("matrices must lie in C order; pass a copy that does")
    return view


def _address(view: memoryview) -> Any:
    """The address of the first item, or a copy where the memory is read-only, whose address ctypes does not tell."""
    if view.readonly:
        return (ctypes.c_char * view.nbytes).from_buffer_copy(view)
    return (ctypes.c_char * view.nbytes).from_buffer(view)
