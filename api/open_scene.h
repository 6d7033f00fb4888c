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

#include "session/editing/provisional.h"
#include "session/edits.h"
#include "session/report.h"
#include "session/selection.h"
#include "session/session.h"
#include "standalone/host/undo_queue.h"
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
  // Of the trail's arrays: another whenever they are.
  std::size_t revision(std::size_t index) const { return revisions_[index]; }

 private:
  friend class OpenScene;

  std::vector<standalone::NodeId> objects_;
  session::TrailSettings settings_;
  double first_ = 0.0, last_ = 0.0;
  std::vector<session::Trail> trails_;
  session::TrailReport report_;
  std::vector<std::size_t> revisions_;

  void show(session::TrailReport report);
};

// What a call of pump() left.
struct Progress {
  bool pending = false;  // whether there are sets that are not exact
  bool worked = false;   // else the engine waits until edits have ended
  std::size_t item = 0, items = 0;
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
  // One edit of any kind, as a step with that name; the sets know of it after follow(). Where it throws, the edits that
  // it did make are one.
  void change(const char* name, const std::function<void(standalone::Scene&)>& work);
  // Adds a key to the channel's curve, or replaces the one at its time. The curve is made where there is none.
  void put_key(standalone::NodeId object, standalone::Channel channel, const standalone::Key& key);

  // Edits from here on can be undone, or no more; then those that could are forgotten.
  void keep_history(bool kept);
  standalone::UndoQueue& history() { return *history_; }
  void undo();
  void redo();

  // Makes every set exact again: the engine's queue does so for trails that it follows. It keeps one trail for a short
  // name and one range, so other trails are made anew. What throws leaves sets that are exact or as they were, and the
  // next call goes on.
  void follow();
  // Where trails of the set are now, in a range of frames, as the edited object moves them.
  std::vector<session::Stretch> provisional(const TrailSet& set, standalone::NodeId edited,
                                            const standalone::FrameRange& range) const;
  // The same by parts: runs idle calls for about so many seconds, and at least one. Sets show what is done of them.
  // Throws Failure when a trail could not be computed.
  Progress pump(double seconds);

 private:
  bool is_object(standalone::NodeId node) const;
  // Of the objects alone. Throws Failure with the file and what to do.
  std::vector<standalone::NodeId> choose(const session::Selection& selection) const;
  void change_host(const char* name, const std::function<void(standalone::Host&)>& work);
  // Sets whose trails the engine follows show what their nodes hold. Returns the others.
  std::vector<TrailSet*> show_followed(session::Figures figures);
  void set_range(double first, double last);
  void make(TrailSet& set);
  bool is_followed(const TrailSet& set, const std::unordered_set<standalone::NodeId>& followed) const;
  // Does the work; where that throws, the engine follows nothing any more and keeps no half of a trail.
  void guarded(const std::function<void()>& work);

  std::string file_;
  session::Session session_;
  std::unique_ptr<standalone::UndoQueue> history_;
  std::vector<standalone::NodeId> objects_;
  double first_, last_;
  bool edited_ = false;
  std::vector<std::unique_ptr<TrailSet>> sets_;
};

}  // namespace vantorelix::api
