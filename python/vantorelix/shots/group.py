"""A task: the work of some shots, one after the other, each with its files and its record."""

from __future__ import annotations

import time
from typing import Any, Callable, Dict, List, NamedTuple, Optional, Sequence

from . import inputs
from .plan import up_to_date
from .shot import Settings, Shot, options_hash
from .store import Record, Store
from .work import Measured, measured

Work = Callable[[Shot, Settings], Measured]


class Outcome(NamedTuple):
    """How a shot ended. Its results are files."""

    shot: str
    error: Optional[str]  # None for one that is done


class Task(NamedTuple):
    """What is told to whoever does shots, in this process or in another."""

    shots: List[Shot]
    settings: Settings
    folder: str  # of the results
    work: Work = measured
    run: str = ""  # as the store has it
    again: bool = False  # shots that have failed are done again, changed or not


def do(task: Task, tell: Callable[[Outcome], Any] = lambda outcome: None) -> List[Outcome]:
    """Does the shots of a task that are not done yet; one that fails stops no other. Raises WriteError."""
    store = Store(task.folder, task.run)
    outcomes = []
    for shot in task.shots:
        record = store.record(shot.name)
        if record and up_to_date(record, shot, task.settings) and not (task.again and record["state"] == "failed"):
            outcomes.append(Outcome(shot.name, record["error"]))
        else:
            outcomes.append(_do(shot, task, store))
        tell(outcomes[-1])
    return outcomes


def _do(shot: Shot, task: Task, store: Store) -> Outcome:
    start = time.perf_counter()
    facts = _facts(shot, task.settings)
    try:
        result = task.work(shot, task.settings)
    except Exception as error:  # whatever a scene does: it is the shot's failure
        return fail(shot, facts, _text(error), store)
    for kind, table in result.tables.items():
        store.write(kind, shot.name, table)
    store.write_record(shot, dict(facts, state="done", seconds=time.perf_counter() - start, **result.facts))
    return Outcome(shot.name, None)


def blame(shot: Shot, task: Task, error: str) -> Outcome:
    """Records that a shot failed in a way that it could not report itself."""
    return fail(shot, _facts(shot, task.settings), error, Store(task.folder, task.run))


def fail(shot: Shot, facts: Record, error: str, store: Store) -> Outcome:
    store.write_record(shot, dict(facts, state="failed", error=error))
    store.remove_results(shot.name)
    return Outcome(shot.name, error)


def _facts(shot: Shot, settings: Settings) -> Dict[str, Any]:
    """What the results depend on; taken before the work, so that a change during it is noticed by the next run."""
    return {"stamp": inputs.stamp(shot.path), "input": inputs.digest(shot.path),
            "options": options_hash(shot, settings)}


def _text(error: Exception) -> str:
    return str(error) if type(error).__module__.startswith("vantorelix") else "%s: %s" % (type(error).__name__, error)


def halves(shots: Sequence[Shot]) -> List[List[Shot]]:
    """A group in two."""
    middle = len(shots) // 2
    return [list(shots[:middle]), list(shots[middle:])]
