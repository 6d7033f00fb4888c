"""The ways to measure shots that are compared. Each returns the seconds that it took."""

import contextlib
import json
import os
import subprocess
import sys
import tempfile
import threading
import time

from vantorelix.shots import group
from vantorelix.shots.group import Task
from vantorelix.shots.listing import read_shots
from vantorelix.shots.schemas import SAMPLES
from vantorelix.shots.shot import Settings
from vantorelix.shots.store import Store
from vantorelix.shots.work import measured

HERE = os.path.dirname(os.path.abspath(__file__))
PROGRAM = os.environ.get("VANTORELIX_PROGRAM", "")
WORKERS = 2


def seconds_of(function, *arguments):
    begin = time.perf_counter()
    function(*arguments)
    return time.perf_counter() - begin


@contextlib.contextmanager
def results(beside):
    """A folder of folders of results that nobody keeps, on the disk of `beside`. They go when everything is timed: a file
    system that has just lost thousands of files is slow at making new ones."""
    with tempfile.TemporaryDirectory(dir=beside, prefix="results-") as folder:
        yield lambda: tempfile.mkdtemp(dir=folder)


def program(*words):
    """Runs the program to its end; what it prints goes nowhere."""
    subprocess.run((PROGRAM,) + words, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, close_fds=False)


def show(clips, folder):
    """vantorelix-shots on a folder of clips: the seconds of the whole command and of its stages."""
    out = os.path.join(folder, "stages.json")
    words = [sys.executable, os.path.join(HERE, "stages.py"), out, clips, "--out", os.path.join(folder, "show"),
             "--workers", str(WORKERS), "--quiet"]
    whole = seconds_of(lambda: subprocess.run(words, check=True, stdin=subprocess.DEVNULL))
    with open(out, encoding="ascii") as file:
        return dict(json.load(file), whole=whole)


def loops(paths, folder, commands=(("measure",),)):
    """Plain loops of the program, one a worker, each over its share of the clips: these commands of each, a file each."""
    def loop(share):
        for path in share:
            for words in commands:
                program(*words, path, "--quiet", "--out", os.path.join(folder, "%s.%s.csv" % (os.path.basename(path), words[0])))

    def both():
        threads = [threading.Thread(target=loop, args=(paths[number::WORKERS],)) for number in range(WORKERS)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    return _whole(seconds_of(both), len(paths) * len(commands), folder)


def loops_of_all(paths, folder):
    """The same, with the samples besides: what vantorelix-shots keeps, but for keys and report."""
    return loops(paths, folder, (("measure",), ("trails", "--csv-columns", "speed,key")))


def jobs(paths, folder):
    """One command of the program for all clips."""
    out = os.path.join(folder, "{stem}.bvh.csv")
    return _whole(seconds_of(program, "measure", *paths, "--quiet", "--jobs", str(WORKERS), "--out", out), len(paths), folder)


def _whole(seconds, count, folder):
    made = len([name for name in os.listdir(folder) if name.endswith(".csv")])
    if made != count:
        sys.exit("%d of %d tables were written; see the messages above" % (made, count))
    return seconds


def work_alone(paths):
    """The work of all shots in this process, without cluster and files."""
    shots = read_shots(paths)
    return sum(seconds_of(measured, shot, Settings()) for shot in shots)


def one_by_one(paths, folder):
    """What one shot takes, each in turns: to all its files in this process, the work and the samples of that alone, and the
    program's tables."""
    store, other = (Store(os.path.join(folder, name)) for name in ("show", "samples"))
    store.prepare()
    other.prepare()
    found = {"files": [], "samples": [], "work": [], "measure": [], "trails": []}
    for shot in read_shots(paths):
        found["files"].append(seconds_of(group.do, Task([shot], Settings(), store.folder)))
        found["samples"].append(seconds_of(lambda: other.write(SAMPLES, shot.name, measured(shot, Settings()).tables[SAMPLES])))
        found["work"].append(seconds_of(measured, shot, Settings()))
        found["measure"].append(seconds_of(program, "measure", shot.path))
        found["trails"].append(seconds_of(program, "trails", shot.path))
        if (store.record(shot.name) or {}).get("state") != "done":
            sys.exit("%s was not measured" % shot.path)
    for kept in (store, other):
        if len(os.listdir(os.path.join(kept.folder, SAMPLES))) != len(paths):
            sys.exit("%s: samples are missing" % kept.folder)
    return found
