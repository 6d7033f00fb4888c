#include "cli/output/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/terminal/failure.h"
#include "tests/support/temporary_folder.h"

namespace vantorelix::cli {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

// Where a system does not let go of a file that somebody reads, that file is worth more than ours.
TEST(OutputFile, AFileThatAnotherProgramReadsIsReplacedOrStaysAsItIs) {
  const support::TemporaryFolder folder;
  folder.write("a.csv", "before");
  {
    const File held = open_file(folder / "a.csv", "rb");
    OutputFile out(folder / "a.csv");
    out << "after";
#ifdef _WIN32
    EXPECT_THAT([&] { out.commit(); }, ThrowsMessage<Failure>(HasSubstr("whether another program has the file open")));
#else
    out.commit();
#endif
  }
#ifdef _WIN32
  EXPECT_EQ(folder.read("a.csv"), "before");
#else
  EXPECT_EQ(folder.read("a.csv"), "after");
#endif
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / ""), {}), 1);
}

TEST(OutputFile, APlaceThatIsTakenMeanwhileIsAnErrorThatSaysWhatToLookAt) {
  const support::TemporaryFolder folder;
  OutputFile out(folder / "a.csv");
  out << "text";
  folder.write("a.csv/in_the_way", "");
  EXPECT_THAT([&] { out.commit(); }, ThrowsMessage<Failure>(HasSubstr("a.csv: cannot be put in its place (")));
}

}  // namespace
}  // namespace vantorelix::cli
