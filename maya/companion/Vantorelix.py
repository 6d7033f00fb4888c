"""What an animator sees of Vantorelix in Maya: the mini menu, the options, mouse gestures and a shelf button.

    import Vantorelix
    Vantorelix.show_trail_mini_menu()

Importing this module changes nothing in Maya. Whatever fails in here is told in the viewport and raises nothing.
"""

import functools
from collections import namedtuple

import maya.cmds as cmds
import Vantorelix_engine as engine

MODES = ("Standard", "Spacing", "Flow", "Beats")
TITLE = "Vantorelix"

# `checked` is None where there is nothing to mark; `place` is the direction in a marking menu, None for its list.
Entry = namedtuple("Entry", "label run checked place")


def _guarded(run, *arguments):
    """`run` as Maya's interface may call it, with whatever it passes; an error becomes a message to the user."""
    @functools.wraps(run)
    def call(*_ignored):
        try:
            run(*arguments)
        except Exception as error:
            engine._msg("{0}: {1}".format(type(error).__name__, error))
    return call


def _command(name, *arguments):
    """A command of the engine, looked up when it is called, so that a tool may have wrapped it meanwhile."""
    def run():
        getattr(engine, name)(*arguments)
    return _guarded(run)


def entries():
    """The menu as things stand now."""
    mode = engine._get_pref_color_mode()
    places = ("W", "E", "NE", "NW")
    return ([Entry("Build trail", _command("create_trail"), None, "N"),
             Entry("Clear trails", _command("clear_trails"), None, "S")] +
            [Entry(label, _command("set_color_mode", index), index == mode, places[index])
             for index, label in enumerate(MODES)] +
            [Entry("Ghost", _command("toggle_ghost"), engine._get_pref_xray(), "SE"),
             Entry("Convert to NURBS", _command("convert_to_nurbs"), None, "SW"),
             Entry("Options...", _guarded(show_options), None, None)])


# The menu -------------------------------------------------------------------------------------------------------------

MENU_WINDOW = "vantorelixMenu"
_shown = None  # Qt deletes a menu that nobody holds.


def _qt():
    """The parts of Qt that Maya brings along, under the name that its version has for them; None without Qt."""
    for package in ("PySide6", "PySide2"):
        try:
            gui = __import__(package + ".QtGui", fromlist=["QCursor"])
            widgets = __import__(package + ".QtWidgets", fromlist=["QMenu"])
        except ImportError:
            continue
        return gui, widgets
    return None


def show_trail_mini_menu():
    """The menu at the cursor. Maya's own commands cannot open one there, so Qt does; without it, a small window."""
    _guarded(_show_menu)()


def _show_menu():
    if cmds.about(batch=True):
        engine._msg("The menu needs Maya's window.")
        return
    qt = _qt()
    if qt:
        _show_popup(*qt)
    else:
        _show_window()


def _show_popup(gui, widgets):
    global _shown
    _shown = widgets.QMenu(widgets.QApplication.activeWindow())
    for entry in entries():
        action = _shown.addAction(entry.label)
        if entry.checked is not None:
            action.setCheckable(True)
            action.setChecked(entry.checked)
        action.triggered.connect(entry.run)
    _shown.popup(gui.QCursor.pos())


def _show_window():
    _close(MENU_WINDOW)
    cmds.window(MENU_WINDOW, title=TITLE, toolbox=True, sizeable=False)
    cmds.columnLayout(adjustableColumn=True)
    for entry in entries():
        if entry.checked is None:
            cmds.button(label=entry.label, command=entry.run)
        else:
            cmds.checkBox(label=entry.label, value=entry.checked, changeCommand=_guarded(_run_and_show, entry.run))
    cmds.showWindow(MENU_WINDOW)


def _run_and_show(run):
    """After a choice that moves the marks."""
    run()
    cmds.evalDeferred(_guarded(_show_window))  # Not at once: the window would be deleted under its own callback.


def _close(window):
    if cmds.window(window, exists=True):
        cmds.deleteUI(window, window=True)


def _fill(menu):
    cmds.popupMenu(menu, edit=True, deleteAllItems=True)
    for entry in entries():
        flags = {"label": entry.label, "command": entry.run, "parent": menu}
        if entry.place:
            flags["radialPosition"] = entry.place
        if entry.checked is not None:
            flags["checkBox"] = entry.checked
        cmds.menuItem(**flags)


# The options ----------------------------------------------------------------------------------------------------------

OPTIONS_WINDOW = "vantorelixOptions"


def _slider(make, low, high):
    """A number with a slider from `low` to `high`; above that it can be typed."""
    def show(name, label, value):
        make(name, label=label, field=True, minValue=low, maxValue=high, fieldMinValue=low, fieldMaxValue=1000,
             value=value)
    return show, lambda name: make(name, query=True, value=True)


def _show_switch(name, label, value):
    cmds.checkBox(name, label=label, value=value)


def _show_mode(name, label, value):
    cmds.optionMenu(name, label=label)
    for mode in MODES:
        cmds.menuItem(label=mode)
    # A mode that has no name is drawn as the first one; that is what the menu shows, too.
    cmds.optionMenu(name, edit=True, select=value + 1 if 0 <= value < len(MODES) else 1)


def _kinds():
    return {"samples": _slider(cmds.intSliderGrp, 1, 16),
            "size": _slider(cmds.floatSliderGrp, 0.0, 20.0),
            "switch": (_show_switch, lambda name: cmds.checkBox(name, query=True, value=True)),
            "mode": (_show_mode, lambda name: cmds.optionMenu(name, query=True, select=True) - 1)}


# The engine's name of the preference, the label and the kind of control.
PREFERENCES = (("samples", "Samples per frame", "samples"), ("line_width", "Line width", "size"),
               ("point_size", "Dot size", "size"), ("show_line", "Show line", "switch"),
               ("show_dots", "Show dots", "switch"), ("xray", "Ghost (draw through geometry)", "switch"),
               ("color_mode", "Color mode", "mode"))


def control_of(preference):
    return "vantorelix_" + preference


def show_options():
    """The window with every preference; nothing is stored before one of its buttons says so."""
    _close(OPTIONS_WINDOW)
    kinds = _kinds()
    cmds.window(OPTIONS_WINDOW, title=TITLE + " options", sizeable=False)
    column = cmds.columnLayout(adjustableColumn=True, rowSpacing=4, columnAttach=("both", 8))
    for preference, label, kind in PREFERENCES:
        value = getattr(engine, "_get_pref_" + preference)()
        kinds[kind][0](control_of(preference), label, value)
        cmds.setParent(column)
    cmds.rowLayout(numberOfColumns=3)
    cmds.button(label="Apply and close", command=_guarded(_apply_and_close))
    cmds.button(label="Apply", command=_guarded(apply_options))
    cmds.button(label="Close", command=_guarded(_close, OPTIONS_WINDOW))
    cmds.showWindow(OPTIONS_WINDOW)


def apply_options():
    """Stores what the window shows, and brings the trails in line. They are sampled anew only at another density."""
    kinds = _kinds()
    density = engine._get_pref_samples()
    for preference, _label, kind in PREFERENCES:
        getattr(engine, "_set_pref_" + preference)(kinds[kind][1](control_of(preference)))
    engine.apply_prefs_to_existing_trails(rebuild_if_samples_changed=engine._get_pref_samples() != density)


def _apply_and_close():
    apply_options()
    cmds.evalDeferred(_guarded(_close, OPTIONS_WINDOW))  # Not under the button's own callback.


# Gestures -------------------------------------------------------------------------------------------------------------
#
# The viewport's plain clicks belong to Maya's current tool, so the gestures are a tool themselves: a dragger context,
# which is told of presses and releases of the left and the middle button. The right button never reaches a tool (Maya
# opens its marking menu with it), so the menu that belongs to it is a marking menu of ours on Ctrl+Alt+right in all
# viewports, and its other gesture, ghost, is Ctrl+middle. Both end without a trace: the earlier tool is taken up again,
# and the context and the menu are deleted.

CONTEXT = "vantorelixGestures"
MARKING_MENU = "vantorelixMarkingMenu"
VIEWPORTS = "viewPanes"
SELECT_TOOL = "selectSuperContext"
_SHIFT, _CTRL = 1, 4  # Bits of getModifiers.

_tool_before = None
_pressed = ""


def _action(button, modifiers):
    """The name of a gesture as `pellark_entry` knows it; it opens the menu for any that it does not know."""
    name = {1: "lmb", 2: "mouse2"}.get(button, "rmb")
    if modifiers & _SHIFT:
        name = "shift_" + name
    if modifiers & _CTRL:
        name = "ctrl_" + name
    return "ctrl_rmb" if name == "ctrl_mouse2" else name


def _on_press():
    global _pressed
    _pressed = _action(cmds.draggerContext(CONTEXT, query=True, button=True), cmds.getModifiers())


def _on_release():
    engine.pellark_entry(_pressed)


def bind_gestures():
    """Makes the gestures the current tool. Bound twice is bound once."""
    global _tool_before
    if not cmds.draggerContext(CONTEXT, exists=True):
        cmds.draggerContext(CONTEXT, pressCommand=_guarded(_on_press), releaseCommand=_guarded(_on_release),
                            cursor="crossHair", undoMode="step", space="screen")
    if not cmds.popupMenu(MARKING_MENU, exists=True):
        cmds.popupMenu(MARKING_MENU, parent=VIEWPORTS, button=3, ctrlModifier=True, altModifier=True, markingMenu=True,
                       postMenuCommand=_guarded(_fill, MARKING_MENU))
    tool = cmds.currentCtx()
    if tool != CONTEXT:
        _tool_before = tool
        cmds.setToolTo(CONTEXT)


def unbind_gestures():
    """Gives the mouse back to the tool that had it. Where the user has taken another one meanwhile, that one stays."""
    if cmds.currentCtx() == CONTEXT:
        known = _tool_before and cmds.contextInfo(_tool_before, exists=True)
        cmds.setToolTo(_tool_before if known else SELECT_TOOL)
    if cmds.draggerContext(CONTEXT, exists=True):
        cmds.deleteUI(CONTEXT, toolContext=True)
    if cmds.popupMenu(MARKING_MENU, exists=True):
        cmds.deleteUI(MARKING_MENU, menu=True)


# The shelf ------------------------------------------------------------------------------------------------------------

SHELVES = "ShelfLayout"
# Text, and the same for ever: Maya stores it with the shelf, and the button is found again by it.
SHELF_COMMAND = "import Vantorelix; Vantorelix.shelf_clicked()"


def shelf_clicked():
    """A click on the shelf button is the left button's gesture, with the modifier that is held."""
    _guarded(engine.pellark_entry, _action(1, cmds.getModifiers()))()


def _shelf_buttons():
    for shelf in cmds.shelfTabLayout(SHELVES, query=True, childArray=True) or ():
        for button in cmds.shelfLayout(shelf, query=True, childArray=True) or ():
            if cmds.shelfButton(button, exists=True) and \
                    cmds.shelfButton(button, query=True, command=True) == SHELF_COMMAND:
                yield button


def add_shelf_button():
    """Puts the button on the shelf that is open, unless one of the shelves has it already."""
    if not cmds.shelfTabLayout(SHELVES, exists=True):
        engine._msg("There is no shelf to put a button on.")
        return
    if any(True for _ in _shelf_buttons()):
        return
    cmds.shelfButton(parent=cmds.shelfTabLayout(SHELVES, query=True, selectTab=True), label=TITLE,
                     annotation="Motion trail of the selection. Ctrl: to NURBS. Shift: clear. Right click: the menu.",
                     image="motionTrail.png", imageOverlayLabel="VLX", sourceType="python", command=SHELF_COMMAND,
                     menuItem=[("Trail menu", "import Vantorelix; Vantorelix.show_trail_mini_menu()"),
                               ("Trail options", "import Vantorelix; Vantorelix.show_options()")],
                     menuItemPython=[0, 1])


def remove_shelf_button():
    if cmds.shelfTabLayout(SHELVES, exists=True):
        for button in list(_shelf_buttons()):
            cmds.deleteUI(button, control=True)
