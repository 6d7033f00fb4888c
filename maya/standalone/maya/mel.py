"""MEL, of which the host covers next to nothing; see maya._ui.evaluate."""

from ._ui import evaluate as eval  # noqa: A001
