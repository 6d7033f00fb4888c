#include "standalone/formats/maya/curve_draft.h"

#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "base/number.h"

namespace vantorelix::standalone {
namespace {

// How far an index may lie beyond the last entry. Files number keys from 0 without holes, so more means damage.
constexpr double kMaxHole = 4096.0;

double one_number(MelScanner& words, std::string_view what) {
  double value = 0.0;
  if (!words.next_number(value)) words.input().fail(std::string(what) + " has no value; correct the statement");
  return value;
}

}  // namespace

AttributePath::AttributePath(std::string_view text) {
  const std::size_t end = text.find_first_of("[.");
  name = text.substr(0, end);
  if (end == std::string_view::npos) return;
  std::string_view rest = text.substr(end);
  if (rest[0] == '[') {
    const char* const stop = rest.data() + rest.size();
    const char* p = parse_number(rest.data() + 1, stop, first);
    has_index = p != rest.data() + 1;
    last = first;
    if (has_index && p != stop && *p == ':') parse_number(p + 1, stop, last);
    const std::size_t close = rest.find(']');
    rest = close == std::string_view::npos ? std::string_view() : rest.substr(close + 1);
  }
  if (!rest.empty() && rest[0] == '.') part = rest.substr(1);
}

CurveDraft::CurveDraft(const AnimCurve& curve, const CurveUnits& units)
    : units_(units), pre_(curve.pre_infinity()), post_(curve.post_infinity()) {
  // A curve without keys is a new one, whose tangents are weighted unless the file says otherwise.
  if (!curve.keys().empty()) weighted_ = curve.weighted();
  for (const Key& key : curve.keys()) entries_.push_back({key, true, true, true});
}

bool CurveDraft::read(const AttributePath& path, MelScanner& words) {
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kNames = {{{"keyTimeValue", "ktv"},
                                                                                           {"keyTanInType", "kit"},
                                                                                           {"keyTanOutType", "kot"},
                                                                                           {"keyTanInX", "kix"},
                                                                                           {"keyTanInY", "kiy"},
                                                                                           {"keyTanOutX", "kox"},
                                                                                           {"keyTanOutY", "koy"}}};
  for (const auto& [full, short_name] : kNames) {
    if (path.name != full && path.name != short_name) continue;
    // Without an index the statement only says how many there are.
    if (!path.has_index) return false;
    changed_ = true;
    AttributePath known = path;
    known.name = short_name;
    read_keys(known, words);
    return true;
  }
  return read_curve_wide(path.name, words);
}

bool CurveDraft::read_curve_wide(std::string_view name, MelScanner& words) {
  const bool known = name == "tan" || name == "tangentType" || name == "wgt" || name == "weightedTangents" ||
                     name == "pre" || name == "preInfinity" || name == "pst" || name == "postInfinity" ||
                     name == "roti" || name == "rotationInterpolation";
  if (!known) return false;
  changed_ = true;
  const double value = one_number(words, name);
  if (name[0] == 't') {
    all_ = tangent(value);
    for (Entry& e : entries_) {
      if (!e.own_in) e.key.in = all_;
      if (!e.own_out) e.key.out = all_;
    }
  } else if (name[0] == 'w') {
    weighted_ = value != 0.0;
  } else if (name[0] == 'r') {
    quaternion_ = value >= 2.0 && value <= 4.0;
  } else if (name == "pre" || name == "preInfinity") {
    pre_ = infinity(value);
  } else {
    post_ = infinity(value);
  }
  return true;
}

CurveDraft::Entry& CurveDraft::entry(double index, MelScanner& words) {
  if (!(index >= 0.0 && index <= static_cast<double>(entries_.size()) + kMaxHole)) {
    words.input().fail("a key's index is far beyond the keys before it; correct it or export again");
  }
  const auto place = static_cast<std::size_t>(index);
  if (place >= entries_.size()) {
    Entry fresh;
    fresh.key.in = fresh.key.out = all_;
    entries_.resize(place + 1, fresh);
  }
  return entries_[place];
}

void CurveDraft::read_keys(const AttributePath& path, MelScanner& words) {
  const bool pair = path.name == "ktv" && path.part.empty();
  double value = 0.0;
  double index = path.first;
  for (; words.next_number(value); ++index) {
    if (!std::isfinite(value)) words.input().fail("a value of a key is not finite; correct it or export again");
    if (index > path.last) words.input().fail("more values than the index range holds; correct it or export again");
    Entry& e = entry(index, words);
    if (pair) {
      e.key.time = value;
      e.key.value = one_number(words, "a key's time") * units_.value;
      if (!std::isfinite(e.key.value)) words.input().fail("a key's value is not finite; correct it or export again");
      e.present = true;
    } else {
      set(e, path.name == "ktv" ? path.part : path.name, value);
    }
  }
  if (index <= path.last) words.input().fail("fewer values than the index range holds; correct it or export again");
}

void CurveDraft::set(Entry& e, std::string_view name, double value) {
  if (name == "kt" || name == "keyTime") {
    e.key.time = value;
    e.present = true;
  } else if (name == "kv" || name == "keyValue") {
    e.key.value = value * units_.value;
    e.present = true;
  } else if (name == "kit") {
    e.key.in = tangent(value);
    e.own_in = true;
  } else if (name == "kot") {
    e.key.out = tangent(value);
    e.own_out = true;
  } else if (name == "kix") {
    e.key.in_x = value;
  } else if (name == "kiy") {
    e.key.in_y = value * units_.tangent;
  } else if (name == "kox") {
    e.key.out_x = value;
  } else if (name == "koy") {
    e.key.out_y = value * units_.tangent;
  }
}

Tangent CurveDraft::tangent(double number) {
  static constexpr std::array<Tangent, 15> kKnown = {
      Tangent::global,        Tangent::fixed,          Tangent::linear,
      Tangent::flat,          Tangent::step,           Tangent::slow,
      Tangent::fast,          Tangent::spline,         Tangent::clamped,
      Tangent::plateau,       Tangent::step_next,      Tangent::automatic,
      Tangent::automatic_mix, Tangent::automatic_ease, Tangent::automatic_custom};
  for (const Tangent t : kKnown) {
    if (number == static_cast<double>(t)) return t;
  }
  unknown_type_ = true;
  return Tangent::automatic;
}

Infinity CurveDraft::infinity(double number) {
  static constexpr std::array<Infinity, 5> kKnown = {Infinity::constant, Infinity::linear, Infinity::cycle,
                                                     Infinity::cycle_offset, Infinity::oscillate};
  for (const Infinity i : kKnown) {
    if (number == static_cast<double>(i)) return i;
  }
  unknown_type_ = true;
  return Infinity::constant;
}

void CurveDraft::assign_to(Scene& scene, NodeId curve) const {
  std::vector<Key> keys;
  keys.reserve(entries_.size());
  for (const Entry& e : entries_) {
    if (e.present) keys.push_back(e.key);
  }
  scene.curves.assign(curve, std::move(keys), weighted_, pre_, post_);
}

}  // namespace vantorelix::standalone
