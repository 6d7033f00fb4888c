"""The command `vantorelix-shots`, which says in one sentence what is missing where its extra is not installed."""

from __future__ import annotations

import sys
from typing import Optional, Sequence


def main(arguments: Optional[Sequence[str]] = None) -> int:
    """Runs the command; returns its exit code."""
    try:
        from . import shots  # noqa: F401
    except ImportError as error:
        print(error, file=sys.stderr)
        return 1
    from .shots.command import main as run

    return run(sys.argv[1:] if arguments is None else arguments)


if __name__ == "__main__":
    sys.exit(main())
