"""The jobs in plain Python: the module is compared with them where most of the work is calls of Python's own."""

import time

import maya.api.OpenMaya as om

_REGISTRY = {}
_GEN = 0
_LAST_EDIT = 0.0
_PENDING = False


def make_sampler(obj):
    selection = om.MSelectionList()
    selection.add(obj)
    plug = om.MFnDependencyNode(selection.getDependNode(0)).findPlug("worldMatrix", False).elementByLogicalIndex(0)
    uiu = om.MTime.uiUnit()

    def sampler(t):
        context = om.MDGContext(om.MTime(t, uiu))
        matrix = om.MFnMatrixData(plug.asMObject(context)).matrix()
        return matrix.getElement(3, 0), matrix.getElement(3, 1), matrix.getElement(3, 2)

    return sampler


def sample_positions(obj, start, end, step):
    sampler = make_sampler(obj)
    return [sampler(start + i * step) for i in range(int(round((end - start) / step)) + 1)]


def is_file_io():
    try:
        io = om.MFileIO
        return bool(io.isReadingFile() or io.isWritingFile() or io.isOpeningFile() or io.isNewingFile())
    except Exception:
        return False


def schedule_rebuild(*args):
    global _GEN, _LAST_EDIT
    if not _REGISTRY:
        return
    if is_file_io():
        return
    _GEN += 1
    _LAST_EDIT = time.time()
    if _PENDING:
        return
    raise RuntimeError("a step is always pending here")
