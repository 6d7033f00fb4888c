"""Units of time: Maya's numbers and names, and how many there are in a second."""

from . import host

# number: (constant of MTime, name of currentUnit, units per second)
UNITS = {
    1: ("kHours", "hour", 1.0 / 3600.0),
    2: ("kMinutes", "min", 1.0 / 60.0),
    3: ("kSeconds", "sec", 1.0),
    4: ("kMilliseconds", "millisec", 1000.0),
    5: ("kGames", "game", 15.0),
    6: ("kFilm", "film", 24.0),
    7: ("kPALFrame", "pal", 25.0),
    8: ("kNTSCFrame", "ntsc", 30.0),
    9: ("kShowScan", "show", 48.0),
    10: ("kPALField", "palf", 50.0),
    11: ("kNTSCField", "ntscf", 60.0),
}
_FRAME_RATES = [2, 3, 4, 5, 6, 8, 10, 12, 16, 20, 40, 75, 80, 100, 120, 125, 150, 200, 240, 250, 300, 375, 400, 500]
_FRAME_RATES += [600, 750, 1200, 1500, 2000, 3000, 6000]
for _rate in _FRAME_RATES:
    UNITS[max(UNITS) + 1] = ("k%dFPS" % _rate, "%dfps" % _rate, float(_rate))
USER_DEFINED = 43  # kUserDef: here, a scene's rate that is none of the above


_UNIT_OF_RATE = {rate: number for number, (_, _, rate) in sorted(UNITS.items(), reverse=True)}


def ui_unit():
    """The unit of frames: that of the scene that is open."""
    return _UNIT_OF_RATE.get(host.frames_per_second, USER_DEFINED)


def ui_unit_name():
    unit = ui_unit()
    return "%rfps" % host.frames_per_second if unit == USER_DEFINED else UNITS[unit][1]


def units_per_second(unit):
    if unit == USER_DEFINED:
        return host.frames_per_second
    if unit not in UNITS:
        raise ValueError("Not a unit of time: %r. Use a constant of MTime." % (unit,))
    return UNITS[unit][2]
