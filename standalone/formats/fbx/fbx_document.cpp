#include "standalone/formats/fbx/fbx_document.h"

#include <ufbx.h>

#include <chrono>
#include <cmath>
#include <exception>

#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {
namespace {

// Passes the library's progress on, a few times a second. What the listener throws waits until the library is through:
// it cleans up only when it returns by itself.
class Progress {
 public:
  explicit Progress(const ReadOptions& options) : options_(options) {}

  static ufbx_progress_result report(void* self, const ufbx_progress* progress) {
    return static_cast<Progress*>(self)->tell(*progress);
  }
  void rethrow() const {
    if (thrown_) std::rethrow_exception(thrown_);
  }

 private:
  ufbx_progress_result tell(const ufbx_progress& progress) {
    const auto now = std::chrono::steady_clock::now();
    if (now - reported_ < std::chrono::milliseconds(250)) return UFBX_PROGRESS_CONTINUE;
    reported_ = now;
    try {
      options_.progress(progress.bytes_read, progress.bytes_total);
    } catch (...) {
      thrown_ = std::current_exception();
      return UFBX_PROGRESS_CANCEL;
    }
    return UFBX_PROGRESS_CONTINUE;
  }

  const ReadOptions& options_;
  std::chrono::steady_clock::time_point reported_;
  std::exception_ptr thrown_;
};

std::string error_text(const ufbx_error& error) {
  switch (error.type) {
    case UFBX_ERROR_EMPTY_FILE:
      return "the file is empty; export it again";
    case UFBX_ERROR_TRUNCATED_FILE:
      return "the file ends in the middle; it is cut off, export it again";
    case UFBX_ERROR_UNRECOGNIZED_FILE_FORMAT:
    case UFBX_ERROR_FEATURE_DISABLED:  // another format that the library could read
      return "this is not an FBX file; check what it is, or export it again";
    case UFBX_ERROR_UNSUPPORTED_VERSION:
      return "this version of FBX is not read; export it as FBX 6.1 or later";
    case UFBX_ERROR_MEMORY_LIMIT:
    case UFBX_ERROR_ALLOCATION_LIMIT:
      return "the file unpacks to more than " + std::to_string(kFbxMemoryMultiple) +
             " times its size; it is damaged, export it again";
    case UFBX_ERROR_OUT_OF_MEMORY:
      return "there is not enough memory for this file; close other programs";
    case UFBX_ERROR_NODE_DEPTH_LIMIT:
      return "more than " + std::to_string(kMaxDepth) + " nodes inside each other; is the file damaged?";
    default:
      break;
  }
  std::string what(error.description.data, error.description.length);
  if (error.info_length > 0) what += " (" + std::string(error.info, error.info_length) + ")";
  return "the file is damaged: " + shown(what) + "; export it again";
}

// With find, which skips fast over the long lists of numbers that large files consist of.
std::size_t occurrences(std::string_view text, char c) {
  std::size_t count = 0;
  for (std::size_t i = text.find(c); i != std::string_view::npos; i = text.find(c, i + 1)) ++count;
  return count;
}

// Whether a text ends inside braces, which the library does not mind.
bool is_cut_off(std::string_view text) {
  // First a fast test that settles the usual case: equally many of both, wherever they stand. Without it a text of 20
  // MB takes 1.2 times as long to read (bench/large_scenes.py FOLDER --sizes 20 --program build/bin/vantorelix).
  if (occurrences(text, '{') == occurrences(text, '}')) return false;
  std::size_t open = 0;
  for (std::size_t i = text.find_first_of("{}\";"); i < text.size(); i = text.find_first_of("{}\";", i + 1)) {
    if (text[i] == '{') {
      ++open;
    } else if (text[i] == '}') {
      if (open > 0) --open;
    } else {
      i = text.find(text[i] == ';' ? '\n' : '"', i + 1);
      if (i == std::string_view::npos) break;
    }
  }
  return open > 0;
}

// The library rounds the rates of television (29.97 and the like); their exact fractions are these.
double rate_of(const ufbx_scene_settings& settings) {
  switch (settings.time_mode) {
    case UFBX_TIME_MODE_NTSC_DROP_FRAME:
    case UFBX_TIME_MODE_NTSC_FULL_FRAME:
      return 30000.0 / 1001.0;
    case UFBX_TIME_MODE_FILM_FULL_FRAME:
      return 24000.0 / 1001.0;
    case UFBX_TIME_MODE_59_94_FPS:
      return 60000.0 / 1001.0;
    default:
      break;
  }
  const double rate = settings.frames_per_second;
  return rate >= 1e-6 && rate <= 1e9 ? rate : 24.0;
}

}  // namespace

FbxDocument load_fbx(std::string_view bytes, const std::string& name, const ReadOptions& options) {
  Progress progress(options);
  ufbx_load_opts load = {};
  load.ignore_geometry = !options.bounds;
  load.ignore_embedded = true;
  load.node_depth_limit = static_cast<std::uint32_t>(kMaxDepth);
  load.temp_allocator.memory_limit = kFbxMemoryBase + kFbxMemoryMultiple * bytes.size();
  load.result_allocator.memory_limit = load.temp_allocator.memory_limit;
  if (options.progress) {
    load.progress_cb.fn = &Progress::report;
    load.progress_cb.user = &progress;
  }
  ufbx_error error;
  const FbxDocument document(ufbx_load_memory(bytes.data(), bytes.size(), &load, &error),
                             [](const ufbx_scene* scene) { ufbx_free_scene(const_cast<ufbx_scene*>(scene)); });
  progress.rethrow();
  if (!document) throw FormatError(name, 0, error_text(error));
  if (document->metadata.ascii && is_cut_off(bytes)) {
    throw FormatError(name, 0, "the file ends in the middle; it is cut off, export it again");
  }
  return document;
}

bool lacks_its_end(std::string_view bytes, const ufbx_scene& document) {
  if (!document.metadata.ascii) return false;
  constexpr std::string_view kName = "Takes:", kBlanks = " \t";
  for (std::size_t at = bytes.rfind(kName); at != std::string_view::npos && at > 0; at = bytes.rfind(kName, at - 1)) {
    const std::size_t before = bytes.find_last_not_of(kBlanks, at - 1);
    const std::size_t after = bytes.find_first_not_of(kBlanks, at + kName.size());
    const bool begins_line = before == std::string_view::npos || bytes[before] == '\n' || bytes[before] == '\r';
    if (begins_line && after != std::string_view::npos && bytes[after] == '{') return false;
  }
  return true;
}

FbxClock::FbxClock(const ufbx_scene& document)
    : frames_per_second_(rate_of(document.settings)),
      ticks_per_second_(static_cast<double>(document.metadata.ktime_second)) {}

double FbxClock::frame(double seconds) const {
  // Half a tick is less than this at any rate of film.
  constexpr double kNearFrame = 1e-6;
  const double about = seconds * frames_per_second_;
  const double nearest = std::floor(about + 0.5);
  if (std::abs(about - nearest) <= kNearFrame) return nearest;
  return std::rint(seconds * ticks_per_second_) * frames_per_second_ / ticks_per_second_;
}

double FbxClock::seconds(double frame) const {
  const double seconds = frame / frames_per_second_;
  const double ticks = seconds * ticks_per_second_;
  const double nearest = std::rint(ticks);
  const bool on_tick = frame == std::rint(frame) || std::abs(ticks - nearest) <= 1e-3;
  return on_tick ? nearest / ticks_per_second_ : seconds;
}

}  // namespace vantorelix::standalone
