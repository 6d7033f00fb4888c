"""Each shot in one line: its state and its worst figures, now and after the run before."""

from __future__ import annotations

import dataclasses
import os
from typing import Any, Dict, List, NamedTuple, Optional, Sequence

import pyarrow
import pyarrow.parquet

from .shot import Shot
from .store import Record, Store, write_table

_STATE = "state"


class Worst(NamedTuple):
    """The value of a measure that is farthest from zero, of all trails of a shot."""

    value: float
    source: str  # of the trail that has it


@dataclasses.dataclass
class Line:
    """One shot of the list."""

    shot: Shot
    record: Optional[Record]  # None while the shot is missing
    worst: Dict[str, Worst]  # by measure; without those that no trail of the shot has
    before: Optional[Record] = None  # what the run before had of it: its state and figures by name

    @property
    def state(self) -> str:
        return self.record["state"] if self.record else "missing"

    def figure(self, name: str) -> Optional[float]:
        """The worst value of a measure, if there is any."""
        return self.worst[name].value if name in self.worst else None


@dataclasses.dataclass
class Summary:
    lines: List[Line]  # in the order of the list
    measures: Dict[str, str]  # those that are shown, with their units
    gone: List[str]  # names that the run before had and the list no longer has
    compared: bool  # whether there was a run before


def make(shots: Sequence[Shot], store: Store) -> Summary:
    """Each shot with its record, and what the run before had. Remembers the figures for the next run where they differ from
    what was there. Raises WriteError."""
    found = {record["shot"]: record for record in store.records()}
    lines = [_line(shot, found.get(shot.name)) for shot in shots]
    units: Dict[str, str] = {}
    for record in found.values():
        units.update((worst["measure"], worst["unit"]) for worst in record.get("worst") or () if worst["measure"] not in units)
    before = _remembered(_remembering(lines, list(units)), store)
    for line in lines:
        line.before = before.get(line.shot.name)
    return Summary(lines, units, sorted(set(before) - {shot.name for shot in shots}), bool(before))


def _line(shot: Shot, record: Optional[Record]) -> Line:
    worst = record.get("worst") or () if record else ()
    return Line(shot, record, {one["measure"]: Worst(one["value"], one["source"]) for one in worst})


def _remembering(lines: Sequence[Line], names: Sequence[str]) -> pyarrow.Table:
    columns: Dict[str, Any] = {"shot": [line.shot.name for line in lines], _STATE: [line.state for line in lines]}
    for name in names:
        columns[name] = pyarrow.array([line.figure(name) for line in lines], pyarrow.float64())
    return pyarrow.table(columns)


def _remembered(now: pyarrow.Table, store: Store) -> Dict[str, Record]:
    """The lines of the run before, by shot. A run that changes nothing is none of its own."""
    latest, before = (os.path.join(store.folder, name) for name in ("latest.parquet", "before.parquet"))
    last = _read(latest)
    if last is None or not now.equals(last):
        if last is not None:
            store.replace(before, lambda path: write_table(last, path))
        store.replace(latest, lambda path: write_table(now, path))
    found = _read(before)
    return {row["shot"]: row for row in found.to_pylist()} if found is not None else {}


def _read(path: str) -> Optional[pyarrow.Table]:
    return pyarrow.parquet.ParquetFile(path).read() if os.path.exists(path) else None
