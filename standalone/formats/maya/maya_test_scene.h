// Scenes from a line of text, for the tests of the Maya ASCII reader.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/mathematics/mathematics.h"
#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

using base::kDegree;

inline Scene read(const std::string& text) { return read_maya_ascii(text, "scene.ma"); }

inline std::string error_of(const std::string& text) {
  try {
    read(text);
  } catch (const FormatError& error) {
    return error.what();
  }
  return "no error";
}

// A scene that must hold nothing to warn of.
inline Scene clean(const std::string& text) {
  Scene scene = read(text);
  for (const Warning& warning : scene.warnings.all()) ADD_FAILURE() << warning.kind;
  return scene;
}

inline Vector place(const Scene& scene, const std::string& name, double frame = 1.0) {
  return scene.evaluation.world_matrix(scene.names.require(name), frame).translation();
}

inline void expect_at(const Scene& scene, const std::string& name, double frame, double x, double y, double z) {
  const Vector p = place(scene, name, frame);
  EXPECT_NEAR(p.x, x, 1e-12) << name;
  EXPECT_NEAR(p.y, y, 1e-12) << name;
  EXPECT_NEAR(p.z, z, 1e-12) << name;
}

inline auto warns(const std::string& part, std::size_t count) {
  return testing::Contains(
      testing::AllOf(testing::Field(&Warning::kind, testing::HasSubstr(part)), testing::Field(&Warning::count, count)));
}

// A curve named "c" with these statements about it.
inline std::string curve(const std::string& values, const std::string& type = "animCurveTL") {
  return "createNode " + type + " -n \"c\";" + values;
}

inline const AnimCurve& only_curve(const Scene& scene) { return scene.curves.at(scene.names.require("c")); }

// A transform that nothing drives yet, and a straight curve for it: frame f, value f.
inline const std::string kBall =
    "createNode transform -n \"ball\";createNode animCurveTL -n \"c\";setAttr \".tan\" 2;setAttr -s 2 \".ktv[0:1]\" 0 "
    "0 10 10;";

}  // namespace vantorelix::standalone
