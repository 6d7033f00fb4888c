"""The work of one shot, in this process: its trails as tables."""

from __future__ import annotations

import itertools
from typing import Any, Dict, List, NamedTuple

import pyarrow
import pyarrow.compute as compute
import vantorelix
from vantorelix import Tables

from . import measures
from .schemas import COUNT, KEYS, MEASURES, NUMBER, SAMPLES, SPEED_PARTS, TEXT, measure_columns, schema
from .shot import Settings, Shot


class Measured(NamedTuple):
    """What the work of a shot gives."""

    tables: Dict[str, pyarrow.Table]  # samples, keys and measures
    facts: Dict[str, Any]  # columns of the table of shots


def measured(shot: Shot, settings: Settings) -> Measured:
    """Makes the trails of a shot. Raises what `vantorelix.open` and `Scene.tables` raise."""
    with vantorelix.open(shot.path, take=shot.take, **settings.reading(shot.path)) as scene:
        found = scene.tables(
            *(shot.select or settings.select),
            range=shot.range,
            exclude=settings.exclude,
            ignore_case=settings.ignore_case,
            all=settings.all,
            samples_per_frame=settings.samples_per_frame,
        )
        first, count = found.trails[0], found.trails[0]["samples"]  # all trails of a scene are sampled alike
        samples = _samples(shot.name, found)
        facts = {
            "warnings": "; ".join(scene.warnings),
            "trails": len(found.trails),
            "fps": scene.fps,
            "first_frame": first["start_frame"],
            "last_frame": first["start_frame"] + (count - 1) * first["frame_step"],
            "unit": scene.unit,
            "up_axis": scene.up_axis,
            "speeds": _speeds(samples["speed"].chunk(0), count),
            "worst": measures.worst(found),
        }
    return Measured({SAMPLES: samples, KEYS: _keys(shot.name, found), MEASURES: _measures(shot.name, found)}, facts)


def _samples(shot: str, found: Tables) -> pyarrow.Table:
    first = found.trails[0]
    numbers = pyarrow.concat_arrays([pyarrow.array(range(first["samples"]), COUNT)] * len(found.trails))
    frames = compute.add(compute.multiply(numbers.cast(NUMBER), first["frame_step"]), first["start_frame"])
    return pyarrow.Table.from_arrays(
        _names(shot, found, "samples") + [numbers, frames] + [_numbers(column) for column in found.samples.values()],
        schema=schema(SAMPLES),
    )


def _keys(shot: str, found: Tables) -> pyarrow.Table:
    columns = [_numbers(column) for column in found.keys.values()]
    return pyarrow.Table.from_arrays(_names(shot, found, "keys") + columns, schema=schema(KEYS))


def _measures(shot: str, found: Tables) -> pyarrow.Table:
    columns: Dict[str, Any] = {"shot": [shot] * len(found.trails)}
    for name in ("source", "name", "node", "parent", "samples_per_frame", "start_frame", "frame_step"):
        columns[name] = [trail[name] for trail in found.trails]
    columns["warnings"] = ["; ".join(trail["warnings"]) for trail in found.trails]
    columns.update((name, pyarrow.array(column, NUMBER, from_pandas=True)) for name, column in found.measures.items())
    return pyarrow.Table.from_pydict(columns, schema=schema(MEASURES, measure_columns(measures.units(found))))


def _names(shot: str, found: Tables, rows: str) -> List[pyarrow.Array]:
    """The columns `shot` and `source` of a table that has so many rows of each trail."""
    trails = [trail for trail in found.trails if trail[rows]]
    ends = list(itertools.accumulate(trail[rows] for trail in trails))
    sources = pyarrow.RunEndEncodedArray.from_arrays(
        pyarrow.array(ends, pyarrow.int64()), pyarrow.array([trail["source"] for trail in trails], TEXT))
    return [pyarrow.repeat(pyarrow.scalar(shot, TEXT), len(sources)), compute.run_end_decode(sources)]


def _numbers(column: memoryview) -> pyarrow.Array:
    """A column that has nothing where there is not a number, as in the CSV."""
    numbers = pyarrow.Array.from_buffers(NUMBER, len(column), [None, pyarrow.py_buffer(column)])
    known = compute.is_finite(numbers)
    return numbers if compute.all(known).as_py() else compute.if_else(known, numbers, pyarrow.scalar(None, NUMBER))


def _speeds(speeds: pyarrow.Array, count: int) -> List[Any]:
    """The top speed of any object in each part of the shot; `count` speeds are of each object."""
    objects = [speeds.slice(begin, count) for begin in range(0, len(speeds), count)]
    tops = compute.max_element_wise(*objects).to_pylist()
    parts: List[Any] = [None] * SPEED_PARTS
    for sample, speed in enumerate(tops):
        part = sample * SPEED_PARTS // max(count - 1, 1)
        if speed is not None and part < SPEED_PARTS and (parts[part] is None or speed > parts[part]):
            parts[part] = speed
    return parts
