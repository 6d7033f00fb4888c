"""Makes the commands of the menu known to Maya's Hotkey Editor, under "Vantorelix"."""

import maya.cmds as cmds
from Vantorelix_commands import COMMANDS, TITLE, log
from Vantorelix_menu import MENU, OPTIONS

_BY_NAME = {TITLE + command.name: command for command in COMMANDS + (MENU, OPTIONS)}


def run_command(name):
    """Runs the command that a hotkey names, such as "VantorelixBuildTrail"."""
    if name not in _BY_NAME:
        known = ", ".join(sorted(_BY_NAME))
        raise ValueError("{0!r} is not a command of Vantorelix; its commands are: {1}".format(name, known))
    _BY_NAME[name].run()


def make_commands():
    """Makes the commands for this session of Maya, if it has a window. Maya does not save them with the preferences.

    The user has not asked for this, so a failure only goes to the log.
    """
    try:
        if not cmds.about(batch=True):
            _make_commands()
    except Exception:
        log.exception("The commands for hotkeys could not be made:")


def _make_commands():
    for name in sorted(_BY_NAME):
        if not cmds.runTimeCommand(name, exists=True):
            cmds.runTimeCommand(name, annotation="{0}: {1}".format(TITLE, _BY_NAME[name].label), category=TITLE,
                                commandLanguage="python", default=True,
                                command='import Vantorelix; Vantorelix.run_command("{0}")'.format(name))
