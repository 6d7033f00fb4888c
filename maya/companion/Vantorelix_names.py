"""Trails of objects in namespaces, whichever namespace is current.

The engine names a trail after its object. The one of `char:ctrl` is `vlx_char:ctrl_viz`, in a namespace `vlx_char` that
only trails have, and it is looked for from the root, as Maya looks for every name. A new name, though, leads below the
current namespace, and what Maya makes of a namespace in it depends on the command. So new names go to Maya from the
root, with a colon in front: they are then found again, and no two objects share one. Namespaces that were left empty
are removed with the trails.
"""

PREFIX = "vlx_"  # of every name that the engine gives to a trail


def _from_root(name):
    return ":" + name.lstrip(":")


def _remove_empty_namespaces(cmds):
    found = cmds.namespaceInfo(":", listOnlyNamespaces=True, recurse=True, absoluteName=True) or ()
    for namespace in sorted(map(_from_root, found), reverse=True):  # those inside another come before it
        if not namespace.startswith(_from_root(PREFIX)):
            continue
        try:
            if not cmds.namespaceInfo(namespace, listNamespace=True):
                cmds.namespace(removeNamespace=namespace)
        except RuntimeError:
            pass  # It is the current one, or belongs to a reference: it stays, and what was asked for is done.


def commands(engine, cmds):
    """What is not a call of the engine's about a trail goes to Maya as it comes."""
    def createNode(*kind, **flags):
        if kind == (engine.NODE_TYPE,) and "name" in flags:
            remove_former(flags["name"])
            flags["name"] = _from_root(flags["name"])
        return cmds.createNode(*kind, **flags)

    def remove_former(shape):
        """A trail that bears another name above its shape, as versions before this one may have given it."""
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
