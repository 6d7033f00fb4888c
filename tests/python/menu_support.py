"""What the tests of the menu, the gestures, the shelf and the hotkeys share."""

import sys
from unittest import mock

from companion import CompanionTest, load_companion

SHIFT, CTRL = 1, 4
MODES = ("Standard", "Spacing", "Flow", "Beats")
# The commands of the engine that the menu may call.
COMMANDS = ("create_trail", "clear_trails", "set_color_mode", "toggle_ghost", "convert_to_nurbs", "pellark_entry",
            "apply_prefs_to_existing_trails")
NO_QT = {name: None for name in ("PySide2", "PySide6")}


class MenuTest(CompanionTest):
    def setUp(self):
        super(MenuTest, self).setUp()
        self.menu = load_companion("Vantorelix")
        self.called = []

    def part(self, name):
        """One of the files that `Vantorelix` consists of."""
        return sys.modules["Vantorelix_" + name]

    def popup(self):
        """Qt's menu that was shown last."""
        return self.part("menu")._shown

    def record_commands(self):
        for name in COMMANDS:
            setattr(self.engine, name, lambda *args, _name=name, **kwargs: self.called.append((_name, args, kwargs)))

    def show(self, modules=None):
        with mock.patch.dict(sys.modules, NO_QT if modules is None else dict(NO_QT, **modules)):
            self.menu.show_trail_mini_menu()

    def deferred(self):
        from maya import utils
        utils.processIdleEvents()
