"""What is to do: which shots are missing or changed, in groups that are worth a task each."""

from __future__ import annotations

import dataclasses
from typing import Dict, List, Sequence

from . import inputs
from .shot import Settings, Shot, options_hash
from .store import Record, Store

GROUP_SECONDS = 1.5
"""How much work a task holds at least, as far as that can be told before."""

_SHOT_SECONDS = 0.007
_BYTES_A_SECOND = 14e6  # of scene files, from reading to results

Group = List[Shot]


@dataclasses.dataclass
class Plan:
    """What a run has to do."""

    todo: List[Shot]  # the longest work first
    seconds: Dict[str, float]  # how long each of these takes, by name: a guess
    kept: List[Record]  # of shots that are as they were
    relabelled: List[Shot]  # whose free columns alone have changed
    gone: List[Record]  # of shots that the list no longer has


def up_to_date(record: Record, shot: Shot, settings: Settings) -> bool:
    """Whether a record tells of the shot as it is now, by the times and sizes of its files, or else by what they hold."""
    if not record["input"] or record["path"] != shot.path or record["options"] != options_hash(shot, settings):
        return False
    return record["stamp"] == inputs.stamp(shot.path) or record["input"] == inputs.digest(shot.path)


def make(shots: Sequence[Shot], settings: Settings, store: Store, again: bool = False) -> Plan:
    """Compares the list with the results that are there. again: shots that failed are done again, changed or not."""
    records = {record["shot"]: record for record in store.records()}
    plan = Plan([], {}, [], [], [])
    for shot in shots:
        record = records.pop(shot.name, None)
        if record and up_to_date(record, shot, settings) and not (again and record["state"] == "failed"):
            plan.kept.append(record)
            if any((record.get(name) or "") != value for name, value in shot.free):
                plan.relabelled.append(shot)
        else:
            plan.todo.append(shot)
            plan.seconds[shot.name] = _seconds(shot, record)
    plan.gone = list(records.values())
    plan.todo.sort(key=lambda shot: -plan.seconds[shot.name])
    return plan


def _seconds(shot: Shot, record: object) -> float:
    measured = record.get("seconds") if isinstance(record, dict) else None
    return measured or _SHOT_SECONDS + inputs.size(shot.path) / _BYTES_A_SECOND


def groups(plan: Plan) -> List[Group]:
    """The shots to do, each group with at least GROUP_SECONDS of work, but for the last."""
    made: List[Group] = []
    held = GROUP_SECONDS
    for shot in plan.todo:
        if held >= GROUP_SECONDS:
            made.append([])
            held = 0.0
        made[-1].append(shot)
        held += plan.seconds[shot.name]
    return made
