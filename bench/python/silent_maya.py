"""A `maya` that does nothing: what is left of a job on it is what the job itself costs."""

import sys
import types


class Silent(object):
    """Anything of the object model: it takes any arguments and its methods return constants."""

    def __init__(self, *arguments):
        pass


class MTime(Silent):
    @staticmethod
    def uiUnit():
        return 6


class MDGContext(Silent):
    pass


class Matrix(object):
    def getElement(self, row, column):
        return 1.0


class MFnMatrixData(Silent):
    matrix_of_all = Matrix()

    def matrix(self):
        return self.matrix_of_all


class Plug(object):
    def elementByLogicalIndex(self, index):
        return self

    def asMObject(self, context):
        return None

    def setMObject(self, data):
        pass


class MSelectionList(Silent):
    def add(self, node):
        pass

    def getDependNode(self, index):
        return None


class MFnDependencyNode(Silent):
    plug = Plug()

    def findPlug(self, attribute, networked):
        return self.plug


class MVectorArray(Silent):
    pass


class MFnVectorArrayData(Silent):
    def create(self, array):
        return None


class MFileIO(object):
    @staticmethod
    def isReadingFile():
        return False

    @staticmethod
    def isWritingFile():
        return False

    @staticmethod
    def isOpeningFile():
        return False

    @staticmethod
    def isNewingFile():
        return False


WORLD_MATRIX = [1.0] * 16


def install():
    """Makes it the `maya` that modules import from now on; returns its object model."""
    maya, api = types.ModuleType("maya"), types.ModuleType("maya.api")
    cmds, om, oma = (types.ModuleType("maya." + name) for name in ("cmds", "api.OpenMaya", "api.OpenMayaAnim"))
    cmds.listRelatives = lambda node, s, fullPath: [node]
    cmds.getAttr = lambda attribute, time: WORLD_MATRIX
    cmds.setAttr = lambda attribute, value: None
    cmds.currentTime = lambda q: 1.0
    for silent in (MTime, MDGContext, MFnMatrixData, MSelectionList, MFnDependencyNode, MVectorArray,
                   MFnVectorArrayData, MFileIO):
        setattr(om, silent.__name__, silent)
    maya.cmds, maya.api, api.OpenMaya, api.OpenMayaAnim = cmds, api, om, oma
    maya.__path__ = api.__path__ = []
    sys.modules.update({"maya": maya, "maya.api": api, "maya.cmds": cmds, "maya.api.OpenMaya": om,
                        "maya.api.OpenMayaAnim": oma})
    return om
