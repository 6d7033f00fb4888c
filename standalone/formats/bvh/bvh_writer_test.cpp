// What is written as a clip, read by our own reader.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "standalone/formats/reader.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kClip =
    "HIERARCHY\n"
    "ROOT Hips\n"
    "{\n"
    "\tOFFSET 1 2.5 -3\n"
    "\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
    "\tJOINT left leg:1\n"
    "\t{\n"
    "\t\tOFFSET 0 -10 0\n"
    "\t\tCHANNELS 2 Yrotation Xrotation\n"
    "\t\tEnd Site\n"
    "\t\t{\n"
    "\t\t\tOFFSET 0 -5.25 0.5\n"
    "\t\t}\n"
    "\t}\n"
    "\tJOINT pin\n"
    "\t{\n"
    "\t\tOFFSET 1e-20 0 0\n"
    "\t}\n"
    "}\n"
    "ROOT Prop\n"
    "{\n"
    "\tOFFSET 0 0 0\n"
    "\tCHANNELS 2 Zrotation Yposition\n"
    "}\n"
    "MOTION\n"
    "Frames: 3\n"
    "Frame Time: 0.0333333\n"
    "0 100 0 0 0 0 0 0 5 -0.0\n"
    "10.1 100 0.30000000000000004 90 0 -33.37 1 2 6 1\n"
    "20 100 0 0 179.99 0 90 0 7 2\n";

std::vector<NodeId> everything(const Scene& scene) {
  std::vector<NodeId> found;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node)) found.push_back(node);
  return found;
}

Written written(const Scene& scene) {
  return write_bvh(scene, everything(scene), {scene.settings.playback_min(), scene.settings.playback_max()});
}

Scene clip(const std::string& text = kClip) { return read_bvh(text, "clip.bvh"); }

NodeId named(const Scene& scene, const std::string& in_file) {
  for (const NodeId node : everything(scene))
    if (name_in_file(scene, node) == in_file) return node;
  ADD_FAILURE() << in_file;
  return kNoNode;
}

std::uint64_t bits(double number) { return std::bit_cast<std::uint64_t>(number); }

// Every channel of nodes of the same names, at every whole frame.
void expect_same_bits(const Scene& have, const Scene& want, std::size_t added = 0) {
  const std::vector<NodeId> old = everything(want);
  ASSERT_EQ(everything(have).size(), old.size() + added);
  for (const NodeId node : old) {
    const NodeId fresh = have.names.require(want.names.unique_name(node));
    for (Channel c = Channel::translateX; c < Channel::count; c = component(c, 1))
      for (double frame = want.settings.playback_min(); frame <= want.settings.playback_max(); ++frame)
        EXPECT_EQ(bits(have.evaluation.channel_at(fresh, c, frame)), bits(want.evaluation.channel_at(node, c, frame)))
            << want.names.unique_name(node) << ' ' << static_cast<int>(c) << " at " << frame;
  }
}

void expect_same_places(const Scene& have, const Scene& want, const std::string& name, double shift, double near) {
  for (double frame = want.settings.playback_min(); frame <= want.settings.playback_max(); ++frame) {
    const Affine a = have.evaluation.world_matrix(named(have, name), frame - shift);
    const Affine b = want.evaluation.world_matrix(named(want, name), frame);
    EXPECT_NEAR(a.m[3][0], b.m[3][0], near) << name << " at " << frame;
    EXPECT_NEAR(a.m[3][1], b.m[3][1], near) << name << " at " << frame;
    EXPECT_NEAR(a.m[3][2], b.m[3][2], near) << name << " at " << frame;
  }
}

std::string refusal(const Scene& scene, const FrameRange& range) {
  try {
    write_bvh(scene, everything(scene), range);
  } catch (const CannotWrite& error) {
    return error.what();
  }
  return "written";
}

TEST(BvhFile, OfAClipThatNobodyEditedIsThatClip) {
  const Written again = written(clip());
  EXPECT_EQ(again.bytes, kClip);
  EXPECT_THAT(again.lost, IsEmpty());
}

TEST(BvhFile, OfAClipWithoutRowsIsThatClip) {
  const std::string text =
      "HIERARCHY\nROOT a\n{\n\tOFFSET 1 2 3\n\tCHANNELS 2 Zrotation Xposition\n}\nMOTION\nFrames: 0\nFrame Time: 0.5\n";
  EXPECT_EQ(written(clip(text)).bytes, text);
}

TEST(BvhFile, HasTheBitsOfEditedKeysAtWholeFrames) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> any(-500.0, 500.0);
  std::size_t told = 0;
  for (int turn = 0; turn < 50; ++turn) {
    Scene scene = clip();
    for (const char* name : {"Hips", "left leg:1", "Prop", "pin"})
      for (const Channel c : {Channel::translateZ, Channel::translateX, Channel::rotateZ, Channel::rotateX})
        scene.curves.set_key(named(scene, name), c, static_cast<double>(random() % 3), any(random));
    const Written edited = written(scene);
    const bool rounded = edited.bytes.empty() || !edited.lost.empty();
    told += rounded;
    const Scene again = clip(edited.bytes);
    EXPECT_EQ(again.settings.frames_per_second(), scene.settings.frames_per_second());
    if (!rounded) expect_same_bits(again, scene);
    for (const char* name : {"Hips", "left leg:1", "Prop", "pin"}) expect_same_places(again, scene, name, 0.0, 1e-9);
  }
  EXPECT_LT(told, 50u);
}

TEST(BvhFile, TellsWhichAnglesAreRounded) {
  Scene scene = clip();
  const NodeId hips = scene.names.require("Hips");
  // About a tenth of all angles have no number of degrees; one of these has.
  std::mt19937 random(3);
  std::uniform_real_distribution<double> any(0.0, 3.0);
  std::size_t rounded = 0, wrong = 0;
  for (int turn = 0; turn < 100; ++turn) {
    const double angle = any(random);
    scene.curves.set_key(hips, Channel::rotateX, 1.0, angle);
    const Written edited = written(scene);
    const Scene again = clip(edited.bytes);
    const bool same = again.evaluation.channel_at(again.names.require("Hips"), Channel::rotateX, 1.0) == angle;
    if (!edited.lost.empty()) {
      EXPECT_THAT(edited.lost, ElementsAre(HasSubstr("Hips.Xrotation has angles that no number of degrees gives")));
    }
    rounded += !edited.lost.empty();
    wrong += same != edited.lost.empty();
  }
  EXPECT_GT(rounded, 0u);
  EXPECT_LT(rounded, 50u);
  EXPECT_EQ(wrong, 0u);
}

TEST(BvhFile, TellsWhatLiesBetweenAndBeyondTheFrames) {
  Scene scene = clip();
  const NodeId hips = scene.names.require("Hips"), prop = scene.names.require("Prop");
  scene.curves.set_key(hips, Channel::translateX, 1.5, 40.0);
  EXPECT_THAT(written(scene).lost, ElementsAre("Hips.translateX bends between whole frames, where BVH goes straight"));
  scene.curves.set_key(prop, Channel::rotateZ, 7.0, 1.0);
  scene.curves.set_key(prop, Channel::translateY, -1.0, 1.0);
  const Written edited = written(scene);
  EXPECT_THAT(edited.lost, ElementsAre(HasSubstr("Hips.translateX bends"),
                                       HasSubstr("Prop.rotateZ and 1 more have keys, or go on, beyond the frames")));
  EXPECT_THAT(edited.bytes, HasSubstr("Frames: 3\n"));
}

TEST(BvhFile, ListsChannelsThatHaveCome) {
  Scene scene = clip();
  scene.curves.set_key(scene.names.require("pin"), Channel::translateY, 1.0, 8.0);
  scene.curves.set_key(scene.names.require("Prop"), Channel::rotateX, 1.0, 0.5);
  const std::string text = written(scene).bytes;
  EXPECT_THAT(text, HasSubstr("OFFSET 1e-20 0 0\n\t\tCHANNELS 1 Yposition\n"));
  EXPECT_THAT(text, HasSubstr("OFFSET 0 0 0\n\tCHANNELS 4 Yposition Yrotation Xrotation Zrotation\n"));
}

TEST(BvhFile, AnEndSiteThatMovesIsAJoint) {
  Scene scene = clip();
  const NodeId end = scene.nodes.children(named(scene, "left leg:1")).front();
  scene.curves.set_key(end, Channel::translateY, 1.0, -6.0);
  const Written edited = written(scene);
  EXPECT_THAT(edited.bytes, HasSubstr("\t\tJOINT " + std::string(scene.names.short_name(end)) + "\n"));
  expect_same_bits(clip(edited.bytes), scene, 1);  // with an end site of its own
}

TEST(BvhFile, NamesComeBackAsTheyWere) {
  for (const std::string name : {"a \"b\" 'c'", "<b>&amp;", "}x}", "\xC3\xA4\xFF", "JOINT", "", "a:b|c"}) {
    const std::string text = "HIERARCHY\nROOT " + name +
                             "\n{\n\tOFFSET 0 0 0\n\tCHANNELS 1 Xposition\n}\nMOTION\nFrames: 1\nFrame Time: 1\n4\n";
    const Written again = written(clip(text));
    EXPECT_EQ(again.bytes, text);
    EXPECT_THAT(again.lost, IsEmpty()) << name;
  }
}

TEST(BvhFile, NamesThatAClipCannotHoldAreTold) {
  for (const auto& [name, kept] : {std::pair{"a\nROOT b {", "a_ROOT b _"}, {"a{", "a_"}, {" a\t", "_a_"}, {" ", "_"}}) {
    Scene scene;
    keep_name_in_file(scene, scene.nodes.create("joint", "some"), name);
    const Written made = written(scene);
    EXPECT_THAT(made.lost, testing::Contains(HasSubstr("some has a name with a line end")));
    const Scene again = clip(made.bytes);
    EXPECT_EQ(name_in_file(again, again.nodes.children(kWorld).front()), kept);
  }
}

// A leg under a group that is turned and scaled, whose parts have an orientation, pivots, and a transform between them.
Scene rig() {
  Scene scene;
  const NodeId group = scene.nodes.create("transform", "group");
  const NodeId hip = scene.nodes.create("joint", "hip", group);
  const NodeId between = scene.nodes.create("transform", "between", hip);
  const NodeId knee = scene.nodes.create("joint", "knee", between);
  scene.attributes.set_channels(group, Channel::scaleX, {2.0, 2.0, 0.5});
  scene.attributes.set_channels(group, Channel::rotateX, {0.3, 1.0, -2.0});
  scene.attributes.set_channels(hip, Channel::jointOrientX, {0.1, 0.7, 0.2});
  scene.attributes.set_channel(knee, Channel::rotateOrder, 4.0);
  scene.attributes.set_channels(between, Channel::rotatePivotX, {3.0, 1.0, 2.0});
  scene.attributes.set_channels(knee, Channel::translateX, {0.0, -9.0, 1.0});
  const NodeId ankle = scene.nodes.create("joint", "ankle", knee);
  scene.attributes.set_channels(ankle, Channel::translateX, {1.0, -8.0, 2.0});
  scene.settings.set_playback_range(1.0, 40.0);
  for (const double frame : {1.0, 17.0, 40.0}) {
    scene.curves.set_key(hip, Channel::rotateY, frame, frame / 45.0);
    scene.curves.set_key(hip, Channel::translateX, frame, frame);
    scene.curves.set_key(between, Channel::rotateZ, frame, frame / 7.0);
    scene.curves.set_key(knee, Channel::rotateX, frame, frame / 5.0);
  }
  return scene;
}

TEST(BvhFile, JointsOfAnyRigStandWhereTheyStood) {
  const Scene scene = rig();
  const Written made = written(scene);
  const Scene again = clip(made.bytes);
  for (const char* name : {"hip", "knee", "ankle"}) expect_same_places(again, scene, name, 1.0, 1e-9);
  EXPECT_THAT(made.lost, ElementsAre("between is no joint; how it carries joints along is kept, and nothing else of it",
                                     HasSubstr("hip and 2 more have more than a translation and a rotation"),
                                     HasSubstr("hip and 2 more are scaled or sheared"),
                                     "BVH counts frames from 0: frame 1 of the scene becomes 0",
                                     "BVH names no unit: the numbers are in cm"));
}

TEST(BvhFile, RotationsOfAnyRigGoOnWithoutAJump) {
  const Scene scene = rig(), again = clip(written(scene).bytes);
  for (const char* name : {"hip", "knee"})
    for (const Channel c : {Channel::rotateX, Channel::rotateY, Channel::rotateZ})
      for (double frame = 0.0; frame < 38.0; ++frame) {
        const NodeId node = again.names.require(name);
        EXPECT_LT(
            std::abs(again.evaluation.channel_at(node, c, frame + 1.0) - again.evaluation.channel_at(node, c, frame)),
            1.5)
            << name << ' ' << static_cast<int>(c) << " at " << frame;
      }
}

TEST(BvhFile, IsRefusedWithoutJointsOrFrames) {
  Scene scene;
  scene.nodes.create("transform", "ball");
  EXPECT_THAT(refusal(scene, {1.0, 2.0}), HasSubstr("none of these objects is a joint"));
  scene.nodes.create("joint", "hip");
  EXPECT_EQ(refusal(scene, {1.0, 2.0}), "written");
  EXPECT_THAT(refusal(scene, {1.25, 1.75}), HasSubstr("no whole frame"));
  EXPECT_THAT(refusal(scene, {-1e300, 1e300}), HasSubstr("too long"));
  EXPECT_THAT(refusal(scene, {0.0, 3e7}), HasSubstr("1 joint at 30000001 frames are too much"));
}

}  // namespace
}  // namespace vantorelix::standalone
