"""The run on Dask: tasks on a local cluster or on one that runs already."""

from __future__ import annotations

import contextlib
import importlib.util
import itertools
import logging
import os
import threading
import uuid
from typing import Any, Dict, Iterator, List, NamedTuple, Optional, Sequence

import dask
from distributed import Client, Future, KilledWorker, LocalCluster, as_completed

from . import alone, group, preload
from .group import Task
from .progress import Progress
from .shot import Shot
from .store import Store, WriteError

_LOCAL = {
    "distributed.scheduler.allowed-failures": 1,  # a worker that dies twice at a group: the group is split
}
_KEEP_SECONDS = 2.0
_MOST_DEATHS = 10  # of the workers of a shot that works in a child: nothing that it does ends a worker

_GONE = "the scheduler is gone, or it has given up tasks; run the same command again: it continues"


class ClusterError(Exception):
    """The cluster cannot do the work; no shot is to blame."""


class Where(NamedTuple):
    """Where tasks run."""

    scheduler: Optional[str] = None  # the address of one that runs
    workers: Optional[int] = None  # of a local cluster; None: one for each core


def run(groups: Sequence[List[Shot]], task: Task, where: Where, progress: Progress) -> None:
    """Does all groups. `task` tells everything but the shots.

    Raises WriteError and ClusterError; what is done by then stays done, as it does after KeyboardInterrupt. What workers were
    writing when they were killed is taken away.
    """
    try:
        with _client(where) as client:
            if client.dashboard_link and importlib.util.find_spec("bokeh"):
                progress.note("dashboard: %s" % client.dashboard_link)
            _Run(client, task, progress).do(groups)
    finally:
        Store(task.folder, task.run).end_run()


@contextlib.contextmanager
def _client(where: Where) -> Iterator[Client]:
    if where.scheduler:
        try:
            client = Client(where.scheduler, timeout="10s", set_as_default=False)
        except (OSError, ValueError) as error:
            raise ClusterError("%s: no scheduler answers (%s); start one, or leave --scheduler out" % (
                where.scheduler, error)) from None
        with client:
            yield client
        return
    with dask.config.set(_LOCAL):
        workers = where.workers or cores()
        with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, memory_limit=0,
                          dashboard_address="127.0.0.1:0", silence_logs=logging.CRITICAL,
                          preload=[preload.__name__]) as cluster:
            with _kept(cluster, workers), Client(cluster, set_as_default=False) as client:
                yield client


@contextlib.contextmanager
def _kept(cluster: LocalCluster, workers: int) -> Iterator[None]:
    """Starts workers anew that the cluster has given up: those that died while they began, or began too slowly."""
    ended = threading.Event()

    def keep() -> None:
        while not ended.wait(_KEEP_SECONDS):
            cluster.scale(workers)

    keeper = threading.Thread(target=keep, name="workers", daemon=True)
    keeper.start()
    try:
        yield
    finally:
        ended.set()
        keeper.join()


def cores() -> int:
    """How many this process may use."""
    return len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count() or 1


class _Run:
    """Tasks in flight, and what becomes of those whose worker dies."""

    def __init__(self, client: Client, task: Task, progress: Progress) -> None:
        self._client = client
        self._task = task
        self._progress = progress
        self._names = ("vantorelix-shots-%s-%d" % (uuid.uuid4().hex, number) for number in itertools.count())
        self._shots: Dict[str, List[Shot]] = {}  # of the tasks in flight, by the names of these
        self._deaths: Dict[str, int] = {}  # of workers, by the shot that was in a child of theirs

    def do(self, groups: Sequence[List[Shot]]) -> None:
        futures = [self._submit(group.do, shots) for shots in groups]
        ended = as_completed(futures, raise_errors=False, loop=self._client.loop)
        del futures  # what is done is let go
        try:
            for future in ended:
                shots = self._shots.pop(future.key)
                for again in self._take(future, shots):
                    ended.add(again)
        except BaseException:
            with contextlib.suppress(Exception):
                self._client.cancel(list(ended.futures), force=True)
            raise

    def _take(self, future: Future, shots: List[Shot]) -> List[Future]:
        """Counts what a task tells; returns the tasks that take its place if its worker has died."""
        try:
            outcomes = future.result()
        except KilledWorker:  # at the work, or when a result that was lost with its worker was to be had again
            return self._divided(shots)
        except WriteError:
            raise
        except Exception as error:
            if future.status == "error":
                raise ClusterError(
                    "a worker cannot do the work (%s: %s); see that the workers have this vantorelix with its extra 'shots', "
                    "then run the same command again" % (type(error).__name__, error)) from None
            raise ClusterError(_GONE) from None
        self._progress.add(outcomes)
        return []

    def _divided(self, shots: List[Shot]) -> List[Future]:
        if len(shots) > 1:
            return [self._submit(group.do, half) for half in group.halves(shots)]
        name = shots[0].name
        self._deaths[name] = self._deaths.get(name, 0) + 1
        if self._deaths[name] > _MOST_DEATHS:
            raise ClusterError("workers keep dying, and not by '%s', which was in a process of its own; see what ends them, "
                               "then run the same command again: it continues" % name)
        return [self._submit(alone.do_alone, shots)]

    def _submit(self, function: Any, shots: List[Shot]) -> Future:
        name = next(self._names)
        self._shots[name] = shots
        return self._client.submit(function, self._task._replace(shots=shots), key=name, pure=False)
