// A host small enough to hold in one's head: every fact it reports is a member that the test sets.
#pragma once

#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/state/state.h"

namespace vantorelix::support {

// All four faces in one object. Nodes have paths ("|arm|wrist"); any part of a path that ends in the node's own name
// finds it, as long as it finds only one. Nothing happens by itself: deferred calls, callbacks and the clock move
// when the test says so.
class FakeHost : public host::CommandLayer,
                 public host::ObjectModel,
                 public host::AnimationModel,
                 public host::Interpreter {
 public:
  struct Node {
    std::string path;
    std::string type;
    std::map<std::string, host::Value> attributes = {};  // what setAttr left
    std::map<std::string, Vectors> arrays = {};          // what setMObject left
    std::vector<double> keys = {};                       // as given: any order, duplicates and all
    std::function<Vector(double)> motion = {};           // FakeHost::motion where it is empty
  };
  struct Subscription {
    std::string kind;  // "curve", "key", or "removed:" and the node type
    host::Callback function;
  };
  struct Panel {
    std::string name;
    std::map<std::string, bool> flags = {};
  };
  struct Curve {
    std::string name;
    host::Value degree;
    std::vector<Vector> points;
  };

  FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  Handles handles() { return {this, this, this, this}; }

  // --- scene --------------------------------------------------------------------------------------------------
  // Adds a node and whatever parents its path lacks. "ball" is short for "|ball".
  Node& add(const std::string& path, const std::string& type = "transform");
  // Null when there is none; throws when there are several.
  Node* find(const std::string& name);
  // Throws "No object matches name: ..." when there is none.
  Node& node(const std::string& name);
  // With everything below it.
  void remove(const std::string& name);
  std::list<Node> nodes;  // in order of creation
  std::vector<Curve> curves;

  // World position of an object (full path) at a frame; by default (t, 0, 0).
  std::function<Vector(const std::string& path, double t)> motion;
  // Added to what context evaluation gives: the difference between the fast way and the slow one.
  Vector context_offset;
  // Called before each evaluation of either way; may throw.
  std::function<void()> on_evaluation;
  std::size_t evaluations = 0;
  // The hints that came, each with the number of evaluations before it.
  struct Hint {
    std::vector<double> times;
    std::size_t evaluations;
  };
  std::vector<Hint> hints;
  // Attributes that cannot be written or found: "xrayMode", or with a node's name before it, "ballShape.xrayMode".
  std::set<std::string> refused;
  std::set<std::string> node_types = {"transform", "vantorelix"};  // what createNode can make
  bool converts_sequences = true;  // false: MVectorArray(values) throws, as some hosts do
  host::Value ui_unit = "film";    // the token handed out, and demanded back by every evaluation

  std::vector<std::string> selection;  // nodes that have gone are left out when asked
  double range_first = 1.0;
  double range_last = 10.0;
  double current_frame = 1.0;

  // --- time and deferred calls --------------------------------------------------------------------------------
  double now = 1000.0;               // wall-clock seconds
  double advance_per_reading = 0.0;  // added after each reading
  double advance_per_evaluation = 0.0;
  std::deque<host::Callback> deferred;
  // Runs the first queued call; false when there is none. What it throws leaves here.
  bool run_deferred();
  // Runs until the queue is empty or `limit` calls ran; returns how many ran.
  std::size_t run_all_deferred(std::size_t limit = 10000);

  // --- what goes on around ------------------------------------------------------------------------------------
  bool playing = false;
  bool reading = false;
  bool writing = false;
  bool opening = false;
  bool newing = false;
  bool batch = false;
  std::vector<Panel> panels;
  std::size_t refreshes = 0;
  std::vector<host::Value> messages;  // shown in the viewport
  std::vector<std::string> warnings;
  std::vector<std::string> prints;

  // --- callbacks ----------------------------------------------------------------------------------------------
  std::map<std::int64_t, Subscription> subscriptions;  // by identifier, in order of installation
  // Sends a message to every subscriber of the kind.
  void fire(const std::string& kind);
  void fire_curve_edited() { fire("curve"); }
  void fire_key_edited() { fire("key"); }
  void fire_node_removed(const std::string& type = "animCurve") { fire("removed:" + type); }

  // --- settings, plug-ins, modules ----------------------------------------------------------------------------
  std::map<std::string, host::Value> options;
  std::string version = "2024";
  std::string user_app_dir;
  std::set<std::string> loaded_plugins;
  // Stands for loading; by default every path fails.
  std::function<void(const std::string& path)> on_load_plugin;
  std::map<std::string, std::string> environment_variables;
  std::string file;  // of the engine module
  std::vector<host::Value> search_path;
  // Module name -> attribute -> function.
  std::map<std::string, std::map<std::string, std::function<void()>>> modules;

  // --- the four faces -----------------------------------------------------------------------------------------
  std::vector<std::string> ls_selection() override;
  std::vector<std::string> ls_type(const std::string& type) override;
  bool objExists(const std::string& name) override;
  std::vector<std::string> listRelatives_parent(const std::string& node) override;
  std::vector<std::string> listRelatives_shapes(const std::string& node) override;
  void select_replace(const std::vector<std::string>& names) override;
  void select(const std::vector<std::string>& names) override;
  void select_clear() override;
  std::string createNode(const std::string& type, const std::string& name) override;
  std::string rename(const std::string& node, const std::string& name) override;
  void parent(const std::string& node, const std::string& parent) override;
  void group_empty(const std::string& name) override;
  void delete_(const std::string& node) override;
  std::string curve(const host::Value& degree, const std::vector<Vector>& points, const std::string& name) override;
  std::array<double, 16> getAttr_matrix(const std::string& attribute, double time) override;
  void setAttr(const std::string& attribute, const host::Value& value) override;
  std::vector<double> keyframe_times(const std::string& node) override;
  double playbackOptions_min() override;
  double playbackOptions_max() override;
  double currentTime() override;  // of both command layer and animation model
  void evalDeferred(const host::Callback& function) override;
  void refresh() override;
  void inViewMessage(const host::Value& text) override;
  void warning(const std::string& text) override;
  std::vector<std::string> getPanel_model() override;
  bool modelEditor_query(const std::string& panel, const std::string& flag) override;
  void modelEditor_enable(const std::string& panel, const std::string& flag) override;
  bool optionVar_exists(const std::string& name) override;
  host::Value optionVar_query(const std::string& name) override;
  void optionVar_set_int(const std::string& name, std::int64_t value) override;
  void optionVar_set_float(const std::string& name, double value) override;
  void optionVar_append_string(const std::string& name, const std::string& value) override;
  bool about_batch() override;
  std::string about_version() override;
  std::string internalVar_userAppDir() override;
  bool pluginInfo_loaded(const std::string& name) override;
  void loadPlugin(const std::string& path) override;

  std::shared_ptr<host::Plug> findPlug(const std::string& node, const std::string& attribute) override;
  host::TimeUnit uiUnit() override;
  std::shared_ptr<host::VectorArray> vector_array(const Vectors& values) override;
  std::shared_ptr<host::VectorArray> vector_array() override;
  bool isReadingFile() override;
  bool isWritingFile() override;
  bool isOpeningFile() override;
  bool isNewingFile() override;
  host::Value addNodeRemovedCallback(const host::Callback& function, const std::string& type) override;
  void removeCallback(const host::Value& identifier) override;

  bool isPlaying() override;
  host::Value addAnimCurveEditedCallback(const host::Callback& function) override;
  host::Value addAnimKeyframeEditedCallback(const host::Callback& function) override;

  double time() override;
  void print(const std::string& line) override;
  std::shared_ptr<host::Module> import_module(const std::string& name) override;
  void call_imported(const std::string& module, const std::string& name) override;
  std::string module_file() override;
  std::vector<host::Value> module_search_path() override;
  std::optional<std::string> environment(const std::string& name) override;
  void set_environment(const std::string& name, const std::string& value) override;

 private:
  class FakePlug;
  Vector position(const Node& node, double t);
  void refuse(const std::string& path, const std::string& attribute);
  std::string shortest_name(const Node& node) const;
  void move(Node& node, const std::string& path);
  std::string free_path(const std::string& path) const;
  Panel& panel(const std::string& name);
  host::Value subscribe(const std::string& kind, const host::Callback& function);

  std::int64_t next_identifier_ = 1;
};

}  // namespace vantorelix::support
