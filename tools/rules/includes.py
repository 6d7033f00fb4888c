"""Includes go one way between folders, and the inner headers of a folder are used inside it only.

There are three laws, and a message names the line that breaks one. A top folder includes only from the folders below it
(OURS). No two folders include each other, directly or through others, and the same holds for imports in the page. A header
with the comment line "For the files of FOLDER only." ("this folder" means its own) is included from there alone.
"""

import collections
import posixpath
import re

from . import files

# The top folder of a file -> our folders that it may include from. The two halves of maya/ count as top folders, because
# one is built on the engine and the other on the standalone host.
OURS = {
    "base": {"base"},
    "host": {"host", "base"},
    "engine": {"engine", "host", "base"},
    "standalone": {"standalone", "host", "base"},
    "session": {"session", "standalone", "engine", "host", "base"},
    "maya/extension": {"maya/extension", "engine", "host", "base"},
    "maya/standalone": {"maya/standalone", "standalone", "host", "base"},
    "api": {"api", "session", "standalone", "engine", "host", "base"},
    "web": {"web"},
    "cli": {"cli", "session", "standalone", "engine", "host", "base"},
    "bench": {"bench", "tests", "cli", "session", "standalone", "engine", "host", "base"},
    "tests": {"tests", "cli", "api", "session", "standalone", "engine", "host", "base"},
}

# What is not ours: pattern of the header -> (folders that may use it, only in .cpp files).
FOREIGN = [
    (re.compile(r"nlohmann/"), {"standalone", "maya/standalone", "cli", "bench", "tests"}, True),
    (re.compile(r"(cgltf|ufbx)\.h$"), {"standalone", "bench"}, True),
    (re.compile(r"CLI/"), {"cli"}, False),
    (re.compile(r"benchmark/"), {"bench"}, False),
    (re.compile(r"(gtest|gmock)/"), {"tests"}, False),
    (re.compile(r"mpfr\.h$"), {"tests"}, True),
    (re.compile(r"(pybind11/|Python\.h$)"), {"maya/extension", "bench"}, False),
    (re.compile(r"(x86)?intrin\.h$"), {"base"}, False),
    (re.compile(r"cpuid\.h$"), {"base"}, True),
    (re.compile(r"sys/mman\.h$"), {"base"}, True),
    (re.compile(r"(unistd\.h|fcntl\.h|windows\.h|shellapi\.h|io\.h|sys/\w+\.h|mach-o/dyld\.h)$"), {"standalone", "cli", "bench", "tests"}, True),
]

_INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)
_TEST = re.compile(r"_test\.cpp$|_test_\w+\.h$")
_INSIDE = re.compile(r"^// (?:.*\. )?For the files of (this folder|[\w/]+) only\.", re.MULTILINE)
_IMPORT = re.compile(r"""\b(?:from|import)\s*\(?\s*["'](\.[^"']*)["']""")
_PAGE = "viewer/src"
_STANDARD = re.compile(r"^[a-z_0-9]+$")


def includes(text):
    """(line, quote, header) of every include."""
    return [(text.count("\n", 0, m.start(1)) + 1, m.group(1), m.group(2)) for m in _INCLUDE.finditer(text)]


def _top(path):
    """The folder of OURS that a path lies in; its first folder where that is none of them."""
    parts = path.split("/")
    return "/".join(parts[:2]) if "/".join(parts[:2]) in OURS else parts[0]


def _folder(path):
    return path.rpartition("/")[0]


def _owners(root):
    """Header -> the only folder that may include it, for headers that name one."""
    found = {}
    for path in files.walk(root, [".h"], OURS):
        inside = _INSIDE.search(files.read(root, path))
        if inside:
            found[path] = _folder(path) if inside.group(1) == "this folder" else inside.group(1)
    return found


def _wrong_of_ours(path, header, test, owners):
    folder, target = _top(path), _top(header)
    if target not in OURS:
        return '"%s" is not a path from the root of the checkout; write the full path, as in "host/value.h"' % header
    allowed = OURS[folder] | ({"tests"} if test else set())
    if target not in allowed:
        return "%s/ may not include %s/; include only from %s, or move the code to a folder that both may include from" % (
            folder, target, ", ".join(sorted(allowed)))
    owner = owners.get(header)
    if owner and not path.startswith(owner + "/"):
        return '"%s" is for the files of %s/ only; include a header that is not' % (header, owner)
    return None


def _wrong(path, quote, header, owners):
    folder = _top(path)
    test = bool(_TEST.search(path))
    if quote == '"':
        return _wrong_of_ours(path, header, test, owners)
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


def _way(arrows, start, goal):
    """The folders on a shortest way along the arrows, both ends included; none where there is no way."""
    before, waiting = {start: None}, collections.deque([start])
    while waiting:
        folder = waiting.popleft()
        if folder == goal:
            way = []
            while folder is not None:
                way.insert(0, folder)
                folder = before[folder]
            return way
        for following in sorted(arrows[folder]):
            if following not in before:
                before[following] = folder
                waiting.append(following)
    return None


class _Arrows:
    """Which folders lead to which, and where each arrow was seen first."""

    def __init__(self):
        self.targets = collections.defaultdict(set)
        self.places = {}

    def add(self, source, target, place):
        if source != target:
            self.targets[source].add(target)
            self.places.setdefault((source, target), place)

    def circles(self):
        """A message for each arrow that is part of a circle, at the first include or import that makes it."""
        found = []
        for (source, target), place in sorted(self.places.items(), key=lambda item: item[1]):
            way = _way(self.targets, target, source)
            if way:
                found.append("%s: %s/ and %s/ are in a circle, %s; move what both need to a folder below both"
                             % (place, source, target, " -> ".join([source] + way)))
        return found


def _circles_of_the_page(root):
    arrows = _Arrows()
    for path in files.walk(root, [".ts"], [_PAGE]):
        text = files.read(root, path)
        for found in _IMPORT.finditer(text):
            target = posixpath.normpath(posixpath.join(_folder(path), found.group(1)))
            arrows.add(_folder(path), _folder(target), "%s:%d" % (path, text.count("\n", 0, found.start(1)) + 1))
    return arrows.circles()


def problems(root, options=None):
    found, owners, arrows = [], _owners(root), _Arrows()
    for path in files.walk(root, files.CPP, OURS):
        for line, quote, header in includes(files.read(root, path)):
            place = "%s:%d" % (path, line)
            wrong = _wrong(path, quote, header, owners)
            if wrong:
                found.append("%s: %s" % (place, wrong))
            elif quote == '"' and not _TEST.search(path):
                arrows.add(_folder(path), _folder(header), place)
    return found + arrows.circles() + _circles_of_the_page(root)
