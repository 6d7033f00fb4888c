"""Maya's windows, menus, controls and tools, recorded: made, edited, asked and deleted, but never shown.

COMMANDS has the commands by their names in maya.cmds. They return a control's name as it was made, not its path. The
functions below COMMANDS do what a user would do: press, choose and type.
"""

import os
import re
from collections import OrderedDict

from . import host

# The covered flags, long names with their short ones.
_SHORT = {
    "adjustableColumn": "adj", "altModifier": "alt", "annotation": "ann", "button": "b", "changeCommand": "cc",
    "checkBox": "cb", "childArray": "ca", "columnAttach": "cat", "columnWidth": "cw", "command": "c", "cursor": "cur",
    "ctrlModifier": "ctl", "deleteAllItems": "dai", "divider": "d", "edit": "e", "enable": "en", "exists": "ex",
    "field": "f", "fieldMaxValue": "fmx", "fieldMinValue": "fmn", "height": "h", "image": "i",
    "imageOverlayLabel": "iol", "itemArray": "ia", "label": "l", "markingMenu": "mm", "maxValue": "max",
    "menuItem": "mi", "menuItemPython": "mip", "minValue": "min", "numberOfColumns": "nc", "parent": "p",
    "postMenuCommand": "pmc", "pressCommand": "pc", "query": "q", "radialPosition": "rp", "releaseCommand": "rc",
    "rowSpacing": "rs", "select": "sl", "selectTab": "st", "shiftModifier": "sh", "sizeable": "s", "sourceType": "stp",
    "space": "sp", "title": "t", "toolbox": "tlb", "undoMode": "um", "value": "v", "visible": "vis", "width": "w",
    "control": "ctl", "menu": "m", "toolContext": "tc", "window": "wnd",
}
_ANY = ("annotation", "edit", "enable", "exists", "height", "parent", "query", "visible", "width")
_SLIDER = ("changeCommand", "field", "fieldMaxValue", "fieldMinValue", "label", "maxValue", "minValue", "value")
_LAYOUT = ("childArray", "columnAttach", "columnWidth")
_KINDS = {
    "button": ("command", "label"),
    "checkBox": ("changeCommand", "label", "value"),
    "columnLayout": _LAYOUT + ("adjustableColumn", "rowSpacing"),
    "draggerContext": ("button", "cursor", "pressCommand", "releaseCommand", "space", "undoMode"),
    "floatField": ("changeCommand", "maxValue", "minValue", "value"),
    "floatSliderGrp": _SLIDER,
    "intField": ("changeCommand", "maxValue", "minValue", "value"),
    "intSliderGrp": _SLIDER,
    "menuItem": ("checkBox", "command", "divider", "label", "radialPosition"),
    "optionMenu": ("changeCommand", "itemArray", "label", "select", "value"),
    "popupMenu": ("altModifier", "button", "ctrlModifier", "deleteAllItems", "itemArray", "markingMenu",
                  "postMenuCommand", "shiftModifier"),
    "rowLayout": _LAYOUT + ("adjustableColumn", "numberOfColumns"),
    "shelfButton": ("command", "image", "imageOverlayLabel", "label", "menuItem", "menuItemPython", "sourceType"),
    "shelfLayout": ("childArray",),
    "shelfTabLayout": ("changeCommand", "childArray", "selectTab"),
    "text": ("label",),
    "window": ("sizeable", "title", "toolbox"),
}
_LAYOUTS = ("columnLayout", "rowLayout", "shelfLayout", "shelfTabLayout", "window")
_MENUS = ("optionMenu", "popupMenu")
_APART = ("draggerContext", "window")  # these have no parent


class Control(object):
    def __init__(self, name, kind, parent, flags):
        self.name, self.kind, self.parent, self.flags = name, kind, parent, flags

    def children(self):
        return [control.name for control in controls.values() if control.parent == self.name]


controls = OrderedDict()
state = {}
torn_off = OrderedDict()  # The viewports outside of the main window: name -> layout, "" while it is shown nowhere.
unopened = {}  # The tabs of shelves that were not opened yet: name -> file.
hotkeys = OrderedDict()  # The commands for hotkeys: name -> their flags.


def reset():
    """Maya as it starts: two shelves, the viewports, and the select tool."""
    for kept in (controls, torn_off, unopened, hotkeys):
        kept.clear()
    state.update(layout=None, menu=None, tool="selectSuperContext", button=1, modifiers=0, focus=None)
    panes = [(panel, "columnLayout", "viewPanes") for panel in host.call("model_panels")]
    for name, kind, parent in [("viewPanes", "columnLayout", None)] + panes + [
            ("ShelfLayout", "shelfTabLayout", None), ("Animation", "shelfLayout", "ShelfLayout"),
            ("Custom", "shelfLayout", "ShelfLayout")]:
        controls[name] = Control(name, kind, parent, {})
    controls["ShelfLayout"].flags.update(selectTab="Animation", changeCommand=_OPEN_TAB)


def layout_of(panel):
    """The layout of a viewport. In the main window a viewport and its layout have the same name."""
    layout = torn_off.get(panel, panel)
    if layout and layout not in controls:
        raise RuntimeError("Object '{0}' not found.".format(panel))
    return layout


def _long(kind, covered, flags):
    names = {_SHORT[name]: name for name in covered}
    found = {}
    for flag, value in flags.items():
        name = names.get(flag, flag)
        if name not in covered:
            raise TypeError("Invalid flag '{0}' ({1}: what is covered here is {2})".format(flag, kind,
                                                                                      ", ".join(sorted(covered))))
        found[name] = value
    return found


def _existing(kind, name):
    if name not in controls or controls[name].kind != kind:
        raise RuntimeError("Object '{0}' not found.".format(name))
    return controls[name]


def _run(kind, *names, **flags):
    flags = _long(kind, _KINDS[kind] + _ANY, flags)
    if flags.get("exists"):
        return bool(names) and names[0] in controls and controls[names[0]].kind == kind
    if flags.pop("query", False):
        return _query(_existing(kind, names[0]), flags)
    if flags.pop("edit", False):
        _edit(_existing(kind, names[0]), flags)
        return names[0]
    return _make(kind, names[0] if names else None, flags)


def _query(control, flags):
    if len(flags) != 1:
        raise RuntimeError("Only one flag can be queried at a time.")
    flag = next(iter(flags))
    if flag in ("childArray", "itemArray"):
        return control.children() or None
    if control.kind == "draggerContext" and flag == "button":
        return state["button"]
    if control.kind == "optionMenu" and flag == "value":
        return controls[control.children()[control.flags["select"] - 1]].flags["label"]
    return control.flags.get(flag)


def _edit(control, flags):
    if flags.pop("deleteAllItems", False):
        for child in control.children():
            _delete(child)
    if control.kind == "optionMenu" and not 1 <= flags.get("select", 1) <= len(control.children()):
        raise RuntimeError("Index out of range.")
    control.flags.update(_limit(control.kind, dict(control.flags, **flags)))


def _limit(kind, flags):
    """Brings a value between the ends of its field, which are those of the slider unless the field has its own."""
    low, high = flags.get("fieldMinValue", flags.get("minValue")), flags.get("fieldMaxValue", flags.get("maxValue"))
    if "value" in flags and kind.startswith(("int", "float")):
        value = (int if kind.startswith("int") else float)(flags["value"])
        value = value if low is None else max(low, value)
        flags["value"] = value if high is None else min(high, value)
    return flags


def _make(kind, name, flags):
    number = 1
    while name is None:
        name = "{0}{1}".format(kind, number) if "{0}{1}".format(kind, number) not in controls else None
        number += 1
    if name in controls:
        raise RuntimeError("Object's name '{0}' is not unique.".format(name))
    parent = None
    if kind not in _APART:
        parent = flags.pop("parent", state["menu" if kind == "menuItem" else "layout"])
        if parent not in controls or controls[parent].kind not in (_MENUS if kind == "menuItem" else _LAYOUTS):
            raise RuntimeError("Controls must have a layout (parent '{0}').".format(parent))
    made = controls[name] = Control(name, kind, parent, _limit(kind, flags))
    if kind == "optionMenu":
        made.flags.setdefault("select", 1)
    if kind in _LAYOUTS:
        state["layout"] = name
    elif kind in _MENUS:
        state["menu"] = name
    return name


def _delete(name):
    for child in controls[name].children():
        _delete(child)
    del controls[name]
    for current in ("layout", "menu"):
        if state[current] == name:
            state[current] = None


def deleteUI(*names, **flags):
    flags = _long("deleteUI", ("control", "menu", "toolContext", "window"), flags)
    for name in names:
        if name not in controls or (flags.get("window") and controls[name].kind != "window"):
            raise RuntimeError("Object '{0}' not found.".format(name))
        if name == state["tool"]:
            raise RuntimeError("The current tool cannot be deleted.")
        _delete(name)


def showWindow(name):
    _existing("window", name).flags["visible"] = True


def setParent(name):
    if name not in controls:
        raise RuntimeError("Object '{0}' not found.".format(name))
    state["layout"] = name
    return name


def currentCtx():
    return state["tool"]


def contextInfo(name, **flags):
    flags = _long("contextInfo", ("exists",), flags)
    if not flags.get("exists"):
        raise TypeError("contextInfo: only the flag exists is covered here.")
    return name in _TOOLS or (name in controls and controls[name].kind == "draggerContext")


_TOOLS = ("selectSuperContext", "moveSuperContext", "RotateSuperContext", "scaleSuperContext")


def setToolTo(name):
    if not contextInfo(name, exists=True):
        raise RuntimeError("Object '{0}' not found.".format(name))
    state["tool"] = name


def evaluate(text):
    """Runs MEL. The only covered text is the command that the shelves run when the user has chosen a tab."""
    if text != _OPEN_TAB:
        raise RuntimeError("Cannot find procedure \"{0}\": other MEL than the shelves' is not covered.".format(text))
    shelf = controls["ShelfLayout"].flags["selectTab"]
    if shelf in unopened:
        with open(unopened.pop(shelf)) as file:
            for command in re.findall(r'-command "(.*)"', file.read()):
                _make("shelfButton", None, {"parent": shelf, "command": command})


_OPEN_TAB = "openChosenShelf()"


def getModifiers():
    return state["modifiers"]


def _named(kind):
    def command(*names, **flags):
        return _run(kind, *names, **flags)
    command.__name__ = kind
    return command


COMMANDS = {kind: _named(kind) for kind in _KINDS}
COMMANDS.update((function.__name__, function) for function in (contextInfo, currentCtx, deleteUI, getModifiers,
                                                               setParent, setToolTo, showWindow))
globals().update(COMMANDS)
reset()


# The user -------------------------------------------------------------------------------------------------------------

def labelled(label, within=None):
    """The control with this label, in the window or menu `within` if that is given."""
    found = [control for control in controls.values() if control.flags.get("label") == label
             and (within is None or within in _above(control.name))]
    if len(found) != 1:
        raise LookupError("{0} controls are labelled '{1}'".format(len(found), label))
    return found[0]


def _above(name):
    while name is not None:
        name = controls[name].parent
        yield name


def press(control):
    """Clicks a button, an item of a menu or a check box."""
    if control.kind == "checkBox":
        choose(control.name, not control.flags.get("value"))
    else:
        control.flags["command"](False)


def choose(name, value):
    """Types a number, sets a check box, or chooses an item of an option menu, counted from 1."""
    control = controls[name]
    _edit(control, {"select" if control.kind == "optionMenu" else "value": value})
    if "changeCommand" in control.flags:
        control.flags["changeCommand"](value)


def open_menu(name):
    """Opens a popup menu with the mouse; returns its items."""
    menu = _existing("popupMenu", name)
    if "postMenuCommand" in menu.flags:
        menu.flags["postMenuCommand"](name, menu.parent)
    return [controls[child] for child in menu.children()]


def tear_off():
    """Makes another viewport, in a window of its own; returns its name."""
    name = "modelPanel{0}".format(5 + len(torn_off))
    host.call("add_model_panel", name)
    torn_off[name] = _make("columnLayout", name + "Layout", {"parent": _make("window", name + "Window", {})})
    return name


def close_window_of(name):
    """Closes the window of such a viewport. The viewport still exists, but is shown nowhere."""
    deleteUI(name + "Window", window=True)
    torn_off[name] = ""


def save_shelf(shelf, folder, commands):
    """Adds a tab that an earlier session has saved and that was not opened yet: it has a file, but no buttons."""
    if not os.path.isdir(folder):
        os.makedirs(folder)
    unopened[shelf] = os.path.join(folder, "shelf_{0}.mel".format(shelf))
    with open(unopened[shelf], "w") as file:
        file.writelines('shelfButton -command "{0}" ;\n'.format(command) for command in commands)
    controls[shelf] = Control(shelf, "shelfLayout", "ShelfLayout", {})


def press_hotkey(command):
    """Does what Maya does when the hotkey of this command is pressed."""
    exec(hotkeys[command]["command"], {})


def click(button, modifiers=0):
    """Presses and releases a button in a viewport. Modifiers: 1 Shift, 4 Ctrl, 8 Alt."""
    state.update(button=button, modifiers=modifiers)
    tool = controls.get(state["tool"])
    if tool:
        for event in ("pressCommand", "releaseCommand"):
            if event in tool.flags:
                tool.flags[event]()
    state["modifiers"] = 0
