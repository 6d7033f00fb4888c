"""Every header compiles alone, and twice in one file."""

from . import compiler, files
from .includes import OURS


def problems(root, options):
    headers = files.walk(root, [".h"], OURS)
    said = compiler.in_parallel(
        lambda header: compiler.errors(options.compiler, root, '#include "%s"\n#include "%s"\n' % (header, header)),
        headers)
    return ["%s:1: does not compile alone; include what it uses, and start it with #pragma once\n%s" % (header, text)
            for header, text in zip(headers, said) if text]
