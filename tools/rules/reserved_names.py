"""No published name that begins with an underscore and a capital is a macro of a standard header that we use.

Such names are reserved for the C++ implementation. We keep them because they are the engine's published names; this rule finds
out if a standard library uses one of them as a macro.
"""

import re

from . import compiler, files
from .includes import OURS, _STANDARD, includes

_COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
_NAME = re.compile(r"\b_[A-Z]\w*")


def published_names(root):
    names = set()
    for path in files.walk(root, [".h"], ["engine"]):
        names.update(_NAME.findall(_COMMENT.sub("", files.read(root, path))))
    return sorted(names)


def standard_headers(root):
    used = set()
    for path in files.walk(root, files.CPP, OURS):
        used.update(h for _, quote, h in includes(files.read(root, path)) if quote == "<" and _STANDARD.match(h))
    return sorted(used)


def source(names, headers):
    lines = ["#include <%s>" % header for header in headers]
    for name in names:
        lines += ["#ifdef %s" % name, "#error %s is a macro of this standard library" % name, "#endif"]
    return "\n".join(lines) + "\n"


def problems(root, options):
    names = published_names(root)
    if not names:
        return ["engine:1: no published name with an underscore and a capital was found; mend the pattern of this rule"]
    text = compiler.errors(options.compiler, root, source(names, standard_headers(root)))
    return ["engine:1: a published name is taken; #undef it in engine/state/state.h, with the reason\n" + text] if text else []
