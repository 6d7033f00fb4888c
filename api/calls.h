// How the functions of the C interface do their work. For the files of this folder only.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include "api/c_api.h"
#include "api/open_scene.h"
#include "session/measures/measures.h"
#include "session/report.h"

struct VlxScene : vantorelix::api::OpenScene {
  using OpenScene::OpenScene;
};
struct VlxTrailSet {};  // a TrailSet
struct VlxTrail {
  vantorelix::session::TrailView view;
  std::string text;
  double fps;
  vantorelix::session::Ground ground;
};

namespace vantorelix::api {

// A file that is not there.
struct NoFile : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Whoever is asked whether to go on. It may take long to answer, and the question comes up for every sample.
class Watch {
 public:
  void set(int (*asked)()) {
    asked_ = asked;
    stopped_ = false;
  }
  bool stopped();
  // Throws host::Interrupt.
  void check();

 private:
  static constexpr std::chrono::milliseconds kPause{50};

  int (*asked_)() = nullptr;
  bool stopped_ = false;
  std::chrono::steady_clock::time_point last_;
};
extern Watch watch;

// What went wrong last.
const VlxError& last_error();

// Runs the work, and returns 0. No exception may leave a C function: where it throws, that is what went wrong last, and
// 1 is returned.
int run_guarded(const void* work, void (*run)(const void*));
template <class Work>
int guarded(const Work& work) {
  return run_guarded(&work, [](const void* given) { (*static_cast<const Work*>(given))(); });
}

inline std::string text_of(const char* text) { return text == nullptr ? std::string() : text; }
inline TrailSet* own(VlxTrailSet* set) { return reinterpret_cast<TrailSet*>(set); }

// One channel of an object of the scene. Throws NotFound unless the attribute names one.
struct ChannelOfObject {
  standalone::NodeId node;
  standalone::Channel channel;
};
ChannelOfObject channel_of(const VlxScene& scene, const char* object, const std::string& attribute);

VlxArray array_of(const std::vector<Vector>& triples);
VlxTrailArrays arrays_of(const session::TrailView& view);
// Numbers to be handed out: they stay until somebody takes them the next time.
std::vector<double>& numbers_handed_out();
// It stays as it is until the next text is handed out.
void hand_out(std::string text, const char** result);

}  // namespace vantorelix::api
