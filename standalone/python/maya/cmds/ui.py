"""What the user sees: messages and panels. There is no window: `maya.host.messages` has what was shown."""

from .. import host
from .._commands import command, not_covered

__all__ = ["error", "getPanel", "inViewMessage", "modelEditor", "refresh", "warning"]


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
    """The four viewports are all there is; the last one has the focus."""
    panels = host.call("model_panels")
    if withFocus:
        return panels[-1] if panels else ""
    return panels if type in (None, "modelPanel") else []


@command(query="q", edit="e", motionTrails="mt")
def modelEditor(panel, *, query=False, edit=False, motionTrails=None):
    """Whether a viewport shows motion trails."""
    if motionTrails is None:
        raise not_covered("modelEditor: other flags than motionTrails")
    if query:
        return host.call("panel_flag", panel, "motionTrails")
    host.call("set_panel_flag", panel, "motionTrails", bool(motionTrails))
