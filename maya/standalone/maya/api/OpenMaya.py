"""The object model: nodes, plugs, values and messages."""

from ._arrays import *
from ._messages import MDGMessage, MEventMessage, MMessage
from ._nodes import *
from ._nodes import plugin_object
from ._values import *

try:
    from ._plugin import *
except ImportError as _missing:  # where the package lacks the stand-in for what plug-ins register with
    if _missing.name != __package__ + "._plugin":
        raise


def __getattr__(name):
    raise AttributeError("maya.api.OpenMaya.%s is not covered by this host" % name)
