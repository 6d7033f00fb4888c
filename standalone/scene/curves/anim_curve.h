// One animation curve: keys, tangents, infinity, and its value at any frame.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "standalone/scene/curves/curve_key.h"
#include "standalone/scene/curves/curve_segments.h"

namespace vantorelix::standalone {

// Where some frames are among evenly spaced keys. Curves that were keyed together share it.
struct KeyPlaces {
  double first = 0.0, length = 0.0, count = 0.0;  // the spacing of those keys; a count of 0: nothing is known yet
  bool on_keys = false;                           // all frames are on keys
  bool before = false;                            // some are before the first key, and count as on it
  std::array<std::int32_t, 64> at;                // the last key that is not later,
  std::array<double, 64> since;                   // and frames since then
};

// Keys are kept ascending in time, one per time. Evaluation is a look-up and a cubic. A curve that nobody asks costs
// its keys alone, 56 bytes each; one that is asked at evenly spaced keys of its own, as a recorded motion is, 8 bytes
// more; elsewhere, the first question after a change computes the whole curve's polynomials (about 10 ns and 32 bytes a
// key). Readers that reserve the number of keys before filling the vector they hand to assign waste nothing. One thread
// at a time.
class AnimCurve {
 public:
  explicit AnimCurve(CurveKind kind = CurveKind::linear, double frames_per_second = 24.0);

  CurveKind kind() const { return kind_; }
  const std::vector<Key>& keys() const { return keys_; }
  // Puts the times of all keys at the end of `times`.
  void append_key_times(std::vector<double>& times) const;
  bool weighted() const { return weighted_; }
  Infinity pre_infinity() const { return pre_; }
  Infinity post_infinity() const { return post_; }

  // All that change the curve throw host::Error of kind value for a number that is not finite (or a rate that is not
  // above 0), and leave the curve as it was.

  // Replaces everything at once: the way of the scene readers. Unsorted keys are sorted (stably); of keys at the
  // same time the last wins.
  void assign(std::vector<Key> keys, bool weighted, Infinity pre, Infinity post);
  // Adds a key, or changes the value of the one at that time (its tangents stay).
  void set_key(double time, double value);
  // Adds a key, or replaces the one at its time.
  void set_key(const Key& key);
  // False when there is no key at that time.
  bool remove_key(double time);
  void set_weighted(bool weighted);
  void set_infinity(Infinity pre, Infinity post);
  void set_frames_per_second(double frames_per_second);

  // The value at a frame; 0 without keys. At a key's time it is exactly the key's value. `hint` is the caller's
  // memory of the last segment: start it at 0, pass it again; it is only ever a place to look first.
  double evaluate(double frame, std::size_t& hint) const {
    if (hint < segment_count_) {
      // Sampling goes forward: the same segment or the next is the usual case.
      const CurveSegment* segment = &segments_[hint];
      const double* from = &values_[hint];
      const bool next = frame >= segment[1].start && hint + 1 < segment_count_;
      if (next) ++segment, ++from;
      if (frame >= segment->start && frame < segment[1].start) {
        if (next) ++hint;
        const double value = *from + segment->rise(frame);
        if (value == value) return value;  // not a number: there is more to this segment than its polynomial
      }
    }
    // A motion with a key at every frame is asked at its keys, and then needs its values alone.
    const double place = (frame - even_first_) * even_per_frame_ + 0.5;
    if (frame >= even_first_ && place < even_count_) {
      const auto i = static_cast<std::ptrdiff_t>(place);
      if (frame == even_start(i)) return values_[static_cast<std::size_t>(i)];
    }
    return evaluate_elsewhere(frame, hint);
  }
  // Many at once, for less: values[i] is the value at frames[i]. `places` is the caller's memory of where these very
  // frames are: fresh for other frames, the same for the next curve.
  void evaluate(std::span<const double> frames, double* values, std::size_t& hint, KeyPlaces& places) const;
  double evaluate(double frame) const {
    std::size_t hint = 0;
    return evaluate(frame, hint);
  }
  // True when every frame gives the same value.
  bool is_constant() const;

 private:
  double even_start(std::ptrdiff_t i) const { return even_first_ + static_cast<double>(i) * even_length_; }
  void keys_changed();
  void prepare() const {
    if (!prepared_) rebuild();
  }
  void rebuild() const;
  void prepare_keys() const;
  template <class Start>
  void find_even_spacing(std::size_t count, Start start) const;
  bool has(const KeyPlaces& places) const;
  bool find_places(std::span<const double> frames, KeyPlaces& places) const;
  bool rise_evenly(std::span<const double> frames, double* values, const KeyPlaces& places) const;
  bool rise_at_once(std::span<const double> frames, double* values, std::size_t& hint) const;
  double evaluate_elsewhere(double frame, std::size_t& hint) const;
  double evaluate_repeated(double frame, Infinity infinity, std::size_t& hint) const;
  double evaluate_inside(double frame, std::size_t& hint) const;
  std::size_t locate(double frame, std::size_t hint) const;

  // What evaluation reads is made by prepare() at the first question after a change; until then segment_count_ is 0,
  // and evaluate_elsewhere() sees to it. prepare_keys() makes less: the even spacing of the keys and `values_`, which
  // are enough for questions at the keys' own times.

  // As build_segments gives them. Segment i ends where i + 1 starts, and the last starts at infinity; segment_count_
  // does not count that one. The last but one is the constant or linear continuation after the last key.
  mutable std::vector<CurveSegment> segments_;
  mutable std::vector<double> values_;  // beside segments_, what they rise from
  mutable std::size_t segment_count_ = 0;
  // How many segments (keys, until they are made) there are when all start where even_start() says, to the last bit;
  // else 0.
  mutable double even_count_ = 0.0;
  mutable double even_first_ = 0.0, even_length_ = 0.0, even_per_frame_ = 0.0;
  mutable double segments_per_frame_ = 0.0;                 // on average: the first guess of a search
  mutable std::vector<WeightedSegment> weighted_segments_;  // beside segments_, or empty when no segment bends time
  mutable double pre_slope_ = 0.0;                          // of the continuation before the first key
  mutable bool constant_ = true;
  mutable bool steady_ = false;  // constant to the last bit: no key is at -0, which becomes 0 between keys
  mutable bool prepared_ = false;

  CurveKind kind_;
  bool weighted_ = false;
  Infinity pre_ = Infinity::constant;
  Infinity post_ = Infinity::constant;
  double frames_per_second_;
  std::vector<Key> keys_;
  mutable bool keys_prepared_ = false;
};

}  // namespace vantorelix::standalone
