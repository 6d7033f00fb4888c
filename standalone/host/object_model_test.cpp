#include "host/object_model.h"

#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/host/host.h"

namespace vantorelix::standalone {
namespace {

using host::Error;
using host::Value;

int edits = 0;
void count_edit() { ++edits; }

class ObjectModelTest : public testing::Test {
 protected:
  ObjectModelTest() {
    edits = 0;
    Scene& scene = host.scene();
    parent = scene.nodes.create("transform", "parent");
    ball = scene.nodes.create("transform", "ball", parent);
    scene.attributes.set_channel(parent, Channel::rotateZ, 0.5);
    scene.curves.set_key(ball, Channel::translateX, 1.0, 0.0);
    scene.curves.set_key(ball, Channel::translateX, 11.0, 7.0);
  }
  std::shared_ptr<host::Plug> world_plug(const std::string& node) {
    return host.om().findPlug(node, "worldMatrix")->elementByLogicalIndex(0);
  }

  Host host{Scene()};
  NodeId parent, ball;
};

TEST_F(ObjectModelTest, evaluates_the_world_translation_as_the_attribute_query_does) {
  const auto plug = world_plug("ball");
  const host::TimeUnit unit = host.om().uiUnit();
  for (double t = -3.0; t < 15.0; t += 0.7) {
    const auto matrix = host.cmds().getAttr_matrix("ball.worldMatrix[0]", t);
    EXPECT_EQ(plug->translation_at(t, unit), (Vector{matrix[12], matrix[13], matrix[14]})) << t;
  }
}

TEST_F(ObjectModelTest, keeps_a_plug_good_through_edits_and_renaming_but_not_deletion) {
  const auto plug = world_plug("ball");
  const host::TimeUnit unit = host.om().uiUnit();
  plug->translation_at(4.0, unit);
  host.scene().nodes.rename(ball, "globe");
  host.scene().curves.set_key(ball, Channel::translateY, 1.0, 3.0);
  EXPECT_EQ(plug->translation_at(4.0, unit), host.scene().evaluation.world_matrix(ball, 4.0).translation());
  host.scene().nodes.remove(parent);
  EXPECT_THROW(plug->translation_at(4.0, unit), Error);
}

TEST_F(ObjectModelTest, refuses_a_missing_node_or_attribute_and_takes_the_first_of_several) {
  EXPECT_THROW(host.om().findPlug("nobody", "worldMatrix"), Error);
  EXPECT_THROW(host.om().findPlug("ball", "unheardOf"), Error);
  EXPECT_THROW(host.om().findPlug("ball", "points"), Error) << "only the viz node has it";
  const NodeId second = host.scene().nodes.create("transform", "ball");
  EXPECT_EQ(world_plug("ball")->translation_at(2.0, {}), host.scene().evaluation.world_matrix(ball, 2.0).translation());
  EXPECT_EQ(world_plug("|ball")->translation_at(2.0, {}),
            host.scene().evaluation.world_matrix(second, 2.0).translation());
}

TEST_F(ObjectModelTest, shares_the_storage_of_a_finished_array) {
  const std::string shape = host.cmds().createNode("vantorelix", "vShape");
  const auto values = std::make_shared<const std::vector<Vector>>(3, Vector{1, 2, 3});
  host.om().findPlug(shape, "points")->set_vector_array(host.om().vector_array(values));
  EXPECT_EQ(host.scene().attributes.vectors(host.scene().names.find(shape), "points"), values);
}

TEST_F(ObjectModelTest, grows_an_array_without_touching_what_it_began_with) {
  const auto values = std::make_shared<const std::vector<Vector>>(1, Vector{1, 2, 3});
  const auto array = host.om().vector_array(values);
  array->append({4, 5, 6});
  EXPECT_EQ(values->size(), 1u);
  const auto grown = host.om().vector_array();
  grown->append({7, 8, 9});
  const std::string shape = host.cmds().createNode("vantorelix", "vShape");
  const NodeId node = host.scene().names.find(shape);
  host.om().findPlug(shape, "points")->set_vector_array(array);
  host.om().findPlug(shape, "keyTimes")->set_vector_array(grown);
  EXPECT_EQ(*host.scene().attributes.vectors(node, "points"), (std::vector<Vector>{{1, 2, 3}, {4, 5, 6}}));
  EXPECT_EQ(*host.scene().attributes.vectors(node, "keyTimes"), (std::vector<Vector>{{7, 8, 9}}));
}

TEST_F(ObjectModelTest, refuses_what_a_plug_is_not_made_for) {
  const std::string shape = host.cmds().createNode("vantorelix", "vShape");
  const auto points = host.om().findPlug(shape, "points");
  EXPECT_THROW(points->translation_at(1.0, {}), Error);
  EXPECT_THROW(points->elementByLogicalIndex(0), Error);
  EXPECT_THROW(points->set_vector_array(nullptr), Error);
  EXPECT_THROW(host.om().findPlug("ball", "worldMatrix")->elementByLogicalIndex(1), Error);
  EXPECT_THROW(host.om().findPlug(shape, "lineWidth")->set_vector_array(host.om().vector_array()), Error);
  host.scene().nodes.remove(host.scene().names.find(shape));
  EXPECT_THROW(points->set_vector_array(host.om().vector_array()), Error);
}

TEST_F(ObjectModelTest, tells_of_an_edited_key_inside_the_edit) {
  const Value curve = host.oma().addAnimCurveEditedCallback({"count_edit", count_edit});
  const Value key = host.oma().addAnimKeyframeEditedCallback({"count_edit", count_edit});
  EXPECT_EQ(host.callback_count(), 2u);
  const NodeId node = host.scene().curves.driving_curve(ball, Channel::translateX);
  host.scene().curves.set_key(node, 5.0, 1.0);
  EXPECT_EQ(edits, 2);
  host.om().removeCallback(curve);
  host.scene().curves.set_key(node, 6.0, 1.0);
  EXPECT_EQ(edits, 3);
  host.om().removeCallback(key);
  host.scene().curves.set_key(node, 7.0, 1.0);
  EXPECT_EQ(edits, 3);
  EXPECT_THROW(host.om().removeCallback(key), Error);
  EXPECT_EQ(host.callback_count(), 0u);
}

TEST_F(ObjectModelTest, tells_of_a_removed_animation_curve) {
  host.om().addNodeRemovedCallback({"count_edit", count_edit}, "animCurve");
  host.cmds().group_empty("bystander");
  host.cmds().delete_("bystander");
  EXPECT_EQ(edits, 0);
  host.cmds().delete_("ball");
  EXPECT_EQ(edits, 1);
}

TEST_F(ObjectModelTest, answers_what_the_session_is_doing) {
  using Activity = Host::FileActivity;
  const auto answers = [&] {
    return std::vector<bool>{host.om().isReadingFile(), host.om().isWritingFile(), host.om().isOpeningFile(),
                             host.om().isNewingFile()};
  };
  using Answers = std::vector<bool>;
  EXPECT_EQ(answers(), (Answers{false, false, false, false}));
  host.set_file_activity(Activity::reading);
  EXPECT_EQ(answers(), (Answers{true, false, false, false}));
  host.set_file_activity(Activity::writing);
  EXPECT_EQ(answers(), (Answers{false, true, false, false}));
  host.set_file_activity(Activity::opening);
  EXPECT_EQ(answers(), (Answers{true, false, true, false})) << "opening a file reads it";
  host.set_file_activity(Activity::creating);
  EXPECT_EQ(answers(), (Answers{false, false, false, true}));
  EXPECT_FALSE(host.oma().isPlaying());
  host.set_playing(true);
  EXPECT_TRUE(host.oma().isPlaying());
}

}  // namespace
}  // namespace vantorelix::standalone
