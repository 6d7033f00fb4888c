#include "standalone/scene/graph/curve_nodes.h"

#include "standalone/scene/graph/change.h"
#include "standalone/scene/graph/connections.h"
#include "standalone/scene/graph/nodes.h"

namespace vantorelix::standalone {
namespace {

std::string_view type_of(CurveKind kind) {
  switch (kind) {
    case CurveKind::linear:
      return "animCurveTL";
    case CurveKind::angular:
      return "animCurveTA";
    case CurveKind::unitless:
      return "animCurveTU";
    case CurveKind::time:
      return "animCurveTT";
  }
  return "animCurveTU";
}

CurveKind kind_of(Channel c) {
  if (is_angle(c)) return CurveKind::angular;
  const AttributeId compound = compound_of(id_of(c));
  const bool unitless = id_of(c) >= id_of(Channel::rotateOrder) || compound == compound_of(id_of(Channel::scaleX)) ||
                        compound == compound_of(id_of(Channel::shearXY)) ||
                        compound == compound_of(id_of(Channel::inverseScaleX));
  return unitless ? CurveKind::unitless : CurveKind::linear;
}

// All edits of a curve are made here, by `edit`, so that they are written down.
template <class Edit>
void edit_curve(Graph& scene, NodeId id, Edit edit) {
  Node& node = scene.curve(id);
  if (!scene.recorder.log) return edit(*node.curve);
  Keys before = Keys::now(node);
  edit(*node.curve);
  scene.recorder.keys(node, std::move(before));
}

}  // namespace

NodeId SceneCurves::create(CurveKind kind, std::string_view name) {
  return SceneNodes(graph()).create(type_of(kind), name);
}
bool SceneCurves::is_curve(NodeId node) const { return graph().at(node).curve != nullptr; }
const AnimCurve& SceneCurves::at(NodeId node) const { return *graph().curve(node).curve; }

NodeId SceneCurves::create_track(std::shared_ptr<const Track> track, std::string_view name) {
  const NodeId node = SceneNodes(graph()).create("track", name);
  graph().at(node).track = std::move(track);
  return node;
}

const Track* SceneCurves::track(NodeId node) const { return graph().at(node).track.get(); }

void SceneCurves::assign(NodeId node, std::vector<Key> keys, bool weighted, Infinity pre, Infinity post) {
  edit_curve(graph(), node, [&](AnimCurve& c) { c.assign(std::move(keys), weighted, pre, post); });
  graph().tell_curve_edited(node, true);
}

NodeId SceneCurves::set_key(NodeId id, Channel c, double frame, double value) {
  Graph& d = graph();
  Node& node = d.transform(id);
  NodeId curve = driving_curve(id, c);
  if (curve != kNoNode) {
    set_key(curve, frame, value);
    return curve;
  }
  if (d.driver(node, id_of(c))) throw locked_error(d.plug_name(node, id_of(c)));
  // Tried out on a curve of no scene first: a key that is refused must leave no node behind.
  AnimCurve(kind_of(c), d.settings.frames_per_second).set_key(frame, value);
  const std::string& channel = name_of(c);
  curve = create(kind_of(c), d.text(node) + "_" + channel);
  SceneConnections(d).connect(curve, "output", id, channel);
  set_key(curve, frame, value);
  return curve;
}

void SceneCurves::set_key(NodeId curve, double frame, double value) {
  edit_curve(graph(), curve, [&](AnimCurve& c) { c.set_key(frame, value); });
  graph().tell_curve_edited(curve, true);
}

void SceneCurves::set_key(NodeId curve, const Key& key) {
  edit_curve(graph(), curve, [&](AnimCurve& c) { c.set_key(key); });
  graph().tell_curve_edited(curve, true);
}

bool SceneCurves::remove_key(NodeId id, double frame) {
  bool removed = false;
  edit_curve(graph(), id, [&](AnimCurve& c) { removed = c.remove_key(frame); });
  if (!removed) return false;
  const Graph* const told = &graph();
  const bool last = graph().curve(id).curve->keys().empty();
  graph().tell_curve_edited(id, true);
  if (last && &graph() == told && graph().find(id) && !graph().at(id).locked) SceneNodes(graph()).remove(id);
  return true;
}

void SceneCurves::set_infinity(NodeId curve, Infinity pre, Infinity post) {
  edit_curve(graph(), curve, [&](AnimCurve& c) { c.set_infinity(pre, post); });
  graph().tell_curve_edited(curve, false);
}

}  // namespace vantorelix::standalone
