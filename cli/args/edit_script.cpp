#include "cli/args/edit_script.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "cli/terminal/failure.h"
#include "host/error.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::cli {

using nlohmann::json;
using session::LiveEvent;
using standalone::Channel;
using standalone::Host;
using standalone::Scene;

namespace {

// Reads one entry of the list; every complaint names it.
class Entry {
 public:
  Entry(const json& object, std::string where, const Scene& scene)
      : object_(object), where_(std::move(where)), scene_(scene) {
    if (!object_.is_object()) fail("is not an object; write {\"at\": 0.5, \"set_key\": \"ball.translateY\", ...}");
  }

  [[noreturn]] void fail(const std::string& text) const { throw Failure(where_ + ": " + text); }

  bool has(const char* name) const { return object_.contains(name); }
  double number(const char* name) const {
    if (!has(name) || !object_[name].is_number())
      fail(std::string("needs \"") + name + "\", a number; write \"" + name + "\": 1");
    return object_[name].get<double>();
  }
  double duration(const char* name) const {
    const double seconds = number(name);
    if (!(seconds >= 0.0)) fail(std::string("\"") + name + "\" must not be negative; write seconds from 0");
    return seconds;
  }
  std::string text(const char* name) const {
    if (!object_[name].is_string()) fail(std::string("\"") + name + "\" must be a text; put it in quotes");
    return object_[name].get<std::string>();
  }

  // The object and channel of "object.attribute".
  void target(const char* name, LiveEvent& event) const;
  Host::FileActivity activity(const char* name) const;

 private:
  const json& object_;
  std::string where_;
  const Scene& scene_;
};

void Entry::target(const char* name, LiveEvent& event) const {
  const std::string path = text(name);
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos) fail("'" + path + "' names no attribute; write OBJECT.ATTRIBUTE, as ball.translateY");
  try {
    event.node = scene_.names.require(path.substr(0, dot));
  } catch (const host::Error& error) {
    fail(std::string(error.what()) + "; 'vantorelix info SCENE --all' lists the objects");
  }
  const auto channels = standalone::channels_named(path.substr(dot + 1));
  if (!channels || channels->count > 1 || !scene_.nodes.is_transform(event.node))
    fail("'" + path + "' cannot be keyed; write one channel of a transform or joint, as ball.translateX");
  event.channel = channels->first;
}

Host::FileActivity Entry::activity(const char* name) const {
  const std::string word = text(name);
  if (word == "reading") return Host::FileActivity::reading;
  if (word == "writing") return Host::FileActivity::writing;
  if (word == "opening") return Host::FileActivity::opening;
  if (word == "creating") return Host::FileActivity::creating;
  fail("\"file\" must be reading, writing, opening or creating");
}

void add_episode(std::vector<LiveEvent>& events, const LiveEvent& begin, double seconds) {
  events.push_back(begin);
  LiveEvent end = begin;
  end.at += seconds;
  end.playing = false;
  end.file = Host::FileActivity::none;
  events.push_back(end);
}

void add_events(const Entry& entry, LiveEvent event, std::vector<LiveEvent>& events) {
  using Kind = LiveEvent::Kind;
  event.at = entry.duration("at");
  if (entry.has("play")) {
    event.kind = Kind::playing;
    event.playing = true;
    return add_episode(events, event, entry.duration("play"));
  }
  if (entry.has("file")) {
    event.kind = Kind::file;
    event.file = entry.activity("file");
    return add_episode(events, event, entry.duration("for"));
  }
  if (entry.has("set_key")) {
    entry.target("set_key", event);
    event.value = entry.number("value");
  } else if (entry.has("move_key")) {
    event.kind = Kind::move_key;
    entry.target("move_key", event);
    event.to = entry.number("to");
  } else if (entry.has("remove_key")) {
    event.kind = Kind::remove_key;
    entry.target("remove_key", event);
  } else {
    entry.fail("has no action; use set_key, move_key, remove_key, play or file");
  }
  event.frame = entry.number("frame");
  events.push_back(event);
}

}  // namespace

std::vector<LiveEvent> parse_edits(const std::string& text, const std::string& name, const Scene& scene) {
  json document;
  try {
    document = json::parse(text);
  } catch (const json::parse_error& error) {
    const auto line =
        1 +
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size())), '\n');
    throw Failure(name + ":" + std::to_string(line) +
                  ": is not valid JSON; correct this line, see 'vantorelix live --help'");
  }
  if (!document.is_object() || !document.contains("edits") || !document["edits"].is_array())
    throw Failure(name + ": holds no list of edits; write {\"edits\": [...]}, see 'vantorelix live --help'");
  std::vector<LiveEvent> events;
  std::size_t index = 0;
  for (const json& item : document["edits"]) {
    LiveEvent event;
    event.where = name + ": edits[" + std::to_string(index++) + "]";
    add_events(Entry(item, event.where, scene), event, events);
  }
  std::stable_sort(events.begin(), events.end(), [](const LiveEvent& a, const LiveEvent& b) { return a.at < b.at; });
  return events;
}

std::vector<LiveEvent> read_edits(const std::filesystem::path& file, const Scene& scene) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw Failure(file.string() + ": cannot be read; check the path after --edits");
  const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
  return parse_edits(text, file.string(), scene);
}

}  // namespace vantorelix::cli
