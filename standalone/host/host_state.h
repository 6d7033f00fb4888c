// What the faces of the standalone host share.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standalone/host/deferred_queue.h"
#include "standalone/host/host.h"
#include "standalone/host/messages.h"
#include "standalone/host/option_store.h"
#include "standalone/host/plugins.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

using ModuleFunctions = std::vector<std::pair<std::string, std::function<void()>>>;

struct HostState {
  HostState(Scene scene, HostOptions options);

  // What the user reads: by the options, else on standard error.
  void warn(const std::string& text) const;
  // The selected nodes that still exist, in selection order.
  std::vector<NodeId> selected() const;

  Scene scene;
  HostOptions options;
  Messages messages;
  DeferredQueue deferred;
  OptionStore option_variables;
  Plugins plugins;
  std::vector<NodeId> selection;
  std::map<std::string, std::map<std::string, bool>> panels;  // panel -> display flag -> on
  std::map<std::string, std::string> environment;
  std::map<std::string, ModuleFunctions> modules;
  bool playing = false;
  Host::FileActivity file_activity = Host::FileActivity::none;
  std::size_t refreshes = 0;
};

// The one node that `name` stands for. Throws host::Error of kind value, whose text names `shown`, when there is
// none or more than one.
NodeId node_named(const Scene& scene, std::string_view name, std::string_view shown);
inline NodeId node_named(const Scene& scene, std::string_view name) { return node_named(scene, name, name); }

}  // namespace vantorelix::standalone
