// JSON-RPC dispatch for the language server: each method is bound to one handler in a
// table, and one call turns a message body into the answer to send. The dispatcher knows
// nothing of what the methods do; it owns the protocol's rules: requests get exactly one
// answer (a result or an error), notifications none, unknown requests "method not found",
// unknown notifications are passed over, and a request cancelled before it ran answers
// "request cancelled".
//
// Threads: one thread calls Handle; Cancel may come from another (the reader's).
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace velmora::lsp {

using json = nlohmann::json;

/// The protocol's error codes.
enum TErrorCode : int {
  kParseError = -32700,
  kInvalidRequest = -32600,
  kMethodNotFound = -32601,
  kInvalidParams = -32602,
  kInternalError = -32603,
  kServerNotInitialized = -32002,
  kRequestFailed = -32803,
  kRequestCancelled = -32800,
  kContentModified = -32801,
};

/// Raised by a handler to answer with an error. The message is shown to the user by most
/// clients, so it is the system's own text.
class TLspError : public std::exception {
 public:
  TLspError(int code, std::string message) : Code(code), Message(std::move(message)) {}
  const char* what() const noexcept override { return Message.c_str(); }
  int Code;
  std::string Message;
};

class TDispatcher {
 public:
  using TRequestHandler = std::function<json(const json& params)>;
  using TNotificationHandler = std::function<void(const json& params)>;
  /// An answer to a request the server sent: the id, and the result or error object.
  using TResponseHandler =
      std::function<void(const json& id, const json* result, const json* error)>;
  /// Told about a message that could not be handled (for the server's log).
  using TLogHandler = std::function<void(const std::string& text)>;

  void OnRequest(std::string method, TRequestHandler handler);
  void OnNotification(std::string method, TNotificationHandler handler);
  void OnResponse(TResponseHandler handler) { response_ = std::move(handler); }
  void OnLog(TLogHandler handler) { log_ = std::move(handler); }
  /// Requests other than those named here answer "server not initialized" while the gate
  /// is closed; notifications other than those named are dropped.
  void SetGate(bool open, std::set<std::string> alwaysAllowed);

  /// Handles one message body; returns the answer to send, if any.
  std::optional<json> Handle(std::string_view body);
  /// Handles a message already parsed.
  std::optional<json> HandleMessage(const json& message);

  /// Marks a request id as cancelled; a request with that id that has not run yet answers
  /// "request cancelled". Ids already answered are forgotten at once.
  void Cancel(const json& id);

  static json ErrorResponse(const json& id, int code, std::string_view message);
  static json ResultResponse(const json& id, json result);

  /// A result already written as JSON text, for answers too large to build as values
  /// (the outline of a unit with thousands of routines): Serialize splices it in as it is.
  static json RawResult(std::string jsonText);
  /// The message as the client receives it, raw results spliced in; bytes that are not
  /// UTF-8 in a string come out as U+FFFD.
  static std::string Serialize(const json& message);

 private:
  bool TakeCancelled(const json& id);
  void Log(const std::string& text) const {
    if (log_) log_(text);
  }

  std::map<std::string, TRequestHandler, std::less<>> requests_;
  std::map<std::string, TNotificationHandler, std::less<>> notifications_;
  TResponseHandler response_;
  TLogHandler log_;
  bool gateOpen_ = true;
  std::set<std::string, std::less<>> alwaysAllowed_;
  std::mutex cancelLock_;
  std::set<std::string> cancelled_;  // ids in their JSON text form
};

}  // namespace velmora::lsp
