#!/usr/bin/env python3
"""Runs every benchmark, and the peers where they are installed, and prints one table.

The peer is Blender: the program `blender` on the PATH, and any interpreter given by --bpy that can import bpy. The
fastest counts, of all of these, with one thread and with two, by motion paths and by a plain loop over the frames.
Without a peer the column shows what was once measured on a quiet machine, marked "recorded". The target is a 25th of
the recorded time, whether or not a peer ran; "times faster" compares the two figures of this run. Most rows are of
passes that are repeated in one process. "The whole program" is what people run: a single pass, from the start of the
process to its end, compared with the peer's import and motion paths alone, without the start of Blender.
"""

import argparse
import json
import math
import os
import platform
import shutil
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
BIN = os.path.join(os.path.dirname(HERE), "build", "bin")

# title, benchmark, what one pass holds, unit, the scene of the peer, its recorded time in that unit
SCENES = [
    ("1 object x 10,000 frames", "one_object/10000", 10e3, "us a sample", "one_object", 4.1),
    ("1000 objects x 250 frames", "many_objects", 250e3, "us a sample", "many_objects", 4.35),
    ("chain of 50, its leaf, 1000 frames", "chain_leaf", 50e3, "us a link", "chain_leaf", 1.8),
    ("100 objects in a binary tree, 1000 frames", "tree", 100e3, "us a sample", "tree", 2.98),
    ("BVH of 60 joints x 1000 frames", "clip_all_joints", 60e3, "us a sample", "clip_all_joints", 1.93),
    ("loading that BVH", "clip_load", 1e3, "ms", "clip_load", 370.0),
    ("1000 x 250 exact again after an edit", "rebuild/250", 1e3, "ms", "rebuild", 1091.0),
]
CLIP_SAMPLES = 60e3
TIMES_LESS = 25.0
BUDGET_MS = 8.0


def run_benchmarks(pattern, repetitions, scenes):
    """Name -> its fastest repetition, as Google Benchmark reports it."""
    environment = dict(os.environ, VANTORELIX_BENCH_SCENES=":".join(scenes))
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.json")
        subprocess.run([os.path.join(BIN, "vantorelix_bench"), "--benchmark_filter=" + pattern,
                        "--benchmark_repetitions=%d" % repetitions, "--benchmark_out=" + out,
                        "--benchmark_out_format=json"], check=True, stdout=sys.stderr, env=environment)
        with open(out, encoding="utf-8") as file:
            report = json.load(file)
    best = {}
    for entry in report["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit("%s: %s" % (entry["name"], entry["error_message"]))
        if entry["run_type"] != "iteration":
            continue
        name = "/".join(part for part in entry["run_name"].split("/") if part != "manual_time" and ":" not in part)
        if name not in best or entry["real_time"] < best[name]["real_time"]:
            best[name] = entry
    return best


def reports_of_peers(interpreters, script, arguments, out):
    """(number of threads, report) for every peer, on one core and on two. The script writes each report into `out`."""
    script = os.path.join(HERE, "peers", script)
    peers = [("bpy of " + os.path.basename(os.path.dirname(os.path.dirname(i))), [i, script]) for i in interpreters]
    if shutil.which("blender"):
        peers.append(("blender", ["blender", "-b", "--factory-startup", "--python-exit-code", "1", "--python", script, "--"]))
    for who, command in peers:
        for threads in (1, 2):
            cores = ["taskset", "-c", ",".join(str(core) for core in range(threads))]
            print("peer: %s, %d threads" % (who, threads), file=sys.stderr)
            if subprocess.run(cores + command + arguments, stdout=subprocess.DEVNULL).returncode:
                sys.exit("%s failed; see its messages above, or leave peers out with --no-peers" % who)
            with open(out, encoding="utf-8") as file:
                yield threads, json.load(file)


def note_fastest(best, scene, held, ways, version, threads):
    for way, seconds in ways.items():
        if scene not in best or seconds / held < best[scene][0]:
            best[scene] = (seconds / held, "%s, %s, %d thread%s" % (version, way, threads, "s" * (threads > 1)))


def write_clip(path):
    with open(path, "w", encoding="ascii") as file:
        subprocess.run([os.path.join(BIN, "vantorelix_bench_clip")], stdout=file, check=True)


def run_peers(interpreters, frames_of_files):
    """Scene -> (seconds, who) of the fastest peer; empty if there is no peer. For a file, (name, way) -> (seconds per
    sample, who), (name, "import") -> (seconds, who), and (name, "samples") -> the number of samples."""
    best = {}
    with tempfile.TemporaryDirectory() as folder:
        clip, out = os.path.join(folder, "clip.bvh"), os.path.join(folder, "out.json")
        write_clip(clip)
        for threads, report in reports_of_peers(interpreters, "blender_scenes.py", [clip, out], out):
            for scene, ways in report["scenes"].items():
                note_fastest(best, scene, 1, ways, report["version"], threads)
        files = [text for path, frames in frames_of_files.items() if path.endswith(".fbx") for text in (path, str(frames))]
        if files:
            for threads, report in reports_of_peers(interpreters, "blender_files.py", [out] + files, out):
                for name, found in report["files"].items():
                    best[name, "samples"] = found["objects"] * found["frames"]
                    note_fastest(best, (name, "import"), 1, {"import": found["import"]}, report["version"], threads)
                    for way, seconds in found["ways"].items():
                        note_fastest(best, (name, way), best[name, "samples"], {way: seconds}, report["version"], threads)
    return best


def whole_program(scene, repetitions):
    """Milliseconds of the fastest run of the program on a file: it reads the file, makes all trails and prints a
    table."""
    fastest = math.inf
    for _ in range(repetitions):
        start = time.perf_counter()
        subprocess.run([os.path.join(BIN, "vantorelix"), "trails", scene, "--quiet"], stdout=subprocess.DEVNULL, check=True)
        fastest = min(fastest, (time.perf_counter() - start) * 1e3)
    return fastest


def bytes_a_sample(samples):
    """Peak memory per sample of the whole program with one trail of so many samples, less the peak for two samples."""
    bvh = ("HIERARCHY\nROOT a\n{\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\n"
           "}\nMOTION\nFrames: 2\nFrame Time: 0.04\n0 0 0\n1 2 3\n")

    def peak(last):
        process = subprocess.Popen([os.path.join(BIN, "vantorelix"), "trails", scene, "--quiet", "--range",
                                    "0:%d" % last], stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = status
        if status:
            sys.exit("vantorelix trails failed; build it again with ./dev bench")
        return usage.ru_maxrss * 1024

    with tempfile.TemporaryDirectory() as folder:
        scene = os.path.join(folder, "a.bvh")
        with open(scene, "w", encoding="ascii") as file:
            file.write(bvh)
        return (peak(samples - 1) - peak(1)) / samples


def slope(points):
    """Of log(time) over log(n), by least squares."""
    logs = [(math.log(n), math.log(t)) for n, t in points]
    mean_x, mean_y = (sum(c) / len(logs) for c in zip(*logs))
    return sum((x - mean_x) * (y - mean_y) for x, y in logs) / sum((x - mean_x) ** 2 for x, _ in logs)


class Table:
    def __init__(self):
        self.lines = ["| what | measured | target | met | peer | times faster |", "|---|---|---|---|---|---|"]

    def add(self, what, measured, limit, unit, peer="", times=""):
        self.lines.append("| %s | %.4g %s | %.4g | %s | %s | %s |" % (
            what, measured, unit, limit, "yes" if measured <= limit else "**no**", peer, times))


def scene_rows(table, ours, peers):
    for what, name, held, unit, scene, recorded in SCENES:
        scale = 1e-3 / held if unit.startswith("us") else 1e-6
        measured = ours[name]["real_time"] * scale
        peer, who = recorded, "recorded"
        if scene in peers:
            seconds, who = peers[scene]
            peer = seconds * 1e9 * scale
        table.add(what, measured, recorded / TIMES_LESS, unit, "%.4g (%s)" % (peer, who), "%.1f" % (peer / measured))


def first_pass_rows(table, peers, files, repetitions):
    """The time of the whole program, compared with that of the peer's import and its fastest paths together."""
    recorded = {row[4]: row[5] for row in SCENES}
    clip_peer, who = recorded["clip_load"] + recorded["clip_all_joints"] * CLIP_SAMPLES * 1e-3, "recorded"
    limit = clip_peer / TIMES_LESS
    if "clip_load" in peers:
        clip_peer = (peers["clip_load"][0] + peers["clip_all_joints"][0]) * 1e3
        who = "import and " + peers["clip_all_joints"][1]
    with tempfile.TemporaryDirectory() as folder:
        clip = os.path.join(folder, "clip.bvh")
        write_clip(clip)
        measured = whole_program(clip, repetitions)
    table.add("that BVH, the whole program", measured, limit, "ms", "%.4g (%s)" % (clip_peer, who),
              "%.1f" % (clip_peer / measured))
    for scene in files:
        name = os.path.basename(scene)
        if (name, "import") not in peers:
            continue
        ways = [peers[name, way] for way in ("motion paths", "frame_set loop") if (name, way) in peers]
        seconds, who = min(ways)
        peer = (peers[name, "import"][0] + seconds * peers[name, "samples"]) * 1e3
        measured = whole_program(scene, repetitions)
        table.add(name + ", the whole program", measured, peer / TIMES_LESS, "ms",
                  "%.4g (import and %s)" % (peer, who), "%.1f" % (peer / measured))


def file_rows(table, ours, peers, files):
    for name in map(os.path.basename, files):
        run = ours["file_trails/" + name]
        measured = run["real_time"] * 1e-3 / run["unit"]
        for seconds, who in (peers[name, way] for way in ("motion paths", "frame_set loop") if (name, way) in peers):
            table.add("trails of everything in " + name, measured, seconds * 1e6 / TIMES_LESS, "us a sample",
                      "%.4g (%s)" % (seconds * 1e6, who), "%.1f" % (seconds * 1e6 / measured))
        if "file_parse/" + name in ours:
            table.add("loading %s, over the library's parsing" % name,
                      ours["file_load/" + name]["real_time"] / ours["file_parse/" + name]["real_time"], 1.5, "x")


def own_rows(table, ours):
    def time(name):
        return ours[name]["real_time"]

    for frames in (250, 1000):
        run = ours["slices/%d" % frames]
        table.add("slices of 1000 x %d: p99.9 of %d (p99 %.4f; loops that only read the clock %.4f; %d that lost the processor "
                  "left out), and p99.9 of where a budget may end: in a unit of %.3g us (median %.2g)" % (
                      frames, run["slices"], run["slice_p99"] * 1e3, run["bare_p999"] * 1e3, run["left_out"],
                      run["real_time"] * 1e-3, run["unit_median"] * 1e6),
                  run["slice_p999"] * 1e3, BUDGET_MS + run["real_time"] * 1e-6, "ms")
    table.add("rebuild of 1000 x 1000", time("rebuild/1000") * 1e-6, 1091.0 * 4 / TIMES_LESS, "ms")
    for points, limit in ((1000000, 2.0), (10000, 4.0)):
        table.add("colouring %d points, over the copy" % points,
                  time("colours/%d" % points) / time("copy/%d" % points), limit, "x")
    table.add("filling 10000 from 100, over the copy", time("fill/10000") / time("copy/10000"), 4.0, "x")
    table.add("the engine alone, clock (%.3g ns) included" % time("clock_read"), time("engine_alone") / 100e3, 60.0,
              "ns a sample")
    for what, name in (("rebuilding", "rebuild_one"), ("creating", "one_object")):
        table.add("growth of %s, 10,000 to 1,000,000 samples" % what,
                  slope([(n, time("%s/%d" % (name, n))) for n in (10000, 100000, 1000000)]), 1.05, "slope")
    table.add("memory of 1,000,000 samples", bytes_a_sample(1000000), 80.0, "bytes a sample")


def machine():
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as file:
            model = next(line.split(":")[1].strip() for line in file if line.startswith("model name"))
    except (OSError, StopIteration):
        model = platform.machine()
    return "%s, %d cores, %s" % (model, os.cpu_count(), platform.system())


def command_of(arguments):
    """The arguments as they can be published: of a path, only the name of the file."""
    return "".join(" " + (os.path.basename(each) or each) for each in arguments)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bpy", action="append", default=[], metavar="PYTHON", help="an interpreter that has bpy")
    parser.add_argument("--no-peers", action="store_true", help="leave the peers out even if they are installed")
    parser.add_argument("--scene", action="append", default=[], metavar="FILE", help="also measure this scene file; the peers "
                        "open it, too, if it is an FBX file")
    parser.add_argument("--repetitions", type=int, default=5)
    parser.add_argument("--record", metavar="FILE",
                        help="also write the table to FILE, with the machine, the date and the command")
    options = parser.parse_args(arguments)

    ours = run_benchmarks(".", options.repetitions, [os.path.abspath(scene) for scene in options.scene])
    frames = {os.path.abspath(s): int(ours["file_trails/" + os.path.basename(s)]["frames"]) for s in options.scene}
    peers = {} if options.no_peers else run_peers(options.bpy, frames)
    table = Table()
    scene_rows(table, ours, peers)
    first_pass_rows(table, peers, options.scene, 2 * options.repetitions)
    file_rows(table, ours, peers, options.scene)
    own_rows(table, ours)
    print("\n".join(table.lines))
    if options.record:
        date = subprocess.run(["date", "+%Y-%m-%d"], stdout=subprocess.PIPE, universal_newlines=True).stdout.strip()
        with open(options.record, "w", encoding="utf-8") as file:
            file.write("# Speeds, %s\n\n%s. Fastest of %d repetitions; command: `./dev bench%s`.\n\n%s\n" % (
                date, machine(), options.repetitions, command_of(arguments),
                "\n".join(table.lines)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
