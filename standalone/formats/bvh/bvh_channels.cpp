#include "standalone/formats/bvh/bvh_channels.h"

#include <algorithm>

namespace vantorelix::standalone {

namespace {

using Axes = std::array<std::size_t, 3>;
// As Channel::rotateOrder counts them.
constexpr std::array<Axes, 6> kOrders = {{{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}}};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

bool is_same_word(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::optional<Channel> bvh_channel_named(std::string_view name) {
  for (std::size_t k = 0; k < kBvhChannelCount; ++k)
    if (is_same_word(name, kBvhChannels[k])) return component(Channel::translateX, k);
  return std::nullopt;
}

int rotate_order_of(const std::vector<Channel>& listed) {
  std::vector<std::size_t> axes;
  for (auto channel = listed.rbegin(); channel != listed.rend(); ++channel)
    axes.push_back(static_cast<std::size_t>(*channel) - static_cast<std::size_t>(Channel::rotateX));
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (std::find(axes.begin(), axes.end(), axis) == axes.end()) axes.push_back(axis);
  const auto same = [&axes](const Axes& order) { return std::equal(order.begin(), order.end(), axes.begin()); };
  return static_cast<int>(std::find_if(kOrders.begin(), kOrders.end(), same) - kOrders.begin());
}

std::array<Channel, 3> rotations_in(double order) {
  const bool known = order > 0.0 && order < static_cast<double>(kOrders.size());
  const Axes& axes = kOrders[known ? static_cast<std::size_t>(order) : 0];
  std::array<Channel, 3> listed;
  for (std::size_t k = 0; k < 3; ++k) listed[k] = component(Channel::rotateX, axes[2 - k]);
  return listed;
}

}  // namespace vantorelix::standalone
