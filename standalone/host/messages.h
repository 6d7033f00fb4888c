// Who is told of edits, and the telling.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/callback.h"
#include "host/value.h"

namespace vantorelix::standalone {

enum class Message { curve_edited, keyframe_edited, node_removed };

// Subscribers are called in order of subscription. One that subscribes or unsubscribes, itself or others, while a
// message is on its way takes effect at once for those leaving and from the next message on for those coming.
class Messages {
 public:
  // `report` is told the text of an ordinary error that a subscriber let out: the edit that sent the message goes
  // on. An Interrupt is not held back.
  explicit Messages(std::function<void(const std::string&)> report);
  ~Messages();

  // `type` is the node type asked for, for node_removed: exact, "animCurve" for every kind of animation curve, or
  // "dependNode" for all. The identifier is good for unsubscribe and for nothing else.
  host::Value subscribe(Message message, const host::Callback& function, std::string type = {});
  // Throws host::Error for anything that is not the identifier of a present subscriber.
  void unsubscribe(const host::Value& identifier);
  void send(Message message, std::string_view node_type = {});

  std::size_t size() const { return subscribers_.size(); }

 private:
  class Subscriber;
  std::vector<std::shared_ptr<Subscriber>> subscribers_;
  std::function<void(const std::string&)> report_;
};

}  // namespace vantorelix::standalone
