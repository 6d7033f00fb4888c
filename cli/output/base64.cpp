#include "cli/output/base64.h"

#include <bit>

namespace vantorelix::cli {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
// A multiple of three, so that only the last block of all is padded.
constexpr std::size_t kBlock = 3 * 4096;

}  // namespace

Base64::Base64(TextSink& out) : out_(out) { block_.reserve(kBlock); }

void Base64::byte(std::uint8_t value) {
  block_ += static_cast<char>(value);
  ++bytes_;
  if (block_.size() == kBlock) encode();
}

void Base64::integer(std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) byte(static_cast<std::uint8_t>(value >> shift));
}

void Base64::real(float value) { integer(std::bit_cast<std::uint32_t>(value)); }

void Base64::real(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  integer(static_cast<std::uint32_t>(bits));
  integer(static_cast<std::uint32_t>(bits >> 32));
}

void Base64::pad(std::uint64_t unit) {
  while (bytes_ % unit != 0) byte(0);
}

void Base64::finish() { encode(); }

void Base64::encode() {
  std::string text;
  text.reserve(block_.size() / 3 * 4 + 4);
  for (std::size_t i = 0; i < block_.size(); i += 3) {
    const std::size_t count = block_.size() - i < 3 ? block_.size() - i : 3;
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k)
      bits = bits << 8 | (k < count ? static_cast<std::uint8_t>(block_[i + k]) : std::uint32_t{0});
    for (std::size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[bits >> (18 - 6 * k) & 63] : '=';
  }
  out_ << text;
  block_.clear();
}

}  // namespace vantorelix::cli
