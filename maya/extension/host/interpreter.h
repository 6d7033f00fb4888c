// The services of the interpreter itself, through the module's `os`, `sys` and `time`.
#pragma once

#include "host/interpreter.h"

namespace vantorelix::maya {

class Interpreter : public host::Interpreter {
 public:
  double time() override;
  void print(const std::string& line) override;
  std::shared_ptr<host::Module> import_module(const std::string& name) override;
  void call_imported(const std::string& module, const std::string& name) override;
  std::string module_file() override;
  std::vector<host::Value> module_search_path() override;
  std::optional<std::string> environment(const std::string& name) override;
  void set_environment(const std::string& name, const std::string& value) override;
};

}  // namespace vantorelix::maya
