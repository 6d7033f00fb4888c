// From the scene's space to the picture's plane.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include "base/vector.h"
#include "session/report.h"

namespace vantorelix::cli {

struct Point2 {
  double x = 0.0;
  double y = 0.0;
};

struct Box2 {
  double left = std::numeric_limits<double>::infinity();
  double right = -std::numeric_limits<double>::infinity();
  double top = std::numeric_limits<double>::infinity();
  double bottom = -std::numeric_limits<double>::infinity();

  void include(const Point2& p);
  // Whether it holds anything.
  explicit operator bool() const { return left <= right; }
  bool contains(const Point2& p) const { return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom; }
  double width() const { return right - left; }
  double height() const { return bottom - top; }
  bool overlaps(const Box2& other) const;
};

// Turned so that y is up.
Vector y_up(const Vector& v, char up_axis);

// The lines that a picture is fitted to, in the scene's axes.
struct Fitted {
  std::vector<Vectors> lines;
  char up_axis;

  // Calls `visit` with every finite sample, y up.
  template <class Visit>
  void for_each_point(const Visit& visit) const;
};

// Bounds of the samples that are finite, in the scene's axes turned so that y is up. Never empty: trails without
// extent get a box of one unit around their place.
struct Bounds {
  Vector low, high;
  double extent() const;  // the longest side
  double horizontal() const;
  Vector centre() const;
};

Bounds bounds_of(const Fitted& fitted);

// Looks at the bounds. The perspective looks down a little, from where the main direction of the motion runs across
// the picture, from left to right. Front looks along -z, side along -x, top along -y.
class Camera {
 public:
  Camera(const std::string& view, const Fitted& fitted, const Bounds& bounds);
  // On the picture's plane, y downwards, in no particular unit. Takes points with y up.
  Point2 project(const Vector& p) const;
  bool is_perspective() const { return distance_ > 0.0; }
  // The directions of the picture's right and up in the turned axes.
  const Vector& right() const { return right_; }
  const Vector& up() const { return up_; }

 private:
  void look(double azimuth, double elevation);

  Vector centre_;
  Vector right_, up_, forward_;
  double distance_ = 0.0;  // 0: parallel
};

// Scale and shift from the camera's plane to pixels.
struct Placement {
  double scale = 1.0;
  Point2 shift;
  Point2 apply(const Point2& p) const { return {p.x * scale + shift.x, p.y * scale + shift.y}; }
};

// From the scene's own axes to pixels.
struct Lens {
  Camera camera;
  Placement placement;
  char up_axis;
  Point2 operator()(const Vector& p) const { return placement.apply(camera.project(y_up(p, up_axis))); }
};

// The largest of 1, 2, 5 times a power of ten that is at most `size`, which is above 0.
double nice_step(double size);

template <class Visit>
void Fitted::for_each_point(const Visit& visit) const {
  for (const Vectors& line : lines)
    for (const Vector& p : *line)
      if (is_finite(p)) visit(y_up(p, up_axis));
}

}  // namespace vantorelix::cli
