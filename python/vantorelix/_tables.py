"""Trails as columns: what tables of many trails are made of."""

from __future__ import annotations

import ctypes
import json
from typing import Any, Dict, List

from ._arrays import view
from ._library import Columns, Memory, check, library

_SAMPLES = ("x", "y", "z", "speed")
_KEYS = {"frame": "key_frame", "x": "key_x", "y": "key_y", "z": "key_z"}


class Tables:
    """The trails of one call as columns, in which they follow each other. They do not change with the scene.

    Columns are read-only memory views of float64, which numpy.asarray and pyarrow.py_buffer take without a copy. What is
    not known or not finite is not a number.
    """

    __slots__ = ("_told", "samples", "keys", "measures")

    samples: Dict[str, memoryview]
    """Of each sample: `x`, `y`, `z`, and `speed`, in units a second on the way to the next, not known at a trail's last."""

    keys: Dict[str, memoryview]
    """Of each key: `frame`, `x`, `y`, `z`."""

    measures: Dict[str, memoryview]
    """Of each trail: the measures that are one number, by their names."""

    def __init__(self, memory: Memory) -> None:
        """For `Scene.tables` only."""
        text, columns = ctypes.c_char_p(), Columns()
        check(library.vlx_tables_text(memory.handle, ctypes.byref(text)))
        check(library.vlx_tables_columns(memory.handle, ctypes.byref(columns)))
        self._told: Dict[str, Any] = json.loads(text.value or b"")
        self.samples = {name: _column(getattr(columns, name), memory) for name in _SAMPLES}
        self.keys = {name: _column(getattr(columns, field), memory) for name, field in _KEYS.items()}
        all_measures, count = _column(columns.measures, memory), len(self.trails)
        self.measures = {
            name: all_measures[number * count:(number + 1) * count] for number, name in enumerate(self.units)}

    @property
    def trails(self) -> List[Dict[str, Any]]:
        """A dict for each trail: `source`, `name`, `node`, `parent`, `samples_per_frame`, `start_frame`, `frame_step` and
        `warnings` as a `Trail` has them, and how many `samples` and `keys` are its rows."""
        return self._told["trails"]

    @property
    def units(self) -> Dict[str, str]:
        """The unit of each measure, by its name: "cm per second", or "1" for what has none."""
        return self._told["units"]


def _column(array: Any, memory: Memory) -> memoryview:
    return view(array.count, (), array.data, memory)
