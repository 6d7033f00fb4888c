#include "base/large_pages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

namespace vantorelix {
namespace {

// The line "VmFlags: ..." that the system tells of the memory around an address; empty where it tells nothing.
std::string flags_around(const void* address) {
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream maps("/proc/self/smaps");
  bool here = false;
  for (std::string line; std::getline(maps, line);) {
    std::istringstream words(line);
    std::uintptr_t begin = 0, end = 0;
    char dash = 0;
    if (words >> std::hex >> begin >> dash >> end && dash == '-') here = begin <= wanted && wanted < end;
    if (here && line.starts_with("VmFlags:")) return line + " ";
  }
  return {};
}

TEST(LargePages, AreAskedForUnderALargeArray) {
  std::vector<double> values;
  reserve(values, std::size_t{1} << 21);  // 16 MB
  const std::string flags = flags_around(values.data() + (std::size_t{1} << 20));
  if (flags.empty() || !std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled"))
    GTEST_SKIP() << "this system does not tell of such pages";
  EXPECT_NE(flags.find(" hg "), std::string::npos) << flags;
}

TEST(LargePages, LeaveWhatAnArrayHoldsAndItsRoomAsAVectorWould) {
  std::vector<int> values = {1, 2, 3};
  reserve(values, std::size_t{1} << 22);
  EXPECT_EQ(values, (std::vector<int>{1, 2, 3}));
  EXPECT_GE(values.capacity(), std::size_t{1} << 22);
  values.resize(std::size_t{1} << 22, 7);
  EXPECT_EQ(values.back(), 7);
}

TEST(LargePages, TakeAnyRange) {
  advise_large_pages(nullptr, 0);
  char small[3] = {1, 2, 3};
  advise_large_pages(small, sizeof small);
  EXPECT_EQ(small[2], 3);
}

}  // namespace
}  // namespace vantorelix
