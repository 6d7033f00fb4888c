// The user's settings: one option variable each, read afresh at every use.
#pragma once

#include <cstdint>
#include <string>

#include "host/value.h"

namespace vantorelix {

// The stored value as an integer or float; the default where the variable is missing, cannot be queried or does not
// convert. Only a default that does not convert throws.
std::int64_t _opt_get_int(const std::string& name, const host::Value& fallback);
double _opt_get_float(const std::string& name, const host::Value& fallback);
// Stores the converted value, or silently leaves the previous one.
void _opt_set_int(const std::string& name, const host::Value& value);
void _opt_set_float(const std::string& name, const host::Value& value);

std::int64_t _get_pref_samples();              // default 1, never below 1
void _set_pref_samples(const host::Value& v);  // throws when v is not a number; stores at least 1
double _get_pref_line_width();                 // default 2.5
void _set_pref_line_width(const host::Value& v);
double _get_pref_point_size();  // default 6.0
void _set_pref_point_size(const host::Value& v);
bool _get_pref_show_line();  // default on
void _set_pref_show_line(const host::Value& v);
bool _get_pref_show_dots();  // default on
void _set_pref_show_dots(const host::Value& v);
bool _get_pref_xray();  // default on
void _set_pref_xray(const host::Value& v);
std::int64_t _get_pref_color_mode();              // default 0; any integer is kept
void _set_pref_color_mode(const host::Value& v);  // throws when v is not a number

}  // namespace vantorelix
