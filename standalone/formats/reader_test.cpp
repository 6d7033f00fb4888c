#include "standalone/formats/reader.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vantorelix::standalone {
namespace {

TEST(FormatByExtension, DecidesInAnyCase) {
  EXPECT_EQ(format_by_extension("a/walk.bvh"), Format::bvh);
  EXPECT_EQ(format_by_extension("walk.MA"), Format::maya_ascii);
  EXPECT_EQ(format_by_extension("walk.Fbx"), Format::fbx);
  EXPECT_EQ(format_by_extension("walk.gltf"), Format::gltf);
  EXPECT_EQ(format_by_extension("walk.glb"), Format::gltf);
  EXPECT_EQ(format_by_extension("walk"), std::nullopt);
  EXPECT_EQ(format_by_extension("walk.ma.bak"), std::nullopt);
}

TEST(FormatByContent, KnowsWhatEachFormatBeginsWith) {
  EXPECT_EQ(format_by_content("HIERARCHY\nROOT Hips"), Format::bvh);
  EXPECT_EQ(format_by_content("//Maya ASCII 2020 scene\n"), Format::maya_ascii);
  EXPECT_EQ(format_by_content("// made by a script\r\n// of ours\r\nrequires maya \"2020\";"), Format::maya_ascii);
  EXPECT_EQ(format_by_content(std::string_view("Kaydara FBX Binary  \0\x1A\0", 23)), Format::fbx);
  EXPECT_EQ(format_by_content("; FBX 7.5.0 project file\n"), Format::fbx);
  EXPECT_EQ(format_by_content("; exported\n;\n\nFBXHeaderExtension:  {"), Format::fbx);
  EXPECT_EQ(format_by_content(std::string_view("glTF\2\0\0\0", 8)), Format::gltf);
  EXPECT_EQ(format_by_content("{\n  \"asset\": {}}"), Format::gltf);
}

TEST(FormatByContent, PassesOverAByteOrderMarkAndBlanks) {
  EXPECT_EQ(format_by_content("\xEF\xBB\xBF\r\n  HIERARCHY"), Format::bvh);
  EXPECT_EQ(format_by_content(" \t{ \"scenes\""), Format::gltf);
}

TEST(FormatByContent, DoesNotGuess) {
  for (const char* text :
       {"", "   ", "{", "{ a", "// a comment", "; a comment", "hierarchy", "PK\3\4", "requires_plugin"})
    EXPECT_EQ(format_by_content(text), std::nullopt) << text;
}

class SceneByContent : public testing::Test {
 protected:
  std::filesystem::path file(const std::string& name, const std::string& text) const {
    return folder_.write(name, text);
  }
  std::optional<Format> format_of(const std::filesystem::path& scene) const {
    std::optional<Format> found;
    ReadOptions options;
    options.recognised = [&](Format format) { found = format; };
    read_scene(scene, options);
    return found;
  }

  support::TemporaryFolder folder_;
};

const std::string kClip =
    "HIERARCHY\nROOT hip\n{\n OFFSET 0 0 0\n CHANNELS 3 Xposition Yposition Zposition\n End Site\n {\n  OFFSET 0 1 0\n "
    "}\n"
    "}\nMOTION\nFrames: 2\nFrame Time: 0.04\n";

TEST_F(SceneByContent, WithoutAnExtensionGoesByTheContent) {
  EXPECT_EQ(format_of(file("clip", kClip + "0 0 0\n1 0 0\n")), Format::bvh);
  EXPECT_EQ(format_of(file("scene.v7", "//Maya ASCII 2020 scene\ncreateNode transform -n \"a\";\n")),
            Format::maya_ascii);
  EXPECT_EQ(format_of(file("scene.json", R"({"asset": {"version": "2.0"}, "nodes": [{"name": "a"}]})")), Format::gltf);
}

TEST_F(SceneByContent, ByContentReadsOnAfterTheFirstBytes) {
  std::string rows;
  for (int i = 0; i < 5000; ++i) rows += "1 2 3\n";
  std::string clip = kClip + rows;
  clip.replace(clip.find("Frames: 2"), 9, "Frames: 5000");
  ASSERT_GT(clip.size(), 4 * kFirstBytes);
  EXPECT_EQ(read_scene(file("long", clip)).settings.playback_max(), 4999.0);
}

TEST_F(SceneByContent, WithAKnownExtensionDoesNotLookAtTheContent) {
  EXPECT_THROW(read_scene(file("clip.ma", kClip + "0 0 0\n1 0 0\n")), FormatError);
}

TEST_F(SceneByContent, IsNotThereWhereTheFileIsNot) {
  EXPECT_THROW(read_scene("/nowhere/at/all.MA"), FormatError);
  EXPECT_THROW(read_scene("/nowhere/at/all"), FormatError);
}

TEST_F(SceneByContent, SaysWhatIsReadWhereNothingIsRecognised) {
  try {
    read_scene(file("notes.txt", "hello"));
    FAIL();
  } catch (const FormatError& error) {
    EXPECT_NE(std::string(error.what()).find("notes.txt: scene files of this kind are not read; give a BVH clip"),
              std::string::npos)
        << error.what();
  }
}

}  // namespace
}  // namespace vantorelix::standalone
