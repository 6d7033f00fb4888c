"""The node "vantorelix": one motion trail, drawn in Viewport 2.0. Load it as a plug-in; Vantorelix_engine does so.

The engine puts the trail's points on the node and this file draws them. It is drawn by an MPxDrawOverride and not by an
MPxGeometryOverride: what is drawn is lines and points of a width in pixels, some of them through geometry, and that is
what the override's draw manager offers; a geometry override would need shaders of its own for each of the three.

The trail is drawn in the node's own space, so it moves along when somebody moves the group of the trails.
"""

import operator
import weakref

import maya.api.OpenMaya as om
import maya.api.OpenMayaAnim as oma
import maya.api.OpenMayaRender as omr
import maya.api.OpenMayaUI as omui

VENDOR = "Vantorelix"
VERSION = "1.0"
NODE_NAME = "vantorelix"
# From 0x00000 - 0x7ffff, which Maya leaves to everybody for use in their own house. Another in-house plug-in may have
# taken the same number; then only one of the two can be loaded.
NODE_ID = om.MTypeId(0x00071E52)
CLASSIFICATION = "drawdb/geometry/vantorelix"
REGISTRANT = "VantorelixPlugin"

STANDARD, SPACING, FLOW, BEATS = range(4)
# Every attribute with its short name; the numbers also with their default and the ends of their slider.
ARRAYS = {"points": "vxp", "colors": "vxc", "keyPoints": "vxkp", "keyColors": "vxkc", "keyTimes": "vxkt"}
DOUBLES = {"startFrame": ("vxsf", 1.0, None), "frameStep": ("vxfs", 1.0, None),
           "lineWidth": ("vxlw", 2.5, (0.0, 20.0)), "pointSize": ("vxps", 6.0, (0.0, 40.0))}
SWITCHES = {"showLine": ("vxsl", True, None), "showDots": ("vxsd", True, None), "xrayMode": ("vxx", True, None)}
INTEGERS = {"colorMode": ("vxm", STANDARD, (STANDARD, BEATS))}
# What the colours of the points are made of, beside the mode.
COLOR_SOURCES = {"points", "colors", "keyTimes", "startFrame", "frameStep", "colorMode"}
# Drawn where neither the engine nor the node has a colour.
PLAIN = (0.15, 0.75, 0.65)
KEY_PLAIN = (1.0, 1.0, 1.0)
KEY_MARKER_SCALE = 1.6


def maya_useNewAPI():
    """Its presence tells Maya that this plug-in is written against version 2.0 of the Python interface."""


_reported = set()


def _report_once(what, error):
    """A failure while drawing comes back with each redraw; it is told the first time only."""
    text = "[Vantorelix] {0}: {1}".format(what, error)
    if text not in _reported:
        _reported.add(text)
        om.MGlobal.displayWarning(text)


def _current_frame():
    return oma.MAnimControl.currentTime().asUnits(om.MTime.uiUnit())


def _past_points(values):
    """How many of the points lie at or before the current frame: all that the flow's colours depend on."""
    step = values["frameStep"] if values["frameStep"] > 1e-9 else 1.0
    return max(0, min(len(values["points"]), int((_current_frame() - values["startFrame"]) // step) + 1))


def _engine_colors(values):
    """The colours that the engine gives the points in the modes that need no more than their number."""
    import Vantorelix_engine as engine  # Late: a scene with trails opens also where the engine is not installed.

    count, start, step = len(values["points"]), values["startFrame"], values["frameStep"]
    if values["colorMode"] == FLOW:
        return engine.compute_temperature_colors(count, start, step)
    if values["colorMode"] == BEATS:
        return engine.compute_beats_colors(count, start, step, [time[0] for time in values["keyTimes"]])
    return engine.compute_standard_colors(count)


def _padded(colors, count, plain):
    """Exactly `count` colours: half a write (new points, old colours) is drawn with what is there."""
    return [tuple(color) for color in colors[:count]] + [plain] * (count - len(colors))


def _point_colors(values):
    count = len(values["points"])
    if values["colorMode"] != SPACING:
        try:
            return _padded(_engine_colors(values), count, PLAIN)
        except Exception as error:
            _report_once("Colors of the engine are not to be had; drawn without", error)
            if values["colorMode"] not in (FLOW, BEATS):
                return [PLAIN] * count
    return _padded(values["colors"], count, PLAIN)


def _point_array(points):
    return om.MPointArray([om.MPoint(point[0], point[1], point[2]) for point in points])


def _color_array(colors):
    return om.MColorArray([om.MColor(color) for color in colors])


def _box(points):
    """The box of all `points`; without any, one of no size at the origin."""
    if not points:
        return om.MBoundingBox(om.MPoint(0.0, 0.0, 0.0), om.MPoint(0.0, 0.0, 0.0))
    axes = list(zip(*points))
    low, high = [min(axis) for axis in axes], [max(axis) for axis in axes]
    return om.MBoundingBox(om.MPoint(low[0], low[1], low[2]), om.MPoint(high[0], high[1], high[2]))


class Trail(object):
    """What is drawn for one node, kept from draw to draw; each part is made anew only when its sources changed."""

    def __init__(self):
        self.values = {name: [] for name in ARRAYS}
        for numbers in (DOUBLES, SWITCHES, INTEGERS):
            self.values.update((name, default) for name, (_, default, _) in numbers.items())
        self.past_points = None
        self.points = self.key_points = _point_array(())
        self.colors = self.key_colors = _color_array(())
        self.box = _box(())

    def update(self, changed):
        """Takes over `changed`, new values by attribute, and the time."""
        self.values.update(changed)
        names = set(changed)
        if "points" in names:
            self.points = _point_array(self.values["points"])
        if names & {"points", "keyPoints"}:
            self.box = _box(self.values["points"] + self.values["keyPoints"])
        if self._time_matters() or names & COLOR_SOURCES:
            self.colors = _color_array(_point_colors(self.values))
        if names & {"keyPoints", "keyColors"}:
            keys = self.values["keyPoints"]
            self.key_points = _point_array(keys)
            self.key_colors = _color_array(_padded(self.values["keyColors"], len(keys), KEY_PLAIN))

    def _time_matters(self):
        before, self.past_points = self.past_points, None
        if self.values["colorMode"] == FLOW:
            self.past_points = _past_points(self.values)
        return self.past_points != before

    def draw(self, manager):
        manager.beginDrawable()
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
        width, size = self.values["lineWidth"], self.values["pointSize"]
        if self.values["showLine"] and width > 0 and len(self.points) > 1:
            manager.setLineWidth(width)
            manager.mesh(omr.MUIDrawManager.kLineStrip, self.points, None, self.colors)
        if self.values["showDots"] and size > 0 and len(self.points):
            manager.setPointSize(size)
            manager.mesh(omr.MUIDrawManager.kPoints, self.points, None, self.colors)
        if size > 0 and len(self.key_points):
            manager.setPointSize(size * KEY_MARKER_SCALE)
            manager.mesh(omr.MUIDrawManager.kPoints, self.key_points, None, self.key_colors)


def _number(name, brief, kind, default, ends):
    """Limits are the slider's only: the engine writes whatever the user prefers, and must not be refused."""
    attribute = om.MFnNumericAttribute()
    made = attribute.create(name, brief, kind, default)
    attribute.storable = attribute.writable = attribute.readable = attribute.channelBox = True
    if ends:
        attribute.setSoftMin(ends[0])
        attribute.setSoftMax(ends[1])
    return made


def _vectors(name, brief):
    attribute = om.MFnTypedAttribute()
    # An empty array and not nothing: a plug without data cannot be read.
    empty = om.MFnVectorArrayData().create(om.MVectorArray())
    made = attribute.create(name, brief, om.MFnData.kVectorArray, empty)
    attribute.storable = attribute.writable = attribute.readable = attribute.hidden = True
    return made


def _read_vectors(plug):
    return [(vector[0], vector[1], vector[2]) for vector in om.MFnVectorArrayData(plug.asMObject()).array()]


_READERS = dict.fromkeys(ARRAYS, _read_vectors)
for _numbers, _read in ((DOUBLES, "asDouble"), (SWITCHES, "asBool"), (INTEGERS, "asInt")):
    _READERS.update(dict.fromkeys(_numbers, operator.methodcaller(_read)))


class TrailNode(omui.MPxLocatorNode):
    """Holds one trail. Everything on it is stored with the scene, so an opened scene has its trails."""

    alive = weakref.WeakSet()

    def __init__(self):
        omui.MPxLocatorNode.__init__(self)
        self._trail = Trail()
        self._stale = set(ARRAYS)
        TrailNode.alive.add(self)

    @staticmethod
    def create():
        return TrailNode()

    @staticmethod
    def initialize():
        made = [_vectors(name, brief) for name, brief in ARRAYS.items()]
        for numbers, kind in ((DOUBLES, om.MFnNumericData.kDouble), (SWITCHES, om.MFnNumericData.kBoolean),
                              (INTEGERS, om.MFnNumericData.kInt)):
            made += [_number(name, brief, kind, default, ends) for name, (brief, default, ends) in numbers.items()]
        for attribute in made:
            TrailNode.addAttribute(attribute)

    def setDependentsDirty(self, plug, affected):
        """Maya tells that an attribute is about to change."""
        try:
            name = plug.partialName(useLongNames=True)
            if name in ARRAYS:
                self._stale.add(name)
            if name in _READERS:
                self.redraw()
        except Exception as error:
            _report_once("A trail's change cannot be followed", error)

    def preEvaluation(self, context, evaluation):
        """The same where Maya's evaluation manager spares it the dirtying, as for a keyed line width while playing."""
        try:
            self._stale.update(ARRAYS)
            self.redraw()
        except Exception as error:
            _report_once("A trail's change cannot be followed", error)

    def redraw(self):
        omr.MRenderer.setGeometryDrawDirty(self.thisMObject(), True)

    def color_mode(self):
        return self._trail.values["colorMode"]

    def trail(self):
        """The trail as the node now holds it: arrays are read when they changed, the few numbers always.

        What cannot be read stays as it was, and is tried again at the next draw.
        """
        node = om.MFnDependencyNode(self.thisMObject())
        changed = {}
        for name, read in _READERS.items():
            if name in ARRAYS and name not in self._stale:
                continue
            try:
                value = read(node.findPlug(name, False))
            except Exception as error:
                _report_once("A trail's " + name + " cannot be read", error)
                continue
            self._stale.discard(name)
            if value != self._trail.values[name]:
                changed[name] = value
        self._trail.update(changed)
        return self._trail

    def isBounded(self):
        return True

    def boundingBox(self):
        return _guarded_box(self)

    def excludeAsLocator(self):
        """Trails stay when the viewport hides its locators: they have a switch of their own."""
        return False


def _guarded_box(node):
    try:
        return node.trail().box
    except Exception as error:
        _report_once("A trail's size cannot be told", error)
        return _box(())


class TrailData(om.MUserData):
    """What Maya keeps for us between preparing a draw and drawing."""

    def __init__(self):
        try:
            om.MUserData.__init__(self, False)  # Not to be deleted after one draw: it is handed back at the next.
        except TypeError:  # Newer versions of Maya keep it always and have dropped the argument.
            om.MUserData.__init__(self)
        self.trail = None


class TrailDrawOverride(omr.MPxDrawOverride):
    """Draws a node's trail. It is not "always dirty": Maya keeps what was drawn until the node asks for a redraw."""

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
        try:
            node = _node_at(path)
        except Exception as error:
            _report_once("A trail's size cannot be told", error)
            return _box(())
        return _guarded_box(node)

    def hasUIDrawables(self):
        return True

    def prepareForDraw(self, path, camera, frame, data):
        if not isinstance(data, TrailData):
            data = TrailData()
        try:
            data.trail = _node_at(path).trail()
        except Exception as error:  # Drawn as it last was.
            _report_once("A trail cannot be read", error)
        return data

    def addUIDrawables(self, path, manager, frame, data):
        try:
            if data.trail:
                data.trail.draw(manager)
        except Exception as error:
            _report_once("A trail cannot be drawn", error)


def _node_at(path):
    return om.MFnDependencyNode(path.node()).userNode()


def _on_time_changed(time, client=None):
    """Only the colours that tell the past from the future follow the time."""
    try:
        for node in list(TrailNode.alive):
            if node.color_mode() == FLOW:
                node.redraw()
    except Exception as error:
        _report_once("Trails cannot follow the time", error)


_installed = []


def _undo(report):
    """Takes back, last first, what was registered; goes on after a failure and gives the first to `report`."""
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
    except Exception:
        _undo(lambda error: None)
        raise


def uninitializePlugin(plugin):
    errors = []
    _undo(errors.append)
    if errors:
        raise errors[0]
