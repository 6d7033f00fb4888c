#!/usr/bin/env python3
"""The browser for the page's tests: prints the path of a Chromium, or says why there is none and ends with exit code 1.

Looked at are the variable VANTORELIX_CHROMIUM and what PATH names chromium, chromium-browser or google-chrome. One that
does not run (Ubuntu's package is a stub for another installer) counts as none; then one is fetched from npm
(tools/browser/package.json), which needs the system's libnss3.
"""

import os
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
    """The path of the one that npm has, unpacked if need be; None, and why on standard error, where that does not work."""
    source, folder = os.path.join(ROOT, "tools", "browser"), os.path.join(ROOT, "build", "browser")
    try:
        with packages.locked(folder):
            packages.install(source, folder)
            # It unpacks itself among the temporary files.
            run = node.find().evaluate('import c from "@sparticuz/chromium"; console.log(await c.executablePath())', folder,
                                       {"TMPDIR": folder}, stdout=subprocess.PIPE, universal_newlines=True)
        path = run.stdout.strip()
        return path if run.returncode == 0 and _runs(path) else None
    except (packages.Failure, OSError) as error:
        print("browser: none can be fetched: %s" % error, file=sys.stderr)
        return None


def find():
    """A path, or None. A browser that was named must run: another one would hide that it does not."""
    named = os.environ.get("VANTORELIX_CHROMIUM")
    for candidate in [named] if named else NAMES:
        path = shutil.which(candidate)
        if path and _runs(path):
            return path
    return None if named else fetched()


def tell():
    """find(), which says on standard error what it means where there is none."""
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
