"""Nodes: listing, selecting, making, naming, moving and deleting them."""

from .. import host
from .._commands import (
    command,
    flat,
    node_named,
    nodes_named,
    nodes_or_selection,
    not_covered,
    undoable,
    unique_name,
)

__all__ = [
    "createNode",
    "curve",
    "delete",
    "group",
    "listRelatives",
    "lockNode",
    "ls",
    "nodeType",
    "objExists",
    "objectType",
    "parent",
    "rename",
    "select",
]


def _names(nodes, long):
    return [host.call("long_name" if long else "unique_name", node) for node in nodes]


def _of_types(types):
    found = []
    for each in [types] if isinstance(types, str) else types:
        found.extend(host.call("nodes_of_type", each))
    return found


@command(selection="sl", long="l", type="typ", shapes="s", transforms="tr", dagObjects="dag")
def ls(*names, selection=False, long=False, type=None, shapes=False, transforms=False, dagObjects=False):
    nodes = []
    for name in flat(names):
        nodes.extend(node for node in host.call("match", name) if node not in nodes)
    if selection:
        nodes = [node for node in host.call("selection") if not names or node in nodes]
    elif not names:
        nodes = host.call("all_nodes")
    if type is not None:
        wanted = _of_types(type)
        nodes = wanted if not (names or selection) else [node for node in nodes if node in wanted]
    kinds = [kind for kind, asked in (("is_shape", shapes), ("is_transform", transforms)) if asked]
    if dagObjects and not kinds:
        kinds = ["is_shape", "is_transform"]
    if kinds:
        nodes = [node for node in nodes if any(host.call(kind, node) for kind in kinds)]
    return _names(nodes, long)


def objExists(name):
    return host.call("obj_exists", name)


@command(isAType="isa", isType="i")
def objectType(name, *, isAType=None, isType=None):
    own = host.call("type", node_named(name))
    if isType is not None:
        return own == isType
    if isAType is not None:
        return node_named(name) in _of_types(isAType)
    return own


def nodeType(name):
    return host.call("type", node_named(name))


def _descendants(node):
    found = []
    for child in host.call("children", node):
        found.extend(_descendants(child) + [child])
    return found


def _relatives(node, parent, shapes, allDescendents):
    if parent:
        above = host.call("parent", node)
        return [] if above is None else [above]
    if shapes:
        return host.call("shapes", node)
    return _descendants(node) if allDescendents else host.call("children", node)


@command(
    parent="p", shapes="s", children="c", allDescendents="ad", fullPath="f", path="pa", type="typ", noIntermediate="ni"
)
def listRelatives(
    *names,
    parent=False,
    shapes=False,
    children=False,
    allDescendents=False,
    fullPath=False,
    path=False,
    type=None,
    noIntermediate=False
):
    """Returns None if there are no relatives."""
    nodes = []
    for node in nodes_or_selection(names):
        nodes.extend(each for each in _relatives(node, parent, shapes, allDescendents) if each not in nodes)
    if type is not None:
        wanted = _of_types(type)
        nodes = [node for node in nodes if node in wanted]
    if not nodes:
        return None
    if fullPath or path:
        return _names(nodes, fullPath)
    return [host.call("short_name", node) for node in nodes]


@undoable
@command(replace="r", add="add", deselect="d", toggle="tgl", clear="cl", all="all", hierarchy="hi", noExpand="ne")
def select(
    *names,
    replace=False,
    add=False,
    deselect=False,
    toggle=False,
    clear=False,
    all=False,
    hierarchy=False,
    noExpand=False
):
    if clear:
        return host.call("select", [])
    nodes = _of_types("transform") if all else nodes_named(names)
    if hierarchy:
        for node in list(nodes):
            nodes.extend(each for each in reversed(_descendants(node)) if each not in nodes)
    before = host.call("selection")
    if deselect:
        nodes = [node for node in before if node not in nodes]
    elif toggle:
        nodes = [node for node in before if node not in nodes] + [node for node in nodes if node not in before]
    elif add:
        nodes = before + [node for node in nodes if node not in before]
    host.call("select", nodes)


@undoable
@command(name="n", parent="p", skipSelect="ss")
def createNode(type, *, name="", parent=None, skipSelect=False):
    above = None if parent is None else node_named(parent)
    node = host.call("create_node", type, name, above)
    if not skipSelect:
        host.call("select", [node])
    return unique_name(node)


@undoable
def rename(old, new):
    """A namespace in a new name that begins with a colon is used. For other names see `maya.host`."""
    name, dropped = host.call("rename", node_named(old), new, host.rename_looks_up_namespaces)
    if dropped:
        host.show_warning("Removing invalid characters from name")
    return name


_IDENTITY = [1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0]


def _world(node):
    return _IDENTITY if node is None else host.matrix(node, host.call("current_time"))


def _move_under(node, above, relative):
    before = host.call("parent", node)
    if not relative and _world(before) != _world(above):
        raise not_covered("parent: keeping the place of %s in the world; pass relative=True" % unique_name(node))
    host.call("set_parent", node, above)
    return unique_name(node)


@undoable
@command(world="w", relative="r", shape="s")
def parent(*names, world=False, relative=False, shape=False):
    """The names are those of objects and, last, of their new parent. Local values are kept. If that would move an
    object in the world, `relative` must be given."""
    nodes = nodes_named(names)
    above = None
    if not world:
        if len(nodes) < 2:
            nodes = host.call("selection") + nodes
        above = nodes.pop()
    if not nodes:
        raise RuntimeError("parent: name the objects to move and, last, their new parent.")
    return [_move_under(node, above, relative) for node in nodes]


@undoable
@command(empty="em", name="n", world="w", parent="p")
def group(*names, empty=False, name="group1", world=False, parent=None):
    nodes = [] if empty else nodes_or_selection(names)
    if not (nodes or empty):
        raise RuntimeError("group: name the objects to group, or pass empty=True.")
    above = None if parent is None else node_named(parent)
    parents = {host.call("parent", node) for node in nodes}
    if parent is None and not world and len(parents) == 1:
        above = parents.pop()
    made = host.call("create_node", "transform", name, above)
    for node in nodes:
        _move_under(node, made, False)
    host.call("select", [made])
    return unique_name(made)


@undoable
def delete(*names):
    nodes = nodes_named(names) if names else host.call("selection")
    for node in nodes:
        if host.exists(node):
            host.call("delete", node)


def _triple(point):
    numbers = [float(number) for number in point]
    if len(numbers) != 3:
        raise TypeError("Invalid arguments for flag 'p'. Expected three numbers, got %r" % (point,))
    return numbers


@undoable
@command(degree="d", point="p", name="n")
def curve(*, degree=3, point=(), name=""):
    return host.call("create_curve", degree, [number for each in point for number in _triple(each)], name)


@undoable
@command(lock="l", query="q")
def lockNode(*names, lock=True, query=False):
    if query:
        raise not_covered("lockNode: query")
    for node in nodes_or_selection(names):
        host.call("lock_node", node, lock)
