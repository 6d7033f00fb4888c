// What a BVH clip calls the channels of a joint. For the files of this folder only.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "standalone/scene/transforms/channel.h"

namespace vantorelix::standalone {

// In the order of the scene's own, from translateX on.
inline constexpr std::array<std::string_view, 6> kBvhChannels = {"Xposition", "Yposition", "Zposition",
                                                                 "Xrotation", "Yrotation", "Zrotation"};
inline constexpr std::size_t kBvhChannelCount = kBvhChannels.size();

// A joint that was read from a clip has under this attribute what its CHANNELS lists, with blanks between.
inline constexpr std::string_view kChannelsInFile = "channelsInFile";

// A longer name is refused.
inline constexpr std::size_t kMaxBvhName = 65536;

constexpr bool is_bvh_blank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

// Of the six.
constexpr bool is_rotation(Channel channel) { return channel >= Channel::rotateX; }

// The channel of a listed name, in any case; nothing for a name that is none.
std::optional<Channel> bvh_channel_named(std::string_view name);

// The rotate order (0 xyz ... 5 zyx, the first letter applied first) of rotation channels listed outermost first. Axes
// that are not listed never turn, so they may stand anywhere.
int rotate_order_of(const std::vector<Channel>& listed);
// The three rotation channels, outermost first. What is not an order counts as xyz.
std::array<Channel, 3> rotations_in(double order);

// Whether two words are the same but for the case of their letters.
bool is_same_word(std::string_view a, std::string_view b);

}  // namespace vantorelix::standalone
