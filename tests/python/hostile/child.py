"""Runs cases of a group in this process, and keeps a journal of which one is running.

    child.py GROUP full|part [--start N] [--only TEXT] [--journal FD]

Each line of the journal is "begin NAME", "fail TEXT", "end" or "done"; without --journal it goes to standard output.
"""

import argparse
import importlib
import os
import resource
import sys
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))


def run(case):
    """What went wrong, or None."""
    try:
        case()
        return None
    except BaseException:  # an interrupt that comes out where none was sent is a failure like any other
        return traceback.format_exc(limit=-6)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("group")
    parser.add_argument("part", choices=["full", "part"])
    parser.add_argument("--start", type=int, default=0, metavar="N")
    parser.add_argument("--only", default="", metavar="TEXT")
    parser.add_argument("--journal", type=int, default=1, metavar="FD")
    options = parser.parse_args()
    sys.path.insert(0, os.path.dirname(HERE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    def note(text):
        os.write(options.journal, text.replace("\n", "\x1f").encode("utf-8", "replace") + b"\n")

    cases = importlib.import_module("hostile." + options.group).cases(options.part == "full")
    for number, (name, case) in enumerate(pair for pair in cases if options.only in pair[0]):
        if number < options.start:
            continue
        note("begin " + name)
        trouble = run(case)
        if trouble:
            note("fail " + trouble)
        note("end")
    note("done")


if __name__ == "__main__":
    main()
