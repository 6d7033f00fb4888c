"""Says how far a run is: one line that changes on a terminal, now and then a line elsewhere."""

from __future__ import annotations

import time
from typing import Callable, Optional, Sequence, TextIO

from .group import Outcome

_TERMINAL_PAUSE, _LINE_PAUSE = 0.2, 10.0  # seconds between two lines


class Progress:
    """Counts shots. `stream` None says nothing."""

    def __init__(self, total: int, stream: Optional[TextIO], clock: Callable[[], float] = time.monotonic) -> None:
        self._total = total
        self._stream = stream
        self._clock = clock
        self._start = self._said = clock()
        self._live = stream is not None and stream.isatty()
        self.done = 0
        self.failed = 0

    def note(self, text: str) -> None:
        """A line that stays."""
        if self._stream:
            print(("\r\033[K" if self._live else "") + text, file=self._stream, flush=True)

    def add(self, outcomes: Sequence[Outcome]) -> None:
        """Shots have ended."""
        for outcome in outcomes:
            self.done += outcome.error is None
            self.failed += outcome.error is not None
            if outcome.error is not None:
                self.note("%s: %s" % (outcome.shot, outcome.error))
        now = self._clock()
        if self._stream and now - self._said >= (_TERMINAL_PAUSE if self._live else _LINE_PAUSE):
            self._said = now
            print(("\r\033[K%s" if self._live else "%s\n") % self.line(), end="", file=self._stream, flush=True)

    def line(self) -> str:
        """done, failed, rate, time left."""
        ended, seconds = self.done + self.failed, self._clock() - self._start
        rate = ended / seconds if seconds > 0 else 0.0
        left = _duration((self._total - ended) / rate) if rate else "?"
        return "%d of %d shots done, %d failed, %.1f a second, %s left" % (self.done, self._total, self.failed, rate, left)

    def end(self) -> None:
        self.note("%d shots done, %d failed, in %s" % (self.done, self.failed, _duration(self._clock() - self._start)))


def _duration(seconds: float) -> str:
    whole = int(seconds + 0.5)
    if whole >= 3600:
        return "%d h %02d min" % (whole // 3600, whole % 3600 // 60)
    return "%d min %02d s" % (whole // 60, whole % 60) if whole >= 60 else "%d s" % whole
