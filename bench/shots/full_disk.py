"""Fills a disk with results, and finds out what becomes of them: full_disk.py LIST OUT [BYTES]

With BYTES the disk is one of that size, mounted at OUT; this needs a mount namespace of its own. Else no file of the run
can be large. Prints what does not hold, and ends with exit code 1 then.
"""

import os
import subprocess
import sys

from processes import COMMAND, LIMITED
from support import broken_in, wrong_in
from vantorelix.shots.listing import read_shots

LARGE = "1G"


def run(words, listed, out):
    done = subprocess.run(words + [listed, "--out", out, "--workers", "2"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          universal_newlines=True)
    return done.returncode, done.stdout


def mount(out, *options):
    subprocess.run(["mount", "-t", "tmpfs", "-o", ",".join(options), "none", out], check=True)


def main(listed, out, size=""):
    os.makedirs(out, exist_ok=True)
    if size:
        mount(out, "size=" + size)
    code, said = run(COMMAND if size else LIMITED, listed, out)
    wrong = []
    if code != 1 or said.count("cannot be written") != 1 or "run the same command again" not in said or "Traceback" in said:
        wrong.append("the full disk is no clear error, but exit code %d and:\n%s" % (code, said))
    wrong += ["%s is broken" % path for path in broken_in(out)]
    if size:
        mount(out, "remount", "size=" + LARGE)
    code, said = run(COMMAND, listed, out)
    if code:
        wrong.append("the next run does not complete, but ends with exit code %d and:\n%s" % (code, said))
    wrong += wrong_in(out, read_shots([listed]))
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
