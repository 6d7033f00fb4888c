#include "standalone/formats/maya/channel_curves.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "standalone/formats/maya/maya_units.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::standalone {

namespace {

void add_once(std::vector<std::string>& texts, std::string text) {
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(std::move(text));
}

}  // namespace

std::vector<ChannelCurve> channel_curves(const Scene& scene, const std::vector<NodeId>& objects,
                                         std::vector<std::string>& lost) {
  std::vector<ChannelCurve> found;
  for (const NodeId object : objects) {
    const bool joint = scene.nodes.type(object) == "joint";
    for (const Connection& input : scene.connections.into(object)) {
      const auto channels = channels_named(input.attribute, joint);
      if (!channels) continue;
      const std::string plug = scene.names.unique_name(object) + "." + input.attribute;
      if (scene.curves.is_curve(input.source) && channels->count == 1) {
        found.push_back({plug, input.source});
        if (scene.attributes.is_locked(object, channels->first))
          add_once(lost, plug + " is locked; unlock it before its keys go in");
      } else if (scene.curves.track(input.source) != nullptr) {
        add_once(lost, plug + " is recorded as a whole, without curves for its channels, and is left out");
      } else {
        add_once(lost, plug + " is driven by the " + scene.nodes.type(input.source) + " " +
                           scene.names.unique_name(input.source) + ", not by a curve of its own, and is left out");
      }
    }
  }
  return found;
}

WrittenUnits written_units(const Scene& scene, std::vector<std::string>& lost) {
  const auto unit = linear_unit_named(scene.settings.linear_unit());
  if (!unit) add_once(lost, "the scene does not tell its unit of length; its numbers are written as centimetres");
  return {unit ? unit->name : "cm", unit ? unit->centimetres : 1.0,
          frame_rate_name(scene.settings.frames_per_second())};
}

double written_tangent(const AnimCurve& curve, double y, const WrittenUnits& units, const std::string& plug,
                       std::vector<std::string>& lost) {
  if (curve.kind() != CurveKind::linear) return y;
  const double unit = 1.0 / units.centimetres;
  const double near = y / unit;
  constexpr double kFar = std::numeric_limits<double>::infinity();
  for (const double candidate : {near, std::nextafter(near, -kFar), std::nextafter(near, kFar)})
    if (candidate * unit == y) return candidate;
  add_once(lost, "a tangent of " + plug + " is rounded in its last bit, as Maya keeps it in centimetres");
  return near;
}

}  // namespace vantorelix::standalone
