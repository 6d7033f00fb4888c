"""Python's package manager in an environment of its own, for tools that need one of its packages."""

import os
import subprocess
import venv

import clients
from clients import Failure


def interpreter(folder):
    """The interpreter of the environment in `folder`, which is made if it is missing."""
    python = os.path.join(folder, "bin", "python")
    if not os.path.exists(python):
        try:
            venv.create(folder, with_pip=True)
        except (OSError, subprocess.CalledProcessError) as error:
            raise Failure("Python cannot make an environment in %s (%s). Install its module venv (Debian: apt-get install "
                          "python3-venv)" % (folder, error)) from error
    return python


def pip(folder, verb, requirements, *options):
    """Runs `pip VERB` for the packages in the file `requirements`, each of which has its hash. Raises Failure."""
    command = [interpreter(folder), "-m", "pip", verb, "--quiet", "--disable-pip-version-check", "--retries", "1",
               "--require-hashes", "-r", requirements] + list(options)
    clients.fetch("pip", "what %s names" % os.path.relpath(requirements), lambda added: subprocess.run(
        command, env=dict(os.environ, **added), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True))
