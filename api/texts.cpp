#include "api/texts.h"

#include <array>
#include <cstddef>
#include <optional>

#include "base/json_writer.h"
#include "base/text_sink.h"
#include "session/editing/beads.h"
#include "session/editing/placing.h"
#include "session/statics.h"
#include "session/tables/report_json.h"
#include "standalone/formats/camera.h"
#include "standalone/formats/reader.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::api {

using standalone::Channel;
using standalone::NodeId;
using standalone::Scene;

namespace {

template <class Body>
std::string object_text(const Body& body) {
  StringSink out;
  JsonWriter json(out);
  json.object({}, [&] { body(json); });
  return out.text();
}

std::optional<std::string> path(const Scene& scene, NodeId node) {
  if (node == standalone::kWorld) return std::nullopt;
  return scene.names.long_name(node);
}

std::optional<std::int64_t> number_in_file(const Scene& scene, NodeId node) {
  if (!scene.attributes.has(node, standalone::kNumberInFile)) return std::nullopt;
  return scene.attributes.value(node, standalone::kNumberInFile).to_int();
}

void write_object(JsonWriter& json, const Scene& scene, NodeId node) {
  json.field("source", scene.names.long_name(node));
  json.field("name", standalone::name_in_file(scene, node));
  json.field("node", number_in_file(scene, node));
  json.field("type", scene.nodes.type(node));
  json.field("parent", path(scene, scene.nodes.parent(node)));
  json.field("animated", scene.evaluation.is_animated(node));
}

void write_take(JsonWriter& json, const standalone::Take& take) {
  json.field("name", take.name);
  json.field("first", take.first);
  json.field("last", take.last);
}

const char* kind_text(standalone::CurveKind kind) {
  constexpr const char* kTexts[] = {"linear", "angular", "unitless", "time"};
  return kTexts[static_cast<std::size_t>(kind)];
}

const char* infinity_text(standalone::Infinity infinity) {
  constexpr const char* kTexts[] = {"constant", "linear", "", "cycle", "cycle_offset", "oscillate"};
  return kTexts[static_cast<std::size_t>(infinity)];
}

void write_curve(JsonWriter& json, const Scene& scene, Channel channel, NodeId node) {
  const standalone::AnimCurve& curve = scene.curves.at(node);
  json.field("attribute", standalone::name_of(channel));
  json.field("curve", scene.names.unique_name(node));
  json.field("kind", kind_text(curve.kind()));
  json.field("weighted", curve.weighted());
  json.field("pre", infinity_text(curve.pre_infinity()));
  json.field("post", infinity_text(curve.post_infinity()));
  json.field("keys", curve.keys().size());
}

std::vector<std::string> warnings_of(const Scene& scene) {
  std::vector<std::string> texts;
  for (const auto& [kind, count] : scene.warnings.all())
    texts.push_back(count == 1 ? kind : kind + " (" + std::to_string(count) + " times)");
  return texts;
}

// What stands in the way of some work, if anything.
template <class Work>
std::optional<session::CannotPlace> obstacle_to(const Work& work) {
  try {
    work();
  } catch (const session::CannotPlace& why_not) {
    return why_not;
  }
  return std::nullopt;
}

void write_obstacle(JsonWriter& json, const std::optional<session::CannotPlace>& why_not) {
  std::optional<std::string> word, text;
  if (why_not) {
    word = session::word_of(why_not->obstacle);
    text = why_not->what();
  }
  json.field("obstacle", word);
  json.field("text", text);
}

}  // namespace

std::string description_of(const OpenScene& open) {
  const auto& settings = open.scene().settings;
  return object_text([&](JsonWriter& json) {
    json.field("fps", settings.frames_per_second());
    json.field("range", std::array{open.first(), open.last()});
    json.field("unit", settings.linear_unit());
    json.field("up_axis", std::string(1, settings.up_axis()));
    json.key("takes");
    json.list({}, [&] {
      for (const auto& take : settings.takes()) json.object({}, [&] { write_take(json, take); });
    });
    json.field("take", settings.takes().empty() ? std::nullopt : std::optional<std::size_t>(settings.take()));
    json.field("warnings", warnings_of(open.scene()));
  });
}

std::string objects_of(const OpenScene& open) {
  StringSink out;
  JsonWriter json(out);
  json.list({}, [&] {
    for (const NodeId node : open.objects()) json.object({}, [&] { write_object(json, open.scene(), node); });
  });
  return out.text();
}

std::string cameras_of(const OpenScene& open) {
  const Scene& scene = open.scene();
  StringSink out;
  JsonWriter json(out);
  json.list({}, [&] {
    for (const NodeId shape : scene.nodes.of_type("camera"))
      json.object({}, [&] {
        json.field("shape", scene.names.long_name(shape));
        json.field("source", path(scene, scene.nodes.parent(shape)));
        json.field("looks", standalone::looks_along_x(scene, shape) ? "x" : "-z");
      });
  });
  return out.text();
}

std::string statics_of(const OpenScene& open, double frame) {
  StringSink out;
  JsonWriter json(out);
  json.list({}, [&] {
    for (const session::StaticBox& box : session::static_boxes(open.scene(), frame))
      json.object({}, [&] { session::write_static(json, box); });
  });
  return out.text();
}

std::string curves_of(const OpenScene& open, NodeId object) {
  const Scene& scene = open.scene();
  StringSink out;
  JsonWriter json(out);
  json.list({}, [&] {
    for (std::size_t k = 0; k < static_cast<std::size_t>(Channel::count); ++k) {
      const NodeId curve = scene.curves.driving_curve(object, static_cast<Channel>(k));
      if (curve != standalone::kNoNode)
        json.object({}, [&] { write_curve(json, scene, static_cast<Channel>(k), curve); });
    }
  });
  return out.text();
}

std::string placing_of(const OpenScene& open, NodeId object, double frame) {
  const auto why_not = obstacle_to([&] { session::require_placeable(open.scene(), object, frame); });
  return object_text([&](JsonWriter& json) { write_obstacle(json, why_not); });
}

std::string sliding_of(const OpenScene& open, NodeId object, double frame) {
  std::optional<double> first, last;
  const auto why_not = obstacle_to([&] {
    const standalone::FrameRange keys = session::require_slidable(open.scene(), object, frame);
    first = keys.first;
    last = keys.last;
  });
  return object_text([&](JsonWriter& json) {
    write_obstacle(json, why_not);
    json.field("first", first);
    json.field("last", last);
  });
}

std::string history_of(OpenScene& open) {
  const auto& history = open.history();
  return object_text([&](JsonWriter& json) {
    json.field("undo", history.names());
    json.field("redo", history.redo_count() == 0 ? std::nullopt : std::optional(history.redo_name()));
    json.field("redo_count", history.redo_count());
  });
}

std::string trail_text(const session::TrailView& trail, const session::TrailReport& report) {
  return object_text([&](JsonWriter& json) {
    write_trail_fields(json, trail);
    json.field("warnings", trail.warnings);
    write_speeds(json, trail, report.fps);
    write_units(json, report);
  });
}

std::string tables_text(const session::TrailReport& report, const session::Columns& columns) {
  return object_text([&](JsonWriter& json) {
    json.key("trails");
    json.list({}, [&] {
      for (std::size_t i = 0; i < report.trails.size(); ++i)
        json.object({}, [&] {
          write_trail_fields(json, report.trails[i]);
          json.field("warnings", report.trails[i].warnings);
          json.field("samples", columns.sample_counts[i]);
          json.field("keys", columns.key_counts[i]);
        });
    });
    write_units(json, report);
  });
}

std::string measures_text(const session::Measures& measures) {
  StringSink out;
  JsonWriter json(out);
  write_measures(json, measures);
  return out.text();
}

}  // namespace vantorelix::api
