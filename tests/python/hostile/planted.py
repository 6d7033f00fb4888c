"""Cases that do not hold, so that it is seen how the suite tells them."""

import ctypes
import os
import time


def wrong():
    raise AssertionError("this is wrong")


def cases(full):
    yield "nothing", lambda: None
    yield "a wrong result", wrong
    yield "a crash", lambda: ctypes.string_at(16)
    yield "an exit", lambda: os._exit(3)
    yield "no end", lambda: time.sleep(1000)
    yield "the last", lambda: None
