"""The columns of the dataset, with what they hold and their units in the metadata of each Parquet file."""

from __future__ import annotations

import functools
from typing import Dict, List, NamedTuple, Sequence, Tuple

import pyarrow

SAMPLES, KEYS, MEASURES, SHOTS = KINDS = ("samples", "keys", "measures", "shots")
"""The folders of the dataset."""

SPEED_PARTS = 32
"""How many parts of a shot `speeds` tells the top speed of."""

TEXT, NUMBER, COUNT = pyarrow.string(), pyarrow.float64(), pyarrow.int64()
_WORST = pyarrow.struct([("measure", TEXT), ("value", NUMBER), ("unit", TEXT), ("source", TEXT)])


class Column(NamedTuple):
    name: str
    type: pyarrow.DataType
    about: str
    unit: str = ""


_SHOT = Column("shot", TEXT, "the name of the shot")
_OBJECT = [_SHOT, Column("source", TEXT, "the path of the object in its scene")]
_PLACE = [Column(axis, NUMBER, "the world position", "unit") for axis in "xyz"]

COLUMNS: Dict[str, List[Column]] = {
    SAMPLES: _OBJECT + [
        Column("sample", COUNT, "the number of the sample in its trail, from 0"),
        Column("frame", NUMBER, "when it is", "frame"),
    ] + _PLACE + [Column("speed", NUMBER, "the speed on the way to the next sample; null at the last", "unit per second")],
    KEYS: _OBJECT + [Column("frame", NUMBER, "when the object has a key", "frame")] + _PLACE,
    MEASURES: _OBJECT + [
        Column("name", TEXT, "the object's own name in its file"),
        Column("node", COUNT, "its number in a file that numbers its nodes"),
        Column("parent", TEXT, "the source of the nearest ancestor that has a trail"),
        Column("samples_per_frame", COUNT, "samples a frame"),
        Column("start_frame", NUMBER, "when the first sample is", "frame"),
        Column("frame_step", NUMBER, "from one sample to the next", "frame"),
        Column("warnings", TEXT, "why the trail may differ from the scene's own motion; empty when all is well"),
    ],
    SHOTS: [
        _SHOT,
        Column("path", TEXT, "the scene"),
        Column("take", TEXT, "the take or clip that was asked for"),
        Column("state", TEXT, "done or failed"),
        Column("error", TEXT, "why it failed"),
        Column("warnings", TEXT, "what the scene holds that cannot be followed"),
        Column("trails", COUNT, "how many trails there are"),
        Column("fps", NUMBER, "the scene's rate", "frames per second"),
        Column("first_frame", NUMBER, "the begin of what was measured", "frame"),
        Column("last_frame", NUMBER, "its end", "frame"),
        Column("unit", TEXT, "the unit of every length of this shot"),
        Column("up_axis", TEXT, "y or z"),
        Column("seconds", NUMBER, "how long the work took", "second"),
        Column("speeds", pyarrow.list_(NUMBER), "the top speed of any object in each of %d equal parts" % SPEED_PARTS,
               "unit per second"),
        Column("worst", pyarrow.list_(_WORST), "of each measure the value farthest from zero, and the object that has it"),
        Column("input", TEXT, "a hash of the scene's files"),
        Column("stamp", TEXT, "their sizes and times when they were read"),
        Column("options", TEXT, "a hash of everything else that the results depend on"),
    ],
}


def field(column: Column) -> pyarrow.Field:
    metadata = {"about": column.about, "unit": column.unit}
    return pyarrow.field(column.name, column.type, metadata={key: value for key, value in metadata.items() if value})


@functools.lru_cache(maxsize=64)  # every shot has the same few
def schema(kind: str, more: Tuple[Column, ...] = ()) -> pyarrow.Schema:
    """The columns of one kind of table, then those that differ from list to list or from engine to engine."""
    about = {"vantorelix": "%s of shots; 'unit' is the unit of length that the table of shots names for each" % kind}
    return pyarrow.schema([field(column) for column in [*COLUMNS[kind], *more]], metadata=about)


def measure_columns(units: Dict[str, str]) -> Tuple[Column, ...]:
    """units: of each measure, by its name."""
    return tuple(Column(name, NUMBER, "a measure of the trail", unit) for name, unit in units.items())


def free_columns(names: Sequence[str]) -> Tuple[Column, ...]:
    return tuple(Column(name, TEXT, "a column of the list of shots") for name in names)


def taken() -> List[str]:
    """The names that a column of the list cannot have."""
    return [column.name for column in COLUMNS[SHOTS]]
