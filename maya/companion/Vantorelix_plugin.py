"""The node "vantorelix": one motion trail, drawn in Viewport 2.0. Load it as a plug-in; Vantorelix_engine does so.

The engine puts the trail's points on the node, and this file draws them, with an MPxDrawOverride. Its draw manager
offers what a trail needs: lines and points with a width in pixels, also through geometry. An MPxGeometryOverride would
need shaders of its own for each of these.

The trail is drawn in the node's own space, so it moves when somebody moves the group of the trails.

Long because the engine copies this one file into the user's plug-ins folder, where nothing else of ours lies.
"""

import sys

if sys.version_info[0] < 3:
    raise ImportError("Vantorelix needs Python 3; start Maya 2022 without MAYA_PYTHON_VERSION=2.")

import contextlib
import itertools
import math
import operator
import weakref

import maya.api.OpenMaya as om
import maya.api.OpenMayaAnim as oma
import maya.api.OpenMayaRender as omr
import maya.api.OpenMayaUI as omui
import maya.cmds as cmds

VENDOR = "Vantorelix"
VERSION = "1.4.0"
NODE_NAME = "vantorelix"
# From 0x00000 - 0x7ffff, the range that Maya leaves to plug-ins for internal use. If another plug-in has taken the same
# number, only one of the two can be loaded.
NODE_ID = om.MTypeId(0x00071E52)
CLASSIFICATION = "drawdb/geometry/vantorelix"
REGISTRANT = "VantorelixPlugin"
DISPLAY_FILTER = "vantorelixDisplayFilter"
DISPLAY_FILTER_LABEL = "Vantorelix Trails"

STANDARD, SPACING, FLOW, BEATS = range(4)
# Every attribute with its short name; numbers also have their default and the two ends of their slider.
ARRAYS = {"points": "vxp", "colors": "vxc", "keyPoints": "vxkp", "keyColors": "vxkc", "keyTimes": "vxkt"}
DOUBLES = {"startFrame": ("vxsf", 1.0, None), "frameStep": ("vxfs", 1.0, None),
           "lineWidth": ("vxlw", 2.5, (0.0, 20.0)), "pointSize": ("vxps", 6.0, (0.0, 40.0))}
SWITCHES = {"showLine": ("vxsl", True, None), "showDots": ("vxsd", True, None), "xrayMode": ("vxx", True, None)}
INTEGERS = {"colorMode": ("vxm", STANDARD, (STANDARD, BEATS))}
# The arrays from which the colors of a mode are made. Without an engine, "colors" takes the place of the mode's own.
COLOR_ARRAYS = {SPACING: {"colors"}, FLOW: {"colors"}, BEATS: {"colors", "keyTimes"}}
# The colors for points for which neither the engine nor the node has one.
PLAIN = (0.15, 0.75, 0.65)
KEY_PLAIN = (1.0, 1.0, 1.0)
KEY_MARKER_SCALE = 1.6


def maya_useNewAPI():
    """Its presence tells Maya that this plug-in is written against version 2.0 of the Python interface."""


class _Reported(object):
    """Turns an error inside into a warning, so that Maya goes on drawing. The same warning is given only once, because
    an error while drawing comes back with each redraw."""

    told = set()

    def __init__(self, what, remedy=""):
        self._what, self._remedy = what, remedy

    def __enter__(self):
        pass

    def __exit__(self, kind, error, trace):
        if isinstance(error, Exception):
            text = "[Vantorelix] {0}: {1}. {2}".format(self._what, str(error).rstrip("."), self._remedy).rstrip()
            if text not in self.told:
                self.told.add(text)
                om.MGlobal.displayWarning(text)
            return True


def _maker(array, elements):
    """A function that makes an `array` from a list of tuples or from an array of vectors.

    By its documentation the constructor takes a list of the array's own elements. Whether this Maya also takes the
    others as they are is tried once, here; if not, `elements` converts them. Either way the loop over samples runs in
    C.
    """
    accepted, sample = [], (0.25, 0.5, 0.75)  # numbers that floats hold exactly
    for samples in ([sample] * 2, om.MVectorArray([om.MVector(*sample)] * 2)):
        with contextlib.suppress(Exception):
            if list(map(tuple, array(samples))) == [sample + (1.0,)] * 2:
                accepted.append(type(samples))
    return lambda values: array(values if type(values) in accepted else list(elements(values)))


_point_array = _maker(om.MPointArray, lambda vectors: map(om.MPoint, vectors))
_color_array = _maker(om.MColorArray, lambda triples: map(om.MColor, map(tuple, triples)))


def _first_numbers(vectors):
    return list(map(operator.itemgetter(0), vectors))


def _read_array(node, name, make):
    """The result of `make` for an array attribute. `make` must not keep the vectors, which may belong to the node."""
    data = node.findPlug(name, False).asMObject()
    return make(om.MFnVectorArrayData(data).array())


def _segments(count):
    """The indices of the points that the pieces of a line join: 0 1, 1 2, 2 3 and so on."""
    ends = [0] * (2 * max(0, count - 1))
    ends[0::2], ends[1::2] = range(count - 1), range(1, count)
    return om.MUintArray(ends)


def _fitted(colors, count, plain):
    """Exactly `count` colors, also while a node has new points and old colors: `plain` takes the place of missing
    ones."""
    if len(colors) == count:
        return colors
    return om.MColorArray(list(colors)[:count] + [om.MColor(plain)] * (count - len(colors)))


def _box(*arrays):
    """The box around all points in these arrays; without any, an empty box at the origin."""
    axes = [list(map(operator.itemgetter(axis), itertools.chain(*arrays))) or [0.0] for axis in range(3)]
    return om.MBoundingBox(om.MPoint(*map(min, axes)), om.MPoint(*map(max, axes)))


def _past_points(values, count):
    """The number of points at or before the current frame. The colors of Flow depend on nothing else."""
    step = values["frameStep"] if values["frameStep"] > 1e-9 else 1.0
    frame = oma.MAnimControl.currentTime().asUnits(om.MTime.uiUnit())
    return max(0, min(count, math.floor((frame - values["startFrame"]) / step) + 1))


def _engine_colors(values, count, key_times):
    """The engine's colors in the modes that do not depend on the positions."""
    import Vantorelix_engine as engine  # Not at the top: scenes with trails can be opened without the engine.

    start, step = values["startFrame"], values["frameStep"]
    if values["colorMode"] == FLOW:
        return engine.compute_temperature_colors(count, start, step)
    if values["colorMode"] == BEATS:
        return engine.compute_beats_colors(count, start, step, key_times)
    return engine.compute_standard_colors(count)


class Trail(object):
    """What is drawn for one node. It is kept from draw to draw, and each part is made again only when its sources
    change.

    A sample takes 56 bytes, all in Maya's arrays: 32 for its point, 16 for its color, 8 for its piece of the line. No
    element of an array is ever kept, because it is a reference into the array, which may shrink or be deleted.
    """

    def __init__(self):
        self.values = {name: default for numbers in (DOUBLES, SWITCHES, INTEGERS)
                       for name, (_, default, _) in numbers.items()}
        self.stale = set(ARRAYS)  # The node's arrays that have changed since they were read.
        self.points = self.key_points = om.MPointArray()
        self.colors = self.key_colors = om.MColorArray()
        self.segments = om.MUintArray()
        self.box = _box()
        self._colored_from = None  # What the colors were made from, apart from arrays.

    def update(self, node):
        """Reads what has changed on the node (`node` is its function set), and the time.

        What cannot be read stays as it was, and is tried again at the next draw.
        """
        with _Reported("The settings of a trail cannot be read", "Build it again."):
            for name, read in _READERS.items():
                self.values[name] = read(node.findPlug(name, False))
        for part, update in (("points", self._update_points), ("keys", self._update_keys),
                             ("colors", self._update_colors)):
            with _Reported("The {0} of a trail cannot be read".format(part), "Build it again."):
                update(node)
        self.colors = _fitted(self.colors, len(self.points), PLAIN)
        if self.box is None:
            self.box = _box(self.points, self.key_points)

    def _update_points(self, node):
        if "points" in self.stale:
            points = _read_array(node, "points", _point_array)
            if len(points) != len(self.points):
                self.segments = _segments(len(points))
            self.points, self.box = points, None
            self.stale.discard("points")

    def _update_keys(self, node):
        if self.stale & {"keyPoints", "keyColors"}:
            points = _read_array(node, "keyPoints", _point_array)
            colors = _read_array(node, "keyColors", _color_array)
            self.key_points, self.key_colors = points, _fitted(colors, len(points), KEY_PLAIN)
            self.stale -= {"keyPoints", "keyColors"}
            self.box = None

    def _update_colors(self, node):
        mode, count = self.values["colorMode"], len(self.points)
        sources = [mode, count]
        if mode == FLOW:
            sources.append(_past_points(self.values, count))
        elif mode == BEATS:
            sources += self.values["startFrame"], self.values["frameStep"]
        arrays = COLOR_ARRAYS.get(mode, set())
        if sources != self._colored_from or self.stale & arrays:
            self.colors = self._new_colors(node, mode, count)
            self._colored_from = sources
            self.stale -= arrays

    def _new_colors(self, node, mode, count):
        key_times = _read_array(node, "keyTimes", _first_numbers) if mode == BEATS else ()
        if mode != SPACING:
            with _Reported("Vantorelix_engine cannot give colors", "Install Vantorelix again."):
                return _color_array(_engine_colors(self.values, count, key_times))
            if mode not in COLOR_ARRAYS:
                return om.MColorArray()
        return _read_array(node, "colors", _color_array)

    def draw(self, manager):
        """Draws the trail into a drawable of its own that clicks in the viewport ignore."""
        manager.beginDrawable(omr.MUIDrawManager.kNonSelectable)
        try:
            if not self.values["xrayMode"]:
                self._draw_parts(manager)
                return
            manager.beginDrawInXray()
            try:
                self._draw_parts(manager)
            finally:
                manager.endDrawInXray()
        finally:
            manager.endDrawable()

    def _draw_parts(self, manager):
        """The line is drawn in pieces and not as a strip, because Maya draws only these through geometry."""
        width, size = self.values["lineWidth"], self.values["pointSize"]
        if self.values["showLine"] and width > 0 and len(self.points) > 1:
            manager.setLineWidth(width)
            manager.mesh(omr.MUIDrawManager.kLines, self.points, None, self.colors, self.segments)
        if self.values["showDots"] and size > 0 and len(self.points):
            manager.setPointSize(size)
            manager.mesh(omr.MUIDrawManager.kPoints, self.points, None, self.colors)
        if size > 0 and len(self.key_points):
            manager.setPointSize(size * KEY_MARKER_SCALE)
            manager.mesh(omr.MUIDrawManager.kPoints, self.key_points, None, self.key_colors)


def _number(name, short_name, kind, default, ends):
    """The ends limit only the slider: the engine writes whatever the user prefers, and must not be refused."""
    attribute = om.MFnNumericAttribute()
    made = attribute.create(name, short_name, kind, default)
    attribute.storable = attribute.writable = attribute.readable = attribute.channelBox = True
    if ends:
        attribute.setSoftMin(ends[0])
        attribute.setSoftMax(ends[1])
    return made


def _vectors(name, short_name):
    attribute = om.MFnTypedAttribute()
    # The default is an empty array, because a plug without data cannot be read.
    empty = om.MFnVectorArrayData().create(om.MVectorArray())
    made = attribute.create(name, short_name, om.MFnData.kVectorArray, empty)
    attribute.storable = attribute.writable = attribute.readable = attribute.hidden = True
    return made


_READERS = {}
for _numbers, _read in ((DOUBLES, "asDouble"), (SWITCHES, "asBool"), (INTEGERS, "asInt")):
    _READERS.update(dict.fromkeys(_numbers, operator.methodcaller(_read)))


class TrailNode(omui.MPxLocatorNode):
    """Holds one trail. Everything on it is stored with the scene, so a scene that is opened shows its trails."""

    alive = weakref.WeakSet()  # also those that only the undo queue still has
    attributes = {}

    def __init__(self):
        omui.MPxLocatorNode.__init__(self)
        self._trail = Trail()
        TrailNode.alive.add(self)

    @staticmethod
    def create():
        return TrailNode()

    @staticmethod
    def initialize():
        made = {name: _vectors(name, short_name) for name, short_name in ARRAYS.items()}
        for numbers, kind in ((DOUBLES, om.MFnNumericData.kDouble), (SWITCHES, om.MFnNumericData.kBoolean),
                              (INTEGERS, om.MFnNumericData.kInt)):
            made.update((name, _number(name, short_name, kind, default, ends))
                        for name, (short_name, default, ends) in numbers.items())
        for attribute in made.values():
            TrailNode.addAttribute(attribute)
        TrailNode.attributes = made
        with _Reported("Framing a trail may use an old size of it"):
            for name in ("points", "keyPoints"):
                TrailNode.attributeAffects(made[name], omui.MPxLocatorNode.nodeBoundingBox)

    def setDependentsDirty(self, plug, affected):
        """Maya calls this when an attribute is about to change."""
        with _Reported("A trail may not be redrawn after a change", "Build it again."):
            self._change(plug.partialName(useLongNames=True))

    def preEvaluation(self, context, evaluation):
        """Maya's evaluation manager calls this in place of setDependentsDirty, for example while a keyed line width
        plays.

        In a context other than the normal one Maya fills its cache in the background, and nothing of that is drawn.
        """
        with _Reported("A trail may not be redrawn after a change", "Build it again."):
            if context.isNormal():
                self._change(*[name for name, attribute in TrailNode.attributes.items()
                               if evaluation.dirtyPlugExists(attribute)])

    def postEvaluation(self, context, evaluation, kind):
        """Maya may announce values from its cache only here."""
        self.preEvaluation(context, evaluation)

    def getCacheSetup(self, evaluation, disabling, setup, monitored):
        """Maya calls this from 2023 on. Cached playback includes a plug-in's locator only if it asks for that here."""
        with _Reported("Cached playback does not include trails", "Trails are still drawn."):
            if hasattr(omui.MPxLocatorNode, "getCacheSetup"):
                omui.MPxLocatorNode.getCacheSetup(self, evaluation, disabling, setup, monitored)
            setup.setPreference(om.MNodeCacheSetupInfo.kWantToCacheByDefault, True)

    def _change(self, *names):
        self._trail.stale.update(name for name in names if name in ARRAYS)
        if any(name in TrailNode.attributes for name in names):
            self.redraw()

    def redraw(self):
        node = self.thisMObject()
        if om.MObjectHandle(node).isValid():
            omr.MRenderer.setGeometryDrawDirty(node, True)

    def color_mode(self):
        return self._trail.values["colorMode"]

    def trail(self):
        """The trail as the node has it now. Arrays are read when they have changed, the few numbers always."""
        self._trail.update(om.MFnDependencyNode(self.thisMObject()))
        return self._trail

    def isBounded(self):
        return True

    def boundingBox(self):
        return _guarded_box(lambda: self)

    def excludeAsLocator(self):
        """Hiding a viewport's locators does not hide trails, which have an entry of their own in the Show menu."""
        return False


def _guarded_box(find_node):
    with _Reported("The size of a trail cannot be computed", "Build it again."):
        return find_node().trail().box
    return _box()


class TrailData(om.MUserData):
    """What Maya keeps for us between preparing a draw and drawing. It may outlive the node, so it has arrays only."""

    def __init__(self):
        om.MUserData.__init__(self)  # By default Maya hands it back at the next draw instead of deleting it.
        self.trail = None


class TrailDrawOverride(omr.MPxDrawOverride):
    """Draws a node's trail. The False below means that Maya keeps the drawing until the node asks for a redraw."""

    def __init__(self, object):
        omr.MPxDrawOverride.__init__(self, object, None, False)

    @staticmethod
    def create(object):
        return TrailDrawOverride(object)

    def supportedDrawAPIs(self):
        return omr.MRenderer.kAllDevices

    def isBounded(self, path, camera):
        return True

    def boundingBox(self, path, camera):
        return _guarded_box(lambda: _node_at(path))

    def hasUIDrawables(self):
        return True

    def prepareForDraw(self, path, camera, frame, data):
        if not isinstance(data, TrailData):
            data = TrailData()
        with _Reported("A trail cannot be read", "Build it again."):  # It is drawn as it was before.
            data.trail = _node_at(path).trail()
        return data

    def addUIDrawables(self, path, manager, frame, data):
        with _Reported("A trail cannot be drawn", "Build it again."):
            if data.trail:
                data.trail.draw(manager)


def _node_at(path):
    return om.MFnDependencyNode(path.node()).userNode()


def _on_time_changed(time, client=None):
    """Redraws the trails in the mode Flow, the only one whose colors follow the time."""
    for node in list(TrailNode.alive):
        with _Reported("The colors of a trail do not follow the time", "Build it again."):
            if node.color_mode() == FLOW:
                node.redraw()


def _register_display_filter():
    """Puts an entry for trails into the Show menu of every viewport. Trails work without it, too: in a session without
    menus, and in a Maya that lacks the command."""
    if cmds.about(batch=True) or not hasattr(cmds, "pluginDisplayFilter"):
        return
    with _Reported("Trails have no entry in the Show menu", "Load the plug-in again to get it."):
        cmds.pluginDisplayFilter(DISPLAY_FILTER, register=True, label=DISPLAY_FILTER_LABEL,
                                 classification=CLASSIFICATION)
        _installed.append(lambda: cmds.pluginDisplayFilter(DISPLAY_FILTER, deregister=True))


_installed = []


def _undo(report):
    """Undoes every registration, the last one first. Goes on after an error, and passes each to `report`."""
    while _installed:
        try:
            _installed.pop()()
        except Exception as error:
            report(error)


def initializePlugin(plugin):
    handle = om.MFnPlugin(plugin, VENDOR, VERSION, "Any")
    try:
        handle.registerNode(NODE_NAME, NODE_ID, TrailNode.create, TrailNode.initialize, om.MPxNode.kLocatorNode,
                            CLASSIFICATION)
        _installed.append(lambda: om.MFnPlugin(plugin).deregisterNode(NODE_ID))
        omr.MDrawRegistry.registerDrawOverrideCreator(CLASSIFICATION, REGISTRANT, TrailDrawOverride.create)
        _installed.append(lambda: omr.MDrawRegistry.deregisterDrawOverrideCreator(CLASSIFICATION, REGISTRANT))
        watch = om.MDGMessage.addTimeChangeCallback(_on_time_changed)
        _installed.append(lambda: om.MMessage.removeCallback(watch))
        _register_display_filter()
    except Exception:
        _undo(lambda error: None)
        raise


def uninitializePlugin(plugin):
    errors = []
    _undo(errors.append)
    if errors:
        raise errors[0]
