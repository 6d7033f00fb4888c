"""clang-tidy, with the checks of .clang-tidy, over the C++ files that changed.

"Changed" means different from the merge base with origin/main, or from HEAD's parent where HEAD is that base. Without either,
every file counts. Tests are left out, because the macros of the test library break checks for reasons of their own, and
what is for Windows alone, whose headers are not there.
"""

import os
import subprocess

from . import compiler, files
from .includes import OURS

PROGRAM = "clang-tidy-14"
_TEST_FOLDERS = ("tests/", "bench/")


def _git(root, *arguments):
    run = subprocess.run(("git",) + arguments, cwd=root, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                         universal_newlines=True)
    return run.stdout.split("\n")[:-1] if run.returncode == 0 else None


def changed(root):
    """The changed paths, or None where there is nothing to compare with."""
    try:
        base, head = _git(root, "merge-base", "origin/main", "HEAD"), _git(root, "rev-parse", "HEAD")
    except FileNotFoundError:
        return None
    if base and base == head:
        base = _git(root, "rev-parse", "HEAD^")
    if not base:
        return None
    different = _git(root, "diff", "--name-only", "--diff-filter=d", base[0])
    return set(different + _git(root, "ls-files", "--others", "--exclude-standard"))


def sources(root, paths=None):
    """The sources to look at: those in `paths` (all without), and for a header a source that includes it."""
    every = [p for p in files.walk(root, [".cpp"], OURS)
             if not p.endswith(("_test.cpp", "_windows.cpp")) and not p.startswith(_TEST_FOLDERS)]
    if paths is None:
        return every
    wanted = {p for p in every if p in paths}
    for header in (p for p in sorted(paths) if p.endswith(".h") and p.split("/")[0] in OURS):
        own = header[:-2] + ".cpp"
        users = [own] if own in every else [p for p in every if '"%s"' % header in files.read(root, p)]
        if users and not wanted.intersection(users):
            wanted.add(users[0])
    return sorted(wanted)


def problems(root, options):
    if not os.path.exists(os.path.join(options.build, "compile_commands.json")):
        return ["%s has no compile_commands.json; configure it first, as ./dev lint does" % options.build]

    def look(path):
        try:
            run = subprocess.run([PROGRAM, "--quiet", "--warnings-as-errors=*",
                                  "--extra-arg=-Wno-unknown-warning-option", "-p", options.build, path], cwd=root,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True)
        except FileNotFoundError:
            return "%s is not installed; ./dev lint installs it" % PROGRAM
        return run.stdout if run.returncode else ""

    paths = sources(root, None if options.all else changed(root))
    print("clang-tidy over %d files" % len(paths), flush=True)
    return ["%s:1: mend what clang-tidy names, or write // NOLINT(check): reason\n%s" % (path, text)
            for path, text in zip(paths, compiler.in_parallel(look, paths)) if text]
