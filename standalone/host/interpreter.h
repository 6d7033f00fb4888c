// Clock, print, environment and modules of the standalone host.
#pragma once

#include "host/interpreter.h"
#include "standalone/host/host_state.h"
#include "standalone/host/wall_clock.h"

namespace vantorelix::standalone {

// The environment and the modules are those that the host was given, never the process's own. The state must outlive
// this and every module it gave.
class StandaloneInterpreter : public host::Interpreter {
 public:
  explicit StandaloneInterpreter(HostState& state) : state_(state) {}

  double time() override;
  void print(const std::string& line) override;
  std::shared_ptr<host::Module> import_module(const std::string& name) override;
  void call_imported(const std::string& module, const std::string& name) override;
  std::string module_file() override;
  std::vector<host::Value> module_search_path() override;
  std::optional<std::string> environment(const std::string& name) override;
  void set_environment(const std::string& name, const std::string& value) override;

 private:
  HostState& state_;
  WallClock clock_;
};

}  // namespace vantorelix::standalone
