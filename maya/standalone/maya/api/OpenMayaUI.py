"""Locators, for plug-ins that define one. Nothing is drawn."""

from ._arrays import MBoundingBox
from ._plugin import Attribute, MPxNode


class MPxLocatorNode(MPxNode):
    nodeBoundingBox = Attribute("boundingBox", "bb", ("compound", None), None)

    def isBounded(self):
        return False

    def boundingBox(self):
        return MBoundingBox()

    def excludeAsLocator(self):
        return True
