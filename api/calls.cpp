#include "api/calls.h"

#include <exception>
#include <new>
#include <utility>

#include "host/error.h"
#include "session/failure.h"
#include "standalone/formats/reader.h"
#include "standalone/formats/writer.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::api {

using session::Failure;

Watch watch;

bool Watch::stopped() {
  if (asked_ == nullptr || stopped_) return stopped_;
  const auto now = std::chrono::steady_clock::now();
  if (now - last_ < kPause) return false;
  last_ = now;
  return stopped_ = asked_() != 0;
}

void Watch::check() {
  if (stopped()) throw host::Interrupt();
}

namespace {

static_assert(sizeof(Vector) == 3 * sizeof(double), "triples lie in memory as doubles do");

std::string failure_text, handed_out;
VlxError failure{"", "", 0};

void fail(const char* kind, const std::string& text, std::size_t line = 0) {
  failure_text = text;
  failure = {kind, failure_text.c_str(), line};
}

const char* kind_of(Failure::Kind kind) {
  using Kind = Failure::Kind;
  switch (kind) {
    case Kind::no_such_key:
    case Kind::no_match:
    case Kind::no_object:
    case Kind::nothing_animated:
    case Kind::nothing_followed:
    case Kind::all_excluded:
      return "not_found";
    case Kind::cannot_place:
      return "refused";
    default:
      return "failed";
  }
}

}  // namespace

const VlxError& last_error() { return failure; }

int run_guarded(const void* work, void (*run)(const void*)) {
  try {
    run(work);
    return 0;
  } catch (const standalone::FormatError& error) {
    fail("format", error.what(), error.line());
  } catch (const NoFile& error) {
    fail("no_file", error.what());
  } catch (const NotFound& error) {
    fail("not_found", error.what());
  } catch (const Failure& error) {
    fail(kind_of(error.kind), error.what());
  } catch (const standalone::CannotWrite& error) {
    fail("refused", error.what());
  } catch (const host::Interrupt&) {
    fail("interrupted", "interrupted");
  } catch (const std::bad_alloc&) {
    fail("memory", "there is not enough memory");
  } catch (const std::exception& error) {
    fail("failed", error.what());
  }
  return 1;
}

VlxArray array_of(const std::vector<Vector>& triples) {
  return triples.empty() ? VlxArray{nullptr, 0} : VlxArray{&triples.front().x, 3 * triples.size()};
}

VlxTrailArrays arrays_of(const session::TrailView& view) {
  return {array_of(*view.points),
          array_of(*view.colors),
          array_of(*view.key_points),
          array_of(*view.key_colors),
          {view.key_times.data(), view.key_times.size()}};
}

ChannelOfObject channel_of(const VlxScene& scene, const char* object, const std::string& attribute) {
  const standalone::NodeId node = scene.object(object);
  const auto channels = standalone::channels_named(attribute, scene.scene().nodes.type(node) == "joint");
  if (!channels || channels->count > 1)
    throw NotFound(scene.file() + ": " + scene.scene().names.unique_name(node) + " has no channel '" + attribute +
                   "'; name one, as 'translateX' or 'tx'");
  return {node, channels->first};
}

std::vector<double>& numbers_handed_out() {
  static std::vector<double> numbers;
  return numbers;
}

void hand_out(std::string text, const char** result) {
  handed_out = std::move(text);
  *result = handed_out.c_str();
}

}  // namespace vantorelix::api
