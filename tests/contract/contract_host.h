// The hosts that the contract suite runs over, each holding the same small scene.
//
// The scene: |rig|ball moves along x by 2 a frame from frame 1 (keys at 1 and 5), |cube stands still at the origin. The
// playback range is 1..5, the current time 1. One model panel shows trails, one does not.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "engine/state/state.h"
#include "host/error.h"
#include "standalone/host/host.h"
#include "tests/support/fake_host.h"

namespace vantorelix::contract {

class ContractHost {
 public:
  virtual ~ContractHost() = default;
  virtual Handles handles() = 0;

  virtual double& now() = 0;                  // wall-clock seconds; stands still unless a test moves it
  virtual double& advance_per_reading() = 0;  // what each reading moves it by: 0
  virtual void select(const std::vector<std::string>& names) = 0;
  // Changes a key of the ball to what it is: every subscriber to curves and to keys is told, nothing moves.
  virtual void edit_ball() = 0;
  virtual void delete_ball() = 0;
  virtual bool run_idle_once() = 0;
  virtual void set_playing(bool playing) = 0;
  virtual void set_reading(bool reading) = 0;
  virtual void add_menu(std::function<void()> show) = 0;

  virtual Vectors vectors(const std::string& shape, const std::string& attribute) = 0;
  virtual host::Value attribute(const std::string& shape, const std::string& attribute) = 0;
  virtual std::size_t callback_count() = 0;
  virtual std::vector<std::string> warnings() = 0;
  // What the host calls the transform that it puts above the viz shape of `viz`: the one choice left to it.
  virtual std::string fresh_transform(const std::string& viz) const = 0;
};

// A host whose plug-in is still to be loaded lies in `module_file` and has its user's folder in `user_app_dir`.
struct Placement {
  std::string module_file;
  std::string user_app_dir;
};

class FakeContractHost : public ContractHost {
 public:
  explicit FakeContractHost(const Placement* unloaded = nullptr) {
    fake_.add("|rig|ball").keys = {1.0, 5.0};
    fake_.find("ball")->motion = [](double t) { return Vector{2.0 * (t - 1.0), 0.0, 0.0}; };
    fake_.add("|cube").motion = [](double) { return Vector{}; };
    fake_.range_last = 5.0;
    fake_.panels = {{"modelPanel1", {{"motionTrails", true}}}, {"modelPanel2", {{"motionTrails", false}}}};
    if (!unloaded) {
      fake_.loaded_plugins = {"Vantorelix_plugin"};
      return;
    }
    fake_.file = unloaded->module_file;
    fake_.user_app_dir = unloaded->user_app_dir;
    fake_.on_load_plugin = [this](const std::string& path) {
      if (!std::filesystem::is_regular_file(path))
        throw host::Error("Plug-in, \"" + path + "\", was not found on MAYA_PLUG_IN_PATH.");
      fake_.loaded_plugins = {"Vantorelix_plugin"};
    };
  }

  Handles handles() override { return fake_.handles(); }
  double& now() override { return fake_.now; }
  double& advance_per_reading() override { return fake_.advance_per_reading; }
  void select(const std::vector<std::string>& names) override { fake_.selection = names; }
  void edit_ball() override {
    fake_.fire_curve_edited();
    fake_.fire_key_edited();
  }
  void delete_ball() override { fake_.remove("ball"); }
  bool run_idle_once() override { return fake_.run_deferred(); }
  void set_playing(bool playing) override { fake_.playing = playing; }
  void set_reading(bool reading) override { fake_.reading = reading; }
  void add_menu(std::function<void()> show) override {
    fake_.modules["Vantorelix"]["show_trail_mini_menu"] = std::move(show);
  }
  Vectors vectors(const std::string& shape, const std::string& attribute) override {
    return fake_.node(shape).arrays[attribute];
  }
  host::Value attribute(const std::string& shape, const std::string& attribute) override {
    return fake_.node(shape).attributes[attribute];
  }
  std::size_t callback_count() override { return fake_.subscriptions.size(); }
  std::vector<std::string> warnings() override { return fake_.warnings; }
  std::string fresh_transform(const std::string& viz) const override { return viz; }

 private:
  support::FakeHost fake_;
};

class StandaloneContractHost : public ContractHost {
 public:
  explicit StandaloneContractHost(const Placement* unloaded = nullptr) : host_(standalone::Scene(), options(unloaded)) {
    using standalone::Channel;
    standalone::Scene& scene = host_.scene();
    const auto rig = scene.nodes.create("transform", "rig");
    ball_ = scene.nodes.create("transform", "ball", rig);
    scene.nodes.create("transform", "cube");
    const auto key = [](double time, double value) {
      return standalone::Key{time, value, standalone::Tangent::linear, standalone::Tangent::linear};
    };
    const auto curve = scene.curves.set_key(ball_, Channel::translateX, 1.0, 0.0);
    scene.curves.assign(curve, {key(1.0, 0.0), key(5.0, 8.0)}, false, standalone::Infinity::constant,
                        standalone::Infinity::constant);
    scene.settings.set_playback_range(1.0, 5.0);
    scene.settings.set_current_time(1.0);
    host_.set_panel_flag("modelPanel1", "motionTrails", true);
  }

  Handles handles() override { return {&host_.cmds(), &host_.om(), &host_.oma(), &host_.interpreter()}; }
  double& now() override { return now_; }
  double& advance_per_reading() override { return advance_per_reading_; }
  void select(const std::vector<std::string>& names) override {
    std::vector<standalone::NodeId> nodes;
    for (const std::string& name : names) nodes.push_back(host_.scene().names.require(name));
    host_.select(nodes);
  }
  void edit_ball() override {
    host_.scene().curves.set_key(host_.scene().curves.driving_curve(ball_, standalone::Channel::translateX), 5.0, 8.0);
  }
  void delete_ball() override { host_.scene().nodes.remove(ball_); }
  bool run_idle_once() override { return host_.run_idle_once(); }
  void set_playing(bool playing) override { host_.set_playing(playing); }
  void set_reading(bool reading) override {
    using Activity = standalone::Host::FileActivity;
    host_.set_file_activity(reading ? Activity::reading : Activity::none);
  }
  void add_menu(std::function<void()> show) override {
    host_.add_module("Vantorelix", {{"show_trail_mini_menu", std::move(show)}});
  }
  Vectors vectors(const std::string& shape, const std::string& attribute) override {
    return host_.scene().attributes.vectors(host_.scene().names.require(shape), attribute);
  }
  host::Value attribute(const std::string& shape, const std::string& attribute) override {
    return host_.scene().attributes.value(host_.scene().names.require(shape), attribute);
  }
  std::size_t callback_count() override { return host_.callback_count(); }
  std::vector<std::string> warnings() override { return warnings_; }
  std::string fresh_transform(const std::string&) const override { return "vantorelix1"; }

 private:
  standalone::HostOptions options(const Placement* unloaded) {
    standalone::HostOptions options;
    options.model_panels = {"modelPanel1", "modelPanel2"};
    options.clock = [this] { return std::exchange(now_, now_ + advance_per_reading_); };
    options.print = [](const std::string&) {};
    options.warning = [this](const std::string& text) { warnings_.push_back(text); };
    options.plugin_loaded = !unloaded;
    if (unloaded) {
      options.module_file = unloaded->module_file;
      options.user_app_dir = unloaded->user_app_dir;
    }
    return options;
  }

  double now_ = 1000.0;
  double advance_per_reading_ = 0.0;
  std::vector<std::string> warnings_;
  standalone::Host host_;
  standalone::NodeId ball_ = standalone::kNoNode;
};

// One host of the suite, by name. Null for a host that starts with its plug-in loaded.
struct HostKind {
  const char* name;
  std::unique_ptr<ContractHost> (*make)(const Placement* unloaded);

  friend void PrintTo(const HostKind& kind, std::ostream* out) { *out << kind.name; }
};

template <class H>
HostKind host_kind(const char* name) {
  return {name,
          [](const Placement* unloaded) -> std::unique_ptr<ContractHost> { return std::make_unique<H>(unloaded); }};
}

}  // namespace vantorelix::contract
