// The whole trail road over the standalone host, timed without the wait after an edit.
#pragma once

#include <memory>
#include <vector>

#include "bench/scenes.h"
#include "standalone/host.h"

namespace vantorelix::bench {

class Session {
 public:
  explicit Session(Stage stage);

  // create_trail of every object, then the rebuild queue until nothing is left: seconds.
  double make_trails();
  // Moves one key of the first object that has any, which voids every world matrix that the scene remembers.
  void edit();
  // An edit, and the queue until every trail is exact again: seconds of each slice.
  std::vector<double> edit_and_rebuild();
  // What the machine makes of a slice's budget: seconds that reading the engine's clock until it is over takes.
  double bare_slice();
  // Seconds of the longest unit that a slice cannot interrupt, the end of one trail (median of many).
  double unit();
  void clear();

  // Throws std::runtime_error unless every object has a trail of `samples` points, the last where the scene says
  // that the object is.
  void check(std::size_t samples);

 private:
  std::vector<standalone::NodeId> objects_;
  standalone::Host host_;
};

}  // namespace vantorelix::bench
