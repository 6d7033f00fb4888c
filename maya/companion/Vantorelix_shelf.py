"""The button on the shelf."""

import os

import maya.cmds as cmds
import maya.mel as mel
from Vantorelix_commands import TITLE, attempt, gesture, log, tell
from Vantorelix_gestures import LEFT, action_of

SHELVES = "ShelfLayout"
# This text must never change: Maya saves it with the shelf, and the button is recognised by it.
SHELF_COMMAND = "import Vantorelix; Vantorelix.shelf_clicked()"


def shelf_clicked():
    """Runs the gesture of the left mouse button with the modifiers that are held."""
    attempt(gesture, action_of(LEFT, cmds.getModifiers()))


def _children(shelf):
    return cmds.shelfLayout(shelf, query=True, childArray=True) or ()


def _saved_with_button(shelf):
    """Whether the button is in a file that Maya has saved for this shelf."""
    for folder in cmds.internalVar(userShelfDir=True).split(os.pathsep):
        try:
            with open(os.path.join(folder, "shelf_{0}.mel".format(shelf)), "rb") as file:
                if SHELF_COMMAND.encode() in file.read():
                    return True
        except OSError:
            pass  # A shelf that was never saved has no file.
    return False


def _select_tab(shelf):
    """Opens a tab as a click does. Selecting it alone would not run the command with which Maya makes its buttons."""
    cmds.shelfTabLayout(SHELVES, edit=True, selectTab=shelf)
    try:
        mel.eval(cmds.shelfTabLayout(SHELVES, query=True, changeCommand=True))
    except Exception:  # A button may be overlooked; the rest still works.
        log.warning("The shelf %s cannot be opened, so a button on it may be missed:", shelf, exc_info=True)


def _open_saved_tabs():
    """Opens the tabs whose file has our button, because Maya makes the buttons of a tab only when it is first
    opened."""
    selected = cmds.shelfTabLayout(SHELVES, query=True, selectTab=True)
    for shelf in _shelves():
        if not _children(shelf) and _saved_with_button(shelf):
            _select_tab(shelf)
            if not _children(shelf):
                log.warning("The shelf %s was saved with a button of Vantorelix, but shows none. Open it and look.",
                            shelf)
    if cmds.shelfTabLayout(SHELVES, query=True, selectTab=True) != selected:
        _select_tab(selected)


def _shelves():
    return cmds.shelfTabLayout(SHELVES, query=True, childArray=True) or ()


def _shelf_buttons():
    _open_saved_tabs()
    return [button for shelf in _shelves() for button in _children(shelf)
            if cmds.shelfButton(button, exists=True) and
            cmds.shelfButton(button, query=True, command=True) == SHELF_COMMAND]


def add_shelf_button():
    """Puts the button on the shelf that is open, unless one of the shelves has it already."""
    if not cmds.shelfTabLayout(SHELVES, exists=True):
        tell("There is no shelf to put a button on. Show Maya's shelves and try again.")
        return
    if _shelf_buttons():
        return
    cmds.shelfButton(parent=cmds.shelfTabLayout(SHELVES, query=True, selectTab=True), label=TITLE,
                     annotation="Motion trails of the selection. Ctrl: NURBS curves. Shift: clear all trails. "
                                "Right click: menu.",
                     image="motionTrail.png", imageOverlayLabel="VLX", sourceType="python", command=SHELF_COMMAND,
                     menuItem=[("Trail menu", "import Vantorelix; Vantorelix.show_trail_mini_menu()"),
                               ("Trail options", "import Vantorelix; Vantorelix.show_options()")],
                     menuItemPython=[0, 1])


def remove_shelf_button():
    """Deletes the button from every shelf."""
    if cmds.shelfTabLayout(SHELVES, exists=True):
        for button in _shelf_buttons():
            cmds.deleteUI(button, control=True)
