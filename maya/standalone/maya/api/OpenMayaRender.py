"""Viewport 2.0, recorded: drawing calls are kept in lists, in their order, and nothing is shown."""

from .. import host
from . import OpenMaya, _plugin
from ._arrays import MColorArray, MPointArray, MUintArray
from .OpenMayaUI import MPxLocatorNode


class MUIDrawManager(object):
    """Keeps every call as (name, arguments), and refuses the calls that Maya refuses."""

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
        self._add("beginDrawable", selectability)
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
            raise TypeError("positions are not an MPointArray")
        if color is not None and (not isinstance(color, MColorArray) or len(color) != len(position)):
            raise TypeError("colors are not an MColorArray with one color a position")
        if index is not None and not (isinstance(index, MUintArray) and all(i < len(position) for i in index)):
            raise TypeError("indices are not an MUintArray of places in the positions")
        if "DrawInXray" in self._open and mode not in (self.kPoints, self.kLines, self.kTriangles):
            raise RuntimeError("in x-ray only points, lines and triangles are drawn through geometry")
        self._add("mesh", mode, position, normal, color, index, texcoord)


class MRenderer(object):
    kNone, kOpenGL, kDirectX11, kOpenGLCoreProfile, kAllDevices = 0, 1, 2, 4, 7
    # The objects that have to be prepared again before the next draw.
    dirty = []

    @staticmethod
    def setGeometryDrawDirty(object, topologyChanged=True):
        object.node()  # Raises for a node that is gone; Maya's documentation does not say what happens then.
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
    """The path to a node, as a viewport passes it to an override."""

    def __init__(self, scene_object):
        self._object = scene_object

    def node(self):
        return self._object


class _Shown(object):
    """One node of a plug-in and its draw override."""

    def __init__(self, twin):
        self.twin = twin
        self.path = Path(twin.object)
        self.override = MDrawRegistry.creators[twin.kind.classification][1](twin.object)
        self.dirty = True
        self.data = self._box = None
        self.prepared = 0
        self.drawn = []

    def is_shown_in(self, panel):
        """Whether every entry of the panel's Show menu that concerns this node is on."""
        filters = [name for name, (_, classification, _) in host.display_filters.items()
                   if classification == self.twin.kind.classification]
        if isinstance(self.twin.node, MPxLocatorNode) and self.twin.node.excludeAsLocator():
            filters.append("locators")
        return not any((panel, name) in host.hidden for name in filters)

    def refresh(self):
        if not (self.dirty or self.override.always_dirty):
            return
        self.dirty = False
        self.prepared += 1
        manager = MUIDrawManager()
        self.data = self.override.prepareForDraw(self.path, None, MFrameContext(), self.data)
        self.override.addUIDrawables(self.path, manager, MFrameContext(), self.data)
        self.drawn = manager.drawn

    def box(self):
        """The node's box, which is asked for again only if an attribute that affects it has changed."""
        if self._box is None or MPxLocatorNode.nodeBoundingBox in self.twin.dirty:
            self.twin.dirty.discard(MPxLocatorNode.nodeBoundingBox)
            self._box = self.override.boundingBox(self.path, None)
        return self._box


class Viewport(object):
    """Draws the nodes of plug-ins as Viewport 2.0 does: it prepares a node only if that is dirty."""

    def __init__(self):
        self._known = {}

    def refresh(self, panel="modelPanel4"):
        """The drawing calls of each node that this panel shows after a refresh, by the node's name."""
        _plugin.catch_up()
        self._known = {twin.object: self._known.get(twin.object) or _Shown(twin) for twin in _plugin.twins}
        for changed in MRenderer.dirty:
            if changed in self._known:
                self._known[changed].dirty = True
        del MRenderer.dirty[:]
        shown = [known for known in self._known.values() if known.is_shown_in(panel)]
        for known in shown:
            known.refresh()
        return {self._name(known): known.drawn for known in shown}

    def prepared(self):
        """How often each node was prepared."""
        return {self._name(known): known.prepared for known in self._known.values()}

    def box(self, name):
        """The corners of the box that is used to frame this node."""
        for known in self._known.values():
            if self._name(known) == name:
                box = known.box()
                return tuple(box.min)[:3], tuple(box.max)[:3]
        raise LookupError(name)

    @staticmethod
    def _name(known):
        return OpenMaya.MFnDependencyNode(known.path.node()).name()
