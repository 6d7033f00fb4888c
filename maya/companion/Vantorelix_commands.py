"""Runs what the user asks for, whether it comes from the menu, the shelf, a gesture or a hotkey.

What changes the scene goes through `change`, and functions that Maya's interface calls are made by `callback`. The user
sees messages in the viewport, through the engine; details for developers go to `log`.
"""

import functools
import logging
from collections import namedtuple

import maya.cmds as cmds
import Vantorelix_engine as engine
from Vantorelix_undo import step

TITLE = "Vantorelix"
MODES = ("Standard", "Spacing", "Flow", "Beats")


class _ScriptEditor(logging.Handler):
    """Prints each record to the sys.stdout of that moment, because Maya replaces sys.stdout after its start."""

    def emit(self, record):
        print(self.format(record))


def _make_log():
    """A logger that prints each record once: it does not propagate, and gets one handler however often this is
    loaded."""
    logger = logging.getLogger(TITLE)
    logger.propagate = False
    if not logger.handlers:
        handler = _ScriptEditor()
        handler.setFormatter(logging.Formatter("[%(name)s] %(levelname)s: %(message)s"))
        logger.addHandler(handler)
    return logger


log = _make_log()


def tell(text):
    """A message to the user, in the viewport and printed."""
    engine._msg(text)


def attempt(function, *arguments):
    """Calls `function`. The user is told of an error, and the log gets its traceback."""
    try:
        function(*arguments)
    except Exception as error:
        tell("{0}: {1}. See the Script Editor for details.".format(type(error).__name__, str(error).rstrip(".")))
        log.error("Details of the error:", exc_info=True)


def callback(function, *arguments):
    """Calls `function` with these arguments, whatever Maya's interface passes, and never raises."""
    return lambda *_ignored: attempt(function, *arguments)


def change(label, function, *arguments):
    """Calls a function that changes the scene for the user, as one step of Maya's undo queue under the name `label`."""
    log.debug(label)
    with step(cmds, label):
        function(*arguments)


# `name` never changes, because users' hotkeys refer to it; `place` is the direction in a marking menu, or None for an
# entry in the list below; `run` can be given to Maya's interface.
Command = namedtuple("Command", "name label place run")


def _command(name, label, place, function, *arguments):
    """A function of the engine as a command. It is looked up at each call, because a tool may have wrapped it
    meanwhile."""
    def run():
        getattr(engine, function)(*arguments)
    return Command(name, label, place, callback(change, label, run))


COMMANDS = ((_command("BuildTrail", "Build trail", "N", "create_trail"),
             _command("ClearTrails", "Clear trails", "S", "clear_trails")) +
            tuple(_command("Color" + mode, mode, place, "set_color_mode", index)
                  for index, (mode, place) in enumerate(zip(MODES, ("W", "E", "NE", "NW")))) +
            (_command("Ghost", "Ghost", "SE", "toggle_ghost"),
             _command("ConvertToNurbs", "Convert to NURBS", "SW", "convert_to_nurbs")))

# The engine's names of the gestures that change the scene, with their labels; any other gesture opens the menu.
_GESTURES = {"lmb": "Build trail", "ctrl_lmb": "Convert to NURBS", "shift_lmb": "Clear trails", "ctrl_rmb": "Ghost"}


def gesture(action):
    """Runs the gesture that the engine knows by this name."""
    if action in _GESTURES:
        change(_GESTURES[action], engine.pellark_entry, action)
    else:
        engine.pellark_entry(action)
