"""Python's package manager in an environment of its own, for tools that need one of its packages."""

import os
import subprocess
import venv


def interpreter(folder):
    """The interpreter of the environment in `folder`, which is made when it is not there."""
    python = os.path.join(folder, "bin", "python")
    if not os.path.exists(python):
        venv.create(folder, with_pip=True)
    return python


def pip(folder, verb, requirements, *options):
    """`pip VERB` with what the file `requirements` names, each package with its hash."""
    subprocess.run([interpreter(folder), "-m", "pip", verb, "--quiet", "--disable-pip-version-check", "--require-hashes",
                    "-r", requirements] + list(options), check=True)
