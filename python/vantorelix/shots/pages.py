"""Pages of single shots, which the program makes, and the commands that make them."""

from __future__ import annotations

import concurrent.futures
import os
import shlex
import shutil
import subprocess
import sys
from typing import Dict, List, Optional, Sequence, Tuple

from .shot import Settings, Shot
from .store import Store, WriteError, file_name
from .summary import Line

FOLDER = "pages"


def arguments(shot: Shot, settings: Settings) -> List[str]:
    """What the program is told about a shot."""
    found = [shot.path]
    if shot.take:
        found += ["--take", shot.take]
    if shot.range:
        found.append("--range=" + ":".join("" if end is None else "%.17g" % end for end in shot.range))
    for pattern in shot.select or settings.select:
        found += ["--select", pattern]
    for pattern in settings.exclude:
        found += ["--exclude", pattern]
    found += ["--ignore-case"] * settings.ignore_case + ["--all"] * settings.all
    if settings.samples_per_frame != 1:
        found += ["--samples-per-frame", str(settings.samples_per_frame)]
    for name, value in settings.reading(shot.path).items():
        found += ["--" + name, "%s" % value] if value is not None else []
    return found


def command(shot: Shot, settings: Settings) -> str:
    """The command that shows a shot."""
    return " ".join(shlex.quote(word) for word in ["vantorelix", "view"] + arguments(shot, settings))


def program() -> Optional[str]:
    """The program of this installation, or one on PATH."""
    beside = os.path.join(os.path.dirname(sys.executable), "vantorelix")
    return os.environ.get("VANTORELIX_PROGRAM") or (beside if os.path.exists(beside) else shutil.which("vantorelix"))


def make(lines: Sequence[Line], settings: Settings, store: Store, workers: int) -> Dict[str, str]:
    """Pages of these shots, beside which no others stay; returns their paths below the folder, by shot.

    A page that is there for the same input and options is not made anew. A shot of which none can be made has none.
    """
    path = program()
    folder = os.path.join(store.folder, FOLDER)
    try:
        os.makedirs(folder, exist_ok=True)
    except OSError as error:
        raise WriteError("%s cannot be made (%s)" % (folder, error.strerror)) from None
    wanted = {_name(line): line for line in lines if line.state == "done" and path}
    for name in os.listdir(folder):
        if name not in wanted:
            os.unlink(os.path.join(folder, name))

    def page(item: Tuple[str, Line]) -> Tuple[str, str]:
        name, line = item
        target = os.path.join(folder, name)
        there = os.path.exists(target) or _made(path or "", line, settings, target)
        return line.shot.name, FOLDER + "/" + name if there else ""

    with concurrent.futures.ThreadPoolExecutor(workers) as pool:
        return {shot: name for shot, name in pool.map(page, wanted.items()) if name}


def _name(line: Line) -> str:
    record = line.record or {}
    return "%s-%.8s%.8s.html" % (file_name(line.shot.name)[:-len(".parquet")], record["input"], record["options"])


def _made(path: str, line: Line, settings: Settings, target: str) -> bool:
    words = [path, "trails"] + arguments(line.shot, settings)
    words += ["--title", line.shot.name, "--out", target, "--quiet"]
    return subprocess.run(words, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
