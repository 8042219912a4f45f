// The language server: the lifecycle of a session (initialize, initialized, shutdown,
// exit), the negotiated position encoding, the client's open documents, and the loop that
// runs every handler on one main thread.
//
// Threads: Run reads the client on a reader thread of its own, which only frames messages,
// honours "$/cancelRequest" at once and queues everything else; every handler, and every
// task given to Post, runs on the thread that called Run.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

#include "hosts/lsp/dispatcher.h"
#include "hosts/lsp/documents.h"
#include "hosts/lsp/positions.h"
#include "hosts/lsp/transport.h"

namespace velmora::lsp {

struct TServerOptions {
  /// The project named on the command line; empty to find one in the workspace root.
  std::string Project;
};

/// What the client said about itself at initialize.
struct TClientInfo {
  std::string Name;
  TPositionEncoding Encoding = TPositionEncoding::Utf16;
  bool HierarchicalSymbols = false;
  bool WorkDoneProgress = false;
  std::vector<std::string> RootFolders;
  std::string ProjectOption;  ///< initializationOptions.project
};

class TLspServer {
 public:
  TLspServer(TServerOptions options, TFrameWriter& out);
  ~TLspServer();

  /// Serves until the client sends "exit" or its input ends; the process's exit code:
  /// 0 after a shutdown request, 1 otherwise (as the protocol asks). The reader thread
  /// shares `in`: a client that sent "exit" but keeps its end open leaves that thread in a
  /// read, and it must not outlive what it reads from.
  int Run(std::shared_ptr<TFrameReader> in);

  /// Runs `task` on the main thread (from any thread).
  void Post(std::function<void()> task);

  /// Sends a notification to the client.
  void Notify(std::string_view method, json params);
  /// Sends a request to the client (main thread only); `onAnswer` runs on the main thread
  /// with the result (null on an error).
  void Request(std::string_view method, json params,
               std::function<void(const json* result)> onAnswer = {});
  /// window/logMessage (type 1 error, 2 warning, 3 info, 4 log).
  void Log(int type, std::string_view text);

  TDispatcher& Dispatcher() { return dispatcher_; }
  TDocumentStore& Documents() { return documents_; }
  const TClientInfo& Client() const { return client_; }

  /// Called on the main thread after "initialized": the host opens its project here.
  std::function<void()> OnInitialized;
  /// Called after a document was opened, changed or closed (path as the store keeps it).
  std::function<void(const std::string& path)> OnDocumentChanged;
  /// Capabilities the host adds to the initialize answer.
  std::function<void(json& capabilities)> AddCapabilities;

 private:
  /// A request the client cancelled while it waited in the queue: answered as cancelled.
  struct TCancelled {
    json Id;
  };
  using TQueued = std::variant<json, std::function<void()>, TCancelled>;
  /// What the reader thread shares with the main thread. Held by both, so that a reader
  /// still blocked in a read when the server is gone touches nothing freed.
  struct TInbox {
    std::mutex Lock;
    std::condition_variable Ready;
    std::deque<TQueued> Queue;
    bool InputEnded = false;
  };
  static void ReadClient(TFrameReader& in, const std::shared_ptr<TInbox>& inbox,
                         const std::function<void(std::string)>& logDamage);
  void BindLifecycle();
  void BindDocuments();
  json Initialize(const json& params);
  void Handle(const json& message);
  void Quit(int code);

  TServerOptions options_;
  TFrameWriter& out_;
  TDispatcher dispatcher_;
  TDocumentStore documents_;
  TClientInfo client_;

  std::shared_ptr<TInbox> inbox_ = std::make_shared<TInbox>();

  bool initialized_ = false;
  bool shutdownRequested_ = false;
  std::optional<int> exitCode_;
  int nextRequestId_ = 1;
  std::map<int, std::function<void(const json*)>> pending_;
};

}  // namespace velmora::lsp
