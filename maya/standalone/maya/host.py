"""The session of the standalone host; a process has one. This module does not exist in Maya: through it scripts and
tests do what a user would do there. `restart` is a fresh start of the application.

    from maya import host
    host.restart(batch=True)
"""

import collections
import contextlib
import ctypes
import functools
import json
import os
import sys
import threading
import traceback

_LIBRARY = "vantorelix_standalone.dll" if os.name == "nt" else "libvantorelix_standalone.so"
_ERRORS = {
    "runtime": RuntimeError,
    "type": TypeError,
    "value": ValueError,
    "key": KeyError,
    "index": IndexError,
    "attribute": AttributeError,
    "zero_division": ZeroDivisionError,
    "overflow": OverflowError,
    "import": ImportError,
    "os": OSError,
}
_LISTENER = ctypes.CFUNCTYPE(None, ctypes.c_int32, ctypes.c_uint32, ctypes.c_char_p)
_DOUBLES = ctypes.POINTER(ctypes.c_double)

CURVE_EDITED, KEYFRAME_EDITED, NODE_REMOVED = range(3)


def _load():
    path = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), _LIBRARY)
    library = ctypes.CDLL(path)
    session, text, number = ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32
    signatures = {
        "vlx_start": [text, ctypes.POINTER(session)],
        "vlx_close": [session],
        "vlx_listen": [session, _LISTENER],
        "vlx_open": [session, text],
        "vlx_call": [session, text, text, ctypes.POINTER(text)],
        "vlx_begin": [session, text],
        "vlx_end": [session, ctypes.c_int],
        "vlx_exists": [session, number],
        "vlx_matrix": [session, number, ctypes.c_double, ctypes.c_int, _DOUBLES],
        "vlx_vectors": [session, number, text, ctypes.POINTER(_DOUBLES), ctypes.POINTER(ctypes.c_size_t)],
        "vlx_set_vectors": [session, number, text, ctypes.c_void_p, ctypes.c_size_t],
    }
    for name, arguments in signatures.items():
        getattr(library, name).argtypes = arguments
    library.vlx_error_kind.restype = library.vlx_error_text.restype = text
    return library


_library = _load()
_session = ctypes.c_void_p()
_interrupts = []  # a KeyboardInterrupt or SystemExit on its way through the library
# The library serves one thread at a time, and its results are valid until the next call. So a thread holds the lock for
# a call and its result, or for all of a command. It may take the lock again inside, as callbacks do.
lock = threading.RLock()
_listening = 0  # callbacks that the library is waiting for
generation = 0  # of the scene that is open; the number of a node is valid in its own scene only
scene_name = ""  # the file that is open
frames_per_second = 24.0  # of the scene that is open
subscribers = []  # see maya.api: (event, function of (node, type)), in order of subscription
deferred = [collections.deque() for _ in range(3)]  # calls that wait, by priority: normal, low, lowest
plugins = {}  # those that are loaded: name -> (path or None, Python module or None)
display_filters = {}  # of plug-ins: name -> [label, classification, how often it was registered]
hidden = set()  # (panel, what it does not show: "locators", or a display filter)
messages = []  # what was shown in the viewport, texts of inViewMessage
undoing = ""  # "undo" or "redo" while one of them runs
# Maya's page about `rename` contradicts itself about a namespace in a new name that does not begin with a colon.
# According to its example, a namespace below the current one is used, and any other is dropped with a warning.
# According to its text (False), every namespace is dropped.
rename_looks_up_namespaces = True
failures = 0  # the errors that were printed as tracebacks, because there was no caller to raise them to


def _check(failed):
    if _interrupts:
        raise _interrupts.pop()
    if failed:
        kind = _library.vlx_error_kind().decode()
        raise _ERRORS[kind](_library.vlx_error_text().decode("utf-8", "replace"))


def guarded(function, *arguments, **keywords):
    """Calls a function that has no caller, a callback or a deferred call: an error is printed, and work goes on."""
    global failures
    try:
        return function(*arguments, **keywords)
    except Exception:
        failures += 1
        traceback.print_exc()


@_LISTENER
def _listener(event, node, type_name):
    # An exception cannot pass through the library, so an interrupt is kept and raised again after the call.
    global _listening
    _listening += 1
    try:
        tell(event, node, type_name.decode())
    except BaseException as interrupt:
        _interrupts.append(interrupt)
    finally:
        _listening -= 1


def _alone(function):
    """While the function runs, no other thread is in the library."""

    @functools.wraps(function)
    def call(*arguments, **keywords):
        with lock:
            return function(*arguments, **keywords)

    return call


@_alone
def call(name, *arguments):
    """Makes a call of the library by its name; the library's sources list the calls."""
    try:
        text = json.dumps(arguments, allow_nan=False)
    except ValueError:
        raise ValueError("%s: a number is not finite, in %r; give finite numbers" % (name, arguments))
    result = ctypes.c_char_p()
    _check(_library.vlx_call(_session, name.encode(), text.encode(), ctypes.byref(result)))
    return json.loads(result.value.decode())


@contextlib.contextmanager
def command(name):
    """Everything done inside is one entry of the undo queue. If it fails, there is an entry only if it changed
    anything."""
    with lock:
        session = _session
        _check(_library.vlx_begin(session, name.encode()))
        succeeded = False
        try:
            yield
            succeeded = True
        finally:
            if session is _session:
                _check(_library.vlx_end(session, succeeded))


@_alone
def restart(batch=False, plugin_loaded=True, preferences=None, user_app_dir=None):
    """A fresh start of the host with an empty scene: no callbacks, no deferred calls, no option variables but those of
    the JSON file `preferences`."""
    global _session, failures, rename_looks_up_namespaces
    if _listening:
        raise RuntimeError("restart: refused inside a callback, because the edit that caused it is not over; call it "
                           "later, for example with maya.utils.executeDeferred")
    fresh = ctypes.c_void_p()
    options = json.dumps([batch, plugin_loaded, preferences, user_app_dir])
    _check(_library.vlx_start(options.encode(), ctypes.byref(fresh)))
    for state in (subscribers, messages, plugins, display_filters, hidden, *deferred):
        state.clear()
    if plugin_loaded:
        plugins["Vantorelix_plugin"] = (None, None)
    failures = 0
    rename_looks_up_namespaces = True
    old, _session = _session, fresh
    if old:
        _check(_library.vlx_close(old))
    _check(_library.vlx_listen(_session, _listener))
    _forget_scene("")


def _forget_scene(name):
    global generation, scene_name, frames_per_second
    generation += 1
    scene_name = name
    frames_per_second = call("frames_per_second")


@_alone
def open_scene(path):
    """Opens a scene file, with warnings about what in it cannot be followed."""
    if not os.path.exists(path):
        raise RuntimeError("File not found: %s. Check the path." % path)
    _check(_library.vlx_open(_session, os.fsencode(path)))
    _forget_scene(os.path.abspath(path).replace(os.sep, "/"))
    for text in call("warnings"):
        show_warning("%s: %s" % (path, text))


@_alone
def new_scene():
    call("make_new")
    _forget_scene("")


def tell(event, *arguments):
    """Calls the subscribers of an event."""
    for entry in list(subscribers):
        if entry.event == event and any(entry is present for present in subscribers):
            guarded(entry.tell, *arguments)


def show_warning(text):
    sys.stderr.write("Warning: %s\n" % text)


def show_error(text):
    sys.stderr.write("Error: %s\n" % text)


def exists(node):
    with lock:
        return bool(_library.vlx_exists(_session, node))


def matrix(node, frame, world=True):
    """Sixteen floats, row by row."""
    values = (ctypes.c_double * 16)()
    with lock:
        _check(_library.vlx_matrix(_session, node, frame, world, values))
    return list(values)


@_alone
def vectors(node, attribute):
    """The numbers of a vector array, one after another; an empty list if it was never set or is empty."""
    values, count = _DOUBLES(), ctypes.c_size_t()
    _check(_library.vlx_vectors(_session, node, attribute.encode(), ctypes.byref(values), ctypes.byref(count)))
    return values[: 3 * count.value] if count.value else []


@_alone
def set_vectors(node, attribute, numbers):
    """`numbers`: an array('d') of triples."""
    address, length = numbers.buffer_info()
    _check(_library.vlx_set_vectors(_session, node, attribute.encode(), address, length // 3))


restart()
