#include "engine/commands/display.h"

#include <array>

#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/messages.h"
#include "engine/state/preferences.h"
#include "engine/state/state.h"

namespace vantorelix {

namespace {

constexpr std::array<const char*, 4> kModeLabels = {"Standard", "Spacing", "Flow", "Beats"};

// Sets an attribute of every viz node in the scene, registered or not, and redraws. Returns on how many it succeeded.
int set_on_every_trail(const std::string& attribute, const host::Value& value) {
  int n = 0;
  for (const std::string& node : cmds->ls_type(NODE_TYPE))
    if (attempt([&] { cmds->setAttr(node + "." + attribute, value); })) ++n;
  cmds->refresh();
  return n;
}

}  // namespace

void set_color_mode(const host::Value& mode) {
  const std::int64_t index = mode.to_int();
  _set_pref_color_mode(index);
  set_on_every_trail("colorMode", index);
  const bool known = index >= 0 && index < static_cast<std::int64_t>(kModeLabels.size());
  _msg("Color mode -> " + (known ? kModeLabels[static_cast<std::size_t>(index)] : mode.text()));
}

void set_ghost(const host::Value& on) {
  const bool flag = on.truthy();
  _set_pref_xray(flag);
  const int n = set_on_every_trail("xrayMode", flag);
  _msg(std::string("Ghost ") + (flag ? "ON" : "OFF") + " on " + std::to_string(n) + " trail(s)");
}

void toggle_ghost() { set_ghost(!_get_pref_xray()); }

}  // namespace vantorelix
