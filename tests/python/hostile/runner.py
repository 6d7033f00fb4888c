"""Runs the cases of a group in child processes, and says which of them failed, crashed or did not end."""

import collections
import os
import select
import signal
import subprocess
import sys
import tempfile

CHILD = os.path.join(os.path.dirname(os.path.abspath(__file__)), "child.py")
# What is freed is overwritten, and handed out again as late as can be: a read of it shows.
TELLTALE = {"PYTHONMALLOC": "malloc", "MALLOC_PERTURB_": "165",
            "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0"}
SECONDS = 60  # after which a case counts as one that does not end
MOST_CRASHES = 20  # after which the rest of a group is not run: each costs a new process

Outcome = collections.namedtuple("Outcome", "run failures")  # how many cases; {name: what went wrong}


def environment(folder):
    """A child's; what it leaves behind is in the folder."""
    paths = {name: os.path.abspath(os.environ[name]) for name in ("VANTORELIX_MODULE", "VANTORELIX_HOST")}
    return dict(os.environ, PYTHONDONTWRITEBYTECODE="1", TMPDIR=folder, **TELLTALE, **paths)


def ended_by(status):
    if status >= 0:
        return "exit code %d" % status
    try:
        return signal.Signals(-status).name
    except ValueError:
        return "signal %d" % -status


class _Child(object):
    """One process, and what its journal says."""

    def __init__(self, arguments):
        self.errors, self.folder = tempfile.TemporaryFile(), tempfile.TemporaryDirectory()
        self.journal, end = os.pipe()
        command = [sys.executable, "-X", "faulthandler", CHILD, "--journal", str(end)] + arguments
        self.process = subprocess.Popen(command, pass_fds=[end], stdin=subprocess.DEVNULL, stdout=self.errors,
                                        stderr=self.errors, cwd=self.folder.name, env=environment(self.folder.name))
        os.close(end)

    def lines(self):
        """The journal line by line; None when none came in time."""
        rest = b""
        while True:
            if not select.select([self.journal], [], [], SECONDS)[0]:
                yield None
                return
            read = os.read(self.journal, 1 << 16)
            if not read:
                return
            *whole, rest = (rest + read).split(b"\n")
            for line in whole:
                yield line.decode("utf-8", "replace")

    def end(self):
        """How it ended, and its last words."""
        os.close(self.journal)
        status = self.process.wait()
        size = self.errors.seek(0, os.SEEK_END)
        self.errors.seek(max(0, size - 4000))
        words = self.errors.read().decode("utf-8", "replace")
        self.errors.close()
        self.folder.cleanup()
        return status, words


def _run_from(start, arguments, failures):
    """Runs the cases from number `start` on, as far as one process gets: (number of the next, whether it was all)."""
    child, number, name, done, why = _Child(arguments + ["--start", str(start)]), start, None, False, None
    for line in child.lines():
        if line is None:
            child.process.kill()
            why = "no end in %d seconds" % SECONDS
            break
        what, _, text = line.partition(" ")
        if what == "begin":
            name = text
        elif what == "fail":
            failures[name] = text.replace("\x1f", "\n")
        elif what == "end":
            number, name = number + 1, None
        elif what == "done":
            done = True
    status, words = child.end()
    if done and status == 0:
        return number, True
    failures[name or "the end of a process, after case %d" % number] = "%s\n%s" % (why or ended_by(status), words)
    return number + (name is not None), done or (name is None and number == start)


def run(group, full, only=None):
    """The outcome of a group, all of it or a part."""
    arguments = [group, "full" if full else "part"] + (["--only", only] if only else [])
    number, done, processes, failures = 0, False, 0, {}
    while not done and processes <= MOST_CRASHES:
        number, done = _run_from(number, arguments, failures)
        processes += 1
    if not done:
        failures["all that follow"] = "not run after %d crashes" % processes
    return Outcome(number, failures)
