#include "cli/output/svg/svg_path.h"
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "cli/output/text.h"

namespace vantorelix::cli {

namespace {

// Far outside any picture; keeps the arithmetic in whole numbers defined.
long long tenths(double v) { return std::isnan(v) ? 0 : std::llround(std::clamp(v, -1e6, 1e6) * 10.0); }

}  // namespace

void PathData::append(long long value, bool first) {
  if (!first && value >= 0) text_ += ' ';
  if (value < 0) text_ += '-';
  const long long size = std::abs(value);
  if (size >= 10 || size == 0) text_ += std::to_string(size / 10);
  if (size % 10 != 0) {
    text_ += '.';
    text_ += static_cast<char>('0' + size % 10);
  }
}

void PathData::move(const Point2& p) {
  x_ = tenths(p.x);
  y_ = tenths(p.y);
  text_ += 'M';
  append(x_, true);
  append(y_, false);
  command_ = 'M';
}

void PathData::line(const Point2& p) {
  const long long x = tenths(p.x), y = tenths(p.y);
  const bool first = command_ != 'l';
  if (first) text_ += 'l';
  append(x - x_, first);
  append(y - y_, false);
  x_ = x;
  y_ = y;
  command_ = 'l';
}

void PathData::dot(const Point2& p) {
  move(p);
  text_ += "h0";
}

void PathData::clear() {
  text_.clear();
  command_ = ' ';
}

std::string pixel(double value) { return fixed(std::clamp(value, -1e6, 1e6), 1); }

std::string hex_color(const Vector& color, int levels) {
  const auto channel = [levels](double v) {
    const double steps = std::round(std::clamp(std::isfinite(v) ? v : 0.0, 0.0, 1.0) * levels);
    return static_cast<unsigned>(std::lround(steps * 255.0 / levels));
  };
  std::array<char, 8> text;
  std::snprintf(text.data(), text.size(), "#%02x%02x%02x", channel(color.x), channel(color.y), channel(color.z));
  return text.data();
}

}  // namespace vantorelix::cli
