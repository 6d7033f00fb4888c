"""What the tests share: small clips, runs of the command, and work that misbehaves on demand."""

import glob
import math
import os
import signal
import subprocess
import tempfile
import time
import unittest

import pyarrow.dataset
import pyarrow.parquet

from processes import COMMAND
from vantorelix.shots import cluster, group, plan
from vantorelix.shots.group import Task
from vantorelix.shots.progress import Progress
from vantorelix.shots.shot import Settings
from vantorelix.shots.store import Store, file_name
from vantorelix.shots.work import measured

HERE = os.path.dirname(os.path.abspath(__file__))
CHECKOUT = os.path.dirname(os.path.dirname(os.path.dirname(HERE)))
HOOK = "VANTORELIX_TEST_SHOTS"
RUN = "test"  # the name of the runs that `measure` makes
SLOW = "slow"  # and the seconds that each shot takes longer


def clip(frames=12, height=1.0, swing=30.0):
    """The text of a figure of two joints that swings."""
    joints = ("HIERARCHY\nROOT hips\n{\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\nJOINT foot\n{\n"
              "OFFSET 0 -1 0\nCHANNELS 1 Zrotation\nEnd Site\n{\nOFFSET 0 -1 0\n}\n}\n}\n")
    rows = ["%r %r 0 %r" % (frame * 0.5, height, swing * math.sin(frame * 0.7)) for frame in range(frames)]
    return "%sMOTION\nFrames: %d\nFrame Time: 0.04\n%s\n" % (joints, frames, "\n".join(rows))


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w") as file:
        file.write(text)
    return path


def misbehaving(shot, settings):
    """The usual work, but for shots whose name holds a word: the test's environment says what happens then."""
    if "guilty" in shot.name:
        if os.environ.get(HOOK) == "kill":
            os.kill(os.getpid(), signal.SIGKILL)
        raise RuntimeError("as the test wants it")
    what, _, seconds = os.environ.get(HOOK, "").partition(" ")
    if what == SLOW:
        time.sleep(float(seconds))
    return measured(shot, settings)


def wrong_in(out, shots):
    """What is wrong with a folder of results: nothing where every shot is in each table that its state allows, once, and
    nothing half-written is left."""
    states = {}
    for row in (row for path in files_in(out, "shots") for row in read_file(path).to_pylist()):
        states[row["shot"]] = states.get(row["shot"], "") + row["state"]
    names = {shot.name for shot in shots}
    wrong = ["%s: no record" % name for name in names - set(states)]
    wrong += ["%s: a record of '%s'" % item for item in states.items() if item[0] not in names or item[1] not in ("done", "failed")]
    done = {file_name(name): name for name, state in states.items() if state == "done"}
    for kind in ("samples", "keys", "measures"):
        found = {os.path.basename(path): path for path in files_in(out, kind)}
        wrong += ["%s: %s has no file, or one too many" % (kind, name) for name in set(found) ^ set(done)]
        wrong += ["%s: it does not hold one shot, once" % path for name, path in found.items()
                  if name in done and not _holds(path, done[name], kind == "measures")]
    return wrong + ["%s: left over" % path for path in files_in(out, "work")]


def _holds(path, shot, once):
    """Whether a table holds a shot and no other; once: every object of it in a single row."""
    table = read_file(path)
    return (table["shot"].unique().to_pylist() == [shot]
            and (not once or len(table["source"].unique()) == len(table)))


def broken_in(out):
    """The files of a folder of results that are not whole tables."""
    found = []
    for path in (os.path.join(place, name) for place, _, names in os.walk(out) for name in names):
        try:
            read_file(path)
        except (OSError, ValueError):
            found.append(path)
    return found


def files_in(out, kind):
    return glob.glob(os.path.join(out, kind, "*"))


def read_file(path):
    return pyarrow.parquet.ParquetFile(path).read()


class ShotsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.path.realpath(folder.name)
        self.clips = os.path.join(self.folder, "clips")
        self.out = os.path.join(self.folder, "show")

    def make_clips(self, *names, **options):
        for name in names:
            write(os.path.join(self.clips, name), clip(**options))

    def command(self, *arguments, **variables):
        """Runs the command to its end: (exit code, standard output, standard error)."""
        run = subprocess.run(self.words(*arguments), env=dict(os.environ, **variables), stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, universal_newlines=True, cwd=self.folder, timeout=240)
        return run.returncode, run.stdout, run.stderr

    def words(self, *arguments):
        return COMMAND + list(arguments)

    def measure(self, shots, work=measured, workers=2, size=None):
        """The run on a local cluster, with work of the test's own; `size`: shots in each group."""
        store = Store(self.out, RUN)
        store.prepare()
        todo = plan.make(shots, Settings(), store)
        groups = [todo.todo[i:i + size] for i in range(0, len(todo.todo), size)] if size else plan.groups(todo)
        progress = Progress(len(todo.todo), None)
        cluster.run(groups, Task([], Settings(), self.out, work, RUN), cluster.Where(workers=workers), progress)
        return progress

    def do(self, shots, work=measured, settings=Settings()):
        """The work of shots in this process."""
        Store(self.out).prepare()
        return group.do(Task(shots, settings, self.out, work))

    def rows(self, kind):
        """All lines of a table of the dataset."""
        return pyarrow.dataset.dataset(os.path.join(self.out, kind), format="parquet").to_table().to_pylist()

    def assertWhole(self, shots):
        self.assertEqual(wrong_in(self.out, shots), [])

    def times(self, kind="shots"):
        """When each file of a table was written, by its name."""
        return {os.path.basename(path).rsplit("-", 1)[0]: os.stat(path).st_mtime_ns for path in files_in(self.out, kind)}
