"""Values of the object model: times, vectors, matrices, arrays."""

from array import array
from itertools import chain

from .. import _time, host

__all__ = ["MDGContext", "MMatrix", "MTime", "MVector", "MVectorArray"]


class MTime(object):
    """A time: how many of a unit."""

    def __init__(self, value=0.0, unit=None):
        if isinstance(value, MTime):
            value, unit = value._value, value.unit
        self._value = float(value)
        self.unit = MTime.uiUnit() if unit is None else unit

    uiUnit = staticmethod(_time.ui_unit)

    @property
    def value(self):
        return self._value

    def asUnits(self, unit):
        if unit == self.unit:
            return self._value
        return self._value * (_time.units_per_second(unit) / _time.units_per_second(self.unit))

    def __eq__(self, other):
        return isinstance(other, MTime) and self.asUnits(MTime.kSeconds) == other.asUnits(MTime.kSeconds)

    def __hash__(self):
        return hash(self.asUnits(MTime.kSeconds))

    def __repr__(self):
        return "maya.api.OpenMaya.MTime(%r, %r)" % (self._value, self.unit)


for _number, (_constant, _, _) in _time.UNITS.items():
    setattr(MTime, _constant, _number)
MTime.kUserDef = _time.USER_DEFINED
MTime.kInvalid = 0


class MDGContext(object):
    """When something is evaluated: at a time, or now."""

    def __init__(self, time=None):
        if time is not None and not isinstance(time, MTime):
            raise TypeError("MDGContext takes an MTime, got %r" % (time,))
        self._time = time

    def isNormal(self):
        return self._time is None

    def getTime(self):
        return MTime(self.frame(), MTime.uiUnit())

    def frame(self):
        """In the scene's frames. Not a part of Maya."""
        if self._time is None:
            return host.call("current_time")
        return self._time.asUnits(MTime.uiUnit())


MDGContext.kNormal = MDGContext()


class MVector(object):
    __slots__ = ("x", "y", "z")

    def __init__(self, *values):
        if len(values) == 1:
            values = tuple(values[0])
        self.x, self.y, self.z = (float(value) for value in values or (0.0, 0.0, 0.0))

    def __len__(self):
        return 3

    def __getitem__(self, index):
        return (self.x, self.y, self.z)[index]

    def __iter__(self):
        return iter((self.x, self.y, self.z))

    def __eq__(self, other):
        return isinstance(other, MVector) and tuple(self) == tuple(other)

    def __ne__(self, other):
        return not self == other

    def __hash__(self):
        return hash(tuple(self))

    def __add__(self, other):
        return MVector(*(a + b for a, b in zip(self, other)))

    def __sub__(self, other):
        return MVector(*(a - b for a, b in zip(self, other)))

    def __mul__(self, other):
        if isinstance(other, MVector):
            return sum(a * b for a, b in zip(self, other))
        return MVector(*(a * other for a in self))

    def length(self):
        return (self * self) ** 0.5

    def __repr__(self):
        return "maya.api.OpenMaya.MVector(%r, %r, %r)" % tuple(self)


class MMatrix(object):
    """Four rows of four; the translation is the last row."""

    def __init__(self, values=(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)):
        values = list(values)
        if len(values) == 4:
            values = list(chain.from_iterable(values))
        if len(values) != 16:
            raise ValueError("MMatrix takes 16 numbers, got %d" % len(values))
        self._values = [float(value) for value in values]

    def getElement(self, row, column):
        if not (0 <= row < 4 and 0 <= column < 4):
            raise IndexError("index out of range")
        return self._values[4 * row + column]

    def __len__(self):
        return 16

    def __getitem__(self, index):
        return self._values[index]

    def __iter__(self):
        return iter(self._values)

    def __eq__(self, other):
        return isinstance(other, MMatrix) and self._values == other._values

    __hash__ = None

    def __repr__(self):
        return "maya.api.OpenMaya.MMatrix(%r)" % (self._values,)


class MVectorArray(object):
    """A growing list of vectors, kept as numbers."""

    def __init__(self, values=()):
        if isinstance(values, MVectorArray):
            self.numbers = array("d", values.numbers)
            return
        rows = list(values)
        if any(len(row) != 3 for row in rows):
            raise TypeError("MVectorArray takes triples of numbers")
        self.numbers = array("d", chain.from_iterable(rows))

    @classmethod
    def of_numbers(cls, numbers):
        made = cls()
        made.numbers.extend(numbers)
        return made

    def append(self, vector):
        self.numbers.extend(MVector(vector))

    def clear(self):
        del self.numbers[:]

    def __len__(self):
        return len(self.numbers) // 3

    def __getitem__(self, index):
        if not -len(self) <= index < len(self):
            raise IndexError("index out of range")
        place = 3 * (index % len(self))
        return MVector(*self.numbers[place : place + 3])

    def __iter__(self):
        return (MVector(*triple) for triple in zip(*[iter(self.numbers)] * 3))

    def __repr__(self):
        return "maya.api.OpenMaya.MVectorArray(%r)" % ([tuple(each) for each in self],)
