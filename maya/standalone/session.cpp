#include "maya/standalone/session.h"

#include <string>
#include <utility>

#include "standalone/formats/reader.h"
#include "standalone/host/plugins.h"
#include "standalone/host/viz_node.h"

namespace vantorelix::standalone {

namespace {

// For as long as it lives.
class Activity {
 public:
  Activity(Host& host, Host::FileActivity activity) : host_(host) { host_.set_file_activity(activity); }
  ~Activity() { host_.set_file_activity(Host::FileActivity::none); }
  Activity(const Activity&) = delete;
  Activity& operator=(const Activity&) = delete;

 private:
  Host& host_;
};

}  // namespace

void Session::open(const std::filesystem::path& file) { replace(read_scene(file), Host::FileActivity::opening); }

void Session::make_new() { replace(Scene(), Host::FileActivity::creating); }

void Session::replace(Scene next, Host::FileActivity activity) {
  const Activity busy(host_, activity);
  for (const NodeId node : scene().nodes.all()) tell(Event::node_removed, node);
  host_.select({});
  undo_queue_.clear();
  if (telling_ == 0) replaced_.clear();
  if (telling_ > 0) replaced_.push_back(std::move(scene()));
  scene() = std::move(next);
  begin();
}

void Session::begin() {
  scene().changes.set_listener({[this](NodeId curve) { tell(Event::curve_edited, curve); },
                                [this](NodeId curve) { tell(Event::keyframe_edited, curve); },
                                [this](NodeId node, const std::string&) { tell(Event::node_removed, node); }});
  if (host_.loaded_plugins().empty()) return;
  viz_node::define(scene());
}

void Session::tell(Event event, NodeId node) {
  if (!listener_ || !scene().nodes.exists(node)) return;
  const std::string type = scene().nodes.type(node);  // a copy: the listener may delete the node
  ++telling_;
  undo_queue_.begin_aside();
  listener_(static_cast<std::int32_t>(event), node, type.c_str());
  undo_queue_.end(true);
  --telling_;
}

}  // namespace vantorelix::standalone
