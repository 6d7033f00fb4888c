// What is named because it is not applied: limits, the time warp, and the end of a file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "standalone/formats/maya/maya_test_scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

// --- limits ------------------------------------------------------------------------------------------------------

// A ball that goes from 0 to 10 along x, with these statements about it.
Scene limited(const std::string& statements) {
  return read("createNode transform -n \"ball\";" + statements +
              curve("setAttr \".tan\" 2;setAttr \".ktv[0:1]\" 0 0 10 10;") + "connectAttr \"c.o\" \"ball.tx\";");
}

TEST(MayaLimits, AreNamedWithTheNodeWhereItsValuesLeaveThem) {
  const std::string kBounds = "setAttr \".mntl\" -type \"double3\" 0 -1 -1;setAttr \".mxtl\" -type \"double3\" 9 1 1;";
  const Scene scene = limited(kBounds + "setAttr \".xtxe\" yes;");
  EXPECT_THAT(scene.warnings.all(),
              ElementsAre(Field(&Warning::kind,
                                "the limits of 'ball' are not applied, although values lie beyond them; bake "
                                "what they limit before saving")));
  EXPECT_THAT(scene.evaluation.not_followed(scene.names.require("ball")), ElementsAre(HasSubstr("limits")));
  expect_at(scene, "ball", 10, 10, 0, 0);
}

TEST(MayaLimits, HaveALongAndAShortNameEach) {
  for (const char* statements :
       {"setAttr \".maxTransXLimit\" 9;setAttr \".maxTransXLimitEnable\" yes;",
        "setAttr \".xtxl\" 9;setAttr \".xtxe\" 1;",
        "setAttr \".maxTransLimit\" 9 1 1;setAttr \".maxTransLimitEnable\" yes no no;",
        "setAttr \".mxtl\" 9 1 1;setAttr \".xtle\" yes no no;", "setAttr \".xtxe\" yes;",
        "setAttr \".minTransXLimit\" 1;setAttr \".mtxe\" yes;", "setAttr \".mtxl\" 1;setAttr \".mtle\" yes no no;",
        "setAttr \".ry\" 50;setAttr \".xrye\" yes;",
        "setAttr \".maxRotYLimit\" 40;setAttr \".ry\" 44;setAttr \".xrye\" yes;",
        "setAttr \".mxsl\" 1 1 2;setAttr \".sz\" 2.5;setAttr \".xsze\" yes;",
        "setAttr \".sz\" -1.5;setAttr \".minScaleZLimitEnable\" yes;"})
    EXPECT_THAT(limited(statements).warnings.all(), warns("the limits of 'ball'", 1)) << statements;
}

TEST(MayaLimits, ThatAreOffOrThatTheValuesKeepDoNothing) {
  for (const char* statements :
       {"setAttr \".mxtl\" 9 1 1;", "setAttr \".mxtl\" 9 1 1;setAttr \".xtxe\" no;",
        "setAttr \".xtxl\" 10;setAttr \".xtxe\" yes;", "setAttr \".mtxl\" 0;setAttr \".mtxe\" yes;",
        "setAttr \".ry\" 44;setAttr \".xrye\" yes;", "setAttr \".mxtl\" 9 1 1;setAttr \".xtye\" yes;",
        "setAttr \".mtxx\" yes;setAttr \".xt\" yes;"})
    EXPECT_THAT(limited(statements).warnings.all(), IsEmpty()) << statements;
}

TEST(MayaLimits, AreLeftBetweenKeysToo) {
  const std::string bump = curve(
      "setAttr \".tan\" 9;setAttr -s 2 \".ktv[0:1]\" 0 0 10 0;setAttr -s 2 \".kit[0:1]\" 1 1;setAttr "
      "-s 2 \".kot[0:1]\" 1 1;setAttr -s 2 \".kix[0:1]\" 0.1 0.1;setAttr -s 2 \".kiy[0:1]\" 0.99 "
      "-0.99;setAttr -s 2 \".kox[0:1]\" 0.1 0.1;setAttr -s 2 \".koy[0:1]\" 0.99 -0.99;");
  const std::string text = "createNode transform -n \"ball\";setAttr \".xtxl\" 0.2;setAttr \".xtxe\" yes;" + bump +
                           "connectAttr \"c.o\" \"ball.tx\";";
  ASSERT_GT(place(read(text), "ball", 5).x, 0.2);
  EXPECT_THAT(read(text).warnings.all(), warns("the limits of 'ball'", 1));
}

// --- the scene's time warp ---------------------------------------------------------------------------------------

std::string warped(const std::string& time) {
  return "createNode animCurveTT -n \"warp\";setAttr \".ktv[0:1]\" 0 0 10 5;select -ne :time1;setAttr \".o\" 3;" +
         time + "connectAttr \"warp.o\" \":time1.tw\";";
}

TEST(MayaTimeWarp, IsNamed) {
  const std::string kSays =
      "the scene time warp 'warp' is not applied: trails are those of the time without it; bake the scene, or switch "
      "the warp off, before saving";
  for (const char* time : {"", "setAttr -k on \".etw\";", "setAttr \".etw\" yes;"})
    EXPECT_THAT(read(warped(time)).warnings.all(), ElementsAre(Field(&Warning::kind, kSays))) << time;
  EXPECT_EQ(read(warped("")).settings.current_time(), 3.0);
}

TEST(MayaTimeWarp, ThatIsSwitchedOffIsNot) {
  EXPECT_THAT(read(warped("setAttr \".etw\" no;")).warnings.all(), IsEmpty());
  EXPECT_THAT(read("createNode animCurveTT -n \"w\";connectAttr \"w.msg\" \":time1.tws\";").warnings.all(), IsEmpty());
}

// --- where a file ends -------------------------------------------------------------------------------------------

TEST(MayaEnd, AFileOfMayasWithoutItsClosingLineMayBeCutOff) {
  const std::string text = "//Maya ASCII 2020 scene\ncreateNode transform -n \"a\";\n";
  EXPECT_THAT(read(text).warnings.all(),
              warns("the closing line '// End of ...' is missing: the file may be cut off", 1));
  EXPECT_THAT(read(text + "// End of the scene\ncreateNode transform;").warnings.all(), IsEmpty());
  EXPECT_THAT(read(text + "// End of a.ma").warnings.all(), IsEmpty());
}

TEST(MayaEnd, AFileOfSomebodyElseNeedsNone) {
  EXPECT_THAT(read("// by hand\ncreateNode transform -n \"a\";\n").warnings.all(), IsEmpty());
}

}  // namespace
}  // namespace vantorelix::standalone
