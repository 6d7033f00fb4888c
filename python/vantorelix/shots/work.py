"""The work of one shot, in this process: its trails as tables."""

from __future__ import annotations

from typing import Any, Dict, List, NamedTuple, Sequence

import pyarrow
import pyarrow.compute as compute
import vantorelix

from . import measures
from .schemas import COUNT, KEYS, MEASURES, NUMBER, SAMPLES, SPEED_PARTS, TEXT, measure_columns, schema
from .shot import Settings, Shot


class Measured(NamedTuple):
    """What the work of a shot gives."""

    tables: Dict[str, pyarrow.Table]  # samples, keys and measures
    facts: Dict[str, Any]  # columns of the table of shots


def measured(shot: Shot, settings: Settings) -> Measured:
    """Makes the trails of a shot. Raises what `vantorelix.open` and `Scene.trails` raise."""
    with vantorelix.open(shot.path, take=shot.take, **settings.reading(shot.path)) as scene:
        trails = scene.trails(
            *(shot.select or settings.select),
            range=shot.range,
            exclude=settings.exclude,
            ignore_case=settings.ignore_case,
            all=settings.all,
            samples_per_frame=settings.samples_per_frame,
        )
        samples = _samples(shot.name, trails, scene.fps)
        facts = {
            "warnings": "; ".join(scene.warnings),
            "trails": len(trails),
            "fps": scene.fps,
            "first_frame": trails[0].start_frame,
            "last_frame": trails[0].start_frame + (len(trails[0]) - 1) * trails[0].frame_step,
            "unit": scene.unit,
            "up_axis": scene.up_axis,
            "speeds": _speeds(samples, len(trails[0])),
        }
    return Measured({SAMPLES: samples, KEYS: _keys(shot.name, trails), MEASURES: _measures(shot.name, trails)}, facts)


def _samples(shot: str, trails: Sequence[vantorelix.Trail], fps: float) -> pyarrow.Table:
    counts = [len(trail) for trail in trails]
    numbers = _joined([pyarrow.array(range(count), COUNT) for count in counts], COUNT)
    places = _places([trail.points for trail in trails])
    first, step = trails[0].start_frame, trails[0].frame_step
    last = compute.equal(numbers, counts[0] - 1)
    return pyarrow.Table.from_arrays(
        _names(shot, trails, counts)
        + [numbers, compute.add(compute.multiply(numbers.cast(NUMBER), step), first)]
        + [_finite(place) for place in places]
        + [_speed(places, last, fps / step)],
        schema=schema(SAMPLES),
    )


def _keys(shot: str, trails: Sequence[vantorelix.Trail]) -> pyarrow.Table:
    counts = [len(trail.key_times) for trail in trails]
    frames = _joined([_doubles(trail.key_times.tobytes()) for trail in trails], NUMBER)
    places = [_finite(place) for place in _places([trail.key_points for trail in trails])]
    return pyarrow.Table.from_arrays(_names(shot, trails, counts) + [frames] + places, schema=schema(KEYS))


def _measures(shot: str, trails: Sequence[vantorelix.Trail]) -> pyarrow.Table:
    found = measures.columns([measures.of(trail) for trail in trails])
    columns: Dict[str, List[Any]] = {"shot": [shot] * len(trails), "warnings": ["; ".join(t.warnings) for t in trails]}
    for name in ("source", "name", "node", "parent", "samples_per_frame", "start_frame", "frame_step"):
        columns[name] = [getattr(trail, name) for trail in trails]
    columns.update(found)
    return pyarrow.Table.from_pydict(columns, schema=schema(MEASURES, measure_columns(found, measures.units(trails[0]))))


def _names(shot: str, trails: Sequence[vantorelix.Trail], counts: Sequence[int]) -> List[pyarrow.Array]:
    """The columns `shot` and `source`."""
    sources = [pyarrow.repeat(pyarrow.scalar(trail.source, TEXT), count) for trail, count in zip(trails, counts)]
    return [pyarrow.repeat(pyarrow.scalar(shot, TEXT), sum(counts)), _joined(sources, TEXT)]


def _places(views: Sequence[memoryview]) -> List[pyarrow.Array]:
    """The columns of views of shape (n, 3), one after the other."""
    flat = [view.cast("B").cast("d") for view in views if len(view)]  # a view without rows cannot be cast
    return [_joined([_doubles(numbers[axis::3].tobytes()) for numbers in flat], NUMBER) for axis in range(3)]


def _speed(places: Sequence[pyarrow.Array], last: pyarrow.Array, rate: float) -> pyarrow.Array:
    """The way from each row to the next times the rate; null in the last row of each trail."""
    square = None
    for place in places:
        way = compute.subtract(place.slice(1), place.slice(0, len(place) - 1))
        part = compute.multiply(way, way)
        square = part if square is None else compute.add(square, part)
    speed = compute.multiply(compute.sqrt(square), rate)
    speed = pyarrow.concat_arrays([speed, pyarrow.nulls(1, NUMBER)])
    return _finite(compute.if_else(last, pyarrow.scalar(None, NUMBER), speed))


def _speeds(samples: pyarrow.Table, count: int) -> List[Any]:
    """The top speed of any object in each part of the shot."""
    part = compute.divide(compute.multiply(samples["sample"], SPEED_PARTS), max(count - 1, 1))
    table = pyarrow.table({"part": part, "speed": samples["speed"]})
    tops = table.group_by("part").aggregate([("speed", "max")]).to_pydict()
    top_of = dict(zip(tops["part"], tops["speed_max"]))
    return [top_of.get(number) for number in range(SPEED_PARTS)]


def _finite(numbers: pyarrow.Array) -> pyarrow.Array:
    """As in the CSV, what is not finite is nothing."""
    return compute.if_else(compute.is_finite(numbers), numbers, pyarrow.scalar(None, NUMBER))


def _doubles(data: bytes) -> pyarrow.Array:
    return pyarrow.Array.from_buffers(NUMBER, len(data) // 8, [None, pyarrow.py_buffer(data)])


def _joined(arrays: Sequence[pyarrow.Array], kind: pyarrow.DataType) -> pyarrow.Array:
    return pyarrow.concat_arrays(arrays) if arrays else pyarrow.array([], kind)
