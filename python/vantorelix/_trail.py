"""Trails: where objects have been."""

from __future__ import annotations

import ctypes
import json
import weakref
from typing import Any, Dict, List, Optional, Sequence, Union

from ._arrays import view
from ._library import Memory, TrailArrays, at_work, check, later, library


# A number, None where it is not known, or a list of such by their names.
Measures = Dict[str, Union[None, float, List[Dict[str, float]]]]


class _Data:
    """What a trail holds at one time: `fields` by the names of the JSON, and the arrays."""

    def __init__(self, fields: Dict[str, Any], arrays: TrailArrays, memory: Memory) -> None:
        self.fields = fields
        self._memory = memory

        def rows(name: str, *row: int) -> memoryview:
            found = getattr(arrays, name)
            return view(found.count // (row[0] if row else 1), tuple(row), found.data, memory)

        self.points, self.colors = rows("points", 3), rows("colors", 3)
        self.key_points, self.key_colors = rows("key_points", 3), rows("key_colors", 3)
        self.key_times = rows("key_times")

    def measures(self) -> Measures:
        """What the JSON of the program has as `measures`."""

        def work() -> bytes:
            found = ctypes.c_char_p()
            check(library.vlx_trail_measures(self._memory.handle, ctypes.byref(found)))
            return found.value or b""

        return json.loads(at_work(work))


def _taken(trails: Any, index: int) -> _Data:
    handle = ctypes.c_void_p()
    check(library.vlx_trail(trails, index, ctypes.byref(handle)))
    memory = Memory(handle, library.vlx_trail_free)
    json_text, arrays = ctypes.c_char_p(), TrailArrays()
    check(library.vlx_trail_text(handle, ctypes.byref(json_text)))
    check(library.vlx_trail_arrays(handle, ctypes.byref(arrays)))
    return _Data(json.loads(json_text.value or b""), arrays, memory)


class Trail:
    """The trail of one object: its world positions over a range of frames, with colours and keys.

    `Scene.follow` brings it up to date after edits. The arrays are read-only memory views of float64 in C order, which
    numpy.asarray takes without a copy. One that was handed out never changes, and stays when the trail or the scene goes.
    An array without rows has the shape (0, 3), of which Python itself reads only the length.
    """

    __slots__ = ("_data", "_set", "__weakref__")

    def __init__(self, data: _Data, trail_set: TrailSet) -> None:
        self._data = data
        self._set = trail_set  # keeps the trail followed

    @property
    def source(self) -> str:
        """The long path of the object, "|Hips|LeftUpLeg"."""
        return self._data.fields["source"]

    @property
    def name(self) -> str:
        """The object's own name in its file, unchanged."""
        return self._data.fields["name"]

    @property
    def node(self) -> Optional[int]:
        """The object's number in a file that numbers its nodes (glTF), else None."""
        return self._data.fields["node"]

    @property
    def parent(self) -> Optional[str]:
        """The long path of the nearest ancestor that has a trail from the same call, or None."""
        return self._data.fields["parent"]

    @property
    def viz(self) -> str:
        """The name of the trail's own node in the scene."""
        return self._data.fields["viz"]

    @property
    def samples_per_frame(self) -> int:
        """Samples a frame, 1 or more."""
        return self._data.fields["samples_per_frame"]

    @property
    def color_mode(self) -> int:
        """What a viewer shows by colours: 0 nothing, 1 the speed, 2 past and future, 3 the spans between keys."""
        return self._data.fields["color_mode"]

    @property
    def start_frame(self) -> float:
        """The frame of the first sample."""
        return self._data.fields["start_frame"]

    @property
    def frame_step(self) -> float:
        """Frames from one sample to the next: sample i is at start_frame + i * frame_step."""
        return self._data.fields["frame_step"]

    @property
    def points(self) -> memoryview:
        """Shape (n, 3): the world position at each sample, in the scene's unit."""
        return self._data.points

    @property
    def colors(self) -> memoryview:
        """Shape (n, 3): red, green and blue of each sample by its speed, 0 to 1."""
        return self._data.colors

    @property
    def key_times(self) -> memoryview:
        """Shape (k,): the frames in the range at which the object has keys, in order."""
        return self._data.key_times

    @property
    def key_points(self) -> memoryview:
        """Shape (k, 3): the world position at each key, in the scene's unit."""
        return self._data.key_points

    @property
    def key_colors(self) -> memoryview:
        """Shape (k, 3): red, green and blue of each key, 0 to 1."""
        return self._data.key_colors

    @property
    def warnings(self) -> List[str]:
        """Why the positions may not be those of the application that made the scene; empty when all is well."""
        return list(self._data.fields["warnings"])

    @property
    def length(self) -> float:
        """How long the way is, in the scene's unit, over the samples that are finite."""
        return self._data.fields["length"]

    @property
    def mean_speed(self) -> float:
        """The mean speed, in units a second."""
        return self._data.fields["mean_speed"]

    @property
    def top_speed(self) -> float:
        """The highest speed from one sample to the next, in units a second."""
        return self._data.fields["top_speed"]

    @property
    def mean_speed_per_frame(self) -> float:
        """The mean speed, in units a frame."""
        return self._data.fields["mean_speed_per_frame"]

    @property
    def top_speed_per_frame(self) -> float:
        """The highest speed from one sample to the next, in units a frame."""
        return self._data.fields["top_speed_per_frame"]

    @property
    def measures(self) -> Measures:
        """How the object moves, worked out at each asking: the program's `measures`, which docs/measures.md explains.

        A number by each name, None where it is not known; and lists of dicts, `holds`, `pops` and `contacts`.
        """
        return self._data.measures()

    @property
    def units(self) -> Dict[str, str]:
        """The unit of each measure that is a number, by its name: "cm per second", or "1" for what has none."""
        return dict(self._data.fields["units"])

    def __len__(self) -> int:
        """How many samples the trail has."""
        return len(self._data.points)

    def __repr__(self) -> str:
        return "<vantorelix.Trail %s, %d samples from frame %g>" % (self.source, len(self), self.start_frame)


class TrailSet:
    """The trails of one call, which the library follows until the last of them goes."""

    def __init__(self, scene: Any, handle: ctypes.c_void_p, count: int) -> None:
        self._scene = scene  # its handle: None once it is closed
        self._handle = handle
        self._count = count
        self._trails: Sequence["weakref.ref[Trail]"] = ()

    def make(self) -> List[Trail]:
        """The trails, in their order. Inside at_work."""
        trails = [Trail(_taken(self._handle, index), self) for index in range(self._count)]
        self._trails = [weakref.ref(trail) for trail in trails]
        return trails

    def refresh(self) -> None:
        """Gives the trails that are still held what the library holds now. Inside at_work."""
        for index, reference in enumerate(self._trails):
            trail = reference()
            if trail is not None:
                trail._data = _taken(self._handle, index)

    def __del__(self, call_later: Any = later) -> None:
        call_later(_let_go, self._scene, self._handle)


def _let_go(scene: Any, handle: ctypes.c_void_p) -> None:
    if scene.pointer is not None:
        library.vlx_let_go(scene.pointer, handle)
