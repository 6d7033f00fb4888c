// A scene as a text, for tests that compare scenes, and what a call fails with.
#pragma once

#include <algorithm>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/error.h"
#include "standalone/scene/evaluation/evaluator.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

inline std::string text_of_failure(const std::function<void()>& f) {
  try {
    f();
  } catch (const host::Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

inline constexpr const char* kDescribed[] = {"tx", "ry", "sz", "visibility", "offsetParentMatrix", "extra", "weight"};

inline void describe_curve(std::ostream& out, const AnimCurve& curve) {
  out << " weighted " << curve.weighted() << " pre " << static_cast<int>(curve.pre_infinity()) << " post "
      << static_cast<int>(curve.post_infinity());
  for (const Key& key : curve.keys())
    out << " (" << key.time << ' ' << key.value << ' ' << static_cast<int>(key.in) << ' ' << static_cast<int>(key.out)
        << ' ' << key.in_x << ' ' << key.out_y << ')';
}

// Not numbers are equal here.
inline bool is_same(const Vector& a, const Vector& b) {
  const auto same = [](double x, double y) { return x == y || (x != x && y != y); };
  return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
}

inline void describe_transform(std::ostream& out, const Scene& s, NodeId node) {
  for (int c = 0; c < static_cast<int>(Channel::count); ++c)
    out << ' ' << s.attributes.channel(node, static_cast<Channel>(c));
  for (const double frame : {1.0, 7.5}) {
    const Affine matrix = s.evaluation.world_matrix(node, frame);
    for (const auto& row : matrix.m) out << ' ' << row[0] << ' ' << row[1] << ' ' << row[2];
    if (!is_same(Evaluator(s.evaluation, node).translation(frame), matrix.translation()))
      throw std::logic_error("both ways to a world matrix differ");
  }
  out << " drivers";
  for (const NodeId curve : s.curves.driving_curves(node)) out << ' ' << curve;
  for (const std::string& text : s.evaluation.not_followed(node)) out << ' ' << text;
}

// Everything that can be asked of a scene. Throws where it contradicts itself.
inline std::string description(const Scene& s) {
  std::ostringstream out;
  out.precision(17);
  out << s.settings.frames_per_second() << s.settings.linear_unit() << s.settings.up_axis() << s.settings.playback_min()
      << ' ' << s.settings.playback_max() << ' ' << s.settings.current_time() << ' ' << s.settings.takes().size()
      << s.settings.take() << '\n';
  for (const std::string& name : s.namespaces.all()) out << (name == s.namespaces.current() ? " in " : " ") << name;
  for (const NodeId root : s.nodes.children(kWorld)) out << root << ' ';
  for (const NodeId node : s.nodes.all()) {
    out << '\n'
        << node << ' ' << s.nodes.type(node) << ' ' << s.names.long_name(node) << ' ' << s.names.unique_name(node)
        << " under " << s.nodes.parent(node) << ", children";
    for (const NodeId child : s.nodes.children(node)) out << ' ' << child;
    for (const char* name : kDescribed)
      if (s.attributes.has(node, name)) out << ' ' << name << '=' << s.attributes.value(node, name).repr();
    if (const Vectors vectors = s.attributes.vectors(node, "points"))
      for (const Vector& v : *vectors) out << " point " << v.x;
    if (s.curves.is_curve(node)) describe_curve(out, s.curves.at(node));
    out << " degree " << s.attributes.curve_degree(node) << ' ' << s.attributes.curve_points(node).size();
    if (s.nodes.is_transform(node)) describe_transform(out, s, node);
    const std::vector<NodeId> alike = s.nodes.of_type(s.nodes.type(node));
    if (s.names.find(s.names.unique_name(node)) != node || std::count(alike.begin(), alike.end(), node) != 1)
      throw std::logic_error("a node is not found under its name or among those of its type");
  }
  return out.str();
}

}  // namespace vantorelix::standalone
