"""Installs Vantorelix into Maya, checks it, and takes it away again.

Drag this file into a viewport of Maya, or run it:

    python3 install_vantorelix.py MODULES        installs into this folder of Maya's modules, such as ~/maya/modules
    python3 install_vantorelix.py --verify MODULES
    python3 install_vantorelix.py --uninstall MODULES

An installation is the folder "vantorelix" and, beside it, the file "Vantorelix.mod", without which Maya does not look
into the folder. The new folder is copied and checked under another name first, and the one before it is kept until the
new one is in place, so that whatever goes wrong, either the old version or the new one is there as a whole.
"""

import glob
import hashlib
import json
import os
import shutil
import sys

FOLDER = "vantorelix"
DESCRIPTION = "Vantorelix.mod"
MANIFEST = "manifest.json"
PLUGIN = "Vantorelix_plugin.py"
PLUGIN_SOURCE = "contents/plug-ins/" + PLUGIN
# Beside the final folder, so that a rename is all that is left to do; the dot keeps them out of the user's way.
INCOMING = ".vantorelix-incoming"
PREVIOUS = ".vantorelix-previous"
REMOVED = ".vantorelix-removed"


class InstallError(Exception):
    pass


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


def read_manifest(folder):
    """The files that belong to the package with what they must be: path (with slashes) -> SHA-256 in hexadecimal."""
    try:
        with open(os.path.join(folder, MANIFEST)) as file:
            files = json.load(file)
    except (OSError, ValueError) as error:
        raise InstallError("The package has no list of its files: {0}".format(error))
    for path in files:
        if os.path.isabs(path) or ".." in path.split("/") or "\\" in path:
            raise InstallError("The package names a file outside of it: {0}".format(path))
    if PLUGIN_SOURCE not in files or DESCRIPTION not in files:
        raise InstallError("The package is not one of Vantorelix.")
    return files


def verify(folder):
    """Raises InstallError for the first file of the package in `folder` that is missing or not what it was."""
    files = read_manifest(folder)
    for path in sorted(files):
        try:
            same = digest(os.path.join(folder, path)) == files[path]
        except OSError as error:
            raise InstallError("{0} cannot be read: {1}".format(path, error))
        if not same:
            raise InstallError("{0} is damaged. Unpack the package again.".format(path))
    return files


def _remove(path):
    if os.path.isdir(path) and not os.path.islink(path):
        shutil.rmtree(path)
    elif os.path.lexists(path):
        os.remove(path)


def _copy(package, files, target):
    for path in sorted(files) + [MANIFEST]:
        copy = os.path.join(target, path)
        if not os.path.isdir(os.path.dirname(copy)):
            os.makedirs(os.path.dirname(copy))
        shutil.copy2(os.path.join(package, path), copy)


def _put_plugin_beside_engine(folder):
    """The engine looks beside itself first. A plug-in of now, so that it replaces copies that an older engine made."""
    source = os.path.join(folder, PLUGIN_SOURCE)
    os.utime(source, None)
    for python in glob.glob(os.path.join(folder, "contents", "python-*")):
        shutil.copy2(source, os.path.join(python, PLUGIN))


def _recover(modules):
    """Ends what an interrupted installation left: the previous version is there again, unless the new one is."""
    final, previous = os.path.join(modules, FOLDER), os.path.join(modules, PREVIOUS)
    if os.path.isdir(previous) and not os.path.isdir(final):
        os.rename(previous, final)
    for leftover in (INCOMING, PREVIOUS, REMOVED, "." + DESCRIPTION):
        _remove(os.path.join(modules, leftover))


def install(package, modules):
    """Installs the package in the folder `package` among `modules`; makes that folder where it is missing."""
    verify(package)
    if not os.path.isdir(modules):
        os.makedirs(modules)
    _recover(modules)
    final, incoming, previous = (os.path.join(modules, name) for name in (FOLDER, INCOMING, PREVIOUS))
    if os.path.lexists(final) and not os.path.isfile(os.path.join(final, MANIFEST)):
        raise InstallError("{0} is there, but not from this installer. Move it away first.".format(final))
    placed = False
    try:
        _copy(package, read_manifest(package), incoming)
        verify(incoming)
        _put_plugin_beside_engine(incoming)
        shutil.copy2(os.path.join(incoming, DESCRIPTION), os.path.join(modules, "." + DESCRIPTION))
        if os.path.isdir(final):
            os.rename(final, previous)
        os.rename(incoming, final)
        placed = True
        os.replace(os.path.join(modules, "." + DESCRIPTION), os.path.join(modules, DESCRIPTION))
    except BaseException:
        if placed:
            _remove(final)
        _recover(modules)
        raise
    _remove(previous)


def uninstall(modules):
    """Takes everything away that `install` made, and what the engine copied into Maya's plug-in folders.

    False if nothing was installed. The user's preferences stay.
    """
    final, removed = os.path.join(modules, FOLDER), os.path.join(modules, REMOVED)
    _recover(modules)
    if not os.path.isdir(final) and not os.path.isfile(os.path.join(modules, DESCRIPTION)):
        return False
    _remove(os.path.join(modules, DESCRIPTION))  # First: from here on Maya does not look into the folder.
    plugin = os.path.join(final, PLUGIN_SOURCE)
    known = digest(plugin) if os.path.isfile(plugin) else None
    for copy in glob.glob(os.path.join(os.path.dirname(os.path.abspath(modules)), "*", "plug-ins", PLUGIN)):
        if digest(copy) == known:  # One that somebody has changed is not ours to delete.
            os.remove(copy)
    if os.path.isdir(final):
        os.rename(final, removed)
        _remove(removed)
    return True


def onMayaDroppedPythonFile(*_ignored):
    """Maya calls this when the file is dropped into a viewport."""
    import maya.cmds as cmds

    def tell(text):
        cmds.confirmDialog(title="Vantorelix", message=text, button=["OK"])

    try:
        modules = os.path.join(cmds.internalVar(userAppDir=True), "modules")
        choice = cmds.confirmDialog(title="Vantorelix", message="Install Vantorelix into {0}?".format(modules),
                                    button=["Install", "Uninstall", "Cancel"], defaultButton="Install",
                                    cancelButton="Cancel", dismissString="Cancel")
        if choice == "Install":
            install(os.path.dirname(os.path.abspath(__file__)), modules)
            tell("Vantorelix is installed. Start Maya again to use it.")
        elif choice == "Uninstall":
            tell("Vantorelix is removed. It stays in this Maya until you start Maya again." if uninstall(modules)
                 else "Vantorelix was not installed.")
    except Exception as error:
        tell("That did not work:\n{0}".format(error))
    finally:
        sys.modules.pop(__name__, None)  # So that a newer installer, dropped later, is not taken for this one.


def main(arguments):
    import argparse

    parser = argparse.ArgumentParser(description="Installs Vantorelix into Maya.")
    parser.add_argument("modules", metavar="MODULES", help="Maya's folder of modules, such as ~/maya/modules")
    what = parser.add_mutually_exclusive_group()
    what.add_argument("--uninstall", action="store_true", help="take Vantorelix away again")
    what.add_argument("--verify", action="store_true", help="check what is installed")
    chosen = parser.parse_args(arguments)
    try:
        if chosen.uninstall:
            print("Removed." if uninstall(chosen.modules) else "Vantorelix was not installed.")
        elif chosen.verify:
            print("{0} files are as they should be.".format(len(verify(os.path.join(chosen.modules, FOLDER)))))
        else:
            install(os.path.dirname(os.path.abspath(__file__)), chosen.modules)
            print("Installed.")
    except (InstallError, OSError) as error:
        sys.exit("install_vantorelix: {0}".format(error))


if __name__ == "__main__":
    main(sys.argv[1:])
