"""Every call of Maya that the engine makes, with every disturbance inside that very call, on two hosts."""

import functools

from . import worlds
from .acts import ACTS, STAND_IN_ACTS
from .disturbances import BY_NAME

PART = 23  # one case in so many is run where not all are; it shares no factor with the number of disturbances
# Where a call has been disturbed in every way already, one disturbance in so many is made: in the same call of another
# act, and in a later one of the same act.
AGAIN = {"stand-in": (9, 27), "scene": (37, 74)}


def site(call):
    """Calls at one site differ in no more than their values."""
    what, arguments, keywords = call
    first = arguments[0] if arguments and isinstance(arguments[0], str) else ""
    return what, first.rpartition(".")[2] if "." in first else "", tuple(sorted(keywords))


def calls_of(make, act):
    """The calls of an act that nobody disturbs."""
    world = make()
    act.before(world)
    world.watch(-1, None)
    act.run(world)
    return world.calls


def sites(make, act):
    """[numbers] of the calls of an act at each site: the first, a middle and the last."""
    numbers = {}
    for number, call in enumerate(calls_of(make, act), 1):
        numbers.setdefault(site(call), []).append(number)
    return {where: sorted({found[0], found[len(found) // 2], found[-1]}) for where, found in numbers.items()}


def disturbed(make, act, number, name):
    world = make()
    act.before(world)
    fired = []

    def action(what, arguments, keywords):
        fired.append(what)
        BY_NAME[name](world, list(arguments) + list(keywords.values()))

    world.watch(number, action)
    raised = None
    try:
        act.run(world)
    except (Exception, KeyboardInterrupt) as error:
        raised = error
    worlds.need(fired, "the call was not made")
    worlds.need(not isinstance(raised, (SystemError, worlds.Trouble)), "it raised", repr(raised))
    worlds.need(isinstance(raised, KeyboardInterrupt) == (name == "interrupt"), "it raised", repr(raised))
    world.must_be_usable()


def _hosts():
    """The stand-in's acts, then the real scene's, which is told by the former which calls there are."""
    seen = set()
    for act in ACTS + STAND_IN_ACTS:
        seen.update(call[0] for call in calls_of(worlds.ShortWorld, act))
        yield "stand-in", worlds.ShortWorld, act
    worlds.RealWorld.names_called = seen
    for act in ACTS:
        yield "scene", worlds.RealWorld, act


def _disturbances(number, one_in):
    return [name for place, name in enumerate(BY_NAME) if (place + number) % one_in == 0]


def all_cases():
    disturbed_before = set()
    for host, make, act in _hosts():
        for where, numbers in sites(make, act).items():
            once = (host, where if make is worlds.ShortWorld else where[0])  # a real scene takes its time
            known = once in disturbed_before
            disturbed_before.add(once)
            for number in numbers:
                one_in = AGAIN[host][number != numbers[0]] if known or number != numbers[0] else 1
                for name in _disturbances(number, one_in):
                    yield "%s: %s / %s %d %s / %s" % (host, act.name, where[0], number, where[1], name), \
                        functools.partial(disturbed, make, act, number, name)


def every_call_is_made():
    """The acts leave out no command, class or method that the stand-in has."""
    maya = worlds.ShortWorld().maya
    known = {"cmds." + name for name in vars(maya.cmds)} | {"om." + name for name in vars(maya.om)} | \
        {"oma." + name for name in vars(maya.oma)}
    made = {call[0] for act in ACTS + STAND_IN_ACTS for call in calls_of(worlds.ShortWorld, act)}
    made |= {what.rpartition(".")[0] for what in made}
    left_out = {name for name in known - made if not name.partition(".")[2].startswith("_")}
    worlds.need(not left_out, "no act calls", sorted(left_out))


def cases(full):
    yield "every call is made", every_call_is_made
    for number, case in enumerate(all_cases()):
        if full or number % PART == 0:
            yield case
