// World positions of one node after another, many times at once.
// For the files of standalone/scene only.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "base/vector.h"
#include "standalone/scene/evaluation/records.h"
#include "standalone/scene/evaluation/time_cache.h"

namespace vantorelix::standalone {

// The caller announces with `expect` which times it will ask for. When it asks for the first of them, that time and the
// ones after it are worked out together ("made"): the world matrices of everything that the node hangs on, as columns
// (column_loops.h), then the positions. The next calls of `at` only read these positions. World matrices that other
// nodes will need too are kept in a TimeCache until anything in the scene moves. The results are those of asking for
// one time after another, to the last bit.
//
// Within one make(): `together_` holds the times being worked out, and a record whose `stamp` is `stamp_` has its world
// matrices at these times in `current`. Those columns lie in the cache, or in `passing_`, which the next make() reuses.
//
// What each part gains, as the instructions of a build without it over those of one with it (valgrind --tool=callgrind
// --toggle-collect='*make_trails*' build/bin/vantorelix_bench --benchmark_filter=ROW):
//   many times at once             7.7 on chain_leaf, 2.1 on many_objects; 2.2 of `vantorelix trails clip.bvh --quiet`
//   S * R * T column by column     1.5 on chain_leaf, 1.14 on tree (compose_columns)
//   the translation row alone, where nobody needs the rest    1.4 on one_object, 1.16 on tree (work_out_translation)
class Positions {
 public:
  // `motion` counts what moves anything in the scene.
  explicit Positions(const std::uint64_t& motion) : motion_(motion) {}

  // Announces the times that `at` will be called with, in this order; times after the first kColumn are ignored.
  void expect(std::span<const double> times);
  // The translation of the record's world matrix. Records::of must have returned the record since the last change.
  Vector at(Record& r, double frame) {
    if (!r.moves) return r.world.translation();
    if (next_ == made_ || made_for_ != &r || made_motion_ != motion_ || !comes_next(frame)) make(r, frame);
    return positions_[next_++];
  }

 private:
  bool comes_next(double frame) const {
    return std::bit_cast<std::uint64_t>(frames_[next_]) == std::bit_cast<std::uint64_t>(frame);
  }
  void make(Record& r, double frame);
  void work_out(Record& r);
  void work_out_translation(Record& r);
  void know(Record& target);
  bool is_known(Record& r);
  bool remembers(const Record& r) const;
  void recall(Record& r);
  void take(const Record& r);
  void remember_each(Record& r);
  void move_world(Record& r);
  Columns passing();

  const std::uint64_t& motion_;

  // The announced times frames_[0 .. coming_), of which frames_[next_] is the one to be asked for next.
  std::array<double, kColumn> frames_;
  std::size_t coming_ = 0, next_ = 0;
  // positions_[next_ .. made_) are ready: of the record `made_for_`, at the frames of the same places, as long as the
  // scene's motion count is `made_motion_`. Nothing is ready where next_ == made_. Always next_ <= made_ <= coming_.
  std::array<Vector, kColumn> positions_;
  std::size_t made_ = 0;
  const Record* made_for_ = nullptr;
  std::uint64_t made_motion_ = 0;

  Times unnumbered_;           // times that are not worth a number in the cache
  Times* together_ = nullptr;  // the times that are worked out together: these, or some of the cache's
  std::uint64_t stamp_ = 0;
  std::vector<Record*> open_;

  TimeCache cache_;
  std::deque<AffineColumns> passing_;  // memory for matrices that live for one make() only; passing() hands it out
  std::size_t passing_used_ = 0;       // how many matrices' columns passing() has handed out in this make()
};

}  // namespace vantorelix::standalone
