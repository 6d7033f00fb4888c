#include "cli/output/output_file.h"
#include "base/number_text.h"

#include <cstdio>
#include <random>
#include <system_error>

#include "cli/output/text.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/interrupt.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kBuffer = 1 << 16;

fs::path resolved(const fs::path& path) {
  std::error_code ignored;
  if (!fs::is_symlink(path, ignored)) return path;
  const fs::path target = fs::weakly_canonical(path, ignored);
  return target.empty() ? path : target;
}

fs::path beside(const fs::path& target) {
  fs::path name = ".";
  name += target.filename();
  name += "." + std::to_string(std::random_device{}()) + ".part";
  return target.parent_path() / name;
}

}  // namespace

bool OutputFile::means_stdout(const fs::path& path) { return path.parent_path().empty() && path.stem() == "-"; }

OutputFile::OutputFile(const fs::path& path) : path_(path) {
  buffer_.reserve(kBuffer + 64);
  if (means_stdout(path)) {
    stdout_ = true;
    return;
  }
  check_destination(path);
  target_ = resolved(path);
  std::error_code ignored;
  const bool straight = fs::exists(target_, ignored) && !fs::is_regular_file(target_, ignored);
  if (!straight) temporary_ = beside(target_);
  stream_.open(straight ? target_ : temporary_, std::ios::binary);
  if (!stream_) {
    temporary_.clear();
    fail("cannot be written");
  }
}

OutputFile::~OutputFile() {
  if (temporary_.empty()) return;
  stream_.close();
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

OutputFile& OutputFile::operator<<(std::string_view text) {
  buffer_ += text;
  if (buffer_.size() >= kBuffer) flush();
  return *this;
}

OutputFile& OutputFile::operator<<(double value) {
  append_number(buffer_, value);
  if (buffer_.size() >= kBuffer) flush();
  return *this;
}

OutputFile& OutputFile::operator<<(std::int64_t value) { return *this << std::string_view(std::to_string(value)); }

void OutputFile::flush() {
  check_interrupt();
  if (stdout_) {
    if (std::fwrite(buffer_.data(), 1, buffer_.size(), stdout) != buffer_.size()) fail("cannot be written");
  } else if (!stream_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()))) {
    fail("could not be written to its end");
  }
  written_ += buffer_.size();
  buffer_.clear();
}

void OutputFile::commit() {
  flush();
  if (stdout_) {
    if (std::fflush(stdout) != 0) fail("cannot be written");
    return;
  }
  stream_.close();
  if (!stream_) fail("could not be written to its end");
  if (temporary_.empty()) return;
  std::error_code error;
  fs::rename(temporary_, target_, error);
  if (error) fail("cannot be put in its place (" + error.message() + ")");
  temporary_.clear();
}

void OutputFile::fail(const std::string& what) const {
  throw Failure((stdout_ ? std::string("standard output") : path_.string()) + ": " + what +
                "; check the folder, its permissions and the free space");
}

void check_destination(const fs::path& path) {
  if (OutputFile::means_stdout(path)) return;
  std::error_code ignored;
  const fs::path folder = path.parent_path();
  if (!folder.empty() && !fs::is_directory(folder, ignored))
    throw Failure(path.string() + ": its folder does not exist; make it first, or name another");
  if (fs::is_directory(path, ignored)) throw Failure(path.string() + ": is a folder; name a file in it");
}

}  // namespace vantorelix::cli
