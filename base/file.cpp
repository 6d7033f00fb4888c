#include "base/file.h"

namespace vantorelix {

File open_file(const std::filesystem::path& path, const char* mode) {
#ifdef _WIN32
  return File(_wfopen(path.c_str(), std::filesystem::path(mode).c_str()));
#else
  return File(std::fopen(path.c_str(), mode));
#endif
}

}  // namespace vantorelix
