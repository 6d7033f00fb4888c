#include "api/c_api.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/error.h"
#include "api/open_scene.h"
#include "api/texts.h"
#include "session/failure.h"
#include "standalone/formats/reader.h"
#include "standalone/formats/samples/sampled_scene.h"
#include "standalone/scene/attributes/channel_names.h"

namespace api = vantorelix::api;
namespace host = vantorelix::host;
namespace session = vantorelix::session;
namespace sa = vantorelix::standalone;

struct VlxScene : api::OpenScene {
  using OpenScene::OpenScene;
};
struct VlxTrailSet {};  // an api::TrailSet
struct VlxTrail {
  session::TrailView view;
  std::string text;
  double fps;
  session::Ground ground;
};

namespace {

static_assert(sizeof(vantorelix::Vector) == 3 * sizeof(double), "triples lie in memory as doubles do");

struct {
  std::string kind, text;
  std::size_t line = 0;
} failure;

std::string handed_out;
std::vector<double> times_handed_out;

// Whoever is asked whether to go on. It may take long to answer, and is asked for every sample.
class Watch {
 public:
  void set(int (*asked)()) {
    asked_ = asked;
    stopped_ = false;
  }
  bool stopped() {
    const auto now = std::chrono::steady_clock::now();
    if (asked_ == nullptr || stopped_ || now - last_ < kPause) return stopped_;
    last_ = now;
    return stopped_ = asked_() != 0;
  }
  void check() {
    if (stopped()) throw host::Interrupt();
  }

 private:
  static constexpr std::chrono::milliseconds kPause{50};

  int (*asked_)() = nullptr;
  bool stopped_ = false;
  std::chrono::steady_clock::time_point last_;
} watch;

void fail(const char* kind, const std::string& text, std::size_t line = 0) {
  failure.kind = kind;
  failure.text = text;
  failure.line = line;
}

// A file that is not there.
struct NoFile : std::runtime_error {
  using std::runtime_error::runtime_error;
};

const char* kind_of(session::Failure::Kind kind) {
  using Kind = session::Failure::Kind;
  switch (kind) {
    case Kind::no_such_key:
    case Kind::no_match:
    case Kind::no_object:
    case Kind::nothing_animated:
    case Kind::nothing_followed:
    case Kind::all_excluded:
      return "not_found";
    default:
      return "failed";
  }
}

// No exception may leave a C function.
template <class Work>
int guarded(const Work& work) {
  try {
    work();
    return 0;
  } catch (const sa::FormatError& error) {
    fail("format", error.what(), error.line());
  } catch (const NoFile& error) {
    fail("no_file", error.what());
  } catch (const api::NotFound& error) {
    fail("not_found", error.what());
  } catch (const session::Failure& error) {
    fail(kind_of(error.kind), error.what());
  } catch (const host::Interrupt&) {
    fail("interrupted", "interrupted");
  } catch (const std::bad_alloc&) {
    fail("memory", "there is not enough memory");
  } catch (const std::exception& error) {
    fail("failed", error.what());
  }
  return 1;
}

std::string text_of(const char* text) { return text == nullptr ? std::string() : text; }

// Throws for an option that the file's format has no use for.
void check_use(const std::string& file, sa::Format format, const VlxReading& reading) {
  const bool fbx = format == sa::Format::fbx, gltf = format == sa::Format::gltf;
  const auto refuse = [&](const char* option, bool given, bool used, const char* formats) {
    if (given && !used) throw std::runtime_error(file + ": " + option + " is for " + formats + " scenes; leave it out");
  };
  refuse("take", !text_of(reading.take).empty(), fbx || gltf, "FBX and glTF");
  refuse("fps", reading.fps > 0.0, gltf, "glTF");
  refuse("axis", !text_of(reading.axis).empty(), fbx, "FBX");
  refuse("unit", !text_of(reading.unit).empty(), fbx, "FBX");
}

// Refers to what it is given.
sa::ReadOptions options_of(const std::string& file, const VlxReading& reading) {
  sa::ReadOptions options;
  options.recognised = [&](sa::Format format) { check_use(file, format, reading); };
  options.take = text_of(reading.take);
  if (reading.fps > 0.0) options.frames_per_second = reading.fps;
  const std::string axis = text_of(reading.axis);
  if (!axis.empty()) options.up_axis = axis.front();
  options.linear_unit = text_of(reading.unit);
  options.progress = [](std::uint64_t, std::uint64_t) { watch.check(); };
  return options;
}

std::vector<std::string> texts_of(const char* const* texts, std::size_t count) { return {texts, texts + count}; }

std::optional<double> end_of(double frame) { return std::isnan(frame) ? std::nullopt : std::optional(frame); }

api::Request request_of(const VlxRequest& given) {
  api::Request request;
  request.selection.patterns = texts_of(given.patterns, given.pattern_count);
  request.selection.exclude = texts_of(given.excluded, given.excluded_count);
  request.selection.ignore_case = given.ignore_case != 0;
  request.selection.all = given.all != 0;
  if (given.samples_per_frame >= 1) request.settings.samples_per_frame = given.samples_per_frame;
  if (given.color_mode >= 0) request.settings.color_mode = std::int64_t{given.color_mode};
  request.first = end_of(given.first);
  request.last = end_of(given.last);
  return request;
}

api::TrailSet* own(VlxTrailSet* set) { return reinterpret_cast<api::TrailSet*>(set); }

VlxArray array_of(const vantorelix::Vectors& vectors) {
  return vectors->empty() ? VlxArray{nullptr, 0} : VlxArray{&vectors->front().x, 3 * vectors->size()};
}

void hand_out(std::string text, const char** result) {
  handed_out = std::move(text);
  *result = handed_out.c_str();
}

// The channel of an object that an edit is about.
session::LiveEvent event_on(const VlxScene& scene, const char* object, const std::string& attribute) {
  session::LiveEvent event;
  event.where = scene.file();
  event.node = scene.object(object);
  const auto channels = sa::channels_named(attribute, scene.scene().nodes.type(event.node) == "joint");
  if (!channels || channels->count > 1)
    throw api::NotFound(scene.file() + ": " + scene.scene().names.unique_name(event.node) + " has no channel '" +
                        attribute + "'; name one, as 'translateX' or 'tx'");
  event.channel = channels->first;
  return event;
}

}  // namespace

const char* vlx_version() { return VANTORELIX_VERSION; }

void vlx_error(VlxError* error) { *error = {failure.kind.c_str(), failure.text.c_str(), failure.line}; }

void vlx_watch(int (*asked)()) { watch.set(asked); }

int vlx_open(const char* file, const VlxReading* reading, VlxScene** scene) {
  return guarded([&] {
    const std::string name = file;
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) throw NoFile(std::string(file) + ": no such file; check the path");
    if (std::filesystem::is_directory(file, ignored))
      throw std::runtime_error(std::string(file) + ": is a folder; name a scene file in it");
    *scene = new VlxScene(sa::read_scene(file, options_of(name, *reading)), file, [] { return watch.stopped(); });
  });
}

int vlx_samples(const VlxSamples* given, const double* matrices, const char* name, VlxScene** scene) {
  static_assert(std::endian::native == std::endian::little, "matrices are taken as they lie in memory");
  return guarded([&] {
    sa::SampledObjects objects;
    objects.names = texts_of(given->names, given->count);
    objects.parents.assign(given->parents, given->parents + given->count);
    objects.frames = given->frames;
    objects.first = given->first;
    objects.frames_per_second = given->fps;
    objects.unit = given->unit;
    objects.up_axis = given->up_axis;
    sa::ReadOptions options;
    options.progress = [](std::uint64_t, std::uint64_t) { watch.check(); };
    const std::string_view bytes(reinterpret_cast<const char*>(matrices),
                                 given->frames * given->count * 16 * sizeof(double));
    *scene = new VlxScene(sa::sampled_scene(objects, bytes, name, 0, options), name, [] { return watch.stopped(); });
  });
}

int vlx_close(VlxScene* scene) {
  return guarded([&] { delete scene; });
}

int vlx_description(VlxScene* scene, const char** json) {
  return guarded([&] { hand_out(api::description_of(*scene), json); });
}

int vlx_objects(VlxScene* scene, const char** json) {
  return guarded([&] { hand_out(api::objects_of(*scene), json); });
}

int vlx_trails(VlxScene* scene, const VlxRequest* request, VlxTrailSet** set, std::size_t* count) {
  return guarded([&] {
    api::TrailSet* const made = scene->make_trails(request_of(*request));
    *set = reinterpret_cast<VlxTrailSet*>(made);
    *count = made->report().trails.size();
  });
}

int vlx_let_go(VlxScene* scene, VlxTrailSet* set) {
  return guarded([&] { scene->let_go(own(set)); });
}

int vlx_trail(VlxTrailSet* set, std::size_t index, VlxTrail** trail) {
  return guarded([&] {
    const session::TrailReport& report = own(set)->report();
    const session::TrailView& view = report.trails.at(index);
    *trail = new VlxTrail{view, api::trail_text(view, report), report.fps, session::ground_of(report, view.figure)};
  });
}

int vlx_trail_text(VlxTrail* trail, const char** json) {
  *json = trail->text.c_str();
  return 0;
}

int vlx_trail_measures(VlxTrail* trail, const char** json) {
  return guarded([&] {
    hand_out(api::measures_text(session::measures_of(session::path_of(trail->view, trail->fps), trail->ground)), json);
  });
}

int vlx_trail_arrays(VlxTrail* trail, VlxTrailArrays* arrays) {
  const session::TrailView& view = trail->view;
  *arrays = {array_of(view.points),
             array_of(view.colors),
             array_of(view.key_points),
             array_of(view.key_colors),
             {view.key_times.data(), view.key_times.size()}};
  return 0;
}

void vlx_trail_free(VlxTrail* trail) { delete trail; }

int vlx_world_matrices(VlxScene* scene, const char* object, const double* frames, std::size_t count, double* matrices) {
  return guarded([&] {
    const sa::NodeId node = scene->object(object);
    for (std::size_t i = 0; i < count; ++i, matrices += 16) {
      watch.check();
      const vantorelix::Affine world = scene->scene().evaluation.world_matrix(node, frames[i]);
      for (std::size_t row = 0; row < 4; ++row) {
        std::copy(world.m[row].begin(), world.m[row].end(), matrices + 4 * row);
        matrices[4 * row + 3] = row == 3 ? 1.0 : 0.0;
      }
    }
  });
}

int vlx_key_times(VlxScene* scene, const char* object, VlxArray* times) {
  return guarded([&] {
    times_handed_out = scene->scene().curves.key_times(scene->object(object));
    std::sort(times_handed_out.begin(), times_handed_out.end());
    times_handed_out.erase(std::unique(times_handed_out.begin(), times_handed_out.end()), times_handed_out.end());
    *times = {times_handed_out.data(), times_handed_out.size()};
  });
}

int vlx_set_key(VlxScene* scene, const char* object, const char* attribute, double frame, double value) {
  return guarded([&] {
    session::LiveEvent event = event_on(*scene, object, attribute);
    event.kind = session::LiveEvent::Kind::set_key;
    event.frame = frame;
    event.value = value;
    scene->edit(event);
  });
}

int vlx_move_key(VlxScene* scene, const char* object, const char* attribute, double frame, double to) {
  return guarded([&] {
    session::LiveEvent event = event_on(*scene, object, attribute);
    event.kind = session::LiveEvent::Kind::move_key;
    event.frame = frame;
    event.to = to;
    scene->edit(event);
  });
}

int vlx_remove_key(VlxScene* scene, const char* object, const char* attribute, double frame) {
  return guarded([&] {
    session::LiveEvent event = event_on(*scene, object, attribute);
    event.kind = session::LiveEvent::Kind::remove_key;
    event.frame = frame;
    scene->edit(event);
  });
}

int vlx_follow(VlxScene* scene) {
  return guarded([&] { scene->follow(); });
}
