"""Attributes and connections."""

from .. import host
from .._commands import command, existing_plug, flat, not_covered, split_plug, undoable, unique_name

__all__ = ["addAttr", "attributeQuery", "connectAttr", "disconnectAttr", "getAttr", "setAttr"]

_MATRICES = {"worldMatrix[0]": True, "wm[0]": True, "worldMatrix": True, "wm": True, "matrix": False, "m": False}


def _triples(numbers):
    return list(zip(*[iter(numbers)] * 3))


def _type_of(node, attribute, value):
    if attribute in _MATRICES:
        return "matrix"
    if host.call("has_vectors", node, attribute):
        return "vectorArray"
    if host.call("channel_parts", node, attribute):
        return "double3"
    if isinstance(value, bool):
        return "bool"
    return {int: "long", str: "string", list: "matrix"}.get(type(value), "double")


@command(time="t", type="typ", size="s")
def getAttr(path, *, time=None, type=False, size=False):
    """Returns a number, a flag or a text; [(x, y, z)] for a compound, sixteen floats for a matrix, triples for a vector
    array."""
    node, attribute = existing_plug(path)
    frame = host.call("current_time") if time is None else float(time)
    if host.call("has_vectors", node, attribute):
        value = _triples(host.vectors(node, attribute))
    elif attribute in _MATRICES:
        value = host.matrix(node, frame, _MATRICES[attribute])
    else:
        value = host.call("attribute_at", node, attribute, frame)
    if type:
        return _type_of(node, attribute, value)
    if size:
        return len(value) if host.call("has_vectors", node, attribute) else 1
    if host.call("channel_parts", node, attribute):
        return [tuple(value)]
    return value


def _value_of(path, values, type):
    """The values that setAttr was given, as one value."""
    if type in ("double3", "float3", "short3", "long3"):
        numbers = list(values[0]) if len(values) == 1 and isinstance(values[0], (list, tuple)) else list(values)
        if len(numbers) != 3:
            raise RuntimeError("setAttr: '%s' takes three numbers." % path)
        return numbers
    if type == "matrix":
        return [float(each) for each in (values[0] if len(values) == 1 else values)]
    if type not in (None, "string"):
        raise not_covered("setAttr: type '%s'" % type)
    if len(values) == 3:
        return list(values)
    if len(values) > 1:
        raise RuntimeError("setAttr: %d values are too many for '%s'." % (len(values), path))
    if type is None and isinstance(values[0], str):
        raise RuntimeError("setAttr: Error reading data element number 1: %s" % values[0])
    return values[0]


@undoable
@command(lock="l", type="typ")
def setAttr(path, *values, lock=None, type=None):
    if lock is not None:
        host.call("lock_attribute", *existing_plug(path), bool(lock))
    if values:
        host.call("set_attr", path, _value_of(path, values, type))
    elif lock is None:
        raise RuntimeError("setAttr: No values given.")


_NUMBERS = {"bool": bool, "long": int, "short": int, "byte": int, "enum": int, "double": float, "float": float}
_NUMBERS.update({"doubleLinear": float, "doubleAngle": float, "time": float})


@undoable
@command(longName="ln", attributeType="at", dataType="dt", defaultValue="dv", keyable="k")
def addAttr(*names, longName=None, attributeType=None, dataType=None, defaultValue=0.0, keyable=False):
    if not longName:
        raise RuntimeError("addAttr: New attribute needs a long name (-ln).")
    if dataType == "string":
        value = ""
    elif attributeType in _NUMBERS and dataType is None:
        value = _NUMBERS[attributeType](defaultValue)
    else:
        raise not_covered("addAttr: attributes of type %s" % (dataType or attributeType))
    for name in flat(names) or [unique_name(node) for node in host.call("selection")]:
        node = host.call("named", name)
        if host.call("has_attribute", node, longName):
            raise RuntimeError("addAttr: Found existing attribute: '%s'" % longName)
        host.call("add_attribute", node, longName, value)


@command(node="n", exists="ex")
def attributeQuery(attribute, *, node=None, exists=False):
    if not exists:
        raise not_covered("attributeQuery: flags other than exists")
    number = host.call("named", node)
    return host.call("has_attribute", number, attribute) or host.call("has_vectors", number, attribute)


@undoable
@command(force="f")
def connectAttr(source, destination, *, force=False):
    from_node, from_attribute = split_plug(source)
    to_node, to_attribute = existing_plug(destination)
    if not force and host.call("driving_curve", to_node, to_attribute) is not None:
        raise RuntimeError("'%s' is already connected to something else; use force=True." % destination)
    host.call("connect", from_node, from_attribute, to_node, to_attribute)


@undoable
def disconnectAttr(source, destination):
    from_node = split_plug(source)[0]
    to_node, to_attribute = split_plug(destination)
    if host.call("driving_curve", to_node, to_attribute) != from_node:
        raise RuntimeError("There is no connection from '%s' to '%s' to disconnect" % (source, destination))
    host.call("disconnect", to_node, to_attribute)
