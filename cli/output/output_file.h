// A text file that appears whole or not at all.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/text_sink.h"

namespace vantorelix::cli {

// Written to a temporary file beside its place and renamed by commit(); without it the destructor removes what was
// written. "-" with an extension ("-.json") is standard output; a pipe or device is written straight. Every failure is
// a Failure that names the file. Notices interrupts while writing.
class OutputFile : public TextSink {
 public:
  explicit OutputFile(const std::filesystem::path& path);
  ~OutputFile() override;

  std::uint64_t written() const { return written_ + gathered_.size(); }
  bool is_stdout() const { return stdout_; }
  const std::filesystem::path& path() const { return path_; }
  void commit();
  // Several at once: the first takes its place when all are complete, and from then on no interrupt is noticed.
  static void commit(const std::vector<std::unique_ptr<OutputFile>>& files);

  // Whether a path means standard output.
  static bool means_stdout(const std::filesystem::path& path);

 private:
  void flush() override;
  // Writes what is left and closes. After that only the place is missing.
  void complete();
  void take_place();
  // Ends the text with what to check, and `first` is how that begins.
  [[noreturn]] void fail(const std::string& what, const std::string& first = "check") const;

  std::filesystem::path path_;       // as it was given
  std::filesystem::path target_;     // where the links of path_ lead
  std::filesystem::path temporary_;  // empty when written straight
  File file_;                        // empty for standard output, and once complete
  std::uint64_t written_ = 0;
  bool stdout_ = false;
};

// Throws Failure unless a file can be put there: its folder exists and it is not a folder itself.
void check_destination(const std::filesystem::path& path);

}  // namespace vantorelix::cli
