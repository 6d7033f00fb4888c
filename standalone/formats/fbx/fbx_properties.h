// The properties of an FBX node that a local matrix is made of. For the files of this folder only.
#pragma once

#include <array>
#include <cstddef>

#include "standalone/scene/scene.h"

struct ufbx_vec3;

namespace vantorelix::standalone {

struct FbxNodeProperty {
  const char* name;
  Channel first;         // of three
  const char* compound;  // the attribute that they are parts of
  CurveKind kind;
  double rest;  // of each component, where the file does not say
};

inline constexpr std::size_t kFbxTranslation = 0, kFbxRotation = 1, kFbxScaling = 2, kFbxPreRotation = 3;
inline constexpr std::array<FbxNodeProperty, 8> kFbxNodeProperties = {
    {{"Lcl Translation", Channel::translateX, "translate", CurveKind::linear, 0.0},
     {"Lcl Rotation", Channel::rotateX, "rotate", CurveKind::angular, 0.0},
     {"Lcl Scaling", Channel::scaleX, "scale", CurveKind::unitless, 1.0},
     {"PreRotation", Channel::jointOrientX, "jointOrient", CurveKind::angular, 0.0},
     {"RotationPivot", Channel::rotatePivotX, "rotatePivot", CurveKind::linear, 0.0},
     {"RotationOffset", Channel::rotatePivotTranslateX, "rotatePivotTranslate", CurveKind::linear, 0.0},
     {"ScalingPivot", Channel::scalePivotX, "scalePivot", CurveKind::linear, 0.0},
     {"ScalingOffset", Channel::scalePivotTranslateX, "scalePivotTranslate", CurveKind::linear, 0.0}}};
// The inverse of this one is the rotate axis; it cannot be animated here.
inline constexpr const char* kFbxPostRotation = "PostRotation";

std::array<double, 3> numbers_of(const ufbx_vec3& v);

// What one of the file's values is worth: radians of a degree.
double fbx_unit(const FbxNodeProperty& property);

}  // namespace vantorelix::standalone
