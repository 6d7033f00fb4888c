// A session on the standalone host: a scene, a clock turned by hand, and the engine behind a recorder.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/state/state.h"
#include "standalone/host/host.h"
#include "tests/support/recorder.h"

namespace vantorelix::contract {

class Session {
 public:
  // Every reading of the clock moves it on by `seconds_a_reading`.
  Session(standalone::Scene scene, double seconds_a_reading)
      : seconds_a_reading_(seconds_a_reading), host_(std::move(scene), options()), recorder_(handles()) {
    _initialise(recorder_.handles());
    recorder_.clear();
  }
  ~Session() {
    // The engine lets go of the host's plugs before the host goes.
    recorder_.stop_failing();
    _initialise(recorder_.handles());
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  standalone::Host& host() { return host_; }
  standalone::Scene& scene() { return host_.scene(); }
  support::Recorder& recorder() { return recorder_; }
  // All warnings so far.
  std::vector<std::string>& warnings() { return warnings_; }
  void wait(double seconds) { now_ += seconds; }

  Vectors vectors(const std::string& viz, const std::string& attribute) {
    const auto shapes = scene().nodes.shapes(scene().names.require(viz));
    return scene().attributes.vectors(shapes.at(0), attribute);
  }

 private:
  Handles handles() { return {&host_.cmds(), &host_.om(), &host_.oma(), &host_.interpreter()}; }
  standalone::HostOptions options() {
    standalone::HostOptions options;
    options.clock = [this] {
      const double read = now_;
      now_ += seconds_a_reading_;
      return read;
    };
    options.print = [](const std::string&) {};
    options.warning = [this](const std::string& text) { warnings_.push_back(text); };
    return options;
  }

  double now_ = 1000.0;
  double seconds_a_reading_;
  std::vector<std::string> warnings_;
  standalone::Host host_;
  support::Recorder recorder_;
};

}  // namespace vantorelix::contract
