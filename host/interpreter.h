// The small services of the interpreter that the host embeds: clock, print, environment, modules.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/value.h"

namespace vantorelix::host {

// A module imported by name; the front end is the only one the engine ever imports.
class Module {
 public:
  virtual ~Module() = default;
  // hasattr(module, name)
  virtual bool has_attribute(const std::string& name) = 0;
  // module.name(), without arguments; the result is discarded. Throws what the function throws.
  virtual void call(const std::string& name) = 0;
};

class Interpreter {
 public:
  virtual ~Interpreter() = default;
  // Required.
  // time.time(): wall-clock seconds. Read after every sample.
  virtual double time() = 0;
  // print(line), to the interpreter's standard output.
  virtual void print(const std::string& line) = 0;
  // import name. Throws Error of kind import when there is no such module.
  virtual std::shared_ptr<Module> import_module(const std::string& name) = 0;
  // from module import name; name(). Throws Error of kind import when either is missing.
  virtual void call_imported(const std::string& module, const std::string& name) = 0;

  // Optional: where a host has none, the candidates that need them are left out.
  // The file of the engine module itself; empty when it has none.
  virtual std::string module_file() { return {}; }
  // sys.path, in order; entries may be of any kind.
  virtual std::vector<Value> module_search_path() { return {}; }
  // os.environ.get(name); nothing when it is unset.
  virtual std::optional<std::string> environment(const std::string& name) = 0;
  // os.environ[name] = value
  virtual void set_environment(const std::string& name, const std::string& value) = 0;
};

}  // namespace vantorelix::host
