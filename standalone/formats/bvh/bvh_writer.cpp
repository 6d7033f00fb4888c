// BVH clips out again.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "base/mathematics/mathematics.h"
#include "base/number_text.h"
#include "base/text_sink.h"
#include "standalone/formats/bvh/bvh_channels.h"
#include "standalone/formats/bvh/bvh_figure.h"
#include "standalone/formats/reader.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {

namespace {

constexpr std::size_t kMaxNumbers = std::size_t{1} << 25;

// Of the neighbours of `near` that `gives` holds for, the one with the shortest text; nothing where it holds for none.
template <class Gives>
std::optional<double> shortest_near(double near, const Gives& gives) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  const double down = std::nextafter(near, -kFar), up = std::nextafter(near, kFar);
  std::optional<double> best;
  for (const double candidate : {near, down, up, std::nextafter(down, -kFar), std::nextafter(up, kFar)})
    if (gives(candidate) && (!best || number_text(candidate).size() < number_text(*best).size())) best = candidate;
  return best;
}

// As it is read back; else as near as can be.
double degrees_of(double radians, bool& exact) {
  const double near = radians / base::kDegree;
  if (near == 0.0) return radians;  // with its sign
  const auto found = shortest_near(near, [radians](double degrees) { return degrees * base::kDegree == radians; });
  exact = exact && found.has_value();
  return found.value_or(near);
}

BvhRows rows_of(const FrameRange& range) {
  const double first = std::ceil(range.first), last = std::floor(range.last);
  if (!(first <= last)) throw CannotWrite("there is no whole frame in the range, and a BVH clip has nothing else");
  if (!(last - first < static_cast<double>(kMaxNumbers)))
    throw CannotWrite("the range is too long for a BVH clip; choose fewer frames");
  return {first, static_cast<std::size_t>(last - first) + 1};
}

class ClipFile {
 public:
  ClipFile(const Scene& scene, const FrameRange& range) : scene_(scene), rows_(rows_of(range)) {}

  Written write(const std::vector<NodeId>& objects) {
    joints_ = bvh_joints(scene_, objects, losses_);
    if (joints_.empty()) throw CannotWrite("none of these objects is a joint, and a BVH clip has nothing else");
    if (joints_.size() > kMaxNumbers / kBvhChannelCount / rows_.count)
      throw CannotWrite(counted(joints_.size(), "joint") + " at " + counted(rows_.count, "frame") +
                        " are too much for a BVH clip; choose fewer objects");
    fill_bvh_joints(scene_, rows_, joints_, losses_);
    out_ << "HIERARCHY\n";
    for (std::size_t i = 0; i < joints_.size(); ++i) write_joint(i);
    write_motion();
    std::vector<std::string> lost = losses_.sentences();
    tell_scene(lost);
    return {out_.text(), std::move(lost)};
  }

 private:
  void indent(std::size_t depth) {
    for (std::size_t k = 0; k < depth; ++k) out_ << '\t';
  }

  void write_joint(std::size_t index) {
    const BvhJoint& joint = joints_[index];
    indent(joint.depth);
    if (joint.is_end_site)
      out_ << "End Site\n";
    else
      out_ << (joint.depth == 0 ? "ROOT " : "JOINT ") << name_of_joint(joint) << '\n';
    indent(joint.depth);
    out_ << "{\n";
    write_place(joint);
    const bool last = index + 1 == joints_.size();
    const std::size_t next = last ? 0 : joints_[index + 1].depth;
    if (next > joint.depth) return;
    if (!joint.is_end_site && !is_from_clip(joint)) write_end(joint.depth + 1);
    for (std::size_t depth = joint.depth + 1; depth-- > next;) close(depth);
  }

  void write_place(const BvhJoint& joint) {
    indent(joint.depth + 1);
    out_ << "OFFSET";
    for (const double number : joint.offset) out_ << ' ' << number;
    out_ << '\n';
    if (joint.columns.empty()) return;
    indent(joint.depth + 1);
    out_ << "CHANNELS " << static_cast<std::int64_t>(joint.columns.size());
    for (const BvhColumn& column : joint.columns) out_ << ' ' << kBvhChannels[static_cast<std::size_t>(column.channel)];
    out_ << '\n';
  }

  // Programs expect a joint without joints below to have one.
  void write_end(std::size_t depth) {
    if (depth >= kMaxDepth) return;
    indent(depth);
    out_ << "End Site\n";
    indent(depth);
    out_ << "{\n";
    indent(depth + 1);
    out_ << "OFFSET 0 0 0\n";
    close(depth);
  }

  void close(std::size_t depth) {
    indent(depth);
    out_ << "}\n";
  }

  bool is_from_clip(const BvhJoint& joint) const { return scene_.attributes.has(joint.node, kChannelsInFile); }

  // As the reader takes a name: what is left of the line, up to a brace, without the blanks around it.
  std::string name_of_joint(const BvhJoint& joint) {
    const bool end_site = is_bvh_end_site(scene_, joint.node);  // one that moves has a joint's name
    const std::string wanted =
        end_site ? std::string(scene_.names.short_name(joint.node)) : name_in_file(scene_, joint.node);
    std::string name = wanted.substr(0, kMaxBvhName);
    const auto is_blank = [](char c) { return is_bvh_blank(c); };
    const auto first = std::find_if_not(name.begin(), name.end(), is_blank);
    const auto last = std::find_if_not(name.rbegin(), name.rend(), is_blank).base();
    for (auto c = name.begin(); c != name.end(); ++c)
      if (*c == '\n' || *c == '\r' || *c == '{' || c < first || c >= last) *c = '_';
    if (name != wanted) losses_.renamed.add(scene_.names.unique_name(joint.node));
    return name;
  }

  void write_motion() {
    const bool moves =
        std::any_of(joints_.begin(), joints_.end(), [](const BvhJoint& j) { return !j.columns.empty(); });
    const std::size_t rows = moves && !is_clip_without_rows() ? rows_.count : 0;
    out_ << "MOTION\nFrames: " << static_cast<std::int64_t>(rows) << "\nFrame Time: " << frame_time() << '\n';
    std::vector<bool> exact;
    for (std::size_t row = 0; row < rows; ++row) write_row(row, exact);
    std::size_t index = 0;
    for (const BvhJoint& joint : joints_)
      for (const BvhColumn& column : joint.columns)
        if (const std::size_t at = index++; at < exact.size() && !exact[at] && !joint.is_worked_out)
          losses_.rounded.add(scene_.names.unique_name(joint.node) + "." +
                              std::string(kBvhChannels[static_cast<std::size_t>(column.channel)]));
  }

  // A clip may list channels and have no row for them. It has no curves, and nothing moves.
  bool is_clip_without_rows() const {
    return std::all_of(joints_.begin(), joints_.end(), [&](const BvhJoint& joint) {
      return (is_from_clip(joint) || joint.is_end_site) && scene_.connections.into(joint.node).empty();
    });
  }

  void write_row(std::size_t row, std::vector<bool>& exact) {
    std::size_t index = 0;
    for (const BvhJoint& joint : joints_)
      for (const BvhColumn& column : joint.columns) {
        if (index == exact.size()) exact.push_back(true);
        bool same = true;
        const double value = column.values[row];
        out_ << (index == 0 ? "" : " ") << (is_rotation(column.channel) ? degrees_of(value, same) : value);
        if (!same) exact[index] = false;
        ++index;
      }
    out_ << '\n';
  }

  double frame_time() {
    const double rate = scene_.settings.frames_per_second();
    const auto found = shortest_near(1.0 / rate, [rate](double seconds) { return 1.0 / seconds == rate; });
    rate_is_exact_ = found.has_value();
    return found.value_or(1.0 / rate);
  }

  void tell_scene(std::vector<std::string>& lost) const {
    const std::string unit = scene_.settings.linear_unit();
    if (!rate_is_exact_)
      lost.push_back("no frame time gives " + number_text(scene_.settings.frames_per_second()) +
                     " frames a second to the last bit; it is rounded");
    if (rows_.first != 0.0)
      lost.push_back("BVH counts frames from 0: frame " + number_text(rows_.first) + " of the scene becomes 0");
    if (unit != "unknown") lost.push_back("BVH names no unit: the numbers are in " + unit);
    if (scene_.settings.up_axis() != 'y') lost.push_back("BVH names no axis that points up: here it is z");
  }

  const Scene& scene_;
  BvhRows rows_;
  BvhLosses losses_;
  std::vector<BvhJoint> joints_;
  bool rate_is_exact_ = true;
  StringSink out_;
};

}  // namespace

Written write_bvh(const Scene& scene, const std::vector<NodeId>& objects, const FrameRange& range) {
  return ClipFile(scene, range).write(objects);
}

}  // namespace vantorelix::standalone
