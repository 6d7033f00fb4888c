#include "standalone/host/object_model.h"
#include "standalone/host/viz_node.h"

#include <utility>

#include "host/error.h"
#include "standalone/scene/evaluation/evaluator.h"

namespace vantorelix::standalone {

using host::Error;

namespace {

Error no_object() { return Error("(kInvalidParameter): Object does not exist"); }
Error wrong_kind() { return Error("(kFailure): Unexpected Internal Failure"); }

// Holds a finished sequence that it shares, or one of its own that still grows.
class Array : public host::VectorArray {
 public:
  Array() : own_(std::make_shared<std::vector<Vector>>()) {}
  explicit Array(Vectors shared) : shared_(std::move(shared)) {}

  void append(const Vector& v) override {
    if (!own_) own_ = std::make_shared<std::vector<Vector>>(*shared_);
    own_->push_back(v);
  }
  Vectors share() const { return own_ ? own_ : shared_; }

 private:
  Vectors shared_;
  std::shared_ptr<std::vector<Vector>> own_;
};

// What a plug that is asked for something else answers.
class BasePlug : public host::Plug {
 public:
  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned) override { throw wrong_kind(); }
  Vector translation_at(double, const host::TimeUnit&) override { throw wrong_kind(); }
  void set_vector_array(const std::shared_ptr<host::VectorArray>&) override { throw wrong_kind(); }
};

// A scene has one time unit, the frame, so the token that comes back with each time says nothing new.
class WorldMatrixElement : public BasePlug {
 public:
  WorldMatrixElement(const Scene& scene, NodeId node) : evaluator_(scene.evaluation, node) {}
  Vector translation_at(double t, const host::TimeUnit&) override { return evaluator_.translation(t); }
  void expect(std::span<const double> times, const host::TimeUnit&) override { evaluator_.expect(times); }

 private:
  Evaluator evaluator_;
};

// A node has one instance, so element 0 is the only one.
class WorldMatrixPlug : public BasePlug {
 public:
  WorldMatrixPlug(const Scene& scene, NodeId node) : scene_(scene), node_(node) {}
  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned index) override {
    if (!scene_.nodes.exists(node_)) throw no_object();
    if (index != 0) throw wrong_kind();
    return std::make_shared<WorldMatrixElement>(scene_, node_);
  }

 private:
  const Scene& scene_;
  NodeId node_;
};

class VectorArrayPlug : public BasePlug {
 public:
  VectorArrayPlug(Scene& scene, NodeId node, std::string attribute)
      : scene_(scene), node_(node), attribute_(std::move(attribute)) {}
  void set_vector_array(const std::shared_ptr<host::VectorArray>& array) override {
    const auto* const ours = dynamic_cast<const Array*>(array.get());
    if (!ours) throw wrong_kind();
    if (!scene_.nodes.exists(node_)) throw no_object();
    scene_.attributes.set_vectors(node_, attribute_, ours->share());
  }

 private:
  Scene& scene_;
  NodeId node_;
  std::string attribute_;
};

// As a selection list does: of several objects with the name, the first.
NodeId first_named(const Scene& scene, const std::string& name) {
  const auto nodes = scene.names.match(name);
  if (nodes.empty()) throw no_object();
  return nodes.front();
}

NodeId look_up(const Scene& scene, const std::string& name) {
  NodeId node = kNoNode;
  try {
    node = scene.names.find(name);
  } catch (const Error&) {
    return first_named(scene, name);
  }
  if (node == kNoNode) throw no_object();
  return node;
}

}  // namespace

std::shared_ptr<host::Plug> Objects::findPlug(const std::string& node, const std::string& attribute) {
  Scene& scene = state_.scene;
  const NodeId id = look_up(scene, node);
  if (attribute == "worldMatrix" && (scene.nodes.is_transform(id) || scene.nodes.is_shape(id)))
    return std::make_shared<WorldMatrixPlug>(scene, id);
  if (scene.nodes.type(id) == viz_node::kType && viz_node::is_vector_array(attribute))
    return std::make_shared<VectorArrayPlug>(scene, id, attribute);
  if (scene.attributes.has(id, attribute)) return std::make_shared<BasePlug>();
  throw Error("(kInvalidParameter): Cannot find item of required type");
}

host::TimeUnit Objects::uiUnit() { return "frame"; }

std::shared_ptr<host::VectorArray> Objects::vector_array(const Vectors& values) {
  return std::make_shared<Array>(values);
}

std::shared_ptr<host::VectorArray> Objects::vector_array() { return std::make_shared<Array>(); }

bool Objects::isReadingFile() {
  return state_.file_activity == Host::FileActivity::reading || state_.file_activity == Host::FileActivity::opening;
}

bool Objects::isWritingFile() { return state_.file_activity == Host::FileActivity::writing; }

bool Objects::isOpeningFile() { return state_.file_activity == Host::FileActivity::opening; }

bool Objects::isNewingFile() { return state_.file_activity == Host::FileActivity::creating; }

host::Value Objects::addNodeRemovedCallback(const host::Callback& function, const std::string& type) {
  return state_.messages.subscribe(Message::node_removed, function, type);
}

void Objects::removeCallback(const host::Value& identifier) { state_.messages.unsubscribe(identifier); }

bool Animation::isPlaying() { return state_.playing; }

double Animation::currentTime() { return state_.scene.settings.current_time(); }

host::Value Animation::addAnimCurveEditedCallback(const host::Callback& function) {
  return state_.messages.subscribe(Message::curve_edited, function);
}

host::Value Animation::addAnimKeyframeEditedCallback(const host::Callback& function) {
  return state_.messages.subscribe(Message::keyframe_edited, function);
}

}  // namespace vantorelix::standalone
