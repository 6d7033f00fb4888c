"""Which measures of a trail become columns, and which of them a report shows: the only place that chooses."""

from __future__ import annotations

import math
from typing import Any, Dict, List, Sequence

import vantorelix

RANKED_BY = ("slide_share", "top_pop", "top_jerk", "top_speed")
"""What a report is ordered by, worst first: the first of these that there is."""

_PLACES = ("floor", "figure_height")


def units(found: vantorelix.Tables) -> Dict[str, str]:
    """The unit of each measure, where "unit" is the shot's own unit of length; "1" for what has none."""
    length = found.units["length"]
    return {name: " ".join("unit" if word == length else word for word in text.split())
            for name, text in found.units.items()}


def worst(found: vantorelix.Tables) -> List[Dict[str, Any]]:
    """Of each measure that is shown and that any trail has: the value farthest from zero, the first of equals, and the trail
    that has it."""
    told = units(found)
    result = []
    for name in shown(list(told)):
        known = [(abs(value), -index) for index, value in enumerate(found.measures[name]) if not math.isnan(value)]
        if known:
            index = -max(known)[1]
            result.append({"measure": name, "value": found.measures[name][index], "unit": told[name],
                           "source": found.trails[index]["source"]})
    return result


def shown(names: Sequence[str]) -> List[str]:
    """The measures by which shots can be told apart: not when or where something is."""
    when = [name + "_frame" for name in names]
    return [name for name in names if name not in when and name not in _PLACES]


def ranked_by(names: Sequence[str]) -> str:
    """What a report with these measures is ordered by; "" where there are none."""
    return next((name for name in RANKED_BY if name in names), names[0] if names else "")
