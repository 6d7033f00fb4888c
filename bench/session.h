// A whole trail over the standalone host, timed without the wait after an edit.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "bench/scenes.h"
#include "standalone/host/host.h"

namespace vantorelix::bench {

// One call of what the queue put off, or a loop as long: seconds of the wall clock, and those of them in which the
// machine gave the processor to somebody else. Of a slice that waited of its own accord, for a file or a lock, none
// are.
struct Slice {
  double seconds;
  double lost;
};

class Session {
 public:
  explicit Session(Stage stage, std::function<double()> clock = nullptr);

  // create_trail of every object, then the rebuild queue until nothing is left: seconds.
  double make_trails();
  // Moves one key of the first object that has any, which voids every world matrix that the scene remembers, and lets
  // the quiet time after it pass.
  void edit();
  // What the queue does next; nothing when every trail is exact again.
  std::optional<Slice> slice();
  // What the machine makes of a slice's budget: the engine's clock is read until it is over, and nothing is done.
  Slice bare_slice();
  void clear();

  // Throws std::runtime_error unless every object has a trail of `samples` points, the last where the scene says
  // that the object is.
  void check(std::size_t samples);

 private:
  std::vector<standalone::NodeId> objects_;
  standalone::Host host_;
};

}  // namespace vantorelix::bench
