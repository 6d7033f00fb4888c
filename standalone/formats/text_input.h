// The text of a scene file, read in pieces: bytes out, lines counted, errors that name the line.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/file.h"
#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

// Where the bytes come from.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Up to `limit` bytes; 0 at the end. Throws FormatError when reading fails.
  virtual std::size_t read(char* to, std::size_t limit) = 0;
  // Bytes in all, 0 when unknown. Only an estimate: a file may change while it is read.
  virtual std::uint64_t size() const = 0;
  // How error texts call it.
  virtual const std::string& name() const = 0;
};

class FileSource : public ByteSource {
 public:
  // Throws FormatError when the file cannot be opened. A signal that comes while a pipe is waited for, here or in
  // read(), tells the options' progress at once; unless that throws, waiting goes on. The options must outlive the
  // source.
  FileSource(const std::filesystem::path& file, const ReadOptions& options);
  std::size_t read(char* to, std::size_t limit) override;
  std::uint64_t size() const override { return size_; }
  const std::string& name() const override { return name_; }

 private:
  // Whether the last call failed for nothing but a signal.
  bool was_broken_off() const;

  const ReadOptions& options_;
  std::string name_;
  File file_;
  std::uint64_t size_ = 0;
};

// The text must outlive the source.
class MemorySource : public ByteSource {
 public:
  MemorySource(std::string_view text, std::string name) : name_(std::move(name)), rest_(text), size_(text.size()) {}
  std::size_t read(char* to, std::size_t limit) override;
  std::uint64_t size() const override { return size_; }
  const std::string& name() const override { return name_; }

 private:
  std::string name_;
  std::string_view rest_;
  std::uint64_t size_;
};

// Passes progress on to whoever listens, at most four times a second. Work that takes long calls it again and again.
class ProgressReport {
 public:
  explicit ProgressReport(const ReadOptions& options) : options_(options), told_(std::chrono::steady_clock::now()) {}
  // The same arguments as ReadOptions::progress. Throws what the listener throws.
  void tell(std::uint64_t done, std::uint64_t total);
  // Of work that is not measured in bytes.
  void tell() { tell(0, 0); }

 private:
  const ReadOptions& options_;
  std::chrono::steady_clock::time_point told_;
};

// All bytes at once, for formats that are not text.
class WholeFile {
 public:
  // Throws FormatError beyond 4 GB.
  WholeFile(ByteSource& source, const ReadOptions& options);
  std::string_view bytes() const { return {memory_.get(), size_}; }

 private:
  std::unique_ptr<char[]> memory_;  // may be longer
  std::size_t size_ = 0;
};

// A window of fixed size over a source. A line ends at LF, CR LF or CR. A UTF-8 byte order mark at the start is
// skipped; every other byte, NUL included, comes through as it is.
class TextInput {
 public:
  static constexpr std::size_t kWindow = std::size_t{1} << 18;

  // `window` is for tests of what lies across its edges; at least kToken bytes are taken.
  TextInput(ByteSource& source, const ReadOptions& options, std::size_t window = kWindow);

  // The longest run of bytes that `ready` can promise.
  static constexpr std::size_t kToken = 512;

  bool at_end() { return position_ == end_ && !refill(); }
  // The byte to come; only when not at_end().
  char peek() const { return *position_; }
  // Takes one byte, counting lines.
  void skip() {
    const char c = *position_++;
    if (c == '\n' ? !after_return_ : c == '\r') ++line_;
    after_return_ = c == '\r';
  }
  // Sees to it that the next kToken bytes, or all that are left, lie between begin() and end().
  void ready() {
    if (static_cast<std::size_t>(end_ - position_) < kToken) refill();
  }
  const char* begin() const { return position_; }
  const char* end() const { return end_; }
  // Takes what lies before `next`, which must hold no end of line.
  void advance(const char* next) {
    after_return_ = after_return_ && next == position_;
    position_ = next;
  }

  std::size_t line() const { return line_; }
  // How many bytes may still come; an estimate, 0 when the size is unknown.
  std::uint64_t left() const;

  // Throws FormatError at the present line.
  [[noreturn]] void fail(const std::string& text) const { fail(line_, text); }
  [[noreturn]] void fail(std::size_t line, const std::string& text) const;

 private:
  bool refill();

  ByteSource& source_;
  ProgressReport progress_;
  std::uint64_t limit_;  // how many bytes may come in all
  std::size_t window_;
  std::unique_ptr<char[]> buffer_;
  const char* position_;
  const char* end_;
  bool ended_ = false;
  bool after_return_ = false;
  std::size_t line_ = 1;
  std::uint64_t taken_ = 0;
};

// Which of a file's takes, or whatever its format calls them (`kind`), bears the name; the first for an empty name.
// Throws FormatError with the names there are.
std::size_t take_named(const std::string& name, const std::vector<Take>& takes, const std::string& kind,
                       const std::string& file);

// What a file says, fit for an error text: at most 40 bytes, all printable, in single quotes.
std::string shown(std::string_view text);

// The readers proper: as read_bvh and read_maya_ascii, from any source, with any window.
Scene read_bvh(ByteSource& source, const ReadOptions& options, std::size_t window = TextInput::kWindow);
Scene read_maya_ascii(ByteSource& source, const ReadOptions& options, std::size_t window = TextInput::kWindow);

}  // namespace vantorelix::standalone
