#include "hosts/lsp/server.h"

#include <thread>

namespace velmora::lsp {
namespace {

TPositionEncoding ChooseEncoding(const json& capabilities) {
  // utf-16 unless the client offers utf-8: no conversion is cheaper than the one that
  // needs none, and the protocol makes utf-16 the one every client must accept.
  const json* encodings = nullptr;
  if (const auto general = capabilities.find("general");
      general != capabilities.end() && general->is_object()) {
    if (const auto it = general->find("positionEncodings"); it != general->end()) encodings = &*it;
  }
  if (encodings && encodings->is_array())
    for (const json& e : *encodings)
      if (e == "utf-8") return TPositionEncoding::Utf8;
  return TPositionEncoding::Utf16;
}

// A value of nested objects by a dotted path, or null when any part is missing.
const json* Dig(const json& root, std::initializer_list<const char*> path) {
  const json* at = &root;
  for (const char* key : path) {
    if (!at->is_object()) return nullptr;
    const auto it = at->find(key);
    if (it == at->end()) return nullptr;
    at = &*it;
  }
  return at;
}

bool IsTrue(const json& root, std::initializer_list<const char*> path) {
  const json* v = Dig(root, path);
  return v && v->is_boolean() && v->get<bool>();
}

TLspPosition PositionOf(const json& p) {
  return {p.at("line").get<int>(), p.at("character").get<int>()};
}

}  // namespace

TLspServer::TLspServer(TServerOptions options, TFrameWriter& out)
    : options_(std::move(options)), out_(out) {
  dispatcher_.SetGate(false, {"initialize", "exit"});
  dispatcher_.OnLog([this](const std::string& text) { Log(1, text); });
  dispatcher_.OnResponse([this](const json& id, const json* result, const json*) {
    if (!id.is_number_integer()) return;
    const auto it = pending_.find(id.get<int>());
    if (it == pending_.end()) return;
    auto onAnswer = std::move(it->second);
    pending_.erase(it);
    if (onAnswer) onAnswer(result);
  });
  BindLifecycle();
  BindDocuments();
}

TLspServer::~TLspServer() = default;

void TLspServer::BindLifecycle() {
  dispatcher_.OnRequest("initialize", [this](const json& params) {
    if (initialized_) throw TLspError(kInvalidRequest, "initialize was already sent");
    return Initialize(params);
  });
  dispatcher_.OnNotification("initialized", [this](const json&) {
    if (OnInitialized) OnInitialized();
  });
  dispatcher_.OnRequest("shutdown", [this](const json&) {
    shutdownRequested_ = true;
    // After shutdown only exit is served.
    dispatcher_.SetGate(false, {"exit"});
    return json(nullptr);
  });
  dispatcher_.OnNotification("exit", [this](const json&) { Quit(shutdownRequested_ ? 0 : 1); });
}

void TLspServer::BindDocuments() {
  dispatcher_.OnNotification("textDocument/didOpen", [this](const json& params) {
    const json& doc = params.at("textDocument");
    const std::string uri = doc.at("uri").get<std::string>();
    if (!documents_.Open(uri, doc.value("languageId", ""), doc.value("version", 0),
                         doc.at("text").get<std::string>())) {
      Log(2, "not a local file: " + uri);
      return;
    }
    if (OnDocumentChanged) OnDocumentChanged(documents_.FindByUri(uri)->Path);
  });
  dispatcher_.OnNotification("textDocument/didChange", [this](const json& params) {
    const json& doc = params.at("textDocument");
    const std::string uri = doc.at("uri").get<std::string>();
    std::vector<TDocumentChange> changes;
    for (const json& c : params.at("contentChanges")) {
      TDocumentChange change;
      change.Text = c.at("text").get<std::string>();
      if (const auto range = c.find("range"); range != c.end() && range->is_object()) {
        change.From = PositionOf(range->at("start"));
        change.To = PositionOf(range->at("end"));
      }
      changes.push_back(std::move(change));
    }
    if (!documents_.Change(uri, doc.value("version", 0), changes, client_.Encoding)) {
      Log(2, "change to a document that is not open: " + uri);
      return;
    }
    if (OnDocumentChanged) OnDocumentChanged(documents_.FindByUri(uri)->Path);
  });
  dispatcher_.OnNotification("textDocument/didClose", [this](const json& params) {
    const std::string uri = params.at("textDocument").at("uri").get<std::string>();
    const std::string path = PathFromUri(uri);
    if (documents_.Close(uri) && OnDocumentChanged) OnDocumentChanged(path);
  });
}

json TLspServer::Initialize(const json& params) {
  const json& caps = params.contains("capabilities") ? params["capabilities"] : json::object();
  client_.Encoding = ChooseEncoding(caps);
  client_.HierarchicalSymbols =
      IsTrue(caps, {"textDocument", "documentSymbol", "hierarchicalDocumentSymbolSupport"});
  client_.WorkDoneProgress = IsTrue(caps, {"window", "workDoneProgress"});
  if (const json* info = Dig(params, {"clientInfo", "name"}); info && info->is_string())
    client_.Name = info->get<std::string>();
  if (const json* folders = Dig(params, {"workspaceFolders"}); folders && folders->is_array())
    for (const json& f : *folders)
      if (const json* uri = Dig(f, {"uri"}); uri && uri->is_string())
        if (std::string path = PathFromUri(uri->get<std::string>()); !path.empty())
          client_.RootFolders.push_back(std::move(path));
  if (client_.RootFolders.empty()) {
    if (const json* uri = Dig(params, {"rootUri"}); uri && uri->is_string()) {
      if (std::string path = PathFromUri(uri->get<std::string>()); !path.empty())
        client_.RootFolders.push_back(std::move(path));
    } else if (const json* root = Dig(params, {"rootPath"}); root && root->is_string()) {
      client_.RootFolders.push_back(root->get<std::string>());
    }
  }
  if (const json* project = Dig(params, {"initializationOptions", "project"});
      project && project->is_string())
    client_.ProjectOption = project->get<std::string>();

  json capabilities = {
      {"positionEncoding", std::string(EncodingName(client_.Encoding))},
      {"textDocumentSync",
       {{"openClose", true}, {"change", 2}, {"save", {{"includeText", false}}}}},
  };
  if (AddCapabilities) AddCapabilities(capabilities);
  initialized_ = true;
  dispatcher_.SetGate(true, {});
  return {{"capabilities", std::move(capabilities)},
          {"serverInfo", {{"name", "velmora"}, {"version", VELMORA_VERSION}}}};
}

void TLspServer::Post(std::function<void()> task) {
  {
    std::lock_guard<std::mutex> hold(inbox_->Lock);
    inbox_->Queue.emplace_back(std::move(task));
  }
  inbox_->Ready.notify_one();
}

void TLspServer::Notify(std::string_view method, json params) {
  out_.Send(json{{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}}.dump(
      -1, ' ', false, json::error_handler_t::replace));
}

void TLspServer::Request(std::string_view method, json params,
                         std::function<void(const json*)> onAnswer) {
  const int id = nextRequestId_++;
  pending_[id] = std::move(onAnswer);
  out_.Send(
      json{{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(params)}}.dump(
          -1, ' ', false, json::error_handler_t::replace));
}

void TLspServer::Log(int type, std::string_view text) {
  Notify("window/logMessage", {{"type", type}, {"message", std::string(text)}});
}

void TLspServer::Quit(int code) {
  if (!exitCode_) exitCode_ = code;
}

void TLspServer::Handle(const json& message) {
  const std::optional<json> answer = dispatcher_.HandleMessage(message);
  // Source files are not always UTF-8: a name in Windows-1252 must not stop the answer.
  if (answer) out_.Send(TDispatcher::Serialize(*answer));
}

// Reads the client until its input ends. A cancel overtakes the request it names when that
// request still waits in the queue; one already answered, or being answered, is too late.
void TLspServer::ReadClient(TFrameReader& in, const std::shared_ptr<TInbox>& inbox,
                            const std::function<void(std::string)>& logDamage) {
  std::string body, error;
  for (;;) {
    const TFrameStatus status = in.Next(body, error);
    if (status == TFrameStatus::End) break;
    if (status == TFrameStatus::BadHeader) {
      logDamage(error);
      continue;
    }
    // A body that is no JSON is queued as it parsed (discarded) and answered in turn.
    json message = json::parse(body, nullptr, false);
    std::lock_guard<std::mutex> hold(inbox->Lock);
    if (message.is_object() && message.value("method", "") == "$/cancelRequest") {
      const json* id = Dig(message, {"params", "id"});
      if (!id) continue;
      for (TQueued& queued : inbox->Queue) {
        json* waiting = std::get_if<json>(&queued);
        if (waiting && waiting->is_object() && waiting->contains("method") &&
            waiting->value("id", json()) == *id) {
          queued = TCancelled{*id};
          break;
        }
      }
      continue;
    }
    inbox->Queue.emplace_back(std::move(message));
    inbox->Ready.notify_one();
  }
  std::lock_guard<std::mutex> hold(inbox->Lock);
  inbox->InputEnded = true;
  inbox->Ready.notify_one();
}

int TLspServer::Run(std::shared_ptr<TFrameReader> in) {
  std::shared_ptr<TInbox> inbox = inbox_;
  // The task that logs a damaged header runs only on the main loop, so only while the
  // server is there; the reader itself never touches the server.
  std::thread reader([this, in, inbox] {
    ReadClient(*in, inbox, [this, inbox](std::string error) {
      std::lock_guard<std::mutex> hold(inbox->Lock);
      inbox->Queue.emplace_back(
          std::function<void()>([this, error] { Log(1, "damaged message header: " + error); }));
      inbox->Ready.notify_one();
    });
  });

  while (!exitCode_) {
    TQueued next;
    {
      std::unique_lock<std::mutex> hold(inbox->Lock);
      inbox->Ready.wait(hold, [&] { return !inbox->Queue.empty() || inbox->InputEnded; });
      if (inbox->Queue.empty()) break;  // the client went away without "exit"
      next = std::move(inbox->Queue.front());
      inbox->Queue.pop_front();
    }
    if (auto* message = std::get_if<json>(&next)) {
      if (message->is_discarded())
        out_.Send(TDispatcher::ErrorResponse(nullptr, kParseError, "Parse error").dump());
      else
        Handle(*message);
    } else if (auto* task = std::get_if<std::function<void()>>(&next)) {
      if (*task) (*task)();
    } else if (auto* cancelled = std::get_if<TCancelled>(&next)) {
      out_.Send(
          TDispatcher::ErrorResponse(cancelled->Id, kRequestCancelled, "Request cancelled").dump());
    }
  }
  // A client that sent "exit" closes its end next, and the reader ends with it. One that
  // keeps it open leaves the reader blocked in a read that only the process's end stops;
  // it holds the inbox itself, so it is let go.
  bool ended;
  {
    std::lock_guard<std::mutex> hold(inbox->Lock);
    ended = inbox->InputEnded;
  }
  if (ended)
    reader.join();
  else
    reader.detach();
  return exitCode_.value_or(1);
}

}  // namespace velmora::lsp
