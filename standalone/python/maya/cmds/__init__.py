"""Commands on the scene and the application."""

from .animation import *
from .attributes import *
from .nodes import *
from .session import *
from .ui import *


def __getattr__(name):
    raise AttributeError("maya.cmds.%s is not covered by this host" % name)
