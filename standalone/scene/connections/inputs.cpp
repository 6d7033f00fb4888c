#include "standalone/scene/connections/inputs.h"

#include <algorithm>

namespace vantorelix::standalone {

std::size_t Inputs::place(AttributeId attribute) const {
  if (!index_.empty()) {
    const auto found = index_.find(attribute);
    return found == index_.end() ? all_.size() : found->second;
  }
  const auto found = std::find_if(all_.begin(), all_.end(), [attribute](const Input& i) {
    return i.attribute == attribute && i.source != kNoNode;
  });
  return static_cast<std::size_t>(found - all_.begin());
}

const Input* Inputs::find(AttributeId attribute) const {
  const std::size_t at = place(attribute);
  return at < all_.size() ? &all_[at] : nullptr;
}

void Inputs::set(const Input& input) {
  const std::size_t at = place(input.attribute);
  if (at < all_.size()) {
    all_[at] = input;
    return;
  }
  all_.push_back(input);
  if (!index_.empty()) {
    index_.emplace(input.attribute, at);
  } else if (all_.size() >= kIndexed) {
    compact();
  }
}

bool Inputs::remove(AttributeId attribute) {
  const std::size_t at = place(attribute);
  if (at == all_.size()) return false;
  all_[at].source = kNoNode;
  ++gaps_;
  if (!index_.empty()) index_.erase(attribute);
  if (2 * gaps_ > all_.size()) compact();
  return true;
}

std::size_t Inputs::order_of(AttributeId attribute) const {
  const auto end = all_.begin() + static_cast<std::ptrdiff_t>(place(attribute));
  return static_cast<std::size_t>(std::count_if(all_.begin(), end, [](const Input& i) { return i.source != kNoNode; }));
}

void Inputs::insert(const Input& input, std::size_t order) {
  if (order >= all_.size() - gaps_) return set(input);
  std::size_t at = 0;
  for (std::size_t before = 0; before < order || all_[at].source == kNoNode; ++at)
    if (all_[at].source != kNoNode) ++before;
  all_.insert(all_.begin() + static_cast<std::ptrdiff_t>(at), input);
  compact();
}

void Inputs::compact() {
  std::erase_if(all_, [](const Input& i) { return i.source == kNoNode; });
  gaps_ = 0;
  index_.clear();
  if (all_.size() < kIndexed) return;
  for (std::size_t i = 0; i < all_.size(); ++i) index_.emplace(all_[i].attribute, i);
}

}  // namespace vantorelix::standalone
