"""MEL, of which almost nothing is covered; see maya._ui.evaluate."""

from ._ui import evaluate as eval  # noqa: A001
