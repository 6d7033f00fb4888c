"""Processes of runs that the tests start, look for and kill."""

import contextlib
import os
import re
import subprocess
import sys
import time

import psutil

COMMAND = [sys.executable, "-m", "vantorelix._shots_command"]

MISBEHAVING = [sys.executable, "-c", (
    "import sys, support; from vantorelix.shots import command, cluster;"
    "run = cluster.run;"
    "cluster.run = lambda groups, task, *rest: run(groups, task._replace(work=support.misbehaving), *rest);"
    "from vantorelix.shots import plan; plan.GROUP_SECONDS = 0.02;"
    "sys.exit(command.main(sys.argv[1:]))")]
"""The command with small groups and support's work, for an environment that finds support."""

LIMIT = 20000  # bytes
LIMITED = [sys.executable, "-c", (
    "import resource, sys; resource.setrlimit(resource.RLIMIT_FSIZE, (%d, %d));"
    "from vantorelix.shots.command import main; sys.exit(main(sys.argv[1:]))" % (LIMIT, LIMIT))]
"""The command where no file can have more than LIMIT bytes."""


def workers_of(process):
    """The processes below one that are Dask's workers."""
    found = []
    with contextlib.suppress(psutil.NoSuchProcess):
        for child in psutil.Process(process).children(recursive=True):
            with contextlib.suppress(psutil.NoSuchProcess):
                if "spawn_main" in " ".join(child.cmdline()):
                    found.append(child)
    return found


def wait_until(true, seconds=180):
    end = time.monotonic() + seconds
    while not true():
        if time.monotonic() > end:
            raise AssertionError("waited %d s in vain" % seconds)
        time.sleep(0.05)


def recorded(out):
    """How many shots of a folder of results have a record."""
    folder = os.path.join(out, "shots")
    return len(os.listdir(folder)) if os.path.isdir(folder) else 0


@contextlib.contextmanager
def own_scheduler(folder, workers=1):
    """A scheduler and workers of its own: (its process, its address). All are gone in the end."""
    with contextlib.ExitStack() as held:
        log = held.enter_context(open(os.path.join(folder, "scheduler.log"), "w+"))

        def start(name, *options):
            words = [sys.executable, "-m", "distributed.cli." + name, *options, "--no-dashboard"]
            process = subprocess.Popen(words, stdout=log, stderr=log)
            held.callback(process.wait)
            held.callback(process.kill if name == "dask_scheduler" else process.terminate)
            return process

        def address():
            with open(log.name) as file:
                return re.search(r"tcp://\S+", file.read())

        scheduler = start("dask_scheduler", "--port", "0")
        wait_until(address)
        for _ in range(workers):
            start("dask_worker", address().group(), "--nthreads", "1", "--death-timeout", "60")
        yield scheduler, address().group()
