"""What an animator sees of Vantorelix in Maya: the mini menu, the options, mouse gestures, hotkeys and a shelf button.

    import Vantorelix
    Vantorelix.show_trail_mini_menu()

Importing this module makes the commands that can be given hotkeys, and changes nothing else in Maya. When an entry, a
button, a gesture or a hotkey fails, the viewport shows a message and nothing is raised.
"""

from Vantorelix_gestures import bind_gestures, unbind_gestures
from Vantorelix_hotkeys import make_commands, run_command
from Vantorelix_menu import show_trail_mini_menu
from Vantorelix_options import show_options
from Vantorelix_shelf import SHELF_COMMAND, add_shelf_button, remove_shelf_button, shelf_clicked

__all__ = ["SHELF_COMMAND", "add_shelf_button", "bind_gestures", "make_commands", "remove_shelf_button", "run_command",
           "shelf_clicked", "show_options", "show_trail_mini_menu", "unbind_gestures"]

make_commands()
