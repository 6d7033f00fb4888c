"""Folders stay within 24 files, files within 450 lines and functions within 60, or say why not.

The reason is a comment that begins "Long because": anywhere in a long file, and in the lines just above or in a long
function. Functions are found by their layout, which clang-format guarantees: a head that ends in "{" and the first
later "}" at the same indent. TypeScript is laid out the same way; a group of tests there is not a function. The files of a
folder are those of C++ and TypeScript that lie in it and are not tests.
"""

import collections
import re

from . import files
from .includes import OURS

FOLDER_FILES = 24
FILE_LINES = 450
FUNCTION_LINES = 60
REASON = "Long because"
_TEST = re.compile(r"(_test\.cpp|_test_\w+\.h|\.test\.ts)$")
_NOT_A_FUNCTION = re.compile(r"\s*((namespace|class|struct|enum|union|extern|public|private|protected|describe)\b|\}|//|#)")


def _head_end(lines, start):
    """The line that ends the declaration begun at `start`."""
    end = start
    while end + 1 < len(lines) and not lines[end].endswith(("{", ";", "}")):
        end += 1
    return end


def functions(lines):
    """(first line, last line), counted from 1, of every function at namespace or class level."""
    found, number = [], 0
    while number < len(lines):
        line = lines[number]
        indent = len(line) - len(line.lstrip())
        if line.strip() and indent in (0, 2) and not _NOT_A_FUNCTION.match(line):
            end = _head_end(lines, number)
            if lines[end].endswith("{") and "(" in "".join(lines[number:end + 1]):
                while end + 1 < len(lines) and not lines[end].startswith(" " * indent + "}"):
                    end += 1
                found.append((number + 1, end + 1))
            number = end
        number += 1
    return found


def _full_folders(root):
    counts = collections.Counter(path.rpartition("/")[0] for path in files.walk(root, files.CPP, OURS)
                                 + files.walk(root, [".ts"]) if not _TEST.search(path))
    return ["%s:1: %d files; give what belongs together a folder below it, %d at most in each" % (folder, count, FOLDER_FILES)
            for folder, count in sorted(counts.items()) if count > FOLDER_FILES]


def problems(root, options=None):
    found = _full_folders(root)
    for path in files.walk(root, files.CPP, OURS) + files.walk(root, [".py", ".ts", ".css"]):
        lines = files.read(root, path).splitlines()
        if len(lines) > FILE_LINES and not any(REASON in line for line in lines):
            found.append('%s:1: %d lines; split it below %d, or write a comment "%s ..."'
                         % (path, len(lines), FILE_LINES, REASON))
        if path.endswith(files.CPP + (".ts",)):
            for first, last in functions(lines):
                if last - first >= FUNCTION_LINES and not any(REASON in line for line in lines[max(0, first - 6):last]):
                    found.append('%s:%d: a function of %d lines; split it below %d, or write a comment "%s ..."'
                                 % (path, first, last - first + 1, FUNCTION_LINES, REASON))
    return found
