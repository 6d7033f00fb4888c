// What a local matrix is made of.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vantorelix::standalone {

// The scalars that a local matrix is made of. Angles are radians, lengths the scene's linear unit. The last three
// are whole numbers or flags kept as doubles, so that they too can be driven.
enum class Channel : std::uint8_t {
  translateX,
  translateY,
  translateZ,
  rotateX,
  rotateY,
  rotateZ,
  scaleX,
  scaleY,
  scaleZ,
  shearXY,
  shearXZ,
  shearYZ,
  rotateAxisX,
  rotateAxisY,
  rotateAxisZ,
  jointOrientX,
  jointOrientY,
  jointOrientZ,
  rotatePivotX,
  rotatePivotY,
  rotatePivotZ,
  rotatePivotTranslateX,
  rotatePivotTranslateY,
  rotatePivotTranslateZ,
  scalePivotX,
  scalePivotY,
  scalePivotZ,
  scalePivotTranslateX,
  scalePivotTranslateY,
  scalePivotTranslateZ,
  inverseScaleX,
  inverseScaleY,
  inverseScaleZ,
  rotateOrder,             // 0 xyz, 1 yzx, 2 zxy, 3 xzy, 4 yxz, 5 zyx
  inheritsTransform,       // 0 or 1
  segmentScaleCompensate,  // 0 or 1, joints only
  count
};

// The k-th of the three channels from `first` on.
constexpr Channel component(Channel first, std::size_t k) {
  return static_cast<Channel>(static_cast<std::size_t>(first) + k);
}

}  // namespace vantorelix::standalone
