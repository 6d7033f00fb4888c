// The two families of failure that cross the host interface.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace vantorelix::host {

// What kind of ordinary error it is, in the terms of the scripting language that the host embeds.
enum class ErrorKind { runtime, type, value, key, index, attribute, zero_division, overflow, import, os };

// The ordinary class of errors. Guards in the engine catch std::exception, of which this is the usual member.
// what() is the text that a warning prints. A host that wraps an exception of its own puts it in `cause`, and
// gets it back untouched when the error leaves the engine.
class Error : public std::runtime_error {
 public:
  explicit Error(const std::string& text, ErrorKind kind = ErrorKind::runtime, std::exception_ptr cause = nullptr)
      : std::runtime_error(text), kind_(kind), cause_(std::move(cause)) {}

  ErrorKind kind() const noexcept { return kind_; }
  const std::exception_ptr& cause() const noexcept { return cause_; }

 private:
  ErrorKind kind_;
  std::exception_ptr cause_;
};

// An interpreter exit or a keyboard interrupt. Deliberately outside std::exception: no guard of the engine
// swallows it. `cause` is the host's own exception.
class Interrupt {
 public:
  explicit Interrupt(std::exception_ptr cause = nullptr) : cause_(std::move(cause)) {}
  const std::exception_ptr& cause() const noexcept { return cause_; }

 private:
  std::exception_ptr cause_;
};

}  // namespace vantorelix::host
