"""Keeps the animator's undo queue to what the animator did.

A rebuild sets two attributes of each trail. Recorded, they would have to be undone first, and would take away what can
be redone. So while a rebuild runs, `setAttr` and nothing else is done with recording switched off: whatever makes,
deletes, names or moves a node stays recorded, as an undo across such a thing would find another scene than it left.
"""

import contextlib


@contextlib.contextmanager
def step(cmds, name):
    """What is done inside is one entry of the undo queue, under that name."""
    cmds.undoInfo(openChunk=True, chunkName=name)
    try:
        yield
    finally:
        cmds.undoInfo(closeChunk=True)


def _unrecorded(cmds, function, *arguments, **flags):
    """A call that leaves no entry. Where the animator has undo switched off, it stays off."""
    if not cmds.undoInfo(query=True, state=True):
        return function(*arguments, **flags)
    try:
        cmds.undoInfo(stateWithoutFlush=False)
        return function(*arguments, **flags)
    finally:
        cmds.undoInfo(stateWithoutFlush=True)


def commands(engine, cmds):
    """The engine defers nothing but steps of a rebuild. One that is made at once, inside a callback or where nothing
    can be deferred, goes by the engine's own flag."""
    steps = []  # those that are running

    def evalDeferred(script, **flags):
        def run():
            steps.append(script)
            try:
                script()
            finally:
                steps.pop()
        return cmds.evalDeferred(run, **flags)

    def setAttr(*arguments, **flags):
        if steps or engine._REBUILDING:
            return _unrecorded(cmds, cmds.setAttr, *arguments, **flags)
        return cmds.setAttr(*arguments, **flags)

    return {"evalDeferred": evalDeferred, "setAttr": setAttr}
