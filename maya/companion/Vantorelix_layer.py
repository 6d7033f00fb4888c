"""Maya's commands as the engine calls them.

The engine makes a fixed sequence of calls, but looks up its handle `cmds` at each of them. So this module can put
commands of our own in front of Maya's, without the engine or its callers noticing: they keep the undo queue clean and
make names work in any namespace. `Vantorelix_engine` installs this layer whenever it is loaded or reloaded and finds it
on the path, so that it is in place for menu, shelf, hotkeys and scripts alike. Without this file the engine calls
Maya's commands directly.

`om` and `oma` stay Maya's own modules, because `om` is used for every sample.
"""

import functools
import types

import Vantorelix_names
import Vantorelix_trails
import Vantorelix_undo

# Each has `commands(engine, cmds)`, which returns its own commands by name. They call `cmds`, the handle of the part
# before.
PARTS = (Vantorelix_undo, Vantorelix_trails, Vantorelix_names)


def _handle(maya, own):
    """Commands of our own, and for the rest Maya's, which are looked up at each call because a tool may have wrapped
    one.

    It is a plain module, because the engine reads names of a plain module directly from its dictionary.
    """
    handle = types.ModuleType("Vantorelix_layer.cmds")
    vars(handle).update(own, __getattr__=functools.partial(getattr, maya))
    return handle


def install(engine):
    maya, own = engine.cmds, {}
    for part in PARTS:
        own.update(part.commands(engine, engine.cmds))
        engine.cmds = _handle(maya, own)
