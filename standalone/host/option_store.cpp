#include "standalone/host/option_store.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "host/error.h"

namespace vantorelix::standalone {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using host::Error;
using host::ErrorKind;
using host::Value;

namespace {

std::string position(const std::string& text, std::size_t byte) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte, text.size()));
  const auto line = 1 + std::count(text.begin(), end, '\n');
  const auto last_break = std::find(std::make_reverse_iterator(end), text.rend(), '\n');
  const auto column = 1 + (end - last_break.base());
  return std::to_string(line) + ":" + std::to_string(column);
}

// An absent file is an empty object.
Json read(const fs::path& file) {
  std::error_code failure;
  if (!fs::exists(file, failure) && !failure) return Json::object();
  std::ifstream in(file, std::ios::binary);
  std::stringstream buffer;
  buffer << in.rdbuf();
  if (!in || in.bad() || !fs::is_regular_file(file, failure))
    throw Error(file.string() + ": cannot be read; check that it is a file that you may read", ErrorKind::os);
  const std::string text = buffer.str();
  try {
    Json content = Json::parse(text);
    if (content.is_object()) return content;
  } catch (const Json::exception& error) {
    const auto* parse_error = dynamic_cast<const Json::parse_error*>(&error);
    const std::size_t byte = parse_error && parse_error->byte > 0 ? parse_error->byte - 1 : 0;
    throw Error(file.string() + ":" + position(text, byte) + ": not valid JSON; correct or remove the file",
                ErrorKind::value);
  }
  throw Error(file.string() + ":1:1: not a JSON object; correct or remove the file", ErrorKind::value);
}

std::optional<Value> value_of(const Json& json) {
  if (json.is_number_float()) return Value(json.get<double>());
  if (json.is_number_unsigned() && json.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) return {};
  if (json.is_number_integer()) return Value(json.get<std::int64_t>());
  if (json.is_string()) return Value(json.get<std::string>());
  if (!json.is_array()) return {};
  std::vector<Value> texts;
  for (const Json& item : json) {
    if (!item.is_string()) return {};
    texts.emplace_back(item.get<std::string>());
  }
  return Value::list(std::move(texts));
}

// Only values that passed `checked`.
Json json_of(const Value& value) {
  if (const auto* i = value.as_int()) return *i;
  if (const auto* d = value.as_float()) return *d;
  if (const auto* text = value.as_text()) return *text;
  Json texts = Json::array();
  for (const Value& item : **value.as_list()) texts.push_back(*item.as_text());
  return texts;
}

// The value as the store holds it: its own list, no boolean.
Value checked(const std::string& name, const Value& value) {
  if (const auto* flag = value.as_bool()) return Value(std::int64_t{*flag});
  if (value.as_int() || value.as_float() || value.as_text()) return value;
  const auto* list = value.as_list();
  if (!list || !std::all_of((*list)->begin(), (*list)->end(), [](const Value& v) { return v.as_text(); }))
    throw Error("optionVar: " + name + " cannot hold " + value.repr() + "; give a number, a text or a list of texts",
                ErrorKind::type);
  return Value::list(**list);
}

// A name that no file in the folder has.
fs::path temporary_beside(const fs::path& file) {
  std::random_device random;
  fs::path candidate;
  do {
    candidate = file;
    candidate += "." + std::to_string(random()) + ".tmp";
  } while (fs::exists(candidate));
  return candidate;
}

void replace(const fs::path& file, const std::string& content) {
  const fs::path temporary = temporary_beside(file);
  std::ofstream out(temporary, std::ios::binary);
  out << content;
  out.close();
  std::error_code failure;
  if (out) {
    if (fs::exists(file)) fs::permissions(temporary, fs::status(file).permissions(), failure);
    fs::rename(temporary, file, failure);
    if (!failure) return;
  }
  fs::remove(temporary, failure);
  throw Error(file.string() + ": cannot be written; check that its folder exists and that you may write there",
              ErrorKind::os);
}

}  // namespace

OptionStore::OptionStore(fs::path file) {
  // A link stays a link: what is replaced is the file behind it.
  std::error_code failure;
  file_ = fs::weakly_canonical(file, failure);
  if (failure) file_ = std::move(file);
  const Json content = read(*file_);
  for (const auto& [name, json] : content.items())
    if (auto value = value_of(json)) values_[name] = std::move(*value);
}

std::optional<Value> OptionStore::get(const std::string& name) const {
  const auto found = values_.find(name);
  if (found == values_.end()) return {};
  const auto* list = found->second.as_list();
  return list ? Value::list(**list) : found->second;  // never a share of the store's own list
}

std::vector<std::string> OptionStore::names() const {
  std::vector<std::string> result;
  for (const auto& [name, value] : values_) result.push_back(name);
  return result;
}

void OptionStore::set(const std::string& name, const Value& value) {
  Value kept = checked(name, value);
  if (file_) write(name, kept);
  values_[name] = std::move(kept);
}

void OptionStore::append(const std::string& name, const std::string& text) {
  const std::optional<Value> before = get(name);
  std::vector<Value> texts;
  if (before && before->as_text()) texts.push_back(*before);
  if (before && before->as_list()) texts = **before->as_list();
  texts.emplace_back(text);
  set(name, Value::list(std::move(texts)));
}

void OptionStore::write(const std::string& name, const Value& value) const {
  if (const auto* d = value.as_float(); d && !std::isfinite(*d))
    throw Error(
        "optionVar: " + name + ": " + value.text() + " cannot be kept in " + file_->string() + "; give a finite number",
        ErrorKind::value);
  Json content = read(*file_);
  std::string text;
  try {
    content[name] = json_of(value);
    text = content.dump(2) + "\n";
  } catch (const Json::exception&) {
    throw Error("optionVar: " + name + ": the text is not UTF-8; encode it as UTF-8", ErrorKind::value);
  }
  replace(*file_, text);
}

}  // namespace vantorelix::standalone
