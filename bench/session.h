// The whole trail road over the standalone host, timed without the wait after an edit.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "bench/scenes.h"
#include "standalone/host.h"

namespace vantorelix::bench {

class Session {
 public:
  explicit Session(Stage stage, std::function<double()> clock = nullptr);

  // create_trail of every object, then the rebuild queue until nothing is left: seconds.
  double make_trails();
  // Moves one key of the first object that has any, which voids every world matrix that the scene remembers.
  void edit();
  // The queue until every trail is exact again after an edit: seconds of each slice.
  std::vector<double> rebuild();
  // What the machine makes of a slice's budget: seconds that reading the engine's clock until it is over takes.
  double bare_slice();
  void clear();

  // Throws std::runtime_error unless every object has a trail of `samples` points, the last where the scene says
  // that the object is.
  void check(std::size_t samples);

 private:
  std::vector<standalone::NodeId> objects_;
  standalone::Host host_;
};

// Seconds of a unit, which a slice cannot interrupt: the longest that a rebuild goes between two looks at the clock for
// one trail, median of the trails'. It plans a trail and takes the first sample, reads when the keys are and takes the
// first of them, or colours and pushes what is sampled. No other session may go on after it.
double rebuild_unit(Stage stage);

}  // namespace vantorelix::bench
