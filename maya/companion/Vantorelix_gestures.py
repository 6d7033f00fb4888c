"""Mouse gestures in the viewports.

Clicks in a viewport belong to Maya's current tool, so the gestures are a tool themselves: a dragger context, which gets
presses and releases of the left and the middle button. The right button never reaches a tool, because Maya opens its
marking menu with it. So the menu is a marking menu of ours on Ctrl+Alt+right in each viewport, torn off or not, and the
other gesture of the right button, ghost, is on Ctrl+middle. When the gestures end, the previous tool is current again,
and the context and the menus are deleted.
"""

import maya.cmds as cmds
from Vantorelix_commands import callback, gesture
from Vantorelix_menu import fill, viewports

CONTEXT = "vantorelixGestures"
MARKING_MENU = "vantorelixMarkingMenu_"  # followed by the name of the panel
SELECT_TOOL = "selectSuperContext"
LEFT, MIDDLE = 1, 2
_SHIFT, _CTRL = 1, 4  # Bits of getModifiers.

_tool_before = None
_pressed = ""


def action_of(button, modifiers):
    """The name of a gesture for `pellark_entry`, which opens the menu for every name that it does not know."""
    name = {LEFT: "lmb", MIDDLE: "mouse2"}.get(button, "rmb")
    if modifiers & _SHIFT:
        name = "shift_" + name
    if modifiers & _CTRL:
        name = "ctrl_" + name
    return "ctrl_rmb" if name == "ctrl_mouse2" else name


def _on_press():
    global _pressed
    _pressed = action_of(cmds.draggerContext(CONTEXT, query=True, button=True), cmds.getModifiers())


def _on_release():
    gesture(_pressed)


def _add_marking_menu(panel):
    """The menu belongs to the panel's own layout, so that panels in windows of their own have one, too."""
    menu, layout = MARKING_MENU + panel, cmds.modelPanel(panel, query=True, control=True)
    if layout and not cmds.popupMenu(menu, exists=True):  # A panel that is shown nowhere has no layout.
        cmds.popupMenu(menu, parent=layout, button=3, ctrlModifier=True, altModifier=True, markingMenu=True,
                       postMenuCommand=callback(fill, menu, panel))


def bind_gestures():
    """Makes the gestures the current tool. Called again, it only adds the menu to viewports that are new."""
    global _tool_before
    if not cmds.draggerContext(CONTEXT, exists=True):
        cmds.draggerContext(CONTEXT, pressCommand=callback(_on_press), releaseCommand=callback(_on_release),
                            cursor="crossHair", undoMode="step", space="screen")
    for panel in viewports():
        _add_marking_menu(panel)
    tool = cmds.currentCtx()
    if tool != CONTEXT:
        _tool_before = tool
        cmds.setToolTo(CONTEXT)


def unbind_gestures():
    """Makes the previous tool current again, unless the user has chosen another one meanwhile."""
    if cmds.currentCtx() == CONTEXT:
        known = _tool_before and cmds.contextInfo(_tool_before, exists=True)
        cmds.setToolTo(_tool_before if known else SELECT_TOOL)
    if cmds.draggerContext(CONTEXT, exists=True):
        cmds.deleteUI(CONTEXT, toolContext=True)
    for panel in viewports():
        if cmds.popupMenu(MARKING_MENU + panel, exists=True):
            cmds.deleteUI(MARKING_MENU + panel, menu=True)


