"""Plug-ins and their nodes, recorded: what a plug-in registers is kept where a test can read it.

The scene does not know the Python object that a plug-in makes for each of its nodes, and sends no message when an
attribute or the time has changed. `catch_up`, which a refresh of the viewport calls, does both.
"""

import warnings

from .. import host
from ._messages import MDGMessage, subscribe
from ._nodes import MFnDependencyNode, MObject, MObjectHandle
from ._values import MTime

__all__ = ["MDataBlock", "MEvaluationNode", "MFnData", "MFnNumericAttribute", "MFnNumericData", "MFnPlugin",
           "MFnTypedAttribute", "MFnUnitAttribute", "MNodeCacheDisablingInfo", "MNodeCacheSetupInfo", "MPxNode",
           "MTypeId", "MUserData"]

# What is registered: plug-in nodes by their type's name.
node_types = {}
_being_registered = []


class NodeType(object):
    def __init__(self, name, type_id, creator, kind, classification):
        self.name, self.id, self.creator, self.kind, self.classification = name, type_id, creator, kind, classification
        self.attributes = {}
        self.affects = {}  # an attribute of Maya's -> the names of the attributes that affect it


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
    """`plugin` may be any value; it only identifies the plug-in."""

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
    """The object of an attribute, with Maya's defaults."""

    def __init__(self, name, short, kind, default):
        self.name, self.shortName, self.kind, self.default = name, short, kind, default
        self.storable = self.writable = self.readable = self.cached = self.connectable = True
        self.hidden = self.keyable = self.channelBox = self.array = self.internal = False
        self.hard, self.soft = [None, None], [None, None]


class MFnAttribute(object):
    """The properties of the function set are those of the attribute that it has made last."""

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
    """Exists only so that it can be named, because nodes that compute are not covered."""

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
        if not _being_registered or source.name not in _being_registered[-1].attributes:
            raise RuntimeError("(kFailure): Unexpected Internal Failure")
        _being_registered[-1].affects.setdefault(target, set()).add(source.name)

    def thisMObject(self):
        return self._object

    def getCacheSetup(self, evaluationNode, disablingInfo, cacheSetupInfo, monitoredAttributes):
        pass


class MUserData(object):
    def __init__(self, *deprecated):
        if deprecated:
            warnings.warn("MUserData takes no arguments from Maya 2022 on", DeprecationWarning)


class MEvaluationNode(object):
    """What the evaluation manager knows about a node that it evaluates: the attributes that change."""

    def __init__(self, changing=()):
        self._changing = list(changing)

    def dirtyPlugExists(self, attribute):
        return attribute in self._changing


class MNodeCacheSetupInfo(object):
    kWantToCacheByDefault = 0

    def __init__(self):
        self._preferences = set()

    def setPreference(self, preference, value=True):
        (self._preferences.add if value else self._preferences.discard)(preference)

    def getPreference(self, preference):
        return preference in self._preferences


class MNodeCacheDisablingInfo(object):
    def __init__(self):
        self._disabled = False

    def setCacheDisabled(self, value):
        self._disabled = value

    def getCacheDisabled(self):
        return self._disabled


# The scene and the Python objects of its nodes ------------------------------------------------------------------------

TIME_CHANGED = "time changed"


def _add_time_change_callback(function, clientData=None):
    return subscribe(TIME_CHANGED, lambda time: function(time, clientData), function)


class _Twin(object):
    """A node of the scene, its Python object, and the values of its attributes at the last look."""

    def __init__(self, scene_object, kind):
        self.object, self.kind = scene_object, kind
        self.node = kind.creator()
        self.node._object = scene_object
        self.held = self.look()
        self.dirty = set(kind.affects)  # attributes of Maya's that have to be computed again

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
                self.dirty.update(each for each, sources in self.kind.affects.items() if name in sources)


twins = []
_last_time = [None]


def catch_up():
    """Tells the Python objects of plug-in nodes what has changed since the last call, and makes those that are
    missing."""
    twins[:] = [twin for twin in twins
                if MObjectHandle(twin.object).isValid() and node_types.get(twin.kind.name) is twin.kind]
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
