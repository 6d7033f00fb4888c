#!/usr/bin/env python3
"""Measures generated shots with vantorelix-shots, and prints a table of what that takes beside plain loops and Blender.

    ./dev bench shots [ARGUMENT...]

Everything that is compared takes turns within one run, on two workers or in one process as the rows say, and each figure
is the median of its turns. The clips (60 joints, 250 frames, each with a motion of its own) are made once, into a folder
that is kept. docs/speed.md says how each row is computed. Blender takes part with --blender (the program `blender` on the
PATH) or --bpy (an interpreter that can import bpy).
"""

import argparse
import datetime
import os
import statistics
import sys
import time

import clips
import ways
from ways import WORKERS

HERE = os.path.dirname(os.path.abspath(__file__))
BENCH = os.path.dirname(HERE)
FOLDER = os.path.join(os.path.dirname(BENCH), "build", "bench-shots")

sys.path.append(BENCH)
import table  # noqa: E402

JOINTS, FRAMES = 60, 250
SAMPLE = 20  # clips that are measured one by one, and in Blender
SAMPLE_ALONE = 5  # of these, that a Blender is started for


class Table:
    def __init__(self):
        self.lines = ["| what | measured | beside it | ratio | target | met |", "|---|---|---|---|---|---|"]

    def add(self, what, measured, beside="", ratio=None, target="", met=None):
        self.lines.append("| %s | %s | %s | %s | %s | %s |" % (
            what, measured, beside, "" if ratio is None else "%.2f" % ratio, target,
            "" if met is None else "yes" if met else "**no**"))


def take_turns(paths, sample, rounds, scratch):
    """The seconds of every way, a list each; those of single shots hold all rounds of all shots. scratch: makes a folder."""
    found = {}

    def note(name, seconds):
        found.setdefault(name, []).extend(seconds if isinstance(seconds, list) else [seconds])

    for number in range(rounds):
        print("round %d of %d" % (number + 1, rounds), file=sys.stderr, flush=True)
        for name, seconds in ways.show(os.path.dirname(paths[0]), scratch()).items():
            note(name, seconds)
        for name, way in (("loops", ways.loops), ("loops of all", ways.loops_of_all), ("jobs", ways.jobs)):
            note(name, way(paths, scratch()))
        note("work alone", ways.work_alone(paths))
        for name, seconds in ways.one_by_one(sample, scratch()).items():
            note("shot " + name, seconds)
    return found


def throughput_rows(rows, median, count):
    def rate(name):
        return "%.1f shots a second" % (count / median[name])

    for beside, target in (("loops", 0.8), ("loops of all", 0.8), ("jobs", None)):
        ratio = median[beside] / median["whole"]
        title = {"loops": "%d loops of `vantorelix measure SHOT --out X.csv`: measures alone" % WORKERS,
                 "loops of all": "%d loops of that and of `vantorelix trails SHOT --csv-columns speed,key --out Y.csv`: measures and "
                                 "samples, as the command keeps" % WORKERS,
                 "jobs": "`vantorelix measure SHOTS --jobs %d`" % WORKERS}[beside]
        rows.add("%d shots, the whole command on %d workers" % (count, WORKERS), rate("whole"), "%s (%s)" % (rate(beside), title),
                 ratio, "at least %g" % target if target else "", ratio >= target if target else None)


def overhead_rows(rows, median, count):
    """Milliseconds of a worker for each shot."""
    def each(seconds):
        return seconds / count * 1e3

    def text(milliseconds):
        return "%.2f ms a shot" % milliseconds

    work = each(median["work alone"])
    cluster = each(median["cluster"] * WORKERS) - work
    begun = each((median["start"] + median["end"]) * WORKERS)
    files = (median["shot files"] - median["shot work"]) * 1e3
    rows.add("overhead of cluster and files", text(cluster), "%s (the work alone, in one process)" % text(work),
             target="under 20 ms", met=cluster < 20.0)
    rows.add("of that, start and end of the cluster (%.1f s)" % (median["start"] + median["end"]), text(begun))
    rows.add("of that, files", text(files))
    rows.add("of that, everything else: two processes at a time, and the tasks", text(cluster - begun - files))
    rows.add("overhead of the whole command, with its list and its report (%.1f s)" % median["report"],
             text(each(median["whole"] * WORKERS) - work))


def shot_rows(rows, median):
    for own, what in (("samples", "its measured samples in Parquet"), ("files", "all four files")):
        for name, target in (("measure", 1.5), ("trails", None)):
            ratio = median["shot " + own] / median["shot " + name]
            rows.add("one shot, from its file to %s, in a warm process" % what, "%.1f ms" % (median["shot " + own] * 1e3),
                     "%.1f ms (`vantorelix %s SHOT`, its table)" % (median["shot " + name] * 1e3, name), ratio,
                     "at most %g" % target if target else "", ratio <= target if target else None)


def blender_seconds(options, sample, folder):
    """(seconds of a clip, who) of the fastest peer, by how its clips are opened; medians."""
    report = os.path.join(folder, "report.json")
    inside, alone = {}, {}
    for threads, told in table.reports_of_peers(options.bpy, "blender_clips.py", [report] + sample, report):
        inside[_who(told, threads)] = [opened + read for opened, read in told["clips"]]
    for clip in sample[:SAMPLE_ALONE]:
        begin = time.perf_counter()
        for threads, told in table.reports_of_peers(options.bpy, "blender_clips.py", [report, "--once", clip], report):
            alone.setdefault(_who(told, threads), []).append(time.perf_counter() - begin)
            begin = time.perf_counter()
    return {way: min((statistics.median(seconds), who) for who, seconds in found.items()) for way, found in (
        ("one after the other in a Blender that runs", inside), ("each in a Blender of its own", alone)) if found}


def _who(told, threads):
    return "%s, %d thread%s" % (told["version"], threads, "s" * (threads > 1))


def blender_rows(rows, median, count, peers):
    for name, seconds in (("in a warm process", median["shot files"]),
                          ("in the command, both workers' time", median["whole"] * WORKERS / count)):
        for way, (theirs, who) in peers.items():
            rows.add("one shot %s, against import and `frame_set` over all frames, %s" % (name, way), "%.1f ms" % (seconds * 1e3),
                     "%.1f ms (%s)" % (theirs * 1e3, who), theirs / seconds, "at least 25 times less", theirs / seconds >= 25.0)
    if not peers:
        rows.add("one shot against Blender", "%.1f ms" % (median["shot files"] * 1e3), "not measured", target="at least 25 times less")


def parser():
    made = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    made.add_argument("--shots", type=int, default=1000, help="how many (default: 1000)")
    made.add_argument("--rounds", type=int, default=3, help="turns of each way (default: 3)")
    made.add_argument("--blender", action="store_true", help="also time the program blender on a sample of %d" % SAMPLE)
    made.add_argument("--bpy", action="append", default=[], metavar="PYTHON", help="also time this interpreter, which has bpy")
    made.add_argument("--folder", default=FOLDER, help="where clips are kept and results pass through (default: in build)")
    made.add_argument("--record", metavar="FILE", help="also write the table to FILE, with the machine, the date and the command")
    return made


def main(arguments):
    options = parser().parse_args(arguments)
    if options.shots < 1 or options.rounds < 1:
        parser().error("--shots and --rounds have to be at least 1")
    if not ways.PROGRAM:
        parser().error("VANTORELIX_PROGRAM has to name the program; ./dev bench shots does that")
    paths = clips.make(options.folder, options.shots, JOINTS, FRAMES)
    sample = paths[::max(1, len(paths) // SAMPLE)][:SAMPLE]
    ways.work_alone(sample[:2])  # what happens once happens here
    with ways.results(options.folder) as scratch:
        found = take_turns(paths, sample, options.rounds, scratch)
        peers = blender_seconds(options, sample, scratch()) if options.blender or options.bpy else {}
    median = {name: statistics.median(seconds) for name, seconds in found.items()}
    rows = Table()
    throughput_rows(rows, median, len(paths))
    overhead_rows(rows, median, len(paths))
    shot_rows(rows, median)
    blender_rows(rows, median, len(paths), peers)
    print("\n".join(rows.lines))
    if options.record:
        with open(options.record, "w", encoding="utf-8") as file:
            file.write("# Speeds of shots, %s\n\n%s. Medians of %d rounds; command: `./dev bench shots%s`.\n\n%s\n" % (
                datetime.date.today(), table.machine(), options.rounds, table.command_of(arguments), "\n".join(rows.lines)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
