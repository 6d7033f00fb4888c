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

// Whoever asks says beforehand which times come. When the first of them is asked for, it and the next ones are worked
// out together: first the world matrices that the node hangs on, in columns, a number of the matrix each and a place in
// it for each time; then the positions, which the next questions only take. Matrices that others will ask for, too, are
// remembered until something moves. The results are those of asking for one time after another, to the last bit.
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

  // The times that come, in their order; what is beyond kColumn of them is not looked at.
  void expect(std::span<const double> times);
  // The translation of the record's world matrix. The record is current.
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

  // What is said to come, and which of it is asked for next.
  std::array<double, kColumn> frames_;
  std::size_t coming_ = 0, next_ = 0;
  // Positions of the record `made_for_` are there for the frames up to `made_`.
  std::array<Vector, kColumn> positions_;
  std::size_t made_ = 0;
  const Record* made_for_ = nullptr;
  std::uint64_t made_motion_ = 0;

  Times unnumbered_;
  Times* together_ = nullptr;  // the times that are worked out together: these, or some of the cache's
  std::uint64_t stamp_ = 0;
  std::vector<Record*> open_;

  TimeCache cache_;
  std::deque<AffineColumns> passing_;  // matrices that are not remembered, for as long as times are worked out together
  std::size_t passing_used_ = 0;       // how often passing() gave some away
};

}  // namespace vantorelix::standalone
