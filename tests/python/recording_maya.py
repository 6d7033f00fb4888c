"""A stand-in of `maya` that writes down every call, over the smallest scene that trails need.

A call is (what, positional arguments, keywords), where `what` is as a script writes it: "cmds.setAttr",
"om.MSelectionList", "om.MSelectionList.add", "time.time". `Maya.fail(k, error)` makes the k-th call from then on raise.
"""

import os
import sys
import types

TRAIL_TYPE = "vantorelix"


class Maya(object):
    """The scene, its calls, and the modules that make them."""

    def __init__(self):
        self.calls = []
        self.failures = {}
        self.count = 0
        self.now = 1000.0
        self.tick = 0.0  # seconds that pass at each look at the clock
        self.motions = {"|ball": lambda t: (t, 0.0, 0.0), "|cube": lambda t: (0.0, t * t, 1.0)}
        self.keys = {"|ball": [5.0, 1.0, 1.0], "|cube": None}
        self.selection = ["|ball"]
        self.range = (1.0, 5.0)
        self.frame = 1.0
        self.nodes = {}  # name -> attributes, of what the engine has made
        self.options = {}
        self.deferred = []
        self.listeners = {}
        self.loaded = True
        self.batch = False
        self.busy = set()  # of "isReadingFile", ..., "isPlaying"
        self.user_folder = os.devnull + "/"  # in which no folder can be made
        self.install()

    # --- recording ---------------------------------------------------------------------------------------------

    def record(self, what, args=(), kwargs=None):
        self.count += 1
        self.calls.append((what, args, kwargs or {}))
        error = self.failures.pop(self.count, None)
        if error is not None:
            raise error

    def answered(self, call, value):
        """What a call gives; a test may say otherwise."""
        return value

    def fail(self, k, error):
        self.failures[self.count + k] = error

    def taken(self, without=("time.time",)):
        """The calls so far, which are then forgotten."""
        calls = [call for call in self.calls if call[0] not in without]
        self.calls = []
        return calls

    def function(self, what, body):
        def recorded(*args, **kwargs):
            self.record(what, args, kwargs)
            return self.answered((what, args, kwargs), body(*args, **kwargs))

        recorded.__name__ = what.rpartition(".")[2]
        return recorded

    # --- the modules -------------------------------------------------------------------------------------------

    def install(self):
        maya = types.ModuleType("maya")
        maya.api = types.ModuleType("maya.api")
        maya.cmds = self.cmds = self.module("cmds", Commands(self))
        self.om = maya.api.OpenMaya = object_model(self)
        self.oma = maya.api.OpenMayaAnim = animation_model(self)
        maya.__path__ = maya.api.__path__ = []
        sys.modules.update({"maya": maya, "maya.cmds": maya.cmds, "maya.api": maya.api,
                            "maya.api.OpenMaya": self.om, "maya.api.OpenMayaAnim": self.oma})

    def module(self, name, commands):
        module = types.ModuleType(name)
        for command in dir(commands):
            if not command.startswith("_"):
                setattr(module, command.rstrip("_") if command == "delete_" else command,
                        self.function("cmds." + command, getattr(commands, command)))
        return module

    def clock(self):
        """A `time` module whose hands are turned by the test."""
        module = types.ModuleType("time")

        def time():
            self.record("time.time")
            self.now += self.tick
            return self.now

        module.time = time
        return module

    # --- what a test does to the scene -------------------------------------------------------------------------

    def run_deferred(self):
        """Runs what is queued, once; true when there was something."""
        queued, self.deferred = self.deferred, []
        for function in queued:
            function()
        return bool(queued)

    def send(self, message):
        for function in list(self.listeners.values()):
            if function[0] == message:
                function[1]("whatever", "Maya passes")

    def shape(self, name):
        [shape] = [n for n in self.nodes if n.startswith("|vantorelixs_grp|vlx_%s_viz|" % name)]
        return self.nodes[shape]


class Commands(object):
    """The commands that the engine calls, and no flag beside those it uses."""

    def __init__(self, scene):
        self._scene = scene

    def ls(self, sl=False, long=False, type=None):
        if type:
            return [n.rpartition("|")[2] for n, a in self._scene.nodes.items() if a.get("type") == type] or None
        return list(self._scene.selection)

    def objExists(self, name):
        return name in self._scene.motions or self._found(name) is not None

    def _found(self, name):
        for node in self._scene.nodes:
            if node == name or node.rpartition("|")[2] == name:
                return node
        return None

    def listRelatives(self, node, parent=False, s=False, fullPath=False):
        path = self._found(node)
        if parent:
            return [path.rpartition("|")[0]]
        return [n for n in self._scene.nodes if n.rpartition("|")[0] == path] or None

    def select(self, names=None, replace=False, clear=False):
        self._scene.selection = list(names or [])

    def createNode(self, type, name):
        transform, name = self._free("transform1"), self._free(name)
        self._scene.nodes["|" + transform] = {}
        self._scene.nodes["|%s|%s" % (transform, name)] = {"type": type}
        return name

    def _free(self, name):
        """The name, with another number at its end where there is a node of that name."""
        free, number = name, 1
        while self._found(free):
            free, number = name.rstrip("0123456789") + str(number), number + 1
        return free

    def rename(self, node, name):
        self._move(node, "|" + name)
        return name

    def parent(self, node, parent):
        self._move(self._found(node), self._found(parent) + "|" + node)

    def _move(self, old, new):
        nodes = self._scene.nodes
        for path in [n for n in nodes if n == old or n.startswith(old + "|")]:
            nodes[new + path[len(old):]] = nodes.pop(path)

    def group(self, em, name):
        self._scene.nodes["|" + name] = {}
        return name

    def delete(self, node):
        path = self._found(node)
        for n in [n for n in self._scene.nodes if n == path or n.startswith(path + "|")]:
            del self._scene.nodes[n]

    def curve(self, d, p, name):
        self._scene.nodes["|" + name] = {"degree": d, "points": p}
        return name

    def getAttr(self, attribute, time):
        x, y, z = self._scene.motions[attribute.partition(".")[0]](time)
        return [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1]

    def setAttr(self, attribute, value):
        node, _, name = attribute.partition(".")
        path = self._found(node)
        if path is None:
            raise RuntimeError("No object matches name: " + attribute)
        self._scene.nodes[path][name] = value

    def keyframe(self, node, q, timeChange):
        return self._scene.keys[node]

    def playbackOptions(self, q, **which):
        return self._scene.range[0 if "min" in which else 1]

    def currentTime(self, q):
        return self._scene.frame

    def evalDeferred(self, function, lowestPriority):
        self._scene.deferred.append(function)

    def refresh(self):
        pass

    def inViewMessage(self, amg, pos, fade, alpha):
        pass

    def warning(self, text):
        pass

    def getPanel(self, type):
        return ["modelPanel1", "modelPanel4"]

    def modelEditor(self, panel, q=False, e=False, motionTrails=False):
        return panel == "modelPanel1"

    def optionVar(self, exists=None, q=None, iv=None, fv=None, stringValueAppend=None):
        options = self._scene.options
        if exists:
            return int(exists in options)
        if q:
            return options.get(q, 0)
        name, value = iv or fv or stringValueAppend
        options[name] = value

    def about(self, batch=False, version=False):
        return self._scene.batch if batch else "2024.1"

    def internalVar(self, userAppDir):
        return self._scene.user_folder

    def pluginInfo(self, name, q, loaded):
        return self._scene.loaded

    def loadPlugin(self, path, quiet):
        raise RuntimeError("Plug-in, \"%s\", was not found on MAYA_PLUG_IN_PATH." % path)


def object_model(scene):
    om = types.ModuleType("maya.api.OpenMaya")

    def recorded(what, owner=None):
        def decorate(body):
            full = "om." + (owner + "." if owner else "") + what

            def call(*args, **kwargs):
                scene.record(full, args[1:] if owner else args, kwargs)
                return scene.answered((full, args, kwargs), body(*args, **kwargs))

            return call

        return decorate

    def make_class(name, methods, construct=None):
        """A class whose construction and methods are written down."""

        def init(self, *args):
            scene.record("om." + name, args)
            self.args = args
            if construct:
                construct(self, *args)

        body = {method: recorded(method, name)(function) for method, function in methods.items()}
        body["__init__"] = init
        setattr(om, name, type(name, (), body))

    def find_plug(self, attribute, networked):
        return om.MPlug(self.args[0], attribute)

    def add(self, node):
        if node not in scene.motions and Commands(scene)._found(node) is None:
            raise RuntimeError("(kInvalidParameter): Object does not exist")
        self.node = node

    make_class("MSelectionList", {"add": add, "getDependNode": lambda self, i: self.node})
    make_class("MFnDependencyNode", {"findPlug": find_plug})
    make_class("MTime", {"asUnits": lambda self, unit: self.args[0]})
    make_class("MDGContext", {})
    make_class("MFnMatrixData", {"matrix": lambda self: Matrix(scene, *self.args[0])})
    make_class("MVector", {})
    make_class("MVectorArray", {"append": lambda self, v: self.values.append(v.args)},
               lambda self, values=(): setattr(self, "values", list(values)))
    make_class("MFnVectorArrayData", {"create": lambda self, array: array})

    class Plug(object):
        def __init__(self, node, attribute):
            self.node, self.attribute = node, attribute

        @recorded("elementByLogicalIndex", "MPlug")
        def elementByLogicalIndex(self, index):
            return self

        @recorded("asMObject", "MPlug")
        def asMObject(self, context):
            return self.node, context.args[0].args[0]

        @recorded("setMObject", "MPlug")
        def setMObject(self, data):
            scene.nodes[Commands(scene)._found(self.node)][self.attribute] = data.values

    class Matrix(object):
        def __init__(self, scene, node, t):
            self.row = scene.motions[node](t)

        @recorded("getElement", "MMatrix")
        def getElement(self, row, column):
            assert row == 3
            return self.row[column]

    om.MPlug = Plug
    om.MTime.uiUnit = staticmethod(scene.function("om.MTime.uiUnit", lambda: 6))

    def questions(*names):
        return {n: staticmethod(scene.function("om.MFileIO." + n, lambda n=n: n in scene.busy)) for n in names}

    om.MFileIO = type("MFileIO", (), questions("isReadingFile", "isWritingFile", "isOpeningFile", "isNewingFile"))
    om.MDGMessage = type("MDGMessage", (), {"addNodeRemovedCallback": staticmethod(
        listener(scene, "om.MDGMessage.addNodeRemovedCallback"))})
    om.MMessage = type("MMessage", (), {"removeCallback": staticmethod(
        scene.function("om.MMessage.removeCallback", lambda identifier: scene.listeners.pop(identifier)))})
    return om


def listener(scene, what):
    def add(function, *client_data):
        identifier = max(scene.listeners or [10]) + 1
        scene.listeners[identifier] = (what.rpartition(".")[2], function)
        return identifier

    return scene.function(what, add)


def animation_model(scene):
    oma = types.ModuleType("maya.api.OpenMayaAnim")
    oma.MAnimControl = type("MAnimControl", (), {
        "isPlaying": staticmethod(scene.function("oma.MAnimControl.isPlaying", lambda: "isPlaying" in scene.busy)),
        "currentTime": staticmethod(scene.function("oma.MAnimControl.currentTime",
                                                   lambda: scene.om.MTime(scene.frame, 6))),
    })
    oma.MAnimMessage = type("MAnimMessage", (), {
        name: staticmethod(listener(scene, "oma.MAnimMessage." + name))
        for name in ("addAnimCurveEditedCallback", "addAnimKeyframeEditedCallback")})
    return oma
