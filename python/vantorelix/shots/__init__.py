"""Trails and measures of a whole show: thousands of shots, on the cores of one machine, a Dask cluster or a render farm.

The command `vantorelix-shots` is made of this package; docs/shots.md describes it. It needs CPython 3.10 or later, and what
`pip install 'vantorelix[shots]'` installs along: Dask and Arrow.
"""

from __future__ import annotations

import sys as _sys

NEEDS = "vantorelix.shots needs Dask and Arrow on CPython 3.10 or later; install them with: pip install 'vantorelix[shots]'"

try:
    import distributed as _distributed
    import pyarrow as _pyarrow
except ImportError as error:
    _told = "%s (%s)" % (NEEDS, error)
    if _sys.argv[:1] == ["-m"]:  # what Python has there while it looks for the module of `python -m`
        _sys.exit(_told)
    raise ImportError(_told) from None

del _distributed, _pyarrow, _sys
