// Animation of an FBX file as curves and tracks of a scene. For the files of this folder only.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "standalone/formats/fbx/fbx_document.h"
#include "standalone/scene/curves/curve_key.h"
#include "standalone/scene/curves/track.h"
#include "standalone/scene/scene.h"

struct ufbx_anim;
struct ufbx_anim_curve;
struct ufbx_node;

namespace vantorelix::standalone {

struct FbxCurve {
  std::vector<Key> keys;
  bool weighted = false;
  Infinity pre = Infinity::constant;
  Infinity post = Infinity::constant;
};

// `unit` is what one of the file's values is worth: radians of a degree. At every frame the curve has the value that
// the library gives at that time.
FbxCurve convert_curve(const ufbx_anim_curve& curve, const FbxClock& clock, double unit);
// False for a curve that repeats a number of times and then stops: no infinity says that.
bool is_convertible(const ufbx_anim_curve& curve);

// A property of three components that several layers drive, or that several nodes multiply: evaluated by the library.
struct FbxProperty {
  const ufbx_anim* anim;
  std::vector<const ufbx_node*>
      nodes;         // their values are multiplied, component by component; one must have the property
  const char* name;  // "Lcl Rotation"
  double unit;
  std::array<double, 3> otherwise;  // where a value is not finite
};
std::shared_ptr<const Track> make_fbx_track(FbxDocument document, FbxProperty property,
                                            const std::vector<const ufbx_anim_curve*>& curves);

}  // namespace vantorelix::standalone
