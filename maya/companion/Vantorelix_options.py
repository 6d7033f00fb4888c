"""The window with every preference of the engine."""

import maya.cmds as cmds
import Vantorelix_engine as engine
from Vantorelix_commands import MODES, TITLE, attempt, callback, change

OPTIONS_WINDOW = "vantorelixOptions"


def close(window):
    if cmds.window(window, exists=True):
        cmds.deleteUI(window, window=True)


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
    # A number that is no mode is drawn as the first mode, so the menu shows that one.
    cmds.optionMenu(name, edit=True, select=value + 1 if 0 <= value < len(MODES) else 1)


def _kinds():
    return {"samples": _slider(cmds.intSliderGrp, 1, 16),
            "size": _slider(cmds.floatSliderGrp, 0.0, 20.0),
            "switch": (_show_switch, lambda name: cmds.checkBox(name, query=True, value=True)),
            "mode": (_show_mode, lambda name: cmds.optionMenu(name, query=True, select=True) - 1)}


# The engine's name of each preference, its label, and the kind of its control.
PREFERENCES = (("samples", "Samples per frame", "samples"), ("line_width", "Line width", "size"),
               ("point_size", "Dot size", "size"), ("show_line", "Show line", "switch"),
               ("show_dots", "Show dots", "switch"), ("xray", "Ghost (draw through geometry)", "switch"),
               ("color_mode", "Color mode", "mode"))


def control_of(preference):
    return "vantorelix_" + preference


def show_options():
    """Opens the window with every preference. Only its Apply buttons store anything."""
    attempt(_show_options)


def _show_options():
    close(OPTIONS_WINDOW)
    kinds = _kinds()
    cmds.window(OPTIONS_WINDOW, title=TITLE + " options", sizeable=False)
    column = cmds.columnLayout(adjustableColumn=True, rowSpacing=4, columnAttach=("both", 8))
    for preference, label, kind in PREFERENCES:
        value = getattr(engine, "_get_pref_" + preference)()
        kinds[kind][0](control_of(preference), label, value)
        cmds.setParent(column)
    cmds.rowLayout(numberOfColumns=3)
    cmds.button(label="Apply and close", command=callback(_apply_and_close))
    cmds.button(label="Apply", command=callback(apply_options))
    cmds.button(label="Close", command=callback(close, OPTIONS_WINDOW))
    cmds.showWindow(OPTIONS_WINDOW)


def apply_options():
    """Stores what the window shows and applies it to the trails, which are sampled again only if that number
    changed."""
    kinds = _kinds()
    density = engine._get_pref_samples()
    for preference, _label, kind in PREFERENCES:
        getattr(engine, "_set_pref_" + preference)(kinds[kind][1](control_of(preference)))
    change("Trail options", _bring_in_line, engine._get_pref_samples() != density)


def _bring_in_line(sampled_anew):
    engine.apply_prefs_to_existing_trails(rebuild_if_samples_changed=sampled_anew)


def _apply_and_close():
    apply_options()
    cmds.evalDeferred(callback(close, OPTIONS_WINDOW))  # Not under the button's own callback.
