"""The command line of `vantorelix-shots`."""

from __future__ import annotations

import argparse
import os
import sys
import uuid
from typing import Any, List, Sequence

import vantorelix

from . import alone, cluster, job, plan, report, schemas
from .cluster import ClusterError, Where
from .group import Outcome, Task
from .listing import read_shots
from .progress import Progress
from .shot import Settings, Shot, UsageError
from .store import Store, WriteError

_EPILOG = """examples:
  vantorelix-shots shots/ --out show            every scene below a folder
  vantorelix-shots 'shots/*/*.fbx' --out show --select '*Foot'
  vantorelix-shots shots.csv --out show         a table with the columns path, take, range, select, shot and others
  vantorelix-shots shots/ --out show --scheduler tcp://farm:8786
  vantorelix-shots shots/ --out show --job job.yaml

exit codes: 0 every shot is done; 1 a shot failed, or the run; 2 the command line is wrong; 130 ended by Ctrl-C"""

_CHUNK = 20  # shots that a task of a job begins with; farms adapt it to how long they take


def parser() -> argparse.ArgumentParser:
    made = argparse.ArgumentParser(
        prog="vantorelix-shots", epilog=_EPILOG, formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Trails and measures of many shots, as a Parquet dataset and a report. A run does only what is missing or "
                    "changed.")
    add = made.add_argument
    add("shots", nargs="+", metavar="SHOTS", help="a folder, patterns of scenes, or a table (.csv, .parquet)")
    add("--out", required=True, metavar="FOLDER", help="the folder of the dataset and of report.html")
    add("--version", action="version", version="vantorelix-shots " + vantorelix.__version__)
    add("-q", "--quiet", action="store_true", help="prints nothing but errors")
    _add_settings(made.add_argument_group("what is measured, as in vantorelix trails").add_argument)
    _add_run(made.add_argument_group("the run").add_argument)
    return made


def _add_settings(add: Any) -> None:
    add("--select", action="append", default=[], metavar="PATTERN", help="the objects that a pattern stands for")
    add("--exclude", action="append", default=[], metavar="PATTERN", help="leaves objects out")
    add("--ignore-case", action="store_true", help="patterns take the letters A to Z for a to z")
    add("--all", action="store_true", help="every object, animated or not")
    add("--samples-per-frame", type=_count, default=1, metavar="N", help="samples a frame, at least 1")
    add("--fps", type=float, metavar="RATE", help="frames a second of glTF scenes")
    add("--axis", choices=("y-up", "z-up"), help="turns FBX scenes")
    add("--unit", choices=("mm", "cm", "m", "km", "in", "ft", "yd"), help="converts the lengths of FBX scenes")


def _add_run(add: Any) -> None:
    add("--workers", type=_count, metavar="N", help="processes on this machine; default: one for each core")
    add("--scheduler", metavar="ADDRESS", help="a Dask scheduler that runs, instead of processes on this machine")
    add("--again", action="store_true", help="does shots that failed again, even if nothing changed")
    add("--prune", action="store_true", help="removes what the folder holds of shots that are no longer in the list")
    add("--order", default="", metavar="MEASURE", help="the measure by which the report begins")
    add("--pages", type=_count, default=report.PAGES, metavar="N", help="how many of the worst shots get a page")
    add("--job", metavar="FILE", help="runs nothing, and writes an Open Job Description template")
    add("--chunk", type=_count, default=_CHUNK, metavar="N", help="shots that a task of the job has at first")
    add("--only", type=_indices, metavar="INDICES", help="does these shots of the list in this process, as 0-19; no report")
    add("--report", action="store_true", help="only writes the report")


def _count(text: str) -> int:
    value = int(text)
    if value < 1:
        raise argparse.ArgumentTypeError("it has to be at least 1, not %d" % value)
    return value


def _indices(text: str) -> List[int]:
    """The indices of an Open Job Description chunk, as 0-19, 3,5 or 0-20:2."""
    found: List[int] = []
    for part in text.split(","):
        ends, _, step = part.partition(":")
        first, _, last = ends.strip().partition("-")
        found.extend(range(int(first), int(last or first) + 1, int(step or 1)))
    return found


def main(arguments: Sequence[str]) -> int:
    """Runs the command; returns its exit code."""
    options = parser().parse_args(arguments)
    try:
        return _run(options)
    except UsageError as error:
        return _say(error, 2)
    except (WriteError, ClusterError) as error:
        if options.only:
            print("openjd_fail: %s" % error, flush=True)
        return _say(error, 1)
    except KeyboardInterrupt:
        return _say("ended; what is done stays done, and the same command continues", 130)


def _say(text: object, code: int) -> int:
    print("vantorelix-shots: %s" % text, file=sys.stderr)
    return code


def _run(options: argparse.Namespace) -> int:
    settings = _settings(options)
    shots = read_shots(options.shots, schemas.taken())
    store = Store(options.out, uuid.uuid4().hex)
    store.prepare()
    if options.job:
        job.write(options.job, shots, settings, store, options.chunk)
        return 0
    if options.only:
        return _only([_at(shots, index) for index in options.only], settings, store, options)
    if not options.report:
        _measure(shots, settings, store, options)
    return _report(shots, settings, store, options)


def _settings(options: argparse.Namespace) -> Settings:
    return Settings(tuple(options.select), tuple(options.exclude), options.ignore_case, options.all,
                    options.samples_per_frame, options.fps, options.axis, options.unit)


def _measure(shots: List[Shot], settings: Settings, store: Store, options: argparse.Namespace) -> None:
    """Does what is missing or changed."""
    todo = plan.make(shots, settings, store, options.again)
    progress = Progress(len(todo.todo), None if options.quiet else sys.stderr)
    progress.note("%d shots, %d to do" % (len(shots), len(todo.todo)))
    _tidy(todo, store, progress, options.prune)
    if todo.todo:
        task = Task([], settings, store.folder, run=store.run, again=options.again)
        cluster.run(plan.groups(todo), task, Where(options.scheduler, options.workers), progress)
        progress.end()


def _tidy(todo: plan.Plan, store: Store, progress: Progress, prune: bool) -> None:
    kept = {record["shot"]: record for record in todo.kept}
    for shot in todo.relabelled:
        store.write_record(shot, kept[shot.name])
    for record in todo.gone if prune else []:
        store.remove(record["shot"])
    if todo.gone and not prune:
        progress.note("%d shots that are no longer in the list stay in the dataset; --prune removes them" % len(todo.gone))


def _report(shots: List[Shot], settings: Settings, store: Store, options: argparse.Namespace) -> int:
    try:
        found = report.write(shots, settings, store, options.order, options.pages)
    except ValueError as error:
        raise UsageError("--order: %s" % error) from None
    if not options.quiet:
        print(os.path.join(options.out, "report.html"))
    return 0 if options.report or all(line.state == "done" for line in found.lines) else 1


def _at(shots: List[Shot], index: int) -> Shot:
    if not 0 <= index < len(shots):
        raise UsageError("--only: there is no shot %d; the list has %d, from 0" % (index, len(shots)))
    return shots[index]


def _only(shots: List[Shot], settings: Settings, store: Store, options: argparse.Namespace) -> int:
    """A task of a job: its messages go to the farm, and a shot that fails is recorded and does not fail the task."""
    ended: List[Outcome] = []

    def tell(outcome: Outcome) -> None:
        ended.append(outcome)
        failed = sum(found.error is not None for found in ended)
        print("openjd_progress: %.1f" % (100.0 * len(ended) / len(shots)))
        print("openjd_status: %d of %d shots done, %d failed" % (len(ended) - failed, len(shots), failed), flush=True)
        if outcome.error is not None:
            print("%s: %s" % (outcome.shot, outcome.error), flush=True)

    try:
        alone.do_guarded(Task(shots, settings, store.folder, run=store.run, again=options.again), tell)
    finally:
        store.end_run()
    return 0
