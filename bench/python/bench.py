#!/usr/bin/env python3
"""What the Python module costs beside the interpreter's own work.

    python3 bench/python/bench.py MODULE_FOLDER [--rounds N]

One table for the interpreter that runs this, on a `maya` that does nothing. T is the time in which C makes 10,000
triples of floats, the least that a list of positions or colours can cost. What is compared runs in turns, and each
time is the median of its turns.
"""

import argparse
import importlib
import math
import os
import platform
import statistics
import sys
from array import array
from time import perf_counter

import silent_maya

N = 10000
EDITS = 1000  # to be longer than a look at the clock


def seconds(job):
    begin = perf_counter()
    result = job()
    end = perf_counter()
    del result
    return end - begin


def alternating(job, other, rounds):
    """The median times of two jobs that take turns."""
    turns = [(seconds(job), seconds(other)) for _ in range(rounds)]
    return [statistics.median(times) for times in zip(*turns)]


def helix():
    """Positions along a path that is fast here and slow there."""
    return [(math.cos(i * 0.01), 1e-4 * i + 0.3 * math.sin(i * 0.003), math.sin(i * 0.01)) for i in range(N)]


def triples_by_c():
    """T's job, on numbers that are not the small and shared ones."""
    columns = [array("d", column) for column in zip(*helix())]
    return lambda: list(zip(*columns))


def repeated(function):
    def job():
        for _ in range(EDITS):
            function()

    return job


def jobs(engine, plain):
    """(what, the job, what it is compared with, at most so many times that)."""
    positions = helix()
    few = {i: positions[i] for i in range(0, N, 101)}
    few[N - 1] = positions[N - 1]
    assert len(few) == 100
    settings = {"source": "|ball", "samples_per_frame": 1, "ref": None}
    item = {"viz": "vlx_ball_viz", "pos": positions, "ktimes": [], "kpos": []}
    engine._REGISTRY["vlx_ball_viz"] = plain._REGISTRY["vlx_ball_viz"] = settings
    engine._PENDING = plain._PENDING = True
    by_c = triples_by_c()
    last = float(N - 1)

    return [
        ("colouring 10,000 positions, a list of tuples", lambda: engine._colors_from_positions(positions), by_c, 2.0, "T"),
        ("_smooth_fill of 10,000 from 100 samples", lambda: engine._smooth_fill(N, few), by_c, 1.5, "T"),
        ("_finish_trail of 10,000 samples",
         lambda: engine._finish_trail(dict(item, settings=dict(settings)), {"start": 1.0}), by_c, 2.5, "T"),
        ("_sample_positions of 10,000", lambda: engine._sample_positions("|ball", 0.0, last, 1.0),
         lambda: plain.sample_positions("|ball", 0.0, last, 1.0), 0.9, "of the plain loop"),
        ("_schedule_rebuild with a step pending", repeated(engine._schedule_rebuild),
         repeated(plain.schedule_rebuild), 2.0, "of the plain function"),
    ]


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="where Vantorelix_engine.py and its compiled part are")
    parser.add_argument("--rounds", type=int, default=101)
    options = parser.parse_args(arguments)
    silent_maya.install()
    sys.path.insert(0, os.path.abspath(options.folder))
    engine, plain = importlib.import_module("Vantorelix_engine"), importlib.import_module("plain")

    lines = ["| Python %s | us | ratio | at most | |" % platform.python_version(), "|---|---|---|---|---|"]
    for what, job, other, limit, unit in jobs(engine, plain):
        own, compared = alternating(job, other, options.rounds)
        ratio = own / compared
        lines.append("| %s | %.4g | %.2f | %.2g %s (%.4g us) | %s |" % (
            what, own * 1e6, ratio, limit, unit, compared * 1e6, "yes" if ratio <= limit else "**no**"))
    print("\n".join(lines))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
