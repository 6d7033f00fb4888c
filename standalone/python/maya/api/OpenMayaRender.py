"""Viewport 2.0, recorded: drawing calls are kept in lists, in order, and nothing is shown."""

from . import OpenMaya, _plugin
from ._plugin import MColorArray, MPointArray


class MUIDrawManager(object):
    """Keeps every call as (name, arguments), and refuses what Maya refuses."""

    kPoints, kLines, kLineStrip, kClosedLine, kTriangles, kTriStrip = range(6)
    kNonSelectable, kSelectable, kAutomatic = range(3)

    def __init__(self):
        self.drawn = []
        self._open = []

    def _add(self, name, *arguments):
        if not self._open and name != "beginDrawable":
            raise RuntimeError("{0} outside of a drawable".format(name))
        self.drawn.append((name, arguments))

    def beginDrawable(self, selectability=kAutomatic, selectionName=0):
        self._add("beginDrawable")
        self._open.append("Drawable")

    def endDrawable(self):
        self._end("Drawable")

    def beginDrawInXray(self):
        self._add("beginDrawInXray")
        self._open.append("DrawInXray")

    def endDrawInXray(self):
        self._end("DrawInXray")

    def _end(self, what):
        if not self._open or self._open[-1] != what:
            raise RuntimeError("end{0} without its begin".format(what))
        self._add("end" + what)
        self._open.pop()

    def setLineWidth(self, value):
        self._add("setLineWidth", float(value))

    def setPointSize(self, value):
        self._add("setPointSize", float(value))

    def setColor(self, color):
        self._add("setColor", color)

    def mesh(self, mode, position, normal=None, color=None, index=None, texcoord=None):
        if not isinstance(position, MPointArray):
            raise TypeError("positions are no MPointArray")
        if color is not None and (not isinstance(color, MColorArray) or len(color) != len(position)):
            raise TypeError("colors are no MColorArray with one color a position")
        self._add("mesh", mode, position, normal, color, index, texcoord)


class MRenderer(object):
    kNone, kOpenGL, kDirectX11, kOpenGLCoreProfile, kAllDevices = 0, 1, 2, 4, 7
    # The objects that are to be prepared again before the next draw.
    dirty = []

    @staticmethod
    def setGeometryDrawDirty(object, topologyChanged=True):
        MRenderer.dirty.append(object)


class MDrawRegistry(object):
    """Draw overrides by classification."""

    creators = {}

    @staticmethod
    def registerDrawOverrideCreator(classification, registrant, creator):
        if classification in MDrawRegistry.creators:
            raise RuntimeError("(kFailure): Unexpected Internal Failure")
        MDrawRegistry.creators[classification] = (registrant, creator)

    @staticmethod
    def deregisterDrawOverrideCreator(classification, registrant):
        if MDrawRegistry.creators.get(classification, (None,))[0] != registrant:
            raise RuntimeError("(kFailure): Unexpected Internal Failure")
        del MDrawRegistry.creators[classification]


class MPxDrawOverride(object):
    def __init__(self, object, callback, isAlwaysDirty=True):
        self.object, self.callback, self.always_dirty = object, callback, isAlwaysDirty


class MFrameContext(object):
    pass


class Path(object):
    """Stands for the path to a node that a viewport hands to an override."""

    def __init__(self, scene_object):
        self._object = scene_object

    def node(self):
        return self._object


class _Shown(object):
    """One node on the screen."""

    def __init__(self, twin):
        self.path = Path(twin.object)
        self.override = MDrawRegistry.creators[twin.kind.classification][1](twin.object)
        self.data = None
        self.prepared = 0
        self.drawn = []

    def prepare(self):
        self.prepared += 1
        manager = MUIDrawManager()
        self.data = self.override.prepareForDraw(self.path, None, MFrameContext(), self.data)
        self.override.addUIDrawables(self.path, manager, MFrameContext(), self.data)
        self.drawn = manager.drawn


class Viewport(object):
    """Draws the nodes of plug-ins as Viewport 2.0 does: prepares one when it is dirty, and else shows what it has."""

    def __init__(self):
        self._shown = {}

    def refresh(self):
        """What is on the screen after a refresh, by the name of the node."""
        _plugin.catch_up()
        dirty, MRenderer.dirty[:] = list(MRenderer.dirty), []
        shown = {}
        for twin in _plugin.twins:
            known = self._shown.get(twin.object)
            shown[twin.object] = known or _Shown(twin)
            if known is None or known.override.always_dirty or twin.object in dirty:
                shown[twin.object].prepare()
        self._shown = shown
        return {self._name(known): known.drawn for known in shown.values()}

    def prepared(self):
        """How often each node was prepared."""
        return {self._name(known): known.prepared for known in self._shown.values()}

    def box(self, name):
        """The corners of the box that framing this node takes."""
        for known in self._shown.values():
            if self._name(known) == name:
                box = known.override.boundingBox(known.path, None)
                return tuple(box.min)[:3], tuple(box.max)[:3]
        raise LookupError(name)

    @staticmethod
    def _name(known):
        return OpenMaya.MFnDependencyNode(known.path.node()).name()
