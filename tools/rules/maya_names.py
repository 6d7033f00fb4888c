"""Every name and keyword of Maya that we use is in two published descriptions of Maya's Python (maya_stubs).

A use is a pair: ("cmds.ls", "sl") is a keyword, ("cmds.ls", None) the command, ("om.MTime.uiUnit", None) a member of a
class, and ("?.asMObject", None) a method of a class that the source does not name. What a description does not know must be
in TRUSTED, with the reason; an entry there that is not needed is a problem as well.
"""

import ast
import re

from clients import Failure

from . import files, maya_stubs

# maya_stubs knows the long names of flags only.
LONG = {"sl": "selection", "s": "shapes", "em": "empty", "d": "degree", "p": "point", "q": "query", "e": "edit",
        "iv": "intValue", "fv": "floatValue", "min": "minTime", "max": "maxTime", "amg": "assistMessage",
        "pos": "position"}

_NO_FILE_IO = ("It is in neither, in version 2.0 of the interface; maya_stubs has it in 1.0. Where Maya lacks it as well, "
               "the engine takes the error for \"no\": see docs/maya.md, Not sure.")
_FILE_IO = ("om.MFileIO.isReadingFile", "om.MFileIO.isWritingFile", "om.MFileIO.isOpeningFile", "om.MFileIO.isNewingFile")
# package -> reason to trust -> uses that the package does not know, as `shown` writes them.
TRUSTED = {
    "maya_stubs": {
        _NO_FILE_IO: _FILE_IO,
        "It describes every method as taking any keyword; types_maya has this one.": ("?.partialName(useLongNames=)",),
    },
    "types_maya": {
        _NO_FILE_IO: _FILE_IO,
        "It has none of this command's queries, and yet Maya's time is read no other way; maya_stubs has it.":
            ("cmds.currentTime(q=)",),
        "It names the class, marked as not described yet; maya_stubs has its members.": (
            "?.attributeAffects", "?.deregisterNode", "?.dirtyPlugExists", "?.matrix", "?.registerNode",
            "?.setPreference", "?.thisMObject",  # MEvaluationNode, MFnMatrixData, MFnPlugin, MNodeCacheSetupInfo, MPxNode
            "om.MGlobal.displayWarning", "om.MNodeCacheSetupInfo.kWantToCacheByDefault", "om.MPxNode.kLocatorNode",
            "om.MUserData.__init__",
            "oma.MAnimControl.currentTime", "oma.MAnimControl.isPlaying",
            "oma.MAnimMessage.addAnimCurveEditedCallback", "oma.MAnimMessage.addAnimKeyframeEditedCallback",
            "omr.MDrawRegistry.deregisterDrawOverrideCreator", "omr.MDrawRegistry.registerDrawOverrideCreator",
            "omr.MPxDrawOverride.__init__", "omr.MPxDrawOverride.addUIDrawables", "omr.MPxDrawOverride.boundingBox",
            "omr.MPxDrawOverride.hasUIDrawables", "omr.MPxDrawOverride.isBounded",
            "omr.MPxDrawOverride.prepareForDraw", "omr.MPxDrawOverride.supportedDrawAPIs",
            "omui.MPxLocatorNode.__init__", "omui.MPxLocatorNode.boundingBox", "omui.MPxLocatorNode.excludeAsLocator",
            "omui.MPxLocatorNode.getCacheSetup", "omui.MPxLocatorNode.isBounded", "omui.MPxLocatorNode.nodeBoundingBox",
            "omui.MPxLocatorNode.postEvaluation", "omui.MPxLocatorNode.preEvaluation",
            "omui.MPxLocatorNode.setDependentsDirty"),
    },
}

# Maya's functions that a Python file calls under another name: (file, that name) -> the commands.
CALLED_AS = {("Vantorelix_options.py", "make"): ("cmds.intSliderGrp", "cmds.floatSliderGrp")}
# Methods that a Python file names in a text.
NAMED_IN_TEXT = {"Vantorelix_plugin.py": ("asDouble", "asBool", "asInt")}


def shown(use):
    return use[0] + ("(%s=)" % use[1] if use[1] else "")


# --- what is used ----------------------------------------------------------------------------------------------------

def uses_in_cpp(text):
    """{use: line} of the template texts: command<"F", "keyword"...>, construct<"C">, om_class<"C">, method<"M">,
    Method<"M">, static_call<"handle", "C", "M">, register_callback<"handle", "C", "M">, global_attribute<"handle", "F">,
    and attribute(object.get(), name<"M">()) for a method that is taken now and called later."""
    found = {}
    for match in re.finditer(r'\b(command|construct|om_class|[mM]ethod|static_call|register_callback|global_attribute)'
                             r'<((?:\s*"[^"]*"\s*,?)+)>|\battribute\(\w+\.get\(\), name<("\w+")>\(\)\)', text):
        kind, names = match.group(1) or "method", re.findall(r'"([^"]*)"', match.group(2) or match.group(3))
        if kind == "command":
            uses = [("cmds." + names[0], keyword) for keyword in [None] + names[1:]]
        elif kind in ("construct", "om_class"):
            uses = [("om." + names[0], None)]
        elif kind in ("method", "Method"):
            uses = [("?." + names[0], None)] if names[0] not in dir(str) else []  # methods of texts are not Maya's
        else:
            uses = [(".".join(names), None)] if names[0] in maya_stubs.API or names[0] == "cmds" else []
        for use in uses:
            found.setdefault(use, text.count("\n", 0, match.start()) + 1)
    # modelEditor's flags come as values: its modes, and what the engine turns on.
    for match in re.finditer(r'model_editor\(panel, "(\w+)"|_VIEWPORT_TRAIL_FLAGS = \{"(\w+)"\}', text):
        found.setdefault(("cmds.modelEditor", match.group(1) or match.group(2)), text.count("\n", 0, match.start()) + 1)
    return found


def _imported(tree):
    """{the name in the file: "om", "cmds", ... or None for what is not Maya's}."""
    handles = {"maya.cmds": "cmds"}
    handles.update(("maya.api." + module, short) for short, module in maya_stubs.API.items())
    found = {}
    for node in ast.walk(tree):
        if isinstance(node, (ast.Import, ast.ImportFrom)):
            prefix = node.module + "." if isinstance(node, ast.ImportFrom) else ""
            for alias in node.names:
                found[alias.asname or alias.name.split(".")[0]] = handles.get(prefix + alias.name)
    return found


def _own(tree):
    """Names that need not be Maya's when they stand after a point: of built-in types, or given in this file."""
    own = set(dir(str) + dir(list) + dir(dict) + dir(set) + dir(object))
    for node in ast.walk(tree):
        if isinstance(node, (ast.FunctionDef, ast.ClassDef)):
            own.add(node.name)
        if isinstance(node, ast.ClassDef):
            own.update(target.id for part in node.body if isinstance(part, ast.Assign) for target in part.targets)
        if isinstance(node, ast.Attribute) and isinstance(node.ctx, ast.Store) and isinstance(node.value, ast.Name):
            if node.value.id in ("self", "data"):
                own.add(node.attr)
    return own


class _PythonUses(ast.NodeVisitor):
    def __init__(self, tree, name):
        self.file = name
        self.imported = _imported(tree)
        self.with_api = any(handle in maya_stubs.API for handle in self.imported.values())
        self.own = _own(tree)
        self.dictionaries = {}  # variable -> the keys that were given to it
        self.found = {("?." + method, None): 1 for method in NAMED_IN_TEXT.get(name, ())}
        self.visit(tree)

    def _add(self, node, name, keyword=None):
        self.found.setdefault((name, keyword), node.lineno)

    def _maya(self, node):
        """"cmds.ls" for an expression that names something of Maya's; None for any other."""
        root, _, rest = (maya_stubs.dotted(node) or "").partition(".")
        return self.imported[root] + "." + rest if rest and self.imported.get(root) else None

    def visit_Assign(self, node):
        for target in node.targets:
            if isinstance(target, ast.Name) and isinstance(node.value, ast.Dict):
                keys = [getattr(key, "value", getattr(key, "s", None)) for key in node.value.keys]
                self.dictionaries.setdefault(target.id, set()).update(keys)
            if isinstance(target, ast.Subscript) and isinstance(target.value, ast.Name):
                key = getattr(target.slice, "value", target.slice)
                self.dictionaries.setdefault(target.value.id, set()).add(getattr(key, "value", key))
        self.generic_visit(node)

    def visit_Attribute(self, node):
        name = self._maya(node)
        if name:
            self._add(node, name)
        elif (maya_stubs.dotted(node) or "").split(".")[0] not in self.imported:
            if self.with_api and node.attr not in self.own:
                self._add(node, "?." + node.attr)
            self.generic_visit(node)

    def visit_Call(self, node):
        name = self._maya(node.func)
        names = CALLED_AS.get((self.file, maya_stubs.dotted(node.func)), ())
        if name and name.startswith("cmds."):
            names = (name,)
        elif self.with_api and not name and isinstance(node.func, ast.Attribute) and node.func.attr not in self.own:
            names = ("?." + node.func.attr,)
        for keyword in node.keywords:
            # Keywords in something else than a dictionary made here are shown as "**", which nobody knows.
            given = self.dictionaries.get(getattr(keyword.value, "id", None), ("**",))
            for name in names:
                for text in [keyword.arg] if keyword.arg else sorted(given):
                    self._add(node, name, text)
        self.generic_visit(node)

    def visit_ClassDef(self, node):
        """What a class of ours redefines of Maya's: its methods in Maya's spelling."""
        for base in filter(None, map(self._maya, node.bases)):
            for part in node.body:
                if isinstance(part, ast.FunctionDef) and re.match(r"[a-z]+[A-Z]", part.name):
                    self._add(part, base + "." + part.name)
        self.generic_visit(node)


def uses_in_python(text, name):
    return _PythonUses(ast.parse(text), name).found


def uses(root):
    """{use: "file:line" of the first place that has it}."""
    found = {}
    python = files.walk(root, [".py"], ["maya/companion", "maya/package"])
    for path in python + files.walk(root, files.CPP, ["maya/extension", "engine/state"]):
        text = files.read(root, path)
        in_file = uses_in_python(text, path.rpartition("/")[2]) if path in python else uses_in_cpp(text)
        for use, line in in_file.items():
            found.setdefault(use, "%s:%d" % (path, line))
    return found


# --- the check -------------------------------------------------------------------------------------------------------

def check(found, stubs, trusted):
    """What is wrong with the uses `found`, {use: place}, by each of `stubs`, {package: Stubs}."""
    wrong = []
    for package in sorted(stubs):
        reasons = {text: reason for reason, texts in trusted.get(package, {}).items() for text in texts}
        for use in sorted(found, key=shown):
            known = stubs[package].knows(use) or stubs[package].knows((use[0], LONG.get(use[1], use[1])))
            if not known and shown(use) not in reasons:
                wrong.append("%s: %s is not known to %s; write what it knows, or trust it in tools/rules/maya_names.py, "
                             "with the reason" % (found[use], shown(use), package))
            if known and shown(use) in reasons:
                wrong.append("tools/rules/maya_names.py:1: %s is known to %s; trust it no longer" % (shown(use), package))
        for text in sorted(set(reasons) - set(map(shown, found))):
            wrong.append("tools/rules/maya_names.py:1: %s is not used; trust it no longer" % text)
    return wrong


def problems(root, options=None):
    found = uses(root)
    if not found:
        return ["maya:1: no name of Maya was found; mend the patterns"]
    try:
        stubs = maya_stubs.fetch(root)
    except Failure as failure:
        return ["tools/maya_stubs.txt:1: %s" % failure]
    print("%d names and keywords of Maya" % len(found), flush=True)
    return check(found, stubs, TRUSTED)
