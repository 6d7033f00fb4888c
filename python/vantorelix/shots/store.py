"""The folder of results. Every file appears whole, under its final name, or not at all.

A shot has one file in each folder of the dataset, always of the same name, so that no run can leave a shot in it twice. The
one in `shots/` is written last: without it, or while it tells of another input, a shot counts as not done.
"""

from __future__ import annotations

import hashlib
import os
import re
import time
import uuid
from typing import Any, Callable, Dict, Iterator, List, Optional, Sequence

import pyarrow
import pyarrow.parquet

from . import schemas
from .schemas import KINDS, SHOTS
from .shot import Shot

_OLD = 24 * 3600.0  # seconds, after which what a run left under work is of no use to anybody
_RESULT_KINDS = KINDS[:-1]

Record = Dict[str, Any]


class WriteError(Exception):
    """The results cannot be written. No shot is to blame, and nothing is half-written."""


def file_name(shot: str) -> str:
    """The name of a shot's file in each folder: what can be read of the shot's name, and what tells it from all others."""
    readable = re.sub(r"[^A-Za-z0-9._-]+", "_", shot)[-60:].strip("._") or "shot"
    return "%s-%s.parquet" % (readable, hashlib.sha256(shot.encode()).hexdigest()[:16])


class Store:
    """A folder of results. Several processes may write to it at the same time.

    run: what all of them have in common that belong to one run, or "".
    """

    def __init__(self, folder: str, run: str = "") -> None:
        self.folder = os.path.abspath(folder)
        self.run = run
        self._work = os.path.join(self.folder, "work")

    def prepare(self) -> None:
        """Makes the folders, and takes away what a killed run left long ago. Raises WriteError."""
        try:
            for kind in KINDS + ("work",):
                os.makedirs(os.path.join(self.folder, kind), exist_ok=True)
            for name in os.listdir(self._work):
                left = os.path.join(self._work, name)
                if time.time() - os.path.getmtime(left) > _OLD:
                    os.unlink(left)
        except FileNotFoundError:
            pass  # another run took it away
        except OSError as error:
            raise _write_error(self.folder, error) from None

    def end_run(self) -> None:
        """Takes away what processes of this run were at when they were killed. None of them may still be at work."""
        for name in os.listdir(self._work):
            if self.run and name.startswith(self.run + "-"):
                _remove(os.path.join(self._work, name))

    def path(self, kind: str, shot: str) -> str:
        return os.path.join(self.folder, kind, file_name(shot))

    def write(self, kind: str, shot: str, table: pyarrow.Table) -> None:
        """One file of a shot. Raises WriteError."""
        self.replace(self.path(kind, shot), lambda temporary: write_table(table, temporary))

    def replace(self, path: str, make: Callable[[str], None]) -> None:
        """Puts what `make(temporary path)` writes in a file's place, whole. Raises WriteError."""
        _replace(path, os.path.join(self._work, "%s-%s" % (self.run, uuid.uuid4().hex)), make)

    def write_record(self, shot: Shot, record: Record) -> None:
        """The shot's line in the table of shots, with its free columns."""
        row = dict(record, shot=shot.name, path=shot.path, take=shot.take, **dict(shot.free))
        schema = schemas.schema(SHOTS, schemas.free_columns([name for name, _ in shot.free]))
        self.write(SHOTS, shot.name, pyarrow.Table.from_pylist([row], schema=schema))

    def record(self, shot: str) -> Optional[Record]:
        """The shot's line in the table of shots, or None."""
        try:
            return _record_in(self.path(SHOTS, shot))
        except FileNotFoundError:
            return None

    def records(self) -> Iterator[Record]:
        """All lines of the table of shots."""
        return map(_record_in, self._files(SHOTS))

    def _files(self, kind: str) -> List[str]:
        folder = os.path.join(self.folder, kind)
        names = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
        return [os.path.join(folder, name) for name in names if name.endswith(".parquet")]

    def remove_results(self, shot: str) -> None:
        """Takes a shot's samples, keys and measures away."""
        self._remove(shot, _RESULT_KINDS)

    def remove(self, shot: str) -> None:
        """Takes all of a shot away, first the record."""
        self._remove(shot, (SHOTS,) + _RESULT_KINDS)

    def _remove(self, shot: str, kinds: Sequence[str]) -> None:
        for kind in kinds:
            _remove(self.path(kind, shot))


def _remove(path: str) -> None:
    try:
        os.unlink(path)
    except FileNotFoundError:
        pass
    except OSError as error:
        raise _write_error(path, error) from None


def _record_in(path: str) -> Record:
    with pyarrow.parquet.ParquetFile(path) as file:
        return file.read(use_threads=False).to_pylist()[0]


def write_table(table: pyarrow.Table, path: str) -> None:
    """Writes Parquet as the whole dataset has it."""
    texts = [field.name for field in table.schema if pyarrow.types.is_string(field.type)]
    pyarrow.parquet.write_table(table, path, compression="zstd", use_dictionary=texts)


def write_text(path: str, text: str) -> None:
    """Writes a file that lies outside of a folder of results, whole. Raises WriteError."""
    _replace(path, "%s.%s.part" % (path, uuid.uuid4().hex), lambda temporary: write_plain(temporary, text))


def write_plain(path: str, text: str) -> None:
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def _replace(path: str, temporary: str, make: Callable[[str], None]) -> None:
    try:
        make(temporary)
        os.replace(temporary, path)
    except OSError as error:
        raise _write_error(path, error) from None
    finally:
        if os.path.exists(temporary):
            os.unlink(temporary)


def _write_error(path: str, error: OSError) -> WriteError:
    return WriteError("%s cannot be written (%s); see to it that there is space and that the folder can be written to, then "
                      "run the same command again: it continues" % (path, error.strerror or error))
