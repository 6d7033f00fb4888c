#include "standalone/scene/attributes/attribute_names.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace vantorelix::standalone {
namespace {

struct Names {
  const char* full;
  const char* short_form;
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
  const char* short_form;
  const char* digit;
};
constexpr std::array<BlendNames, 6> kBlend = {{{"inTranslate", "it", "1"},
                                               {"inRotate", "ir", "1"},
                                               {"inTranslate", "it", "2"},
                                               {"inRotate", "ir", "2"},
                                               {"outTranslate", "ot", ""},
                                               {"outRotate", "or", ""}}};

// What a name means, by the kind of node.
struct Meanings {
  AttributeId transform = AttributeNames::kNone, blend = AttributeNames::kNone, rest = AttributeNames::kNone;
};
using Meaning = AttributeId Meanings::*;

struct Known {
  Known();

  std::array<std::string, attribute::known_count> texts;
  std::vector<std::pair<std::string, Meanings>> names;  // long and short
  HashIndex places;                                     // of the names

  // A place in `names`, or HashIndex::kNone.
  std::uint32_t find(std::string_view name, std::size_t hash) const {
    return places.find(hash, [&](std::uint32_t other) { return names[other].first == name; });
  }
  void add(Meaning meaning, AttributeId id, const std::string& full, const std::string& short_form) {
    texts[id] = full;
    for (const std::string& name : {full, short_form}) {
      std::uint32_t place = find(name, hash_of(name));
      if (place == HashIndex::kNone) {
        place = static_cast<std::uint32_t>(names.size());
        places.insert(hash_of(name), place);
        names.push_back({name, {}});
      }
      AttributeId& means = names[place].second.*meaning;
      if (means == AttributeNames::kNone) means = id;
    }
  }
};

Known::Known() {
  const auto letters = [](AttributeId compound, AttributeId k) {
    static constexpr std::array<const char*, 3> kAxes = {"X", "Y", "Z"}, kShears = {"XY", "XZ", "YZ"};
    return std::string(compound == 3 ? kShears[k] : kAxes[k]);
  };
  const auto lower = [](std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](char c) { return static_cast<char>(c - 'A' + 'a'); });
    return s;
  };
  for (AttributeId c = 0; c < kCompoundCount; ++c) {
    add(&Meanings::transform, kFirstCompound + c, kCompounds[c].full, kCompounds[c].short_form);
    for (AttributeId k = 0; k < 3; ++k)
      add(&Meanings::transform, 3 * c + k, kCompounds[c].full + letters(c, k),
          kCompounds[c].short_form + lower(letters(c, k)));
  }
  for (AttributeId k = 0; k < kSwitches.size(); ++k)
    add(&Meanings::transform, id_of(Channel::rotateOrder) + k, kSwitches[k].full, kSwitches[k].short_form);
  for (AttributeId k = 0; k < kRest.size(); ++k)
    add(&Meanings::rest, attribute::matrix + k, kRest[k].full, kRest[k].short_form);
  for (AttributeId b = 0; b < kBlend.size(); ++b) {
    const AttributeId id = attribute::inTranslate1 + 4 * b;
    const std::string full = kBlend[b].full, short_form = kBlend[b].short_form, digit = kBlend[b].digit;
    add(&Meanings::blend, id, full + digit, short_form + digit);
    for (AttributeId k = 0; k < 3; ++k)
      add(&Meanings::blend, id + 1 + k, full + letters(0, k) + digit, short_form + lower(letters(0, k)) + digit);
  }
}

const Known& known() {
  static const Known table;
  return table;
}

bool only_on_joints(AttributeId id) {
  const AttributeId compound = compound_of(id);
  return compound == compound_of(id_of(Channel::jointOrientX)) ||
         compound == compound_of(id_of(Channel::inverseScaleX)) || id == id_of(Channel::segmentScaleCompensate);
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

AttributeId meant(NameSet set, const Meanings& means) {
  const bool channels = set == NameSet::joint || (set == NameSet::transform && !only_on_joints(means.transform));
  if (channels && means.transform != AttributeNames::kNone) return means.transform;
  if (set == NameSet::pair_blend && means.blend != AttributeNames::kNone) return means.blend;
  return has_rest(set, means.rest) ? means.rest : AttributeNames::kNone;
}

}  // namespace

AttributeId compound_of(AttributeId id) {
  if (id < id_of(Channel::rotateOrder)) return kFirstCompound + id / 3;
  if (is_blend_part(id)) return id - (id - attribute::inTranslate1) % 4;
  return id;
}

bool is_angle(Channel c) {
  const AttributeId compound = compound_of(id_of(c));
  return compound == compound_of(id_of(Channel::rotateX)) || compound == compound_of(id_of(Channel::rotateAxisX)) ||
         compound == compound_of(id_of(Channel::jointOrientX));
}

std::optional<NamedChannels> channels_named(std::string_view name, bool joint) {
  static const AttributeNames kNames;
  const AttributeId id = kNames.find(joint ? NameSet::joint : NameSet::transform, name);
  if (id != AttributeNames::kNone && is_channel(id)) return NamedChannels{static_cast<Channel>(id), 1};
  if (id != AttributeNames::kNone && is_compound(id)) return NamedChannels{static_cast<Channel>(first_part(id)), 3};
  return std::nullopt;
}

const std::string& name_of(Channel c) { return known().texts[id_of(c)]; }

AttributeId AttributeNames::find(NameSet set, std::string_view name) const {
  name = plain(name);
  const bool compound = name.find('.') != std::string_view::npos;
  const std::string_view last = compound ? name.substr(name.rfind('.') + 1) : name;
  const std::size_t hash = hash_of(last);
  const std::uint32_t place = known().find(last, hash);
  if (place != HashIndex::kNone)
    if (const AttributeId id = meant(set, known().names[place].second); id != kNone) return id;
  const std::uint32_t own =
      own_.find(compound ? hash_of(name) : hash, [&](std::uint32_t other) { return own_texts_[other] == name; });
  return own == HashIndex::kNone ? kNone : attribute::known_count + own;
}

AttributeId AttributeNames::intern(NameSet set, std::string_view name) {
  const AttributeId id = find(set, name);
  if (id != kNone) return id;
  const auto fresh = static_cast<AttributeId>(own_texts_.size());
  own_texts_.emplace_back(plain(name));
  own_.insert(hash_of(own_texts_.back()), fresh);
  return attribute::known_count + fresh;
}

const std::string& AttributeNames::text(AttributeId id) const {
  return id < attribute::known_count ? known().texts[id] : own_texts_[id - attribute::known_count];
}

}  // namespace vantorelix::standalone
