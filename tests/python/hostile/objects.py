"""What scripts do with the objects that they are given: copies, classes, iterations, profilers."""

import copy
import gc
import importlib
import pickle
import sys
import types
import weakref

from . import worlds
from .acts import half_rebuilt
from .named import found_in
from .worlds import check_item, need


def _objects(world):
    """One of each kind that the module makes."""
    e = world.engine
    settings = next(iter(e._REGISTRY.values()))
    return {"registry": e._REGISTRY, "settings": settings, "reference": settings["ref"], "record": e._WORK,
            "item": e._WORK["items"][-1], "sampler": e._make_fast_sampler(world.objects[0]),
            "order": e._bisect_indices(9), "engine": e, "function": e._msg, "keys": iter(e._REGISTRY)}


def _try(*uses):
    """Each of these may raise what Python raises."""
    for use in uses:
        try:
            use()
        except Exception as error:
            need(not isinstance(error, SystemError), repr(error))


def _world():
    world = worlds.RecordingWorld()
    world.keeps_views = False
    half_rebuilt(world)
    return world


def objects_of_their_classes_are_made_by_hand():
    world = _world()
    for name, each in _objects(world).items():
        kind = type(each)
        made = []
        _try(lambda: made.append(kind()), lambda: made.append(kind.__new__(kind)),
             lambda: made.append(object.__new__(kind)),
             lambda: made.append(kind("name")), lambda: made.append(type("Derived", (kind,), {})()),
             lambda: made.append(type("Derived", (kind,), {"__init__": lambda self: None})("x")),
             lambda: made.append(kind.__new__(type("Derived", (kind,), {}))), lambda: each.__init__(),
             lambda: each.__init__({}), lambda: each.__init__([1.0]))
        for other in made:
            _try(lambda: repr(other), lambda: len(other), lambda: list(other), lambda: other["viz"], lambda: other[0],
                 lambda: other(1.0), lambda: next(other), lambda: other._GEN, lambda: other == each,
                 lambda: hash(other))
        del made
        gc.collect()
    world.must_be_usable()


def objects_are_copied_and_pickled():
    world = _world()
    for each in _objects(world).values():
        for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
            _try(lambda: repr(pickle.loads(pickle.dumps(each, protocol))))
        for make in (copy.copy, copy.deepcopy):
            _try(lambda: repr(make(each)), lambda: list(make(each)), lambda: make(each)["viz"])
        _try(lambda: each.__reduce__(), lambda: each.__setstate__({}), lambda: each.__sizeof__(), lambda: dir(each))
    world.must_be_usable()


def classes_are_swapped_and_changed():
    world = _world()
    found = _objects(world)
    for each in found.values():
        for other in found.values():
            _try(lambda: setattr(each, "__class__", type(other)))
        kind = type(each)
        _try(lambda: setattr(each, "__class__", dict), lambda: setattr(each, "extra", 1), lambda: weakref.ref(each),
             lambda: setattr(kind, "__getitem__", None), lambda: delattr(kind, "__getitem__"))
    world.must_be_usable()


def mappings_change_while_they_are_gone_through():
    for change in (lambda e: e._REGISTRY.clear(), lambda e: e.clear_trails(), lambda e: setattr(e, "_REGISTRY", {}),
                   lambda e: e._REGISTRY.update({"a%d" % n: {"source": "|a"} for n in range(100)}),
                   lambda e: importlib.reload(e), lambda e: [s.clear() for s in e._REGISTRY.values()]):
        world = _world()
        e = world.engine
        settings = e._REGISTRY["vlx_ball_viz"]
        for mapping in (e._REGISTRY, settings, e._WORK, e._WORK["items"][0]):
            iterators = [iter(mapping), iter(mapping.items()), iter(mapping.values()), iter(mapping.keys())]
            _try(*[lambda it=it: next(it) for it in iterators])
            change(e)
            _try(*[lambda it=it: list(it) for it in iterators])
            _try(lambda: mapping.update(mapping), lambda: mapping == mapping, lambda: repr(mapping))
        world.use(e)
        world.must_be_usable()


def a_reference_is_changed_by_its_own_values():
    world = _world()
    e = world.engine

    class Last(object):
        def __init__(self, held):
            self.held = held

        def __del__(self):
            self.held.clear()
            self.held.extend([1.0] * 100)

        def __eq__(self, other):
            self.held.clear()
            return True

        __hash__ = None

        def __float__(self):
            self.held.clear()
            return 1.0

    ways = [lambda held: held.__setitem__(0, 1.0), lambda held: held.__delitem__(0), lambda held: held.pop(),
            lambda held: held.clear(), lambda held: held.insert(0, 1.0), lambda held: held.reverse(),
            lambda held: held.remove(1.0), lambda held: held.index(1.0), lambda held: held.count(1.0),
            lambda held: held == [1.0, 2.0], lambda held: list(held), lambda held: held.extend(list(held)),
            lambda held: held.__iadd__([held]), lambda held: e._rebuild_all(),
            lambda held: e._t_from_spacing([1.0], held),
            lambda held: e._REGISTRY.clear()]
    for way in ways:
        world.make_trails()
        held = e._REGISTRY["vlx_ball_viz"]["ref"]
        held.clear()
        for _ in range(3):
            held.append(Last(held))
        _try(lambda: way(held))
        gc.collect()
    held = None
    world.must_be_usable()


def the_module_itself_is_taken_apart():
    for ruin in (lambda e: vars(e).clear(), lambda e: setattr(e, "__class__", types.ModuleType),
                 lambda e: delattr(e, "_REGISTRY"), lambda e: delattr(e, "__name__"),
                 lambda e: setattr(e, "__file__", 3),
                 lambda e: e.__init__("other"), lambda e: sys.modules.pop("Vantorelix_engine"),
                 lambda e: sys.modules.update(Vantorelix_engine=None),
                 lambda e: [delattr(e, n) for n in list(vars(e))]):
        world = _world()
        e = world.engine
        functions = [e.create_trail, e._rebuild_step, e.clear_trails, e._msg, e._ensure_plugin]
        kept = e._WORK["items"]
        _try(lambda: ruin(e))
        for function in functions:
            _try(lambda: function(), lambda: function("text"))
        for item in kept:
            _try(lambda: check_item(item))
        _try(lambda: world.run_queue())
        del kept, functions, e
        gc.collect()
        sys.modules.pop("Vantorelix_engine", None)
        worlds.RecordingWorld().must_be_usable()


def the_compiled_part_is_started_with_anything():
    world = _world()
    import _vantorelix
    for odd in (None, 3, "name", object(), types, type("Odd", (types.ModuleType,), {})("odd"),
                types.ModuleType("bare"), {}):
        _try(lambda: _vantorelix.start(odd))
        _try(lambda: world.engine._rebuild_step(), lambda: world.engine.create_trail(), lambda: world.engine._msg("x"),
             lambda: world.engine.clear_trails())
    gc.collect()
    _try(lambda: importlib.reload(_vantorelix))
    sys.modules.pop("_vantorelix")
    sys.modules.pop("Vantorelix_engine")
    worlds.RecordingWorld().must_be_usable()


def a_profiler_and_a_tracer_work_within():
    """They are told of every call and every line, and do something each time."""
    for name in ("setprofile", "settrace"):
        world = _world()
        e, busy = world.engine, []

        def told(frame, event, argument):
            if not busy:
                busy.append(1)
                try:
                    e._rebuild_step()
                    [check_item(item) for item in (e._WORK or {"items": []})["items"]]
                finally:
                    busy.pop()
            return told

        getattr(sys, name)(told)
        try:
            e._schedule_rebuild()
            world.quiet()
            world.run_queue()
            world.make_trails()
        finally:
            getattr(sys, name)(None)
        world.must_be_usable()


def the_collector_runs_all_the_time():
    """With finalisers in cycles that reach for the engine."""
    world = _world()
    e = world.engine
    before = gc.get_threshold()

    class Cycle(object):
        def __init__(self):
            self.me = self

        def __del__(self):
            e._REGISTRY.pop("vlx_cycle_viz", None)
            e._rebuild_step()

    gc.set_threshold(1, 1, 1)
    try:
        for _ in range(5):
            e._REGISTRY["vlx_cycle_viz"] = {"source": "|ball", "samples_per_frame": 1, "ref": None, "note": Cycle()}
            Cycle()
            world.edit()
            world.run_queue()
            world.make_trails()
    finally:
        gc.set_threshold(*before)
    world.must_be_usable()


def the_stack_is_nearly_full():
    """Every command from as deep as a script can be, where Python itself refuses one more call."""
    world = _world()
    e = world.engine
    uses = [e.create_trail, e._rebuild_step, e._rebuild_all, e.set_color_mode, e.convert_to_nurbs, e.clear_trails,
            e._ensure_plugin, e._schedule_rebuild]

    def deeper(use, calls):
        try:
            deeper(use, calls)
        except RecursionError:
            pass
        if len(calls) < 40:  # so many levels from the last one on
            calls.append(1)
            _try(lambda: use(1) if use == e.set_color_mode else use())

    for use in uses:
        deeper(use, [])
    world.must_be_usable()


def cases(full):
    return found_in(globals())
