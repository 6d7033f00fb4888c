#include "api/open_scene.h"

#include <algorithm>
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

void OpenScene::edit(const session::LiveEvent& event) {
  edited_ = true;
  session_.edit([&](standalone::Host& host) { session::apply(event, host); });
}

void OpenScene::follow() {
  if (!edited_) return;
  guarded([this] {
    session_.settle();
    std::unordered_set<NodeId> followed;
    for (const Trail& trail : session_.followed()) followed.insert(trail.viz);
    std::vector<TrailSet*> others;
    for (const auto& set : sets_) {
      if (is_followed(*set, followed))
        set->report_ = session::read_trails(scene(), set->trails_, file_, session::Figures::with);
      else
        others.push_back(set.get());
    }
    for (TrailSet* set : others) make(*set);
  });
  edited_ = false;
}

void OpenScene::set_range(double first, double last) {
  session_.edit([&](standalone::Host& host) { host.scene().settings.set_playback_range(first, last); });
}

void OpenScene::make(TrailSet& set) {
  set_range(set.first_, set.last_);
  session_.check_size(set.objects_.size(), set.settings_);
  session_.remove(set.trails_);
  set.trails_ = session_.create(set.objects_, set.settings_);
  set.report_ = session::read_trails(scene(), set.trails_, file_, session::Figures::with);
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
