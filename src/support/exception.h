// Base of every exception the system raises on purpose. Each carries the exact text a
// user sees; nothing is appended or translated on the way to the screen.
#pragma once

#include <exception>
#include <string>

namespace velmora {

class Exception : public std::exception {
 public:
  explicit Exception(std::string message) : message_(std::move(message)) {}
  const char* what() const noexcept override { return message_.c_str(); }
  const std::string& Message() const noexcept { return message_; }

 private:
  std::string message_;
};

/// Raised by streams: a read that could not deliver every byte asked for, a failed write,
/// a file that cannot be opened.
class EStreamError : public Exception {
 public:
  using Exception::Exception;
};

/// Raised by a string list that refuses a duplicate.
class EStringListError : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace velmora
