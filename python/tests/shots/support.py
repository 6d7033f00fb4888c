"""What the tests share: small clips, runs of the command, and work that misbehaves on demand."""

import glob
import math
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import pyarrow.dataset

from vantorelix.shots import cluster, group, plan
from vantorelix.shots.group import Task
from vantorelix.shots.progress import Progress
from vantorelix.shots.shot import Settings
from vantorelix.shots.store import Store
from vantorelix.shots.work import measured

HERE = os.path.dirname(os.path.abspath(__file__))
HOOK = "VANTORELIX_TEST_SHOTS"


def clip(frames=12, height=1.0):
    """The text of a figure of two joints that swings."""
    joints = ("HIERARCHY\nROOT hips\n{\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\nJOINT foot\n{\n"
              "OFFSET 0 -1 0\nCHANNELS 1 Zrotation\nEnd Site\n{\nOFFSET 0 -1 0\n}\n}\n}\n")
    rows = ["%r %r 0 %r" % (frame * 0.5, height, 30 * math.sin(frame * 0.7)) for frame in range(frames)]
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
    if os.environ.get(HOOK) == "slow":
        time.sleep(0.1)
    return measured(shot, settings)


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
        return [sys.executable, "-m", "vantorelix._shots_command"] + list(arguments)

    def measure(self, shots, work=measured, workers=2, size=None):
        """The run on a local cluster, with work of the test's own; `size`: shots in each group."""
        store = Store(self.out)
        store.prepare()
        todo = plan.make(shots, Settings(), store)
        groups = [todo.todo[i:i + size] for i in range(0, len(todo.todo), size)] if size else plan.groups(todo)
        progress = Progress(len(todo.todo), None)
        cluster.run(groups, Task([], Settings(), self.out, work), cluster.Where(workers=workers), progress)
        return progress

    def do(self, shots, work=measured, settings=Settings()):
        """The work of shots in this process."""
        Store(self.out).prepare()
        return group.do(Task(shots, settings, self.out, work))

    def rows(self, kind):
        """All lines of a table of the dataset."""
        return pyarrow.dataset.dataset(os.path.join(self.out, kind), format="parquet").to_table().to_pylist()

    def assertWhole(self, shots):
        """Every shot is in each table that its state allows, once, and nothing half-written is left."""
        records = self.rows("shots")
        self.assertEqual(sorted(record["shot"] for record in records), sorted(shot.name for shot in shots))
        done = sorted(record["shot"] for record in records if record["state"] == "done")
        for kind in ("samples", "keys", "measures"):
            self.assertEqual(sorted({row["shot"] for row in self.rows(kind)}), done, kind)
            self.assertEqual(len(glob.glob(os.path.join(self.out, kind, "*"))), len(done), kind)
        measures = self.rows("measures")
        self.assertEqual(len({(row["shot"], row["source"]) for row in measures}), len(measures))
        self.assertEqual(os.listdir(os.path.join(self.out, "work")), [])

    def times(self, kind="shots"):
        """When each file of a table was written, by its name."""
        found = glob.glob(os.path.join(self.out, kind, "*.parquet"))
        return {os.path.basename(path).rsplit("-", 1)[0]: os.stat(path).st_mtime_ns for path in found}
