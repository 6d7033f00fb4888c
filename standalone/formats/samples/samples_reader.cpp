// Streams of samples: a line of JSON, then matrices. docs/formats.md describes them.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "standalone/formats/samples/sampled_scene.h"
#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {

namespace {

using nlohmann::json;

constexpr std::size_t kMaxHeader = std::size_t{32} << 20;
constexpr int kMaxNesting = 8;  // unknown fields may hold something, but not without end
constexpr const char* kFormatName = "vantorelix-samples";
constexpr double kVersion = 1.0;

class Header {
 public:
  Header(std::string_view line, const std::string& name) : name_(name), fields_(parse(line)) {}

  SampledObjects objects() const {
    if (!fields_.is_object() || text("format", "") != kFormatName)
      fail("is not a stream of samples; its first line must be JSON with \"format\": \"vantorelix-samples\"");
    if (number("version", 0.0) != kVersion)
      fail("has a version of the format that is not read; write version 1, or get a newer vantorelix");
    SampledObjects result;
    result.names = names();
    result.parents = parents(result.names.size());
    result.frames = static_cast<std::size_t>(whole("frames"));
    result.first = number("start", 0.0);
    result.frames_per_second = number("fps", result.frames_per_second);
    result.unit = text("unit", result.unit);
    const std::string axis = text("up_axis", "y");
    if (axis != "y" && axis != "z") fail("\"up_axis\" must be \"y\" or \"z\"");
    result.up_axis = axis.front();
    return result;
  }

 private:
  [[noreturn]] void fail(const std::string& text) const { throw FormatError(name_, 1, text); }

  json parse(std::string_view line) const {
    const auto limited = [this](int depth, json::parse_event_t, json&) {
      if (depth > kMaxNesting) fail("the first line holds lists inside lists too deep to be a header; write it flat");
      return true;
    };
    json parsed = json::parse(line.begin(), line.end(), limited, false);
    if (parsed.is_discarded()) fail("the first line is not valid JSON; see docs/formats.md for what belongs there");
    return parsed;
  }

  const json* field(const char* key) const {
    const auto found = fields_.find(key);
    return found == fields_.end() || found->is_null() ? nullptr : &*found;
  }

  std::string text(const char* key, const std::string& otherwise) const {
    const json* const value = field(key);
    if (value == nullptr) return otherwise;
    if (!value->is_string()) fail(std::string("\"") + key + "\" must be a text");
    return value->get<std::string>();
  }

  double number(const char* key, double otherwise) const {
    const json* const value = field(key);
    if (value == nullptr) return otherwise;
    if (!value->is_number()) fail(std::string("\"") + key + "\" must be a number");
    return value->get<double>();
  }

  double whole(const char* key) const {
    const double value = number(key, -1.0);
    if (!(value >= 0.0 && value <= 1e15 && value == std::floor(value)))
      fail(std::string("\"") + key + "\" must be a whole number, 0 or more");
    return value;
  }

  std::vector<std::string> names() const {
    const json* const list = field("names");
    if (list == nullptr || !list->is_array()) fail("\"names\" must be a list of texts, one for each object");
    std::vector<std::string> result;
    for (const json& item : *list) {
      if (!item.is_string()) fail("\"names\" must be a list of texts, one for each object");
      result.push_back(item.get<std::string>());
    }
    return result;
  }

  std::vector<std::int64_t> parents(std::size_t count) const {
    const json* const list = field("parents");
    if (list == nullptr) return std::vector<std::int64_t>(count, -1);
    if (!list->is_array()) fail("\"parents\" must be a list of numbers of objects, or null, one for each object");
    std::vector<std::int64_t> result;
    for (const json& item : *list) {
      const bool number = item.is_number_integer() && item.get<double>() >= -1.0 && item.get<double>() < 1e15;
      if (!number && !item.is_null()) fail("\"parents\" must be a list of numbers of objects, or null");
      result.push_back(item.is_null() ? -1 : item.get<std::int64_t>());
    }
    return result;
  }

  const std::string& name_;
  json fields_;
};

}  // namespace

Scene read_samples(std::string_view bytes, const std::string& name, const ReadOptions& options) {
  const std::size_t end = bytes.substr(0, kMaxHeader).find('\n');
  if (end == std::string_view::npos)
    throw FormatError(name, 1,
                      "the first line has no end within 32 MB; a stream of samples begins with a line of JSON");
  const SampledObjects objects = Header(bytes.substr(0, end), name).objects();
  return sampled_scene(objects, bytes.substr(end + 1), name, 2, options);
}

}  // namespace vantorelix::standalone
