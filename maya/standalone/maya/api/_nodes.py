"""Nodes, plugs and the data in them."""

from .. import host
from ._values import MDGContext, MMatrix, MVectorArray

__all__ = [
    "MFileIO",
    "MFnDependencyNode",
    "MFnMatrixData",
    "MFnVectorArrayData",
    "MGlobal",
    "MObject",
    "MObjectArray",
    "MObjectHandle",
    "MPlug",
    "MSelectionList",
]


def _no_object():
    return RuntimeError("(kInvalidParameter): Object does not exist")


def _wrong_kind():
    return RuntimeError("(kFailure): Unexpected Internal Failure")


class MObject(object):
    """A node of the scene that was open when this was made, or a piece of data."""

    def __init__(self, node=None, data=None):
        self._node = node
        self._generation = host.generation
        self.data = data

    def node(self):
        """The number of the node; an error if it is gone. Maya does not have this method."""
        if self._generation != host.generation or self._node is None or not host.exists(self._node):
            raise _no_object()
        return self._node

    def isNull(self):
        return self._node is None and self.data is None

    @property
    def apiTypeStr(self):
        if self.data is not None:
            return "kData"
        return "kInvalid" if self.isNull() else "kDependencyNode"

    def _identity(self):
        return (self._node, self._generation, id(self.data))

    def __eq__(self, other):
        return isinstance(other, MObject) and self._identity() == other._identity()

    def __ne__(self, other):
        return not self == other

    def __hash__(self):
        return hash(self._identity())


MObject.kNullObj = MObject()


class MObjectArray(list):
    """A list of objects."""


def plugin_object(name, path):
    """The argument for a plug-in's initializePlugin. Maya does not have this function."""
    return MObject(data=("plugin", name, path))


class MObjectHandle(object):
    """Refers to a node that may be deleted, and may come back when that is undone."""

    def __init__(self, node=MObject.kNullObj):
        self._object = node

    def object(self):
        return self._object

    def isValid(self):
        """Whether it is in the scene."""
        return self._of_this_scene() and host.exists(self._object._node)

    def isAlive(self):
        """Whether it is in the scene or could come back."""
        return self.isValid() or (self._of_this_scene() and host.call("undo_keeps", self._object._node))

    def _of_this_scene(self):
        return self._object._node is not None and self._object._generation == host.generation

    def hashCode(self):
        return hash(self._object) & 0xFFFFFFFF

    def __eq__(self, other):
        return isinstance(other, MObjectHandle) and self._object == other._object

    def __ne__(self, other):
        return not self == other

    def __hash__(self):
        return hash(self._object)


class MSelectionList(object):
    def __init__(self):
        self._nodes = []

    def add(self, item, mergeWithExisting=True):
        """Adds a node, another list, or all objects that a name or pattern matches."""
        if isinstance(item, MObject):
            found = [item]
        elif isinstance(item, MSelectionList):
            found = item._nodes
        else:
            found = [MObject(node) for node in host.call("match", item)]
            if not found:
                raise _no_object()
        self._nodes.extend(each for each in found if not (mergeWithExisting and each in self._nodes))
        return self

    def length(self):
        return len(self._nodes)

    def getDependNode(self, index):
        if not 0 <= index < len(self._nodes):
            raise IndexError("index out of range")
        return self._nodes[index]

    def getSelectionStrings(self, index=None):
        names = [host.call("unique_name", each.node()) for each in self._nodes]
        return tuple(names if index is None else names[index : index + 1])

    def isEmpty(self):
        return not self._nodes

    def clear(self):
        self._nodes = []
        return self


class MFnDependencyNode(object):
    def __init__(self, node):
        if not isinstance(node, MObject) or node.data is not None:
            raise ValueError("MFnDependencyNode takes a node, got %r" % (node,))
        node.node()
        self._object = node

    def object(self):
        return self._object

    def name(self):
        return host.call("short_name", self._object.node())

    def uniqueName(self):
        return host.call("unique_name", self._object.node())

    def setName(self, name):
        return host.call("rename", self._object.node(), name)

    @property
    def typeName(self):
        return host.call("type", self._object.node())

    def hasAttribute(self, name):
        node = self._object.node()
        return host.call("has_attribute", node, name) or host.call("has_vectors", node, name)

    def findPlug(self, name, wantNetworkedPlug):
        if not self.hasAttribute(name):
            raise RuntimeError("(kInvalidParameter): Cannot find item of required type")
        return MPlug(self._object, name)


_WORLD = ("worldMatrix", "wm")
_LOCAL = ("matrix", "m")


class MPlug(object):
    """One attribute of one node."""

    def __init__(self, node, attribute, index=None):
        self._object = node
        self._attribute = attribute
        self._index = index

    def node(self):
        return self._object

    def partialName(self, useLongNames=False, includeNodeName=False):
        name = self._attribute if self._index is None else "%s[%d]" % (self._attribute, self._index)
        return self.name() if includeNodeName else name

    def name(self):
        return host.call("unique_name", self._object.node()) + "." + self.partialName()

    @property
    def isArray(self):
        return self._attribute in _WORLD and self._index is None

    def elementByLogicalIndex(self, index):
        self._object.node()
        if not self.isArray or index != 0:
            raise _wrong_kind()
        return MPlug(self._object, self._attribute, index)

    def asMObject(self, context=MDGContext.kNormal):
        """The data of a matrix or a vector array."""
        node = self._object.node()
        if self._attribute in _WORLD and self._index is not None:
            return MObject(data=MMatrix(host.matrix(node, context.frame())))
        if self._attribute in _LOCAL:
            return MObject(data=MMatrix(host.matrix(node, context.frame(), False)))
        if host.call("has_vectors", node, self._attribute):
            return MObject(data=MVectorArray.of_numbers(host.vectors(node, self._attribute)))
        raise _wrong_kind()

    def setMObject(self, value):
        node = self._object.node()
        if not host.call("has_vectors", node, self._attribute) or not isinstance(value.data, MVectorArray):
            raise _wrong_kind()
        host.set_vectors(node, self._attribute, value.data.numbers)

    def _number(self, context):
        value = host.call("attribute_at", self._object.node(), self._attribute, context.frame())
        if not isinstance(value, (bool, int, float)):
            raise _wrong_kind()
        return value

    def asDouble(self, context=MDGContext.kNormal):
        return float(self._number(context))

    def asInt(self, context=MDGContext.kNormal):
        return int(self._number(context))

    def asBool(self, context=MDGContext.kNormal):
        return bool(self._number(context))

    def asString(self, context=MDGContext.kNormal):
        value = host.call("attribute_at", self._object.node(), self._attribute, context.frame())
        if not isinstance(value, str):
            raise _wrong_kind()
        return value

    def _set(self, value):
        host.call("set_attr", self.name(), value)

    setDouble = setFloat = setInt = setBool = setString = _set
    asFloat = asDouble



class MFnMatrixData(object):
    def __init__(self, data):
        if not isinstance(data, MObject) or not isinstance(data.data, MMatrix):
            raise ValueError("MFnMatrixData takes the data of a matrix")
        self._matrix = data.data

    def matrix(self):
        return self._matrix


class MFnVectorArrayData(object):
    def __init__(self, data=None):
        if data is not None and not isinstance(data.data, MVectorArray):
            raise ValueError("MFnVectorArrayData takes the data of a vector array")
        self._data = data

    def create(self, values=()):
        self._data = MObject(data=MVectorArray(values))
        return self._data

    def array(self):
        if self._data is None:
            raise RuntimeError("(kFailure): Object does not exist")
        return self._data.data

    def object(self):
        return self._data


def _activity(place):
    return staticmethod(lambda: host.call("file_activity")[place])


class MFileIO(object):
    isReadingFile = _activity(0)
    isWritingFile = _activity(1)
    isOpeningFile = _activity(2)
    isNewingFile = _activity(3)

    @staticmethod
    def currentFile():
        return host.scene_name


class MGlobal(object):
    @staticmethod
    def isUndoing():
        return host.undoing == "undo"

    @staticmethod
    def isRedoing():
        return host.undoing == "redo"

    @staticmethod
    def getActiveSelectionList():
        chosen = MSelectionList()
        for node in host.call("selection"):
            chosen.add(MObject(node))
        return chosen

    @staticmethod
    def displayInfo(text):
        print(text)

    @staticmethod
    def displayWarning(text):
        host.show_warning(text)

    @staticmethod
    def displayError(text):
        host.show_error(text)
