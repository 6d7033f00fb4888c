// Bytes as text, on their way into a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/text_sink.h"

namespace vantorelix::cli {

// Writes base64 without line breaks, a few kilobytes at a time. Nothing is complete before finish(), called once.
class Base64 {
 public:
  explicit Base64(TextSink& out);

  void byte(std::uint8_t value);
  // Least significant byte first.
  void integer(std::uint32_t value);
  void real(float value);
  void real(double value);
  // Zeros up to a multiple of `unit` bytes from the start.
  void pad(std::uint64_t unit);
  std::uint64_t bytes() const { return bytes_; }
  void finish();

 private:
  void encode();

  TextSink& out_;
  std::string block_;
  std::uint64_t bytes_ = 0;
};

}  // namespace vantorelix::cli
