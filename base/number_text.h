// Numbers as texts, for files and for people.
#pragma once

#include <cstddef>
#include <string>

namespace vantorelix {

// Appends the shortest text that reads back to the same double, the sign of a zero included. Not for values that
// are not finite.
void append_number(std::string& out, double value);
std::string number_text(double value);
// With `digits` decimals, trailing zeros and a needless point removed; never "-0".
std::string fixed(double value, int digits);
// About `digits` significant digits, for people: "0.0123", "12.3", "12346", "1.2e+09".
std::string readable(double value, int digits = 4);
// "1 trail", "3 trails".
std::string counted(std::size_t n, const std::string& noun);

}  // namespace vantorelix
