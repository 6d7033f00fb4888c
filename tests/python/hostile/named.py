"""What has brought the module down, or could: one case each, named by what a script did."""

import gc
import importlib

from . import worlds
from .oddities import deep, recursive_list
from .worlds import check_item, need


def found_in(names):
    """The cases of a module: its functions, told by their names."""
    for name, case in list(names.items()):
        if callable(case) and case.__module__ == names["__name__"] and not isinstance(case, type) and \
                not name.startswith("_") and name not in ("cases", "found_in"):
            yield name.replace("_", " "), case


def _rebuilt_halfway():
    """Two trails, of which the first is rebuilt."""
    world = worlds.RecordingWorld()
    world.make_trails()
    world.edit()
    world.tick = 0.003
    while world.engine._WORK is None or world.engine._WORK["k"] == 0:
        world.pump()
    need(world.engine._WORK["k"] == 1, "one trail is rebuilt")
    return world


def a_finished_item_is_read():
    world = _rebuilt_halfway()
    first, second = world.engine._WORK["items"]
    need((first["viz"], second["viz"]) == ("vlx_ball_viz", "vlx_cube_viz"), "the items are", first, second)
    need(first["pos"] == [(t, 0.0, 0.0) for t in (1.0, 2.0, 3.0, 4.0, 5.0)] and first["kpos"] and first["i"] == 5,
         "a finished item is", dict(first))
    world.must_be_usable()


def an_item_is_kept_and_read_when_its_record_is_gone():
    world = _rebuilt_halfway()
    items = world.engine._WORK["items"]
    sampler = items[0]["sampler"]
    world.run_queue()
    need(world.engine._WORK is None, "the rebuild is over")
    gc.collect()
    for item in items:
        need(check_item(item)["i"] == 5, "a kept item is", dict(item))
    need(sampler(2.0) == (2.0, 0.0, 0.0), "a kept sampler gives", sampler(2.0))
    world.must_be_usable()


def a_finished_item_is_finished_again():
    world = _rebuilt_halfway()
    work = world.engine._WORK
    world.maya.shape("ball")["points"] = None
    world.engine._finish_trail(work["items"][0], work)
    world.must_be_exact("a trail finished twice") if world.engine._WORK is None else None
    need(world.points("ball") == world.motion("ball"), "the trail is", world.points("ball"))
    world.must_be_usable()


def a_step_runs_within_a_step():
    """At every call that a step makes, another one runs to the end."""
    for name in ("keyframe", "getAttr", "setAttr", "listRelatives", "objExists"):
        world = worlds.RecordingWorld()
        world.make_trails()
        world.edit()
        original, inside = getattr(world.maya.cmds, name), []

        def pumped(*arguments, **keywords):
            if len(inside) < 5:
                inside.append(name)
                world.engine._rebuild_step()
            return original(*arguments, **keywords)

        setattr(world.maya.cmds, name, pumped)
        world.run_queue()
        setattr(world.maya.cmds, name, original)
        need(inside, name, "was not called")
        world.must_be_usable()


def trails_are_created_cleared_and_created_with_two_steps_queued():
    world = worlds.RecordingWorld()
    world.make_trails()
    world.edit()
    world.engine.clear_trails()
    world.make_trails()
    world.edit()
    need(len(world.maya.deferred) == 2, "two steps are queued")
    world.tick = 0.003
    world.run_queue()
    world.must_be_exact("a trail of two chains of steps")
    world.must_be_usable()


def _pass_on(make):
    """A value that the engine only hands on, everywhere where one goes in."""
    world = worlds.RecordingWorld()
    e = world.engine
    world.make_trails()
    heard = []
    e._set_msg_handler(heard.append)
    for use in (lambda value: e._msg(value), lambda value: e._set_msg_handler(value), lambda value: e._msg(value),
                lambda value: e.set_color_mode(value), lambda value: e.set_ghost(value),
                lambda value: e.create_trail(line_width=value, point_size=value, show_line=value),
                lambda value: e.create_trail(samples_per_frame=value), lambda value: e.create_trail(color_mode=value),
                lambda value: setattr(e, "_CB_ID", value), lambda value: setattr(e, "_CB_ID", (value, value)),
                lambda value: e._REGISTRY.__setitem__("vlx_x_viz", {"source": "|ball", "ref": value, "more": value}),
                lambda value: setattr(e, "_REGISTRY", {"vlx_y_viz": {"source": value}}),
                lambda value: e._colors_from_positions([(0, 0, 0), (1, 1, 1)], value),
                lambda value: e._push_data_to_viz("vlx_ball_viz", value), lambda value: e._smooth_fill(3, {0: value}),
                lambda value: e._update_frame_attrs("vlx_ball_viz", value, value)):
        value = make()
        try:
            use(value)
        except (TypeError, ValueError, AttributeError, RecursionError, KeyError):
            pass
        del value
    e._CB_ID = None  # or a stand-in would hash it, which is more than the engine does
    world.must_be_usable()
    return heard


def a_list_in_itself_is_passed_everywhere():
    heard = _pass_on(recursive_list)
    need(heard and isinstance(heard[0], list), "the handler was given", type(heard[0]))


def a_dictionary_in_itself_is_passed_everywhere():
    def make():
        value = {}
        value["source"] = value
        return value

    _pass_on(make)


def a_list_in_itself_is_printed_as_python_prints_it():
    world = worlds.RecordingWorld()
    value = recursive_list()
    world.watch(0, None)
    world.engine._msg(value)
    printed = "".join(call[1][0] for call in world.calls if call[0] == "sys.stdout.write")
    need(printed == "[Vantorelix] %s\n" % (value,), "it printed", printed)
    world.must_be_usable()


def two_hundred_thousand_lists_are_passed_everywhere():
    _pass_on(lambda: deep(list))


def two_hundred_thousand_tuples_are_passed_everywhere():
    _pass_on(lambda: deep(tuple))


class Emptying(object):
    """An item that empties its list while it is converted."""

    def __init__(self, lists):
        self.lists = lists

    def _empty(self, *index):
        for each in self.lists:
            del each[:]
        return 1.0

    __float__ = __getitem__ = _empty


def a_list_is_emptied_by_an_item_that_is_converted():
    world = worlds.RecordingWorld()
    e = world.engine
    world.make_trails()
    uses = [lambda items: e._smooth(items), lambda items: e._t_from_spacing(items),
            lambda items: e._sample_at_times("|ball", items), lambda items: e._colors_from_positions(items),
            lambda items: e._set_vector_array_attr("vlx_ball_vizShape", "points", items),
            lambda items: e._push_data_to_viz("vlx_ball_viz", [items] * 4, items),
            lambda items: e._catmull_point(*[items] * 4 + [0.5]),
            lambda items: e._smooth_fill(5, {0: items}), lambda items: e.compute_beats_colors(5, 1.0, 1.0, items),
            lambda items: e._colors_from_positions([items, items]),
            lambda items: e._colors_from_positions([tuple(items)] * 3)]
    for use in uses:
        items, outer = [], []
        items.extend(Emptying([items, outer]) for _ in range(100))
        for each in (items, [list(items) for _ in range(5)]):
            try:
                use(each)
            except (TypeError, ValueError, IndexError):
                pass
    world.must_be_usable()


def an_answer_is_emptied_by_an_item_that_is_converted():
    for name in ("ls", "keyframe", "getAttr", "listRelatives", "getPanel"):
        world = worlds.RecordingWorld()
        world.make_trails()
        answer = []
        answer.extend(Emptying([answer]) for _ in range(20))
        original = getattr(world.maya.cmds, name)
        setattr(world.maya.cmds, name, lambda *arguments, **keywords: answer)
        for use in (world.make_trails, world.engine._rebuild_all, world.engine.convert_to_nurbs,
                    world.engine.trail_count):
            try:
                use()
            except Exception:
                pass
        setattr(world.maya.cmds, name, original)
        world.must_be_usable()


def a_tuple_of_its_own_numbers_is_converted():
    """The numbers of a triple let go of the list that holds the triple."""
    world = worlds.RecordingWorld()

    class Number(object):
        def __float__(self):
            del triples[:]
            gc.collect()
            return 1.0

    for function in (world.engine._colors_from_positions, lambda t: world.engine._smooth_fill(9, dict(enumerate(t)))):
        triples = [(Number(), Number(), Number()) for _ in range(9)]
        try:
            function(triples)
        except (TypeError, ValueError, IndexError):
            pass
    world.must_be_usable()


def a_value_in_the_settings_reaches_for_the_registry_at_its_end():
    """Cleared, assigned, overwritten, popped, reloaded: the value's __del__ finds a registry that it can use."""
    world = worlds.RecordingWorld()
    e = world.engine
    ended = []

    class Last(object):
        def __del__(self):
            registry = e._REGISTRY
            ended.append(len(registry))
            [dict(settings) for settings in registry.values()]
            registry["vlx_late_viz"] = {"source": "|late", "samples_per_frame": 1, "ref": None}
            registry.pop("vlx_late_viz", None)
            registry.clear()
            e._WORK = None
            e._CB_ID = None

    def filled():
        for n in range(3):
            e._REGISTRY["vlx_%d_viz" % n] = {"source": "|ball", "samples_per_frame": 1, "ref": [Last()], "note": Last()}

    def settings():
        return e._REGISTRY["vlx_1_viz"]

    ways = [lambda: e._REGISTRY.clear(), lambda: setattr(e, "_REGISTRY", {}), lambda: e._REGISTRY.pop("vlx_0_viz"),
            lambda: e._REGISTRY.__delitem__("vlx_1_viz"), lambda: e._REGISTRY.popitem(),
            lambda: e._REGISTRY.__setitem__("vlx_1_viz", {"source": "|x"}),
            lambda: setattr(e, "_REGISTRY", {"vlx_1_viz": {"source": "|x"}}),
            lambda: settings().__setitem__("note", 1), lambda: settings().clear(),
            lambda: settings().__delitem__("ref"),
            lambda: settings()["ref"].__setitem__(0, 1.0), lambda: settings()["ref"].__delitem__(0),
            lambda: settings()["ref"].clear(), lambda: e.clear_trails(), lambda: importlib.reload(e)]
    for number, way in enumerate(ways):
        filled()
        before = len(ended)
        way()
        gc.collect()
        need(len(ended) > before, "way", number, "let go of nothing")
        e._REGISTRY.clear()
    world.must_be_usable()


def a_value_of_other_state_reaches_for_it_at_its_end():
    world = worlds.RecordingWorld()
    e = world.engine

    class Last(object):
        def __init__(self, name):
            self.name = name

        def __call__(self, text):
            setattr(e, self.name, None)

        def __del__(self):
            getattr(e, self.name)
            setattr(e, self.name, None)
            e._set_msg_handler(None)

    for name in ("_CB_ID", "_MSG_HANDLER"):
        for value in (lambda: Last(name), lambda: (Last(name), Last(name))):
            for way in (lambda: setattr(e, name, None), lambda: setattr(e, name, 1), lambda: importlib.reload(e),
                        lambda: e._remove_callback(), lambda: e._msg("hello")):
                setattr(e, name, value())
                way()
                setattr(e, name, None)
    world.must_be_usable()


def cases(full):
    return found_in(globals())
