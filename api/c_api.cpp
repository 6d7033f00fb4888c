#include "api/c_api.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "api/calls.h"
#include "api/texts.h"
#include "standalone/formats/camera.h"
#include "standalone/formats/reader.h"
#include "standalone/formats/samples/sampled_scene.h"

namespace api = vantorelix::api;
namespace session = vantorelix::session;
namespace sa = vantorelix::standalone;

using api::guarded;
using api::hand_out;
using api::own;
using api::text_of;
using api::watch;

namespace {

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
  options.bounds = reading.bounds != 0;
  options.progress = [](std::uint64_t, std::uint64_t) { watch.check(); };
  return options;
}

// 16 doubles for each frame.
template <class Matrix>
void write_matrices(const double* frames, std::size_t count, double* matrices, const Matrix& at) {
  for (std::size_t i = 0; i < count; ++i, matrices += 16) {
    watch.check();
    const vantorelix::Affine matrix = at(frames[i]);
    for (std::size_t row = 0; row < 4; ++row) {
      std::copy(matrix.m[row].begin(), matrix.m[row].end(), matrices + 4 * row);
      matrices[4 * row + 3] = row == 3 ? 1.0 : 0.0;
    }
  }
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

}  // namespace

const char* vlx_version() { return VANTORELIX_VERSION; }

void vlx_error(VlxError* error) { *error = api::last_error(); }

void vlx_watch(int (*asked)()) { watch.set(asked); }

int vlx_open(const char* file, const VlxReading* reading, VlxScene** scene) {
  return guarded([&] {
    const std::string name = file;
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored))
      throw api::NoFile(std::string(file) + ": no such file; check the path");
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

int vlx_cameras(VlxScene* scene, const char** json) {
  return guarded([&] { hand_out(api::cameras_of(*scene), json); });
}

int vlx_statics(VlxScene* scene, double frame, const char** json) {
  return guarded([&] { hand_out(api::statics_of(*scene, frame), json); });
}

int vlx_camera_views(VlxScene* scene, const char* shape, const double* frames, std::size_t count, double* values) {
  return guarded([&] {
    const sa::NodeId node = scene->scene().names.find(shape);
    if (node == sa::kNoNode || scene->scene().nodes.type(node) != "camera")
      throw api::NotFound(scene->file() + ": there is no camera '" + shape + "'; see the scene's cameras");
    for (std::size_t i = 0; i < count; ++i, values += 9) {
      const sa::CameraView view = sa::camera_at(scene->scene(), node, frames[i]);
      const double shown[] = {view.aperture_x, view.aperture_y,   view.offset_x,
                              view.offset_y,   view.focal_length, static_cast<double>(view.fit),
                              view.near_clip,  view.far_clip,     view.width};
      std::copy(std::begin(shown), std::end(shown), values);
    }
  });
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
  *arrays = api::arrays_of(trail->view);
  return 0;
}

void vlx_trail_free(VlxTrail* trail) { delete trail; }

int vlx_tables(VlxTrailSet* set, VlxTables** tables) {
  return guarded([&] {
    const session::TrailReport& report = own(set)->report();
    session::Columns columns = session::columns_of(report);
    std::string text = api::tables_text(report, columns);
    *tables = new VlxTables{std::move(columns), std::move(text)};
  });
}

int vlx_tables_text(VlxTables* tables, const char** json) {
  *json = tables->text.c_str();
  return 0;
}

int vlx_tables_columns(VlxTables* tables, VlxColumns* columns) {
  const auto array_of = [](const std::vector<double>& column) { return VlxArray{column.data(), column.size()}; };
  const session::Columns& c = tables->columns;
  *columns = {array_of(c.x),     array_of(c.y),     array_of(c.z),     array_of(c.speed),   array_of(c.key_frame),
              array_of(c.key_x), array_of(c.key_y), array_of(c.key_z), array_of(c.measures)};
  return 0;
}

void vlx_tables_free(VlxTables* tables) { delete tables; }

int vlx_world_matrices(VlxScene* scene, const char* object, const double* frames, std::size_t count, double* matrices) {
  return guarded([&] {
    const sa::NodeId node = scene->object(object);
    write_matrices(frames, count, matrices,
                   [&](double frame) { return scene->scene().evaluation.world_matrix(node, frame); });
  });
}

int vlx_matrices_above(VlxScene* scene, const char* object, const double* frames, std::size_t count, double* matrices) {
  return guarded([&] {
    const sa::NodeId node = scene->object(object);
    write_matrices(frames, count, matrices,
                   [&](double frame) { return scene->scene().evaluation.matrix_above(node, frame); });
  });
}
