"""How the peers are timed."""

import time

REPEATS = 3


def fastest(function):
    """Seconds of the fastest of REPEATS calls."""
    seconds = []
    for _ in range(REPEATS):
        start = time.perf_counter()
        function()
        seconds.append(time.perf_counter() - start)
    return min(seconds)
