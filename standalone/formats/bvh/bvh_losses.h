// What of a scene's animation a BVH clip does not hold. For the files of this folder only.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vantorelix::standalone {

// Things of which the first is named and the others are counted.
class NamedAndCounted {
 public:
  void add(const std::string& name) {
    if (count_++ == 0) first_ = name;
  }
  // The sentence for one or for several of them, to be appended; nothing for none. "ball and 2 more" stands for "*".
  void tell(const char* one, const char* several, std::vector<std::string>& lost) const;

 private:
  std::string first_;
  std::size_t count_ = 0;
};

struct BvhLosses {
  NamedAndCounted no_joint;    // objects that move, and are no joints
  NamedAndCounted worked_out;  // joints that are more than a translation and a rotation
  NamedAndCounted scaled;      // of these, those with scale or shear, their parents' included
  NamedAndCounted bent;        // channels that do not go straight between whole frames
  NamedAndCounted beyond;      // channels that go on beyond the rows
  NamedAndCounted rounded;     // channels with angles that no number of degrees gives
  NamedAndCounted renamed;     // joints with a name that a clip cannot hold

  std::vector<std::string> sentences() const;
};

}  // namespace vantorelix::standalone
