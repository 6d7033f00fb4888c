"""The mini menu: at the cursor, in a small window, and as a marking menu."""

from collections import namedtuple

import maya.cmds as cmds
import Vantorelix_engine as engine
from Vantorelix_commands import COMMANDS, MODES, TITLE, Command, attempt, callback, log, tell
from Vantorelix_options import close, show_options

OPTIONS = Command("Options", "Options...", None, callback(show_options))
FILTER = "vantorelixDisplayFilter"  # Vantorelix_plugin registers it under this name.
MENU_WINDOW = "vantorelixMenu"
_shown = None  # The menu that is open: Qt deletes a menu that nothing refers to.

# `checked` is None for an entry without a mark; `place` is the direction in a marking menu, or None for an entry in the
# list.
Entry = namedtuple("Entry", "label run checked place")


def _marks():
    """Whether each command that can be marked is marked now, by name."""
    mode = engine._get_pref_color_mode()
    marks = {"Color" + name: index == mode for index, name in enumerate(MODES)}
    return dict(marks, Ghost=engine._get_pref_xray())


def entries(panel=None):
    """The entries of the menu with their present marks, for the viewport `panel` or the one that has the focus."""
    marks = _marks()
    commands = [Entry(command.label, command.run, marks.get(command.name), command.place) for command in COMMANDS]
    return commands + _filter_entries(panel) + [Entry(OPTIONS.label, OPTIONS.run, None, OPTIONS.place)]


def _filter_entries(panel):
    """The entry that switches the display filter of a viewport. There is none until the plug-in that registers it is
    loaded."""
    try:
        panel = panel or cmds.getPanel(withFocus=True)
        if FILTER not in (cmds.pluginDisplayFilter(query=True, listFilters=True) or ()) or panel not in viewports():
            return []
        shown = bool(cmds.modelEditor(panel, query=True, queryPluginObjects=FILTER))
        return [Entry("Show trails in this viewport", callback(_show_trails, panel, not shown), shown, None)]
    except Exception:  # The menu opens without this entry.
        log.exception("The menu cannot show or hide trails, because Maya's display filters failed:")
        return []


def viewports():
    return cmds.getPanel(type="modelPanel") or ()


def _show_trails(panel, shown):
    cmds.modelEditor(panel, edit=True, pluginObjects=(FILTER, shown))


def _qt():
    """Maya's modules QtGui and QtWidgets, which its versions have in different packages; None without Qt."""
    for package in ("PySide6", "PySide2"):
        try:
            gui = __import__(package + ".QtGui", fromlist=["QCursor"])
            widgets = __import__(package + ".QtWidgets", fromlist=["QMenu"])
        except ImportError:
            continue
        return gui, widgets
    return None


def show_trail_mini_menu():
    """Opens the menu at the cursor, through Qt, because Maya's commands cannot; without Qt, a small window."""
    attempt(_show_menu)


def _show_menu():
    if cmds.about(batch=True):
        tell("The menu needs Maya's window. In batch mode, call the functions of Vantorelix_engine.")
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
    close(MENU_WINDOW)
    cmds.window(MENU_WINDOW, title=TITLE, toolbox=True, sizeable=False)
    cmds.columnLayout(adjustableColumn=True)
    for entry in entries():
        if entry.checked is None:
            cmds.button(label=entry.label, command=entry.run)
        else:
            cmds.checkBox(label=entry.label, value=entry.checked, changeCommand=callback(_run_and_show, entry.run))
    cmds.showWindow(MENU_WINDOW)


def _run_and_show(run):
    """Runs a command and then shows its new mark."""
    run()
    cmds.evalDeferred(callback(_show_window))  # Deferred, because a window must not be deleted during its own callback.


def fill(menu, panel):
    """Replaces the items of the popup menu of a viewport."""
    cmds.popupMenu(menu, edit=True, deleteAllItems=True)
    for entry in entries(panel):
        flags = {"label": entry.label, "command": entry.run, "parent": menu}
        if entry.place:
            flags["radialPosition"] = entry.place
        if entry.checked is not None:
            flags["checkBox"] = entry.checked
        cmds.menuItem(**flags)


MENU = Command("Menu", "Menu", None, callback(show_trail_mini_menu))
