"""Names the trails of objects in namespaces, whichever namespace is current.

The engine names a trail after its object. The trail of `char:ctrl` is `vlx_char:ctrl_viz`, in a namespace `vlx_char`
that holds nothing but trails. Maya looks existing names up from the root, but puts new names below the current
namespace, and reads a namespace in a new name differently from command to command. So new names are passed to Maya with
a colon in front, which means the root: then the engine finds its nodes again, and no two objects share a name.
Namespaces that become empty are removed with the trails.
"""

PREFIX = "vlx_"  # begins every name that the engine gives to a trail


def _from_root(name):
    return ":" + name.lstrip(":")


def _remove_empty_namespaces(cmds):
    found = cmds.namespaceInfo(":", listOnlyNamespaces=True, recurse=True, absoluteName=True) or ()
    for namespace in sorted(map(_from_root, found), reverse=True):  # inner ones first
        if not namespace.startswith(_from_root(PREFIX)):
            continue
        try:
            if not cmds.namespaceInfo(namespace, listNamespace=True):
                cmds.namespace(removeNamespace=namespace)
        except RuntimeError:
            pass  # It is the current namespace, or belongs to a reference: it stays.


def commands(engine, cmds):
    """Calls that are not about a trail go to Maya unchanged."""
    def createNode(*kind, **flags):
        if kind == (engine.NODE_TYPE,) and "name" in flags:
            remove_former(flags["name"])
            flags["name"] = _from_root(flags["name"])
        return cmds.createNode(*kind, **flags)

    def remove_former(shape):
        """Deletes the trail of that shape, whose transform may have another name from an earlier version."""
        for former in cmds.ls(_from_root(shape), type=engine.NODE_TYPE) or ():
            delete(cmds.listRelatives(former, parent=True, fullPath=True)[0])

    def rename(*names, **flags):
        if names and names[-1].startswith(PREFIX):
            names = names[:-1] + (_from_root(names[-1]),)
        return cmds.rename(*names, **flags)

    def group(*nodes, **flags):
        made = cmds.group(*nodes, **flags)
        if flags.get("name") != engine.TRAIL_ROOT or made == engine.TRAIL_ROOT:
            return made
        return cmds.rename(made, _from_root(engine.TRAIL_ROOT))

    def delete(*nodes, **flags):
        cmds.delete(*nodes, **flags)
        _remove_empty_namespaces(cmds)

    return {"createNode": createNode, "delete": delete, "group": group, "rename": rename}
