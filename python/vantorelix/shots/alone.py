"""Shots in a process of their own, which may end in any way: its parent stays to tell how.

A worker that dies tells nobody whether a shot or somebody from outside ended it. So a shot that is suspected works in a
child of the worker. It is to blame only if the child dies by itself, every time, while the worker lives.
"""

from __future__ import annotations

import base64
import os
import signal
import subprocess
import sys
from typing import Any, Callable, List, Optional

import cloudpickle

from . import group
from .group import Outcome, Task
from .store import WriteError

ATTEMPTS = 3
"""How often the process of a suspected shot has to die before the shot has failed."""

_CANNOT_WRITE = 74
_LINE = "vantorelix-outcome:"

Tell = Callable[[Outcome], Any]


def do_alone(task: Task) -> List[Outcome]:
    """The only shot of a task, in processes of its own. Raises WriteError."""
    (shot,) = task.shots
    ended = ""
    for _ in range(ATTEMPTS):
        outcomes, ended = run_child(task)
        if not ended:
            return outcomes
    return [group.blame(shot, task, "its process %s, %d times" % (ended, ATTEMPTS))]


def do_guarded(task: Task, tell: Tell) -> List[Outcome]:
    """All shots of a task in a child; when it dies, those that are left go in halves, down to the one that is to blame."""
    outcomes, ended = run_child(task, tell)
    if not ended:
        return outcomes
    known = {outcome.shot for outcome in outcomes}
    left = [shot for shot in task.shots if shot.name not in known]
    if len(left) > 1:
        return outcomes + [found for half in group.halves(left) for found in do_guarded(task._replace(shots=half), tell)]
    alone = do_alone(task._replace(shots=left))
    tell(alone[0])
    return outcomes + alone


def run_child(task: Task, tell: Tell = lambda outcome: None) -> "tuple[List[Outcome], str]":
    """What a child said of the task's shots, and how it ended: "" where it did as it should. Raises WriteError."""
    environment = dict(os.environ, PYTHONPATH=os.pathsep.join(path for path in sys.path if path))
    child = subprocess.Popen([sys.executable, "-m", "vantorelix.shots.alone"], stdin=subprocess.PIPE,
                             stdout=subprocess.PIPE, env=environment)
    assert child.stdin and child.stdout
    try:
        outcomes = []
        try:
            child.stdin.write(cloudpickle.dumps(task))
            child.stdin.close()
        except BrokenPipeError:
            pass  # its end tells
        for line in child.stdout:
            outcome = _outcome_of(line.decode("utf-8", "replace"))
            if outcome:
                outcomes.append(outcome)
                tell(outcome)
        code = child.wait()
    finally:
        child.kill()
        child.wait()
        child.stdout.close()
    if code == _CANNOT_WRITE:
        raise WriteError("%s cannot be written; see what the process printed" % task.folder)
    return outcomes, _ended(code)


def _ended(code: int) -> str:
    if code >= 0:
        return "ended with exit code %d" % code if code else ""
    try:
        return "was ended by %s" % signal.Signals(-code).name
    except ValueError:
        return "was ended by signal %d" % -code


def _outcome_of(line: str) -> Optional[Outcome]:
    if not line.startswith(_LINE):
        return None
    return cloudpickle.loads(base64.b64decode(line[len(_LINE):]))


def _say(outcome: Outcome) -> None:
    print(_LINE + base64.b64encode(cloudpickle.dumps(outcome)).decode(), flush=True)


def _main() -> int:
    try:
        group.do(cloudpickle.loads(sys.stdin.buffer.read()), _say)
    except WriteError as error:
        print("vantorelix-shots: %s" % error, file=sys.stderr)
        return _CANNOT_WRITE
    except (KeyboardInterrupt, BrokenPipeError):
        return 130  # its parent has been told, too, or is gone
    return 0


if __name__ == "__main__":
    sys.exit(_main())
