#include "standalone/host/interpreter.h"

#include <cstdio>

#include "host/error.h"

namespace vantorelix::standalone {

using host::Error;
using host::ErrorKind;

namespace {

// Null when the module has no such function.
const std::function<void()>* function_of(const ModuleFunctions& functions, const std::string& name) {
  for (const auto& [own_name, function] : functions)
    if (own_name == name && function) return &function;
  return nullptr;
}

class GivenModule : public host::Module {
 public:
  GivenModule(std::string name, const ModuleFunctions& functions) : name_(std::move(name)), functions_(functions) {}

  bool has_attribute(const std::string& name) override { return function_of(functions_, name) != nullptr; }
  void call(const std::string& name) override {
    const auto* function = function_of(functions_, name);
    if (!function) throw Error("module '" + name_ + "' has no attribute '" + name + "'", ErrorKind::attribute);
    (*function)();
  }

 private:
  std::string name_;
  const ModuleFunctions& functions_;
};

const ModuleFunctions& module_named(const HostState& state, const std::string& name) {
  const auto found = state.modules.find(name);
  if (found == state.modules.end()) throw Error("No module named '" + name + "'", ErrorKind::import);
  return found->second;
}

}  // namespace

double StandaloneInterpreter::time() { return state_.options.clock ? state_.options.clock() : clock_.now(); }

void StandaloneInterpreter::print(const std::string& line) {
  if (state_.options.print) return state_.options.print(line);
  std::fputs((line + "\n").c_str(), stdout);
}

std::shared_ptr<host::Module> StandaloneInterpreter::import_module(const std::string& name) {
  return std::make_shared<GivenModule>(name, module_named(state_, name));
}

void StandaloneInterpreter::call_imported(const std::string& module, const std::string& name) {
  const auto* function = function_of(module_named(state_, module), name);
  if (!function) throw Error("cannot import name '" + name + "' from '" + module + "'", ErrorKind::import);
  (*function)();
}

std::string StandaloneInterpreter::module_file() { return state_.options.module_file; }

std::vector<host::Value> StandaloneInterpreter::module_search_path() { return state_.options.module_search_path; }

std::optional<std::string> StandaloneInterpreter::environment(const std::string& name) {
  const auto found = state_.environment.find(name);
  if (found == state_.environment.end()) return {};
  return found->second;
}

void StandaloneInterpreter::set_environment(const std::string& name, const std::string& value) {
  state_.environment[name] = value;
}

}  // namespace vantorelix::standalone
