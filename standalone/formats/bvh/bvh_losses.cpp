#include "standalone/formats/bvh/bvh_losses.h"

namespace vantorelix::standalone {

void NamedAndCounted::tell(const char* one, const char* several, std::vector<std::string>& lost) const {
  if (count_ == 0) return;
  std::string sentence = count_ == 1 ? one : several;
  const std::string names = count_ == 1 ? first_ : first_ + " and " + std::to_string(count_ - 1) + " more";
  lost.push_back(sentence.replace(sentence.find('*'), 1, names));
}

std::vector<std::string> BvhLosses::sentences() const {
  std::vector<std::string> lost;
  no_joint.tell("* is no joint; how it carries joints along is kept, and nothing else of it",
                "* are no joints; how they carry joints along is kept, and nothing else of them", lost);
  worked_out.tell(
      "* has more than a translation and a rotation, or hangs on what has; it is worked out from where it is, rounded "
      "in the last bits",
      "* have more than a translation and a rotation, or hang on what has; they are worked out from where they are, "
      "rounded in the last bits",
      lost);
  scaled.tell("* is scaled or sheared, which is left out; it stands where it stood",
              "* are scaled or sheared, which is left out; they stand where they stood", lost);
  bent.tell("* bends between whole frames, where BVH goes straight",
            "* bend between whole frames, where BVH goes straight", lost);
  beyond.tell("* has keys, or goes on, beyond the frames that are written; BVH holds the first and the last of them",
              "* have keys, or go on, beyond the frames that are written; BVH holds the first and the last of them",
              lost);
  rounded.tell("* has angles that no number of degrees gives to the last bit; they are rounded there",
               "* have angles that no number of degrees gives to the last bit; they are rounded there", lost);
  renamed.tell(
      "* has a name with a line end, an opening brace or blanks at an end, which BVH cannot hold; they become '_'",
      "* have names with a line end, an opening brace or blanks at an end, which BVH cannot hold; they become '_'",
      lost);
  return lost;
}

}  // namespace vantorelix::standalone
