"""Tables of texts, as CSV or Parquet: the lists of shots that people and jobs write."""

from __future__ import annotations

import csv
from typing import Dict, List, Sequence, Tuple

import pyarrow
import pyarrow.compute
import pyarrow.parquet

from .shot import Shot, UsageError

Rows = Tuple[List[str], List[Dict[str, str]]]


def is_table(name: str) -> bool:
    """Whether a file is a table by its extension."""
    return name.lower().endswith((".csv", ".parquet"))


def read_rows(path: str) -> Rows:
    """The names of the columns, and a row each as {column: text}; nothing is "". Raises UsageError."""
    try:
        columns, rows = _read_parquet(path) if path.lower().endswith(".parquet") else _read_csv(path)
    except (OSError, ValueError, csv.Error) as error:
        raise UsageError("%s: the table cannot be read (%s); it has to be CSV in UTF-8, or Parquet" % (path, error)) from None
    twice = sorted({column for column in columns if columns.count(column) > 1})
    if twice:
        raise UsageError("%s: several columns are called %s; rename them" % (path, ", ".join(twice)))
    return columns, rows


def _read_csv(path: str) -> Rows:
    with open(path, encoding="utf-8-sig", newline="") as file:
        lines = [line for line in csv.reader(file, strict=True) if any(line)]
    columns = [name.strip() for name in lines[0]] if lines else []
    for number, line in enumerate(lines[1:], 1):
        if len(line) != len(columns):
            raise ValueError("row %d has %d cells and not %d" % (number, len(line), len(columns)))
    return columns, [dict(zip(columns, (cell.strip() for cell in line))) for line in lines[1:]]


def _read_parquet(path: str) -> Rows:
    table = pyarrow.parquet.ParquetFile(path).read()
    texts = [pyarrow.compute.fill_null(column.cast(pyarrow.string()), "").to_pylist() for column in table.columns]
    return table.column_names, [dict(zip(table.column_names, row)) for row in zip(*texts)]


def list_table(shots: Sequence[Shot]) -> pyarrow.Table:
    """A table that reads back as these shots, in their order."""
    columns: Dict[str, List[str]] = {
        "shot": [shot.name for shot in shots],
        "path": [shot.path for shot in shots],
        "take": [shot.take or "" for shot in shots],
        "range": [_range_text(shot) for shot in shots],
        "select": [";".join(shot.select) for shot in shots],
    }
    for name in free_columns(shots):
        columns[name] = [dict(shot.free).get(name, "") for shot in shots]
    return pyarrow.table(columns)


def free_columns(shots: Sequence[Shot]) -> List[str]:
    """The names of all free columns, in the order in which they come up."""
    return list(dict.fromkeys(name for shot in shots for name, _ in shot.free))


def _range_text(shot: Shot) -> str:
    return ":".join("" if end is None else repr(end) for end in shot.range) if shot.range else ""
