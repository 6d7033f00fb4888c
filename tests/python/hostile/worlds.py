"""The engine on a `maya` of which every call can be disturbed: the recording stand-in, or our package over a scene."""

import functools
import importlib
import sys
import types

import companion
import recording_maya
from support import import_engine

ITEM_KEYS = ["viz", "settings", "sampler", "times", "pos", "i", "ktimes", "kpos", "ki"]
ROUNDS = 200  # of deferred calls, after which a queue counts as endless


class Trouble(AssertionError):
    """What the law forbids."""


def need(condition, *what):
    if not condition:
        raise Trouble(" ".join(str(each) for each in what))


class Silence(object):
    """Standard output as a host call: what the engine prints goes through it, and nowhere."""

    def __init__(self, world):
        self.world = world

    def write(self, text):
        self.world.called("sys.stdout.write", (text,), {})

    def flush(self):
        pass


class World(object):
    """A fresh host with two moving objects, and a fresh engine on it.

    `watch(n, action)` runs `action(what, arguments, keywords)` inside the n-th call that the engine makes from then on,
    once; whatever it does is not counted.
    """

    keeps_views = True
    over = False  # once nothing does harm any more

    def __init__(self):
        self.now, self.tick = 1000.0, 0.0
        self.calls, self.count, self.at, self.action = [], 0, 0, None
        self.kept = []  # views that a script holds on to
        self.lists = []  # lists that a script has passed
        self.undo = []  # what takes back what an act or a disturbance has done to the host
        sys.stdout = Silence(self)
        self.clock = types.ModuleType("time")
        self.clock.time = self.time
        self.start_host()
        self.use(import_engine())
        self.handles = {name: getattr(self.engine, name) for name in ("cmds", "om", "oma", "time")}

    def use(self, engine):
        """The engine as it is after an import or a reload, which gave it a clock of its own."""
        self.engine = engine
        engine.time = self.clock

    # --- the engine's calls --------------------------------------------------------------------------------------

    def watch(self, n, action):
        self.calls, self.count, self.at, self.action = [], 0, n, action

    def called(self, what, arguments, keywords):
        if self.at is None:
            return
        self.count += 1
        self.calls.append((what, arguments, keywords))
        if self.count != self.at:
            return
        action, self.at = self.action, None
        try:
            action(what, arguments, keywords)
        finally:
            self.at = 0

    def answer(self, call, value):
        return value

    def time(self):
        self.called("time.time", (), {})
        self.now += self.tick
        return self.answer(("time.time", (), {}), self.now)

    def change(self, owner, name, value):
        self.undo.append(functools.partial(setattr, owner, name, getattr(owner, name)))
        setattr(owner, name, value)

    def mend_handles(self):
        """The handles are the host's again, whatever was done to them."""
        while self.undo:
            self.undo.pop()()
        for name, handle in self.handles.items():
            setattr(self.engine, name, handle)

    # --- what a user, a tool or an idle application does -------------------------------------------------------------

    def quiet(self):
        self.now += 1.0

    def edit(self):
        self.tell_of_edit()
        self.quiet()

    def run_queue(self):
        for _ in range(ROUNDS):
            if not self.pump():
                return
        raise Trouble("the queue does not end")

    def passed(self, values):
        """A list that a script passes, and changes when it likes."""
        self.lists.append(values)
        return values

    def make_trails(self):
        self.select(self.objects)
        self.engine.create_trail(samples_per_frame=1)

    # --- what must hold ----------------------------------------------------------------------------------------------

    def read_state(self):
        """Every piece of state that a script can read, each of its type; views are kept."""
        e = self.engine
        for name, kinds in (("_GEN", int), ("_LAST_EDIT", float), ("_PENDING", bool), ("_REBUILDING", bool)):
            need(type(getattr(e, name)) is kinds, name, getattr(e, name))
        e._CB_ID, e._MSG_HANDLER, [dict(settings) for settings in e._REGISTRY.values()]
        self.read_work(e._WORK)

    def read_work(self, work):
        if work is None:
            return
        need(list(work) == ["gen", "items", "k", "start", "end"], "the keys of a record are", list(work))
        need(type(work["k"]) is int and work["k"] >= 0, "k is", work["k"])
        for item in work["items"]:
            check_item(item)
            if self.keeps_views:
                self.kept.append(item)

    def must_be_usable(self):
        """No state is broken, the queue comes to its end, a fresh trail is right and follows an edit."""
        e = self.engine
        self.at, self.over = None, True
        self.mend_handles()
        self.tick = 0.0
        self.read_state()
        need(e._REBUILDING is False, "_REBUILDING stays set")
        self.quiet()
        self.run_queue()
        for item in self.kept:
            check_item(item)
        e.clear_trails()
        self.run_queue()
        need((len(e._REGISTRY), e._CB_ID, e._WORK, e._PENDING) == (0, None, None, False),
             "clearing leaves state behind")
        self.mend_scene()
        self.make_trails()
        need(len(e._REGISTRY) == len(self.objects), "fresh trails are in the registry:", dict(e._REGISTRY))
        self.must_be_exact("a fresh trail")
        self.change_motion()
        self.edit()
        need(e._PENDING is True, "an edit queues no step")
        self.run_queue()
        self.must_be_exact("an edited trail")
        need((e._WORK, e._PENDING, e._REBUILDING) == (None, False, False), "the queue does not come to rest")

    def must_be_exact(self, what):
        for name in self.names:
            need(self.points(name) == self.motion(name), what, name, "is", self.points(name), "not", self.motion(name))


def check_item(item):
    """All nine fields of a work item, each of its type, and what must hold between them."""
    need(list(item) == ITEM_KEYS, "the keys of an item are", list(item))
    field = {key: item[key] for key in ITEM_KEYS}
    need(type(field["viz"]) is str, "viz is", field["viz"])
    dict(field["settings"])
    need(field["sampler"] is None or callable(field["sampler"]), "sampler is", field["sampler"])
    for times, positions, index in (("times", "pos", "i"), ("ktimes", "kpos", "ki")):
        planned = field[times]
        need(planned is None or type(planned) is list and all(type(t) is float for t in planned), times, "is", planned)
        need(type(field[index]) is int and 0 <= field[index] <= len(planned or ()), index, "is", field[index])
        need(type(field[positions]) is list and len(field[positions]) == field[index], positions, "has",
             len(field[positions]), "entries,", index, "is", field[index])
        for position in field[positions]:
            need(type(position) is tuple and len(position) == 3 and all(type(x) is float for x in position), position)
    return field


class _Recording(recording_maya.Maya):
    """The recording stand-in, which tells a world of each call."""

    def __init__(self, world):
        self.world = world
        super(_Recording, self).__init__()

    def record(self, what, args=(), kwargs=None):
        self.world.called(what, args, kwargs or {})

    def answered(self, call, value):
        return self.world.answer(call, value)


class RecordingWorld(World):
    frames = (1.0, 5.0)
    scene = {"ball": (lambda t: (t, 0.0, 0.0), [5.0, 1.0, 1.0]), "cube": (lambda t: (0.0, t * t, 1.0), [2.0, 4.0])}

    def start_host(self):
        self.maya = _Recording(self)
        self.maya.range = self.frames
        self.new_scene()
        self.place(self.scene)

    def place(self, scene):
        """{name: (motion, key times)} of all that moves."""
        self.scene, self.names, self.objects = scene, list(scene), ["|" + name for name in scene]
        self.mend_scene()

    def select(self, objects):
        self.maya.selection = list(objects)

    def tell_of_edit(self):
        self.maya.send("addAnimCurveEditedCallback")

    def pump(self):
        return self.maya.run_deferred()

    def new_scene(self):
        for what in (self.maya.nodes, self.maya.motions, self.maya.keys):
            what.clear()
        self.maya.selection = []

    def mend_scene(self):
        for name, (motion, keys) in self.scene.items():
            self.maya.motions["|" + name], self.maya.keys["|" + name] = motion, keys

    def change_motion(self):
        self.maya.motions["|" + self.names[0]] = lambda t: (3.0 * t, 1.0, 0.0)

    def motion(self, name):
        first, last = self.frames
        return [self.maya.motions["|" + name](first + i) for i in range(int(last - first) + 1)]

    def points(self, name):
        return self.maya.shape(name)["points"]

    def lose(self, name):
        del self.maya.motions["|" + name]

    def remove_node(self, name):
        recording_maya.Commands(self.maya).delete(name)

    def shape_of(self, name):
        return "vlx_%s_vizShape" % name


class ShortWorld(RecordingWorld):
    """With less to do, for groups of thousands of cases."""

    frames = (1.0, 4.0)
    scene = {"ball": (lambda t: (t, 0.0, 0.0), [3.0, 1.0, 1.0]), "cube": (lambda t: (0.0, t * t, 1.0), [2.0])}


class OneTrail(ShortWorld):
    keeps_views = False
    scene = {"ball": ShortWorld.scene["ball"]}


class _Spy(object):
    """Wraps what the engine calls of our package `maya`, for good; calls inside such a call are the package's own."""

    world, depth = None, 0

    @classmethod
    def wrapped(cls, what, function, owned):
        def call(*arguments, **keywords):
            if cls.world is None or cls.depth:
                return function(*arguments, **keywords)
            cls.world.called(what, arguments[1:] if owned else arguments, keywords)
            cls.depth += 1
            try:
                return function(*arguments, **keywords)
            finally:
                cls.depth -= 1

        return call

    @classmethod
    def install(cls, handles, names):
        for what in sorted(names):
            handle, _, path = what.partition(".")
            holder, _, attribute = path.rpartition(".")
            if handle not in handles:
                continue
            owner = getattr(handles[handle], holder) if holder else handles[handle]
            target = getattr(owner, attribute)
            if isinstance(target, type):
                target.__init__ = cls.wrapped(what, target.__init__, True)
            elif isinstance(owner, type) and not isinstance(owner.__dict__.get(attribute, None), types.FunctionType):
                setattr(owner, attribute, staticmethod(cls.wrapped(what, target, False)))
            else:
                setattr(owner, attribute, cls.wrapped(what, target, isinstance(owner, type)))


class RealWorld(World):
    """Our package `maya` with the example of an arm open, a short range, and what `names_called` has found wrapped."""

    names, frames = ["fingertip"], (1.0, 4.0)
    names_called = ()
    scripts = None  # the package's own commands, unwrapped

    def start_host(self):
        _Spy.world = None
        maya = companion.use_host()
        self.host, self.utils, self.cmds = maya.host, importlib.import_module("maya.utils"), maya.cmds
        if RealWorld.scripts is None:
            RealWorld.scripts = types.SimpleNamespace(**{n: f for n, f in vars(self.cmds).items() if callable(f)})
            _Spy.install({"cmds": maya.cmds, "om": maya.api.OpenMaya, "oma": maya.api.OpenMayaAnim}, self.names_called)
        self.host.restart()
        self.open()
        _Spy.world = self

    def open(self):
        self.scripts.file(companion.HostTest.ARM, open=True, force=True)
        self.scripts.playbackOptions(min=self.frames[0], max=self.frames[1])
        self.objects = self.scripts.ls(self.names, long=True)

    def select(self, objects):
        self.scripts.select(objects)

    def set_key(self, value):
        self.scripts.setKeyframe("upperArm", at="rotateZ", t=2, v=value)

    def tell_of_edit(self):
        self.set_key(self.now % 40.0)

    def pump(self):
        queued = [call for queue in self.host.deferred for call in queue]
        for queue in self.host.deferred:
            queue.clear()
        for call in queued:
            call()
        return bool(queued)

    def new_scene(self):
        self.scripts.file(newFile=True, force=True)

    def mend_scene(self):
        if not self.scripts.objExists(self.names[0]):
            self.open()

    def change_motion(self):
        pass  # the edit does it

    def motion(self, name):
        first, last = self.frames
        return [tuple(self.scripts.getAttr(name + ".worldMatrix[0]", time=first + i)[12:15])
                for i in range(int(last - first) + 1)]

    def points(self, name):
        [shape] = self.scripts.listRelatives("vlx_%s_viz" % name, shapes=True, fullPath=True)
        return [tuple(point) for point in self.scripts.getAttr(shape + ".points")]

    def lose(self, name):
        self.scripts.delete(name)

    def remove_node(self, name):
        self.scripts.delete(name)

    def shape_of(self, name):
        return "vlx_%s_vizShape" % name
