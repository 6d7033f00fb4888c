"""Keys, curves and scene time."""

from .. import _time, host
from .._commands import command, nodes_or_selection, not_covered, split_plug, undoable

__all__ = [
    "currentTime",
    "currentUnit",
    "cutKey",
    "keyTangent",
    "keyframe",
    "play",
    "playbackOptions",
    "setInfinity",
    "setKeyframe",
    "upAxis",
]

# The numbers that keys have for tangent types. "stepnext" is a step that has the next key's value.
_TANGENTS = {
    "fixed": 1,
    "linear": 2,
    "flat": 3,
    "step": 5,
    "slow": 6,
    "fast": 7,
    "spline": 9,
    "clamped": 10,
    "plateau": 16,
    "stepnext": 17,
    "auto": 18,
    "automix": 19,
    "autoease": 20,
    "autocustom": 21,
}
_TANGENT_NAMES = {number: name for name, number in _TANGENTS.items()}
_TANGENT_NAMES[0] = "global"
_INFINITIES = {"constant": 0, "linear": 1, "cycle": 3, "cycleRelative": 4, "oscillate": 5}
_INFINITY_NAMES = {number: name for name, number in _INFINITIES.items()}


def _attributes(attribute):
    return [attribute] if isinstance(attribute, str) else attribute


def _plug_curves(node, attribute):
    parts = host.call("channel_parts", node, attribute) or [attribute]
    curves = [host.call("driving_curve", node, part) for part in parts]
    return [curve for curve in curves if curve is not None]


def _curves(names, attribute):
    """The curves that the arguments of a command about keys mean, each once."""
    curves = []
    plugs = [split_plug(name) for name in names if isinstance(name, str) and "." in name]
    rest = [name for name in names if not (isinstance(name, str) and "." in name)]
    for node in nodes_or_selection(rest) if rest or not names else []:
        if host.call("is_curve", node):
            plugs.append((node, None))
        elif attribute is None:
            curves.extend(host.call("driving_curves", node))
        else:
            plugs.extend((node, each) for each in _attributes(attribute))
    for node, each in plugs:
        curves.extend([node] if each is None else _plug_curves(node, each))
    return list(dict.fromkeys(curves))


def _range_of(time):
    """(first, last) frame of a time flag: a number, a pair, or a text such as "a:b"."""
    if time is None:
        return float("-inf"), float("inf")
    if isinstance(time, str):
        first, colon, last = time.partition(":")
        low, high = first or "-inf", (last or "inf") if colon else first
        return float(low), float(high)
    if isinstance(time, (int, float)):
        return float(time), float(time)
    time = list(time)
    if len(time) == 1:
        return _range_of(time[0])
    return float(time[0]), float(time[-1])


def _ranges_of(time):
    nested = isinstance(time, (list, tuple)) and time and isinstance(time[0], (list, tuple, str))
    return [_range_of(each) for each in time] if nested else [_range_of(time)]


def _keys(curve, time):
    """The keys, [time, value, in, out], in any of the ranges."""
    ranges = _ranges_of(time)
    return [key for key in host.call("keys", curve) if any(low <= key[0] <= high for low, high in ranges)]


def _edit_keys(curves, time, timeChange, valueChange, relative):
    edited = 0
    for curve in curves:
        keys = _keys(curve, time)
        # Keys are moved one by one, so those go first on which others would land.
        forward = relative and timeChange is not None and timeChange > 0
        for key in reversed(keys) if forward else keys:
            frame = timeChange if not relative or timeChange is None else key[0] + timeChange
            value = valueChange if not relative or valueChange is None else key[1] + valueChange
            edited += host.call("change_key", curve, key[0], frame, value, None, None)
    return edited


@undoable
@command(
    query="q",
    edit="e",
    timeChange="tc",
    valueChange="vc",
    keyframeCount="kc",
    name="n",
    attribute="at",
    time="t",
    relative="r",
    absolute="a",
    eval="ev",
)
def keyframe(
    *names,
    query=False,
    edit=False,
    timeChange=None,
    valueChange=None,
    keyframeCount=False,
    name=False,
    attribute=None,
    time=None,
    relative=False,
    absolute=False,
    eval=False
):
    """A query returns a list of times, values or names of curves (None if it is empty), or a count. An edit returns the
    number of keys."""
    curves = _curves(names, attribute)
    if not query:
        if timeChange is None and valueChange is None:
            raise not_covered("keyframe: edits of anything but times and values")
        return _edit_keys(curves, time, timeChange, valueChange, relative)
    if name:
        return [host.call("unique_name", curve) for curve in curves] or None
    if eval:
        frame = host.call("current_time") if time is None else _range_of(time)[0]
        return [host.call("evaluate", curve, frame) for curve in curves] or None
    keys = [key for curve in curves for key in _keys(curve, time)]
    if keyframeCount or not (timeChange or valueChange):
        return len(keys)
    if timeChange and valueChange:
        return [number for key in keys for number in key[:2]] or None
    return [key[0 if timeChange else 1] for key in keys] or None


_CHANNELS = ["translate", "rotate", "scale"]  # these get keys if no attribute is given


def _keyable(node, attribute):
    wanted = _CHANNELS if attribute is None else _attributes(attribute)
    return [(node, part) for each in wanted for part in host.call("channel_parts", node, each) or [each]]


def _key_targets(names, attribute):
    """(node, attribute) of everything that gets a key; the attribute is None if the node is a curve."""
    targets = []
    plain = []
    for name in names:
        if isinstance(name, str) and "." in name:
            targets.extend(_keyable(*split_plug(name)))
        else:
            plain.append(name)
    for node in nodes_or_selection(plain) if plain or not names else []:
        targets.extend([(node, None)] if host.call("is_curve", node) else _keyable(node, attribute))
    return targets


def _set_key(node, attribute, frame, value):
    """Sets a key; returns its curve."""
    if attribute is None:
        host.call("set_curve_key", node, frame, host.call("evaluate", node, frame) if value is None else value)
        return node
    if value is None:
        value = float(host.call("attribute_at", node, attribute, frame))
    return host.call("set_channel_key", node, attribute, frame, value)


def _tangent(name):
    if name is None:
        return None
    if name not in _TANGENTS:
        raise RuntimeError("Invalid tangent type: %s; the types are %s" % (name, ", ".join(_TANGENTS)))
    return _TANGENTS[name]


@undoable
@command(attribute="at", time="t", value="v", inTangentType="itt", outTangentType="ott")
def setKeyframe(*names, attribute=None, time=None, value=None, inTangentType=None, outTangentType=None):
    """Returns the number of keys that were set. Values are in the unit that the attribute shows: degrees for angles."""
    tangents = _tangent(inTangentType), _tangent(outTangentType)
    frames = [host.call("current_time")] if time is None else time if isinstance(time, (list, tuple)) else [time]
    count = 0
    for node, each in _key_targets(names, attribute):
        for frame in frames:
            curve = _set_key(node, each, float(frame), value)
            if any(tangents):
                host.call("change_key", curve, float(frame), None, None, *tangents)
            count += 1
    if not count:
        raise RuntimeError("setKeyframe: no object to be keyed was given.")
    return count


@undoable
@command(attribute="at", time="t", clear="cl", option="o")
def cutKey(*names, attribute=None, time=None, clear=False, option="keys"):
    """Returns the number of keys that were cut. There is no clipboard, so `clear` makes no difference."""
    if option not in ("keys", "curve"):
        raise not_covered("cutKey: option '%s'" % option)
    count = 0
    for curve in _curves(names, attribute):
        for key in _keys(curve, time):
            count += host.call("remove_key", curve, key[0])
    return count


@undoable
@command(
    query="q", edit="e", attribute="at", time="t", inTangentType="itt", outTangentType="ott"
)
def keyTangent(
    *names, query=False, edit=False, attribute=None, time=None, inTangentType=None, outTangentType=None
):
    """A query returns the types of tangents, an edit the number of keys."""
    curves = _curves(names, attribute)
    if query:
        sides = [place for place, asked in ((2, inTangentType), (3, outTangentType)) if asked]
        if not sides:
            raise not_covered("keyTangent: queries of anything but tangent types")
        return [_TANGENT_NAMES[key[side]] for curve in curves for key in _keys(curve, time) for side in sides] or None
    tangents = _tangent(inTangentType), _tangent(outTangentType)
    if not any(tangents):
        raise not_covered("keyTangent: edits of anything but tangent types")
    return sum(
        host.call("change_key", curve, key[0], None, None, *tangents) for curve in curves for key in _keys(curve, time)
    )


def _infinity(name):
    if name not in _INFINITIES:
        raise RuntimeError("Invalid infinity type: %s; the types are %s" % (name, ", ".join(_INFINITIES)))
    return _INFINITIES[name]


@undoable
@command(query="q", edit="e", attribute="at", preInfinite="pri", postInfinite="poi")
def setInfinity(*names, query=False, edit=False, attribute=None, preInfinite=None, postInfinite=None):
    curves = _curves(names, attribute)
    if query:
        side = 0 if preInfinite else 1
        return [_INFINITY_NAMES[host.call("infinity", curve)[side]] for curve in curves] or None
    sides = [None if each is None else _infinity(each) for each in (preInfinite, postInfinite)]
    for curve in curves:
        host.call("set_infinity", curve, *sides)
    return len(curves)


@command(query="q", edit="e", update="u")
def currentTime(*time, query=False, edit=False, update=True):
    if not query:
        if len(time) != 1:
            raise RuntimeError("currentTime: give one time, in frames.")
        host.call("set_current_time", float(time[0]))
    return host.call("current_time")


@command(query="q", edit="e", minTime="min", maxTime="max")
def playbackOptions(*, query=False, edit=False, minTime=None, maxTime=None):
    """A query returns a frame. There is only the playback range: the animation's own start and end are not covered."""
    first, last = host.call("playback_range")
    if query:
        return first if minTime else last
    low = first if minTime is None else float(minTime)
    high = last if maxTime is None else float(maxTime)
    host.call("set_playback_range", low, high)


@command(query="q", state="st")
def play(*, query=False, state=None):
    """Marks the scene as playing; the time does not move."""
    if not query:
        host.call("set_playing", True if state is None else bool(state))
    return host.call("is_playing")


@command(query="q", time="t", linear="l", angle="a")
def currentUnit(*, query=False, time=False, linear=False, angle=False):
    if not query:
        raise not_covered("currentUnit: changes")
    if time:
        return _time.ui_unit_name()
    return "deg" if angle and not linear else host.call("linear_unit")


@command(query="q", axis="ax")
def upAxis(*, query=False, axis=None):
    if not query:
        raise not_covered("upAxis: changes")
    return host.call("up_axis")
