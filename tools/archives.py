"""Archives of which the same files give the same bytes: no times, no owners, entries in order."""

import io
import lzma
import os
import tarfile
import zipfile

_ZIP_DATE = (1980, 1, 1, 0, 0, 0)  # the first that a zip knows


def _contents(files):
    """(path, bytes, whether it can be run) of each, by path; a value of `files` is a path or the bytes themselves."""
    for name in sorted(files):
        source = files[name]
        if isinstance(source, bytes):
            yield name, source, False
        else:
            with open(source, "rb") as file:
                yield name, file.read(), os.access(source, os.X_OK)


def _mode(runs):
    return 0o755 if runs else 0o644


def as_zip(files):
    """The bytes of a zip of {path in it: the file, or its bytes}."""
    memory = io.BytesIO()
    with zipfile.ZipFile(memory, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data, runs in _contents(files):
            entry = zipfile.ZipInfo(name, _ZIP_DATE)
            entry.external_attr = (0o100000 | _mode(runs)) << 16
            entry.create_system = 3
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED)
    return memory.getvalue()


def as_tar_xz(files):
    """The bytes of a tar.xz of {path in it: the file, or its bytes}."""
    memory = io.BytesIO()
    with tarfile.open(fileobj=memory, mode="w", format=tarfile.PAX_FORMAT) as archive:
        for name, data, runs in _contents(files):
            entry = tarfile.TarInfo(name)
            entry.size, entry.mode = len(data), _mode(runs)
            archive.addfile(entry, io.BytesIO(data))
    return lzma.compress(memory.getvalue(), preset=9 | lzma.PRESET_EXTREME)


def write(path, data):
    """Writes an archive whole or not at all, and says so."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path + ".part", "wb") as file:
        file.write(data)
    os.replace(path + ".part", path)
    print("%s: %d bytes" % (os.path.relpath(path), len(data)))
