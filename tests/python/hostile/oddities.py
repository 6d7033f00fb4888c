"""Values that nobody would pass, and objects that do harm while they are looked at: {name: function of the world}."""

import array
import collections
import decimal
import fractions
import functools
import gc
import sys
import types
import weakref

SANE = {"__float__": 1.0, "__int__": 1, "__index__": 1, "__str__": "text", "__repr__": "text", "__bool__": True,
        "__len__": 3, "__hash__": 7, "__eq__": False, "__iter__": None, "__getitem__": 1.0, "__call__": (1.0, 2.0, 3.0),
        "keys": ["source"], "items": [("source", "|ball")], "get": None, "__contains__": True}


def _harm(world):
    """What is least expected of a conversion: all that the engine holds is let go of."""
    if world.over:
        return
    e = world.engine
    for each in world.lists:
        del each[:]
    for settings in list(e._REGISTRY.values()):
        settings.clear()
    e._REGISTRY.clear()
    e._WORK = e._CB_ID = None
    e._set_msg_handler(None)
    e.clear_trails()


def _object(methods, base=object):
    """An object with the given {name: body of (self, *arguments)}."""
    return type("Hostile", (base,), dict(methods))()


def _raising(name, world):
    def method(self, *arguments):
        raise LookupError(name)

    return _object({name: method})


def _ends(name, arguments):
    """So that what is got item by item has an end."""
    if name == "__getitem__" and arguments and isinstance(arguments[0], int) and arguments[0] > 5:
        raise IndexError(arguments[0])


def _lying(name, world):
    def method(self, *arguments):
        _ends(name, arguments)
        return world

    return _object({name: method})


def _harmful(world, names=SANE, base=object):
    def method(name):
        def look(self, *arguments):
            _ends(name, arguments)
            _harm(world)
            return iter([1.0, 2.0, 3.0]) if name == "__iter__" else SANE[name]

        return look

    return _object({name: method(name) for name in names}, base)


def _harmful_at_its_end(world):
    """Does its harm when the engine lets go of it."""

    def end(self):
        _harm(world)
        world.engine._REGISTRY["vlx_late_viz"] = {"source": "|late", "samples_per_frame": 1, "ref": None}

    return _object({"__del__": end})


def recursive_list(world=None):
    items = [1.0]
    items.append(items)
    return items


def _recursive_dict(world):
    items = {}
    items["source"] = items["settings"] = items["items"] = items
    return items


def deep(kind):
    items = kind()
    for _ in range(200000):
        items = kind([items])
    return items


@functools.lru_cache(None)
def _one_deep():
    """Made once: it takes as long as a hundred cases. No tuple: the interpreter itself does not survive its hash."""
    made = deep(list)
    gc.freeze()  # or each collection would go through all of it
    return made


def _emptied(world, make):
    """A list of which each item empties the list while it is looked at."""
    items = world.passed([])

    def method(answer):
        def look(self, *arguments):
            del items[:]
            return answer

        return look

    items.extend(make({name: method(SANE[name]) for name in ("__float__", "__index__", "__getitem__", "__len__")})
                 for _ in range(50))
    return items


def _emptied_triples(world):
    """Lists of three in a list, of which each number empties both."""
    outer = world.passed([])
    for _ in range(20):
        inner = []

        def look(self, inner=inner):
            del inner[:], outer[:]
            return 1.0

        inner.extend(_object({"__float__": look}) for _ in range(3))
        outer.append(inner)
    return outer


def _generator(world):
    for i in range(5):
        _harm(world)
        yield (float(i), 0.0, 0.0)


def _dead_proxy(world):
    class Short(object):
        pass

    return weakref.proxy(Short())


def _mapping(world):
    return types.MappingProxyType({"source": "|ball", "samples_per_frame": 1, "viz": "vlx_ball_viz", 3: 4})


def _sized_wrong(length, world):
    class Sized(list):
        def __len__(self):
            return length

    return Sized([(1.0, 2.0, 3.0)] * 3)


def _text(world):
    return type("Text", (str,), {"__str__": lambda self: world, "strip": lambda self: world,
                                 "lower": lambda self: world, "__hash__": lambda self: 1 // 0})("|ball")


def _view(read):
    def make(world):
        try:
            return read(world.engine)
        except (KeyError, IndexError, TypeError, ValueError):
            return None

    return make


def _first_item(engine):
    return engine._WORK["items"][0]


PLAIN = {
    "None": None, "True": True, "minus one": -1, "2 to the 31": 2 ** 31, "2 to the 63": 2 ** 63,
    "one less": 2 ** 63 - 1,
    "minus 2 to the 63": -2 ** 63, "10 to the 30": 10 ** 30,
    "10 to the 5000": 10 ** 5000, "not a number": float("nan"), "infinity": float("inf"),
    "minus infinity": float("-inf"),
    "1e300": 1e300, "empty text": "", "name": "|ball", "lone surrogate": "\ud800", "zero byte": "a\0b",
    "bytes": b"|ball",
    "complex": 1j, "type": dict, "function": len, "module": sys, "ellipsis": Ellipsis, "frozen": frozenset([1]),
    "decimal": decimal.Decimal("nan"), "fraction": fractions.Fraction(1, 3), "empty tuple": (),
    "pairs": ((1, 2), (3, 4)),
    "triples": ((0.0, 1.0, 2.0),) * 4, "nans": [(float("nan"),) * 3] * 4, "infinities": [(float("inf"),) * 3] * 4,
    "huge": [(1e308, -1e308, 1e308), (-1e308, 1e308, -1e308)], "range": range(4),
}

BY_NAME = {name: (lambda value: lambda world: value)(value) for name, value in PLAIN.items()}
BY_NAME.update({
    "empty list": lambda world: world.passed([]),
    "bytearray": lambda world: bytearray(b"abc"),
    "array": lambda world: array.array("d", [1.0, 2.0, 3.0]),
    "memory": lambda world: memoryview(b"abc"),
    "ordered dict": lambda world: collections.OrderedDict(source="|ball", samples_per_frame=2, viz="vlx_ball_viz"),
    "dict": lambda world: {0: (0, 0, 0), 3: (3.0, 1.0, 0.0), "source": "|ball"},
    "odd keys": lambda world: {2 ** 70: (0, 0, 0), -1: (1, 1, 1), None: 3, 1.5: ()},
    "mapping": _mapping,
    "recursive list": recursive_list,
    "recursive tuple": lambda world: (recursive_list(world),) * 4,
    "recursive dict": _recursive_dict,
    "deep list": lambda world: _one_deep(),
    "too long": functools.partial(_sized_wrong, 10 ** 6),
    "too short": functools.partial(_sized_wrong, 0),
    "list emptied by its objects": lambda world: _emptied(world, lambda methods: _object(methods)),
    "list emptied by its lists": lambda world: _emptied(world, lambda methods: _object(methods, list)),
    "triples emptied by their numbers": _emptied_triples,
    "generator": _generator,
    "spent generator": lambda world: (each for each in ()),
    "dead proxy": _dead_proxy,
    "text with wills": _text,
    "registry": lambda world: world.engine._REGISTRY,
    "settings": _view(lambda engine: next(iter(engine._REGISTRY.values()))),
    "reference": _view(lambda engine: next(iter(engine._REGISTRY.values()))["ref"]),
    "record": lambda world: world.engine._WORK,
    "item": _view(_first_item),
    "items": _view(lambda engine: engine._WORK["items"]),
    "engine": lambda world: world.engine,
    "harmful": _harmful,
    "harmful list": lambda world: world.passed([_harmful(world) for _ in range(5)]),
    "harmful tuple": lambda world: (_harmful(world),) * 4,
    "harmful triples": lambda world: [(_harmful(world),) * 3 for _ in range(5)],
    "harmful dict": lambda world: {"source": _harmful(world), "ref": _harmful(world),
                                   "samples_per_frame": _harmful(world)},
    "harmful number": lambda world: _harmful(world, ("__float__", "__index__", "__int__", "__bool__"), float),
    "harmful whole number": lambda world: _harmful(world, ("__float__", "__index__", "__int__", "__bool__"), int),
    "harmful at its end": _harmful_at_its_end,
    "harmful at the end of a list": lambda world: [_harmful_at_its_end(world), [_harmful_at_its_end(world)]],
})
for _name in SANE:
    BY_NAME["raises in " + _name] = functools.partial(_raising, _name)
    BY_NAME["lies in " + _name] = functools.partial(_lying, _name)


def harmful_error(world):
    """An error that does its harm while its text is taken."""

    class Harmful(Exception):
        def __str__(self):
            _harm(world)
            return "harm"

    return Harmful()
