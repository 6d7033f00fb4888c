#include "engine/state/preferences.h"

#include <gmock/gmock.h>

#include "engine/state/constants.h"
#include "host/error.h"
#include "tests/support/engine_test.h"

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::ElementsAre;
using testing::IsEmpty;

class Preferences : public EngineTest {
 protected:
  // The kind of the error that `body` throws.
  template <class Body>
  host::ErrorKind kind_of(Body&& body) {
    try {
      body();
    } catch (const host::Error& e) {
      return e.kind();
    }
    ADD_FAILURE() << "no error";
    return host::ErrorKind::runtime;
  }

  void expect_defaults() {
    EXPECT_EQ(_get_pref_samples(), 1);
    EXPECT_EQ(_get_pref_line_width(), 2.5);
    EXPECT_EQ(_get_pref_point_size(), 6.0);
    EXPECT_TRUE(_get_pref_show_line());
    EXPECT_TRUE(_get_pref_show_dots());
    EXPECT_TRUE(_get_pref_xray());
    EXPECT_EQ(_get_pref_color_mode(), 0);
  }
};

TEST_F(Preferences, OfAFreshUserAreTheDefaults) {
  expect_defaults();
  EXPECT_THAT(fake.options, IsEmpty());
}

TEST_F(Preferences, AreReadAfreshEachTimeByExistenceThenValue) {
  fake.options[OPT_LINE_WIDTH] = 4.0;
  EXPECT_EQ(_get_pref_line_width(), 4.0);
  fake.options[OPT_LINE_WIDTH] = 5.0;
  EXPECT_EQ(_get_pref_line_width(), 5.0);
  EXPECT_EQ(_get_pref_samples(), 1);
  EXPECT_THAT(recorder.log(),
              ElementsAre("cmds.optionVar(exists='Vantorelix_lineWidth')", "cmds.optionVar(q='Vantorelix_lineWidth')",
                          "cmds.optionVar(exists='Vantorelix_lineWidth')", "cmds.optionVar(q='Vantorelix_lineWidth')",
                          "cmds.optionVar(exists='Vantorelix_samplesPerFrame')"));
}

TEST_F(Preferences, AreWrittenUnderTheirKeysAndKinds) {
  _set_pref_samples(2);
  _set_pref_line_width(3);
  _set_pref_point_size("4.5");
  _set_pref_show_line(false);
  _set_pref_show_dots(true);
  _set_pref_xray(0);
  _set_pref_color_mode(2.9);
  EXPECT_THAT(
      recorder.log(),
      ElementsAre("cmds.optionVar(iv=('Vantorelix_samplesPerFrame', 2))",
                  "cmds.optionVar(fv=('Vantorelix_lineWidth', 3.0))",
                  "cmds.optionVar(fv=('Vantorelix_pointSize', 4.5))", "cmds.optionVar(iv=('Vantorelix_showLine', 0))",
                  "cmds.optionVar(iv=('Vantorelix_showDots', 1))", "cmds.optionVar(iv=('Vantorelix_xrayMode', 0))",
                  "cmds.optionVar(iv=('Vantorelix_colorMode', 2))"));
  EXPECT_EQ(_get_pref_samples(), 2);
  EXPECT_EQ(_get_pref_line_width(), 3.0);
  EXPECT_EQ(_get_pref_point_size(), 4.5);
  EXPECT_FALSE(_get_pref_show_line());
  EXPECT_TRUE(_get_pref_show_dots());
  EXPECT_FALSE(_get_pref_xray());
  EXPECT_EQ(_get_pref_color_mode(), 2);
}

TEST_F(Preferences, OfSamplesNeverFallBelowOne) {
  const std::pair<host::Value, int> cases[] = {{0, 1}, {-4, 1}, {2.9, 2}, {-0.5, 1}, {"5", 5}, {true, 1}};
  for (const auto& [given, stored] : cases) {
    _set_pref_samples(given);
    EXPECT_EQ(fake.options[OPT_SAMPLES], host::Value(stored)) << given.repr();
  }
  fake.options[OPT_SAMPLES] = -3;
  EXPECT_EQ(_get_pref_samples(), 1);
  fake.options[OPT_SAMPLES] = 7.8;
  EXPECT_EQ(_get_pref_samples(), 7);
}

TEST_F(Preferences, OfSizesAreKeptWhenTheNewOneIsNoNumber) {
  _set_pref_line_width(-1.5);
  _set_pref_line_width("abc");
  _set_pref_line_width({});
  EXPECT_EQ(_get_pref_line_width(), -1.5);
  _set_pref_point_size(0);
  EXPECT_EQ(_get_pref_point_size(), 0.0);
}

TEST_F(Preferences, OfSwitchesFollowTruth) {
  _set_pref_xray({});
  EXPECT_EQ(fake.options[OPT_XRAY], host::Value(0));
  _set_pref_show_dots("no");
  EXPECT_EQ(fake.options[OPT_SHOW_DOTS], host::Value(1));
  fake.options[OPT_SHOW_LINE] = -2;
  EXPECT_TRUE(_get_pref_show_line());
  fake.options[OPT_SHOW_LINE] = 0.9;  // the integer part decides
  EXPECT_FALSE(_get_pref_show_line());
}

TEST_F(Preferences, OfTheColourModeKeepAnyInteger) {
  _set_pref_color_mode(99);
  EXPECT_EQ(fake.options[OPT_COLOR_MODE], host::Value(99));
  EXPECT_EQ(_get_pref_color_mode(), 99);
  _set_pref_color_mode(-1);
  EXPECT_EQ(_get_pref_color_mode(), -1);
}

TEST_F(Preferences, HoldingTheWrongKindReadAsTheDefaultAndStay) {
  const host::Value array = host::Value::list({"a", "b"});
  for (const std::string& key :
       {OPT_SAMPLES, OPT_LINE_WIDTH, OPT_POINT_SIZE, OPT_SHOW_LINE, OPT_SHOW_DOTS, OPT_XRAY, OPT_COLOR_MODE})
    fake.options[key] = array;
  expect_defaults();
  EXPECT_EQ(fake.options[OPT_SAMPLES], array);
  fake.options[OPT_SAMPLES] = "many";
  EXPECT_EQ(_get_pref_samples(), 1);
  fake.options[OPT_SAMPLES] = "3";
  EXPECT_EQ(_get_pref_samples(), 3);
}

TEST_F(Preferences, OfAnUnavailableHostAreTheDefaultsAndNothingIsStored) {
  fake.options[OPT_SAMPLES] = 4;
  recorder.fail_line("cmds.optionVar");
  expect_defaults();
  _set_pref_samples(2);
  _set_pref_line_width(2.0);
  _set_pref_xray(false);
  EXPECT_EQ(fake.options.size(), 1u);
  recorder.stop_failing();
  recorder.fail_line("cmds.optionVar(q=");
  expect_defaults();
}

TEST_F(Preferences, ThatAreIntegersRaiseForWhatIsNoNumber) {
  EXPECT_EQ(kind_of([] { _set_pref_samples("abc"); }), host::ErrorKind::value);
  EXPECT_EQ(kind_of([] { _set_pref_color_mode(host::Value()); }), host::ErrorKind::type);
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(Preferences, RaiseOnlyForADefaultThatDoesNotConvert) {
  EXPECT_EQ(kind_of([] { _opt_get_int("none", "abc"); }), host::ErrorKind::value);
  EXPECT_EQ(kind_of([] { _opt_get_float("none", host::Value()); }), host::ErrorKind::type);
  fake.options["some"] = 3;
  EXPECT_EQ(_opt_get_int("some", "abc"), 3);
  EXPECT_EQ(_opt_get_int("none", 2.9), 2);
}

TEST_F(Preferences, NeverSwallowAnInterrupt) {
  recorder.fail_line("cmds.optionVar", 0, support::Failure::interrupt);
  EXPECT_THROW(_get_pref_samples(), host::Interrupt);
  EXPECT_THROW(_set_pref_xray(true), host::Interrupt);
}

}  // namespace
}  // namespace vantorelix
