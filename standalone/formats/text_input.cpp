#include "standalone/formats/text_input.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

namespace vantorelix::standalone {

FileSource::FileSource(const std::filesystem::path& file, const ReadOptions& options)
    : options_(options), name_(file.string()) {
  if (name_ == kStandardInput) {
    name_ = "standard input";
    file_.reset(stdin);
    return;
  }
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw FormatError(name_, 0, "is a folder; name the scene file inside it");
  }
  do {
    file_ = open_file(file, "rb");
  } while (!file_ && was_broken_off());
  if (!file_) throw FormatError(name_, 0, "cannot be opened; check the path and whether you may read it");
  // No buffer of the stream's own: the window is one.
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  const auto size = std::filesystem::file_size(file, error);
  if (!error) size_ = size;
}

std::size_t FileSource::read(char* to, std::size_t limit) {
  for (;;) {
    const std::size_t got = std::fread(to, 1, limit, file_.get());
    const bool failed = std::ferror(file_.get()) != 0;
    if (failed && !was_broken_off())
      throw FormatError(name_, 0, "reading failed part-way; check the disk or copy the file again");
    if (failed) std::clearerr(file_.get());
    if (got != 0 || !failed) return got;
  }
}

bool FileSource::was_broken_off() const {
  if (errno != EINTR) return false;
  if (options_.progress) options_.progress(0, 0);
  return true;
}

std::size_t MemorySource::read(char* to, std::size_t limit) {
  const std::size_t count = std::min(limit, rest_.size());
  if (count != 0) std::memcpy(to, rest_.data(), count);
  rest_.remove_prefix(count);
  return count;
}

void ProgressReport::tell(std::uint64_t done, std::uint64_t total) {
  if (!options_.progress) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - told_ < std::chrono::milliseconds(250)) return;
  told_ = now;
  options_.progress(done, total);
}

WholeFile::WholeFile(ByteSource& source, const ReadOptions& options) {
  constexpr std::size_t kPiece = std::size_t{16} << 20;
  ProgressReport progress(options);
  constexpr std::uint64_t kMax = std::uint64_t{4} << 30;
  // Room for what the source says, and a byte more, which tells whether that was all. Not zeroed: files are large.
  std::size_t room = source.size() <= kMax ? static_cast<std::size_t>(source.size()) + 1 : 1;
  memory_.reset(new char[room]);
  while (size_ <= kMax) {
    if (size_ == room) {
      if (room > SIZE_MAX / 2) throw std::bad_alloc();
      std::unique_ptr<char[]> longer(new char[room *= 2]);
      std::copy_n(memory_.get(), size_, longer.get());
      memory_ = std::move(longer);
    }
    const std::size_t got = source.read(memory_.get() + size_, std::min(kPiece, room - size_));
    if (got == 0) return;
    size_ += got;
    progress.tell();
  }
  throw FormatError(source.name(), 0, "the file has more than 4 GB; export less at once");
}

TextInput::TextInput(ByteSource& source, const ReadOptions& options, std::size_t window)
    : source_(source),
      progress_(options),
      limit_(std::max(source.size(), options.max_unannounced)),
      window_(std::max(window, kToken)),
      buffer_(new char[window_]),
      position_(buffer_.get()),
      end_(position_) {
  ready();
  const std::string_view start(position_, static_cast<std::size_t>(end_ - position_));
  if (start.starts_with("\xEF\xBB\xBF")) position_ += 3;
  if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF")) {
    fail("the text is UTF-16; save the file as UTF-8 or plain text");
  }
}

// Moves what is left to the front and reads behind it until the window is full or the source is done.
bool TextInput::refill() {
  std::size_t held = static_cast<std::size_t>(end_ - position_);
  if (ended_) return held != 0;
  if (held != 0) std::memmove(buffer_.get(), position_, held);
  while (!ended_ && held < window_) {
    const std::size_t got = source_.read(buffer_.get() + held, window_ - held);
    ended_ = got == 0;
    held += got;
    taken_ += got;
    if (taken_ > limit_) fail("the text does not end; give a file instead of a pipe or a device");
  }
  position_ = buffer_.get();
  end_ = position_ + held;
  progress_.tell(taken_ - held, source_.size());
  return held != 0;
}

std::uint64_t TextInput::left() const {
  const std::uint64_t held = static_cast<std::uint64_t>(end_ - position_);
  return held + (source_.size() > taken_ ? source_.size() - taken_ : 0);
}

void TextInput::fail(std::size_t line, const std::string& text) const { throw FormatError(source_.name(), line, text); }

std::size_t take_named(const std::string& name, const std::vector<Take>& takes, const std::string& kind,
                       const std::string& file) {
  constexpr std::size_t kNamed = 20;
  if (name.empty()) return 0;
  std::string known;
  for (std::size_t i = 0; i < takes.size(); ++i) {
    if (takes[i].name == name) return i;
    if (i < kNamed) known += (i == 0 ? " " : ", ") + shown(takes[i].name);
  }
  if (takes.size() > kNamed) known += ", ...";
  throw FormatError(
      file, 0,
      "there is no " + kind + " " + shown(name) + "; the file has" + (takes.empty() ? " no " + kind + "s" : known));
}

std::string shown(std::string_view text) {
  constexpr std::size_t kLimit = 40;
  std::string result = "'";
  for (const char c : text.substr(0, kLimit)) result += c >= ' ' && c <= '~' ? c : '?';
  return result + (text.size() > kLimit ? "...'" : "'");
}

}  // namespace vantorelix::standalone
