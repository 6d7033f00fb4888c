// What every contract test starts from, and the runs of host calls that the tests' logs are put together from.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/contract/contract_host.h"
#include "tests/support/recorder.h"

namespace vantorelix::contract {

using Lines = std::vector<std::string>;

inline Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// A fresh engine on each host in turn, with an empty log.
class ContractTest : public testing::TestWithParam<HostKind> {
 protected:
  void SetUp() override { start(nullptr); }
  void TearDown() override {
    EXPECT_THAT(host->warnings(), testing::ElementsAreArray(expected_warnings));
    // The engine lets go of the host's plugs before the host goes.
    _initialise(recorder->handles());
  }

  void start(const Placement* unloaded) {
    recorder.reset();
    host = GetParam().make(unloaded);
    recorder = std::make_unique<support::Recorder>(host->handles());
    _initialise(recorder->handles());
    recorder->clear();
  }

  // The calls since the last look. The engine's own file and search path are not calls; identifiers of callbacks are
  // the host's own.
  Lines log() {
    Lines lines = recorder->log({"__file__", "sys.path"});
    for (std::string& line : lines)
      if (line.rfind("om.MMessage.removeCallback(", 0) == 0) line = "om.MMessage.removeCallback(...)";
    recorder->clear();
    return lines;
  }

  std::unique_ptr<ContractHost> host;
  std::unique_ptr<support::Recorder> recorder;
  Lines expected_warnings;
};

#define VANTORELIX_OVER_EVERY_HOST(suite)                                                                    \
  INSTANTIATE_TEST_SUITE_P(                                                                                  \
      OverEveryHost, suite,                                                                                  \
      testing::Values(host_kind<StandaloneContractHost>("standalone"), host_kind<FakeContractHost>("fake")), \
      [](const testing::TestParamInfo<HostKind>& param) { return std::string(param.param.name); })

// --- runs of calls ----------------------------------------------------------------------------------------------

inline const Lines kClockRead = {"time.time()"};
inline const std::string kBallShape = "|vantorelixs_grp|vlx_ball_viz|vlx_ball_vizShape";

inline Lines no_file_activity() {
  return {"om.MFileIO.isReadingFile()", "om.MFileIO.isWritingFile()", "om.MFileIO.isOpeningFile()",
          "om.MFileIO.isNewingFile()"};
}

inline Lines playback_range() {
  return {"cmds.playbackOptions(q=True, min=True)", "cmds.playbackOptions(q=True, max=True)"};
}

inline Lines evaluation(const std::string& t) { return {"plug.translation_at(" + t + ")"}; }

// Made and checked against the slow query at the current time, 1.
inline Lines fast_sampler(const std::string& obj) {
  return {"om.findPlug('" + obj + "', 'worldMatrix')",
          "plug.elementByLogicalIndex(0)",
          "om.MTime.uiUnit()",
          "cmds.currentTime(q=True)",
          "plug.translation_at(1.0)",
          "cmds.getAttr('" + obj + ".worldMatrix[0]', time=1.0)"};
}

inline Lines key_times(const std::string& obj) { return {"cmds.keyframe('" + obj + "', q=True, timeChange=True)"}; }

inline Lines shapes_of(const std::string& transform) {
  return {"cmds.listRelatives('" + transform + "', s=True, fullPath=True)"};
}

inline Lines vector_array(const std::string& shape, const std::string& attribute, int n) {
  const std::string size = "(<" + std::to_string(n) + ">)";
  return {"om.findPlug('" + shape + "', '" + attribute + "')", "om.MVectorArray" + size, "plug.setMObject" + size};
}

// All five arrays of a trail with `n` samples and `keys` keys.
inline Lines push(const std::string& viz, const std::string& shape, int n, int keys) {
  return shapes_of(viz) + vector_array(shape, "points", n) + vector_array(shape, "colors", n) +
         vector_array(shape, "keyPoints", keys) + vector_array(shape, "keyColors", keys) +
         vector_array(shape, "keyTimes", keys);
}

inline Lines set_attribute(const std::string& shape, const std::string& attribute, const std::string& value) {
  return {"cmds.setAttr('" + shape + "." + attribute + "', " + value + ")"};
}

inline Lines frame_attributes(const std::string& viz, const std::string& shape) {
  return shapes_of(viz) + set_attribute(shape, "startFrame", "1.0") + set_attribute(shape, "frameStep", "1.0");
}

inline Lines message(const std::string& text) {
  return {"cmds.inViewMessage(amg='" + text + "', pos='midCenter', fade=True, alpha=0.9)",
          "print('[Vantorelix] " + text + "')"};
}

inline Lines exists(const std::string& name) { return {"cmds.objExists('" + name + "')"}; }

inline Lines option_missing(const std::string& name) { return {"cmds.optionVar(exists='Vantorelix_" + name + "')"}; }

}  // namespace vantorelix::contract
