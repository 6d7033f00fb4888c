"""What scripts, tools and callbacks do inside a call that the engine makes: {name: function of (world, arguments)}."""

import functools
import importlib
import sys
import types


def step(world, arguments):
    world.engine._rebuild_step()


def pump(world, arguments):
    world.quiet()
    world.pump()


def pump_to_the_end(world, arguments):
    world.tick = 0.0
    world.quiet()
    world.run_queue()


def edit_and_step(world, arguments):
    world.engine._schedule_rebuild()
    world.quiet()
    world.engine._rebuild_step()


def clear(world, arguments):
    world.engine.clear_trails()


def create(world, arguments):
    world.make_trails()


def clear_and_create(world, arguments):
    """And an edit: a step of before and one of after are queued at the same time."""
    world.engine.clear_trails()
    world.make_trails()
    world.edit()


def rebuild_at_once(world, arguments):
    world.engine._rebuild_all()


def reload(world, arguments):
    world.use(importlib.reload(world.engine))


def import_another(world, arguments):
    """The module once more, under the same name, as a tool does that clears sys.modules."""
    del sys.modules["Vantorelix_engine"]
    world.use(importlib.import_module("Vantorelix_engine"))


def empty_registry(world, arguments):
    world.engine._REGISTRY.clear()


def assign_registry(world, arguments):
    world.engine._REGISTRY = {"vlx_other_viz": {"source": "|other", "samples_per_frame": 1, "ref": [1.0]}}


def replace_settings(world, arguments):
    for viz, settings in list(world.engine._REGISTRY.items()):
        world.engine._REGISTRY[viz] = dict(settings, ref=None)


def empty_settings(world, arguments):
    for settings in list(world.engine._REGISTRY.values()):
        settings.clear()


def no_work(world, arguments):
    world.engine._WORK = None


def work_of_a_script(world, arguments):
    items = [{"viz": viz, "settings": settings} for viz, settings in world.engine._REGISTRY.items()]
    world.engine._WORK = {"gen": world.engine._GEN, "items": items[:1], "k": 0, "start": 1.0, "end": 2.0}


def no_callbacks(world, arguments):
    world.engine._CB_ID = None


def no_handler(world, arguments):
    world.engine._set_msg_handler(None)


def read_everything(world, arguments):
    world.read_state()


def mutate(world, arguments):
    for each in list(arguments) + world.lists:
        if isinstance(each, list):
            del each[:]
            each.append(None)


def new_scene(world, arguments):
    world.new_scene()


def new_scene_and_queue(world, arguments):
    world.new_scene()
    pump_to_the_end(world, arguments)


def interrupt(world, arguments):
    raise KeyboardInterrupt("in a call")


def fail(world, arguments):
    raise RuntimeError("this call fails")


def _replaced(handle):
    def disturb(world, arguments):
        setattr(world.engine, handle, types.ModuleType("other"))

    return disturb


def _deleted(handle):
    def disturb(world, arguments):
        delattr(world.engine, handle)

    return disturb


def _emptied(handle):
    """The handle's own functions and classes go, and with them what only it has kept alive."""

    def disturb(world, arguments):
        module = getattr(world.engine, handle)
        world.undo.append(functools.partial(vars(module).update, dict(vars(module))))
        vars(module).clear()

    return disturb


BY_NAME = {f.__name__.replace("_", " "): f for f in (
    step, pump, pump_to_the_end, edit_and_step, clear, create, clear_and_create, rebuild_at_once, reload,
    import_another,
    empty_registry, assign_registry, replace_settings, empty_settings, no_work, work_of_a_script, no_callbacks,
    no_handler, read_everything, mutate, new_scene, new_scene_and_queue, interrupt, fail)}
for _handle in ("cmds", "om", "oma", "time"):
    BY_NAME["replace " + _handle] = _replaced(_handle)
    BY_NAME["delete " + _handle] = _deleted(_handle)
    BY_NAME["empty " + _handle] = _emptied(_handle)
