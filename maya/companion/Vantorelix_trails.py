"""Makes trails follow edits again when an undo or redo brings them back.

The engine's registry is not part of Maya's undo queue. When clearing trails is undone, or creating them is redone,
their nodes are back, but the engine does not know them. So this module keeps what the registry had for each trail, as
long as Maya could bring its node back. It recognises the node by a handle, which stays valid whatever the node is
called. After each undo and redo it makes the registry agree with the scene.
"""


class _Trail(object):
    """A trail that the engine has or had: its key in the registry, its settings (the registry's own), and its node."""

    def __init__(self, key, settings, node):
        self.key, self.settings = key, settings
        self.handle = _engine.om.MObjectHandle(node)
        self.gone = False  # its node has left the scene
        self.told = False  # the user knows that it is back but cannot follow edits

    def is_here(self):
        return self.handle.isValid()

    def can_follow_edits(self):
        return _node(self.key) == self.handle.object() and _node(self.settings.get("source")) is not None


def _node(name):
    """The node of that name; None if there is none, or more than one."""
    found = _engine.om.MSelectionList()
    try:
        found.add(name)
    except Exception:  # There is no such node, or a script has put something else than a name into the registry.
        return None
    return found.getDependNode(0) if found.length() == 1 else None


_trails = []
_events = []  # the identifiers of our callbacks
_engine = None


def look():
    """Must be called when nodes may have been deleted."""
    for trail in _trails:
        trail.gone = trail.gone or not trail.is_here()


def note():
    """Must be called when the engine may have new trails."""
    look()
    registry, known = _engine._REGISTRY, {trail.key for trail in _trails if not trail.gone}
    fresh = [_Trail(key, registry[key], _node(key)) for key in registry if key not in known and _node(key) is not None]
    if fresh:
        _trails[:] = [trail for trail in _trails if trail.handle.isAlive()] + fresh
        _watch()


def _watch():
    for event in ("Undo", "Redo"):
        if len(_events) < 2:
            _events.append(_engine.om.MEventMessage.addEventCallback(event, _settle))


def _settle(*_ignored):
    """Runs inside a callback of Maya's, so it only reads the scene and queues a rebuild."""
    registry = _engine._REGISTRY
    for trail in _trails:
        if not trail.is_here():
            if not trail.gone:
                registry.pop(trail.key, None)
            trail.gone, trail.told = True, False
    back = [trail for trail in _trails if trail.gone and trail.is_here()]
    following = [trail for trail in back if trail.can_follow_edits()]
    for trail in following:
        registry[trail.key] = trail.settings
        trail.gone = trail.told = False
    if following:
        _engine._ensure_callback()
        _engine._schedule_rebuild()
    _tell([trail for trail in back if trail.gone and not trail.told])


def _names(trails):
    """The first names, as many as a message has room for."""
    return ", ".join([str(trail.key) for trail in trails[:3]] + ["..."] * (len(trails) > 3))


def _tell(trails):
    for trail in trails:
        trail.told = True
    if trails:
        _engine._msg("{0} trail(s) came back, but do not follow edits, because their objects are missing: {1}. Build "
                     "them again when the objects are back.".format(len(trails), _names(trails)))


def commands(engine, cmds):
    global _engine
    _engine = engine

    def after(command, watch):
        def call(*arguments, **flags):
            result = getattr(cmds, command)(*arguments, **flags)
            try:
                watch()
            except Exception as error:  # The engine's own call has succeeded.
                cmds.warning("Trails that an undo brings back will not follow edits: {0}. Build them again then."
                             .format(error))
            return result
        return call

    # The engine refreshes the viewports at the end of each command that makes trails, and of each rebuild.
    return {"refresh": after("refresh", note), "delete": after("delete", look)}
