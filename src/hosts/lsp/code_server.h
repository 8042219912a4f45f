// The language server's code side: it opens the workspace's project in the background
// after "initialized", keeps the code model current (the project's files as they parse,
// open documents re-parsed as the client edits them, files changed on disk), reports the
// project's parse as progress, and answers the requests that read the model.
//
// Threads: everything here runs on the server's main loop, except the parse driver's
// worker and the project reader, which hand their results over through TLspServer::Post.
#pragma once

#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "hosts/lsp/code_model.h"
#include "hosts/lsp/parse_driver.h"
#include "hosts/lsp/server.h"

namespace velmora {
class TVLSettings;
}

namespace velmora::lsp {

/// The project to open for a workspace root: `option` when given (relative to the root),
/// else the one project file in the root (a `.dproj` beside its `.dpr` counts once), else
/// the root itself as a folder project.
std::string ChooseProject(const std::string& root, const std::string& option);

struct TCodeServerOptions {
  using TDriverFactory = std::function<std::unique_ptr<TParseDriver>(TParseDriver::TDeliver)>;
  /// Makes the parse driver, given the function that hands a result to the main loop;
  /// without one the files are parsed by a worker thread.
  TDriverFactory Driver;
  /// Everything on the main loop: the project read inside "initialized", each parse done
  /// and merged as it is asked for. For tests that want the whole model at the next
  /// message, without threads.
  bool Inline = false;
  /// The settings code generation follows; null for the user's own (their store, or the
  /// defaults when it cannot be read).
  const TVLSettings* Settings = nullptr;
};

class TCodeServer {
 public:
  /// Binds the requests and the document hooks of `server`.
  TCodeServer(TLspServer& server, TServerOptions options, TCodeServerOptions codeOptions = {});
  ~TCodeServer();
  TCodeServer(const TCodeServer&) = delete;
  TCodeServer& operator=(const TCodeServer&) = delete;

  const TCodeModel& Model() const { return model_; }
  TParseDriver& Driver() { return *driver_; }
  /// The project's file, once it is open ("" before).
  const std::string& ProjectFile() const { return projectFile_; }
  /// Blocks until the project is read (tests and benchmarks; not on the main loop when the
  /// driver is threaded, as the merges need the loop).
  void WaitProjectRead();

 private:
  void BindRequests();
  void OpenProject();
  void ProjectRead(std::string file, std::vector<std::string> parse,
                   std::vector<std::string> sources, std::vector<std::string> warnings);
  void Deliver(TParsedFile parsed);
  void Merged(TParsedFile parsed);
  void DocumentChanged(const std::string& path);
  void FilesChanged(const json& params);
  void Progress(const char* kind);
  /// The model of an open document, parsed now when the model has none.
  void EnsureParsed(const std::string& path);
  /// The WorkspaceEdit of a command (see code_actions.h); throws TLspError.
  json Edit(std::string_view command, const json& arguments);

  TLspServer& server_;
  TServerOptions options_;
  bool inline_;
  TCodeModel model_;
  std::unique_ptr<TVLSettings> ownSettings_;  ///< the user's, when none were given
  const TVLSettings* settings_;               ///< never null
  uint64_t generation_ = 0;                   ///< the last generation asked for
  std::string projectFile_;
  std::vector<std::string> sourceFiles_;  ///< the project's sources, in project order
  std::set<std::string> projectFiles_;
  /// The project's files still to come in before the progress ends.
  std::set<std::string> awaiting_;
  int total_ = 0;
  bool projectRead_ = false;  ///< ProjectRead has run
  int lastPercent_ = -1;
  bool progressOpen_ = false;    ///< the client created the token and "begin" went out
  bool progressWanted_ = false;  ///< progress is reported for the current load
  std::future<void> projectReader_;
  std::unique_ptr<TParseDriver> driver_;  // last: its worker stops before the rest goes
};

}  // namespace velmora::lsp
