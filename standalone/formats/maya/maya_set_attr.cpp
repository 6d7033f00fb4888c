// setAttr: values of nodes, in every form in which a saved scene holds them.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "base/mathematics/mathematics.h"
#include "base/number.h"
#include "host/error.h"
#include "standalone/formats/bounds_draft.h"
#include "standalone/formats/camera.h"
#include "standalone/formats/maya/maya_reader.h"

namespace vantorelix::standalone {
namespace {

std::string_view last_part(std::string_view attribute) {
  const std::size_t dot = attribute.rfind('.');
  return dot == std::string_view::npos ? attribute : attribute.substr(dot + 1);
}

}  // namespace

void MayaReader::read_set_attr() {
  std::string plug, type;
  std::optional<bool> lock;
  bool named = false;
  while (words_.next(word_)) {
    const std::string& text = word_.text;
    if (word_.is_flag() && (text == "-l" || text == "-lock")) {
      const std::string& on = argument();
      lock = on == "on" || on == "yes" || on == "true" || on == "1";
    } else if (word_.is_flag() && (text == "-type" || text == "-typ")) {
      type = argument();
    } else if (word_.is_flag() && (text == "-av" || text == "-alteredValue" || text == "-c" || text == "-clamp")) {
      continue;
    } else if (word_.is_flag() && (text == "-k" || text == "-keyable" || text == "-cb" || text == "-channelBox" ||
                                   text == "-ca" || text == "-caching" || text == "-s" || text == "-size")) {
      argument();
    } else if (!named) {
      plug = text;
      named = true;
    } else {
      words_.put_back(word_);
      break;
    }
  }
  std::string_view name, attribute;
  split(plug, name, attribute);
  const NodeId node = name.empty() ? current_ : find(name);
  if (!name.empty()) current_name_ = name;
  if (node == kNoNode) {
    if (current_name_ == ":time1") set_time(attribute);
    return;
  }
  set_values(node, attribute, type);
  if (lock && scene_.nodes.is_transform(node) && scene_.attributes.has(node, attribute)) {
    scene_.attributes.lock(node, attribute, *lock);
  }
}

void MayaReader::set_values(NodeId node, std::string_view attribute, const std::string& type) {
  if (scene_.curves.is_curve(node)) {
    const AttributePath path(attribute);
    draft(node).read(path, words_);
    return;
  }
  const std::string& node_type = scene_.nodes.type(node);
  const std::string_view last = last_part(attribute);
  const auto channels = channels_named(last);
  if (scene_.nodes.is_transform(node)) {
    if (channels) return set_channels(node, *channels);
    if (set_limits(node, last)) return;
    if (attribute == "opm" || attribute == "offsetParentMatrix") return set_offset_parent_matrix(node);
  } else if (node_type == "nurbsCurve" && type == "nurbsCurve") {
    return set_curve_shape(node);
  } else if (node_type == "script" && (attribute == "b" || attribute == "before")) {
    if (scene_.names.short_name(node) == "sceneConfigurationScriptNode") set_script();
    return;
  }
  if (node_type == "camera" && set_camera_values(node, attribute)) return;
  if (bounds_ && node_type == "mesh" && (attribute.starts_with("vt[") || attribute.starts_with("vrts[")))
    return add_vertices(node);
  if (bounds_ && is_primitive(node_type)) return set_number(node, std::string(attribute));
  const std::string_view full = declared(node, attribute);
  if (node_type == "unitConversion" || node_type == "pairBlend" || full != attribute) {
    set_number(node, std::string(full));
  } else if (channels && !scene_.nodes.is_registered_type(node_type)) {
    hold_channels(node, *channels);
  }
}

void MayaReader::set_channels(NodeId node, const NamedChannels& channels) {
  if (!read_numbers(channels.count)) return;
  if (numbers_.size() < channels.count) {
    in_.fail(words_.line(), "fewer values than the attribute has parts; correct the statement or export again");
  }
  if (channels.first == Channel::rotateOrder && !(numbers_[0] >= 0.0 && numbers_[0] <= 5.0)) {
    return note("a rotate order that is not one of 0 to 5 is ignored; correct it or export again");
  }
  const double unit = is_angle(channels.first) ? radians_ : 1.0;
  for (std::size_t k = 0; k < numbers_.size(); ++k) {
    scene_.attributes.set_channel(node, component(channels.first, k), numbers_[k] * unit);
  }
}

// Whatever the words are: an attribute of that name may be another thing on this type.
void MayaReader::hold_channels(NodeId node, const NamedChannels& channels) {
  const double unit = is_angle(channels.first) ? radians_ : 1.0;
  for (std::size_t k = 0; k < channels.count && words_.next(word_); ++k) {
    const char* const last = word_.text.data() + word_.text.size();
    double value = 0.0;
    if (word_.is_string || parse_number(word_.text.data(), last, value) != last || !std::isfinite(value)) return;
    held_channels_[node].emplace_back(component(channels.first, k), value * unit);
  }
}

void MayaReader::set_offset_parent_matrix(NodeId node) {
  if (words_.next(word_)) {
    if (word_.is_string)
      return note("an offset parent matrix that is not written as 16 numbers is ignored; correct it or export again");
    words_.put_back(word_);
  }
  if (!read_numbers(16)) return;
  if (numbers_.size() != 16) in_.fail(words_.line(), "a matrix has 16 values; correct the statement or export again");
  std::array<double, 16> matrix{};
  std::copy(numbers_.begin(), numbers_.end(), matrix.begin());
  for (std::size_t k = 12; k < 15; ++k) matrix[k] /= centimetres_;
  scene_.attributes.set_offset_parent_matrix(node, matrix);
}

// degree, spans, form, rational, dimension; knots and their count; points and theirs.
void MayaReader::set_curve_shape(NodeId node) {
  double unused = 0.0, degree = 0.0, rational = 0.0, dimension = 0.0, count = 0.0;
  words_.next_number(degree);
  words_.next_number(unused);
  words_.next_number(unused);
  words_.next_number(rational);
  words_.next_number(dimension);
  words_.next_number(count);
  for (double k = 0.0; k < count && words_.next_number(unused);) ++k;
  std::vector<Vector> points;
  double total = 0.0;
  words_.next_number(total);
  Vector p;
  bool complete = true;
  for (double k = 0.0; complete && k < total; ++k) {
    complete = words_.next_number(p.x) && words_.next_number(p.y);
    p.z = 0.0;
    if (complete && dimension > 2.0) complete = words_.next_number(p.z);
    if (complete && rational != 0.0) complete = words_.next_number(unused);
    if (complete) points.push_back(p);
  }
  if (!complete || !(degree >= 1.0 && degree <= 7.0)) {
    in_.fail(words_.line(), "the curve has fewer points than it announces; the file is damaged, export it again");
  }
  scene_.attributes.set_curve_points(node, static_cast<int>(degree), std::move(points));
}

void MayaReader::set_script() {
  std::string script;
  while (words_.next(word_)) {
    if (word_.is_string && script.size() + word_.text.size() < (std::size_t{1} << 20)) script += word_.text;
  }
  read_playback(" " + script);
}

void MayaReader::add_vertices(NodeId mesh) {
  BoundsDraft draft(scene_, mesh);
  Vector p;
  while (words_.next_number(p.x) && words_.next_number(p.y) && words_.next_number(p.z)) draft.add(p);
  draft.assign_to(scene_, mesh);
}

// False for an attribute that is not one of a camera's.
bool MayaReader::set_camera_values(NodeId shape, std::string_view attribute) {
  if (attribute == "cap" || attribute == "cameraAperture") {
    double width = 0.0, height = 0.0;
    if (!words_.next_number(width) || !words_.next_number(height)) return true;
    set_camera(scene_, shape, "horizontalFilmAperture", width);
    set_camera(scene_, shape, "verticalFilmAperture", height);
    return true;
  }
  const std::string_view name = camera_attribute(last_part(attribute));
  if (name.empty()) return false;
  double value = 0.0;
  if (!words_.next_number(value)) {
    if (!words_.next(word_)) return true;
    value = word_.text == "yes" || word_.text == "on" || word_.text == "true" ? 1.0 : 0.0;
  }
  set_camera(scene_, shape, name, value);
  return true;
}

void MayaReader::set_number(NodeId node, const std::string& attribute) {
  double value = 0.0;
  if (!words_.next_number(value)) return;
  const bool angle =
      scene_.nodes.type(node) == "pairBlend" && (attribute.starts_with("ir") || attribute.starts_with("inRot"));
  if (angle) value *= radians_ / base::kDegree;
  if (std::isfinite(value)) scene_.attributes.add(node, attribute, host::Value(value));
}

// Up to `limit` numbers; false, and a note, where one is not finite, and false where there is none.
bool MayaReader::read_numbers(std::size_t limit) {
  numbers_.clear();
  double value = 0.0;
  while (numbers_.size() < limit && words_.next_number(value)) numbers_.push_back(value);
  const bool finite = std::all_of(numbers_.begin(), numbers_.end(), [](double d) { return std::isfinite(d); });
  if (!finite) note("a value that is not a finite number is ignored; correct it or export again");
  return finite && !numbers_.empty();
}

CurveDraft& MayaReader::draft(NodeId curve) {
  const auto found = drafts_.find(curve);
  if (found != drafts_.end()) return found->second;
  const AnimCurve& start = scene_.curves.at(curve);
  CurveUnits units;
  if (start.kind() == CurveKind::angular) units.value = radians_;
  if (start.kind() == CurveKind::linear) units.tangent = 1.0 / centimetres_;
  return drafts_.emplace(curve, CurveDraft(start, units)).first->second;
}

void MayaReader::assign(NodeId curve, const CurveDraft& draft) {
  if (!draft.changed()) return;
  draft.assign_to(scene_, curve);
  if (draft.unknown_type())
    note("a tangent or infinity of an unknown kind is read as automatic or constant; set it anew before saving");
  if (draft.quaternion()) note("a curve that turns by quaternions is evaluated as Euler angles; bake it before saving");
  const std::vector<Key>& keys = scene_.curves.at(curve).keys();
  if (keys.empty()) return;
  const bool first = first_key_ > last_key_;
  first_key_ = first ? keys.front().time : std::min(first_key_, keys.front().time);
  last_key_ = first ? keys.back().time : std::max(last_key_, keys.back().time);
}

}  // namespace vantorelix::standalone
