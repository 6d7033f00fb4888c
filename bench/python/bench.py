#!/usr/bin/env python3
"""What the Python module costs beside the interpreter's own work.

    python3 bench/python/bench.py MODULE_FOLDER [--before FOLDER] [--rounds N]

Prints a table for the interpreter that runs this, on a `maya` of C types that does nothing (silent_types.cpp, for which
a compiler is needed). T is the time in which `list(zip(xs, ys, zs))` makes 10,000 triples from three `array('d')`; no
list of positions or colours can cost less. Everything that is compared runs in turns, and each time is the median of
its turns. With --before another build of the module takes part, too.
"""

import argparse
import importlib
import math
import os
import platform
import statistics
import sys
from array import array
from time import thread_time  # does not count the time of other programs

import silent_maya

N = 10000
EDITS = 1000  # so many that they take longer than reading the clock


def seconds(job):
    begin = thread_time()
    result = job()
    end = thread_time()
    del result
    return end - begin


def in_turns(jobs, rounds):
    """The median times of jobs that take turns."""
    turns = [[seconds(job) for job in jobs] for _ in range(rounds)]
    return [statistics.median(times) for times in zip(*turns)]


def helix():
    """Positions along a path that is fast here and slow there."""
    return [(math.cos(i * 0.01), 1e-4 * i + 0.3 * math.sin(i * 0.003), math.sin(i * 0.01)) for i in range(N)]


def triples_by_c():
    """The job of T, on numbers that the interpreter does not share."""
    xs, ys, zs = [array("d", column) for column in zip(*helix())]
    return lambda: list(zip(xs, ys, zs))


def repeated(function):
    def job():
        for _ in range(EDITS):
            function()

    return job


def engine_in(folder):
    """The engine of a folder. One that is loaded already stays usable."""
    for name in ("Vantorelix_engine", "_vantorelix"):
        sys.modules.pop(name, None)
    sys.path.insert(0, os.path.abspath(folder))
    try:
        return importlib.import_module("Vantorelix_engine")
    finally:
        del sys.path[0]


def comparisons(plain):
    """(what, the limit as a ratio, what it is compared with, the job of that)."""
    by_c = triples_by_c()
    return [
        ("colouring 10,000 positions, a list of tuples", 2.0, "T", by_c),
        ("`_smooth_fill` of 10,000 from 100 samples", 1.5, "T", by_c),
        ("`_finish_trail` of 10,000 samples", 2.5, "T", by_c),
        ("`_sample_positions` of 10,000", 1.0, "of the plain loop",
         lambda: plain.sample_positions("|ball", 0.0, N - 1.0, 1.0)),
        ("`_schedule_rebuild` with a step pending", 2.0, "of the plain function", repeated(plain.schedule_rebuild)),
    ]


def jobs(engine):
    """The engine's part of each comparison."""
    positions = helix()
    few = {i: positions[i] for i in range(0, N, 101)}
    few[N - 1] = positions[N - 1]
    assert len(few) == 100
    settings = {"source": "|ball", "samples_per_frame": 1, "ref": None}
    item = {"viz": "vlx_ball_viz", "pos": positions, "ktimes": [], "kpos": []}
    engine._REGISTRY["vlx_ball_viz"] = settings
    engine._PENDING = True
    return [
        lambda: engine._colors_from_positions(positions),
        lambda: engine._smooth_fill(N, few),
        lambda: engine._finish_trail(dict(item, settings=dict(settings)), {"start": 1.0}),
        lambda: engine._sample_positions("|ball", 0.0, N - 1.0, 1.0),
        repeated(engine._schedule_rebuild),
    ]


def row(comparison, turns, rounds):
    what, limit, unit, compared = comparison
    own, other, *before = in_turns([turns[0], compared] + turns[1:], rounds)
    ratio = own / other
    cells = [what, "%.4g" % (own * 1e6), "%.2f" % ratio, "%.2g %s (%.4g us)" % (limit, unit, other * 1e6),
             "yes" if ratio <= limit else "**no**"]
    cells += ["%.2f, now %.3f of that" % (time / other, own / time) for time in before]
    return "| %s |" % " | ".join(cells)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="where Vantorelix_engine.py and its compiled part are")
    parser.add_argument("--before", metavar="FOLDER", help="the folder of an older build for the same interpreter")
    parser.add_argument("--rounds", type=int, default=101)
    options = parser.parse_args(arguments)
    silent_maya.install()
    plain = importlib.import_module("plain")
    plain._REGISTRY["vlx_ball_viz"] = {}
    plain._PENDING = True
    engines = [engine_in(folder) for folder in (options.folder, options.before) if folder]

    heads = ["Python " + platform.python_version(), "us", "ratio", "at most", ""] + ["before"] * (len(engines) - 1)
    print("| %s |\n|%s" % (" | ".join(heads), "---|" * len(heads)))
    for comparison, turns in zip(comparisons(plain), zip(*map(jobs, engines))):
        print(row(comparison, list(turns), options.rounds), flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
