#include "standalone/host/messages.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "host/error.h"

namespace vantorelix::standalone {

namespace {

bool is_kind_of(std::string_view type, std::string_view wanted) {
  return wanted == type || wanted == "dependNode" || (wanted == "animCurve" && type.substr(0, 9) == wanted);
}

}  // namespace

// The identifier handed out is the subscriber itself.
class Messages::Subscriber : public host::Object {
 public:
  Subscriber(Message message, const host::Callback& function, std::string type)
      : message_(message), function_(function), type_(std::move(type)) {}

  std::string text() const override { return std::string("<callback ") + function_.name + ">"; }

  bool listens_to(Message message, std::string_view type) const {
    return present && message_ == message && (message != Message::node_removed || is_kind_of(type, type_));
  }
  const host::Callback& function() const { return function_; }

  bool present = true;

 private:
  Message message_;
  host::Callback function_;
  std::string type_;
};

Messages::Messages(std::function<void(const std::string&)> report) : report_(std::move(report)) {}
Messages::~Messages() = default;

host::Value Messages::subscribe(Message message, const host::Callback& function, std::string type) {
  subscribers_.push_back(std::make_shared<Subscriber>(message, function, std::move(type)));
  return host::Value(std::shared_ptr<host::Object>(subscribers_.back()));
}

void Messages::unsubscribe(const host::Value& identifier) {
  const auto* object = identifier.as_object();
  const auto found = std::find_if(subscribers_.begin(), subscribers_.end(),
                                  [&](const auto& subscriber) { return object && subscriber == *object; });
  if (found == subscribers_.end()) throw host::Error("(kInvalidParameter): Callback ID is not valid");
  (*found)->present = false;
  subscribers_.erase(found);
}

void Messages::send(Message message, std::string_view node_type) {
  const auto subscribers = subscribers_;
  for (const auto& subscriber : subscribers) {
    if (!subscriber->listens_to(message, node_type)) continue;
    try {
      subscriber->function().function();
    } catch (const std::exception& error) {
      report_("callback " + std::string(subscriber->function().name) + " failed: " + error.what());
    }
  }
}

}  // namespace vantorelix::standalone
