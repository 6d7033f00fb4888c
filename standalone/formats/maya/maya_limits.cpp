// Limits of transforms and the scene's time warp: neither is applied, and what they would change is named.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "standalone/formats/maya/maya_reader.h"

namespace vantorelix::standalone {
namespace {

// What an attribute such as "minTransXLimitEnable" stands for: a bound or its switch, of `count` components from
// `first` on, which are numbered as in Limits.
struct LimitName {
  bool is_maximum;
  bool is_switch;
  std::size_t first;
  std::size_t count;
};

// Takes `text` off the front; false where it is not there.
bool take(std::string_view& name, std::string_view text) {
  if (!name.starts_with(text)) return false;
  name.remove_prefix(text.size());
  return true;
}

// Takes the letter of an axis off the front: 0 to 2, or 3 where there is none.
std::size_t take_axis(std::string_view& name, std::string_view axes) {
  const std::size_t axis = name.empty() ? std::string_view::npos : axes.find(name[0]);
  if (axis == std::string_view::npos) return 3;
  name.remove_prefix(1);
  return axis;
}

std::optional<LimitName> made_of(bool is_maximum, std::size_t kind, std::size_t axis, bool is_switch,
                                 std::string_view rest) {
  if (kind == 3 || !rest.empty()) return std::nullopt;
  return axis == 3 ? LimitName{is_maximum, is_switch, 3 * kind, 3}
                   : LimitName{is_maximum, is_switch, 3 * kind + axis, 1};
}

// "minTransLimit", "maxRotYLimitEnable"
std::optional<LimitName> long_limit_name(std::string_view name) {
  const bool is_maximum = name.starts_with("max");
  if (!take(name, is_maximum ? "max" : "min")) return std::nullopt;
  const std::size_t kind = take(name, "Trans") ? 0 : take(name, "Rot") ? 1 : take(name, "Scale") ? 2 : 3;
  const std::size_t axis = take_axis(name, "XYZ");
  if (!take(name, "Limit")) return std::nullopt;
  const bool is_switch = take(name, "Enable");
  return made_of(is_maximum, kind, axis, is_switch, name);
}

// Short names. Bounds: "mntl" and "mxtl" for three components, "mtxl" and "xtxl" for one. Switches: "mtle" and "xtle"
// for three, "mtxe" and "xtxe" for one.
std::optional<LimitName> short_limit_name(std::string_view name) {
  const bool is_compound = name.starts_with("mn") || name.starts_with("mx");
  const bool is_maximum = is_compound ? name[1] == 'x' : name.starts_with("x");
  if (name.empty() || (!is_compound && !is_maximum && name[0] != 'm')) return std::nullopt;
  name.remove_prefix(is_compound ? 2 : 1);
  const std::size_t kind = take_axis(name, "trs");
  const std::size_t axis = is_compound ? 3 : take_axis(name, "xyz");
  const bool is_switch = take(name, axis == 3 ? "le" : "e");
  if (!is_switch && !take(name, "l")) return std::nullopt;
  if (axis == 3 && is_switch == is_compound) return std::nullopt;
  return made_of(is_maximum, kind, axis, is_switch, name);
}

std::optional<LimitName> limit_named(std::string_view name) {
  const auto found = long_limit_name(name);
  return found ? found : short_limit_name(name);
}

// Frames at which to look for values beyond a limit: the keys, some frames between them, and the ends of the range.
std::vector<double> telling_frames(const Scene& scene, NodeId node) {
  constexpr int kBetween = 8;
  std::vector<double> keys = scene.curves.key_times(node);
  std::sort(keys.begin(), keys.end());
  std::vector<double> frames = {scene.settings.playback_min(), scene.settings.playback_max()};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    frames.push_back(keys[i]);
    if (i + 1 == keys.size() || keys[i] == keys[i + 1]) continue;
    for (int k = 1; k < kBetween; ++k) frames.push_back(keys[i] + (keys[i + 1] - keys[i]) * k / kBetween);
  }
  return frames;
}

}  // namespace

// Maya's own defaults, which files leave out.
Limits::Limits() {
  constexpr double kTurn = std::numbers::pi / 4.0;
  minimum.values = {-1, -1, -1, -kTurn, -kTurn, -kTurn, -1, -1, -1};
  maximum.values = {1, 1, 1, kTurn, kTurn, kTurn, 1, 1, 1};
}

bool MayaReader::set_limits(NodeId node, std::string_view attribute) {
  const auto name = limit_named(attribute);
  if (!name || !read_numbers(name->count)) return name.has_value();
  Limits& limits = limits_[node];
  Limits::Bound& bound = name->is_maximum ? limits.maximum : limits.minimum;
  for (std::size_t k = 0; k < numbers_.size(); ++k) {
    const std::size_t place = name->first + k;
    if (name->is_switch) {
      bound.on[place] = numbers_[k] != 0.0;
    } else {
      bound.values[place] = place >= 3 && place < 6 ? numbers_[k] * radians_ : numbers_[k];
    }
  }
  return true;
}

void MayaReader::note_limits() {
  std::vector<NodeId> beyond;
  for (const auto& [node, limits] : limits_)
    if (scene_.nodes.exists(node) && leaves_limits(node, limits)) beyond.push_back(node);
  limits_.clear();
  if (beyond.empty()) return;
  std::sort(beyond.begin(), beyond.end());
  note("the limits of " + names_of(beyond) +
       " are not applied, although values lie beyond them; bake what they limit before saving");
  const NodeId limit = scene_.nodes.create("limit", "limits");
  for (const NodeId node : beyond) hold_as_unfollowed(limit, node);
}

bool MayaReader::leaves_limits(NodeId node, const Limits& limits) const {
  std::vector<double> frames;
  for (std::size_t place = 0; place < limits.minimum.on.size(); ++place) {
    if (!limits.minimum.on[place] && !limits.maximum.on[place]) continue;
    if (frames.empty()) frames = telling_frames(scene_, node);
    const Channel channel = component(Channel::translateX, place);
    for (const double frame : frames) {
      const double value = scene_.evaluation.channel_at(node, channel, frame), slack = 1e-9 * (1.0 + std::abs(value));
      if (limits.minimum.on[place] && value < limits.minimum.values[place] - slack) return true;
      if (limits.maximum.on[place] && value > limits.maximum.values[place] + slack) return true;
    }
  }
  return false;
}

// Of the scene's time node.
bool MayaReader::set_time(std::string_view attribute) {
  const bool time = attribute == "o" || attribute == "outTime";
  if (!time && attribute != "etw" && attribute != "enableTimewarp") return false;
  if (!read_numbers(1)) return false;
  if (time) {
    scene_.settings.set_current_time(numbers_[0]);
  } else {
    time_warp_is_off_ = numbers_[0] == 0.0;
  }
  return true;
}

void MayaReader::note_time_warp() {
  if (time_warp_.empty() || time_warp_is_off_) return;
  note("the scene time warp " + shown(time_warp_) +
       " is not applied: trails are those of the time without it; bake the scene, or switch the warp off, before "
       "saving");
}

}  // namespace vantorelix::standalone
