#include "standalone/scene/evaluation/plain_matrices.h"

namespace vantorelix::standalone {
namespace {

Affine local_at(const Record& record, double frame) {
  return local_matrix_of(channels_at(record, frame), record.factors);
}

}  // namespace

const Affine& PlainMatrices::world(NodeId transform, double frame) {
  Record& target = records_.of(transform);
  if (motion_ != scene_.counts.motion || frame_ != frame) {
    ++walk_;
    motion_ = scene_.counts.motion;
    frame_ = frame;
  }
  const auto is_done = [this](const Record& r) { return r.walk == walk_; };
  open_.assign(1, &target);
  while (!open_.empty()) {
    Record& r = *open_.back();
    if (is_done(r)) {
      open_.pop_back();
    } else if (r.parent && !is_done(*r.parent)) {
      open_.push_back(r.parent);
    } else if (r.offset_source && !r.offset_is_local && !is_done(*r.offset_source)) {
      open_.push_back(r.offset_source);
    } else {
      compose(r);
      open_.pop_back();
    }
  }
  return target.walked;
}

Affine PlainMatrices::local(NodeId transform, double frame) { return local_at(records_.of(transform), frame); }

Affine PlainMatrices::above(NodeId transform, double frame) {
  world(transform, frame);  // and all that it hangs on
  const Record& r = records_.of(transform);
  Affine m;
  if (r.offset_source)
    m = r.offset_is_local ? local_at(*r.offset_source, frame) : r.offset_source->walked;
  else if (r.has_offset)
    m = scene_.offset_parent_matrix(scene_.at(r.node));
  const bool inherits = r.parent && channels_at(r, frame)[index(Channel::inheritsTransform)] != 0.0;
  return inherits ? m * r.parent->walked : m;
}

void PlainMatrices::compose(Record& r) {
  const Channels channels = channels_at(r, frame_);
  Affine m = local_matrix_of(channels, r.factors);
  if (r.offset_source) {
    m = m * (r.offset_is_local ? local_at(*r.offset_source, frame_) : r.offset_source->walked);
  } else if (r.has_offset) {
    m = m * scene_.offset_parent_matrix(scene_.at(r.node));
  }
  const bool inherits = r.parent && channels[index(Channel::inheritsTransform)] != 0.0;
  r.walked = inherits ? m * r.parent->walked : m;
  r.walk = walk_;
}

}  // namespace vantorelix::standalone
