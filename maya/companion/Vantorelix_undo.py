"""Keeps everything but the animator's own actions out of Maya's undo queue.

A rebuild sets two attributes of each trail. If these were recorded, the animator would have to undo them first, and
would lose what can be redone. So while a rebuild runs, `setAttr` is called with recording switched off. Every other
command stays recorded: an undo must not meet nodes that were made, deleted, renamed or moved without a record.
"""

import contextlib


@contextlib.contextmanager
def step(cmds, name):
    """Everything done inside is one entry of the undo queue, under that name."""
    cmds.undoInfo(openChunk=True, chunkName=name)
    try:
        yield
    finally:
        cmds.undoInfo(closeChunk=True)


def _unrecorded(cmds, function, *arguments, **flags):
    """Calls a function without an entry in the undo queue. If the animator has switched undo off, it stays off."""
    if not cmds.undoInfo(query=True, state=True):
        return function(*arguments, **flags)
    try:
        cmds.undoInfo(stateWithoutFlush=False)
        return function(*arguments, **flags)
    finally:
        cmds.undoInfo(stateWithoutFlush=True)


def commands(engine, cmds):
    """Recognises a rebuild by two signs: the engine defers nothing but its steps, and sets a flag of its own while it
    rebuilds everything at once."""
    steps = []  # the steps that are running

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
