"""What a program or shared library of 64-bit Linux asks of the machine that loads it, and what it offers."""

import re
import struct

_DYNAMIC, _DYNAMIC_SYMBOLS, _VERSIONS_NEEDED, _VERSION_OF_SYMBOLS = 6, 11, 0x6FFFFFFE, 0x6FFFFFFF
_NEEDED, _WEAK = 1, 2


class Library(object):
    """`needed`: names of libraries; `versions`: names such as "GLIBC_2.3"; `exported`: names of symbols; `unversioned`: names
    of symbols that somebody in the process must have, of no version."""

    def __init__(self, data):
        if data[:6] != b"\x7fELF\x02\x01":
            raise ValueError("no 64-bit little-endian ELF file")
        self._data = data
        at, size, count = struct.unpack_from("<Q", data, 40) + struct.unpack_from("<HH", data, 58)
        # type, offset, size, index of the section that holds its names
        sections = [struct.unpack_from("<4xI16xQQI", data, at + i * size) for i in range(count)]
        self.needed, self.versions, self.exported, self.unversioned = [], [], [], []
        self._versioned = next(offset for kind, offset, _, _ in sections if kind == _VERSION_OF_SYMBOLS)
        for kind, offset, size, link in sections:
            read = {_DYNAMIC: self._dynamic, _DYNAMIC_SYMBOLS: self._symbols, _VERSIONS_NEEDED: self._versions}.get(kind)
            if read:
                read(offset, size, sections[link][1])

    def _text(self, offset):
        return self._data[offset:self._data.index(b"\0", offset)].decode("ascii")

    def _dynamic(self, offset, size, names):
        for tag, value in struct.iter_unpack("<QQ", self._data[offset:offset + size]):
            if tag == _NEEDED:
                self.needed.append(self._text(names + value))

    def _symbols(self, offset, size, names):
        for i, (name, info, section) in enumerate(struct.iter_unpack("<IBxH16x", self._data[offset:offset + size])):
            if section and name:
                self.exported.append(self._text(names + name))
            elif name and info >> 4 != _WEAK and struct.unpack_from("<H", self._data, self._versioned + 2 * i)[0] < 2:
                self.unversioned.append(self._text(names + name))

    def _versions(self, offset, size, names):
        step = 1
        while step:
            count, first, step = struct.unpack_from("<2xH4xII", self._data, offset)
            at = offset + first
            for _ in range(count):
                name, following = struct.unpack_from("<8xII", self._data, at)
                self.versions.append(self._text(names + name))
                at += following
            offset += step


# Of the machine that loads it: glibc in parts, and its loader.
LIBRARIES = {"libc.so.6", "libm.so.6", "libpthread.so.0", "libdl.so.2", "librt.so.1", "ld-linux-x86-64.so.2"}


def problems(library):
    """Why a machine with glibc 2.17, and no C++ library that is known, would not load it (into Python, if it is a module)."""
    found = ["needs " + name for name in library.needed if name not in LIBRARIES]
    for version in library.versions:
        glibc = re.match(r"GLIBC_(\d+)\.(\d+)", version)
        if not glibc or tuple(map(int, glibc.groups())) > (2, 17):
            found.append("needs " + version)
    return found + ["needs " + name for name in library.unversioned if not re.match("_?Py", name)]
