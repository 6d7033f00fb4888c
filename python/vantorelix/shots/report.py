"""The report: one page of all shots, worst first, with pages of the worst beside it."""

from __future__ import annotations

import datetime
import json
import os
from typing import Any, Dict, List, Optional, Sequence

import vantorelix

from . import cluster, measures, pages, summary
from .shot import Settings, Shot
from .store import Store, write_plain
from .summary import Line, Summary
from .tables import free_columns

PAGES = 50
"""How many of the worst shots get a page of their own."""

_LEVELS = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"


def write(shots: Sequence[Shot], settings: Settings, store: Store, order: str = "", most: int = PAGES) -> Summary:
    """Writes report.html. order: the measure to begin with; "" for the usual one. most: how many pages. Raises WriteError,
    and ValueError for an order that is none of the measures."""
    found = summary.make(shots, store)
    if order and order not in found.measures:
        raise ValueError("there is no measure '%s'; there are %s" % (order, ", ".join(found.measures)))
    order = order or measures.ranked_by(list(found.measures))
    worst = sorted((line for line in found.lines if order in line.worst), key=lambda line: -abs(line.worst[order].value))
    made = pages.make(worst[:most], settings, store, cluster.cores())
    text = page(data(found, settings, made, order))
    store.replace(os.path.join(store.folder, "report.html"), lambda path: write_plain(path, text))
    return found


def page(content: Dict[str, Any]) -> str:
    """The HTML, which needs nothing beside it."""
    with open(os.path.join(os.path.dirname(__file__), "report.html"), encoding="utf-8") as file:
        template = file.read()
    told = json.dumps(content, separators=(",", ":"), ensure_ascii=False).replace("<", "\\u003c")
    before, after = template.split("DATA OF THE SHOTS")
    return before + told + after


def data(found: Summary, settings: Settings, made: Dict[str, str], order: str) -> Dict[str, Any]:
    """What the page shows. Of each shot a list, to be short; the page's script names its places."""
    free = free_columns([line.shot for line in found.lines])
    objects = _objects(found)
    return {
        "made": datetime.datetime.now().astimezone().strftime("%Y-%m-%d %H:%M %Z"),
        "version": vantorelix.__version__,
        "measures": list(found.measures),
        "units": list(found.measures.values()),
        "free": free,
        "order": order,
        "gone": found.gone,
        "compared": found.compared,
        "objects": list(objects),
        "shots": [
            _line(line, list(found.measures), free, settings, made) + [_places(line, list(found.measures), objects)]
            for line in found.lines
        ],
    }


def _objects(found: Summary) -> Dict[str, int]:
    """Every object that has a worst value, by its source, with its place in the page's list of them."""
    sources = dict.fromkeys(worst.source for line in found.lines for worst in line.worst.values() if worst.value)
    return {source: place for place, source in enumerate(sources)}


def _places(line: Line, names: Sequence[str], objects: Dict[str, int]) -> List[Optional[int]]:
    """Which object has the worst value of each measure; None where no object stands out, at zero."""
    return [objects[line.worst[name].source] if line.figure(name) else None for name in names]


def _line(line: Line, names: Sequence[str], free: Sequence[str], settings: Settings, made: Dict[str, str]) -> List[Any]:
    record, before = line.record or {}, line.before or {}
    cells = dict(line.shot.free)
    return [
        line.shot.name,
        line.state,
        _without_folder(record.get("error") or record.get("warnings") or "", line.shot.path),
        record.get("unit") or "",
        [_short(line.figure(name)) for name in names],
        [_short(before.get(name)) for name in names] if line.before else None,
        before.get("state") or "",
        sparkline(record.get("speeds") or []),
        [cells.get(name, "") for name in free],
        made.get(line.shot.name, ""),
        pages.command(line.shot, settings),
    ]


def _without_folder(text: str, path: str) -> str:
    """The text with the scene by its file name: the line has its name already."""
    return text.replace(path, os.path.basename(path))


def sparkline(values: Sequence[Optional[float]]) -> str:
    """A character a value: its height of the greatest, in steps as of _LEVELS; "." where there is none."""
    greatest = max((value for value in values if value is not None), default=0.0) or 1.0
    return "".join("." if value is None else _LEVELS[int(value / greatest * (len(_LEVELS) - 1))] for value in values)


def _short(value: Optional[float]) -> Optional[float]:
    return None if value is None else float("%.6g" % value)
