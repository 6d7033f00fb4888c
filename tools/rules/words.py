"""No file names what exists on one machine only: its paths, or its package registries."""

import re

from . import files

BANNED = [
    (re.compile(r"(?<![\w.])/(root|work)/|(?<![\w.])/(tmp|var/tmp)/\w|(?<![\w.])/home/\w+/"),
     "a path of one machine; write it from the root of the checkout, or ask the system for a temporary folder"),
    (re.compile(r"\b(deb\.debian\.org|archive\.ubuntu\.com|files\.pythonhosted\.org|pypi\.org|registry\.npmjs\.org)"
                r"|--(extra-)?index-url|--trusted-host"),
     "the host of a package registry; leave the choice to the package manager of the machine"),
]
# Written on the line itself, followed by why.
ALLOWED = "any-machine:"
# This list, and the test that breaks it.
_HERE = ("tools/rules/words.py", "tools/tests/test_rules.py")
_TEXT = (".h", ".cpp", ".py", ".sh", ".md", ".txt", ".cmake", ".json", ".yml", ".yaml", "dev", "run", ".ma", ".bvh",
         ".ts", ".html", ".css")


def problems(root, options=None):
    found = []
    for path in files.walk(root, _TEXT):
        if path in _HERE:
            continue
        for number, line in enumerate(files.read(root, path).splitlines(), 1):
            for pattern, instead in BANNED:
                if pattern.search(line) and ALLOWED not in line:
                    found.append("%s:%d: %s" % (path, number, instead))
    return found
