// Files that are broken.
#include "standalone/formats/fbx/fbx_test_scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Fbx, WhatIsNoFbxFileIsAnError) {
  EXPECT_EQ(fbx_error(""), "scene.fbx: the file is empty; export it again");
  EXPECT_THAT(fbx_error("HIERARCHY\nROOT a {"), HasSubstr("scene.fbx: this is not an FBX file"));
  EXPECT_THAT(fbx_error(std::string(100, '\0')), HasSubstr("scene.fbx: this is not an FBX file"));
}

TEST(Fbx, ACyclicHierarchyIsAnError) {
  FbxText text;
  text.node("a").node("b", "a").hang("a", "b");
  std::string bytes = text.text();
  const std::size_t top = bytes.find("C: \"OO\",1001,0\n");
  bytes.erase(top, std::string("C: \"OO\",1001,0\n").size());
  EXPECT_THAT(fbx_error(bytes), HasSubstr("Cyclic node hierarchy"));
}

TEST(Fbx, NodesInsideEachOtherAreBounded) {
  FbxText text;
  text.node("n0");
  for (int i = 1; i < 2100; ++i) text.node("n" + std::to_string(i), "n" + std::to_string(i - 1));
  EXPECT_THAT(fbx_error(text.text()), HasSubstr("more than 2000 nodes inside each other"));
}

TEST(Fbx, ACutOffFileIsAnErrorWhereverItEndsAndAWarningBetweenSections) {
  const std::string sound = ramp().text();
  const auto warns = ElementsAre(Field(&Warning::kind, HasSubstr("the file may be cut off")));
  // Only the end of the last line may go unnoticed.
  for (std::size_t length = 0; length + 1 < sound.size(); ++length) {
    const std::string begun = sound.substr(0, length), error = fbx_error(begun);
    if (error == "no error") {
      ASSERT_THAT(read_fbx(begun, "scene.fbx").warnings.all(), warns) << length;
    } else {
      ASSERT_THAT(error, HasSubstr("scene.fbx: ")) << length;
    }
  }
  EXPECT_EQ(fbx_error(sound.substr(0, sound.find("Takes:"))), "no error");
  EXPECT_THAT(read(ramp()).warnings.all(), IsEmpty());
}

TEST(Fbx, AFileWithAnyByteChangedIsReadOrRefused) {
  const std::string sound = ramp().text();
  for (std::size_t at = 0; at < sound.size(); ++at) {
    for (const char c : {'\0', '}', '{', '9', '\xff', ','}) {
      std::string damaged = sound;
      damaged[at] = c;
      fbx_error(damaged);
    }
  }
}

TEST(Fbx, ProgressThatThrowsEndsTheReading) {
  struct Stop {};
  ReadOptions options;
  options.progress = [](std::uint64_t, std::uint64_t) { throw Stop(); };
  FbxText text;
  for (int i = 0; i < 1000; ++i) text.node("node" + std::to_string(i));
  EXPECT_THROW(read_fbx(text.text(), "scene.fbx", options), Stop);
}

}  // namespace
}  // namespace vantorelix::standalone
