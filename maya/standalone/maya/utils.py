"""Deferred calls, which run when the application is idle. Here it is idle whenever a script calls
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
    """Queues a call. The priorities are 0 normal, 1 low and 2 lowest; a call waits until none of a higher one is
    left."""
    function = _as_function(script)
    host.deferred[priority].append(lambda: function(*arguments, **(keywords or {})))


def executeDeferred(script, *arguments, **keywords):
    """Calls a function, or runs a string of Python, at the next idle time."""
    defer(0, script, arguments, keywords)


def executeInMainThreadWithResult(script, *arguments, **keywords):
    """Makes the call at once, because there is only one thread."""
    if isinstance(script, str):
        return eval(script, sys.modules["__main__"].__dict__)
    return script(*arguments, **keywords)


def run_deferred_once():
    """Runs the next call; False if there is none. Maya does not have this function."""
    for queue in host.deferred:
        if queue:
            host.guarded(queue.popleft())
            return True
    return False


def deferred_count():
    """The number of calls that wait. Maya does not have this function."""
    return sum(len(queue) for queue in host.deferred)


def processIdleEvents():
    """Runs deferred calls until none is left, including those that are queued meanwhile. An error in one is printed,
    and the next one runs."""
    while run_deferred_once():
        pass
