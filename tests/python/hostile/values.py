"""Every published function, and every place of the state, with every odd value."""

import functools
import gc
import inspect

from . import worlds
from .acts import half_rebuilt
from .oddities import BY_NAME

PART = 13


def sane(world):
    """What each parameter takes, by its name."""
    viz, source = "vlx_%s_viz" % world.names[0], world.objects[0]
    triples = [(0.0, 0.0, 0.0), (1.0, 0.0, 0.0), (3.0, 1.0, 0.0)]
    work = world.engine._WORK
    return {
        "text": "hello", "fn": None, "name": "Vantorelix_lineWidth", "default": 1, "value": 1, "v": 1, "obj": source,
        "t": 0.5, "start": 1.0, "end": 3.0, "step": 1.0, "sampler": None, "times": [1.0, 2.0], "values": triples,
        "window": 3, "dists": [1.0, 2.0], "ref": None, "n": 5, "p0": triples[0], "p1": triples[1], "p2": triples[2],
        "p3": triples[0], "u": 0.5, "n_total": 4, "sampled": {0: triples[0], 3: triples[1]}, "pos": triples,
        "start_frame": 1.0, "frame_step": 1.0, "key_times": [1.0, 2.0], "samples_per_frame": 1,
        "node": world.shape_of(world.names[0]), "attr": "points", "viz_tr": viz,
        "data": (triples, triples, triples, triples), "line_width": 2.0, "point_size": 3.0, "show_line": True,
        "show_dots": True, "xray_mode": False, "color_mode": 1, "degree": 3, "it": work["items"][0], "work": work,
        "settings": {"source": source, "samples_per_frame": 1, "ref": None}, "rebuild_if_samples_changed": True,
        "mode": 1, "on": True, "src_path": "/nowhere/Vantorelix_plugin.py", "folder": "/nowhere", "action": "lmb",
    }


def functions(engine):
    """(name, names of its parameters) of all that the engine publishes and has made itself."""
    for name in engine.__all__:
        function = getattr(engine, name)
        if callable(function) and getattr(function, "__module__", None) == engine.__name__:
            yield name, list(inspect.signature(function).parameters)


def call(name, parameters, odd_one, world, odd):
    arguments = [odd if i == odd_one or parameter == "args" else sane(world)[parameter]
                 for i, parameter in enumerate(parameters)]
    if name == "_smooth":
        arguments[0] = odd if odd_one == 0 else [1.0, 2.0, 3.0]
    result = getattr(world.engine, name)(*arguments)
    if name == "_bisect_indices":
        [next(result, None) for _ in range(5)]
    del arguments, result


def call_by_name(name, parameters, world, odd):
    getattr(world.engine, name)(**{parameter: odd for parameter in parameters})


# --- the state -----------------------------------------------------------------------------------------------------

def assign(name, world, odd):
    """A script that says when the last edit was, or that a rebuild is on, is believed: those two are put right."""
    e = world.engine
    setattr(e, name, odd)
    getattr(e, name)
    if name in ("_LAST_EDIT", "_REBUILDING"):
        e._LAST_EDIT, e._REBUILDING = 0.0, False
    world.run_queue()


def a_setting(key, world, odd):
    """Then everything that reads settings."""
    e = world.engine
    for settings in list(e._REGISTRY.values()):
        settings[key] = odd
    del odd
    for use in (lambda: repr(e._REGISTRY), lambda: settings[key], world.run_queue, e._rebuild_all_sync,
                e.convert_to_nurbs, e._REGISTRY.clear):
        try:
            use()
        except Exception:
            pass


def overwrite_setting(world, odd):
    settings = next(iter(world.engine._REGISTRY.values()))
    settings["note"] = odd
    del odd
    settings["note"] = 1
    settings["note"] = None
    del settings["note"]


def registry_entry(world, odd):
    registry = world.engine._REGISTRY
    registry["vlx_odd_viz"] = odd
    world.run_queue()
    registry["vlx_odd_viz"] = {"source": "|ball"}
    registry["vlx_odd_viz"] = odd
    registry.pop("vlx_odd_viz")


def registry_key(world, odd):
    registry = world.engine._REGISTRY
    for use in (lambda: odd in registry, lambda: registry.get(odd), lambda: registry.pop(odd, None),
                lambda: registry[odd],
                lambda: registry.__setitem__(odd, {"source": "|ball"}), lambda: registry.__delitem__(odd),
                lambda: registry == odd, lambda: registry.update(odd), lambda: registry.setdefault(odd, odd)):
        try:
            use()
        except Exception:
            pass


def registry_value(world, odd):
    world.engine._REGISTRY.update({"vlx_a_viz": {"source": odd, "ref": [odd]}, "vlx_b_viz": {"note": odd}})
    del odd
    world.engine._REGISTRY = {}


def reference(world, odd):
    held = next(iter(world.engine._REGISTRY.values()))["ref"]
    for use in (lambda: held.__setitem__(0, odd), lambda: held.insert(odd, odd), lambda: held.insert(0, odd),
                lambda: held.append(odd), lambda: held.extend(odd), lambda: held == odd, lambda: held.index(odd),
                lambda: repr(held), lambda: held[odd], world.run_queue, lambda: held.clear(), lambda: held.append(held),
                lambda: repr(held), lambda: world.engine._rebuild_all(), lambda: held.clear()):
        try:
            use()
        except Exception:
            pass


RECORD = {"gen": 1, "items": [], "k": 0, "start": 1.0, "end": 5.0}


def record_field(key, world, odd):
    world.engine._WORK = dict(dict(RECORD, gen=world.engine._GEN), **{key: odd})
    world.run_queue()


def item_field(key, world, odd):
    item = {"viz": "vlx_ball_viz", "settings": {"source": "|ball", "samples_per_frame": 1, "ref": None}, "times": [1.0],
            "sampler": None, "pos": [(0.0, 0.0, 0.0), (1.0, 0.0, 0.0)], "i": 2, "ktimes": [1.0],
            "kpos": [(0.0, 0.0, 0.0)], "ki": 1}
    item[key] = odd
    try:
        world.engine._finish_trail(item, {"start": 1.0})
    except Exception:
        pass
    world.engine._WORK = dict(RECORD, gen=world.engine._GEN, items=[item, item])
    world.run_queue()


def work_view(world, odd):
    work = world.engine._WORK
    for view in (work, work["items"][0]):
        for use in (lambda: view[odd], lambda: odd in view, lambda: view == odd, lambda: view.get(odd, odd),
                    lambda: hash(view)):
            try:
                use()
            except Exception:
                pass


def handle(name, world, odd):
    setattr(world.engine, name, odd)
    world.run_queue()


STATE = ["_REGISTRY", "_CB_ID", "_REBUILDING", "_GEN", "_PENDING", "_WORK", "_LAST_EDIT", "_MSG_HANDLER"]


def places():
    for name in STATE:
        yield name + " =", functools.partial(assign, name)
    for key in ("source", "samples_per_frame", "ref", "other"):
        yield "settings[%s]" % key, functools.partial(a_setting, key)
    for key in sorted(RECORD):
        yield "record[%s]" % key, functools.partial(record_field, key)
    for key in worlds.ITEM_KEYS:
        yield "item[%s]" % key, functools.partial(item_field, key)
    for name in ("cmds", "om", "oma", "time", "os", "sys", "SCRIPT_NAME", "__name__", "__file__"):
        yield name + " =", functools.partial(handle, name)
    for place in (overwrite_setting, registry_entry, registry_key, registry_value, reference, work_view):
        yield place.__name__.replace("_", " "), place


def used(use, name):
    world = worlds.OneTrail()
    half_rebuilt(world)
    kept = {each: getattr(world.engine, each) for each in ("os", "sys", "SCRIPT_NAME", "__name__", "__file__")}
    try:
        use(world, BY_NAME[name](world))
    except SystemError:
        raise
    except Exception:
        pass
    for each, value in kept.items():
        setattr(world.engine, each, value)
    if "harmful" in name:
        let_go(world)
    world.must_be_usable()


def let_go(world):
    """What the engine still holds is let go of, and does its harm."""
    for use in (world.run_queue, world.make_trails, world.edit, world.run_queue, world.engine.clear_trails, gc.collect):
        try:
            use()
        except Exception:
            pass


def uses():
    for name, parameters in functions(worlds.OneTrail().engine):
        for i, parameter in enumerate(parameters):
            yield "%s(%s)" % (name, parameter), functools.partial(call, name, parameters, i)
        if len(parameters) > 1:
            yield "%s(by name)" % name, functools.partial(call_by_name, name, parameters)
    for place in places():
        yield place


def cases(full):
    number = 0
    for place, use in uses():
        one_in = PART if not full else 7 if place.endswith("(by name)") else 1
        for odd in BY_NAME:
            if number % one_in == 0:
                yield "%s: %s" % (place, odd), functools.partial(used, use, odd)
            number += 1
