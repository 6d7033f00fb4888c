#include "standalone/formats/gltf/gltf_animation.h"

#include <cgltf.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

#include "standalone/formats/gltf/gltf_rotation.h"
#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {
namespace {

// What keeping a key takes: of a curve, with the vectors that it is built from, and of a track.
constexpr std::uint64_t kCurveKeyBytes = 160;
constexpr std::uint64_t kTrackKeyBytes = sizeof(Quaternion) + sizeof(GltfRotation::Tangents) + sizeof(double);

std::string_view attribute_of(cgltf_animation_path_type path) {
  switch (path) {
    case cgltf_animation_path_type_translation:
      return "translate";
    case cgltf_animation_path_type_rotation:
      return "rotate";
    case cgltf_animation_path_type_scale:
      return "scale";
    default:
      return {};
  }
}

GltfInterpolation interpolation_of(const cgltf_animation_sampler& sampler) {
  switch (sampler.interpolation) {
    case cgltf_interpolation_type_step:
      return GltfInterpolation::step;
    case cgltf_interpolation_type_cubic_spline:
      return GltfInterpolation::cubic_spline;
    default:
      return GltfInterpolation::linear;
  }
}

// Times are single precision: one that is meant to be a whole frame is a little off.
double first_frame(double frame) { return std::floor(frame + std::max(1e-4, std::abs(frame) * 1e-6)); }
double last_frame(double frame) { return std::ceil(frame - std::max(1e-4, std::abs(frame) * 1e-6)); }

class ClipReader {
 public:
  ClipReader(GltfDocument& document, const std::vector<NodeId>& nodes, Scene& scene)
      : document_(document), nodes_(nodes), scene_(scene), fps_(scene.settings.frames_per_second()) {}

  void read(const std::string& wanted) {
    const cgltf_data& data = document_.data();
    if (data.animations_count == 0) {
      if (!wanted.empty()) document_.fail("there is no clip " + shown(wanted) + "; the file has no clips");
      scene_.settings.set_playback_range(0.0, 0.0);
      return;
    }
    std::vector<Take> takes;
    for (std::size_t i = 0; i < data.animations_count; ++i) takes.push_back(take_of(data.animations[i], i));
    const std::size_t chosen = take_named(wanted, takes, "clip", document_.name());
    scene_.settings.set_playback_range(takes[chosen].first, takes[chosen].last);
    scene_.settings.set_takes(std::move(takes), chosen);
    for (std::size_t i = 0; i < data.animations[chosen].channels_count; ++i) {
      drive(data.animations[chosen].channels[i], i);
    }
  }

 private:
  struct Times {
    std::vector<double> frames;     // strictly ascending
    std::vector<std::size_t> kept;  // which of the file's keys they are
    std::size_t in_file = 0;
  };
  struct Span {
    double first, last;
  };

  // Whether the channel moves a node that is there. One that cannot be followed leaves a warning where it is `told`.
  bool is_followed(const cgltf_animation_channel& channel, bool told) {
    if (channel.target_path == cgltf_animation_path_type_weights) return false;  // moves no origin
    if (attribute_of(channel.target_path).empty() || channel.target_node == nullptr) {
      if (told)
        scene_.warnings.add(
            "an animation channel without a node, or of an unknown path, is not followed; animate the translation, "
            "rotation or scale of a node instead");
      return false;
    }
    return node_of(channel) != kNoNode;
  }

  NodeId node_of(const cgltf_animation_channel& channel) const {
    return nodes_[static_cast<std::size_t>(channel.target_node - document_.data().nodes)];
  }

  Take take_of(const cgltf_animation& clip, std::size_t number) {
    Take take = {unique_name(gltf_text(clip.name), number), 0.0, 0.0};
    bool any = false;
    for (std::size_t i = 0; i < clip.channels_count; ++i) {
      if (!is_followed(clip.channels[i], false)) continue;
      const auto [first, last] = span_of(*clip.channels[i].sampler->input);
      take.first = any ? std::min(take.first, first) : first;
      take.last = any ? std::max(take.last, last) : last;
      any = true;
    }
    take.last = std::max(take.first, take.last);
    return take;
  }

  // Clips without a name are "clip<number>"; of equal names all but the first get their number behind.
  std::string unique_name(std::string name, std::size_t number) {
    if (name.empty()) name = "clip" + std::to_string(number);
    while (!names_.insert(name).second) name += "_" + std::to_string(number);
    return name;
  }

  // The whole frames from the first key to the last, if the keys are in order, which only those of the clip must be.
  Span span_of(const cgltf_accessor& accessor) {
    const auto known = spans_.find(&accessor);
    if (known != spans_.end()) return known->second;
    const GltfNumbers seconds = key_seconds(accessor);
    const Span span = {first_frame(seconds(0, 0) * fps_), last_frame(seconds(accessor.count - 1, 0) * fps_)};
    return spans_.emplace(&accessor, span).first->second;
  }

  // At least one.
  GltfNumbers key_seconds(const cgltf_accessor& accessor) {
    if (accessor.type != cgltf_type_scalar || accessor.component_type != cgltf_component_type_r_32f) {
      document_.fail(document_.label(accessor) + " holds key times and is not a list of floats; export the file again");
    }
    if (accessor.count == 0)
      document_.fail(document_.label(accessor) + " is a list of key times without any; export the file again");
    return document_.numbers(accessor);
  }

  const Times& times_of(const cgltf_accessor& accessor) {
    const auto known = times_.find(&accessor);
    if (known != times_.end()) return known->second;
    const GltfNumbers seconds = key_seconds(accessor);
    document_.take(accessor.count, 2 * sizeof(double));
    Times times;
    times.in_file = accessor.count;
    times.frames.reserve(accessor.count);
    times.kept.reserve(accessor.count);
    for (std::size_t i = 0; i < accessor.count; ++i) {
      const double frame = seconds(i, 0) * fps_;
      if (i != 0 && seconds(i, 0) < seconds(i - 1, 0)) {
        document_.fail(document_.label(accessor) + " holds key times that go back; export the file again");
      }
      if (!times.frames.empty() && frame == times.frames.back()) {
        scene_.warnings.add("of two keys at the same time only the later one counts; remove the other");
        times.kept.back() = i;
      } else {
        times.frames.push_back(frame);
        times.kept.push_back(i);
      }
    }
    return times_.emplace(&accessor, std::move(times)).first->second;
  }

  // The numbers of a channel's keys; of a spline three for each: in tangent, value, out tangent.
  GltfNumbers values_of(const cgltf_animation_channel& channel, const Times& times) {
    const cgltf_accessor& output = *channel.sampler->output;
    const bool rotation = channel.target_path == cgltf_animation_path_type_rotation;
    if (output.type != (rotation ? cgltf_type_vec4 : cgltf_type_vec3) ||
        (!rotation && output.component_type != cgltf_component_type_r_32f)) {
      document_.fail(document_.label(output) + " holds " + std::string(attribute_of(channel.target_path)) +
                     " keys and is not a list of " + (rotation ? "quaternions" : "three floats") +
                     "; export the file again");
    }
    const std::size_t per_key = interpolation_of(*channel.sampler) == GltfInterpolation::cubic_spline ? 3 : 1;
    if (output.count / per_key != times.in_file || output.count % per_key != 0) {
      document_.fail(document_.label(output) + " has " + std::to_string(output.count) + " values for " +
                     std::to_string(times.in_file) + " key times; the file is damaged, export it again");
    }
    return document_.numbers(output);
  }

  void drive(const cgltf_animation_channel& channel, std::size_t number) {
    if (!is_followed(channel, true)) return;
    const NodeId node = node_of(channel);
    if (!driven_.insert({node, static_cast<int>(channel.target_path)}).second) {
      scene_.warnings.add(
          "a second animation channel of the same node and path is not followed; keep only one of them");
      return;
    }
    const Times& times = times_of(*channel.sampler->input);
    const GltfNumbers values = values_of(channel, times);
    if (channel.target_node->has_matrix) {
      scene_.warnings.add(
          "an animation channel moves a node that is given as a matrix; the channel replaces that part of the matrix");
    }
    const bool rotation = channel.target_path == cgltf_animation_path_type_rotation;
    document_.take(rotation ? 1 : 3, GltfAllowance::kNode);
    document_.take(times.frames.size(), rotation ? kTrackKeyBytes : 3 * kCurveKeyBytes);
    if (rotation) {
      drive_rotation(node, interpolation_of(*channel.sampler), times, values, number);
    } else {
      for (std::size_t axis = 0; axis < 3; ++axis) drive_axis(node, channel, axis, times, values);
    }
  }

  void drive_axis(NodeId node, const cgltf_animation_channel& channel, std::size_t axis, const Times& times,
                  const GltfNumbers& values) {
    const GltfInterpolation interpolation = interpolation_of(*channel.sampler);
    const bool spline = interpolation == GltfInterpolation::cubic_spline;
    std::vector<Key> keys;
    keys.reserve(times.frames.size());
    for (std::size_t i = 0; i < times.frames.size(); ++i) {
      const std::size_t at = times.kept[i];
      Key& key = keys.emplace_back();  // filled in place: copying a key just after writing it stalls the processor
      key.time = times.frames[i];
      key.value = values(spline ? 3 * at + 1 : at, axis);
      key.in = Tangent::linear;
      key.out = interpolation == GltfInterpolation::step ? Tangent::step : Tangent::linear;
      if (spline) {
        key.in = key.out = Tangent::fixed;
        key.in_y = values(3 * at, axis);  // a second, as in_x
        key.out_y = values(3 * at + 2, axis);
      }
    }
    const bool translation = channel.target_path == cgltf_animation_path_type_translation;
    const std::string attribute = std::string(attribute_of(channel.target_path)) + "XYZ"[axis];
    const NodeId curve = scene_.curves.create(translation ? CurveKind::linear : CurveKind::unitless,
                                              std::string(scene_.names.short_name(node)) + "_" + attribute);
    scene_.curves.assign(curve, std::move(keys), false, Infinity::constant, Infinity::constant);
    scene_.connections.connect(curve, "output", node, attribute);
  }

  void drive_rotation(NodeId node, GltfInterpolation interpolation, const Times& times, const GltfNumbers& values,
                      std::size_t number) {
    const auto read = [&values](std::size_t at, Quaternion& to) {
      for (std::size_t i = 0; i < 4; ++i) to[i] = values(at, i);
    };
    const bool spline = interpolation == GltfInterpolation::cubic_spline;
    GltfRotation::Keys keys = {times.frames, std::vector<Quaternion>(times.kept.size()), {}};
    if (spline) keys.tangents.resize(times.kept.size());
    for (std::size_t key = 0; key < times.kept.size(); ++key) {
      const std::size_t i = times.kept[key], at = spline ? 3 * i + 1 : i;
      if (values(at, 0) == 0.0 && values(at, 1) == 0.0 && values(at, 2) == 0.0 && values(at, 3) == 0.0) {
        document_.fail("channel " + std::to_string(number) + " of the clip has a rotation of length 0 at its key " +
                       std::to_string(i) + "; correct it or export again");
      }
      read(at, keys.values[key]);
      if (!spline) continue;
      read(3 * i, keys.tangents[key].in);
      read(3 * i + 2, keys.tangents[key].out);
    }
    const NodeId track =
        scene_.curves.create_track(std::make_shared<GltfRotation>(std::move(keys), interpolation, fps_),
                                   std::string(scene_.names.short_name(node)) + "_rotate");
    scene_.connections.connect(track, "output", node, "rotate");
  }

  GltfDocument& document_;
  const std::vector<NodeId>& nodes_;
  Scene& scene_;
  double fps_;
  std::unordered_map<const cgltf_accessor*, Span> spans_;
  std::unordered_map<const cgltf_accessor*, Times> times_;
  std::set<std::pair<NodeId, int>> driven_;
  std::set<std::string> names_;
};

}  // namespace

void read_clips(GltfDocument& document, const std::vector<NodeId>& nodes, const std::string& wanted, Scene& scene) {
  ClipReader(document, nodes, scene).read(wanted);
}

}  // namespace vantorelix::standalone
