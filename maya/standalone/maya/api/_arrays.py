"""Points, colors and whole numbers, one by one and in arrays of the size that they have in Maya.

An element of an array is a reference into it, as in Maya: it follows the array. It is an error to use it after the
array has shrunk or been deleted; in Maya it would then read memory that is not its own.
"""

import itertools
import weakref
from array import array

from ._values import MVector, MVectorArray

__all__ = ["MBoundingBox", "MColor", "MColorArray", "MPoint", "MPointArray", "MUintArray"]


class _Numbers(object):
    """Four numbers: its own, or those of an element of an array."""

    _rest = (0.0, 0.0, 0.0, 1.0)

    def _set(self, values):
        values = [float(value) for value in values]
        if len(values) > 4:
            raise TypeError("at most four numbers are wanted, not {0!r}".format(values))
        self._own, self._home = tuple(values + list(self._rest[len(values):])), None

    @classmethod
    def at(cls, home, place):
        """A reference to an element of an array. Maya does not have this method."""
        made = cls.__new__(cls)
        made._home, made._place = weakref.ref(home), place
        return made

    def is_reference(self):
        """Maya does not have this method."""
        return self._home is not None

    def _values(self):
        if self._home is None:
            return self._own
        home = self._home()
        if home is None or self._place >= len(home):
            raise ReferenceError("the array of this element has shrunk or is gone")
        return tuple(home.numbers[4 * self._place:4 * self._place + 4])

    def __len__(self):
        return 4

    def __getitem__(self, index):
        return self._values()[index]

    def __eq__(self, other):
        return isinstance(other, type(self)) and other._values() == self._values()

    def __ne__(self, other):
        return not self == other

    __hash__ = None

    def __repr__(self):
        return "{0}{1!r}".format(type(self).__name__, self._values())


class MPoint(_Numbers):
    def __init__(self, *values):
        """From another point, a vector, a sequence of numbers, or at least two numbers."""
        self._set(values[0] if len(values) == 1 else values)

    x, y, z, w = (property(lambda self, i=i: self[i]) for i in range(4))


class MColor(_Numbers):
    def __init__(self, components=(), model=0, dataType=0):
        """From another color, or a tuple or list of numbers."""
        if not isinstance(components, (MColor, tuple, list)):
            raise TypeError("a color is made of a color, a tuple or a list, not of {0!r}".format(components))
        self._set(components)

    r, g, b, a = (property(lambda self, i=i: self[i]) for i in range(4))


class _Array(object):
    """Made from nothing, from an array of its kind, from a size and a value, or from a sequence."""

    _code, _width = "d", 4  # The type of its numbers, and how many of them an element has.

    def __init__(self, *source):
        if len(source) == 2:
            size, source = source[0], ([source[1]] * source[0],)
            assert isinstance(size, int)
        self.numbers = array(self._code)
        if source and isinstance(source[0], type(self)):
            self.numbers = source[0].numbers[:]
        elif source:
            self.numbers = self._numbers_of(source[0])

    def __len__(self):
        return len(self.numbers) // self._width

    def __getitem__(self, index):
        if not -len(self) <= index < len(self):
            raise IndexError("index out of range")
        return self._element(index % len(self))

    def __eq__(self, other):
        return isinstance(other, type(self)) and other.numbers == self.numbers

    def __ne__(self, other):
        return not self == other

    __hash__ = None

    def setLength(self, length):
        kept = self.numbers[:length * self._width]
        self.numbers = kept + array(self._code, [0] * (length * self._width - len(kept)))

    def __repr__(self):
        return "{0}({1!r})".format(type(self).__name__, list(self))


class MUintArray(_Array):
    _code, _width = "I", 1

    def _numbers_of(self, values):
        return array(self._code, values)

    def _element(self, place):
        return self.numbers[place]


class _OfNumbers(_Array):
    # The types of elements that the constructor takes, apart from its own. Maya's documentation names only the array's
    # own type. Published plug-ins pass points as tuples; whether Maya takes others, only a test in Maya could show.
    also_takes = (tuple, MVector)

    def _numbers_of(self, values):
        if isinstance(values, MVectorArray) and MVector not in self.also_takes:
            raise TypeError("a sequence of {0} is wanted, not {1!r}".format(self._own.__name__, type(values)))
        rows = map(self._row, values)
        return array(self._code, list(itertools.chain.from_iterable(rows)))

    def _row(self, value):
        kind = type(value)
        if kind is self._own:
            return value._values()
        if kind not in self.also_takes or not 3 <= len(value) <= 4:
            raise TypeError("a {0} is wanted, not {1!r}".format(self._own.__name__, value))
        return tuple(value) + self._own._rest[len(value):]

    def _element(self, place):
        return self._own.at(self, place)


class MPointArray(_OfNumbers):
    _own = MPoint


class MColorArray(_OfNumbers):
    _own, _code = MColor, "f"


class MBoundingBox(object):
    """The corners are copied."""

    def __init__(self, low=None, high=None):
        self.min, self.max = MPoint(low or ()), MPoint(high or ())

    @property
    def center(self):
        return MPoint([(self.min[i] + self.max[i]) / 2 for i in range(3)])

    width, height, depth = (property(lambda self, i=i: self.max[i] - self.min[i]) for i in range(3))
