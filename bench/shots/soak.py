#!/usr/bin/env python3
"""Runs vantorelix-shots on many small shots, and does to it what happens to long runs.

    ./dev soak shots [COUNT]        (default: 10,000 shots)

Steps: a run of all shots, with the memory of its process, in which client and scheduler are; the report in a browser;
a run in which a worker is killed ten times; one whose scheduler is killed; one on a disk that is full. After each, the
results are looked through, file by file. The exit code is 1 if anything does not hold.
"""

import argparse
import os
import random
import re
import shutil
import statistics
import subprocess
import sys
import time

import clips
import memory

HERE = os.path.dirname(os.path.abspath(__file__))
CHECKOUT = os.path.dirname(os.path.dirname(HERE))
FOLDER = os.path.join(CHECKOUT, "build", "soak-shots")
TESTS = os.path.join(CHECKOUT, "python", "tests", "shots")
sys.path += [TESTS, os.path.join(CHECKOUT, "tools")]
import browser  # noqa: E402
from processes import COMMAND, MISBEHAVING, own_scheduler, recorded, wait_until, workers_of  # noqa: E402
from support import HOOK, SLOW, broken_in, files_in, wrong_in  # noqa: E402
from vantorelix.shots.listing import read_shots  # noqa: E402

JOINTS, FRAMES = 10, 50
WORKERS = 2
KILLS = 10
MOST_MEGABYTES = 1000.0
MOST_SECONDS = 2.0  # until the report is open
RUN_SECONDS = 60.0  # that a run lasts at least in which something is killed
PATIENCE = 1800  # seconds
MOST_ON_FULL_DISK = 500  # shots


class Soak:
    """The steps, and what did not hold."""

    def __init__(self, folder, count):
        self.folder = folder
        self.results = []
        shutil.rmtree(os.path.join(folder, "runs"), ignore_errors=True)
        os.makedirs(os.path.join(folder, "runs"))
        print("soak: making %d clips" % count, flush=True)
        self.paths = clips.make(folder, count, JOINTS, FRAMES)
        self.clips = os.path.dirname(self.paths[0])
        self.shots = read_shots([self.clips])

    def out(self, name):
        return os.path.join(self.folder, "runs", name)

    def hold(self, what, true, told=""):
        """Notes whether something holds."""
        told = "; ".join(told.split("\n"))
        self.results.append((what, true, told))
        print("soak: %s: %s%s" % ("holds" if true else "DOES NOT HOLD", what, ", " + told if told else ""), flush=True)

    def hold_whole(self, name):
        wrong = wrong_in(self.out(name), self.shots)
        self.hold("%s: every shot is there, none twice, nothing half-written" % name, not wrong, "; ".join(wrong[:3]))

    def start(self, words, name, *options, **variables):
        """A run on all clips. What it says goes into a file, whose path is its `said`."""
        said = self.out(name) + ".said"
        with open(said, "w") as file:
            run = subprocess.Popen(words + [self.clips, "--out", self.out(name)] + list(options), stdin=subprocess.DEVNULL,
                                   stdout=file, stderr=file, env=dict(os.environ, **variables))
        run.said = said
        return run

    def slow(self):
        """What makes a run last long enough to be disturbed."""
        return {HOOK: "%s %r" % (SLOW, RUN_SECONDS * WORKERS / len(self.shots))}

    def complete(self, name):
        """Runs what another run left undone."""
        left = len(self.shots) - recorded(self.out(name))
        run = self.start(COMMAND, name, "--workers", str(WORKERS))
        run.wait(PATIENCE)
        said = read(run.said)
        self.hold("%s: the next run completes" % name,
                  run.returncode == 0 and "%d shots, %d to do" % (len(self.shots), left) in said, "%d were left" % left)
        self.hold_whole(name)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def all_shots(soak):
    """The large run: memory, and what it takes."""
    run = soak.start(COMMAND, "all", "--workers", str(WORKERS))
    begin, worked = time.monotonic(), 0.0
    with memory.Watch(run.pid) as watch:
        while run.poll() is None:
            time.sleep(memory.PAUSE)
            if not worked and re.search(r"^\d+ shots done", read(run.said), re.MULTILINE):
                worked = time.monotonic()
    ended = time.monotonic()
    soak.hold("all: the run ends well", run.returncode == 0,
              "%.0f s, of which %.1f s for the report" % (ended - begin, ended - (worked or ended)))
    soak.hold("all: the process that is client and scheduler stays below %.0f MB" % MOST_MEGABYTES,
              0 < watch.peak() < MOST_MEGABYTES, "%.0f MB at most" % watch.peak())
    parts = watch.parts(worked or ended)
    soak.hold("all: its memory does not grow steadily in the second half of the work", not memory.grows(parts),
              " ".join("%.0f" % part for part in parts) + " MB")
    soak.hold_whole("all")


def report_opens(soak):
    chromium = browser.find()
    if not chromium:
        soak.hold("all: the report opens", False, "there is no browser to open it in")
        return
    copy = soak.out("report.html")
    with open(copy, "w", encoding="utf-8") as file:
        file.write(read(os.path.join(soak.out("all"), "report.html")))
        file.write("<script>addEventListener('load', () => { document.body.getBoundingClientRect(); "
                   "document.body.dataset.opened = performance.now(); });</script>")
    pages = [browser.page(chromium, copy) for _ in range(3)]
    seconds = statistics.median(float(re.search(r'data-opened="([\d.]+)"', page).group(1)) / 1e3 for page in pages)
    rows = len(re.findall(r"<tr><td>", pages[0]))
    soak.hold("all: the report opens in a browser in under %.0f s" % MOST_SECONDS,
              seconds < MOST_SECONDS and rows == min(200, len(soak.shots)),
              "%.2f s until it is laid out, %.1f MB, %d rows at first" % (seconds, os.path.getsize(copy) / 1e6, rows))


def workers_killed(soak):
    run = soak.start(MISBEHAVING, "workers", "--workers", str(WORKERS), **soak.slow())
    killed = set()
    for number in range(1, KILLS + 1):
        wanted = number * len(soak.shots) // (KILLS + 2)
        wait_until(lambda: recorded(soak.out("workers")) >= wanted or run.poll() is not None, PATIENCE)

        def alive():
            return [worker for worker in workers_of(run.pid) if worker.pid not in killed]

        wait_until(lambda: alive() or run.poll() is not None)
        for victim in random.sample(alive(), 1) if run.poll() is None else []:
            victim.kill()
            killed.add(victim.pid)
    run.wait(PATIENCE)
    soak.hold("workers: a run of which %d workers are killed ends well" % KILLS,
              run.returncode == 0 and len(killed) == KILLS, "%d were killed" % len(killed))
    soak.hold_whole("workers")


def scheduler_killed(soak):
    with own_scheduler(soak.out(""), WORKERS) as (scheduler, address):
        run = soak.start(MISBEHAVING, "scheduler", "--scheduler", address, **soak.slow())
        with memory.Watch(run.pid) as client, memory.Watch(scheduler.pid) as watched:
            wait_until(lambda: recorded(soak.out("scheduler")) >= len(soak.shots) // 3 or run.poll() is not None, PATIENCE)
            scheduler.kill()
        run.wait(PATIENCE)
    soak.hold("scheduler: a run whose scheduler is killed says so", run.returncode == 1 and "scheduler is gone" in read(run.said))
    soak.hold("scheduler: scheduler and client stay below %.0f MB each" % MOST_MEGABYTES,
              0 < watched.peak() < MOST_MEGABYTES and 0 < client.peak() < MOST_MEGABYTES,
              "%.0f and %.0f MB at most" % (watched.peak(), client.peak()))
    broken = broken_in(soak.out("scheduler"))
    soak.hold("scheduler: no file is broken", not broken, "; ".join(broken[:3]))
    soak.complete("scheduler")


def disk_full(soak):
    """On a small disk of its own where this user may mount one, else with a limit on the size of files."""
    shots = soak.shots[:MOST_ON_FULL_DISK]
    each = sum(os.path.getsize(path) for kind in ("samples", "keys", "measures", "shots") for path in files_in(soak.out("all"), kind))
    space = max(each * len(shots) // len(soak.shots) // 2, 1 << 16)
    listed = soak.out("list.csv")
    with open(listed, "w", encoding="utf-8") as file:
        file.write("path\n" + "".join(shot.path + "\n" for shot in shots))
    mount = ["unshare", "--user", "--map-root-user", "--mount"]
    allowed = shutil.which("unshare") and subprocess.run(
        mount + ["mount", "-t", "tmpfs", "none", soak.out("")], stderr=subprocess.DEVNULL).returncode == 0
    words = (mount if allowed else []) + [sys.executable, os.path.join(HERE, "full_disk.py"), listed, soak.out("disk")]
    run = subprocess.run(words + ([str(space)] if allowed else []), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                         universal_newlines=True)
    how = "a disk of %d bytes" % space if allowed else "files that may not be large, because no disk can be mounted"
    soak.hold("disk: %s: a clear error, no broken file, and the next run completes" % how, run.returncode == 0, run.stdout.strip())


STEPS = {"all": all_shots, "report": report_opens, "workers": workers_killed, "scheduler": scheduler_killed, "disk": disk_full}


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("count", type=int, nargs="?", default=10000)
    parser.add_argument("--folder", default=FOLDER, help="where clips are kept and results stay until the next time")
    options = parser.parse_args(arguments)
    if options.count < 24:
        parser.error("COUNT has to be at least 24, so that something is left to do after each of %d kills" % KILLS)
    os.environ["PYTHONPATH"] = os.pathsep.join([TESTS, os.environ.get("PYTHONPATH", "")])
    soak = Soak(options.folder, options.count)
    for name, step in STEPS.items():
        print("soak: step %s" % name, flush=True)
        step(soak)
    print("\n| what | holds | |\n|---|---|---|")
    for what, true, told in soak.results:
        print("| %s | %s | %s |" % (what, "yes" if true else "**no**", told))
    return 0 if all(true for _, true, _ in soak.results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
