// Attribute names, long and short, as numbers. For the files of standalone/scene only.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "standalone/scene/attributes/channel_names.h"
#include "standalone/scene/names/hash_index.h"
#include "standalone/scene/transforms/channel.h"

namespace vantorelix::standalone {

// Numbers below kKnownCount are fixed: first the channels in their own order, then the compounds of three channels,
// then the rest of what evaluation asks for by name. Numbers from there on belong to one scene.
using AttributeId = std::uint32_t;

inline constexpr AttributeId kChannelCount = static_cast<AttributeId>(Channel::count);
// The compounds: kFirstCompound + k stands for the channels 3k, 3k + 1 and 3k + 2.
inline constexpr AttributeId kFirstCompound = kChannelCount;
inline constexpr AttributeId kCompoundCount = 11;

namespace attribute {
enum : AttributeId {
  matrix = kFirstCompound + kCompoundCount,
  worldMatrix,
  offsetParentMatrix,
  visibility,
  input,
  output,
  conversionFactor,
  weight,
  translateXMode,
  translateYMode,
  translateZMode,
  rotateMode,
  rotInterpolation,
  blendRotateOrder,
  // Of a pair blend, each compound before its three parts.
  inTranslate1,
  inRotate1 = inTranslate1 + 4,
  inTranslate2 = inRotate1 + 4,
  inRotate2 = inTranslate2 + 4,
  outTranslate = inRotate2 + 4,
  outRotate = outTranslate + 4,
  known_count = outRotate + 4
};
}  // namespace attribute

constexpr AttributeId id_of(Channel c) { return static_cast<AttributeId>(c); }
constexpr bool is_channel(AttributeId id) { return id < kChannelCount; }
constexpr bool is_compound(AttributeId id) { return id >= kFirstCompound && id < kFirstCompound + kCompoundCount; }
constexpr AttributeId first_part(AttributeId compound) { return (compound - kFirstCompound) * 3; }
// Of a pair blend: one of the six compounds, or one of their parts.
constexpr bool is_blend_compound(AttributeId id) {
  return id >= attribute::inTranslate1 && id < attribute::known_count && (id - attribute::inTranslate1) % 4 == 0;
}
constexpr bool is_blend_part(AttributeId id) {
  return id >= attribute::inTranslate1 && id < attribute::known_count && (id - attribute::inTranslate1) % 4 != 0;
}
// The compound that a channel or a pair blend's part belongs to; the attribute itself when it belongs to none.
AttributeId compound_of(AttributeId id);
// How many plugs the attribute has below it: 3 for a compound, else 0.
constexpr AttributeId part_count(AttributeId id) { return is_compound(id) || is_blend_compound(id) ? 3 : 0; }
constexpr AttributeId part(AttributeId compound, AttributeId k) {
  return is_compound(compound) ? first_part(compound) + k : compound + 1 + k;
}

// What short names mean depends on the kind of node.
enum class NameSet : std::uint8_t { transform, joint, shape, curve, unit_conversion, pair_blend, other };

// The names of one scene.
class AttributeNames {
 public:
  // The number of a known or already met attribute; kNone when there is none.
  static constexpr AttributeId kNone = 0xffffffffu;
  AttributeId find(NameSet set, std::string_view name) const;
  AttributeId intern(NameSet set, std::string_view name);
  const std::string& text(AttributeId id) const;

 private:
  std::deque<std::string> own_texts_;  // from attribute::known_count on
  HashIndex own_;                      // of own_texts_
};

}  // namespace vantorelix::standalone
