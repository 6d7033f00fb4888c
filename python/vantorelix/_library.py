"""The shared library beside this file, through its C interface (api/c_api.h in the sources).

It does one thing at a time in the whole process: every call goes through `at_work`, which keeps the order. Threads wait
for each other there; what one thread does inside its own call (a signal handler, say) is refused.
"""

from __future__ import annotations

import collections
import ctypes
import os
import sys
import threading
from typing import Any, Callable, Deque, Iterator, List, Tuple, TypeVar

from ._errors import Error, FormatError, MissingFileError, NotFoundError

_Result = TypeVar("_Result")


class Failure(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_char_p), ("text", ctypes.c_char_p), ("line", ctypes.c_size_t)]


class Reading(ctypes.Structure):
    _fields_ = [("take", ctypes.c_char_p), ("axis", ctypes.c_char_p), ("unit", ctypes.c_char_p), ("fps", ctypes.c_double),
                ("bounds", ctypes.c_int)]


class Samples(ctypes.Structure):
    _fields_ = [
        ("names", ctypes.POINTER(ctypes.c_char_p)),
        ("parents", ctypes.POINTER(ctypes.c_int64)),
        ("count", ctypes.c_size_t),
        ("frames", ctypes.c_size_t),
        ("first", ctypes.c_double),
        ("fps", ctypes.c_double),
        ("unit", ctypes.c_char_p),
        ("up_axis", ctypes.c_char),
    ]


class Request(ctypes.Structure):
    _fields_ = [
        ("patterns", ctypes.POINTER(ctypes.c_char_p)),
        ("pattern_count", ctypes.c_size_t),
        ("excluded", ctypes.POINTER(ctypes.c_char_p)),
        ("excluded_count", ctypes.c_size_t),
        ("ignore_case", ctypes.c_int),
        ("all", ctypes.c_int),
        ("samples_per_frame", ctypes.c_int64),
        ("color_mode", ctypes.c_int),
        ("first", ctypes.c_double),
        ("last", ctypes.c_double),
    ]


class Array(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("count", ctypes.c_size_t)]


class TrailArrays(ctypes.Structure):
    _fields_ = [(name, Array) for name in ("points", "colors", "key_points", "key_colors", "key_times")]


class Columns(ctypes.Structure):
    _fields_ = [(name, Array) for name in ("x", "y", "z", "speed", "key_frame", "key_x", "key_y", "key_z", "measures")]


_ASKED = ctypes.CFUNCTYPE(ctypes.c_int)
_handle, _text, _double, _size = ctypes.c_void_p, ctypes.c_char_p, ctypes.c_double, ctypes.c_size_t
_FUNCTIONS = {
    "vlx_version": (_text, []),
    "vlx_error": (None, [ctypes.POINTER(Failure)]),
    "vlx_watch": (None, [_ASKED]),
    "vlx_open": (ctypes.c_int, [_text, ctypes.POINTER(Reading), ctypes.POINTER(_handle)]),
    "vlx_samples": (ctypes.c_int, [ctypes.POINTER(Samples), ctypes.c_void_p, _text, ctypes.POINTER(_handle)]),
    "vlx_close": (ctypes.c_int, [_handle]),
    "vlx_description": (ctypes.c_int, [_handle, ctypes.POINTER(_text)]),
    "vlx_objects": (ctypes.c_int, [_handle, ctypes.POINTER(_text)]),
    "vlx_trails": (ctypes.c_int, [_handle, ctypes.POINTER(Request), ctypes.POINTER(_handle), ctypes.POINTER(_size)]),
    "vlx_let_go": (ctypes.c_int, [_handle, _handle]),
    "vlx_trail": (ctypes.c_int, [_handle, _size, ctypes.POINTER(_handle)]),
    "vlx_trail_text": (ctypes.c_int, [_handle, ctypes.POINTER(_text)]),
    "vlx_trail_measures": (ctypes.c_int, [_handle, ctypes.POINTER(_text)]),
    "vlx_trail_arrays": (ctypes.c_int, [_handle, ctypes.POINTER(TrailArrays)]),
    "vlx_trail_free": (None, [_handle]),
    "vlx_tables": (ctypes.c_int, [_handle, ctypes.POINTER(_handle)]),
    "vlx_tables_text": (ctypes.c_int, [_handle, ctypes.POINTER(_text)]),
    "vlx_tables_columns": (ctypes.c_int, [_handle, ctypes.POINTER(Columns)]),
    "vlx_tables_free": (None, [_handle]),
    "vlx_world_matrices": (ctypes.c_int, [_handle, _text, ctypes.c_void_p, _size, ctypes.c_void_p]),
    "vlx_key_times": (ctypes.c_int, [_handle, _text, ctypes.POINTER(Array)]),
    "vlx_set_key": (ctypes.c_int, [_handle, _text, _text, _double, _double]),
    "vlx_move_key": (ctypes.c_int, [_handle, _text, _text, _double, _double]),
    "vlx_remove_key": (ctypes.c_int, [_handle, _text, _text, _double]),
    "vlx_follow": (ctypes.c_int, [_handle]),
}


def _load() -> ctypes.CDLL:
    names = {"win32": ["vantorelix.dll", "libvantorelix.dll"], "darwin": ["libvantorelix.dylib"]}
    folder = os.path.dirname(os.path.abspath(__file__))
    tried = [os.path.join(folder, name) for name in names.get(sys.platform, ["libvantorelix.so"])]
    path = next(filter(os.path.exists, tried), None)
    if path is None:
        raise ImportError("the library of the package vantorelix is missing; install the package again (looked for %s)"
                          % ", ".join(tried))
    library = ctypes.CDLL(path)
    for name, (result, arguments) in _FUNCTIONS.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    return library


library = _load()
_lock = threading.Lock()
_holder: Any = None  # the thread that is at work
_left: Deque[Tuple[Callable[..., Any], Tuple[Any, ...]]] = collections.deque()


class Memory:
    """Owns something in the library, for as long as a view of it lives. free: the library's function that any thread may
    call at any time."""

    def __init__(self, handle: ctypes.c_void_p, free: Callable[[ctypes.c_void_p], None]) -> None:
        self.handle = handle
        self._free = free

    def __del__(self) -> None:
        self._free(self.handle)


def at_work(work: Callable[[], _Result]) -> _Result:
    """Runs `work`, in which the library is this thread's alone; what it hands out is copied there."""
    global _holder
    if _holder == threading.get_ident() and _lock.locked():
        raise Error("vantorelix is at work further out in this thread; call it again when that call has ended")
    with _lock:
        _holder = threading.get_ident()
        try:
            _clear_up()
            return work()
        finally:
            _holder = None


def later(function: Callable[..., Any], *arguments: Any) -> None:
    """Calls the library as soon as it is free: now, or in the next at_work. For finalisers, which come at any time."""
    global _holder
    _left.append((function, arguments))
    if _lock.acquire(blocking=False):
        try:
            _holder = threading.get_ident()
            _clear_up()
        finally:
            _holder = None
            _lock.release()


def _clear_up() -> None:
    while _left:
        function, arguments = _left.popleft()
        function(*arguments)


def check(code: int) -> None:
    """Raises what the last call of the library failed with, if it did."""
    if code == 0:
        return
    failure = Failure()
    library.vlx_error(failure)
    kind, text = failure.kind.decode(), failure.text.decode("utf-8", "replace")
    if kind == "format":
        raise FormatError(text, failure.line or None)
    if kind == "memory":
        raise MemoryError(text)
    raise {"no_file": MissingFileError, "not_found": NotFoundError, "interrupted": KeyboardInterrupt}.get(kind, Error)(text)


def _answers(raised: List[BaseException]) -> Iterator[int]:
    """0 while the work may go on. Asking runs the handlers of signals that have come, inside this `try`: a generator
    is resumed in it, where a function would begin outside of its own."""
    try:
        while True:
            yield 0
    except GeneratorExit:
        return
    except BaseException as error:  # whatever a handler raises belongs to the caller of the library
        raised.append(error)
    yield 1


def watched(call: Callable[..., int], *arguments: Any) -> None:
    """A call that may take long: what a signal handler raises meanwhile ends it and comes out of it, as Ctrl-C does."""
    raised: List[BaseException] = []
    answers = _answers(raised)
    next(answers)
    asked = _ASKED(answers.__next__)
    library.vlx_watch(asked)
    try:
        code = call(*arguments)
    finally:
        library.vlx_watch(_ASKED())
    if raised:
        raise raised[0]
    check(code)
