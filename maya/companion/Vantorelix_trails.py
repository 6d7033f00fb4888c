"""Makes trails live again that come back when something is undone or done again.

The engine's registry is not part of Maya's undo queue: after undoing a clear, or redoing a creation, the nodes of a trail
are back, and the engine does not know them. So what the registry held for them is kept here, beside a handle of the
node, which holds for one node alone whatever its name, for as long as Maya could bring that node back. After each undo
and redo the registry is made to fit the scene.
"""


class _Trail(object):
    """One that the engine has or had: its key in the registry, its settings, which are the registry's own, its node."""

    def __init__(self, key, settings, node):
        self.key, self.settings = key, settings
        self.handle = _engine.om.MObjectHandle(node)
        self.gone = False  # its node was not in the scene at some time
        self.told = False  # that it is back, but cannot live

    def is_here(self):
        return self.handle.isValid()

    def can_live(self):
        return _node(self.key) == self.handle.object() and _node(self.settings.get("source")) is not None


def _node(name):
    """The one node of that name; None where there is none, or several."""
    found = _engine.om.MSelectionList()
    try:
        found.add(name)
    except Exception:  # Not there, or no name: the registry is open to scripts.
        return None
    return found.getDependNode(0) if found.length() == 1 else None


_trails = []
_events = []  # identifiers of the callbacks
_engine = None


def look():
    """To be called when nodes may have gone."""
    for trail in _trails:
        trail.gone = trail.gone or not trail.is_here()


def note():
    """To be called when the engine may have other trails than before."""
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
    """Runs inside Maya's callback, so it asks and queues but edits nothing itself."""
    registry = _engine._REGISTRY
    for trail in _trails:
        if not trail.is_here():
            if not trail.gone:
                registry.pop(trail.key, None)
            trail.gone, trail.told = True, False
    back = [trail for trail in _trails if trail.gone and trail.is_here()]
    living = [trail for trail in back if trail.can_live()]
    for trail in living:
        registry[trail.key] = trail.settings
        trail.gone = trail.told = False
    if living:
        _engine._ensure_callback()
        _engine._schedule_rebuild()
    _tell([trail for trail in back if trail.gone and not trail.told])


def _tell(trails):
    for trail in trails:
        trail.told = True
    if trails:
        _engine._msg("{0} trail(s) came back, but do not follow edits, as what they are of is not there. "
                     "Build them again when it is.".format(len(trails)))


def commands(engine, cmds):
    global _engine
    _engine = engine

    def after(command, watch):
        def call(*arguments, **flags):
            result = getattr(cmds, command)(*arguments, **flags)
            try:
                watch()
            except Exception as error:  # The engine's own call has done its work.
                cmds.warning("Vantorelix does not keep these trails for undo: {0}".format(error))
            return result
        return call

    # The engine draws anew at the end of each command that makes trails, and of each rebuild.
    return {"refresh": after("refresh", note), "delete": after("delete", look)}
