#include "engine/state/preferences.h"

#include <algorithm>
#include <optional>

#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/state.h"

namespace vantorelix {

namespace {

// The stored value through `convert`; nothing where there is none or it does not convert.
template <class T>
std::optional<T> stored(const std::string& name, T (host::Value::*convert)() const) {
  std::optional<T> result;
  attempt([&] {
    if (cmds->optionVar_exists(name)) result = (cmds->optionVar_query(name).*convert)();
  });
  return result;
}

std::int64_t at_least_one(std::int64_t samples) { return std::max<std::int64_t>(1, samples); }

}  // namespace

std::int64_t _opt_get_int(const std::string& name, const host::Value& fallback) {
  const auto value = stored(name, &host::Value::to_int);
  return value ? *value : fallback.to_int();
}

double _opt_get_float(const std::string& name, const host::Value& fallback) {
  const auto value = stored(name, &host::Value::to_float);
  return value ? *value : fallback.to_float();
}

void _opt_set_int(const std::string& name, const host::Value& value) {
  attempt([&] { cmds->optionVar_set_int(name, value.to_int()); });
}

void _opt_set_float(const std::string& name, const host::Value& value) {
  attempt([&] { cmds->optionVar_set_float(name, value.to_float()); });
}

std::int64_t _get_pref_samples() { return at_least_one(_opt_get_int(OPT_SAMPLES, 1)); }
void _set_pref_samples(const host::Value& v) { _opt_set_int(OPT_SAMPLES, at_least_one(v.to_int())); }

double _get_pref_line_width() { return _opt_get_float(OPT_LINE_WIDTH, 2.5); }
void _set_pref_line_width(const host::Value& v) { _opt_set_float(OPT_LINE_WIDTH, v); }

double _get_pref_point_size() { return _opt_get_float(OPT_POINT_SIZE, 6.0); }
void _set_pref_point_size(const host::Value& v) { _opt_set_float(OPT_POINT_SIZE, v); }

bool _get_pref_show_line() { return _opt_get_int(OPT_SHOW_LINE, 1) != 0; }
void _set_pref_show_line(const host::Value& v) { _opt_set_int(OPT_SHOW_LINE, v.truthy() ? 1 : 0); }

bool _get_pref_show_dots() { return _opt_get_int(OPT_SHOW_DOTS, 1) != 0; }
void _set_pref_show_dots(const host::Value& v) { _opt_set_int(OPT_SHOW_DOTS, v.truthy() ? 1 : 0); }

bool _get_pref_xray() { return _opt_get_int(OPT_XRAY, 1) != 0; }
void _set_pref_xray(const host::Value& v) { _opt_set_int(OPT_XRAY, v.truthy() ? 1 : 0); }

std::int64_t _get_pref_color_mode() { return _opt_get_int(OPT_COLOR_MODE, 0); }
void _set_pref_color_mode(const host::Value& v) { _opt_set_int(OPT_COLOR_MODE, v.to_int()); }

}  // namespace vantorelix
