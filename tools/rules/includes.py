"""Includes go one way: host <- engine, host <- standalone, and everything <- cli, tests and bench."""

import re

from . import files

# The first folder of a file -> the folders of ours that it may include from.
OURS = {
    "host": {"host"},
    "engine": {"engine", "host"},
    "standalone": {"standalone", "host"},
    "maya": {"maya", "engine", "host"},
    "cli": {"cli", "standalone", "engine", "host"},
    "bench": {"bench", "cli", "standalone", "engine", "host"},
    "tests": {"tests", "cli", "standalone", "engine", "host"},
}

# What is not ours: pattern of the header -> (folders that may use it, only in .cpp files).
FOREIGN = [
    (re.compile(r"nlohmann/"), {"standalone", "cli", "bench", "tests"}, True),
    (re.compile(r"(cgltf|ufbx)\.h$"), {"standalone", "bench"}, True),
    (re.compile(r"CLI/"), {"cli"}, False),
    (re.compile(r"benchmark/"), {"bench"}, False),
    (re.compile(r"(gtest|gmock)/"), {"tests"}, False),
    (re.compile(r"(pybind11/|Python\.h$)"), {"maya", "bench"}, False),
    (re.compile(r"(x86)?intrin\.h$"), {"host", "standalone"}, False),
    (re.compile(r"cpuid\.h$"), {"host"}, True),
    (re.compile(r"sys/mman\.h$"), {"host"}, True),
    (re.compile(r"(unistd\.h|fcntl\.h|windows\.h|shellapi\.h|io\.h|sys/\w+\.h)$"), {"standalone", "cli", "bench", "tests"}, True),
]

_INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)
_TEST = re.compile(r"_test\.cpp$|_test_\w+\.h$")
_STANDARD = re.compile(r"^[a-z_0-9]+$")


def includes(text):
    """(line, quote, header) of every include."""
    return [(text.count("\n", 0, m.start(1)) + 1, m.group(1), m.group(2)) for m in _INCLUDE.finditer(text)]


def _wrong(path, quote, header):
    folder = path.split("/")[0]
    test = bool(_TEST.search(path))
    if quote == '"':
        target = header.split("/")[0]
        if target not in OURS:
            return '"%s" is not a path from the root of the checkout; write it whole, as in "host/value.h"' % header
        allowed = OURS[folder] | ({"tests"} if test else set())
        if target not in allowed:
            return "%s/ may not include %s/; include only from %s, or move the code to where both may reach it" % (
                folder, target, ", ".join(sorted(allowed)))
        return None
    if _STANDARD.match(header):
        return None
    for pattern, folders, only_cpp in FOREIGN:
        if pattern.match(header):
            if folder not in folders and not (test and "tests" in folders):
                return "<%s> has no place in %s/; wrap what you need in %s" % (header, folder, " or ".join(sorted(folders)))
            if only_cpp and not path.endswith(".cpp"):
                return "<%s> in a header reaches everyone who includes it; include it in the .cpp" % header
            return None
    return "<%s> is not a standard C++ header; use the standard one, or name it in tools/rules/includes.py" % header


def problems(root, options=None):
    found = []
    for path in files.walk(root, files.CPP, OURS):
        for line, quote, header in includes(files.read(root, path)):
            wrong = _wrong(path, quote, header)
            if wrong:
                found.append("%s:%d: %s" % (path, line, wrong))
    return found
