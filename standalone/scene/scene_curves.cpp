// Animation curves and their edits.
#include "standalone/scene/graph/change.h"

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
  const AttributeId whole = compound_of(id_of(c));
  const bool unitless = id_of(c) >= id_of(Channel::rotateOrder) || whole == compound_of(id_of(Channel::scaleX)) ||
                        whole == compound_of(id_of(Channel::shearXY)) ||
                        whole == compound_of(id_of(Channel::inverseScaleX));
  return unitless ? CurveKind::unitless : CurveKind::linear;
}

// All edits of a curve are made here, by `edit`, so that they are written down.
template <class Edit>
void edit_curve(const Scene::Data& scene, NodeId id, Edit edit) {
  Node& node = scene.curve(id);
  if (!scene.recorder.log) return edit(*node.curve);
  Keys before = Keys::now(node);
  edit(*node.curve);
  scene.recorder.keys(node, std::move(before));
}

}  // namespace

NodeId Scene::create_curve(CurveKind kind, std::string_view name) { return create_node(type_of(kind), name); }
bool Scene::is_curve(NodeId node) const { return data_->at(node).curve != nullptr; }
const AnimCurve& Scene::curve(NodeId node) const { return *data_->curve(node).curve; }

NodeId Scene::create_track(std::shared_ptr<const Track> track, std::string_view name) {
  const NodeId node = create_node("track", name);
  data_->at(node).track = std::move(track);
  return node;
}

const Track* Scene::track(NodeId node) const { return data_->at(node).track.get(); }

void Scene::assign_curve(NodeId node, std::vector<Key> keys, bool weighted, Infinity pre, Infinity post) {
  edit_curve(*data_, node, [&](AnimCurve& c) { c.assign(std::move(keys), weighted, pre, post); });
  data_->tell_curve_edited(node, true);
}

NodeId Scene::set_key(NodeId id, Channel c, double frame, double value) {
  Data& d = *data_;
  Node& node = d.transform(id);
  NodeId curve = driving_curve(id, c);
  if (curve != kNoNode) {
    set_key(curve, frame, value);
    return curve;
  }
  if (d.driver(node, id_of(c))) throw locked_error(d.plug_name(node, id_of(c)));
  // Tried out on a curve of no scene first: a key that is refused must leave no node behind.
  AnimCurve(kind_of(c), d.settings.frames_per_second).set_key(frame, value);
  const std::string& channel = d.attributes.text(id_of(c));
  curve = create_curve(kind_of(c), d.text(node) + "_" + channel);
  connect(curve, "output", id, channel);
  set_key(curve, frame, value);
  return curve;
}

void Scene::set_key(NodeId curve, double frame, double value) {
  edit_curve(*data_, curve, [&](AnimCurve& c) { c.set_key(frame, value); });
  data_->tell_curve_edited(curve, true);
}

void Scene::set_key(NodeId curve, const Key& key) {
  edit_curve(*data_, curve, [&](AnimCurve& c) { c.set_key(key); });
  data_->tell_curve_edited(curve, true);
}

bool Scene::remove_key(NodeId id, double frame) {
  bool removed = false;
  edit_curve(*data_, id, [&](AnimCurve& c) { removed = c.remove_key(frame); });
  if (!removed) return false;
  const Data* const told = data_.get();
  const bool last = data_->curve(id).curve->keys().empty();
  data_->tell_curve_edited(id, true);
  if (last && data_.get() == told && exists(id) && !data_->at(id).locked) delete_node(id);
  return true;
}

void Scene::set_infinity(NodeId curve, Infinity pre, Infinity post) {
  edit_curve(*data_, curve, [&](AnimCurve& c) { c.set_infinity(pre, post); });
  data_->tell_curve_edited(curve, false);
}

}  // namespace vantorelix::standalone
