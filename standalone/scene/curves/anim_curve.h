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

// Keys are kept ascending in time, one per time. Evaluation is a search for the piece and a cubic. A curve that nobody
// asks costs its keys alone, 56 bytes each; one that is asked at evenly spaced keys of its own, as a recorded motion
// is, 8 bytes more; elsewhere, the first question after a change computes the whole curve's polynomials (about 10 ns
// and 32 bytes a key). Readers that reserve the number of keys before filling the vector they hand to assign waste
// nothing. One thread at a time.
//
// Elsewhere many frames are looked for one after another, each first in the piece of the one before: 1.08 of the
// instructions of `vantorelix trails SCENE --quiet` for 1000 objects of 26 unevenly spaced keys, 250 frames.
//
// Evenly spaced keys are a case of their own, in three parts. What each gains, as the instructions of a build without
// it over those of one with it (valgrind --tool=callgrind --toggle-collect='*make_trails*' build/bin/vantorelix_bench
// --benchmark_filter=ROW):
//   on keys the values alone are read, and no polynomials made      1.19 on clip_all_joints
//   elsewhere the place is found by arithmetic (rise_evenly)        1.41 on chain_leaf, 1.17 on tree
//   the place is found once for all curves that are keyed together (KeyPlaces)   1.99 on chain_leaf, 1.16 on
//   many_objects
class AnimCurve {
 public:
  explicit AnimCurve(CurveKind kind = CurveKind::linear, double frames_per_second = 24.0);

  CurveKind kind() const { return kind_; }
  const std::vector<Key>& keys() const { return keys_; }
  // Null where there is none at this very time. Until the curve changes.
  const Key* key_at(double time) const;
  // Puts the times of all keys at the end of `times`.
  void append_key_times(std::vector<double>& times) const;
  bool weighted() const { return weighted_; }
  double frames_per_second() const { return frames_per_second_; }
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

  // The value at a frame; 0 without keys. At a key's time it is exactly the key's value.
  double evaluate(double frame) const;
  // Many at once, for less: values[i] is the value at frames[i]. `places` is the caller's memory of where these very
  // frames are: fresh for other frames, the same for the next curve.
  void evaluate(std::span<const double> frames, double* values, KeyPlaces& places) const;
  // True when every frame gives the same value.
  bool is_constant() const;

 private:
  double even_start(std::ptrdiff_t i) const { return even_first_ + static_cast<double>(i) * even_length_; }
  void keys_changed();
  void prepare_keys() const;
  void prepare() const {
    if (!prepared_) rebuild();
  }
  void rebuild() const;
  template <class Start>
  void find_even_spacing(std::size_t count, Start start) const;
  const double* find_even_key(double frame) const;
  bool has(const KeyPlaces& places) const;
  bool find_places(std::span<const double> frames, KeyPlaces& places) const;
  bool rise_evenly(std::span<const double> frames, double* values, const KeyPlaces& places) const;
  // `piece` is where to look first: 0, or where the frame before was found.
  double evaluate(double frame, std::size_t& piece) const;
  double evaluate_repeated(double frame, Infinity infinity, std::size_t& piece) const;
  double evaluate_inside(double frame, std::size_t& piece) const;

  // What evaluation reads is made by prepare() at the first question after a change. prepare_keys() makes less: the
  // even spacing of the keys and `values_`, which are enough for questions at the keys' own times.

  // One for each key and, last, one that starts at infinity, so that segment i ends where i + 1 starts. The last key's
  // holds the constant or linear continuation. Empty without keys.
  mutable std::vector<CurveSegment> segments_;
  mutable std::vector<double> values_;  // beside segments_, what they rise from
  // How many segments (keys, until they are made) there are when all start where even_start() says, to the last bit;
  // else 0.
  mutable double even_count_ = 0.0;
  mutable double even_first_ = 0.0, even_length_ = 0.0, even_per_frame_ = 0.0;
  mutable std::vector<WeightedSegment> weighted_segments_;  // beside segments_, or empty when no segment bends time
  mutable double pre_slope_ = 0.0;                          // of the continuation before the first key
  mutable bool constant_ = true;
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
