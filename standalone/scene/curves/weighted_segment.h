// The stretch between two keys of a weighted curve: a Bezier whose time is as free as its value.
// For the files of this folder only.
#pragma once

namespace vantorelix::standalone {

// How far a tangent reaches: from its key forward in time, or, on the in side, from its key backward (both numbers
// taken forward). The Bezier's control point lies at a third of it.
struct TangentVector {
  double x;  // frames
  double y;
};

// The handles' reach in time as parts of their segment: from the first key forward and from the second backward.
struct Reach {
  double out;
  double in;
};

// The reaches that keep time from running backwards: those wanted where they do so already. Else a negative one
// becomes 0; `out` has its way up to 4/3, and `in` moves to the nearest reach that goes with it.
Reach keep_time_forward(Reach wanted);

// How far a handle rises when it changes its reach, `from` one `to` another, and not its slope.
double rescaled(double rise, double from, double to);

class WeightedSegment {
 public:
  // Of no use until assigned to.
  WeightedSegment() = default;
  // `length` frames (> 0) and `rise` from the first key to the second. Handles that would make time run backwards
  // change their reach and keep their slope.
  WeightedSegment(double length, double rise, TangentVector out, TangentVector in);

  // True when time runs evenly: then the segment is the cubic c1 * t + c2 * t^2 + c3 * t^3 above its first key.
  bool is_time_even() const;
  struct Cubic {
    double c1, c2, c3;
  };
  Cubic as_cubic() const;

  // How far the value is above the first key's, `elapsed` frames after it (0 to length).
  double at(double elapsed) const;

  // The Bezier's parameter then.
  double parameter_after(double elapsed) const { return solve(elapsed / length_); }

  // The two segments that the same curve is of, with a key in between.
  struct Parts {
    TangentVector first_out, first_in, second_out, second_in;
  };
  Parts split(double elapsed) const;

 private:
  double solve(double fraction) const;

  // Both polynomials have no constant term; their parameter runs from 0 to 1, and so does time.
  double length_ = 1.0;
  double time1_ = 0.0, time2_ = 0.0, time3_ = 0.0;
  double value1_ = 0.0, value2_ = 0.0, value3_ = 0.0;
};

}  // namespace vantorelix::standalone
