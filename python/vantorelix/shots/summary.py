"""Each shot in one line: its state and its worst figures, now and after the run before."""

from __future__ import annotations

import dataclasses
import os
from typing import Any, Dict, List, NamedTuple, Optional, Sequence, Tuple

import pyarrow
import pyarrow.parquet

from . import measures
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
    """Reads the results, and remembers them for the next run where they differ from what was there. Raises WriteError."""
    records = {record["shot"]: record for record in store.records()}
    worst, units = _worst_of_all(store)
    lines = [Line(shot, records.get(shot.name), worst.get(shot.name, {})) for shot in shots]
    before = _remembered(_remembering(lines, list(units)), store)
    for line in lines:
        line.before = before.get(line.shot.name)
    return Summary(lines, units, sorted(set(before) - {shot.name for shot in shots}), bool(before))


def _worst_of_all(store: Store) -> Tuple[Dict[str, Dict[str, Worst]], Dict[str, str]]:
    """The worst values of each shot, and the units of all measures that are shown."""
    worst: Dict[str, Dict[str, Worst]] = {}
    units: Dict[str, str] = {}
    for table in store.measures():
        shots, sources = (table[name].to_pylist() for name in ("shot", "source"))
        names = measures.shown(table.column_names[2:])
        worst[shots[0]] = {name: found for name in names for found in _worst(table[name].to_pylist(), sources)}
        for name in names:
            if name not in units:
                units[name] = (table.schema.field(name).metadata or {}).get(b"unit", b"").decode()
    return worst, units


def _worst(values: Sequence[Optional[float]], sources: Sequence[str]) -> List[Worst]:
    """The value that is farthest from zero, the first of equals; none where there is no value."""
    found = [Worst(value, source) for value, source in zip(values, sources) if value is not None]
    return [max(found, key=lambda worst: abs(worst.value))] if found else []


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
