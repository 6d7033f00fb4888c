#include "cli/output/output_file.h"

#include <cstdio>
#include <random>
#include <system_error>

#include "cli/terminal/failure.h"
#include "cli/terminal/interrupt.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

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

void OutputFile::flush() {
  check_interrupt();
  if (stdout_) {
    if (std::fwrite(gathered_.data(), 1, gathered_.size(), stdout) != gathered_.size()) fail("cannot be written");
  } else if (!stream_.write(gathered_.data(), static_cast<std::streamsize>(gathered_.size()))) {
    fail("could not be written to its end");
  }
  written_ += gathered_.size();
  gathered_.clear();
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
