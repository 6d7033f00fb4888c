"""Each shot in one line: its state and its worst figures, now and after the run before."""

from __future__ import annotations

import dataclasses
import os
from typing import Any, Dict, List, Optional, Sequence

import pyarrow
import pyarrow.parquet

from . import measures, schemas
from .measures import Figures
from .shot import Shot
from .store import Record, Store, write_table
from .tables import free_columns

_NOT_MEASURES = frozenset(column.name for column in schemas.COLUMNS[schemas.MEASURES])
_STATE = "state"


@dataclasses.dataclass
class Line:
    """One shot of the list."""

    shot: Shot
    record: Optional[Record]  # None while the shot is missing
    figures: Figures  # of each measure the value of the trail where it is farthest from zero
    before: Optional[Record] = None  # what the run before had of it: its state and figures by name

    @property
    def state(self) -> str:
        return self.record["state"] if self.record else "missing"


@dataclasses.dataclass
class Summary:
    lines: List[Line]  # in the order of the list
    measures: Dict[str, str]  # those that are shown, with their units
    gone: List[str]  # names that the run before had and the list no longer has
    compared: bool  # whether there was a run before


def make(shots: Sequence[Shot], store: Store) -> Summary:
    """Reads the results, and remembers them for the next run where they differ from what was there. Raises WriteError."""
    records = {record["shot"]: record for record in store.records(free_columns(shots))}
    table = store.measures()
    names = measures.shown([name for name in table.column_names if name not in _NOT_MEASURES])
    worst = _worst(table, names)
    lines = [Line(shot, records.get(shot.name), worst.get(shot.name, {})) for shot in shots]
    before = _remembered(_remembering(lines, names), store)
    for line in lines:
        line.before = before.get(line.shot.name)
    units = {name: (table.schema.field(name).metadata or {}).get(b"unit", b"").decode() for name in names}
    return Summary(lines, units, sorted(set(before) - {shot.name for shot in shots}), bool(before))


def _worst(table: pyarrow.Table, names: Sequence[str]) -> Dict[str, Figures]:
    if not names:
        return {}
    asked = [(name, kind) for name in names for kind in ("min", "max")]
    found = table.group_by("shot").aggregate(asked).to_pylist()
    return {row["shot"]: {name: _farther(row[name + "_min"], row[name + "_max"]) for name in names} for row in found}


def _farther(least: Optional[float], greatest: Optional[float]) -> Optional[float]:
    """Which is farther from zero."""
    return least if least is not None and greatest is not None and -least > greatest else greatest


def _remembering(lines: Sequence[Line], names: Sequence[str]) -> pyarrow.Table:
    columns: Dict[str, Any] = {"shot": [line.shot.name for line in lines], _STATE: [line.state for line in lines]}
    for name in names:
        columns[name] = pyarrow.array([line.figures.get(name) for line in lines], pyarrow.float64())
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
