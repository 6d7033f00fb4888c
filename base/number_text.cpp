#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace vantorelix {
namespace {

// What the first digit counts. A logarithm's last place differs between systems, next to powers of ten the result with
// it.
int power_of_ten(double size) {
  std::array<char, 40> buffer;
  const char* const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), size, std::chars_format::scientific).ptr;
  const char* const sign = std::find(static_cast<const char*>(buffer.data()), end, 'e') + 1;
  int power = 0;
  std::from_chars(sign + 1, end, power);
  return *sign == '-' ? -power : power;
}

}  // namespace

void append_number(std::string& out, double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  // Readers that take a number without a point for an integer would lose this sign.
  out += text == "-0" ? std::string_view("-0.0") : text;
}

std::string number_text(double value) {
  std::string out;
  append_number(out, value);
  return out;
}

std::string fixed(double value, int digits) {
  std::array<char, 352> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, digits).ptr;
  std::string text(buffer.data(), end);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

std::string readable(double value, int digits) {
  if (!std::isfinite(value)) return std::isnan(value) ? "nan" : (value > 0 ? "inf" : "-inf");
  const double size = std::abs(value);
  if (size != 0.0 && (size >= 1e9 || size < 1e-4)) {
    std::array<char, 40> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific, digits - 1)
            .ptr;
    return {buffer.data(), end};
  }
  const int digits_before = size == 0.0 ? 1 : power_of_ten(size) + 1;
  return fixed(value, digits_before >= digits ? 0 : digits - digits_before);
}

std::string counted(std::size_t n, const std::string& noun) {
  return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

}  // namespace vantorelix
