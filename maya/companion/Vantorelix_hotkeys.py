"""The commands of the menu under names that a hotkey can be given, in the hotkey editor under "Vantorelix"."""

import maya.cmds as cmds
from Vantorelix_commands import COMMANDS, TITLE, log
from Vantorelix_menu import MENU, OPTIONS

_BY_NAME = {TITLE + command.name: command for command in COMMANDS + (MENU, OPTIONS)}


def run_command(name):
    """What the hotkey does that was given to the command `name`, such as "VantorelixBuildTrail"."""
    if name not in _BY_NAME:
        known = ", ".join(sorted(_BY_NAME))
        raise ValueError("{0!r} is not a command of Vantorelix; these are: {1}".format(name, known))
    _BY_NAME[name].run()


def make_commands():
    """Makes the commands for this session of Maya, where it has a window: they are not saved with the preferences.

    The user has not asked for them, so a failure goes to the log alone.
    """
    try:
        if not cmds.about(batch=True):
            _make_commands()
    except Exception:
        log.exception("There are no commands for hotkeys:")


def _make_commands():
    for name in sorted(_BY_NAME):
        if not cmds.runTimeCommand(name, exists=True):
            cmds.runTimeCommand(name, annotation="{0}: {1}".format(TITLE, _BY_NAME[name].label), category=TITLE,
                                commandLanguage="python", default=True,
                                command='import Vantorelix; Vantorelix.run_command("{0}")'.format(name))
