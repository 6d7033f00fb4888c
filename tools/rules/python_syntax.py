"""Python files parse as Python 3.7, the oldest interpreter that the engine's hosts embed."""

import ast

from . import files

# Scripts for a newer interpreter only.
NEWER = ()


def problems(root, options=None):
    found = []
    for path in files.walk(root, [".py"]):
        if path in NEWER:
            continue
        try:
            ast.parse(files.read(root, path), path, feature_version=(3, 7))
        except SyntaxError as error:
            found.append("%s:%s: %s in Python 3.7; write it in the older way" % (path, error.lineno, error.msg))
    return found
