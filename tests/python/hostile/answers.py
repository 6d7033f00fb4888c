"""Every call of Maya that the engine makes, answered by every odd value, and failing with every odd error."""

import functools

from . import worlds
from .acts import ACTS, STAND_IN_ACTS
from .calls import site
from .oddities import BY_NAME, harmful_error

PART = 17


class _Told(Exception):
    """An error with a text of its own kind."""

    def __init__(self, text):
        super(_Told, self).__init__()
        self.text = text

    def __str__(self):
        return self.text if isinstance(self.text, (str, int)) else self.text()


def _no_text():
    raise LookupError("no text")


ERRORS = {
    "a text that is none": lambda world: _Told(3),
    "no text": lambda world: _Told(_no_text),
    "a lone surrogate": lambda world: RuntimeError("\ud800"),
    "a zero byte": lambda world: RuntimeError("a\0b"),
    "a percent sign": lambda world: RuntimeError("%s %d {0} {}"),
    "a deep cause": lambda world: RecursionError(),
    "no memory": lambda world: MemoryError(),
    "the end of an iteration": lambda world: StopIteration(),
    "the end of a generator": lambda world: GeneratorExit(),
    "a key": lambda world: KeyError("ref"),
    "an exit": lambda world: SystemExit(3),
    "harm": harmful_error,
}


def play(act, wanted, answer, error):
    world = worlds.OneTrail()
    act.before(world)
    answered = []

    def odd(call, value):
        if site(call) != wanted or len(answered) > 50:
            return value
        answered.append(call)
        if error:
            raise error(world)
        return answer(world)

    world.answer = odd
    try:
        act.run(world)
    except SystemError:
        raise
    except worlds.Trouble:
        pass  # a queue that Maya itself keeps from ending
    except (Exception, GeneratorExit, SystemExit):
        pass
    worlds.need(answered, "the call was not made")
    world.answer = lambda call, value: value
    world.engine._LAST_EDIT = 0.0  # a clock that went astray is right again
    world.must_be_usable()


def answered_sites(act):
    """The calls of an act that give something; what a class makes is not among them."""
    world, found = worlds.OneTrail(), []
    act.before(world)
    world.answer = lambda call, value: found.append(site(call)) or value
    act.run(world)
    return list(dict.fromkeys(found))


def all_cases():
    told = set()
    for act in ACTS + STAND_IN_ACTS:
        for wanted in answered_sites(act):
            if wanted in told:
                continue
            told.add(wanted)
            where = "%s / %s" % (act.name, " ".join([wanted[0], wanted[1]] + list(wanted[2])))
            for name, answer in BY_NAME.items():
                yield "%s / gives %s" % (where, name), functools.partial(play, act, wanted, answer, None)
            for name, error in ERRORS.items():
                yield "%s / raises %s" % (where, name), functools.partial(play, act, wanted, None, error)


def cases(full):
    for number, case in enumerate(all_cases()):
        if full or number % PART == 0:
            yield case
