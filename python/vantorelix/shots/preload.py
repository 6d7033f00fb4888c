"""What a local worker runs first: the terminal's Ctrl-C is for the process that started it, which ends its workers."""

from __future__ import annotations

import signal
from typing import Any


def dask_setup(worker: Any) -> None:
    """Called by Dask in the worker's main thread."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)
