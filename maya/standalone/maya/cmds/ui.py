"""What the user sees: messages and panels. There is no window; `maya.host.messages` has the messages that were
shown."""

from .. import _ui, host
from .._commands import command, not_covered

__all__ = ["error", "getPanel", "inViewMessage", "modelEditor", "modelPanel", "pluginDisplayFilter", "refresh",
           "runTimeCommand", "warning"]


@command(noContext="n")
def warning(text, *, noContext=False):
    host.show_warning(text)
    return text


@command(noContext="n")
def error(text, *, noContext=False):
    raise RuntimeError(text)


@command(currentView="cv", force="f", suspend="su")
def refresh(*, currentView=False, force=False, suspend=None):
    """Nothing is drawn."""


@command(assistMessage="amg", statusMessage="smg", message="msg", position="pos", fade="f", alpha="a")
def inViewMessage(*, assistMessage=None, statusMessage=None, message=None, position="", fade=False, alpha=1.0):
    if host.call("batch"):
        raise RuntimeError("inViewMessage: not available in batch mode")
    given = [text for text in (assistMessage, statusMessage, message) if text is not None]
    if not given:
        raise RuntimeError("inViewMessage: no message was given.")
    host.messages.append(given[0])


@command(type="typ", all="all", visiblePanels="vis", withFocus="wf")
def getPanel(*, type=None, all=False, visiblePanels=False, withFocus=False):
    """The only panels are the viewports; the last one has the focus unless a test has given it to another."""
    panels = host.call("model_panels")
    if withFocus:
        return _ui.state["focus"] or (panels[-1] if panels else "")
    return panels if type in (None, "modelPanel") else []


@command(query="q", control="ctl")
def modelPanel(panel, *, query=False, control=False):
    if not (query and control):
        raise not_covered("modelPanel: anything but the query of control")
    return _ui.layout_of(panel)


@command(query="q", edit="e", motionTrails="mt", locators="lc", pluginObjects="po", queryPluginObjects="qpo")
def modelEditor(panel, *, query=False, edit=False, motionTrails=None, locators=None, pluginObjects=None,
                queryPluginObjects=None):
    """Sets or queries whether a viewport shows motion trails, locators, and the objects of plug-ins' display
    filters."""
    if panel not in host.call("model_panels"):
        raise RuntimeError("modelEditor: Object '%s' not found." % panel)
    if motionTrails is not None and query:
        return host.call("panel_flag", panel, "motionTrails")
    if motionTrails is not None:
        return host.call("set_panel_flag", panel, "motionTrails", bool(motionTrails))
    if query and (locators or queryPluginObjects):
        return (panel, "locators" if locators else _existing_filter(queryPluginObjects)) not in host.hidden
    if query or (locators is None and pluginObjects is None):
        raise not_covered("modelEditor: flags other than motionTrails, locators and those of plug-in objects")
    what, shown = ("locators", locators) if pluginObjects is None else pluginObjects
    if pluginObjects is not None:
        _existing_filter(what)
    (host.hidden.discard if shown else host.hidden.add)((panel, what))


def _existing_filter(name):
    if name not in host.display_filters:
        raise RuntimeError("Plug-in display filter '%s' is not registered." % name)
    return name


@command(query="q", register="r", deregister="dr", label="l", classification="cls", exists="ex", listFilters="lf")
def pluginDisplayFilter(*name, query=False, register=False, deregister=False, label=None, classification=None,
                        exists=None, listFilters=False):
    """Entries of the viewports' Show menus. One that is registered twice stays until it is deregistered twice."""
    if host.call("batch"):
        raise RuntimeError("pluginDisplayFilter: not available in batch mode")
    if exists is not None:
        return exists in host.display_filters
    if listFilters:
        return list(host.display_filters)
    if register:
        host.display_filters.setdefault(name[0], [label, classification, 0])[2] += 1
        return
    known = host.display_filters[_existing_filter(name[0])]
    if query:
        return known[0] if label else known[1]
    if not deregister:
        raise not_covered("pluginDisplayFilter: edits")
    known[2] -= 1
    if not known[2]:
        del host.display_filters[name[0]]


@command(annotation="ann", category="cat", command="c", commandLanguage="cl", default="d", exists="ex")
def runTimeCommand(name, *, annotation="", category="", command="", commandLanguage="mel", default=False, exists=False):
    """Makes a command that can be given a hotkey; `maya._ui.press_hotkey` presses it."""
    if exists:
        return name in _ui.hotkeys
    if not name.isidentifier() or name in _ui.hotkeys:
        raise RuntimeError("'%s' is not a valid name, or is taken." % name)
    _ui.hotkeys[name] = {"annotation": annotation, "category": category, "command": command,
                         "commandLanguage": commandLanguage, "default": default}
    return name
