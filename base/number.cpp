#include "base/number.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace vantorelix {
namespace {

// Whether a number that no double holds is too large, not too small: the place of its first digit that counts,
// moved by its exponent. `first` stands behind the sign.
bool is_huge(const char* first, const char* last) {
  long long place = 0;
  bool found = false;
  bool behind_point = false;
  const char* p = first;
  for (; p != last && *p != 'e' && *p != 'E'; ++p) {
    if (*p == '.') {
      behind_point = true;
      continue;
    }
    found = found || *p != '0';
    if (!behind_point && found) ++place;
    if (behind_point && !found) --place;
  }
  if (p == last) return place > 0;
  ++p;
  const bool negative = p != last && *p == '-';
  if (p != last && (*p == '-' || *p == '+')) ++p;
  long long exponent = 0;
  for (; p != last && exponent < 1'000'000'000; ++p) exponent = exponent * 10 + (*p - '0');
  return place + (negative ? -exponent : exponent) > 0;
}

}  // namespace

const char* parse_number_slow(const char* first, const char* last, double& value) {
  const bool negative = first != last && *first == '-';
  const char* const start = first != last && (*first == '-' || *first == '+') ? first + 1 : first;
  // from_chars would take a second sign.
  if (start == last || *start == '-' || *start == '+') return first;
  double magnitude = 0.0;
  const auto [end, error] = std::from_chars(start, last, magnitude);
  if (error == std::errc::invalid_argument) return first;
  if (error == std::errc::result_out_of_range) {
    magnitude = is_huge(start, end) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  value = negative ? -magnitude : magnitude;
  return end;
}

}  // namespace vantorelix
