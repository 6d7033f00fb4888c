"""Every header compiles alone, and twice in one file.

If a source begins with a header, compiling that source shows that the header compiles alone, and the build does that. All
other headers are compiled here. Tests do not count, because the headers of the test library come before what they include.
"""

import re

from . import compiler, files
from .includes import OURS

_DIRECTIVE = re.compile(r"^\s*(#.*)$", re.MULTILINE)
_BEGINS = re.compile(r'(//.*\n|\s)*#include "([^"]+)"\n')
# Sources that not every build compiles.
_ELSEWHERE = ("bench/", "tests/")


def shown(root):
    """The headers that a source begins with."""
    sources = (path for path in files.walk(root, [".cpp"], OURS)
               if not path.endswith("_test.cpp") and not path.startswith(_ELSEWHERE))
    begins = (_BEGINS.match(files.read(root, path)) for path in sources)
    return {found.group(2) for found in begins if found}


def _unguarded(text):
    directive = _DIRECTIVE.search(text)
    return not directive or directive.group(1) != "#pragma once"


def problems(root, options):
    known, headers = shown(root), files.walk(root, [".h"], OURS)
    errors = compiler.in_parallel(
        lambda header: "" if header in known else compiler.errors(options.compiler, root, '#include "%s"\n' % header), headers)
    found = ["%s:1: start it with #pragma once" % header for header in headers if _unguarded(files.read(root, header))]
    return found + ["%s:1: does not compile alone; include what it uses\n%s" % (header, text)
                    for header, text in zip(headers, errors) if text]
