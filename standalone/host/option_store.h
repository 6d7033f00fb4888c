// Option variables: named settings that outlive a session.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/value.h"

namespace vantorelix::standalone {

// Each variable is an integer, a float, a text or a list of texts; setting it gives it the type of what is set,
// whatever it was before.
//
// In a file it is one JSON object, a member a variable. The file is read when the store is made. Each change reads
// it again, puts in the one variable, writes the whole to a new file beside it and renames that over the old one:
// whoever reads sees the old content or the new, and members that others changed or that are not option variables
// (objects, nulls, ...) stay.
class OptionStore {
 public:
  // In memory only.
  OptionStore() = default;
  // In a file, which need not exist yet. Throws host::Error (kind value) "file:line:column: what" when it is not a
  // JSON object, kind os when it cannot be read. The file is left alone then.
  explicit OptionStore(std::filesystem::path file);

  std::optional<host::Value> get(const std::string& name) const;
  // Of all variables, in alphabetical order.
  std::vector<std::string> names() const;
  // A boolean counts as an integer. Throws host::Error of kind type for a value of any other kind, kind os when the
  // file cannot be written, kind value when it has become unreadable or cannot hold the value (a float that is not
  // finite, a text that is not UTF-8); the store then holds what it held.
  void set(const std::string& name, const host::Value& value);
  // A single text becomes the first of the list; a variable of any other type is replaced.
  void append(const std::string& name, const std::string& text);

 private:
  void write(const std::string& name, const host::Value& value) const;

  std::map<std::string, host::Value> values_;
  std::optional<std::filesystem::path> file_;
};

}  // namespace vantorelix::standalone
