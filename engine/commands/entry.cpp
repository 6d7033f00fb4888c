#include "engine/commands/entry.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "engine/commands/clear.h"
#include "engine/commands/create.h"
#include "engine/commands/display.h"
#include "engine/commands/nurbs.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/state.h"
#include "host/error.h"

namespace vantorelix {

namespace {

const std::string kMenuFunction = "show_trail_mini_menu";

struct Group {
  std::vector<std::string> actions;
  void (*command)();
};

void open_menu() { _open_menu(); }
void convert() { convert_to_nurbs(); }
// Whatever mode is preferred: a plain click gives the standard colours.
void create() { create_trail({}, {}, {}, {}, {}, {}, 0); }

const std::vector<Group>& groups() {
  static const std::vector<Group> kGroups = {
      {{"rmb", "mouse2", "mouse3", "right"}, open_menu},
      {{"ctrl_rmb", "control_rmb"}, toggle_ghost},
      {{"ctrl_lmb", "control_lmb"}, convert},
      {{"lmb", "mouse1", "left"}, create},
      {{"shift_lmb"}, clear_trails},
      {{"clear", "delete"}, clear_trails},
      {{"nurbs", "curve"}, convert},
      {{"ghost", "xray"}, toggle_ghost},
      {{"standard"}, [] { set_color_mode(0); }},
      {{"spacing"}, [] { set_color_mode(1); }},
      {{"flow", "pastfuture", "past_future", "temperature"}, [] { set_color_mode(2); }},
      {{"beats"}, [] { set_color_mode(3); }},
  };
  return kGroups;
}

}  // namespace

void pellark_entry(const host::Value& action) {
  const std::string name = action.truthy() ? action.keyword() : "";
  for (const Group& group : groups())
    if (std::find(group.actions.begin(), group.actions.end(), name) != group.actions.end()) return group.command();
  _open_menu();
}

bool _open_menu() {
  bool opened = false;
  attempt([&] {
    const auto front_end = interpreter->import_module(SCRIPT_NAME);
    if (!front_end->has_attribute(kMenuFunction)) return;
    front_end->call(kMenuFunction);
    opened = true;
  });
  // The second way serves a front end that offers the name only to an import, and one whose first call failed.
  return opened || attempt([&] { interpreter->call_imported(SCRIPT_NAME, kMenuFunction); });
}

}  // namespace vantorelix
