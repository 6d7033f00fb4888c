#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "standalone/formats/reader.h"
#include "standalone/formats/text_input.h"
#include "standalone/scene/evaluation/evaluator.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kTwoJoints =
    "HIERARCHY\n"
    "ROOT Hips\n{\n"
    "  OFFSET 1 2 3\n"
    "  CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
    "  JOINT Knee\n  {\n"
    "    OFFSET 0 -10 0\n"
    "    CHANNELS 3 Zrotation Xrotation Yrotation\n"
    "    End Site\n    {\n      OFFSET 0 -5 0\n    }\n"
    "  }\n"
    "}\n"
    "MOTION\nFrames: 3\nFrame Time: 0.04\n"
    "0 100 0  0 0 0  0 0 0\n"
    "10 100 0  90 0 0  0 0 0\n"
    "20 100 0  0 0 0  90 0 0\n";

Scene read(const std::string& text) { return read_bvh(text, "clip.bvh"); }

std::string error_of(const std::string& text) {
  try {
    read(text);
  } catch (const FormatError& error) {
    return error.what();
  }
  return "no error";
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  const std::size_t at = text.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  return text.replace(at, what.size(), with);
}

// One joint with these channels and one row of values, its end site 10 to the right, 20 up and 30 to the front.
std::string one_joint(const std::string& channels, const std::string& row) {
  return "HIERARCHY\nROOT A\n{\nOFFSET 0 0 0\nCHANNELS " + channels +
         "\nEnd Site\n{\nOFFSET 10 20 30\n}\n}\nMOTION\nFrames: 1\nFrame Time: 0.1\n" + row + "\n";
}

void expect_at(const Scene& scene, const std::string& name, double frame, double x, double y, double z) {
  const NodeId node = scene.names.require(name);
  const Vector p = scene.evaluation.world_matrix(node, frame).translation();
  EXPECT_NEAR(p.x, x, 1e-12) << name;
  EXPECT_NEAR(p.y, y, 1e-12) << name;
  EXPECT_NEAR(p.z, z, 1e-12) << name;
}

TEST(Bvh, RowKIsFrameKAtTheRateOfTheFrameTime) {
  const Scene scene = read(kTwoJoints);
  EXPECT_EQ(scene.settings.frames_per_second(), 1.0 / 0.04);
  EXPECT_EQ(scene.settings.playback_min(), 0.0);
  EXPECT_EQ(scene.settings.playback_max(), 2.0);
  expect_at(scene, "Hips", 0, 0, 100, 0);
  expect_at(scene, "Knee", 0, 0, 90, 0);
  expect_at(scene, "Knee", 1, 20, 100, 0);
  expect_at(scene, "Knee_End", 2, 25, 90, 0);
}

TEST(Bvh, BetweenTheRowsChannelsGoStraight) { expect_at(read(kTwoJoints), "Hips", 0.25, 2.5, 100, 0); }

TEST(Bvh, EveryJointWithChannelsHasAKeyOnEachRow) {
  const Scene scene = read(kTwoJoints);
  EXPECT_EQ(scene.curves.key_count(scene.names.require("Hips")), 18u);
  EXPECT_EQ(scene.curves.key_count(scene.names.require("Knee")), 9u);
  EXPECT_TRUE(scene.curves.has_keys(scene.names.require("Knee")));
  EXPECT_FALSE(scene.curves.has_keys(scene.names.require("Knee_End")));
  std::vector<double> times = scene.curves.key_times(scene.names.require("Knee"));
  times.resize(3);
  EXPECT_THAT(times, ElementsAre(0.0, 1.0, 2.0));
}

TEST(Bvh, PositionChannelsStandInForTheOffset) { expect_at(read(kTwoJoints), "Hips", 0, 0, 100, 0); }

TEST(Bvh, APartOfTheOffsetWithoutAPositionChannelStays) {
  const std::string text = replaced(one_joint("1 Yposition", "7"), "OFFSET 0 0 0", "OFFSET 4 5 6");
  expect_at(read(text), "A", 0, 4, 7, 6);
}

TEST(Bvh, RotationsApplyInTheOrderListed) {
  // A quarter turn about each of two axes tells their order apart; columns, the last listed first.
  expect_at(read(one_joint("3 Zrotation Xrotation Yrotation", "90 90 0")), "A_End", 0, 30, 10, 20);
  expect_at(read(one_joint("3 Xrotation Yrotation Zrotation", "90 0 90")), "A_End", 0, -20, -30, 10);
  expect_at(read(one_joint("3 Yrotation Zrotation Xrotation", "90 90 0")), "A_End", 0, 30, 10, 20);
  expect_at(read(one_joint("3 Xrotation Zrotation Yrotation", "90 90 0")), "A_End", 0, -20, -30, 10);
  expect_at(read(one_joint("3 Yrotation Xrotation Zrotation", "90 90 0")), "A_End", 0, 20, -30, -10);
  expect_at(read(one_joint("3 Zrotation Yrotation Xrotation", "90 90 0")), "A_End", 0, -20, 30, -10);
}

TEST(Bvh, AnySetOfChannelsInAnyOrderIsRead) {
  expect_at(read(one_joint("2 Zrotation Xrotation", "90 90")), "A_End", 0, 30, 10, 20);
  expect_at(read(one_joint("1 Yrotation", "90")), "A_End", 0, 30, 20, -10);
  expect_at(read(one_joint("4 Zrotation Zposition Xrotation Xposition", "90 5 90 7")), "A_End", 0, 37, 10, 25);
}

TEST(Bvh, AJointWithoutChannelsStandsStill) {
  const std::string text = replaced(kTwoJoints, "    CHANNELS 3 Zrotation Xrotation Yrotation\n", "");
  const Scene scene = read("HIERARCHY" + replaced(replaced(replaced(text.substr(9), "0 0 0  0 0 0\n", "0 0 0\n"),
                                                           "90 0 0  0 0 0\n", "90 0 0\n"),
                                                  "0 0 0  90 0 0\n", "0 0 0\n"));
  EXPECT_FALSE(scene.curves.has_keys(scene.names.require("Knee")));
  expect_at(scene, "Knee", 1, 20, 100, 0);
}

TEST(Bvh, AClipWithoutAnyChannelsIsASceneThatStandsStill) {
  const Scene scene = read("HIERARCHY ROOT A { OFFSET 1 2 3 CHANNELS 0 } MOTION Frames: 999999999 Frame Time: 1");
  expect_at(scene, "A", 0, 1, 2, 3);
  EXPECT_EQ(scene.settings.playback_max(), 0.0);
  EXPECT_EQ(scene.warnings.all().size(), 1u);
}

TEST(Bvh, LinesMayEndInAnyWay) {
  std::string crlf, cr;
  for (const char c : std::string(kTwoJoints)) {
    crlf += c == '\n' ? "\r\n" : std::string(1, c);
    cr += c == '\n' ? '\r' : c;
  }
  expect_at(read(crlf), "Knee", 1, 20, 100, 0);
  expect_at(read(cr), "Knee", 1, 20, 100, 0);
  EXPECT_THAT(error_of(crlf + "\r\n"), "no error");
  EXPECT_THAT(error_of(replaced(crlf, "90 0 0  0 0 0", "90 0 x  0 0 0")), HasSubstr("clip.bvh:20: 'x'"));
  EXPECT_THAT(error_of(replaced(cr, "90 0 0  0 0 0", "90 0 x  0 0 0")), HasSubstr("clip.bvh:20: 'x'"));
  EXPECT_THAT(error_of(replaced(kTwoJoints, "90 0 0  0 0 0", "90 0 x  0 0 0")), HasSubstr("clip.bvh:20: 'x'"));
}

TEST(Bvh, BlankLinesTabsAndAByteOrderMarkAreNothing) {
  const std::string text =
      replaced(replaced(kTwoJoints, "MOTION\n", "\n\n\tMOTION\t\n \t\n"), "0 100 0  0", "\n \n\t0\t100 0\t0");
  expect_at(read("\xEF\xBB\xBF" + text + "\n\n \t\n"), "Knee", 1, 20, 100, 0);
}

TEST(Bvh, KeywordsAreReadInAnyCaseAndAnyPlaceOnTheLine) {
  const Scene scene = read(
      "hierarchy root A { offset 0 0 0 channels 3 XPOSITION yposition zPosition END SITE { Offset 1 0 0 } }\n"
      "motion frames : 1 frame  time : 0.5\n1 2 3");
  expect_at(scene, "A_End", 0, 2, 2, 3);
  EXPECT_EQ(scene.settings.frames_per_second(), 2.0);
}

TEST(Bvh, SeveralRootsStandSideBySide) {
  const Scene scene = read(
      "HIERARCHY\nROOT A {\nCHANNELS 1 Xposition\n}\nROOT B {\nCHANNELS 1 Xposition\n}\nMOTION\nFrames: 1\nFrame Time: "
      "1\n3 4\n");
  expect_at(scene, "A", 0, 3, 0, 0);
  expect_at(scene, "B", 0, 4, 0, 0);
  EXPECT_EQ(scene.nodes.parent(scene.names.require("B")), kWorld);
}

TEST(Bvh, ANameKeepsWhatTheFileSaysWhereTheSceneCannot) {
  const Scene scene = read(
      "HIERARCHY\nROOT  my hip:left \n{\nCHANNELS 1 Xposition\nJOINT a\n{\n}\nJOINT a\n{\n}\n}\nMOTION\nFrames: "
      "0\nFrame Time: 1\n");
  const NodeId root = scene.nodes.children(kWorld).at(0);
  EXPECT_EQ(name_in_file(scene, root), "my hip:left");
  const std::vector<NodeId> joints = scene.nodes.children(root);
  ASSERT_EQ(joints.size(), 2u);
  EXPECT_NE(scene.names.short_name(joints[0]), scene.names.short_name(joints[1]));
  EXPECT_EQ(name_in_file(scene, joints[0]), "a");
  EXPECT_EQ(name_in_file(scene, joints[1]), "a");
}

TEST(Bvh, AnEndSiteIsNamedAfterItsJoint) {
  const Scene scene = read(kTwoJoints);
  EXPECT_EQ(name_in_file(scene, scene.names.require("Knee_End")), "End Site of Knee");
  EXPECT_EQ(name_in_file(scene, scene.names.require("Knee")), "Knee");
}

TEST(Bvh, AllBytesAreGoodInNames) {
  const std::string name("H\xFC\x83n\0x", 6);
  const Scene scene = read(replaced(kTwoJoints, "ROOT Hips", "ROOT " + name));
  EXPECT_EQ(name_in_file(scene, scene.nodes.children(kWorld).at(0)), name);
}

TEST(Bvh, TheUnitIsUnknownAndYIsUp) {
  EXPECT_EQ(read(kTwoJoints).settings.linear_unit(), "unknown");
  EXPECT_EQ(read(kTwoJoints).settings.up_axis(), 'y');
}

TEST(Bvh, MissingRowsAreAnErrorThatCountsThem) {
  EXPECT_EQ(error_of(replaced(kTwoJoints, "Frames: 3", "Frames: 5")),
            "clip.bvh:22: the file ends after 3 motion rows, 2 are missing; export it again or correct 'Frames:'");
}

TEST(Bvh, AnAbsurdNumberOfFramesReservesNothing) {
  EXPECT_THAT(error_of(replaced(kTwoJoints, "Frames: 3", "Frames: 99999999999")), HasSubstr("99999999996 are missing"));
}

TEST(Bvh, RowsBeyondTheAnnouncedAreLeftOutWithAWarning) {
  const Scene scene = read(std::string(kTwoJoints) + "1 2 3\n\nrubbish\n");
  ASSERT_EQ(scene.warnings.all().size(), 1u);
  EXPECT_EQ(scene.warnings.all()[0].count, 2u);
  EXPECT_EQ(scene.settings.playback_max(), 2.0);
}

TEST(Bvh, ARowOfTheWrongLengthIsAnError) {
  EXPECT_THAT(error_of(replaced(kTwoJoints, "90 0 0  0 0 0", "90 0 0")),
              HasSubstr("clip.bvh:20: the motion row has 6 values where the joints have 9"));
  EXPECT_THAT(error_of(replaced(kTwoJoints, "90 0 0  0 0 0", "90 0 0  0 0 0 0")),
              HasSubstr("clip.bvh:20: the motion row has more values than the 9"));
}

TEST(Bvh, ANumberThatIsNotFiniteIsAnError) {
  for (const char* bad : {"nan", "inf", "-inf", "1e999"}) {
    EXPECT_THAT(error_of(replaced(kTwoJoints, "90 0 0  0", std::string("90 0 ") + bad + "  0")),
                HasSubstr("clip.bvh:20: a value of the motion row is not finite"))
        << bad;
    EXPECT_THAT(error_of(replaced(kTwoJoints, "OFFSET 0 -10 0", std::string("OFFSET 0 ") + bad + " 0")),
                HasSubstr("clip.bvh:8: an offset is not finite"))
        << bad;
  }
}

TEST(Bvh, AFrameTimeThatIsNoTimeIsAnError) {
  for (const char* bad : {"0", "-0.04", "1e-300", "x", "nan"}) {
    EXPECT_THAT(error_of(replaced(kTwoJoints, "Time: 0.04", std::string("Time: ") + bad)), HasSubstr("clip.bvh:18: "))
        << bad;
  }
}

TEST(Bvh, BadChannelsAreAnErrorOnTheirLine) {
  const auto with = [](const char* channels) { return error_of(one_joint(channels, "0")); };
  EXPECT_THAT(with("3 Xrotation Yrotation Xrotation"), HasSubstr("clip.bvh:5: 'Xrotation' is listed twice"));
  EXPECT_THAT(with("3 Xrotation Yrotation"), HasSubstr("'End' is not a channel"));
  EXPECT_THAT(with("7 Xrotation"), HasSubstr("clip.bvh:5: the number of channels must be a whole number from 0 to 6"));
  EXPECT_THAT(with("-1"), HasSubstr("a whole number from 0 to 6"));
  EXPECT_THAT(with("1.5 Xrotation"), HasSubstr("a whole number from 0 to 6"));
  EXPECT_THAT(with("1 Wrotation"), HasSubstr("'Wrotation' is not a channel"));
  EXPECT_THAT(with("1 Xrotation\nCHANNELS 1 Yrotation"), HasSubstr("clip.bvh:6: a second CHANNELS"));
}

TEST(Bvh, ADamagedHierarchyIsAnErrorOnItsLine) {
  EXPECT_THAT(error_of(""), HasSubstr("clip.bvh:1: a BVH clip begins with 'HIERARCHY'"));
  EXPECT_THAT(error_of("PNG"), HasSubstr("this file with 'PNG'"));
  EXPECT_THAT(error_of(std::string("\xFF\xFEH\0I\0", 6)), HasSubstr("UTF-16"));
  EXPECT_THAT(error_of("HIERARCHY\nMOTION\n"), HasSubstr("no 'ROOT'"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\n{\n"), HasSubstr("the file ends before 'MOTION'"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\nOFFSET 0 0 0"), HasSubstr("clip.bvh:3: the joint 'a' has no '{'"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\n{\nMOTION"), HasSubstr("a '}' is missing"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\n{\n}\n}"), HasSubstr("clip.bvh:5: '}' stands outside"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\n{\nROOT b\n{"), HasSubstr("clip.bvh:4: 'ROOT' stands inside"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\n{\nOFSET 0 0 0\n"), HasSubstr("clip.bvh:4: 'OFSET' is not a keyword"));
  EXPECT_THAT(error_of("HIERARCHY\nROOT a\n{\nOFFSET 0 zero 0\n"),
              HasSubstr("clip.bvh:4: 'zero' stands where an offset belongs"));
}

TEST(Bvh, EveryCutOffFileIsAnErrorOrAWholeClip) {
  const std::string text = kTwoJoints;
  // Only the end of the last number and of the last line may go unnoticed.
  for (std::size_t length = 0; length + 2 < text.size(); ++length) {
    EXPECT_THAT(error_of(text.substr(0, length)), HasSubstr("clip.bvh:")) << length;
  }
}

TEST(Bvh, JointsInsideEachOtherAreBounded) {
  std::string text = "HIERARCHY\nROOT a {";
  for (int i = 0; i < 3000; ++i) text += "JOINT a {";
  EXPECT_THAT(error_of(text), HasSubstr("more than 2000 joints inside each other"));
}

TEST(Bvh, NamesAreBounded) {
  EXPECT_THAT(error_of("HIERARCHY\nROOT " + std::string(70000, 'a') + "\n{"),
              HasSubstr("a name of more than 65536 bytes"));
  EXPECT_THAT(error_of(std::string(70000, 'a')), HasSubstr("a word of more than 65536 bytes"));
}

// A text as a pipe brings it, then the same row again and again.
class EndlessSource : public MemorySource {
 public:
  explicit EndlessSource(std::string_view text) : MemorySource(text, "pipe.bvh") {}
  std::uint64_t size() const override { return 0; }
  std::size_t read(char* to, std::size_t limit) override {
    static constexpr std::string_view kRow = "0 100 0  0 0 0  0 0 0\n";
    if (const std::size_t got = MemorySource::read(to, limit)) return got;
    if ((given_ += kRow.size()) > 10'000'000) throw std::runtime_error("more was asked for than was allowed");
    return kRow.copy(to, limit);
  }

 private:
  std::size_t given_ = 0;
};

TEST(Bvh, APipeWithoutEndIsAnError) {
  EndlessSource source(kTwoJoints);
  ReadOptions options;
  options.max_unannounced = 1'000'000;
  try {
    read_bvh(source, options);
    FAIL() << "read to an end that is not there";
  } catch (const FormatError& error) {
    EXPECT_THAT(error.what(), HasSubstr("the text does not end; give a file instead of a pipe or a device"));
  }
}

TEST(Bvh, NothingChangesAcrossTheEdgesOfTheWindow) {
  // Blanks before each word move it across the edge of the smallest window.
  for (std::size_t shift = 0; shift < 520; ++shift) {
    std::string text = kTwoJoints;
    text.insert(text.find("10 100 0"), std::string(shift, ' '));
    MemorySource source(text, "clip.bvh");
    const Scene scene = read_bvh(source, {}, 1);
    expect_at(scene, "Knee", 1, 20, 100, 0);
    expect_at(scene, "Knee_End", 2, 25, 90, 0);
  }
}

TEST(Bvh, BothRoadsOfEvaluationGiveTheSameDoubles) {
  const Scene scene = read(kTwoJoints);
  Evaluator evaluator(scene.evaluation, scene.names.require("Knee_End"));
  for (double frame = -1.0; frame <= 3.0; frame += 0.125) {
    EXPECT_EQ(evaluator.translation(frame),
              scene.evaluation.world_matrix(scene.names.require("Knee_End"), frame).translation());
  }
}

}  // namespace
}  // namespace vantorelix::standalone
