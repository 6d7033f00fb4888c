"""How everything that the user asks for runs, whether it comes from the menu, the shelf, a gesture or a hotkey.

What changes the scene goes through `change`, and whatever Maya's interface is given to call goes through `callback`.
Messages to the user are the engine's own, in the viewport; what a developer wants to know goes to `log`.
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
    """Prints records to whatever is Python's output when they come: Maya puts its own there after its start."""

    def emit(self, record):
        print(self.format(record))


def _make_log():
    """A logger that says nothing twice: it does not propagate, and gets its handler once, however often this loads."""
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
    """Calls `function`; an error is told to the user, and its traceback to the log."""
    try:
        function(*arguments)
    except Exception as error:
        tell("{0}: {1}".format(type(error).__name__, error))
        log.error("Where that came from:", exc_info=True)


def callback(function, *arguments):
    """`function` with these arguments as Maya's interface may call it: with whatever it passes, and never raising."""
    return lambda *_ignored: attempt(function, *arguments)


def change(label, function, *arguments):
    """Does what changes the scene at the user's wish, as one step of Maya's undo queue; `label` is what the user knows it
    by."""
    log.debug(label)
    with step(cmds, label):
        function(*arguments)


# `name` is for ever, as users' hotkeys hold it; `place` is the direction in a marking menu, None for its list; `run`
# can be given to Maya's interface.
Command = namedtuple("Command", "name label place run")


def _command(name, label, place, function, *arguments):
    """A command of the engine, looked up when it is called, so that a tool may have wrapped it meanwhile."""
    def run():
        getattr(engine, function)(*arguments)
    return Command(name, label, place, callback(change, label, run))


COMMANDS = ((_command("BuildTrail", "Build trail", "N", "create_trail"),
             _command("ClearTrails", "Clear trails", "S", "clear_trails")) +
            tuple(_command("Color" + mode, mode, place, "set_color_mode", index)
                  for index, (mode, place) in enumerate(zip(MODES, ("W", "E", "NE", "NW")))) +
            (_command("Ghost", "Ghost", "SE", "toggle_ghost"),
             _command("ConvertToNurbs", "Convert to NURBS", "SW", "convert_to_nurbs")))

# What the engine's own names of gestures change; it opens the menu for any other.
_GESTURES = {"lmb": "Build trail", "ctrl_lmb": "Convert to NURBS", "shift_lmb": "Clear trails", "ctrl_rmb": "Ghost"}


def gesture(action):
    """A click, by the name that the engine has for it."""
    if action in _GESTURES:
        change(_GESTURES[action], engine.pellark_entry, action)
    else:
        engine.pellark_entry(action)
