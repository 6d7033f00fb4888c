#include "standalone/formats/fbx/fbx_reader.h"

#include <ufbx.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/matrix.h"
#include "host/error.h"
#include "standalone/formats/fbx/fbx_properties.h"
#include "standalone/formats/maya/maya_units.h"
#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {
namespace {

std::string text_of(const ufbx_string& text) { return {text.data, text.length}; }

std::string unit_name(double centimetres) {
  for (const char* name : {"mm", "cm", "m", "km", "in", "ft", "yd", "mi"}) {
    if (std::abs(linear_unit_named(name)->centimetres - centimetres) <= 1e-6 * centimetres) return name;
  }
  std::string number = std::to_string(centimetres);
  number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
  return number + " cm";
}

// "positive x" is 0, "negative x" 1, ... "negative z" 5.
std::size_t axis_of(ufbx_coordinate_axis axis) { return static_cast<std::size_t>(axis) / 2; }
double sign_of(ufbx_coordinate_axis axis) { return axis % 2 == 0 ? 1.0 : -1.0; }

constexpr ufbx_coordinate_axes kYUp = {UFBX_COORDINATE_AXIS_POSITIVE_X, UFBX_COORDINATE_AXIS_POSITIVE_Y,
                                       UFBX_COORDINATE_AXIS_POSITIVE_Z};
constexpr ufbx_coordinate_axes kZUp = {UFBX_COORDINATE_AXIS_POSITIVE_X, UFBX_COORDINATE_AXIS_POSITIVE_Z,
                                       UFBX_COORDINATE_AXIS_NEGATIVE_Y};

// Row vectors: right becomes right, up becomes up, front becomes front, all `scale` times as long.
std::array<double, 16> turned(const ufbx_coordinate_axes& from, const ufbx_coordinate_axes& to, double scale) {
  std::array<double, 16> matrix{};
  matrix[15] = 1.0;
  const auto turn = [&](ufbx_coordinate_axis a, ufbx_coordinate_axis b) {
    matrix[axis_of(a) * 4 + axis_of(b)] = sign_of(a) * sign_of(b) * scale;
  };
  turn(from.right, to.right);
  turn(from.up, to.up);
  turn(from.front, to.front);
  return matrix;
}

}  // namespace

FbxReader::FbxReader(FbxDocument document, std::string name, const ReadOptions& options)
    : document_(std::move(document)),
      name_(std::move(name)),
      options_(options),
      progress_(options),
      clock_(*document_),
      anim_(document_->anim),
      conversion_(turned(kYUp, kYUp, 1.0)) {}

Scene FbxReader::read() {
  try {
    scene_.settings.set_frames_per_second(clock_.frames_per_second());
    read_units();
    read_axes();
    choose_take();
    collect_animation();
    create_nodes();
    animate();
    inherit_scales();
    animate_cameras();
    note_unfollowed();
    const bool has_range = scene_.settings.playback_min() < scene_.settings.playback_max();
    // A take that does not say what it plays plays what it has.
    if (!has_range && first_key_ < last_key_) scene_.settings.set_playback_range(first_key_, last_key_);
    return std::move(scene_);
  } catch (const host::Error& error) {
    throw FormatError(name_, 0, std::string("this cannot be read into a scene: ") + error.what() + "; export it again");
  }
}

void FbxReader::read_units() {
  double centimetres = document_->settings.unit_meters * 100.0;
  if (!(centimetres > 0.0 && centimetres < 1e12)) {
    scene_.warnings.add("the file's unit is not a length and is read as centimetres; export it again with a unit");
    centimetres = 1.0;
  }
  scene_.settings.set_linear_unit(unit_name(centimetres));
  if (options_.linear_unit.empty()) return;
  const auto unit = linear_unit_named(options_.linear_unit);
  if (!unit)
    throw FormatError(name_, 0, shown(options_.linear_unit) + " is not a unit; give mm, cm, m, km, in, ft, yd or mi");
  scene_.settings.set_linear_unit(unit->name);
  const double scale = centimetres / unit->centimetres;
  converts_ = std::abs(scale - 1.0) > 1e-12;
  if (converts_) conversion_ = turned(kYUp, kYUp, scale);
}

void FbxReader::read_axes() {
  ufbx_coordinate_axes axes = document_->settings.axes;
  if (!ufbx_coordinate_axes_valid(axes)) axes = kYUp;
  const bool y_up = axes.up == UFBX_COORDINATE_AXIS_POSITIVE_Y, z_up = axes.up == UFBX_COORDINATE_AXIS_POSITIVE_Z;
  scene_.settings.set_up_axis(z_up ? 'z' : 'y');
  if (options_.up_axis == 0) {
    if (!y_up && !z_up)
      scene_.warnings.add("neither y nor z points up in this file; choose an up axis to have it turned");
    return;
  }
  scene_.settings.set_up_axis(options_.up_axis);
  if (options_.up_axis == 'y' ? y_up : z_up) return;
  const double scale = conversion_[0];
  conversion_ = turned(axes, options_.up_axis == 'y' ? kYUp : kZUp, scale);
  converts_ = true;
}

void FbxReader::choose_take() {
  std::vector<Take> takes;
  for (const ufbx_anim_stack* stack : document_->anim_stacks)
    takes.push_back({text_of(stack->name), clock_.frame(stack->time_begin), clock_.frame(stack->time_end)});
  const std::size_t chosen = take_named(options_.take, takes, "take", name_);
  scene_.settings.set_playback_range(0.0, 0.0);
  if (!takes.empty()) {
    anim_ = document_->anim_stacks[chosen]->anim;
    const Take& take = takes[chosen];
    if (take.first <= take.last) scene_.settings.set_playback_range(take.first, take.last);
  }
  scene_.settings.set_takes(std::move(takes), chosen);
}

void FbxReader::note_unfollowed() {
  note_constraints();
  note_connections();
  note_limits();
  for (std::size_t i = 0; i < document_->cache_deformers.count; ++i) {
    scene_.warnings.add(
        "a point cache moves the points of a mesh, not its node, and is not read: the trail is the node's");
  }
  for (const ufbx_warning& warning : document_->metadata.warnings) {
    if (warning.type == UFBX_WARNING_TRUNCATED_ARRAY || warning.type == UFBX_WARNING_DUPLICATE_OBJECT_ID) {
      scene_.warnings.add("the file is damaged: " + text_of(warning.description) + "; export it again");
    }
  }
}

void FbxReader::note_constraints() {
  for (const ufbx_constraint* constraint : document_->constraints) {
    if (!constraint->active || constraint->weight == 0.0) continue;
    scene_.warnings.add("the constraint " + shown(text_of(constraint->type_name)) +
                        " is not evaluated: what it drives keeps the value in the file; bake it before exporting");
    for (const ufbx_node* node : {constraint->node, constraint->ik_end_node}) {
      if (node != nullptr && !node->is_root) hold_as_unfollowed(*node, "constraint", text_of(constraint->name));
    }
  }
}

void FbxReader::note_connections() {
  const auto connected = [](const ufbx_prop& property) { return (property.flags & UFBX_PROP_FLAG_CONNECTED) != 0; };
  for (const ufbx_node* node : document_->nodes) {
    if (node->is_root || std::none_of(node->props.props.begin(), node->props.props.end(), connected)) continue;
    for (const FbxNodeProperty& property : kFbxNodeProperties) {
      const ufbx_prop* const found = ufbx_find_prop(&node->props, property.name);
      if (found == nullptr || !connected(*found)) continue;
      scene_.warnings.add("a property that another one drives keeps the value in the file; bake it before exporting");
      hold_as_unfollowed(*node, "connection", property.name);
    }
  }
}

// Limits that the values keep to do nothing.
void FbxReader::note_limits() {
  for (const ufbx_node* node : document_->nodes) {
    if (node->is_root) continue;
    bool beyond = false;
    for (const auto& [property, limits] :
         {std::pair{kFbxTranslation, "Translation"}, {kFbxRotation, "Rotation"}, {kFbxScaling, "Scaling"}}) {
      beyond = beyond || leaves_limits(*node, property, limits);
    }
    if (!beyond) continue;
    scene_.warnings.add(
        "limits are not applied, although values lie beyond them; bake what they limit before exporting");
    hold_as_unfollowed(*node, "limit", "limits");
  }
}

// Whether a key, or the static value where there is none, lies beyond a limit that is switched on.
bool FbxReader::leaves_limits(const ufbx_node& node, std::size_t property, const std::string& limits) const {
  if (!ufbx_find_bool(&node.props, (limits + "Active").c_str(), false)) return false;
  const ufbx_vec3 rest = ufbx_find_vec3(&node.props, kFbxNodeProperties[property].name, ufbx_vec3{});
  for (std::size_t k = 0; k < 3; ++k) {
    double lowest = rest.v[k], highest = rest.v[k];
    const Values* const values = values_of(node, property);
    const ufbx_anim_curve* const curve = values == nullptr ? nullptr : values->front().value->curves[k];
    if (curve != nullptr && curve->keyframes.count > 0) lowest = curve->min_value, highest = curve->max_value;
    const auto limit = [&](const char* side, double otherwise) {
      const std::string name = limits + side;
      const bool on = ufbx_find_bool(&node.props, (name + "XYZ"[k]).c_str(), false);
      return on ? ufbx_find_vec3(&node.props, name.c_str(), ufbx_vec3{}).v[k] : otherwise;
    };
    // Values are kept in single precision.
    const double slack = 1e-5 * (1.0 + std::max(std::abs(lowest), std::abs(highest)));
    if (lowest < limit("Min", lowest) - slack || highest > limit("Max", highest) + slack) return true;
  }
  return false;
}

// Makes a node count as driven by something that is not followed: its rotate axis, which nothing else drives, keeps its
// value.
void FbxReader::hold_as_unfollowed(const ufbx_node& node, const char* what, const std::string& name) {
  scene_.connections.connect(scene_.nodes.create(what, name), "unfollowed", id_of(node), "rotateAxis");
}

Scene read_fbx(std::string_view bytes, const std::string& name, const ReadOptions& options) {
  const FbxDocument document = load_fbx(bytes, name, options);
  Scene scene = FbxReader(document, name, options).read();
  if (lacks_its_end(bytes, *document)) {
    scene.warnings.add(
        "the section 'Takes', which ends a text file, is missing: the file may be cut off, and what came after "
        "is not here; copy or export it again");
  }
  return scene;
}

}  // namespace vantorelix::standalone
