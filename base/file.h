// Files as streams of the C library, which a signal can break off while they wait.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

namespace vantorelix {

// Standard input stays open: it is not a File's alone.
struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// As fopen, with any path on every system: empty where the file cannot be opened, with the cause in errno. That is
// EINTR when a signal came while a pipe waited for its other end.
File open_file(const std::filesystem::path& path, const char* mode);

}  // namespace vantorelix
