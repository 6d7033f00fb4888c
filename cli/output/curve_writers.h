// The files that `curves` writes.
#pragma once

#include <string>
#include <vector>

#include "base/text_sink.h"
#include "base/vector.h"
#include "standalone/scene/scene.h"

namespace vantorelix::cli {

// One NURBS curve: open, uniform, not rational.
struct CurveView {
  std::string name;   // of its transform
  std::string shape;  // of the nurbsCurve node
  int degree = 3;
  const std::vector<Vector>* points = nullptr;
};

// Knots of an open uniform curve as scene files have them: numCVs + degree - 1, each end repeated `degree` times.
std::vector<double> open_uniform_knots(std::size_t points, int degree);

// A scene of its own with a transform and a nurbsCurve for each curve. Units, rate and range are those of `scene`.
void write_maya_ascii(TextSink& out, const std::vector<CurveView>& curves, const standalone::Scene& scene);

// "curve,cv,x,y,z", a line a control vertex.
void write_curve_csv(TextSink& out, const std::vector<CurveView>& curves);

}  // namespace vantorelix::cli
