"""Code that positions depend on never calls the C library for sine and similar functions, whose last digit differs between
systems."""

import re

from . import files

FOLDERS = ["base", "host", "engine", "standalone", "session"]
_CALL = re.compile(r"(?:\bstd::|(?<![\w:.>]))(a?(?:sin|cos|tan)h?|atan2|hypot|exp2?|expm1|log(?:2|10|1p|b)?|pow|cbrt|fma|"
                   r"[tl]gamma|erfc?|sincos)f?l?\(")
_COMMENT = re.compile(r"//.*")


def problems(root, options=None):
    found = []
    for path in files.walk(root, files.CPP, FOLDERS):
        if "_test" in path or path.startswith("base/mathematics"):
            continue
        for number, line in enumerate(files.read(root, path).splitlines(), 1):
            for name in _CALL.findall(_COMMENT.sub("", line)):
                found.append("%s:%d: %s of the C library differs in the last place between systems; call base::%s of "
                             "base/mathematics/mathematics.h, or add it there" % (path, number, name, name))
    return found
