// The standalone host: the host interface over a scene in memory.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/command_layer.h"
#include "host/interpreter.h"
#include "host/object_model.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

struct HostOptions {
  bool batch = false;                                // about(batch=True)
  std::string version = "2024";                      // about(version=True)
  std::string user_app_dir;                          // internalVar(userAppDir=True); none for the program
  bool plugin_loaded = true;                         // whether the node type is there from the start
  std::optional<std::filesystem::path> preferences;  // JSON file of option variables; in memory without one
  std::string module_file;                           // where the engine module would lie
  std::vector<host::Value> module_search_path;
  std::vector<std::string> model_panels = {"modelPanel1", "modelPanel2", "modelPanel3", "modelPanel4"};
  std::function<double()> clock;                            // wall-clock seconds; the system's clock without one
  std::function<void(const std::string&)> print;            // standard output without one
  std::function<void(const std::string&)> warning;          // standard error without one
  std::function<void(const std::string&)> in_view_message;  // nowhere without one
};

// Owns the scene and everything around it. The faces stay valid as long as the host.
class Host {
 public:
  explicit Host(Scene scene, HostOptions options = {});
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  host::CommandLayer& cmds();
  host::ObjectModel& om();
  host::AnimationModel& oma();
  host::Interpreter& interpreter();

  Scene& scene();

  // --- selection ----------------------------------------------------------------------------------------------
  void select(const std::vector<NodeId>& nodes);
  std::vector<NodeId> selection() const;

  // --- idle loop ----------------------------------------------------------------------------------------------
  // Runs the one deferred call whose turn it is; false when none is queued. What it throws leaves here, the call
  // counted as run.
  bool run_idle_once();
  // Runs until the queue is empty or `limit` calls ran; returns how many ran. A call that re-queues itself runs
  // again.
  std::size_t run_idle(std::size_t limit = static_cast<std::size_t>(-1));
  std::size_t idle_count() const;

  // --- what the user and the session do ----------------------------------------------------------------------
  void set_playing(bool playing);
  enum class FileActivity { none, reading, writing, opening, creating };
  void set_file_activity(FileActivity activity);
  void add_model_panel(const std::string& panel);  // as tearing one off does
  void set_panel_flag(const std::string& panel, const std::string& flag, bool on);
  bool panel_flag(const std::string& panel, const std::string& flag) const;
  std::size_t refresh_count() const;

  // --- option variables and modules --------------------------------------------------------------------------
  void set_option(const std::string& name, const host::Value& value);
  std::optional<host::Value> option(const std::string& name) const;
  std::vector<std::string> option_names() const;
  // Environment of this host only: starts from nothing, never the process's own.
  void set_environment(const std::string& name, const std::string& value);
  // A module that import finds, with its functions by name; null functions are attributes that are missing.
  void add_module(const std::string& name, std::vector<std::pair<std::string, std::function<void()>>> functions);

  std::vector<std::string> loaded_plugins() const;
  // How many message callbacks are installed.
  std::size_t callback_count() const;

 private:
  struct Data;
  std::unique_ptr<Data> data_;
};

}  // namespace vantorelix::standalone
