"""What the engine is asked to do while it is disturbed: (name, what comes before, the act itself).

Together they make every call of Maya that the engine makes; the calls are found by running them."""

import collections
import os
import shutil
import sys
import tempfile
import types

Act = collections.namedtuple("Act", "name before run")


def nothing(world):
    pass


def made(world):
    world.make_trails()


def edited(world):
    world.make_trails()
    world.edit()


def rebuild_in_slices(world):
    world.tick = 0.003
    world.run_queue()


def create_in_a_hurry(world):
    world.tick = 0.06
    world.make_trails()


def step_too_early(world):
    world.tell_of_edit()
    world.pump()


def one_vanished(world):
    edited(world)
    world.lose(world.names[0])


def one_node_vanished(world):
    edited(world)
    world.remove_node("vlx_%s_viz" % world.names[0])


def set_preferences(world):
    e = world.engine
    e._set_pref_samples(2)
    e._set_pref_line_width(3.0)
    e._set_pref_show_dots(False)
    e.apply_prefs_to_existing_trails(rebuild_if_samples_changed=True)
    world.quiet()
    world.run_queue()


def convert(world):
    world.select([])
    world.engine.convert_to_nurbs()


def with_handler(world):
    world.engine._set_msg_handler(lambda text: world.called("handler", (text,), {}))


def with_menu(world):
    menu = sys.modules["Vantorelix"] = types.ModuleType("Vantorelix")
    menu.show_trail_mini_menu = lambda: world.called("menu", (), {})
    world.make_trails()


def use_entry(world):
    for action in ("rmb", " Ctrl_RMB ", "spacing", "shift_lmb", "lmb"):
        world.engine.pellark_entry(action)
    sys.modules.pop("Vantorelix", None)


def sample_with_script(world):
    def sampler(t):
        world.called("sampler", (t,), {})
        return (t, t, t)

    e, source = world.engine, world.objects[0]
    e._sample_positions(source, 1.0, 5.0, 1.0, sampler)
    e._sample_at_times(source, world.passed([1.0, 2.0, 3.0]), sampler=sampler)
    e._compute_trail_data(source, 1, None, sampler)


def push_from_script(world):
    triples = [world.passed([(0.0, 1.0, 2.0)] * n) for n in (5, 5, 2, 2)]
    viz = "vlx_%s_viz" % world.names[0]
    world.engine._push_data_to_viz(viz, tuple(triples), key_times=world.passed([1.0, 2.0]))
    world.engine._set_vector_array_attr(world.shape_of(world.names[0]), "points", triples[0])
    world.engine._update_frame_attrs(viz, 1.0, 1.0)


def half_rebuilt(world):
    edited(world)
    world.tick = 0.003
    world.pump()
    world.tick = 0.0


def finish_by_script(world):
    work = world.engine._WORK
    for item in work["items"]:
        world.engine._finish_trail(item, work)
    item = {"viz": "vlx_%s_viz" % world.names[0], "settings": {"source": world.objects[0]},
            "pos": world.passed([(0.0, 0.0, 0.0), (1.0, 0.0, 0.0)]), "ktimes": world.passed([1.0]),
            "kpos": world.passed([(0.0, 0.0, 0.0)])}
    world.engine._finish_trail(item, {"start": 1.0})
    for viz, settings in list(world.engine._REGISTRY.items()):
        world.engine._rebuild_one(viz, settings)


def query(world):
    e = world.engine
    e.has_any_trail()
    e.trail_count()
    e.compute_temperature_colors(3, 1.0, 1.0)
    e._keyframe_times(world.objects[0], 1.0, 5.0)
    e._world_pos_at(world.objects[0], 2.0)
    e._make_fast_sampler(world.objects[0])(2.0)


ACTS = [
    Act("create", nothing, lambda world: world.make_trails()),
    Act("create again", made, lambda world: world.make_trails()),
    Act("create in a hurry", nothing, create_in_a_hurry),
    Act("edit", made, lambda world: world.tell_of_edit()),
    Act("step too early", made, step_too_early),
    Act("rebuild", edited, lambda world: world.run_queue()),
    Act("rebuild in slices", edited, rebuild_in_slices),
    Act("rebuild without an object", one_vanished, lambda world: world.run_queue()),
    Act("rebuild without a node", one_node_vanished, lambda world: world.run_queue()),
    Act("rebuild at once", made, lambda world: world.engine._rebuild_all_sync()),
    Act("clear", made, lambda world: world.engine.clear_trails()),
    Act("colour", made, lambda world: world.engine.set_color_mode(2)),
    Act("ghost", made, lambda world: world.engine.toggle_ghost()),
    Act("preferences", made, set_preferences),
    Act("curves", made, convert),
    Act("message", with_handler, lambda world: world.engine._msg("hello")),
    Act("entry", with_menu, use_entry),
    Act("sampler of a script", made, sample_with_script),
    Act("arrays of a script", made, push_from_script),
    Act("items of a script", half_rebuilt, finish_by_script),
    Act("questions", made, query),
]


# --- what only the stand-in can be told to do ----------------------------------------------------------------------

def in_batch(world):
    world.make_trails()
    world.change(world.maya, "batch", True)


def without_contexts(world):
    """Nothing but the slow sampler works: there are no evaluation contexts."""
    edited(world)
    world.change(world.maya.om, "MDGContext", None)


def without_whole_arrays(world):
    world.make_trails()
    whole = world.maya.om.MVectorArray

    def only_empty(*values):
        if values:
            raise TypeError("no sequences here")
        return whole()

    world.change(world.maya.om, "MVectorArray", only_empty)


def without_plugin(world):
    """A plug-in that is found, staged and not loaded."""
    folder = tempfile.mkdtemp()
    world.undo.append(lambda: shutil.rmtree(folder, ignore_errors=True))
    with open(os.path.join(folder, "Vantorelix_plugin.py"), "w"):
        pass
    world.change(sys, "path", sys.path + [folder])
    world.change(os, "environ", dict(os.environ, MAYA_PLUG_IN_PATH="elsewhere"))
    world.change(world.maya, "loaded", False)
    world.change(world.maya, "user_folder", folder)


def without_deferred_calls(world):
    def refused(function, lowestPriority):
        world.called("cmds.evalDeferred", (function,), {"lowestPriority": lowestPriority})
        raise RuntimeError("not now")

    world.make_trails()
    world.change(world.maya.cmds, "evalDeferred", refused)


STAND_IN_ACTS = [
    Act("edit in batch mode", in_batch, lambda world: world.tell_of_edit()),
    Act("edit without deferred calls", without_deferred_calls, lambda world: world.tell_of_edit()),
    Act("rebuild by the slow sampler", without_contexts, lambda world: world.run_queue()),
    Act("arrays one by one", without_whole_arrays, lambda world: world.engine._rebuild_all()),
    Act("plug-in", without_plugin, lambda world: world.make_trails()),
]
