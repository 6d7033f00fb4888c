"""Animation: what is playing, and messages about edited curves and keys."""

from .. import host
from ._messages import MMessage, subscribe_to_curves
from ._values import MTime

__all__ = ["MAnimControl", "MAnimMessage"]


class MAnimControl(object):
    @staticmethod
    def isPlaying():
        return host.call("is_playing")

    @staticmethod
    def currentTime():
        return MTime(host.call("current_time"), MTime.uiUnit())

    @staticmethod
    def setCurrentTime(time):
        host.call("set_current_time", time.asUnits(MTime.uiUnit()))

    @staticmethod
    def minTime():
        return MTime(host.call("playback_range")[0], MTime.uiUnit())

    @staticmethod
    def maxTime():
        return MTime(host.call("playback_range")[1], MTime.uiUnit())


class MAnimMessage(MMessage):
    @staticmethod
    def addAnimCurveEditedCallback(function, clientData=None):
        return subscribe_to_curves(host.CURVE_EDITED, function, clientData)

    @staticmethod
    def addAnimKeyframeEditedCallback(function, clientData=None):
        """The function gets the curves: key deltas are not covered."""
        return subscribe_to_curves(host.KEYFRAME_EDITED, function, clientData)


def __getattr__(name):
    raise AttributeError("maya.api.OpenMayaAnim.%s is not covered by this host" % name)
