"""Watches how much memory processes have while they run."""

import statistics
import threading
import time

import psutil

PAUSE = 0.1  # seconds
MEGABYTE = 1e6
PARTS = 5  # of the second half of a run
STEADY = 16 * MEGABYTE


class Watch:
    """The resident memory of a process while the block runs, in `seen`: (when, bytes)."""

    def __init__(self, process):
        self._process = psutil.Process(process)
        self._ended = threading.Event()
        self._thread = threading.Thread(target=self._look, daemon=True)
        self.seen = []

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._ended.set()
        self._thread.join()

    def _look(self):
        while not self._ended.wait(PAUSE):
            try:
                self.seen.append((time.monotonic(), self._process.memory_info().rss))
            except psutil.NoSuchProcess:
                return

    def peak(self):
        """In megabytes."""
        return max((held for _, held in self.seen), default=0) / MEGABYTE

    def parts(self, until):
        """The medians of equal parts of the second half of the time up to a moment, in megabytes."""
        seen = [held for when, held in self.seen if when <= until]
        half = seen[len(seen) // 2:]
        size = len(half) / PARTS
        return [statistics.median(half[int(part * size):int((part + 1) * size)]) / MEGABYTE for part in range(PARTS) if size >= 1]


def grows(parts):
    """Whether memory rises from each part to the next, and by more than a little."""
    return all(after > before for before, after in zip(parts, parts[1:])) and bool(parts) and (
        parts[-1] - parts[0] > STEADY / MEGABYTE)
