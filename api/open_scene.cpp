#include "api/open_scene.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "base/number_text.h"
#include "session/failure.h"
#include "standalone/formats/reader.h"

namespace vantorelix::api {

using session::Failure;
using session::Trail;
using standalone::NodeId;

namespace {

const char* remedy(Failure::Kind kind) {
  using Kind = Failure::Kind;
  switch (kind) {
    case Kind::no_match:
      return "; see the scene's names";
    case Kind::nothing_followed:
      return "; bake what drives its objects before saving, or use all=True";
    case Kind::nothing_animated:
      return "; name objects, or use all=True for every object";
    case Kind::no_object:
      return "; open a scene with transforms or joints";
    case Kind::all_excluded:
      return "; exclude fewer";
    case Kind::bad_pattern:
      return "; write [[], [{] or [}] for one that is a part of a name";
    default:
      return "";
  }
}

}  // namespace

OpenScene::OpenScene(standalone::Scene scene, std::string file, std::function<bool()> cancelled)
    : file_(std::move(file)),
      session_(std::move(scene), {{}, std::move(cancelled), {}}),
      first_(session_.scene().settings.playback_min()),
      last_(session_.scene().settings.playback_max()) {
  const auto all = session_.scene().nodes.all();
  session_.edit([this](standalone::Host& host) { history_ = std::make_unique<standalone::UndoQueue>(host); });
  history_->set_infinite(true);
  history_->set_on(false);
  std::copy_if(all.begin(), all.end(), std::back_inserter(objects_),
               [this](NodeId node) { return session_.scene().nodes.is_transform(node); });
}

bool OpenScene::is_object(NodeId node) const { return std::binary_search(objects_.begin(), objects_.end(), node); }

NodeId OpenScene::object(const std::string& name) const {
  const NodeId named = scene().names.find(name);
  if (named != standalone::kNoNode && is_object(named)) return named;
  std::vector<NodeId> found;
  std::copy_if(objects_.begin(), objects_.end(), std::back_inserter(found),
               [&](NodeId node) { return standalone::name_in_file(scene(), node) == name; });
  if (found.size() == 1) return found.front();
  throw NotFound(file_ + ": " +
                 (found.empty() ? "no object is named '" + name + "'; see the scene's names"
                                : counted(found.size(), "object") + " are named '" + name +
                                      "'; give the path of one, as '" + scene().names.long_name(found.front()) + "'"));
}

std::vector<NodeId> OpenScene::choose(const session::Selection& selection) const {
  try {
    auto chosen = session::choose(scene(), selection);
    chosen.erase(std::remove_if(chosen.begin(), chosen.end(), [this](NodeId node) { return !is_object(node); }),
                 chosen.end());
    if (chosen.empty()) throw Failure(Failure::Kind::no_match, "only nodes of trails match");
    return chosen;
  } catch (const Failure& failure) {
    throw Failure(failure.kind, file_ + ": " + failure.what() + remedy(failure.kind));
  }
}

TrailSet* OpenScene::make_trails(const Request& request) {
  auto set = std::make_unique<TrailSet>();
  set->objects_ = choose(request.selection);
  set->settings_ = request.settings;
  set->first_ = request.first.value_or(first_);
  set->last_ = request.last.value_or(last_);
  guarded([&] { make(*set); });
  return sets_.emplace_back(std::move(set)).get();
}

void OpenScene::let_go(const TrailSet* set) {
  const auto found = std::find_if(sets_.begin(), sets_.end(), [&](const auto& one) { return one.get() == set; });
  if (found == sets_.end()) return;
  session_.remove((*found)->trails_);
  sets_.erase(found);
}

void OpenScene::change_host(const char* name, const std::function<void(standalone::Host&)>& work) {
  edited_ = true;
  history_->begin(name);
  try {
    session_.edit(work);
  } catch (...) {
    history_->end(false);
    throw;
  }
  history_->end(true);
}

void OpenScene::change(const char* name, const std::function<void(standalone::Scene&)>& work) {
  change_host(name, [&](standalone::Host& host) { work(host.scene()); });
}

void OpenScene::edit(const session::LiveEvent& event) {
  using Kind = session::LiveEvent::Kind;
  const char* const name = event.kind == Kind::set_key    ? "set key"
                           : event.kind == Kind::move_key ? "move key"
                                                          : "remove key";
  change_host(name, [&](standalone::Host& host) { session::apply(event, host); });
}

void OpenScene::put_key(NodeId object, standalone::Channel channel, const standalone::Key& key) {
  change("put key", [&](standalone::Scene& scene) {
    auto& curves = scene.curves;
    NodeId curve = curves.driving_curve(object, channel);
    if (curve == standalone::kNoNode) curve = curves.set_key(object, channel, key.time, key.value);
    curves.set_key(curve, key);
  });
}

void OpenScene::keep_history(bool kept) {
  history_->clear();
  history_->set_on(kept);
}

void OpenScene::undo() {
  edited_ = true;
  session_.edit([this](standalone::Host&) { history_->undo(); });
}

void OpenScene::redo() {
  edited_ = true;
  session_.edit([this](standalone::Host&) { history_->redo(); });
}

void OpenScene::follow() {
  if (!edited_) return;
  guarded([this] {
    session_.settle();
    for (TrailSet* set : show_followed(session::Figures::with)) make(*set);
  });
  edited_ = false;
}

Progress OpenScene::pump(double seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  Progress progress;
  guarded([&] {
    for (bool more = true; more; more = more && std::chrono::steady_clock::now() < end) {
      const session::QueueState before = session_.queue_state();
      more = session_.run_idle_once() && !(session_.queue_state() == before);
      progress.worked = progress.worked || more;
    }
  });
  const session::QueueState left = session_.queue_state();
  if (!left.pending) {
    follow();
    return progress;
  }
  if (progress.worked) show_followed(session::Figures::without);
  progress.pending = true;
  progress.item = left.item;
  progress.items = left.items;
  return progress;
}

std::vector<session::Stretch> OpenScene::provisional(const TrailSet& set, NodeId edited,
                                                     const standalone::FrameRange& range) const {
  return session::provisional(scene(), set.trails_, set.report_, edited, range);
}

std::vector<TrailSet*> OpenScene::show_followed(session::Figures figures) {
  std::unordered_set<NodeId> followed;
  for (const Trail& trail : session_.followed()) followed.insert(trail.viz);
  std::vector<TrailSet*> others;
  for (const auto& set : sets_) {
    if (is_followed(*set, followed))
      set->show(session::read_trails(scene(), set->trails_, file_, figures));
    else
      others.push_back(set.get());
  }
  return others;
}

void TrailSet::show(session::TrailReport report) {
  const std::size_t known = revisions_.size();
  revisions_.resize(report.trails.size());
  for (std::size_t i = 0; i < known && i < report.trails.size(); ++i)
    if (report.trails[i].points != report_.trails[i].points) ++revisions_[i];
  report_ = std::move(report);
}

void OpenScene::set_range(double first, double last) {
  session_.edit([&](standalone::Host& host) { host.scene().settings.set_playback_range(first, last); });
}

void OpenScene::make(TrailSet& set) {
  set_range(set.first_, set.last_);
  session_.check_size(set.objects_.size(), set.settings_);
  session_.remove(set.trails_);
  set.trails_ = session_.create(set.objects_, set.settings_);
  set.show(session::read_trails(scene(), set.trails_, file_, session::Figures::with));
}

bool OpenScene::is_followed(const TrailSet& set, const std::unordered_set<NodeId>& followed) const {
  const auto& settings = scene().settings;
  if (set.first_ != settings.playback_min() || set.last_ != settings.playback_max()) return false;
  return std::all_of(set.trails_.begin(), set.trails_.end(),
                     [&](const Trail& trail) { return followed.count(trail.viz) != 0; });
}

void OpenScene::guarded(const std::function<void()>& work) {
  try {
    work();
  } catch (...) {
    session_.remove(session_.followed());
    throw;
  }
}

}  // namespace vantorelix::api
