"""Plug-ins and their nodes, recorded: what a plug-in registers is kept where a test can read it.

The scene knows nothing of the Python object that a plug-in makes for each of its nodes, and tells nobody that an
attribute or the time has changed. `catch_up`, which a refresh of the viewport calls, makes up for both.
"""

from .. import host
from ._messages import MDGMessage, subscribe
from ._nodes import MFnDependencyNode, MObject
from ._values import MTime, MVectorArray

__all__ = ["MBoundingBox", "MColor", "MColorArray", "MDataBlock", "MFnData", "MFnNumericAttribute", "MFnNumericData",
           "MFnPlugin", "MFnTypedAttribute", "MFnUnitAttribute", "MPoint", "MPointArray", "MPxNode", "MTypeId",
           "MUserData"]

# What is registered: plug-in nodes by their type's name.
node_types = {}
_being_registered = []


class NodeType(object):
    def __init__(self, name, type_id, creator, kind, classification):
        self.name, self.id, self.creator, self.kind, self.classification = name, type_id, creator, kind, classification
        self.attributes = {}


class MTypeId(object):
    def __init__(self, *numbers):
        self._id = numbers[0].id() if isinstance(numbers[0], MTypeId) else \
            numbers[0] if len(numbers) == 1 else (numbers[0] << 8) | numbers[1]

    def id(self):
        return self._id

    def __eq__(self, other):
        return isinstance(other, MTypeId) and other._id == self._id

    def __ne__(self, other):
        return not self == other

    def __hash__(self):
        return hash(self._id)


class MFnPlugin(object):
    """`plugin` may be anything: it only names the plug-in."""

    def __init__(self, plugin, vendor="", version="", apiVersion="Any"):
        self.plugin, self._vendor, self.version, self._api = plugin, vendor, version, apiVersion

    def vendor(self):
        return self._vendor

    def registerNode(self, name, typeId, creator, initializer, type=0, classification=""):
        if name in node_types or any(known.id == typeId for known in node_types.values()):
            raise RuntimeError("(kFailure): Unexpected Internal Failure")
        made = NodeType(name, typeId, creator, type, classification)
        _being_registered.append(made)
        try:
            initializer()
        finally:
            _being_registered.pop()
        node_types[name] = made

    def deregisterNode(self, typeId):
        for name, known in list(node_types.items()):
            if known.id == typeId:
                del node_types[name]
                return
        raise RuntimeError("(kFailure): Unexpected Internal Failure")


class Attribute(object):
    """What Maya gives as the object of an attribute; its defaults are Maya's."""

    def __init__(self, name, short, kind, default):
        self.name, self.shortName, self.kind, self.default = name, short, kind, default
        self.storable = self.writable = self.readable = self.cached = self.connectable = True
        self.hidden = self.keyable = self.channelBox = self.array = self.internal = False
        self.hard, self.soft = [None, None], [None, None]


class MFnAttribute(object):
    """Properties of the function set are those of the attribute that it made last."""

    _OWN = ("object",)

    def __init__(self, attribute=None):
        self.object = attribute

    def __getattr__(self, name):
        return getattr(self.__dict__["object"], name)

    def __setattr__(self, name, value):
        if name in self._OWN:
            object.__setattr__(self, name, value)
        elif hasattr(self.object, name):
            setattr(self.object, name, value)
        else:
            raise AttributeError("attributes have no '{0}' here".format(name))

    def _make(self, name, short, kind, default):
        self.object = Attribute(name, short, kind, default)
        return self.object

    def setMin(self, value):
        self.object.hard[0] = value

    def setMax(self, value):
        self.object.hard[1] = value

    def setSoftMin(self, value):
        self.object.soft[0] = value

    def setSoftMax(self, value):
        self.object.soft[1] = value


class MFnNumericAttribute(MFnAttribute):
    def create(self, longName, shortName, type, defaultValue=0):
        return self._make(longName, shortName, ("numeric", type), defaultValue)


class MFnTypedAttribute(MFnAttribute):
    def create(self, longName, shortName, type, defaultValue=None):
        return self._make(longName, shortName, ("typed", type), defaultValue)


class MFnUnitAttribute(MFnAttribute):
    kInvalid, kAngle, kDistance, kTime, kLast = range(5)

    def create(self, longName, shortName, type, defaultValue=0.0):
        return self._make(longName, shortName, ("unit", type), defaultValue)


class MFnNumericData(object):
    kInvalid, kBoolean, kByte, kChar, kShort = 0, 1, 2, 3, 4
    kInt = kLong = 7
    kFloat, kDouble = 11, 14


class MFnData(object):
    (kInvalid, kNumeric, kPlugin, kPluginGeometry, kString, kMatrix, kStringArray, kDoubleArray, kFloatArray,
     kIntArray, kPointArray, kVectorArray, kMatrixArray) = range(13)


class MDataBlock(object):
    """Only there to be named: nodes that compute are not covered."""

    def __init__(self, *ignored):
        raise NotImplementedError("nodes that compute are not covered")


class MPxNode(object):
    kDependNode, kLocatorNode = 0, 3

    def __init__(self):
        self._object = None

    @staticmethod
    def addAttribute(attribute):
        if not _being_registered:
            raise RuntimeError("(kFailure): Unexpected Internal Failure")
        _being_registered[-1].attributes[attribute.name] = attribute

    @staticmethod
    def attributeAffects(source, target):
        pass

    def thisMObject(self):
        return self._object


class MUserData(object):
    def __init__(self, deleteAfterUse=False, legacy=True):
        self._delete = deleteAfterUse

    def deleteAfterUse(self):
        return self._delete


def _numbers(values, count, rest):
    """`values` as a constructor got them: separate numbers, or one sequence of them."""
    if len(values) == 1 and not isinstance(values[0], (int, float)):
        values = tuple(values[0])
    if len(values) > count or not all(isinstance(value, (int, float)) for value in values):
        raise TypeError("at most {0} numbers, not {1!r}".format(count, values))
    return [float(value) for value in values] + list(rest[len(values):])


class _Numbers(object):
    _rest = ()

    def __init__(self, *values):
        self._values = _numbers(values, len(self._rest), self._rest)

    def __len__(self):
        return len(self._values)

    def __getitem__(self, index):
        return self._values[index]

    def __eq__(self, other):
        return isinstance(other, type(self)) and other._values == self._values

    def __ne__(self, other):
        return not self == other

    __hash__ = None

    def __repr__(self):
        return "{0}({1})".format(type(self).__name__, ", ".join(repr(value) for value in self._values))


class MPoint(_Numbers):
    _rest = (0.0, 0.0, 0.0, 1.0)
    x, y, z = (property(lambda self, i=i: self._values[i]) for i in range(3))


class MColor(_Numbers):
    _rest = (0.0, 0.0, 0.0, 1.0)
    r, g, b, a = (property(lambda self, i=i: self._values[i]) for i in range(4))


class _Array(list):
    _element = None

    def __init__(self, elements=()):
        list.__init__(self, elements)
        for element in self:
            if not isinstance(element, self._element):
                raise TypeError("an element is no {0}: {1!r}".format(self._element.__name__, element))


class MPointArray(_Array):
    _element = MPoint


class MColorArray(_Array):
    _element = MColor


class MBoundingBox(object):
    def __init__(self, low=None, high=None):
        self.min, self.max = low or MPoint(), high or MPoint()

    @property
    def center(self):
        return MPoint(*[(self.min[i] + self.max[i]) / 2 for i in range(3)])

    width, height, depth = (property(lambda self, i=i: self.max[i] - self.min[i]) for i in range(3))


# The scene and the Python objects of its nodes ------------------------------------------------------------------------

TIME_CHANGED = "time changed"


def _add_time_change_callback(function, clientData=None):
    return subscribe(TIME_CHANGED, lambda time: function(time, clientData), function)


class _Twin(object):
    """A node of the scene, its Python object, and what its attributes held when we last looked."""

    def __init__(self, scene_object, kind):
        self.object, self.kind = scene_object, kind
        self.node = kind.creator()
        self.node._object = scene_object
        self.held = self.look()

    def plugs(self):
        node = MFnDependencyNode(self.object)
        return [(name, node.findPlug(name, False)) for name in self.kind.attributes]

    def look(self):
        found = {}
        for name, plug in self.plugs():
            typed = self.kind.attributes[name].kind[0] == "typed"
            found[name] = plug.asMObject().data.numbers if typed else plug.asDouble()
        return found

    def tell_changes(self):
        held, self.held = self.held, self.look()
        for name, plug in self.plugs():
            if self.held[name] != held[name]:
                self.node.setDependentsDirty(plug, [])


twins = []
_last_time = [None]


def _is_there(scene_object):
    try:
        scene_object.node()
    except RuntimeError:
        return False
    return True


def catch_up():
    """Tells the Python objects of plug-in nodes what has changed since the last time, and makes those that lack."""
    twins[:] = [twin for twin in twins if _is_there(twin.object) and node_types.get(twin.kind.name) is twin.kind]
    for twin in twins:
        twin.tell_changes()
    known = [twin.object for twin in twins]
    for name, kind in node_types.items():
        for number in host.call("nodes_of_type", name):
            if MObject(number) not in known:
                twins.append(_Twin(MObject(number), kind))
    now = host.call("current_time")
    if now != _last_time[0]:
        _last_time[0] = now
        for subscriber in list(host.subscribers):
            if subscriber.event == TIME_CHANGED:
                host.guarded(subscriber.tell, MTime(now))


def _user_node(self):
    for twin in twins:
        if twin.object == self.object():
            return twin.node
    return None


MFnDependencyNode.userNode = _user_node
MDGMessage.addTimeChangeCallback = staticmethod(_add_time_change_callback)
