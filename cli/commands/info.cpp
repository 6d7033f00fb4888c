#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>

#include "base/json_writer.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "cli/commands/commands.h"
#include "cli/commands/scene_file.h"
#include "cli/output/columns.h"
#include "cli/output/output_file.h"

namespace vantorelix::cli {

using standalone::NodeId;
using standalone::Scene;

namespace {

constexpr const char* kInfoFooter = R"(
Examples:
  vantorelix info walk.bvh
  vantorelix info rig.ma --all
  vantorelix info character.fbx --take Run
  vantorelix info rig.ma --json | python3 -m json.tool)";

struct InfoOptions {
  SceneOptions scene;
  bool json = false;
  bool all = false;
};

// One transform of the scene, as far as this command tells of it.
struct ObjectInfo {
  std::string path, type;
  bool animated, own_keys;
  std::size_t keys;
  double first_key = 0.0, last_key = 0.0;
  std::vector<std::string> not_followed;
};

struct SceneInfo {
  std::string file, format, unit;
  char up_axis;
  double fps, first, last;
  std::vector<standalone::Take> takes;
  std::size_t take;
  std::map<std::string, std::size_t> node_types;
  std::size_t nodes = 0, keys = 0;
  std::vector<ObjectInfo> objects;
  std::vector<standalone::Warning> warnings;
};

ObjectInfo describe(const Scene& scene, NodeId node) {
  ObjectInfo object{scene.names.long_name(node),
                    scene.nodes.type(node),
                    scene.evaluation.is_animated(node),
                    scene.curves.has_keys(node),
                    scene.curves.key_count(node),
                    0.0,
                    0.0,
                    scene.evaluation.not_followed(node)};
  const auto times = scene.curves.key_times(node);
  if (!times.empty()) {
    const auto [first, last] = std::minmax_element(times.begin(), times.end());
    object.first_key = *first;
    object.last_key = *last;
  }
  return object;
}

SceneInfo describe(const Scene& scene, const std::string& file, standalone::Format format) {
  SceneInfo info{file,
                 format_name(format),
                 scene.settings.linear_unit(),
                 scene.settings.up_axis(),
                 scene.settings.frames_per_second(),
                 scene.settings.playback_min(),
                 scene.settings.playback_max(),
                 scene.settings.takes(),
                 scene.settings.take(),
                 {},
                 0,
                 0,
                 {},
                 scene.warnings.all()};
  for (const NodeId node : scene.nodes.all()) {
    ++info.nodes;
    ++info.node_types[scene.nodes.type(node)];
    if (scene.curves.is_curve(node)) info.keys += scene.curves.at(node).keys().size();
    if (const auto* track = scene.curves.track(node)) info.keys += track->key_times().size();
    if (scene.nodes.is_transform(node)) info.objects.push_back(describe(scene, node));
  }
  return info;
}

std::string types_text(const SceneInfo& info) {
  std::string text;
  for (const auto& [type, count] : info.node_types)
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + valid_utf8(type);
  return text;
}

std::string take_table(const SceneInfo& info) {
  std::vector<std::vector<std::string>> rows = {{"take", "first", "last", ""}};
  for (std::size_t i = 0; i < info.takes.size(); ++i)
    rows.push_back({valid_utf8(info.takes[i].name), readable(info.takes[i].first, 8), readable(info.takes[i].last, 8),
                    i == info.take ? "this one" : ""});
  return columns(rows, {false, true, true, false});
}

std::string object_table(const std::vector<ObjectInfo>& objects) {
  std::vector<std::vector<std::string>> rows = {{"object", "type", "keys", "first", "last", ""}};
  for (const ObjectInfo& object : objects) {
    const bool keyed = object.keys != 0;
    const std::string how = object.own_keys ? "" : object.animated ? "moved by a parent" : "still";
    rows.push_back({valid_utf8(object.path), valid_utf8(object.type), std::to_string(object.keys),
                    keyed ? readable(object.first_key, 8) : "", keyed ? readable(object.last_key, 8) : "",
                    object.not_followed.empty() ? how : "! " + valid_utf8(object.not_followed.front())});
  }
  return columns(rows, {false, false, true, true, true, false});
}

std::string overview(const SceneInfo& info) {
  const auto animated =
      std::count_if(info.objects.begin(), info.objects.end(), [](const ObjectInfo& o) { return o.animated; });
  return columns({{"scene", valid_utf8(info.file)},
                  {"format", info.format},
                  {"frames", readable(info.first, 8) + " to " + readable(info.last, 8) + ", " + readable(info.fps, 6) +
                                 " a second, " + readable((info.last - info.first) / info.fps) + " s"},
                  {"unit", info.unit + ", " + info.up_axis + " up"},
                  {"nodes", std::to_string(info.nodes) + ": " + types_text(info)},
                  {"animated", std::to_string(animated) + " of " + counted(info.objects.size(), "object") + ", " +
                                   counted(info.keys, "key")}},
                 {false, false});
}

void print_text(const SceneInfo& info, bool all) {
  std::vector<ObjectInfo> shown;
  for (const ObjectInfo& object : info.objects)
    if (all || object.animated || !object.not_followed.empty()) shown.push_back(object);
  std::printf("%s", overview(info).c_str());
  if (!info.takes.empty()) std::printf("\n%s", take_table(info).c_str());
  if (!shown.empty()) std::printf("\n%s", object_table(shown).c_str());
  if (shown.size() < info.objects.size())
    std::printf("%s %s; --all lists them\n", shown.empty() ? "\nnothing moves:" : "\nbesides,",
                counted(info.objects.size() - shown.size(), "still object").c_str());
}

void print_takes(JsonWriter& json, const SceneInfo& info) {
  json.key("takes");
  json.list({}, [&] {
    for (std::size_t i = 0; i < info.takes.size(); ++i)
      json.object({}, [&] {
        const standalone::Take& take = info.takes[i];
        json.field("name", take.name);
        json.field("range", std::array{take.first, take.last});
        json.field("chosen", i == info.take);
      });
  });
}

void print_object(JsonWriter& json, const ObjectInfo& object) {
  json.field("path", object.path);
  json.field("type", object.type);
  json.field("animated", object.animated);
  json.field("own_keys", object.own_keys);
  json.field("keys", object.keys);
  if (object.keys != 0) {
    json.field("first_key", object.first_key);
    json.field("last_key", object.last_key);
  }
  json.field("not_followed", object.not_followed);
}

void print_contents(JsonWriter& json, const SceneInfo& info) {
  json.field("keys", info.keys);
  json.key("nodes");
  json.object({}, [&] {
    for (const auto& [type, count] : info.node_types) json.field(type, count);
  });
  json.key("objects");
  json.list(JsonLayout::lines(4), [&] {
    for (const ObjectInfo& object : info.objects) json.object({}, [&] { print_object(json, object); });
  });
  json.key("warnings");
  json.list({}, [&] {
    for (const auto& warning : info.warnings)
      json.object({}, [&] {
        json.field("text", warning.kind);
        json.field("count", warning.count);
      });
  });
}

void print_json(const SceneInfo& info) {
  OutputFile out("-.json");
  JsonWriter json(out);
  json.object(JsonLayout::lines(2), [&] {
    json.field("scene", info.file);
    json.field("format", info.format);
    json.field("fps", info.fps);
    json.field("range", std::array{info.first, info.last});
    json.field("unit", info.unit);
    json.field("up_axis", std::string(1, info.up_axis));
    print_takes(json, info);
    print_contents(json, info);
  });
  out << '\n';
  out.commit();
}

void run_info(const InfoOptions& options, Terminal& terminal) {
  terminal.set_scene(options.scene.file);
  standalone::Format format{};
  const Scene scene = load_scene(options.scene, terminal, false, &format);
  const SceneInfo info = describe(scene, options.scene.file, format);
  if (options.json)
    print_json(info);
  else
    print_text(info, options.all);
}

}  // namespace

Command add_info(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("info", "Tell what is in a scene and what of it moves");
  const auto options = std::make_shared<InfoOptions>();
  add_scene_argument(command, options->scene);
  command.add_flag("--json", options->json, "As JSON, every object");
  command.add_flag("--all", options->all, "List every object, the still ones too");
  command.footer(kInfoFooter);
  return {&command, [options](Terminal& terminal) { run_info(*options, terminal); }};
}

}  // namespace vantorelix::cli
