"""Locators, for plug-ins that define one. Nothing here draws."""

from ._plugin import MBoundingBox, MPxNode


class MPxLocatorNode(MPxNode):
    def isBounded(self):
        return False

    def boundingBox(self):
        return MBoundingBox()

    def excludeAsLocator(self):
        return True
