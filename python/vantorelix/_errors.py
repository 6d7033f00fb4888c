"""What goes wrong, as exceptions. Their texts are the program's: what is wrong with what, and what to do about it."""

from __future__ import annotations

from typing import Optional


class Error(Exception):
    """Whatever the engine or a scene refuses. Arguments of a wrong type or value are TypeError and ValueError."""


class FormatError(Error):
    """A scene that cannot be read: "walk.bvh:12: what is wrong; what to do".

    line: where in the file, from 1; None where no line is to blame.
    """

    def __init__(self, text: str, line: Optional[int] = None) -> None:
        super().__init__(text)
        self.line = line


class MissingFileError(Error, FileNotFoundError):
    """A scene file that is not there."""


class NotFoundError(Error, LookupError):
    """A name or pattern that stands for no object, channel or key of the scene."""


class ClosedError(Error):
    """The scene is closed. Trails and arrays that came from it stay."""
