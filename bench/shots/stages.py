"""Runs vantorelix-shots, and notes the seconds of its stages: stages.py SECONDS.json ARGUMENT...

    cluster   starts with the first process and ends with the last; holds the next three
      start   until scheduler and workers are there
      tasks   the work of the shots
      end     until all of them are gone
    report    report.html and its pages
"""

import contextlib
import json
import sys
import time

from vantorelix.shots import cluster, command, report

seconds = {}


@contextlib.contextmanager
def stage(name):
    begin = time.perf_counter()
    try:
        yield
    finally:
        seconds[name] = time.perf_counter() - begin


def staged(name, function):
    def timed(*arguments, **options):
        with stage(name):
            return function(*arguments, **options)

    return timed


@contextlib.contextmanager
def client(where, make=cluster._client):
    with contextlib.ExitStack() as held:
        with stage("start"):
            made = held.enter_context(make(where))
        yield made
        with stage("end"):
            held.close()


def main(out, *arguments):
    cluster._client = client
    cluster._Run.do = staged("tasks", cluster._Run.do)
    cluster.run = staged("cluster", cluster.run)
    report.write = staged("report", report.write)
    code = command.main(arguments)
    with open(out, "w", encoding="ascii") as file:
        json.dump(seconds, file)
    return code


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
