#!/usr/bin/env python3
"""The browser for the page's tests: prints the path of a Chromium, or says why there is none and ends with exit code 1.

It looks at the variable VANTORELIX_CHROMIUM, and on PATH for chromium, chromium-browser, google-chrome and
google-chrome-stable. A browser that does not run does not count (Ubuntu's package is a stub for another installer). If
there is none, one is fetched from npm (tools/browser/package.json), which needs the system's libnss3.
"""

import os
import pathlib
import shutil
import subprocess
import sys

import node
import packages

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
NAMES = ("chromium", "chromium-browser", "google-chrome", "google-chrome-stable")


def _runs(path):
    try:
        run = subprocess.run([path, "--version"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=60)
        return run.returncode == 0 and b"Chrom" in run.stdout
    except (OSError, subprocess.TimeoutExpired):
        return False


def fetched():
    """The path of the one from npm, unpacked if necessary; None, with the reason on standard error, if that fails."""
    source, folder = os.path.join(ROOT, "tools", "browser"), os.path.join(ROOT, "build", "browser")
    try:
        with packages.locked(folder):
            packages.install(source, folder)
            # It unpacks itself into the folder for temporary files.
            run = node.find().evaluate('import c from "@sparticuz/chromium"; console.log(await c.executablePath())', folder,
                                       {"TMPDIR": folder}, stdout=subprocess.PIPE, universal_newlines=True)
        path = run.stdout.strip()
        return path if run.returncode == 0 and _runs(path) else None
    except (packages.Failure, OSError) as error:
        print("browser: no Chromium could be fetched: %s" % error, file=sys.stderr)
        return None


def find():
    """A path, or None. If the variable names a browser that does not run, no other one is taken, which would hide
    that."""
    named = os.environ.get("VANTORELIX_CHROMIUM")
    for candidate in [named] if named else NAMES:
        path = shutil.which(candidate)
        if path and _runs(path):
            return path
    return None if named else fetched()


def page(chromium, path):
    """The HTML of a page on this disk after it was opened and its scripts have run; nothing of the network is asked for."""
    words = [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
             "--disable-component-update", "--disable-sync", "--dump-dom", pathlib.Path(path).absolute().as_uri()]
    return subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True, timeout=120).stdout.decode("utf-8")


def tell():
    """find(), with a message on standard error if there is none."""
    path = find()
    if not path:
        print("browser: THIS MACHINE HAS NO CHROMIUM THAT RUNS: the page is not tested in a browser. Install one, or name one in "
              "VANTORELIX_CHROMIUM", file=sys.stderr)
    return path


def main():
    path = tell()
    if path:
        print(path)
    return 0 if path else 1


if __name__ == "__main__":
    sys.exit(main())
