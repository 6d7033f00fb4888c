"""Namespaces: making, choosing, removing and listing them. Names are relative to the current one, unless they begin
with a colon."""

from .. import host
from .._commands import command, not_covered, unique_name

__all__ = ["namespace", "namespaceInfo"]


def _from_root(name):
    current = host.call("namespace")
    if name.startswith(":") or not current:
        return name.strip(":")
    return current + ":" + name if name else current


def _existing(name):
    """As _from_root, but the namespace must exist."""
    full = _from_root(name)
    if full and full not in host.call("namespaces"):
        raise RuntimeError("No namespace matches name: '%s'." % name)
    return full


def _above(name):
    return name.rpartition(":")[0]


def _below(name, recurse):
    """The namespaces directly in one; with `recurse` also those inside of these."""
    if recurse:
        return [each for each in host.call("namespaces") if each.startswith(name + ":" if name else "")]
    return [each for each in host.call("namespaces") if _above(each) == name]


def _nodes(name, recurse):
    inside = [name] + (_below(name, True) if recurse else [])
    return [unique_name(node) for each in inside for node in host.call("nodes_in_namespace", each)]


def _remove(name, with_content):
    if with_content:
        for inside in reversed([name] + _below(name, True)):
            for node in host.call("nodes_in_namespace", inside):
                if host.exists(node):
                    host.call("delete", node)
            if inside != name:
                host.call("remove_namespace", inside)
    host.call("remove_namespace", name)


def _add(name, parent):
    above = ":" + _existing(parent) + ":" if parent is not None else ""
    full = _from_root(above + name)
    if not full or full in host.call("namespaces"):
        raise RuntimeError("The namespace '%s' already exists." % name)
    host.call("add_namespace", full)
    return full


@command(add="add", parent="p", set="set", exists="ex", removeNamespace="rm", deleteNamespaceContent="dnc")
def namespace(*, add=None, parent=None, set=None, exists=None, removeNamespace=None, deleteNamespaceContent=False):
    if exists is not None:
        full = _from_root(exists)
        return not full or full in host.call("namespaces")
    if add is None and set is None and removeNamespace is None:
        raise not_covered("namespace: flags other than add, set, exists and removeNamespace")
    with host.command("namespace"):
        if add is not None:
            return _add(add, parent)
        if set is not None:
            host.call("set_namespace", _existing(set))
            return host.call("namespace") or ":"
        full = _existing(removeNamespace)
        _remove(full, deleteNamespaceContent)
        return full


@command(
    currentNamespace="cur", parent="p", listNamespace="ls", listOnlyNamespaces="lon", listOnlyDependencyNodes="lod",
    recurse="r", absoluteName="an"
)
def namespaceInfo(
    *names,
    currentNamespace=False,
    parent=False,
    listNamespace=False,
    listOnlyNamespaces=False,
    listOnlyDependencyNodes=False,
    recurse=False,
    absoluteName=False
):
    """Answers for the namespace that is given, or for the current one. An empty list is None; the root is ":"."""
    name = _existing(names[0]) if names else host.call("namespace")
    before = ":" if absoluteName else ""
    if currentNamespace:
        return before + host.call("namespace") or ":"
    if parent:
        return before + _above(name) or ":"
    found = []
    if listNamespace or listOnlyDependencyNodes:
        found += _nodes(name, recurse)
    if listNamespace or listOnlyNamespaces:
        found += _below(name, recurse)
    return [before + each for each in found] or None
