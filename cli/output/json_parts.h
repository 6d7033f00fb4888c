// Numbers and lists as JSON has them, for the writers that are not given a whole document at once.
#pragma once

#include <array>
#include <cmath>

#include "base/vector.h"
#include "cli/output/output_file.h"

namespace vantorelix::cli {

// null for a number that is not finite.
inline void write_number(OutputFile& out, double value) {
  if (std::isfinite(value))
    out << value;
  else
    out << "null";
}

// [a, b, ...], each item written by `write`.
template <class Items, class Write>
void write_list(OutputFile& out, const Items& items, const Write& write) {
  out << '[';
  bool first = true;
  for (const auto& item : items) {
    if (!first) out << ", ";
    first = false;
    write(item);
  }
  out << ']';
}

template <class Numbers>
void write_numbers(OutputFile& out, const Numbers& numbers) {
  write_list(out, numbers, [&](double d) { write_number(out, d); });
}

inline void write_triple(OutputFile& out, const Vector& v) { write_numbers(out, std::array{v.x, v.y, v.z}); }

}  // namespace vantorelix::cli
