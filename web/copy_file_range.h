// What zig's C++ library believes the C library to have. Nothing here copies files.
#pragma once

#include <cerrno>
#include <cstddef>

template <class Offset>
std::ptrdiff_t copy_file_range(int, Offset*, int, Offset*, std::size_t, unsigned) {
  errno = ENOSYS;
  return -1;
}
