#include "standalone/scene/curves/anim_curve.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/error.h"
#include "standalone/scene/curves/infinity.h"
#include "standalone/scene/curves/tangents.h"

namespace vantorelix::standalone {

namespace {

// 0, but not a number where one of the key's is not finite.
double zero_if_finite(const Key& key) {
  return (key.time - key.time) + (key.value - key.value) + (key.in_x - key.in_x) + (key.in_y - key.in_y) +
         (key.out_x - key.out_x) + (key.out_y - key.out_y);
}

void require_zero(double zero) {
  if (zero != 0.0) throw host::Error("a key's time, value and tangents must be finite numbers", host::ErrorKind::value);
}

void require_rate(double frames_per_second) {
  if (!(std::isfinite(frames_per_second) && frames_per_second > 0.0))
    throw host::Error("frames per second must be above 0", host::ErrorKind::value);
}

bool earlier(const Key& a, const Key& b) { return a.time < b.time; }

void sort_keys(std::vector<Key>& keys) {
  std::stable_sort(keys.begin(), keys.end(), earlier);
  // The last of equals: seen from the back, the first.
  const auto same_time = [](const Key& a, const Key& b) { return a.time == b.time; };
  keys.erase(keys.begin(), std::unique(keys.rbegin(), keys.rend(), same_time).base());
}

}  // namespace

AnimCurve::AnimCurve(CurveKind kind, double frames_per_second) : kind_(kind), frames_per_second_(frames_per_second) {
  require_rate(frames_per_second);
}

const Key* AnimCurve::key_at(double time) const {
  const auto at = std::lower_bound(keys_.begin(), keys_.end(), Key{.time = time}, earlier);
  return at != keys_.end() && at->time == time ? &*at : nullptr;
}

void AnimCurve::append_key_times(std::vector<double>& times) const {
  for (const Key& key : keys_) times.push_back(key.time);
}

void AnimCurve::assign(std::vector<Key> keys, bool weighted, Infinity pre, Infinity post) {
  double zero = 0.0, before = -std::numeric_limits<double>::infinity();
  bool ascending = true;
  for (const Key& key : keys) {
    zero += zero_if_finite(key);
    ascending &= key.time > before;
    before = key.time;
  }
  require_zero(zero);
  if (!ascending) sort_keys(keys);
  keys_ = std::move(keys);
  weighted_ = weighted;
  pre_ = pre;
  post_ = post;
  keys_changed();
}

void AnimCurve::set_key(double time, double value) {
  Key key{.time = time, .value = value};
  const auto old = std::lower_bound(keys_.begin(), keys_.end(), key, earlier);
  if (old != keys_.end() && old->time == time) {
    key = *old;
    key.value = value;
  }
  set_key(key);
}

void AnimCurve::set_key(const Key& key) {
  require_zero(zero_if_finite(key));
  const auto place = std::lower_bound(keys_.begin(), keys_.end(), key, earlier);
  if (place != keys_.end() && place->time == key.time)
    *place = key;
  else
    keys_.insert(place, key);
  keys_changed();
}

bool AnimCurve::remove_key(double time) {
  const auto place = std::find_if(keys_.begin(), keys_.end(), [time](const Key& key) { return key.time == time; });
  if (place == keys_.end()) return false;
  keys_.erase(place);
  keys_changed();
  return true;
}

void AnimCurve::set_weighted(bool weighted) {
  weighted_ = weighted;
  keys_changed();
}

void AnimCurve::set_infinity(Infinity pre, Infinity post) {
  pre_ = pre;
  post_ = post;
  keys_changed();
}

void AnimCurve::set_frames_per_second(double frames_per_second) {
  require_rate(frames_per_second);
  frames_per_second_ = frames_per_second;
  keys_changed();
}

void AnimCurve::keys_changed() {
  prepared_ = keys_prepared_ = false;
  even_count_ = 0.0;
}

void AnimCurve::rebuild() const {
  CurveSegments made = build_segments(keys_, weighted_, frames_per_second_);
  segments_ = std::move(made.segments);
  values_ = std::move(made.values);
  weighted_segments_ = std::move(made.weighted);
  pre_slope_ = 0.0;
  constant_ = true;
  find_even_spacing(keys_.empty() ? 0 : segments_.size() - 1, [this](std::size_t i) { return segments_[i].start; });
  prepared_ = keys_prepared_ = true;
  if (keys_.empty()) return;

  const std::size_t n = keys_.size();
  const auto finite = [](double slope) { return std::isfinite(slope) ? slope : 0.0; };
  if (pre_ == Infinity::linear)
    pre_slope_ = finite(in_slope({nullptr, keys_[0], n > 1 ? &keys_[1] : nullptr}, frames_per_second_));
  CurveSegment& after = segments_[segments_.size() - 2];
  if (post_ == Infinity::linear)
    after.c1 = finite(out_slope({n > 1 ? &keys_[n - 2] : nullptr, keys_[n - 1], nullptr}, frames_per_second_));

  const auto level = [](const CurveSegment& segment) {
    return segment.c1 == 0.0 && segment.c2 == 0.0 && segment.c3 == 0.0;
  };
  const auto same = [this](double value) { return value == keys_[0].value; };
  constant_ = pre_slope_ == 0.0 && std::all_of(values_.begin(), values_.end() - 1, same) &&
              std::all_of(segments_.begin(), segments_.end() - 1, level);
  if (repeats(post_)) after.set_not_cubic();
}

// Makes what questions at evenly spaced keys need, without the polynomials, which such questions never need.
void AnimCurve::prepare_keys() const {
  if (keys_prepared_) return;
  keys_prepared_ = true;
  find_even_spacing(keys_.size(), [this](std::size_t i) { return keys_[i].time; });
  if (even_count_ == 0.0) return;
  values_.resize(keys_.size());
  std::transform(keys_.begin(), keys_.end(), values_.begin(), [](const Key& key) { return key.value; });
}

template <class Start>
void AnimCurve::find_even_spacing(std::size_t count, Start start) const {
  even_count_ = 0.0;
  if (count < 2) return;
  const auto between = static_cast<double>(count - 1);
  even_first_ = start(0);
  even_length_ = (start(count - 1) - even_first_) / between;
  even_per_frame_ = 1.0 / even_length_;
  for (std::size_t i = 0; i < count; ++i)
    if (start(i) != even_start(static_cast<std::ptrdiff_t>(i))) return;
  even_count_ = between + 1.0;
}

bool AnimCurve::is_constant() const {
  const auto differs = [this](const Key& key) { return key.value != keys_[0].value; };
  if (!prepared_ && std::any_of(keys_.begin(), keys_.end(), differs)) return false;
  prepare();
  return constant_;
}

void AnimCurve::evaluate(std::span<const double> frames, double* values, KeyPlaces& places) const {
  prepare_keys();
  if (find_places(frames, places) && places.on_keys) {
    for (std::size_t i = 0; i < frames.size(); ++i) values[i] = values_[static_cast<std::size_t>(places.at[i])];
    return;
  }
  prepare();
  if (rise_evenly(frames, values, places)) return;
  std::size_t piece = 0;
  for (std::size_t i = 0; i < frames.size(); ++i) values[i] = evaluate(frames[i], piece);
}

bool AnimCurve::has(const KeyPlaces& places) const {
  return places.first == even_first_ && places.length == even_length_ && places.count == even_count_;
}

// Brings `places` to these frames among this curve's keys, unless it is so already. False where they are not evenly
// spaced.
bool AnimCurve::find_places(std::span<const double> frames, KeyPlaces& places) const {
  if (!(even_count_ > 0.0) || even_count_ > 1e9 || frames.size() > places.at.size()) return false;
  if (has(places)) return true;
  places.first = even_first_;
  places.length = even_length_;
  places.count = even_count_;
  places.on_keys = true;
  places.before = false;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const double frame = frames[i];
    const double place = std::min((frame - even_first_) * even_per_frame_, even_count_ - 1.0);
    auto at = static_cast<std::int32_t>(place > 0.0 ? place : 0.0);
    // Rounding may have led to a neighbour.
    if (at > 0 && frame < even_start(at)) --at;
    if (at + 1 < even_count_ && frame >= even_start(at + 1)) ++at;
    const bool before = frame < even_first_;
    places.at[i] = at;
    places.since[i] = before ? 0.0 : frame - even_start(at);
    places.on_keys &= frame == even_start(at);
    places.before |= before;
  }
  return true;
}

// False, with anything in `values`, where segments are not evenly spaced, or some is asked for that is not a cubic.
bool AnimCurve::rise_evenly(std::span<const double> frames, double* values, const KeyPlaces& places) const {
  if (even_count_ == 0.0 || !has(places) || (places.before && pre_ != Infinity::constant)) return false;
  std::ptrdiff_t unknown = 0;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const auto at = static_cast<std::size_t>(places.at[i]);
    values[i] = values_[at] + segments_[at].rise_after(places.since[i]);
    unknown += values[i] == values[i] ? 0 : 1;
  }
  return unknown == 0;
}

// The value of the evenly spaced key at a frame; null where there is none.
const double* AnimCurve::find_even_key(double frame) const {
  const double place = (frame - even_first_) * even_per_frame_ + 0.5;
  if (!(frame >= even_first_ && place < even_count_)) return nullptr;
  const auto i = static_cast<std::ptrdiff_t>(place);
  return frame == even_start(i) ? &values_[static_cast<std::size_t>(i)] : nullptr;
}

double AnimCurve::evaluate(double frame) const {
  std::size_t piece = 0;
  return evaluate(frame, piece);
}

double AnimCurve::evaluate(double frame, std::size_t& piece) const {
  if (keys_.empty()) return 0.0;
  prepare_keys();
  if (const double* const value = find_even_key(frame)) return *value;
  prepare();
  const Key& first = keys_.front();
  const Key& last = keys_.back();
  if (frame < first.time) {
    if (pre_ == Infinity::constant || std::isinf(frame)) return first.value;
    if (pre_ == Infinity::linear) return first.value + (frame - first.time) * pre_slope_;
    return evaluate_repeated(frame, pre_, piece);
  }
  if (frame > last.time) {
    if (std::isinf(frame)) return last.value;
    if (repeats(post_)) return evaluate_repeated(frame, post_, piece);
  }
  return evaluate_inside(frame, piece);
}

double AnimCurve::evaluate_repeated(double frame, Infinity infinity, std::size_t& piece) const {
  const Key& first = keys_.front();
  const Key& last = keys_.back();
  if (keys_.size() == 1) return first.value;
  const Repetition place = repetition(frame, first.time, last.time, infinity);
  const double value = evaluate_inside(place.frame, piece);
  return infinity == Infinity::cycle_offset ? value + place.number * (last.value - first.value) : value;
}

// From the first key on; what is beyond the last one by rounding counts as on it when the curve repeats.
double AnimCurve::evaluate_inside(double frame, std::size_t& piece) const {
  if (!(frame >= segments_[piece].start && frame < segments_[piece + 1].start)) {
    const auto starts_later = [](double at, const CurveSegment& segment) { return at < segment.start; };
    const auto after = std::upper_bound(segments_.begin() + 1, segments_.end() - 1, frame, starts_later);
    piece = static_cast<std::size_t>(after - segments_.begin()) - 1;
  }
  const CurveSegment& segment = segments_[piece];
  if (segment.is_cubic()) return values_[piece] + segment.rise(frame);
  if (piece + 2 == segments_.size()) return values_[piece];
  return values_[piece] + weighted_segments_[piece].at(frame - segment.start);
}

}  // namespace vantorelix::standalone
