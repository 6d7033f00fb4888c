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
  file_ = open_file(straight ? target_ : temporary_, "wb");
  if (file_) return;
  temporary_.clear();
  fail("cannot be written");
}

OutputFile::~OutputFile() {
  if (temporary_.empty()) return;
  file_.reset();
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

void OutputFile::flush() {
  check_interrupt();
  std::FILE* const file = stdout_ ? stdout : file_.get();
  if (std::fwrite(gathered_.data(), 1, gathered_.size(), file) != gathered_.size())
    fail("could not be written to its end");
  written_ += gathered_.size();
  gathered_.clear();
}

void OutputFile::commit() {
  complete();
  take_place();
}

void OutputFile::commit(const std::vector<std::unique_ptr<OutputFile>>& files) {
  for (const auto& file : files) file->complete();
  for (const auto& file : files) file->take_place();
}

void OutputFile::complete() {
  flush();
  const bool closed = stdout_ ? std::fflush(stdout) == 0 : std::fclose(file_.release()) == 0;
  if (!closed) fail("could not be written to its end");
}

void OutputFile::take_place() {
  if (temporary_.empty()) return;
  std::error_code error;
  fs::rename(temporary_, target_, error);
  if (error)
    fail("cannot be put in its place (" + error.message() + ")",
         "see whether another program has the file open, and check");
  temporary_.clear();
}

void OutputFile::fail(const std::string& what, const std::string& first) const {
  check_interrupt();
  throw Failure((stdout_ ? std::string("standard output") : path_.string()) + ": " + what + "; " + first +
                " the folder, its permissions and the free space");
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
