#include "hosts/lsp/dispatcher.h"

namespace velmora::lsp {
namespace {

constexpr std::size_t kMaxCancelled = 4096;

bool IsValidId(const json& id) {
  return id.is_string() || id.is_number_integer();
}

}  // namespace

void TDispatcher::OnRequest(std::string method, TRequestHandler handler) {
  requests_[std::move(method)] = std::move(handler);
}

void TDispatcher::OnNotification(std::string method, TNotificationHandler handler) {
  notifications_[std::move(method)] = std::move(handler);
}

void TDispatcher::SetGate(bool open, std::set<std::string> alwaysAllowed) {
  gateOpen_ = open;
  alwaysAllowed_.clear();
  for (auto& m : alwaysAllowed) alwaysAllowed_.insert(m);
}

json TDispatcher::ErrorResponse(const json& id, int code, std::string_view message) {
  return json{{"jsonrpc", "2.0"},
              {"id", id},
              {"error", {{"code", code}, {"message", std::string(message)}}}};
}

namespace {
// The binary subtype that marks a raw result; a client never sends binary values.
constexpr std::uint64_t kRawSubtype = 0x52;
}  // namespace

json TDispatcher::RawResult(std::string jsonText) {
  return json::binary(json::binary_t::container_type(jsonText.begin(), jsonText.end()),
                      kRawSubtype);
}

std::string TDispatcher::Serialize(const json& message) {
  const auto dump = [](const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
  };
  if (message.is_object()) {
    const auto result = message.find("result");
    if (result != message.end() && result->is_binary() && result->get_binary().has_subtype() &&
        result->get_binary().subtype() == kRawSubtype) {
      const auto& bytes = result->get_binary();
      std::string text =
          R"({"id":)" + dump(message.value("id", json())) + R"(,"jsonrpc":"2.0","result":)";
      text.append(bytes.begin(), bytes.end());
      text += '}';
      return text;
    }
  }
  return dump(message);
}

json TDispatcher::ResultResponse(const json& id, json result) {
  return json{{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}};
}

void TDispatcher::Cancel(const json& id) {
  if (!IsValidId(id)) return;
  std::lock_guard<std::mutex> hold(cancelLock_);
  // A cancel for a request already answered is never taken out again; clients send few,
  // so a bound on the set is all the housekeeping it needs.
  if (cancelled_.size() >= kMaxCancelled) cancelled_.clear();
  cancelled_.insert(id.dump());
}

bool TDispatcher::TakeCancelled(const json& id) {
  std::lock_guard<std::mutex> hold(cancelLock_);
  return cancelled_.erase(id.dump()) > 0;
}

std::optional<json> TDispatcher::Handle(std::string_view body) {
  json message = json::parse(body.begin(), body.end(), nullptr, /*allow_exceptions=*/false);
  if (message.is_discarded()) {
    Log("message is not JSON");
    return ErrorResponse(nullptr, kParseError, "Parse error");
  }
  return HandleMessage(message);
}

std::optional<json> TDispatcher::HandleMessage(const json& message) {
  if (!message.is_object()) return ErrorResponse(nullptr, kInvalidRequest, "Invalid request");
  const auto idIt = message.find("id");
  const bool hasId = idIt != message.end();
  const json id = hasId ? *idIt : json();
  const auto methodIt = message.find("method");

  if (methodIt == message.end()) {
    // An answer to one of the server's own requests.
    const auto result = message.find("result");
    const auto error = message.find("error");
    if (hasId && (result != message.end() || error != message.end())) {
      if (response_)
        response_(id, result != message.end() ? &*result : nullptr,
                  error != message.end() ? &*error : nullptr);
      return std::nullopt;
    }
    return ErrorResponse(hasId && IsValidId(id) ? id : json(nullptr), kInvalidRequest,
                         "Invalid request");
  }
  if (!methodIt->is_string() || (hasId && !IsValidId(id)))
    return hasId ? std::optional<json>(ErrorResponse(IsValidId(id) ? id : json(nullptr),
                                                     kInvalidRequest, "Invalid request"))
                 : std::nullopt;

  const std::string& method = methodIt->get_ref<const std::string&>();
  static const json kNoParams = json::object();
  const auto paramsIt = message.find("params");
  const json& params = paramsIt != message.end() ? *paramsIt : kNoParams;
  const bool allowed = gateOpen_ || alwaysAllowed_.count(method) > 0;

  if (!hasId) {
    if (!allowed) return std::nullopt;
    const auto it = notifications_.find(method);
    if (it == notifications_.end()) return std::nullopt;  // "$/..." and the like
    try {
      it->second(params);
    } catch (const std::exception& e) {
      Log(method + ": " + e.what());
    }
    return std::nullopt;
  }

  if (TakeCancelled(id)) return ErrorResponse(id, kRequestCancelled, "Request cancelled");
  if (!allowed) return ErrorResponse(id, kServerNotInitialized, "Server not initialized");
  const auto it = requests_.find(method);
  if (it == requests_.end())
    return ErrorResponse(id, kMethodNotFound, "Method not found: " + method);
  try {
    return ResultResponse(id, it->second(params));
  } catch (const TLspError& e) {
    return ErrorResponse(id, e.Code, e.Message);
  } catch (const json::exception& e) {
    // A parameter missing or of the wrong type: the handlers read params as they expect
    // them and let the library say what did not fit.
    return ErrorResponse(id, kInvalidParams, std::string("Invalid params: ") + e.what());
  } catch (const std::exception& e) {
    Log(method + ": " + e.what());
    return ErrorResponse(id, kInternalError, e.what());
  }
}

}  // namespace velmora::lsp
