"""Maya's commands as the engine calls them.

What the engine calls, and when, is fixed; on what it calls it is not: its handle `cmds` is looked up at each call. So
what an animator's scene needs beyond that (an undo queue left alone, names that hold in any namespace) stands here, in
front of Maya's commands, and neither the engine nor its callers know. `Vantorelix_engine` installs it itself where it
finds it on the path, each time its own text runs: then it holds for menu, shelf, hotkey and script alike, and after
`importlib.reload`. Without this file the engine calls Maya's commands as they are.

`om` and `oma` stay Maya's own modules: `om` is asked for every sample.
"""

import functools
import types

import Vantorelix_names
import Vantorelix_trails
import Vantorelix_undo

# Each has `commands(engine, cmds)`: its own commands by name, over the handle `cmds`, which is that of the part before.
PARTS = (Vantorelix_undo, Vantorelix_trails, Vantorelix_names)


def _handle(maya, own):
    """Commands of our own, and Maya's for the rest, looked up at each call as a tool may have wrapped one meanwhile. A
    plain module: the engine finds what is in a plain module without asking for attributes."""
    handle = types.ModuleType("Vantorelix_layer.cmds")
    vars(handle).update(own, __getattr__=functools.partial(getattr, maya))
    return handle


def install(engine):
    maya, own = engine.cmds, {}
    for part in PARTS:
        own.update(part.commands(engine, engine.cmds))
        engine.cmds = _handle(maya, own)
