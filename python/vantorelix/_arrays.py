"""Arrays of doubles as memory views, and arguments as the library takes them."""

from __future__ import annotations

import ctypes
from array import array
from typing import Any, Iterable, Optional, Tuple


def view(count: int, row: Tuple[int, ...] = (), address: Optional[int] = None, owner: object = None) -> memoryview:
    """A read-only view of `count` rows of doubles, each of the shape `row`, in C order.

    It lies at `address` and keeps `owner` alive; without an address it has memory of its own, zeros.
    The format is "d". Only where there is no row and `row` is not (), it is "<d", which Python itself does not read.
    """
    shape = (count,) + row
    if count == 0:
        return _without_rows(shape).toreadonly()
    items = ctypes.c_double * _product(shape)
    memory = items.from_address(address) if address else items()
    memory.owner = owner
    return memoryview(memory).cast("B").cast("d", shape).toreadonly()


def _without_rows(shape: Tuple[int, ...]) -> memoryview:
    if len(shape) == 1:
        return memoryview(array("d"))
    kind: Any = ctypes.c_double
    for length in reversed(shape):
        kind = kind * length
    return memoryview(kind())


def address_of(memory: memoryview) -> int:
    """Where the memory of a view of `view` begins."""
    return ctypes.addressof(memory.obj)


def doubles(numbers: Iterable[float], what: str) -> "array[float]":
    """The numbers as an array. Raises TypeError where they are not numbers."""
    if isinstance(numbers, (str, bytes, bytearray)):
        raise TypeError("%s must be numbers, not %s" % (what, type(numbers).__name__))
    try:
        return array("d", numbers)
    except TypeError as error:
        raise TypeError("%s must be a sequence of numbers: %s" % (what, error)) from None


def text(value: Any, what: str) -> bytes:
    """A text as the library takes it. Raises TypeError for what is not one, ValueError for a zero inside."""
    if not isinstance(value, str):
        raise TypeError("%s must be a text, not %s" % (what, type(value).__name__))
    if "\0" in value:
        raise ValueError("%s must not hold a zero byte" % what)
    return value.encode("utf-8", "surrogateescape")


def number(value: Any, what: str) -> float:
    """A finite number. Raises TypeError or ValueError."""
    try:
        result = float(value) if not isinstance(value, (str, bytes)) else None
    except TypeError:
        result = None
    if result is None:
        raise TypeError("%s must be a number, not %s" % (what, type(value).__name__))
    if result - result != 0.0:
        raise ValueError("%s must be finite, not %r" % (what, value))
    return result


def _product(shape: Tuple[int, ...]) -> int:
    result = 1
    for length in shape:
        result *= length
    return result
