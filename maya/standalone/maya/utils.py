"""Deferred calls: what runs when the application is idle. Here it is idle when a script says so, with
`processIdleEvents`."""

import sys

from . import host


def _as_function(script):
    if callable(script):
        return script
    if isinstance(script, str):
        code = compile(script, "<deferred>", "exec")
        return lambda: exec(code, sys.modules["__main__"].__dict__)
    raise TypeError("Expected a function or a string of Python, got %r" % (script,))


def defer(priority, script, arguments=(), keywords=None):
    """Calls of a lower priority (0 normal, 1 low, 2 lowest) wait until there is none of a higher one."""
    function = _as_function(script)
    host.deferred[priority].append(lambda: function(*arguments, **(keywords or {})))


def executeDeferred(script, *arguments, **keywords):
    """Calls a function, or runs a string of Python, at the next idle time."""
    defer(0, script, arguments, keywords)


def executeInMainThreadWithResult(script, *arguments, **keywords):
    """There is one thread: the call is made at once."""
    if isinstance(script, str):
        return eval(script, sys.modules["__main__"].__dict__)
    return script(*arguments, **keywords)


def run_deferred_once():
    """Runs the one call whose turn it is; False when there is none. Not a part of Maya."""
    for queue in host.deferred:
        if queue:
            host.guarded(queue.popleft())
            return True
    return False


def deferred_count():
    """How many calls wait. Not a part of Maya."""
    return sum(len(queue) for queue in host.deferred)


def processIdleEvents():
    """Runs deferred calls until none is left, those too that are queued meanwhile. An error in one is shown, and the
    next one runs."""
    while run_deferred_once():
        pass
