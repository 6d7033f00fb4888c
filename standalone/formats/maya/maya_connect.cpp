// connectAttr: what drives what, and what of it cannot be followed.
#include <string>

#include "standalone/formats/bounds_draft.h"
#include "standalone/formats/camera.h"
#include "standalone/formats/maya/maya_reader.h"

namespace vantorelix::standalone {
namespace {

// Links between nodes that carry no number.
bool is_mere_link(std::string_view attribute) {
  return attribute == "msg" || attribute == "message" || attribute.starts_with("iog") ||
         attribute.starts_with("instObjGroups");
}

// "tx" of "tx", "t.tx" and "tx[0]".
std::string_view last_name(std::string_view attribute) {
  if (const std::size_t dot = attribute.rfind('.'); dot != std::string_view::npos) attribute.remove_prefix(dot + 1);
  return attribute.substr(0, attribute.find('['));
}

bool is_driven_key(std::string_view type) { return type.starts_with("animCurveU"); }

}  // namespace

void MayaReader::read_connect() {
  std::string source, destination;
  while (words_.next(word_)) {
    if (word_.text == "-l" || word_.text == "-lock" || word_.text == "-rd" || word_.text == "-referenceDest") {
      argument();
    } else if (!word_.is_flag()) {
      (source.empty() ? source : destination) = word_.text;
    }
  }
  connect(source, destination);
}

void MayaReader::read_disconnect() {
  std::string destination;
  while (words_.next(word_)) {
    if (!word_.is_flag()) destination = word_.text;
  }
  std::string_view name, attribute;
  split(destination, name, attribute);
  const NodeId node = find(name);
  if (node != kNoNode && !attribute.empty()) scene_.connections.disconnect(node, declared(node, attribute));
}

void MayaReader::connect(std::string_view source, std::string_view destination) {
  std::string_view from_name, from, to_name, to;
  split(source, from_name, from);
  split(destination, to_name, to);
  if (to_name == ":time1" || to_name == "time1") {
    if (!is_mere_link(from)) time_warp_ = from_name;
    return;
  }
  // Time is what curves take of themselves.
  if (from.empty() || to.empty() || from_name == ":time1" || from_name == "time1") return;
  const NodeId target = find(to_name);
  if (target == kNoNode) return;
  NodeId driver = find(from_name);
  if (is_mere_link(from)) {
    // An IK chain has no connection to the joints that it turns, only this link from the first of them.
    const bool chain = scene_.nodes.type(target) == "ikHandle" && (to == "hsj" || to == "startJoint");
    if (chain && driver != kNoNode && scene_.nodes.is_transform(driver)) {
      hold_as_unfollowed(target, driver);
      note_driver(target, driver);
    }
    return;
  }
  if (driver == kNoNode) {
    if (!can_move(target, to)) return;
    note("a connection comes from a node that is not in the file; import the reference that has it");
    driver = scene_.nodes.create("unknown", from_name);
  }
  if (bounds_ && scene_.nodes.type(target) == "mesh") add_primitive(driver, target);
  note_deformer(driver, from);
  std::string_view input = declared(target, to);
  if (scene_.nodes.type(target) == "camera" && !camera_attribute(last_name(to)).empty())
    input = camera_attribute(last_name(to));
  scene_.connections.connect(driver, declared(driver, from), target, input);
  if (scene_.nodes.type(target) == "reference" && scene_.curves.is_curve(driver)) {
    note("an animation curve moves only something in the missing reference '" +
         std::string(scene_.names.short_name(target)) + "'; import the reference into the scene");
  } else if (can_move(target, to)) {
    note_driver(driver, target);
  }
}

void MayaReader::add_primitive(NodeId maker, NodeId mesh) {
  const std::string& type = scene_.nodes.type(maker);
  if (!is_primitive(type)) return;
  const auto half = [&](const char* short_name, const char* full) {
    for (const char* name : {short_name, full})
      if (scene_.attributes.has(maker, name)) return scene_.attributes.value(maker, name).to_float() / 2.0;
    return 0.5;
  };
  // A plane lies on the ground, and its height is its depth.
  Vector corner{half("w", "width"), half("h", "height"), half("d", "depth")};
  if (type == "polyPlane") corner = {corner.x, 0.0, corner.y};
  BoundsDraft draft(scene_, mesh);
  draft.add(corner);
  draft.add({-corner.x, -corner.y, -corner.z});
  draft.assign_to(scene_, mesh);
}

// Whether the attribute bears on a position, be it through the nodes that are followed.
bool MayaReader::can_move(NodeId destination, std::string_view attribute) const {
  const std::string_view name = last_name(attribute);
  if (scene_.nodes.is_transform(destination)) {
    return channels_named(name) || name == "opm" || name == "offsetParentMatrix";
  }
  if (scene_.curves.is_curve(destination)) return name == "i" || name == "input";
  const std::string& type = scene_.nodes.type(destination);
  return type == "unitConversion" || type == "pairBlend";
}

void MayaReader::note_driver(NodeId source, NodeId destination) {
  const std::string& type = scene_.nodes.type(source);
  const bool constraint = type.ends_with("Constraint");
  const bool followed =
      scene_.curves.is_curve(source) || type == "unitConversion" || type == "pairBlend" ||
      (scene_.nodes.is_transform(source) && scene_.nodes.is_registered_type(type) && !constraint && type != "ikHandle");
  if (followed && !scene_.curves.is_curve(destination)) return;
  // A curve over anything but time is not a curve over time.
  if (!driven_[type].insert(destination).second) return;
  const std::string what = constraint ? "the constraint " : is_driven_key(type) ? "the driven key " : "the node type ";
  note(what + "'" + type + "' is not evaluated: what it drives keeps the value in the file; bake it before saving");
}

// Makes a node count as driven by something that is not followed, without touching the attributes that may be keyed:
// its rotate axis keeps its value.
void MayaReader::hold_as_unfollowed(NodeId driver, NodeId node) {
  scene_.connections.connect(driver, "unfollowed", node, "rotateAxis");
}

}  // namespace vantorelix::standalone
