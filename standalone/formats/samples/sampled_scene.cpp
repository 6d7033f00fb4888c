#include "standalone/formats/samples/sampled_scene.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include "base/number_text.h"
#include "standalone/formats/samples/matrix_parts.h"
#include "standalone/formats/text_input.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::standalone {

namespace {

constexpr std::size_t kMatrixBytes = 16 * sizeof(double);
constexpr double kFarthestFrame = 1e9;
// Angles, scales and shears that differ by no more than this come from rounding in whatever made the matrices.
constexpr double kRounding = 1e-12;

double double_at(const char* bytes) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < sizeof bits; ++i) bits |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  return std::bit_cast<double>(bits);
}

class Builder {
 public:
  Builder(const SampledObjects& objects, std::string_view matrices, const std::string& name, std::size_t line,
          const ReadOptions& options)
      : objects_(objects), matrices_(matrices), name_(name), line_(line), progress_(options) {}

  Scene build() {
    check();
    set_up();
    for (std::size_t i = 0; i < objects_.names.size(); ++i) {
      add_object(i);
      progress_.tell(i, objects_.names.size());
    }
    return std::move(scene_);
  }

 private:
  [[noreturn]] void fail(const std::string& text) const { throw FormatError(name_, line_, text); }

  std::string called(std::size_t object) const {
    return "object " + std::to_string(object) + ", " + shown(objects_.names[object]) + ",";
  }

  void check() const {
    const std::size_t count = objects_.names.size();
    if (count == 0) fail("there are no objects; name at least one");
    if (objects_.parents.size() != count)
      fail(counted(count, "name") + " stand beside " + counted(objects_.parents.size(), "parent") +
           "; give one parent for each name, or none at all");
    if (objects_.frames == 0) fail("there are no frames; give the matrices of at least one");
    const std::size_t each = count * kMatrixBytes;
    if (matrices_.size() % each != 0 || matrices_.size() / each != objects_.frames)
      fail("there are " + counted(matrices_.size(), "byte") + " of matrices; " + counted(objects_.frames, "frame") +
           " of " + counted(count, "object") + " take 128 bytes for each object and frame");
    if (!std::isfinite(objects_.frames_per_second) || objects_.frames_per_second <= 0.0)
      fail("the rate is not a valid one; give frames a second, above 0");
    if (!(std::abs(objects_.first) <= kFarthestFrame))
      fail("the first frame is not a number from -1e9 to 1e9; correct it");
  }

  void set_up() {
    scene_.settings.set_frames_per_second(objects_.frames_per_second);
    scene_.settings.set_linear_unit(objects_.unit);
    scene_.settings.set_up_axis(objects_.up_axis);
    scene_.settings.set_playback_range(objects_.first, frame(objects_.frames - 1));
    scene_.settings.set_current_time(objects_.first);
    parts_.resize(objects_.frames);
  }

  double frame(std::size_t index) const { return objects_.first + static_cast<double>(index); }

  void add_object(std::size_t object) {
    const std::int64_t parent = objects_.parents[object];
    if (parent < -1 || parent >= static_cast<std::int64_t>(object))
      fail(called(object) + " hangs on object " + std::to_string(parent) + "; list parents before what hangs on them");
    depths_.push_back(parent < 0 ? 1 : depths_[static_cast<std::size_t>(parent)] + 1);
    if (depths_.back() > kMaxDepth) fail("more than " + std::to_string(kMaxDepth) + " objects hang on each other");
    nodes_.push_back(scene_.nodes.create("transform", objects_.names[object],
                                         parent < 0 ? kWorld : nodes_[static_cast<std::size_t>(parent)]));
    keep_name_in_file(scene_, nodes_.back(), objects_.names[object]);
    if (parent >= 0) scene_.attributes.set_channel(nodes_.back(), Channel::inheritsTransform, 0.0);
    read_parts(object);
    for (std::size_t part = 0; part < MatrixParts().size(); ++part) add_channel(nodes_.back(), part);
  }

  void read_parts(std::size_t object) {
    for (std::size_t f = 0; f < objects_.frames; ++f) {
      parts_[f] = parts_of(matrix_at(f, object));
      if (f != 0) bring_near(parts_[f], parts_[f - 1]);
    }
  }

  Affine matrix_at(std::size_t index, std::size_t object) const {
    const char* const bytes = matrices_.data() + (index * objects_.names.size() + object) * kMatrixBytes;
    const auto number = [&](std::size_t row, std::size_t column) {
      const double value = double_at(bytes + (4 * row + column) * sizeof(double));
      if (!std::isfinite(value))
        fail_at(object, index, "has a number that is not finite; leave the object out or correct it");
      return value;
    };
    Affine matrix;
    for (std::size_t row = 0; row < 4; ++row) {
      for (std::size_t column = 0; column < 3; ++column) matrix.m[row][column] = number(row, column);
      if (number(row, 3) != (row == 3 ? 1.0 : 0.0))
        fail_at(object, index,
                "has a last column that is not 0, 0, 0, 1; give row vectors, with the translation in the last row");
    }
    return matrix;
  }

  [[noreturn]] void fail_at(std::size_t object, std::size_t index, const char* what) const {
    fail("the matrix of " + called(object) + " at frame " + number_text(frame(index)) + " " + what);
  }

  void add_channel(NodeId node, std::size_t part) {
    const auto channel = static_cast<Channel>(part);
    const double first = parts_.front()[part];
    const double rounding = part < kRotateParts ? 0.0 : kRounding * std::max(1.0, std::abs(first));
    const bool still = std::all_of(parts_.begin(), parts_.end(),
                                   [&](const MatrixParts& at) { return std::abs(at[part] - first) <= rounding; });
    if (still) return scene_.attributes.set_channel(node, channel, first);
    std::vector<Key> keys;
    keys.reserve(objects_.frames);
    for (std::size_t f = 0; f < objects_.frames; ++f)
      keys.push_back({frame(f), parts_[f][part], Tangent::linear, Tangent::linear});
    const CurveKind kind = part < kRotateParts  ? CurveKind::linear
                           : part < kScaleParts ? CurveKind::angular
                                                : CurveKind::unitless;
    const NodeId curve =
        scene_.curves.create(kind, std::string(scene_.names.short_name(node)) + "_" + name_of(channel));
    scene_.curves.assign(curve, std::move(keys), false, Infinity::constant, Infinity::constant);
    scene_.connections.connect(curve, "output", node, name_of(channel));
  }

  const SampledObjects& objects_;
  std::string_view matrices_;
  const std::string& name_;
  std::size_t line_;
  ProgressReport progress_;
  Scene scene_;
  std::vector<NodeId> nodes_;
  std::vector<std::size_t> depths_;
  std::vector<MatrixParts> parts_;  // of one object, a frame each
};

}  // namespace

Scene sampled_scene(const SampledObjects& objects, std::string_view matrices, const std::string& name, std::size_t line,
                    const ReadOptions& options) {
  return Builder(objects, matrices, name, line, options).build();
}

}  // namespace vantorelix::standalone
