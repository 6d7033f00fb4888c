"""Plug-ins. There is only one, which defines the type of the trail node.

Its file is run as in Maya, if `maya.api.OpenMaya` has the classes with which plug-ins register. The host's own node
type stays when the plug-in is unloaded.
"""

import importlib.util
import os

from . import host

_FILE = "Vantorelix_plugin.py"


def _stem(name):
    name = os.path.basename(name)
    return name[:-3] if name.endswith(".py") else name


def _find(path):
    if os.path.isfile(path):
        return path
    if not os.path.dirname(path):
        name = path if path.endswith(".py") else path + ".py"
        for folder in filter(None, os.environ.get("MAYA_PLUG_IN_PATH", "").split(os.pathsep)):
            if os.path.isfile(os.path.join(folder, name)):
                return os.path.join(folder, name)
    raise RuntimeError('Plug-in, "%s", was not found on MAYA_PLUG_IN_PATH.' % path)


def _run(name, path):
    """Runs the file and its initializePlugin. Returns its module, or None if there is nothing to register with."""
    from .api import OpenMaya

    if not hasattr(OpenMaya, "MFnPlugin"):
        return None
    spec = importlib.util.spec_from_file_location(name, path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    if hasattr(module, "initializePlugin"):
        module.initializePlugin(OpenMaya.plugin_object(name, path))
    return module


def load(path):
    name = _stem(path)
    if name in host.plugins:
        return name
    found = _find(path)
    if os.path.basename(found) != _FILE:
        raise RuntimeError('Plug-in, "%s", cannot be loaded: this host can load %s only.' % (path, _FILE))
    module = _run(name, found)
    host.call("load_plugin", found)
    host.plugins[name] = (found, module)
    return name


def unload(name):
    name = _stem(name)
    if name not in host.plugins:
        raise RuntimeError('Plug-in, "%s", is not loaded.' % name)
    path, module = host.plugins[name]
    if hasattr(module, "uninitializePlugin"):
        from .api import OpenMaya

        module.uninitializePlugin(OpenMaya.plugin_object(name, path))
    del host.plugins[name]
    return name


def is_loaded(name):
    return _stem(name) in host.plugins


def loaded_names():
    return list(host.plugins)


def path_of(name):
    if not is_loaded(name):
        raise RuntimeError('Plug-in, "%s", is not loaded.' % name)
    return host.plugins[_stem(name)][0]
