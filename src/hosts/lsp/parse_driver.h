// How files reach the language server's model: a parse driver parses a file (from disk, or
// from the text of an open document) into a class list of its own and hands the result
// back. The server merges results on its main loop, so a request always sees whole parses
// and never waits for one.
//
// The driver is the one seam between the server and the parse machinery: the threaded
// driver here has one worker of its own; the add-in's manager, when the server drives it,
// takes its place without the requests noticing.
//
// Threads: Parse, CancelPending and the destructor are called from the main thread; the deliver
// function runs on the worker (threaded driver) or inside Parse (inline driver).
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "model/class_list.h"

namespace velmora::lsp {

/// One finished parse of one file.
struct TParsedFile {
  std::string Path;
  uint64_t Generation = 0;  ///< as asked; the model drops a result older than it holds
  bool Ok = false;
  std::string Error;  ///< why the file could not be read, when !Ok
  std::unique_ptr<TClasslist> Classes;
  std::vector<int32_t> LineStarts;  ///< byte offset of each line in the buffer form
};

/// Parses `path` now on the calling thread: `text` (as the client holds it) when given,
/// else the file on disk.
TParsedFile ParseFileForModel(const std::string& path, const std::optional<std::string>& text,
                              uint64_t generation);

class TParseDriver {
 public:
  using TDeliver = std::function<void(TParsedFile)>;
  virtual ~TParseDriver() = default;
  /// Asks for a parse of `path` after `delay`; a request for the same path that has not
  /// started yet is replaced (the debounce of an editing client).
  virtual void Parse(std::string path, std::optional<std::string> text, uint64_t generation,
                     std::chrono::milliseconds delay) = 0;
  /// Drops every request that has not started.
  virtual void CancelPending() = 0;
  /// Blocks until nothing is queued or running (tests and benchmarks only).
  virtual void WaitIdle() = 0;
};

/// Parses inside Parse and delivers at once: for tests that want a model without threads.
class TInlineParseDriver : public TParseDriver {
 public:
  explicit TInlineParseDriver(TDeliver deliver) : deliver_(std::move(deliver)) {}
  void Parse(std::string path, std::optional<std::string> text, uint64_t generation,
             std::chrono::milliseconds delay) override;
  void CancelPending() override {}
  void WaitIdle() override {}

 private:
  TDeliver deliver_;
};

/// One worker thread that takes the due requests in order of their due time.
class TThreadParseDriver : public TParseDriver {
 public:
  explicit TThreadParseDriver(TDeliver deliver);
  ~TThreadParseDriver() override;
  void Parse(std::string path, std::optional<std::string> text, uint64_t generation,
             std::chrono::milliseconds delay) override;
  void CancelPending() override;
  void WaitIdle() override;

 private:
  using TClock = std::chrono::steady_clock;
  struct TJob {
    std::string Path;
    std::optional<std::string> Text;
    uint64_t Generation = 0;
    TClock::time_point Due;
    uint64_t Order = 0;  ///< ties in Due keep the order of asking
  };
  void Work();

  TDeliver deliver_;
  std::mutex lock_;  // guards everything below
  std::condition_variable wake_;
  std::condition_variable idle_;
  std::map<std::string, TJob> pending_;  ///< by path: one request per file
  uint64_t nextOrder_ = 0;
  bool running_ = false;  ///< a job is being parsed
  bool stop_ = false;
  std::thread worker_;  // last: starts after everything it uses
};

}  // namespace velmora::lsp
