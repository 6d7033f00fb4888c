#include "standalone/scene/attribute_names.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace vantorelix::standalone {
namespace {

struct Names {
  const char* full;
  const char* brief;
};

// In the order of the compounds' numbers; parts take a letter, or two for shear, at the end.
constexpr std::array<Names, kCompoundCount> kCompounds = {{{"translate", "t"},
                                                           {"rotate", "r"},
                                                           {"scale", "s"},
                                                           {"shear", "sh"},
                                                           {"rotateAxis", "ra"},
                                                           {"jointOrient", "jo"},
                                                           {"rotatePivot", "rp"},
                                                           {"rotatePivotTranslate", "rpt"},
                                                           {"scalePivot", "sp"},
                                                           {"scalePivotTranslate", "spt"},
                                                           {"inverseScale", "is"}}};
constexpr std::array<Names, 3> kSwitches = {
    {{"rotateOrder", "ro"}, {"inheritsTransform", "it"}, {"segmentScaleCompensate", "ssc"}}};
constexpr std::array<Names, attribute::inTranslate1 - attribute::matrix> kRest = {{{"matrix", "m"},
                                                                                   {"worldMatrix", "wm"},
                                                                                   {"offsetParentMatrix", "opm"},
                                                                                   {"visibility", "v"},
                                                                                   {"input", "i"},
                                                                                   {"output", "o"},
                                                                                   {"conversionFactor", "cf"},
                                                                                   {"weight", "w"},
                                                                                   {"translateXMode", "txm"},
                                                                                   {"translateYMode", "tym"},
                                                                                   {"translateZMode", "tzm"},
                                                                                   {"rotateMode", "rm"},
                                                                                   {"rotInterpolation", "ri"},
                                                                                   {"rotateOrder", "ro"}}};
// A part's letter stands before the digit.
struct BlendNames {
  const char* full;
  const char* brief;
  const char* digit;
};
constexpr std::array<BlendNames, 6> kBlend = {{{"inTranslate", "it", "1"},
                                               {"inRotate", "ir", "1"},
                                               {"inTranslate", "it", "2"},
                                               {"inRotate", "ir", "2"},
                                               {"outTranslate", "ot", ""},
                                               {"outRotate", "or", ""}}};

using Table = std::unordered_map<std::string, AttributeId>;

void add(Table& table, std::vector<std::string>& texts, AttributeId id, const std::string& full,
         const std::string& brief) {
  if (texts.size() <= id) texts.resize(id + 1);
  texts[id] = full;
  table.emplace(full, id);
  table.emplace(brief, id);
}

struct Known {
  std::vector<std::string> texts;
  Table transform, blend, rest;
};

Known make_known() {
  Known known;
  const auto letters = [](AttributeId compound, AttributeId k) {
    static constexpr std::array<const char*, 3> kAxes = {"X", "Y", "Z"}, kShears = {"XY", "XZ", "YZ"};
    return std::string(compound == 3 ? kShears[k] : kAxes[k]);
  };
  const auto lower = [](std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](char c) { return static_cast<char>(c - 'A' + 'a'); });
    return s;
  };
  for (AttributeId c = 0; c < kCompoundCount; ++c) {
    add(known.transform, known.texts, kFirstCompound + c, kCompounds[c].full, kCompounds[c].brief);
    for (AttributeId k = 0; k < 3; ++k)
      add(known.transform, known.texts, 3 * c + k, kCompounds[c].full + letters(c, k),
          kCompounds[c].brief + lower(letters(c, k)));
  }
  for (AttributeId k = 0; k < kSwitches.size(); ++k)
    add(known.transform, known.texts, id_of(Channel::rotateOrder) + k, kSwitches[k].full, kSwitches[k].brief);
  for (AttributeId k = 0; k < kRest.size(); ++k)
    add(known.rest, known.texts, attribute::matrix + k, kRest[k].full, kRest[k].brief);
  for (AttributeId b = 0; b < kBlend.size(); ++b) {
    const AttributeId id = attribute::inTranslate1 + 4 * b;
    const std::string full = kBlend[b].full, brief = kBlend[b].brief, digit = kBlend[b].digit;
    add(known.blend, known.texts, id, full + digit, brief + digit);
    for (AttributeId k = 0; k < 3; ++k)
      add(known.blend, known.texts, id + 1 + k, full + letters(0, k) + digit, brief + lower(letters(0, k)) + digit);
  }
  return known;
}

const Known& known() {
  static const Known table = make_known();
  return table;
}

AttributeId look_up(const Table& table, const std::string& name) {
  const auto found = table.find(name);
  return found == table.end() ? AttributeNames::kNone : found->second;
}

bool only_on_joints(AttributeId id) {
  const AttributeId whole = compound_of(id);
  return whole == compound_of(id_of(Channel::jointOrientX)) || whole == compound_of(id_of(Channel::inverseScaleX)) ||
         id == id_of(Channel::segmentScaleCompensate);
}

// Which of the named attributes beside the channels a kind of node has.
bool has_rest(NameSet set, AttributeId id) {
  switch (set) {
    case NameSet::transform:
    case NameSet::joint:
    case NameSet::shape:
      return id >= attribute::matrix && id <= attribute::visibility;
    case NameSet::curve:
      return id == attribute::input || id == attribute::output;
    case NameSet::unit_conversion:
      return id >= attribute::input && id <= attribute::conversionFactor;
    case NameSet::pair_blend:
      return id >= attribute::weight && id <= attribute::blendRotateOrder;
    case NameSet::other:
      return false;
  }
  return false;
}

// "translate.translateX" and "worldMatrix[0]" name a part and the only element: the plain name says it all.
std::string_view plain(std::string_view name) {
  if (name.ends_with("[0]") && name.find('.') == std::string_view::npos) name.remove_suffix(3);
  return name;
}

AttributeId find_known(NameSet set, std::string_view name) {
  std::string text(plain(name));
  if (const auto dot = text.rfind('.'); dot != std::string::npos) text.erase(0, dot + 1);
  if (set == NameSet::transform || set == NameSet::joint) {
    const AttributeId id = look_up(known().transform, text);
    if (id != AttributeNames::kNone && (set == NameSet::joint || !only_on_joints(id))) return id;
  }
  if (set == NameSet::pair_blend) {
    const AttributeId id = look_up(known().blend, text);
    if (id != AttributeNames::kNone) return id;
  }
  const AttributeId id = look_up(known().rest, text);
  return id != AttributeNames::kNone && has_rest(set, id) ? id : AttributeNames::kNone;
}

}  // namespace

AttributeId compound_of(AttributeId id) {
  if (id < id_of(Channel::rotateOrder)) return kFirstCompound + id / 3;
  if (is_blend_part(id)) return id - (id - attribute::inTranslate1) % 4;
  return id;
}

bool is_angle(Channel c) {
  const AttributeId whole = compound_of(id_of(c));
  return whole == compound_of(id_of(Channel::rotateX)) || whole == compound_of(id_of(Channel::rotateAxisX)) ||
         whole == compound_of(id_of(Channel::jointOrientX));
}

AttributeNames::AttributeNames() : texts_(known().texts.begin(), known().texts.end()) {}

AttributeId AttributeNames::find(NameSet set, std::string_view name) const {
  const AttributeId fixed = find_known(set, name);
  if (fixed != kNone) return fixed;
  const auto found = own_.find(plain(name));
  return found == own_.end() ? kNone : found->second;
}

AttributeId AttributeNames::intern(NameSet set, std::string_view name) {
  const AttributeId id = find(set, name);
  if (id != kNone) return id;
  texts_.emplace_back(plain(name));
  const auto fresh = static_cast<AttributeId>(texts_.size() - 1);
  own_.emplace(texts_.back(), fresh);
  return fresh;
}

}  // namespace vantorelix::standalone
