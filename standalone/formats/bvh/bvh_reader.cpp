// Motion capture clips: a hierarchy of joints, then one row of numbers a frame.
//
// Row k is frame k, at exactly 1 / "Frame Time" frames a second. A position channel stands in for that component of
// the joint's OFFSET. Rotations apply in the order listed, the last one first. Every channel becomes a linear curve
// with a key on each row. The format names neither unit nor up axis: unit "unknown", y up.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/mathematics/mathematics.h"
#include "base/number.h"
#include "host/error.h"
#include "standalone/formats/bvh/bvh_channels.h"
#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {
namespace {

constexpr std::size_t kMaxJoints = 4'000'000;

bool is_line_end(char c) { return c == '\n' || c == '\r'; }

// One column of the motion table.
struct Column {
  NodeId joint;
  Channel channel;
  std::vector<Key> keys;
};

class BvhReader {
 public:
  BvhReader(ByteSource& source, const ReadOptions& options, std::size_t window) : in_(source, options, window) {}

  Scene read() {
    try {
      scene_.settings.set_linear_unit("unknown");
      read_hierarchy();
      read_motion();
      return std::move(scene_);
    } catch (const host::Error& error) {
      in_.fail(std::string("this cannot be read into a scene: ") + error.what() + "; correct it or export again");
    }
  }

 private:
  struct Open {
    NodeId node;
    bool has_channels = false;
    std::string name;  // as in the file
  };

  // --- words ------------------------------------------------------------------------------------------------
  void skip_space() {
    while (!in_.at_end() && (is_bvh_blank(in_.peek()) || is_line_end(in_.peek()))) in_.skip();
  }

  // The next word on any line, empty at the end. Braces stand alone.
  std::string word() {
    skip_space();
    std::string result;
    while (!in_.at_end() && !is_bvh_blank(in_.peek()) && !is_line_end(in_.peek())) {
      const bool brace = in_.peek() == '{' || in_.peek() == '}';
      if (brace && !result.empty()) break;
      if (result.size() == kMaxBvhName) in_.fail("a word of more than 65536 bytes; is this a BVH file?");
      result += in_.peek();
      in_.skip();
      if (brace) break;
    }
    return result;
  }

  // The rest of the line up to an opening brace, without the blanks around it: names may hold blanks.
  std::string name() {
    std::string result;
    while (!in_.at_end() && !is_line_end(in_.peek()) && in_.peek() != '{') {
      if (result.size() == kMaxBvhName) in_.fail("a name of more than 65536 bytes; is this a BVH file?");
      if (!result.empty() || !is_bvh_blank(in_.peek())) result += in_.peek();
      in_.skip();
    }
    while (!result.empty() && is_bvh_blank(result.back())) result.pop_back();
    return result;
  }

  double number(const char* what) {
    skip_space();
    in_.ready();
    double value = 0.0;
    const char* const next = parse_number(in_.begin(), in_.end(), value);
    if (next == in_.begin()) in_.fail(shown(word()) + " stands where " + what + " belongs; correct it or export again");
    if (!std::isfinite(value)) in_.fail(std::string(what) + " is not finite; correct it or export again");
    in_.advance(next);
    return value;
  }

  // "Frames:" and "Frame Time:", however the colon is set off.
  void expect(std::string_view text) {
    skip_space();
    std::string found;
    while (!in_.at_end() && !is_line_end(in_.peek()) && in_.peek() != ':' && found.size() < text.size() + 8) {
      if (!is_bvh_blank(in_.peek())) found += in_.peek();
      in_.skip();
    }
    if (!is_same_word(found, text) || in_.at_end() || in_.peek() != ':') {
      in_.fail(shown(found) + " stands where '" + std::string(text == "Frames" ? "Frames:" : "Frame Time:") +
               "' belongs; the file is cut off or damaged, export it again");
    }
    in_.skip();
  }

  // --- hierarchy --------------------------------------------------------------------------------------------
  void read_hierarchy() {
    if (const std::string first = word(); !is_same_word(first, "HIERARCHY")) {
      in_.fail("a BVH clip begins with 'HIERARCHY', this file with " + shown(first) + "; is it a BVH file?");
    }
    for (std::string keyword = word(); !is_same_word(keyword, "MOTION"); keyword = word()) {
      if (keyword.empty()) in_.fail("the file ends before 'MOTION'; it is cut off, export it again");
      read_keyword(keyword);
    }
    if (!open_.empty()) in_.fail("'MOTION' stands inside a joint: a '}' is missing; add it or export again");
    if (joints_ == 0) in_.fail("there is no 'ROOT' before 'MOTION'; export the clip with its skeleton");
  }

  void read_keyword(const std::string& keyword) {
    if (is_same_word(keyword, "ROOT")) {
      if (!open_.empty()) in_.fail("'ROOT' stands inside a joint; write 'JOINT' or close the joint with '}'");
      open_joint(name());
    } else if (open_.empty()) {
      in_.fail(shown(keyword) + " stands outside of every joint; 'ROOT' or 'MOTION' belongs here");
    } else if (is_same_word(keyword, "JOINT")) {
      open_joint(name());
    } else if (is_same_word(keyword, "End") || is_same_word(keyword, "EndSite")) {
      name();
      open_end_site();
    } else if (is_same_word(keyword, "OFFSET")) {
      read_offset();
    } else if (is_same_word(keyword, "CHANNELS")) {
      read_channels();
    } else if (keyword == "}") {
      open_.pop_back();
    } else {
      in_.fail(shown(keyword) + " is not a keyword of a joint; OFFSET, CHANNELS, JOINT, End Site or '}' belongs here");
    }
  }

  void open_joint(const std::string& in_file) { open("joint", in_file.empty() ? "joint" : in_file, in_file); }

  void open_end_site() {
    const std::string& joint = open_.back().name;
    open("transform", joint + "_End", "End Site of " + joint);
  }

  void open(const char* type, const std::string& wanted, const std::string& in_file) {
    if (++joints_ > kMaxJoints) in_.fail("more than 4000000 joints; is this a BVH file?");
    if (open_.size() == kMaxDepth) in_.fail("more than 2000 joints inside each other; is this a BVH file?");
    if (word() != "{") in_.fail("the joint " + shown(in_file) + " has no '{'; add it or export again");
    const NodeId node = scene_.nodes.create(type, wanted, open_.empty() ? kWorld : open_.back().node);
    keep_name_in_file(scene_, node, in_file);
    if (scene_.nodes.type(node) == "joint") scene_.attributes.add(node, kChannelsInFile, host::Value(std::string()));
    open_.push_back({node, false, in_file});
  }

  void read_offset() {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double value = number("an offset");
      scene_.attributes.set_channel(open_.back().node, component(Channel::translateX, axis), value);
    }
  }

  void read_channels() {
    Open& joint = open_.back();
    if (joint.has_channels) in_.fail("a second CHANNELS of " + shown(joint.name) + "; remove one");
    joint.has_channels = true;
    const double count = number("the number of channels");
    if (count < 0 || count > 6 || count != std::floor(count)) {
      in_.fail("the number of channels must be a whole number from 0 to 6; correct the number after CHANNELS");
    }
    std::vector<Channel> rotations;
    std::string listed;
    const std::size_t begin = columns_.size();
    for (int i = 0; i < static_cast<int>(count); ++i) {
      const Channel channel = read_channel(begin);
      columns_.push_back({joint.node, channel, {}});
      listed += (listed.empty() ? "" : " ") + std::string(kBvhChannels[static_cast<std::size_t>(channel)]);
      if (is_rotation(channel)) rotations.push_back(channel);
    }
    scene_.attributes.add(joint.node, kChannelsInFile, host::Value(listed));
    if (!rotations.empty())
      scene_.attributes.set_channel(joint.node, Channel::rotateOrder, static_cast<double>(rotate_order_of(rotations)));
  }

  Channel read_channel(std::size_t begin) {
    const std::string text = word();
    const std::optional<Channel> channel = bvh_channel_named(text);
    if (!channel) {
      in_.fail(shown(text) + " is not a channel; list as many of Xposition ... Zrotation as CHANNELS announces");
    }
    for (std::size_t i = begin; i < columns_.size(); ++i) {
      if (columns_[i].channel == *channel) in_.fail(shown(text) + " is listed twice for one joint; remove one");
    }
    return *channel;
  }

  // --- motion -----------------------------------------------------------------------------------------------
  void read_motion() {
    expect("Frames");
    const double frames = number("the number of frames");
    if (frames < 0 || frames != std::floor(frames)) in_.fail("the number of frames is not a whole number; correct it");
    expect("FrameTime");
    const double frame_time = number("the frame time");
    if (frame_time < 1e-9 || frame_time > 1e9) {
      in_.fail(
          "the frame time is not a length of time; give the seconds between two rows, as in 'Frame Time: 0.0333333'");
    }
    scene_.settings.set_frames_per_second(1.0 / frame_time);
    if (columns_.empty()) {
      if (frames > 0)
        scene_.warnings.add("no joint has channels, so the clip does not move; export it with its channels");
      scene_.settings.set_playback_range(0.0, 0.0);
      return;
    }
    reserve(frames);
    for (double row = 0; row < frames; ++row) read_row(row, frames);
    skip_further_rows();
    scene_.settings.set_playback_range(0.0, std::max(0.0, frames - 1.0));
    make_curves(frames > 0);
  }

  // As many keys as the file announces, but never more than its bytes can hold: a value takes two at least.
  void reserve(double frames) {
    const double possible = static_cast<double>(in_.left()) / (2.0 * static_cast<double>(columns_.size())) + 1.0;
    const auto rows = static_cast<std::size_t>(std::min(frames, possible));
    for (Column& column : columns_) column.keys.reserve(rows);
  }

  void skip_blanks() {
    while (!in_.at_end() && is_bvh_blank(in_.peek())) in_.skip();
  }

  void read_row(double row, double frames) {
    skip_space();
    if (in_.at_end()) {
      in_.fail("the file ends after " + std::to_string(static_cast<long long>(row)) + " motion rows, " +
               std::to_string(static_cast<long long>(std::min(frames - row, 9e18))) +
               " are missing; export it again or correct 'Frames:'");
    }
    std::size_t done = 0;
    for (Column& column : columns_) {
      skip_blanks();
      in_.ready();
      const char* const begin = in_.begin();
      double value = 0.0;
      const char* const next = parse_number(begin, in_.end(), value);
      if (next == begin || !std::isfinite(value)) fail_in_row(done, next == begin);
      in_.advance(next);
      if (is_rotation(column.channel)) value *= base::kDegree;
      column.keys.push_back({row, value, Tangent::linear, Tangent::linear});
      ++done;
    }
    skip_blanks();
    if (!in_.at_end() && !is_line_end(in_.peek())) fail_in_row(done, true);
  }

  [[noreturn]] void fail_in_row(std::size_t done, bool no_number) {
    const std::string needed = std::to_string(columns_.size());
    if (!no_number) in_.fail("a value of the motion row is not finite; correct it or export again");
    if (in_.at_end() || is_line_end(in_.peek())) {
      in_.fail("the motion row has " + std::to_string(done) + " values where the joints have " + needed +
               " channels; the file is cut off or damaged, export it again");
    }
    if (done == columns_.size()) {
      in_.fail("the motion row has more values than the " + needed + " channels of the joints; export the file again");
    }
    in_.fail(shown(word()) + " in a motion row is not a number; correct it or export again");
  }

  void skip_further_rows() {
    for (skip_space(); !in_.at_end(); skip_space()) {
      scene_.warnings.add(
          "a motion row after those that 'Frames:' announces is not read; correct 'Frames:' to read it");
      while (!in_.at_end() && !is_line_end(in_.peek())) in_.skip();
    }
  }

  void make_curves(bool any) {
    static constexpr std::array<const char*, 6> kAttributes = {"translateX", "translateY", "translateZ",
                                                               "rotateX",    "rotateY",    "rotateZ"};
    if (!any) return;
    for (Column& column : columns_) {
      const char* const attribute = kAttributes[static_cast<std::size_t>(column.channel)];
      const NodeId curve = scene_.curves.create(is_rotation(column.channel) ? CurveKind::angular : CurveKind::linear,
                                                std::string(scene_.names.short_name(column.joint)) + "_" + attribute);
      scene_.curves.assign(curve, std::move(column.keys), false, Infinity::constant, Infinity::constant);
      scene_.connections.connect(curve, "output", column.joint, attribute);
    }
  }

  TextInput in_;
  Scene scene_;
  std::vector<Open> open_;
  std::vector<Column> columns_;
  std::size_t joints_ = 0;
};

}  // namespace

Scene read_bvh(ByteSource& source, const ReadOptions& options, std::size_t window) {
  return BvhReader(source, options, window).read();
}

}  // namespace vantorelix::standalone
