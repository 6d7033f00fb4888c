#include "standalone/scene/attributes/node_types.h"

#include <algorithm>
#include <array>

namespace vantorelix::standalone {
namespace {

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& list, std::string_view type) {
  return std::find(list.begin(), list.end(), type) != list.end();
}

constexpr std::array<std::string_view, 8> kTransforms = {"transform", "joint",    "ikHandle",     "ikEffector",
                                                         "lodGroup",  "assembly", "dagContainer", "place3dTexture"};

constexpr std::array<std::string_view, 13> kConstraints = {
    "parentConstraint",     "pointConstraint",    "orientConstraint",     "scaleConstraint",   "aimConstraint",
    "poleVectorConstraint", "geometryConstraint", "normalConstraint",     "tangentConstraint", "pointOnPolyConstraint",
    "symmetryConstraint",   "dynamicConstraint",  "oldGeometryConstraint"};

constexpr std::array<std::string_view, 29> kShapes = {
    "mesh",         "nurbsCurve",   "nurbsSurface", "bezierCurve",      "camera",          "locator",
    "light",        "ambientLight", "areaLight",    "directionalLight", "pointLight",      "spotLight",
    "volumeLight",  "lattice",      "baseLattice",  "clusterHandle",    "follicle",        "hairSystem",
    "nParticle",    "particle",     "nucleus",      "imagePlane",       "annotationShape", "distanceDimShape",
    "deformSphere", "sketchPlane",  "subdiv",       "fluidShape",       "gpuCache"};

}  // namespace

Category category_of(std::string_view type) {
  CurveKind kind{};
  if (is_curve_type(type, kind)) return Category::curve;
  if (contains(kTransforms, type)) return Category::transform;
  if (contains(kConstraints, type)) return Category::constraint;
  if (contains(kShapes, type)) return Category::shape;
  return Category::other;
}

NameSet name_set_of(std::string_view type, Category category) {
  if (type == "joint") return NameSet::joint;
  if (type == "track") return NameSet::curve;
  if (type == "unitConversion") return NameSet::unit_conversion;
  if (type == "pairBlend") return NameSet::pair_blend;
  switch (category) {
    case Category::transform:
    case Category::constraint:
      return NameSet::transform;
    case Category::shape:
      return NameSet::shape;
    case Category::curve:
      return NameSet::curve;
    case Category::other:
      return type.starts_with("animCurve") ? NameSet::curve : NameSet::other;
  }
  return NameSet::other;
}

std::string_view default_stem(std::string_view type) {
  if (type == "mesh") return "polySurface";
  if (type == "nurbsCurve" || type == "bezierCurve") return "curve";
  return type;
}

bool is_curve_type(std::string_view type, CurveKind& kind) {
  constexpr std::string_view kPrefix = "animCurveT";
  if (type.size() != kPrefix.size() + 1 || !type.starts_with(kPrefix)) return false;
  switch (type.back()) {
    case 'L':
      kind = CurveKind::linear;
      return true;
    case 'A':
      kind = CurveKind::angular;
      return true;
    case 'U':
      kind = CurveKind::unitless;
      return true;
    case 'T':
      kind = CurveKind::time;
      return true;
    default:
      return false;
  }
}

}  // namespace vantorelix::standalone
