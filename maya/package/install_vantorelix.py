"""Installs Vantorelix into Maya, checks an installation, and removes it again.

Drag this file into a viewport of Maya, or run it:

    python3 install_vantorelix.py MODULES        installs into this folder of Maya's modules, such as ~/maya/modules
    python3 install_vantorelix.py --verify MODULES
    python3 install_vantorelix.py --uninstall MODULES

With --quiet it prints only problems. Exit codes: 0 done (whatever had to be left is named on standard error); 1 failed,
or --verify found something wrong; 2 wrong arguments.

An installation is the folder "vantorelix" and, beside it, the file "Vantorelix.mod", without which Maya does not look
into the folder. A folder of another name first gets the new version, which is checked there, and keeps the old version
until the new one is in place. So whatever goes wrong, one of the two is installed completely. Maya reads every file in
a folder of modules, whatever its name, so no other file than "Vantorelix.mod" is ever put there.
"""

import glob
import hashlib
import json
import os
import re
import shutil
import sys
import tempfile

FOLDER = "vantorelix"
DESCRIPTION = "Vantorelix.mod"
MANIFEST = "manifest.json"
PLUGIN = "Vantorelix_plugin.py"
PLUGIN_SOURCE = "contents/plug-ins/" + PLUGIN
ENGINE = "Vantorelix_engine.py"
EARLIER_PLUGINS = "earlier-plugins.json"
# How the names of temporary folders begin. They lie beside the final folder, so that a rename puts a version in place.
# A work folder holds the new version and the old one, and is needed to recover; a rubbish folder is only to be deleted.
WORK, RUBBISH = ".vantorelix-work-", ".vantorelix-rubbish-"
INCOMING, PREVIOUS = "incoming", "previous"
WAITING = ".incoming"
NAMES_VANTORELIX = re.compile(br"^\s*\+\s+(?:[A-Z]+:\S*\s+)*Vantorelix\s", re.MULTILINE)


class InstallError(Exception):
    pass


def check_python():
    """Maya 2022 may run this file in Python 2, so all of it must parse there."""
    if sys.version_info[0] < 3:
        raise InstallError("Vantorelix needs Python 3; start Maya 2022 without MAYA_PYTHON_VERSION=2.")


# What is in a package -------------------------------------------------------------------------------------------------


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


def read_manifest(folder):
    """The files of the package in `folder`: path (with slashes) -> SHA-256 in hexadecimal."""
    manifest = os.path.join(folder, MANIFEST)
    try:
        with open(manifest) as file:
            files = json.load(file)
    except (OSError, ValueError) as error:
        raise InstallError("The list of files {0} cannot be read: {1}. Unpack the package again."
                           .format(manifest, error))
    if not isinstance(files, dict) or PLUGIN_SOURCE not in files or DESCRIPTION not in files:
        raise InstallError("{0} is not a package of Vantorelix. Unpack the package again.".format(folder))
    for path in files:
        if os.path.isabs(path) or ".." in path.split("/") or "\\" in path:
            raise InstallError("{0} names a file outside of its folder: {1}. Get the package again from where it came "
                               "from.".format(manifest, path))
    return files


def damages(folder, files):
    """A sentence for each of `files` that is missing in `folder` or not what it was."""
    found = []
    for path in sorted(files):
        installed = os.path.join(folder, path)
        try:
            if digest(installed) != files[path]:
                found.append("{0} is damaged.".format(installed))
        except OSError as error:
            found.append("{0} cannot be read: {1}.".format(installed, error.strerror))
    return found


def check_package(folder):
    """The files of the package in `folder`; InstallError names every one that is missing or not what it was."""
    files = read_manifest(folder)
    found = damages(folder, files)
    if found:
        raise InstallError("\n".join(found + ["Unpack the package again."]))
    return files


def _beside_engine(files):
    """Paths at which the plug-in is installed as well, because the engine looks for it beside itself first."""
    folders = {os.path.dirname(path) for path in files if os.path.basename(path) == ENGINE}
    return sorted(folder + "/" + PLUGIN for folder in folders)


# Where Maya looks -----------------------------------------------------------------------------------------------------


def _folders(modules, patterns, variables):
    """The folders that match a pattern in the user's folder of Maya or beside `modules`, and those that environment
    variables list, each once."""
    own = ("Documents", "maya") if os.name == "nt" else ("maya",)
    home = os.environ.get("MAYA_APP_DIR") or os.path.join(os.path.expanduser("~"), *own)
    found = [folder for above in (os.path.dirname(os.path.abspath(modules)), home) for pattern in patterns
             for folder in sorted(glob.glob(os.path.join(glob.escape(above), pattern)))]
    for variable in variables:
        found += os.environ.get(variable, "").split(os.pathsep)
    once = {os.path.realpath(folder): folder for folder in reversed(found) if os.path.isdir(folder)}
    return [folder for folder in found if once.pop(os.path.realpath(folder), None)]


def _files_in(folders):
    return [path for folder in folders for path in sorted(glob.glob(os.path.join(glob.escape(folder), "*")) +
                                                          glob.glob(os.path.join(glob.escape(folder), ".*")))
            if os.path.isfile(path)]


def _beside(modules, beginning):
    return sorted(glob.glob(os.path.join(glob.escape(modules), beginning + "*")))


def _names_vantorelix(path):
    try:
        with open(path, "rb") as file:
            return NAMES_VANTORELIX.search(file.read()) is not None
    except OSError:
        return False  # Maya cannot read it, either.


def other_descriptions(modules):
    """A sentence for each file but ours that Maya reads as a description of modules and that names Vantorelix."""
    ours = os.path.realpath(os.path.join(modules, DESCRIPTION))
    name = glob.escape(os.path.basename(os.path.abspath(modules)))
    files = _files_in(_folders(modules, [name, "modules", "*/modules"], ["MAYA_MODULE_PATH"]))
    return ["{0} also names the module Vantorelix, and Maya reads every file in that folder. Move it away.".format(path)
            for path in files if os.path.realpath(path) != ours and _names_vantorelix(path)]


def other_copies(modules, files):
    """Other files of Vantorelix where Maya finds plug-ins and scripts: (equal to an installed file, different)."""
    final = os.path.realpath(os.path.join(modules, FOLDER)) + os.sep
    installed = {}
    for path in files:
        if path.startswith("contents/"):
            installed.setdefault(os.path.basename(path), set()).add(files[path])
    folders = _folders(modules, ["plug-ins", "*/plug-ins", "scripts", "*/scripts", "*/prefs/scripts"],
                       ["MAYA_PLUG_IN_PATH", "MAYA_SCRIPT_PATH", "PYTHONPATH"])
    found = [path for path in _files_in(folders)
             if os.path.basename(path) in installed and not os.path.realpath(path).startswith(final)]
    right = [path for path in found if digest(path) in installed[os.path.basename(path)]]
    return right, [path for path in found if path not in right]


def verify(modules):
    """The number of files that were checked; InstallError names everything that is wrong."""
    final = os.path.join(modules, FOLDER)
    if not os.path.isdir(final):
        interrupted = "".join(" {0} is left over from an interrupted installation.".format(work)
                              for work in _beside(modules, WORK))
        raise InstallError("Vantorelix is not installed in {0}.{1} Install it.".format(modules, interrupted))
    files = read_manifest(final)
    wanted = dict(files, **{path: files[PLUGIN_SOURCE] for path in _beside_engine(files)})
    right, wrong = other_copies(modules, files)
    problems = damages(final, wanted) + damages(modules, {DESCRIPTION: files[DESCRIPTION]})
    if problems:
        problems.append("Install Vantorelix again.")
    problems += other_descriptions(modules)
    problems += ["{0} differs from the installed file, and Maya may load it instead. Move it away.".format(path)
                 for path in wrong]
    if problems:
        raise InstallError("\n".join(problems))
    return len(wanted) + 1 + len(right)


# Copies that the engine made ------------------------------------------------------------------------------------------


def _known_plugins(folder):
    """The SHA-256 of the plug-in that is installed in `folder`, and of those that were installed there before."""
    known = set()
    try:
        with open(os.path.join(folder, EARLIER_PLUGINS)) as file:
            known.update(json.load(file))
    except (OSError, ValueError):
        pass  # Installed by an installer that kept no list, or not at all.
    try:
        known.add(read_manifest(folder)[PLUGIN_SOURCE])
    except InstallError:
        pass
    return known


def _remove(path):
    if os.path.lexists(path):
        os.remove(path)


def _treat_copies(modules, known, treat):
    """Calls `treat` with each copy of one of the `known` plug-ins in Maya's plug-in folders.

    Returns a sentence for each copy that is left. A copy that somebody has changed is left on purpose.
    """
    left = []
    for folder in _folders(modules, ["*/plug-ins"], []):
        copy = os.path.join(folder, PLUGIN)
        try:
            _remove(copy + WAITING)  # An interrupted upgrade may have left it.
            if not os.path.lexists(copy):
                continue
            if digest(copy) in known:
                treat(copy)
            else:
                left.append("{0} was left: it is not a copy that Vantorelix made; somebody may have changed it. Maya "
                            "may load it instead of the installed plug-in, and the engine overwrites it if it is "
                            "older. Move it away.".format(copy))
        except OSError as error:
            left.append("{0} was left: {1}. Maya may load it instead of the installed plug-in. Delete it."
                        .format(copy, error.strerror))
    return left


def _replace(source, path):
    """At no time is there a part of a file at `path`, and what is beside it meanwhile is not named like a plug-in."""
    try:
        shutil.copy2(source, path + WAITING)
        os.replace(path + WAITING, path)
    finally:
        _remove(path + WAITING)


# Installing and uninstalling ------------------------------------------------------------------------------------------


def _copy(package, files, target):
    for path in sorted(files) + [MANIFEST]:
        copy = os.path.join(target, path)
        if not os.path.isdir(os.path.dirname(copy)):
            os.makedirs(os.path.dirname(copy))
        shutil.copy2(os.path.join(package, path), copy)


def _prepare(package, folder, earlier):
    """Makes a complete installation in `folder`."""
    _copy(package, read_manifest(package), folder)
    files = check_package(folder)
    source = os.path.join(folder, PLUGIN_SOURCE)
    os.utime(source, None)  # Dated now: the engine replaces its copies of a plug-in that is older.
    for path in _beside_engine(files):
        shutil.copy2(source, os.path.join(folder, path))
    with open(os.path.join(folder, EARLIER_PLUGINS), "w") as file:
        json.dump(sorted(earlier), file)


def _clean(modules):
    """Deletes work folders that are not needed any more, and rubbish; a sentence for each that cannot be deleted."""
    left = []
    for folder in _beside(modules, WORK) + _beside(modules, RUBBISH):
        rubbish = os.path.join(modules, os.path.basename(folder).replace(WORK, RUBBISH))
        try:
            os.rename(folder, rubbish)  # First: nobody may go back to a version that is half deleted.
            shutil.rmtree(rubbish)
        except OSError as error:
            remains = rubbish if os.path.isdir(rubbish) else folder
            left.append("{0} is not needed any more but could not be deleted: {1}. Delete it when no Maya is running."
                        .format(remains, error.strerror))
    return left


def _recover(modules):
    """Ends an interrupted installation: the previous version is put back, unless the new one is in place already."""
    final = os.path.join(modules, FOLDER)
    for work in _beside(modules, WORK):
        incoming, previous, waiting = (os.path.join(work, name) for name in (INCOMING, PREVIOUS, DESCRIPTION))
        if os.path.isdir(previous) and not os.path.lexists(final):
            os.rename(previous, final)
        elif os.path.isfile(waiting) and not os.path.lexists(incoming):
            os.replace(waiting, os.path.join(modules, DESCRIPTION))
    return _clean(modules)


def _check_ours(final):
    if os.path.lexists(final) and not os.path.isfile(os.path.join(final, MANIFEST)):
        raise InstallError("{0} exists, but this installer did not make it. Move it away first.".format(final))


def _put_in_place(package, modules, earlier):
    """After a failure the previous version is in place again."""
    final, work, placed = os.path.join(modules, FOLDER), tempfile.mkdtemp(prefix=WORK, dir=modules), False
    incoming, previous, waiting = (os.path.join(work, name) for name in (INCOMING, PREVIOUS, DESCRIPTION))
    try:
        _prepare(package, incoming, earlier)
        shutil.copy2(os.path.join(incoming, DESCRIPTION), waiting)
        if os.path.isdir(final):
            os.rename(final, previous)
        os.rename(incoming, final)
        placed = True
        os.replace(waiting, os.path.join(modules, DESCRIPTION))
    except BaseException:
        if placed:
            os.rename(final, incoming)
        _recover(modules)
        raise


def install(package, modules):
    """Installs the package in the folder `package` into the folder `modules`, which is made if it is missing.

    Returns a sentence for each thing that could not be replaced or deleted; the installation is complete all the same.
    """
    check_package(package)
    if not os.path.isdir(modules):
        os.makedirs(modules)
    _recover(modules)
    final = os.path.join(modules, FOLDER)
    _check_ours(final)
    known = _known_plugins(final)
    _put_in_place(package, modules, known)
    source = os.path.join(final, PLUGIN_SOURCE)
    known.add(digest(source))
    left = _treat_copies(modules, known, lambda copy: _replace(source, copy))
    return left + other_descriptions(modules) + _clean(modules)


def uninstall(modules):
    """Deletes everything that `install` made, and what the engine copied into Maya's plug-in folders.

    Returns None if nothing was installed, else a sentence for each thing that had to be left. The user's preferences
    stay.
    """
    final, description = os.path.join(modules, FOLDER), os.path.join(modules, DESCRIPTION)
    _recover(modules)
    if not os.path.lexists(final) and not os.path.lexists(description):
        return None
    _check_ours(final)
    _remove(description)  # First: from here on Maya does not look into the folder.
    left = _treat_copies(modules, _known_plugins(final), os.remove)
    if os.path.isdir(final):
        os.rename(final, os.path.join(tempfile.mkdtemp(prefix=RUBBISH, dir=modules), FOLDER))
    return left + _clean(modules)


# For people -----------------------------------------------------------------------------------------------------------


def explain(error):
    """What to tell the user about an error. Ours say what to do; for the system's, this adds it."""
    if isinstance(error, OSError) and error.filename is not None:
        # Windows keeps the module that a running Maya has loaded where it is.
        closed = "Close every Maya, check" if os.name == "nt" else "Check"
        return "{0}: {1}. {2} that you may write there and that the disk has room, then try again.".format(
            error.filename, error.strerror, closed)
    return str(error)


def onMayaDroppedPythonFile(*_ignored):
    """Maya calls this when the file is dropped into a viewport."""
    import maya.cmds as cmds

    def tell(text, left=()):
        cmds.confirmDialog(title="Vantorelix", message="\n".join([text] + list(left)), button=["OK"])

    try:
        check_python()
        modules = os.path.join(cmds.internalVar(userAppDir=True), "modules")
        choice = cmds.confirmDialog(title="Vantorelix", message="Install Vantorelix into {0}?".format(modules),
                                    button=["Install", "Uninstall", "Cancel"], defaultButton="Install",
                                    cancelButton="Cancel", dismissString="Cancel")
        if choice == "Install":
            left = install(os.path.dirname(os.path.abspath(__file__)), modules)
            tell("Vantorelix is installed. Start Maya again to use it.", left)
        elif choice == "Uninstall":
            left = uninstall(modules)
            if left is None:
                tell("Vantorelix was not installed.")
            else:
                tell("Vantorelix is removed. It stays in this Maya until you start Maya again.", left)
    except Exception as error:
        tell("Vantorelix could not be installed or uninstalled:\n{0}".format(explain(error)))
    finally:
        sys.modules.pop(__name__, None)  # Otherwise Maya would run this one again for a newer installer.


def run(chosen):
    """Does what the command line asks for: (what to print, sentences about what had to be left)."""
    check_python()
    if chosen.uninstall:
        left = uninstall(chosen.modules)
        return ("Vantorelix was not installed.", []) if left is None else ("Removed.", left)
    if chosen.verify:
        return "{0} files are as they should be.".format(verify(chosen.modules)), []
    return "Installed.", install(os.path.dirname(os.path.abspath(__file__)), chosen.modules)


def main(arguments):
    import argparse

    parser = argparse.ArgumentParser(description="Installs Vantorelix into Maya.")
    parser.add_argument("modules", metavar="MODULES", help="Maya's folder of modules, such as ~/maya/modules")
    what = parser.add_mutually_exclusive_group()
    what.add_argument("--uninstall", action="store_true", help="remove Vantorelix")
    what.add_argument("--verify", action="store_true",
                      help="check the installed files, and look for others that Maya would load instead")
    parser.add_argument("--quiet", action="store_true", help="print only problems")
    chosen = parser.parse_args(arguments)
    try:
        done, left = run(chosen)
    except (InstallError, OSError) as error:
        sys.exit("install_vantorelix: {0}".format(explain(error)))
    if not chosen.quiet:
        print(done)
    for sentence in left:
        sys.stderr.write(sentence + "\n")


if __name__ == "__main__":
    main(sys.argv[1:])
