"""Two published descriptions of Maya's Python, made independently of each other: what they know of it."""

import ast
import glob
import os
import re
import zipfile

import pypi

API = {"om": "OpenMaya", "oma": "OpenMayaAnim", "omr": "OpenMayaRender", "omui": "OpenMayaUI"}
PACKAGES = ("types_maya", "maya_stubs")


def fetch(root):
    """{package: Stubs}; the wheels are downloaded into build/maya-stubs when they are not there."""
    folder = os.path.join(root, "build", "maya-stubs")

    def present():
        return {package: path for package in PACKAGES for path in glob.glob(os.path.join(folder, package + "-*.whl"))}

    if len(present()) < len(PACKAGES):
        pypi.pip(os.path.join(folder, "pip"), "download", os.path.join(root, "tools", "maya_stubs.txt"),
                 "--no-deps", "--dest", folder)
    return {package: read(wheel) for package, wheel in present().items()}


def read(wheel):
    with zipfile.ZipFile(wheel) as package:
        names = package.namelist()
        commands = next(n for n in ("maya-stubs/cmds.pyi", "maya-stubs/cmds/__init__.pyi") if n in names)
        return Stubs(package.read(commands).decode("utf-8"),
                     {handle: package.read("maya-stubs/api/%s.pyi" % module).decode("utf-8")
                      for handle, module in API.items()})


def dotted(node):
    """"om.MTime.uiUnit" for such an expression; None for any other."""
    names = []
    while isinstance(node, ast.Attribute):
        names.insert(0, node.attr)
        node = node.value
    return ".".join([node.id] + names) if isinstance(node, ast.Name) else None


def _keywords(function):
    return {argument.arg for argument in function.args.args + function.args.kwonlyargs}


class Stubs(object):
    """One of the descriptions. It knows no keyword of a function that it describes as taking any."""

    def __init__(self, commands, modules):
        """`commands`: the text of its cmds; `modules`: {"om": the text of its OpenMaya, ...}."""
        # Megabytes, of which only what is asked for gets parsed: name -> the texts of its overloads.
        self._commands = {}
        for text in re.split(r"^(?=def |class |@)", commands, flags=re.MULTILINE):
            if text.startswith("def "):
                self._commands.setdefault(text[4:text.index("(")], []).append(text)
        self._classes = {}  # "om.MTime" -> {member: keywords}
        self._bases = {}
        for handle, text in modules.items():
            for node in ast.parse(text).body:
                if isinstance(node, ast.ClassDef):
                    self._add_class(handle, node)
                elif isinstance(node, ast.AnnAssign):  # "MPoint: Incomplete": there is such a class, and no more is said
                    self._classes.setdefault(handle + "." + node.target.id, {})

    def _add_class(self, handle, node):
        members = self._classes.setdefault(handle + "." + node.name, {})
        # A base in the same module stands alone, one in another as "maya.api.OpenMaya.MPxNode" or "OpenMaya.MPxNode".
        handles = {module: short for short, module in API.items()}
        bases = [name.rpartition(".") for name in map(dotted, node.bases) if name]
        self._bases[handle + "." + node.name] = [
            handles.get(module.rpartition(".")[2], module or handle) + "." + name for module, _, name in bases]
        for part in node.body:
            if isinstance(part, ast.FunctionDef):
                members.setdefault(part.name, set()).update(_keywords(part))
            for target in getattr(part, "targets", [getattr(part, "target", None)]):
                if isinstance(target, ast.Name):
                    members.setdefault(target.id, set())

    def _member(self, owner, member):
        """The keywords of a member of a class or of those it comes from; None when there is none."""
        if member in self._classes.get(owner, ()):
            return self._classes[owner][member]
        found = (self._member(base, member) for base in self._bases.get(owner, ()))
        return next((keywords for keywords in found if keywords is not None), None)

    def _command(self, name):
        """The keywords of a command, of all its overloads; None when there is none."""
        functions = [ast.parse(text).body[0] for text in self._commands.get(name, ())]
        return set().union(*map(_keywords, functions)) if functions else None

    def knows(self, use):
        """`use` as in maya_names."""
        name, keyword = use
        if name.startswith("cmds."):
            keywords = self._command(name[5:])
        elif name.startswith("?."):
            every = [members[name[2:]] for members in self._classes.values() if name[2:] in members]
            keywords = set().union(*every) if every else None
        elif name.count(".") == 1:
            keywords = set() if name in self._classes else None
        else:
            keywords = self._member(*name.rsplit(".", 1))
        return keywords is not None and (keyword is None or keyword in keywords)
