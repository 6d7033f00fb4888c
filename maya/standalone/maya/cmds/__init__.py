"""Commands on the scene and the application."""

from .._ui import COMMANDS as _CONTROLS
from .animation import *
from .attributes import *
from .namespaces import *
from .nodes import *
from .session import *
from .ui import *
from .undo import *

globals().update(_CONTROLS)


def __getattr__(name):
    raise AttributeError("maya.cmds.%s is not covered by this host" % name)
