"""The application: files, deferred calls, option variables, plug-ins."""

import os

from .. import _plugins, host, utils
from .._commands import command, not_covered

__all__ = [
    "about",
    "evalDeferred",
    "file",
    "flushIdleQueue",
    "internalVar",
    "loadPlugin",
    "optionVar",
    "pluginInfo",
    "unloadPlugin",
]


@command(open="o", newFile="new", force="f", query="q", sceneName="sn", exists="ex")
def file(*path, open=False, newFile=False, force=False, query=False, sceneName=False, exists=False):
    """Opens a scene file of any format that the host reads, makes an empty scene, or returns the name of the open one.
    The scene that was open before is closed, even if it was changed."""
    if query and sceneName:
        return host.scene_name
    if query and exists:
        return os.path.isfile(path[0])
    if open and not query:
        host.open_scene(path[0])
        return host.scene_name
    if newFile and not query:
        host.new_scene()
        return "untitled"
    raise not_covered("file: anything but open, newFile and queries of sceneName and exists")


@command(lowestPriority="lp", lowPriority="low")
def evalDeferred(script, *, lowestPriority=False, lowPriority=False):
    utils.defer(2 if lowestPriority else 1 if lowPriority else 0, script)


def flushIdleQueue():
    utils.processIdleEvents()


def _pairs(setting):
    """One (name, value), or several."""
    setting = list(setting)
    return [tuple(each) for each in setting] if setting and isinstance(setting[0], (list, tuple)) else [tuple(setting)]


@command(
    exists="ex", query="q", intValue="iv", floatValue="fv", stringValue="sv", stringValueAppend="sva"
)
def optionVar(*, exists=None, query=None, intValue=(), floatValue=(), stringValue=(), stringValueAppend=()):
    if exists is not None:
        return host.call("option_exists", exists)
    if query is not None:
        return host.call("option", query)
    for setting, kind in ((intValue, int), (floatValue, float), (stringValue, str)):
        for name, value in _pairs(setting) if setting else ():
            if kind is str and not isinstance(value, str):
                raise TypeError("Invalid arguments for flag 'sv'. Expected a string, got %r" % (value,))
            host.call("set_option", name, kind(value))
    for name, value in _pairs(stringValueAppend) if stringValueAppend else ():
        host.call("append_option", name, value)


@command(batch="b", version="v")
def about(*, batch=False, version=False):
    if batch:
        return host.call("batch")
    if version:
        return host.call("version")
    raise not_covered("about: flags other than batch and version")


@command(userAppDir="uad", userShelfDir="ush")
def internalVar(*, userAppDir=False, userShelfDir=False):
    folder = host.call("user_app_dir")
    if userAppDir:
        return folder
    if userShelfDir:
        return os.path.join(folder, host.call("version"), "prefs", "shelves", "")
    raise not_covered("internalVar: flags other than userAppDir and userShelfDir")


@command(quiet="qt")
def loadPlugin(*paths, quiet=False):
    """The names of the plug-ins that were loaded."""
    return [_plugins.load(path) for path in paths]


@command(force="f")
def unloadPlugin(*names, force=False):
    return [_plugins.unload(name) for name in names]


@command(query="q", loaded="l", listPlugins="ls", path="p")
def pluginInfo(*names, query=False, loaded=False, listPlugins=False, path=False):
    if not query:
        raise not_covered("pluginInfo: edits")
    if listPlugins:
        return _plugins.loaded_names() or None
    if loaded:
        return _plugins.is_loaded(names[0])
    if path:
        return _plugins.path_of(names[0])
    raise not_covered("pluginInfo: queries other than loaded, listPlugins and path")
