// Path data in tenths of a pixel, and the thinning of what no eye can tell apart.
#pragma once

#include <string>

#include "cli/output/svg/svg_camera.h"

namespace vantorelix::cli {

// Collects the "d" of one path: relative moves between rounded places, so that rounding never adds up.
class PathData {
 public:
  void move(const Point2& p);
  void line(const Point2& p);
  // A dot: a line without length, drawn by its round caps.
  void dot(const Point2& p);
  bool empty() const { return text_.empty(); }
  const std::string& text() const { return text_; }
  void clear();

 private:
  void append(long long tenths, bool first);
  std::string text_;
  long long x_ = 0;
  long long y_ = 0;
  char command_ = ' ';
};

// A coordinate with at most one decimal.
std::string pixel(double value);

// "#rrggbb" of a colour in 0..1; each channel rounded to `levels` steps.
std::string hex_color(const Vector& color, int levels = 255);

}  // namespace vantorelix::cli
