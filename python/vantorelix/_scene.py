"""Scenes: objects that move."""

from __future__ import annotations

import ctypes
import json
import math
import operator
import os
import weakref
from typing import Any, Callable, Dict, Iterable, List, NamedTuple, Optional, Sequence, Tuple, Type, Union

from ._arrays import address_of, doubles, number, text, view
from ._errors import ClosedError, Error
from ._library import Array, Memory, Reading, Request, at_work, check, later, library, watched
from ._tables import Tables
from ._trail import Trail, TrailSet

COLOR_MODES = ("standard", "spacing", "flow", "beats")
"""The names of the colour modes 0 to 3."""

AXES = ("y-up", "z-up")
UNITS = ("mm", "cm", "m", "km", "in", "ft", "yd")
_MOST_SAMPLES_PER_FRAME = 1000000000


class Take(NamedTuple):
    """A piece of animation that a file holds under a name: an FBX take, a glTF clip. Frames."""

    name: str
    first: float
    last: float


class SceneObject(NamedTuple):
    """A transform or joint of a scene, named as in trails."""

    source: str
    name: str
    node: Optional[int]
    type: str
    parent: Optional[str]  # the long path of what it hangs on, or None
    animated: bool  # it moves, or what it hangs on does


class _Handle:
    """A scene in the library. `pointer` is None once it is closed."""

    def __init__(self, pointer: ctypes.c_void_p) -> None:
        self.pointer: Optional[ctypes.c_void_p] = pointer

    def close(self) -> None:
        pointer, self.pointer = self.pointer, None
        if pointer is not None:
            later(library.vlx_close, pointer)


class Scene:
    """A scene that is open. Made by `vantorelix.open` or `vantorelix.scene`; `close` or a `with` statement ends it.

    Objects go by their name or path, as trails name them, or by their name in the file. Any number of scenes may be open.
    Any thread may call any of them, but one call runs at a time in the whole process and the others wait for it. Python
    code that runs inside a call (a signal handler) cannot make another one.
    """

    def __init__(self, pointer: ctypes.c_void_p, path: str) -> None:
        """For `vantorelix.open` and `vantorelix.scene` only."""
        self._handle = _Handle(pointer)
        self._sets: "weakref.WeakSet[TrailSet]" = weakref.WeakSet()
        self._path = path
        weakref.finalize(self, self._handle.close).atexit = False
        self._description: Dict[str, Any] = self._json(library.vlx_description)

    # --- what it is -------------------------------------------------------------------------------------------------
    @property
    def path(self) -> str:
        """The file, as it was named."""
        return self._path

    @property
    def fps(self) -> float:
        """Frames a second."""
        return self._description["fps"]

    @property
    def range(self) -> Tuple[float, float]:
        """The first and the last frame of the scene's own range."""
        first, last = self._description["range"]
        return first, last

    @property
    def unit(self) -> str:
        """The unit of every length, "cm"; "unknown" where the format names none."""
        return self._description["unit"]

    @property
    def up_axis(self) -> str:
        """"y" or "z"."""
        return self._description["up_axis"]

    @property
    def takes(self) -> List[Take]:
        """What the file has to choose from with `take`; empty where its format knows no takes."""
        return [Take(take["name"], take["first"], take["last"]) for take in self._description["takes"]]

    @property
    def take(self) -> Optional[str]:
        """The name of the take that was read, or None."""
        index = self._description["take"]
        return None if index is None else self._description["takes"][index]["name"]

    @property
    def warnings(self) -> List[str]:
        """What the file holds that cannot be followed, a text a kind."""
        return list(self._description["warnings"])

    def objects(self) -> List[SceneObject]:
        """The transforms and joints of the file, in its order."""
        return [SceneObject(**fields) for fields in self._json(library.vlx_objects)]

    @property
    def names(self) -> List[str]:
        """The long paths of `objects`."""
        return [found.source for found in self.objects()]

    # --- trails -----------------------------------------------------------------------------------------------------
    def trails(
        self,
        *patterns: str,
        samples_per_frame: Optional[int] = None,
        color_mode: Union[str, int, None] = None,
        range: Optional[Tuple[Optional[float], Optional[float]]] = None,
        exclude: Union[str, Sequence[str]] = (),
        ignore_case: bool = False,
        all: bool = False,
    ) -> List[Trail]:
        """The trails of objects, exact, in the order of the patterns and then of the scene.

        patterns: names, paths or patterns as "*Foot"; none for every object that is animated.
        samples_per_frame: 1 to 1,000,000,000 (default: the engine's, 1).
        color_mode: one of COLOR_MODES or its number (default: the engine's).
        range: the first and the last frame; None for either leaves that to the scene.
        exclude: patterns of what is left out. ignore_case: takes a to z for A to Z in all patterns.
        all: every object, animated or not.

        Raises NotFoundError where a pattern or the whole stands for nothing, Error where a range is too short or the trails
        would be too large. Ctrl-C ends the work with KeyboardInterrupt, and the scene stays usable.
        """
        request = _request(patterns, samples_per_frame, color_mode, range, exclude, ignore_case, all)

        def work() -> List[Trail]:
            made, count = self._made(request)
            trail_set = TrailSet(self._handle, made, count)
            self._sets.add(trail_set)
            return trail_set.make()

        return at_work(work)

    def tables(
        self,
        *patterns: str,
        samples_per_frame: Optional[int] = None,
        range: Optional[Tuple[Optional[float], Optional[float]]] = None,
        exclude: Union[str, Sequence[str]] = (),
        ignore_case: bool = False,
        all: bool = False,
    ) -> Tables:
        """What `trails` gives, with every measure that is one number, as columns: the fast way to tables of many objects.

        The arguments and errors are those of `trails`. `follow` does not change what was handed out.
        """
        request = _request(patterns, samples_per_frame, None, range, exclude, ignore_case, all)

        def work() -> Tables:
            made, _ = self._made(request)
            tables = ctypes.c_void_p()
            try:
                check(library.vlx_tables(made, ctypes.byref(tables)))
            finally:
                library.vlx_let_go(self._pointer(), made)
            return Tables(Memory(tables, library.vlx_tables_free))

        return at_work(work)

    def _made(self, request: Request) -> Tuple[ctypes.c_void_p, int]:
        """A set of trails in the library, and how many they are. Inside at_work."""
        made, count = ctypes.c_void_p(), ctypes.c_size_t()
        watched(library.vlx_trails, self._pointer(), ctypes.byref(request), ctypes.byref(made), ctypes.byref(count))
        return made, count.value

    def follow(self) -> None:
        """Makes the trails exact after edits: runs the engine's queue, then brings every trail that came from this scene
        and is still held up to date. Their arrays are new ones; those that were handed out before stay as they were.

        The colours of a trail keep the scale that its speeds had when it was made, as long as no later call of `trails`
        took its object, its short name or its range away from it.
        """

        def work() -> None:
            watched(library.vlx_follow, self._pointer())
            for trail_set in list(self._sets):
                trail_set.refresh()

        at_work(work)

    # --- positions and keys -----------------------------------------------------------------------------------------
    def world_matrices(self, name: str, frames: Iterable[float]) -> memoryview:
        """The world matrices of an object, shape (n, 4, 4): row vectors, the translation in the last row."""
        times = doubles(frames, "frames")
        matrices = view(len(times), (4, 4))
        address, count = times.buffer_info()
        if count:
            self._call(library.vlx_world_matrices, text(name, "name"), address, count, address_of(matrices), long=True)
        else:
            self.key_times(name)  # the name is looked up all the same
        return matrices

    def key_times(self, name: str) -> memoryview:
        """The frames at which any attribute of an object has a key, shape (k,), in order."""

        def work() -> memoryview:
            found = Array()
            check(library.vlx_key_times(self._pointer(), text(name, "name"), ctypes.byref(found)))
            times = view(found.count)
            if found.count:
                ctypes.memmove(address_of(times), found.data, 8 * found.count)
            return times

        return at_work(work)

    def set_key(self, name: str, attribute: str, frame: float, value: float) -> None:
        """Sets a key on one channel of an object, "translateY" or "ty"; one that is there at the frame gets the value.

        value: in the scene's unit, or in degrees on angles. Trails know of it after `follow`.
        """
        self._edit(library.vlx_set_key, name, attribute, number(frame, "frame"), number(value, "value"))

    def move_key(self, name: str, attribute: str, frame: float, to: float) -> None:
        """Moves the key at a frame to another, with its tangents. Raises NotFoundError where none is."""
        self._edit(library.vlx_move_key, name, attribute, number(frame, "frame"), number(to, "to"))

    def remove_key(self, name: str, attribute: str, frame: float) -> None:
        """Removes the key at a frame. Raises NotFoundError where none is."""
        self._edit(library.vlx_remove_key, name, attribute, number(frame, "frame"))

    # --- the end ----------------------------------------------------------------------------------------------------
    @property
    def closed(self) -> bool:
        """Whether `close` was called."""
        return self._handle.pointer is None

    def close(self) -> None:
        """Lets go of the scene. Trails and arrays that came from it stay. Closing it again does nothing."""
        self._handle.close()

    def __enter__(self) -> Scene:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException], traceback: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        return "<vantorelix.Scene %s%s>" % (self._path, ", closed" if self.closed else "")

    # --- calls ------------------------------------------------------------------------------------------------------
    def _pointer(self) -> ctypes.c_void_p:
        pointer = self._handle.pointer
        if pointer is None:
            raise ClosedError("%s: the scene is closed; open it again" % self._path)
        return pointer

    def _call(self, function: Callable[..., int], *arguments: Any, long: bool = False) -> None:
        def work() -> None:
            scene = self._pointer()
            if long:
                watched(function, scene, *arguments)
            else:
                check(function(scene, *arguments))

        at_work(work)

    def _edit(self, function: Callable[..., int], name: str, attribute: str, *numbers: float) -> None:
        self._call(function, text(name, "name"), text(attribute, "attribute"), *numbers)

    def _json(self, function: Callable[..., int]) -> Any:
        def work() -> bytes:
            found = ctypes.c_char_p()
            check(function(self._pointer(), ctypes.byref(found)))
            return found.value or b""

        return json.loads(at_work(work))


def open_scene(path: Union[str, "os.PathLike[str]"], reading: Reading) -> Scene:
    """The scene in a file."""
    name = os.fspath(path)
    if not isinstance(name, str):
        raise TypeError("path must be a text or a path, not %s" % type(name).__name__)
    file = text(name, "path")
    pointer = ctypes.c_void_p()
    at_work(lambda: watched(library.vlx_open, file, ctypes.byref(reading), ctypes.byref(pointer)))
    return Scene(pointer, name)


def reading_of(take: Optional[str], fps: Optional[float], axis: Optional[str], unit: Optional[str]) -> Reading:
    """How to read a file; raises TypeError and ValueError."""
    rate = 0.0 if fps is None else number(fps, "fps")
    if fps is not None and rate <= 0.0:
        raise ValueError("fps must be above 0, not %r" % (fps,))
    return Reading(
        take=None if take is None else text(take, "take"),
        axis=_one_of(axis, AXES, "axis"),
        unit=_one_of(unit, UNITS, "unit"),
        fps=rate,
    )


def _one_of(value: Optional[str], words: Sequence[str], what: str) -> Optional[bytes]:
    if value is None:
        return None
    given = text(value, what)
    if value not in words:
        raise ValueError("%s must be one of %s, not %r" % (what, ", ".join(words), value))
    return given


def _texts(values: Sequence[str], what: str) -> Any:
    given = [text(value, what) for value in values]
    return (ctypes.c_char_p * len(given))(*given)


def _request(
    patterns: Sequence[str],
    samples_per_frame: Optional[int],
    color_mode: Union[str, int, None],
    frames: Optional[Tuple[Optional[float], Optional[float]]],
    exclude: Union[str, Sequence[str]],
    ignore_case: bool,
    everything: bool,
) -> Request:
    chosen = _texts(patterns, "a pattern")
    excluded = _texts([exclude] if isinstance(exclude, str) else exclude, "exclude")
    first, last = _range_of(frames)
    return Request(
        patterns=chosen,
        pattern_count=len(chosen),
        excluded=excluded,
        excluded_count=len(excluded),
        ignore_case=bool(ignore_case),
        all=bool(everything),
        samples_per_frame=0 if samples_per_frame is None else _samples_of(samples_per_frame),
        color_mode=-1 if color_mode is None else _color_mode_of(color_mode),
        first=first,
        last=last,
    )


def _samples_of(value: int) -> int:
    samples = operator.index(value)
    if not 1 <= samples <= _MOST_SAMPLES_PER_FRAME:
        raise ValueError("samples_per_frame must be from 1 to %d, not %d" % (_MOST_SAMPLES_PER_FRAME, samples))
    return samples


def _color_mode_of(value: Union[str, int]) -> int:
    if value in COLOR_MODES:
        return COLOR_MODES.index(value)  # type: ignore[arg-type]
    if not isinstance(value, str) and operator.index(value) in range(len(COLOR_MODES)):
        return operator.index(value)
    raise ValueError("color_mode must be one of %s or its number, not %r" % (", ".join(COLOR_MODES), value))


def _range_of(frames: Optional[Tuple[Optional[float], Optional[float]]]) -> Tuple[float, float]:
    if frames is None:
        return math.nan, math.nan
    if isinstance(frames, (str, bytes)):
        raise TypeError("range must be two frames, not a text")
    ends = tuple(frames)
    if len(ends) != 2:
        raise ValueError("range must be two frames, first and last, not %d" % len(ends))
    first, last = (math.nan if end is None else number(end, "a frame of the range") for end in ends)
    if first >= last:
        raise ValueError("range must end after it begins, not %r to %r" % ends)
    return first, last
