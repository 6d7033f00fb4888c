#include "maya/standalone/json_value.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "host/error.h"

namespace vantorelix::standalone {

using host::Error;
using host::ErrorKind;
using host::Value;
using nlohmann::json;

namespace {

Value from(const json& item) {
  if (item.is_null()) return {};
  if (item.is_boolean()) return item.get<bool>();
  if (item.is_number_float()) return item.get<double>();
  if (item.is_number_unsigned() && item.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max())
    throw Error("integers of more than 64 bits cannot be passed to the standalone host: " + item.dump(),
                ErrorKind::value);
  if (item.is_number_integer()) return item.get<std::int64_t>();
  if (item.is_string()) return item.get<std::string>();
  if (!item.is_array())
    throw Error(
        "only None, booleans, numbers, strings and lists can be passed to the standalone host, not " + item.dump(),
        ErrorKind::value);
  std::vector<Value> items;
  for (const json& each : item) items.push_back(from(each));
  return Value::list(std::move(items));
}

json to(const Value& value) {
  if (value.is_none()) return nullptr;
  if (const auto* b = value.as_bool()) return *b;
  if (const auto* i = value.as_int()) return *i;
  if (const auto* d = value.as_float()) return *d;
  if (const auto* s = value.as_text()) return *s;
  if (const auto* bytes = value.as_bytes()) return bytes->data;
  const auto* list = value.as_list();
  if (!list) throw Error("the standalone host cannot return " + value.repr() + " to Python", ErrorKind::type);
  json items = json::array();
  for (const Value& each : **list) items.push_back(to(each));
  return items;
}

}  // namespace

Value value_of_json(const std::string& text) {
  const json document = json::parse(text, nullptr, false);
  if (document.is_discarded())
    throw Error("the standalone host was passed text that is not valid JSON: " + text, ErrorKind::value);
  return from(document);
}

std::string json_of(const Value& value) { return to(value).dump(-1, ' ', false, json::error_handler_t::replace); }

}  // namespace vantorelix::standalone
