// A scene that is open for a script: its session, and the sets of trails that were asked for and not let go yet.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

#include "session/edits.h"
#include "session/report.h"
#include "session/selection.h"
#include "session/session.h"
#include "standalone/scene/scene.h"

namespace vantorelix::api {

// A name that stands for no object of the scene.
struct NotFound : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What one call asks for. A missing end of the range is that of the scene's own.
struct Request {
  session::Selection selection;
  session::TrailSettings settings;
  std::optional<double> first, last;  // frames
};

// The trails of one request, as they were when they were last exact.
class TrailSet {
 public:
  const session::TrailReport& report() const { return report_; }

 private:
  friend class OpenScene;

  std::vector<standalone::NodeId> objects_;
  session::TrailSettings settings_;
  double first_ = 0.0, last_ = 0.0;
  std::vector<session::Trail> trails_;
  session::TrailReport report_;
};

class OpenScene {
 public:
  // `cancelled` is asked after every sample: true ends the work with host::Interrupt.
  OpenScene(standalone::Scene scene, std::string file, std::function<bool()> cancelled);

  const standalone::Scene& scene() const { return session_.scene(); }
  const std::string& file() const { return file_; }
  // The transforms of the file, in its order. The nodes of trails are none of them.
  const std::vector<standalone::NodeId>& objects() const { return objects_; }
  // Throws NotFound unless the name, path or name in the file stands for one object.
  standalone::NodeId object(const std::string& name) const;
  double first() const { return first_; }  // frames, the scene's own range
  double last() const { return last_; }

  // The set stays the scene's. Throws Failure; no other set changes then.
  TrailSet* make_trails(const Request& request);
  void let_go(const TrailSet* set);

  // One edit of keys. The sets of trails know of it after follow().
  void edit(const session::LiveEvent& event);
  // Makes every set exact again: the engine's queue does so for trails that it follows. It keeps one trail for a short
  // name and one range, so other trails are made anew. What throws leaves sets that are exact or as they were, and the
  // next call goes on.
  void follow();

 private:
  bool is_object(standalone::NodeId node) const;
  // Of the objects alone. Throws Failure with the file and what to do.
  std::vector<standalone::NodeId> choose(const session::Selection& selection) const;
  void set_range(double first, double last);
  void make(TrailSet& set);
  bool is_followed(const TrailSet& set, const std::unordered_set<standalone::NodeId>& followed) const;
  // Does the work; where that throws, the engine follows nothing any more and keeps no half of a trail.
  void guarded(const std::function<void()>& work);

  std::string file_;
  session::Session session_;
  std::vector<standalone::NodeId> objects_;
  double first_, last_;
  bool edited_ = false;
  std::vector<std::unique_ptr<TrailSet>> sets_;
};

}  // namespace vantorelix::api
