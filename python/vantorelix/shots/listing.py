"""The list of shots: from folders, patterns, scene files, or a table."""

from __future__ import annotations

import collections
import glob
import os
from typing import Dict, Iterable, List, NamedTuple, Optional, Sequence, Tuple

from .shot import Ends, Shot, UsageError
from .tables import is_table, read_rows

SCENES = (".ma", ".fbx", ".gltf", ".glb", ".bvh", ".samples")
KNOWN = ("shot", "path", "take", "range", "select")
SEPARATOR = ";"  # between the patterns of a cell


class Found(NamedTuple):
    """A shot that has no name yet, unless its table gives it one."""

    path: str
    take: Optional[str] = None
    range: Optional[Ends] = None
    select: Tuple[str, ...] = ()
    free: Tuple[Tuple[str, str], ...] = ()
    name: str = ""


def read_shots(given: Sequence[str], taken: Iterable[str] = ()) -> List[Shot]:
    """The shots that the command line names, in order: each a folder, a pattern, a scene, or a table (.csv, .parquet).

    taken: column names that free columns of a table cannot have. Raises UsageError: nothing there, a table that is not
    understood, names that are not unique.
    """
    found = [shot for name in given for shot in _read(name, frozenset(taken))]
    if not found:
        raise UsageError("%s: there are no shots; name a folder of scenes, patterns, or a table" % ", ".join(given))
    return _named(found)


def _read(name: str, taken: Iterable[str]) -> List[Found]:
    if os.path.isdir(name):
        return [Found(path) for path in _scenes_below(name)]
    if not os.path.exists(name) and glob.has_magic(name):
        return [Found(os.path.abspath(path)) for path in sorted(glob.glob(name, recursive=True)) if os.path.isfile(path)]
    if is_table(name):
        return _from_table(name, taken)
    if not os.path.exists(name):
        raise UsageError("%s: no such file or folder; name a folder of scenes, patterns, or a table" % name)
    return [Found(os.path.abspath(name))]


def _scenes_below(folder: str) -> List[str]:
    found = []
    for place, folders, files in os.walk(os.path.abspath(folder)):
        folders.sort()
        found.extend(os.path.join(place, name) for name in sorted(files) if name.lower().endswith(SCENES))
    return found


def _from_table(table: str, taken: Iterable[str]) -> List[Found]:
    columns, rows = read_rows(table)
    if "path" not in columns:
        raise UsageError("%s: the table has no column 'path'; its columns are %s" % (table, ", ".join(columns)))
    free = [column for column in columns if column not in KNOWN]
    for column in free:
        if not column or column in taken:
            raise UsageError("%s: a column cannot be called '%s', which the results use; rename it" % (table, column))
    folder = os.path.dirname(os.path.abspath(table))
    return [_from_row("%s: row %d" % (table, number), row, folder, free) for number, row in enumerate(rows, 1)]


def _from_row(where: str, row: Dict[str, str], folder: str, free: Sequence[str]) -> Found:
    if not row["path"]:
        raise UsageError("%s: the path is missing" % where)
    patterns = tuple(pattern.strip() for pattern in row.get("select", "").split(SEPARATOR) if pattern.strip())
    return Found(
        path=os.path.normpath(os.path.join(folder, row["path"])),
        take=row.get("take") or None,
        range=_range(where, row.get("range", "")),
        select=patterns,
        free=tuple((column, row[column]) for column in free),
        name=row.get("shot", ""),
    )


def _range(where: str, text: str) -> Optional[Ends]:
    if not text:
        return None
    try:
        first, last = [float(end) if end.strip() else None for end in text.split(":")]
    except ValueError:
        raise UsageError("%s: '%s' is not a range; write FIRST:LAST, as in 10:60" % (where, text)) from None
    return first, last


def _named(found: Sequence[Found]) -> List[Shot]:
    nameless = [shot.path for shot in found if not shot.name]
    common = _common_folder(nameless)
    names = [shot.name or _name_below(common, shot) for shot in found]
    twice = [name for name, count in collections.Counter(names).items() if count > 1]
    if twice:
        raise UsageError(
            "several shots are called %s%s; give each a name of its own in a column 'shot' of a table"
            % (", ".join("'%s'" % name for name in twice[:5]), " and %d more" % (len(twice) - 5) if twice[5:] else "")
        )
    return [Shot(name, shot.path, shot.take, shot.range, shot.select, shot.free) for name, shot in zip(names, found)]


def _common_folder(paths: Sequence[str]) -> str:
    folders = [os.path.dirname(path) for path in paths]
    try:
        return os.path.commonpath(folders) if folders else ""
    except ValueError:  # several drives
        return ""


def _name_below(common: str, shot: Found) -> str:
    path = os.path.relpath(shot.path, common) if common else shot.path
    return path.replace(os.sep, "/") + (":" + shot.take if shot.take else "")
