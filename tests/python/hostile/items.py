"""Work items as they are read: all nine fields of all items, finished ones too, at every `k` of a rebuild."""

import functools
import gc

from . import worlds
from .worlds import check_item, need

TICKS = (0.0, 0.0005, 0.003, 0.007)  # seconds a look at the clock: slices of a whole rebuild down to one sample
INITIAL = {"sampler": None, "times": None, "pos": [], "i": 0, "ktimes": None, "kpos": [], "ki": 0}


def started(trails, tick):
    world = worlds.RecordingWorld()
    world.place({"t%d" % n: (lambda t, n=n: (t, float(n), 0.0), [1.0 + n % 3, 4.0]) for n in range(trails)})
    world.make_trails()
    world.edit()
    world.tick = tick
    return world


def expected(world, n, stage):
    """The fields of item n while it waits, or once it is finished."""
    keys = [1.0 + n % 3, 4.0]
    own = {"viz": "vlx_t%d_viz" % n, "settings": dict(world.engine._REGISTRY["vlx_t%d_viz" % n])}
    if stage == "waiting":
        return dict(INITIAL, **own)
    row = [1.0, 2.0, 3.0, 4.0, 5.0]
    return dict(own, times=row, pos=[(t, float(n), 0.0) for t in row], i=5, ktimes=keys,
                kpos=[(t, float(n), 0.0) for t in keys], ki=2)


def compare(world, item, n, stage):
    field = check_item(item)
    field["settings"] = dict(field["settings"])
    sampler = field.pop("sampler")
    need(stage == "waiting" or sampler(2.0) == (2.0, float(n), 0.0), "the sampler of a finished item is", sampler)
    wanted = expected(world, n, stage)
    wanted.pop("sampler", None)
    need(field == wanted, stage, "item", n, "is", field, "not", wanted)


def read_record(world, work):
    """One look at all of it: what is before k is finished, what is after it waits."""
    k = work["k"]
    need(work["gen"] == world.engine._GEN and (work["start"], work["end"]) == world.frames, "the record is", dict(work))
    for n, item in enumerate(work["items"]):
        if n == k:
            check_item(item)
        else:
            compare(world, item, n, "finished" if n < k else "waiting")
    return k


def through_a_rebuild(trails, tick):
    """Read after every step, and again when the record has gone."""
    world, kept, seen = started(trails, tick), [], []
    while world.pump():
        work = world.engine._WORK
        if work is not None:
            seen.append(read_record(world, work))
            kept.append(work)
    need(seen == sorted(seen), "k was", seen)
    need(tick == 0.0 or tick == 0.0005 or len(set(seen)) >= trails, "k was seen at", sorted(set(seen)), "only")
    for work in kept:
        need(work["k"] == trails, "a finished record's k is", work["k"])
        need([read_record(world, work)] == [trails], "no k")
    world.must_be_usable()


def inside_every_call(trails, tick):
    """Read inside each call that the rebuild makes: `k` grows, and no reading changes anything."""
    world, seen = started(trails, tick), []

    def look(what, arguments, keywords):
        work = world.engine._WORK
        if work is not None:
            if not seen or seen[-1][0] is not work:
                seen.append((work, []))
            seen[-1][1].append(work["k"])
            for item in work["items"]:
                check_item(item)
            world.kept.append(work["items"][-1])

    original = world.called

    def called(what, arguments, keywords):
        original(what, arguments, keywords)
        if not world.looking:
            world.looking = True
            look(what, arguments, keywords)
            world.looking = False

    world.looking, world.called = False, called
    world.run_queue()
    world.called = original
    need(seen and all(ks == sorted(ks) for _, ks in seen), "k went back")
    need(set(ks for _, all_ks in seen for ks in all_ks) >= set(range(trails)), "not every k was seen")
    world.must_be_usable()


def views_outlive(trails, tick, end):
    """Views taken at the start, half way and at every step stay readable once their record is discarded."""
    world, kept = started(trails, tick), []
    for _ in range(trails):
        world.pump()
        kept.extend(world.engine._WORK["items"] if world.engine._WORK else [])
    before = [check_item(item) for item in kept]
    end(world)
    gc.collect()
    for item, was in zip(kept, before):
        now = check_item(item)
        need(now["pos"][:was["i"]] == was["pos"] and now["i"] >= was["i"], "positions were lost")
    del before
    settings = [item["settings"] for item in kept]
    del kept[:]
    gc.collect()
    [dict(each) for each in settings]
    world.must_be_usable()


def finished_by_hand(trails, tick):
    """Each item, in whatever state, is handed to _finish_trail, with and without its record."""
    world = started(trails, tick)
    kept = []
    while world.pump():
        work = world.engine._WORK
        for item in work["items"] if work is not None else ():
            world.engine._finish_trail(item, work)
            kept.append(item)
    world.engine.clear_trails()
    gc.collect()
    for item in kept:
        check_item(item)
        try:
            world.engine._finish_trail(item, {"start": 1.0})
        except Exception:  # its node has gone
            pass
    world.must_be_usable()


def left_behind(trails, tick):
    """Trails that vanish, fail or are edited midway: every record keeps all of its items."""
    world, kept = started(trails, tick), []
    rounds = 0
    while world.pump():
        rounds += 1
        need(rounds < worlds.ROUNDS, "the queue does not end")
        work = world.engine._WORK
        if work is not None:
            need(len(work["items"]) == trails or kept, "items are missing")
            kept.append((work, len(work["items"])))
            for item in work["items"]:
                check_item(item)
        if rounds == 2:
            del world.maya.motions["|t0"]
        if rounds == 3 and trails > 1:
            world.engine._REGISTRY["vlx_t1_viz"]["samples_per_frame"] = "many"
        if rounds == 5:
            world.edit()
        for work, count in kept:
            need(len(work["items"]) == count, "a record has lost items")
    for work, count in kept:
        need([check_item(item)["viz"] for item in work["items"]] and len(work["items"]) == count, "items are missing")
    world.must_be_usable()


def next_edit(world):
    world.edit()
    world.pump()
    world.tick = 0.0
    world.run_queue()


ENDS = {"finishing": lambda world: world.run_queue(), "clearing": lambda world: world.engine.clear_trails(),
        "an edit": next_edit, "no work": lambda world: setattr(world.engine, "_WORK", None),
        "reloading": lambda world: __import__("importlib").reload(world.engine)}


def cases(full):
    for trails in (1, 2, 3, 7) if full else (2,):
        for tick in TICKS:
            given = "%d trails, %s s a look" % (trails, tick)
            for check in (through_a_rebuild, inside_every_call, finished_by_hand, left_behind):
                yield "%s: %s" % (check.__name__.replace("_", " "), given), functools.partial(check, trails, tick)
            for end, how in ENDS.items():
                yield "views outlive %s: %s" % (end, given), functools.partial(views_outlive, trails, tick, how)
