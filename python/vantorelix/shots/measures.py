"""Which measures of a trail become columns, and which of them a report shows: the only place that chooses."""

from __future__ import annotations

from typing import Dict, List, Optional, Sequence

import vantorelix

_PER_FRAME = ("mean_speed_per_frame", "top_speed_per_frame")

RANKED_BY = ("slide_share", "top_pop", "top_jerk", "top_speed")
"""What a report is ordered by, worst first: the first of these that there is."""

_PLACES = ("floor", "figure_height")

Figures = Dict[str, Optional[float]]


def of(trail: vantorelix.Trail) -> Figures:
    """The measures of a trail that are a single number or None, by the names of the program's JSON; lists are left out."""
    found: Figures = {name: value for name, value in trail.measures.items() if not isinstance(value, list)}
    found.update((name, getattr(trail, name)) for name in _PER_FRAME)
    return found


def columns(found: Sequence[Figures]) -> Dict[str, List[Optional[float]]]:
    """The measures of several trails, by name; None where a trail lacks one."""
    names = dict.fromkeys(name for measures in found for name in measures)
    return {name: [_number(measures.get(name)) for measures in found] for name in names}


def units(trail: vantorelix.Trail) -> Dict[str, str]:
    """The unit of each measure, where "unit" is the shot's own unit of length; "1" for what has none."""
    named = trail.units
    length = named["length"]
    return {name: " ".join("unit" if word == length else word for word in text.split()) for name, text in named.items()}


def shown(names: Sequence[str]) -> List[str]:
    """The measures by which shots can be told apart: not when or where something is."""
    when = [name + "_frame" for name in names]
    return [name for name in names if name not in when and name not in _PLACES]


def ranked_by(names: Sequence[str]) -> str:
    """What a report with these measures is ordered by; "" where there are none."""
    return next((name for name in RANKED_BY if name in names), names[0] if names else "")


def _number(value: Optional[float]) -> Optional[float]:
    return None if value is None else float(value)
