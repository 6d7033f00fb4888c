#include "standalone/formats/gltf/gltf_changes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "standalone/formats/reader.h"
#include "standalone/formats/writer.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::standalone {

namespace {

constexpr double kMaxFrames = 1e7;

bool same_keys(const Key& a, const Key& b) {
  return a.time == b.time && a.value == b.value && a.in == b.in && a.out == b.out && a.in_x == b.in_x &&
         a.in_y == b.in_y && a.out_x == b.out_x && a.out_y == b.out_y;
}

bool same_curves(const AnimCurve& a, const AnimCurve& b) {
  return a.weighted() == b.weighted() && a.pre_infinity() == b.pre_infinity() &&
         a.post_infinity() == b.post_infinity() &&
         std::equal(a.keys().begin(), a.keys().end(), b.keys().begin(), b.keys().end(), same_keys);
}

class Changes {
 public:
  Changes(const Scene& scene, const Scene& opened, const std::string& name, std::vector<std::string>& lost)
      : scene_(scene), opened_(opened), name_(name), lost_(lost) {
    for (const NodeId node : opened_.nodes.all())
      if (opened_.attributes.has(node, kNumberInFile)) in_file_.emplace(number_of(opened_, node), node);
    if (opened_.settings.takes().size() != scene_.settings.takes().size() ||
        opened_.settings.take() != scene_.settings.take())
      fail();
  }

  std::vector<GltfChange> of(const std::vector<NodeId>& objects) {
    for (const NodeId object : objects) {
      if (!scene_.attributes.has(object, kNumberInFile)) continue;
      const auto found = in_file_.find(number_of(scene_, object));
      if (found == in_file_.end() || name_in_file(opened_, found->second) != name_in_file(scene_, object)) fail();
      add(object, found->second, "translation", Channel::translateX);
      add_rotation(object, found->second);
      add(object, found->second, "scale", Channel::scaleX);
      tell_others(object);
    }
    return std::move(changes_);
  }

 private:
  static std::size_t number_of(const Scene& scene, NodeId node) {
    return static_cast<std::size_t>(scene.attributes.value(node, kNumberInFile).to_int());
  }

  [[noreturn]] void fail() const {
    throw CannotWrite(name_ + " is another file than the one that was opened; open it again");
  }

  const AnimCurve* curve(const Scene& scene, NodeId node, Channel channel) const {
    const NodeId found = scene.curves.driving_curve(node, channel);
    return found == kNoNode ? nullptr : &scene.curves.at(found);
  }

  bool is_changed(NodeId now, NodeId before, Channel channel) const {
    const AnimCurve *here = curve(scene_, now, channel), *there = curve(opened_, before, channel);
    if ((here == nullptr) != (there == nullptr)) return true;
    return here != nullptr && !same_curves(*here, *there);
  }

  std::string plug(NodeId object, const char* path) const { return scene_.names.unique_name(object) + " " + path; }

  void add(NodeId object, NodeId before, const char* path, Channel first) {
    std::array<GltfAxis, 3> axes;
    bool changed = false;
    for (std::size_t k = 0; k < 3; ++k) {
      const Channel channel = component(first, k);
      axes[k] = {curve(scene_, object, channel), scene_.attributes.channel(object, channel)};
      changed = changed || is_changed(object, before, channel);
    }
    if (!changed) return;
    GltfKeyLosses losses;
    changes_.push_back(
        {number_of(scene_, object), path, gltf_keys_of(axes, scene_.settings.frames_per_second(), losses)});
    tell(plug(object, path), losses);
  }

  // What the file animates are quaternions, which nothing edits; curves of angles are new.
  void add_rotation(NodeId object, NodeId before) {
    std::vector<double> frames;
    bool changed = false;
    for (const Channel channel : {Channel::rotateX, Channel::rotateY, Channel::rotateZ}) {
      changed = changed || is_changed(object, before, channel);
      if (const AnimCurve* const turning = curve(scene_, object, channel)) turning->append_key_times(frames);
    }
    if (!changed || frames.empty()) return;
    const auto [least, most] = std::minmax_element(frames.begin(), frames.end());
    const double first = std::max(0.0, *least), last = std::max(0.0, *most);
    if (last - first > kMaxFrames) throw CannotWrite(plug(object, "rotation") + " has keys too far apart for glTF");
    for (double frame = std::ceil(first); frame < last; ++frame) frames.push_back(frame);
    frames.push_back(first);
    std::sort(frames.begin(), frames.end());
    frames.erase(frames.begin(), std::lower_bound(frames.begin(), frames.end(), 0.0));
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    std::vector<Quaternion> rotations;
    for (const double frame : frames) {
      const auto at = [&](Channel channel) { return scene_.evaluation.channel_at(object, channel, frame); };
      rotations.push_back(
          quaternion_of({at(Channel::rotateX), at(Channel::rotateY), at(Channel::rotateZ)}, at(Channel::rotateOrder)));
    }
    GltfKeyLosses losses;
    changes_.push_back({number_of(scene_, object), "rotation",
                        gltf_keys_of(frames, rotations, scene_.settings.frames_per_second(), losses)});
    losses.rounded = true;  // angles become quaternions
    losses.divided = true;
    tell(plug(object, "rotation"), losses);
  }

  void tell(const std::string& what, const GltfKeyLosses& losses) {
    if (losses.rounded) lost_.push_back(what + " is rounded to glTF's 32 bits");
    if (losses.before_start)
      lost_.push_back(what + " has keys before frame 0, where glTF has no time; from there on it is kept");
    if (losses.goes_on) lost_.push_back(what + " goes on before or after its keys, where glTF holds");
    if (losses.divided) lost_.push_back(what + " goes straight from frame to frame, as glTF does not have its curves");
    if (losses.dropped)
      lost_.push_back(what + " has keys closer together than 32 bits can tell; the last of them is kept");
  }

  void tell_others(NodeId object) {
    for (const Connection& input : scene_.connections.into(object)) {
      const auto named = channels_named(input.attribute, scene_.nodes.type(object) == "joint");
      if (named && named->first > Channel::scaleZ)
        lost_.push_back(scene_.names.unique_name(object) + "." + input.attribute +
                        " is left out, as glTF has no such channel");
    }
  }

  const Scene& scene_;
  const Scene& opened_;
  std::string name_;
  std::vector<std::string>& lost_;
  std::unordered_map<std::size_t, NodeId> in_file_;
  std::vector<GltfChange> changes_;
};

}  // namespace

bool is_gltf_scene(const Scene& scene, const std::vector<NodeId>& objects) {
  return std::any_of(objects.begin(), objects.end(),
                     [&](NodeId object) { return scene.attributes.has(object, kNumberInFile); });
}

std::vector<GltfChange> gltf_changes(const Scene& scene, const Scene& opened, const std::string& name,
                                     const std::vector<NodeId>& objects, std::vector<std::string>& lost) {
  return Changes(scene, opened, name, lost).of(objects);
}

}  // namespace vantorelix::standalone
