// One parse job: a root file and everything it includes, parsed into values. The request
// names all the job needs, the result carries all it made; the job itself touches no
// shared state, so any thread may run it (the parse queue's workers, a parser thread).
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "parsing/file_parse.h"
#include "support/thread.h"

namespace velmora {

class TSourceProvider;

/// What the settings decide about a parse; the host fills it from its settings.
struct TParseJobOptions {
  /// Further attempts at a file whose load or parse failed, 100 ms apart.
  int RetryBudget = 2;
  /// Best effort: the queue's workers run at the priority they were started with.
  TThreadPriority Priority = TThreadPriority::Normal;
  /// Pascal only: whether the parser goes on past `implementation`.
  bool PascalOption = false;
  bool WantPositions = false;
};

struct TParseRequest {
  std::string RootFile;
  /// Folders tried in this order after the including file's own; which of two
  /// same-named headers wins is the user's choice.
  std::vector<std::string> IncludePath;
  /// Files already current: not parsed, their includes not followed.
  std::vector<std::string> KnownFiles;
  TParseJobOptions Options;
  /// Off: the root alone is parsed (its include names still come back in its parse).
  bool FollowIncludes = true;
  /// The parser for every file of the job; by default the one the root's name calls for.
  std::optional<TLanguage> Language = {};
  /// The caller's count for this root: a result older than one already merged is dropped.
  uint64_t Generation = 0;
  /// The caller's; handed back in the result, never used.
  void* Context = nullptr;
  /// The caller's own way to cancel; looked at between files.
  std::stop_token Stop = {};
};

struct TParseResult {
  std::string RootFile;
  uint64_t Generation = 0;
  void* Context = nullptr;
  /// In the order parsed. Every file is parsed by the root's language; a root that
  /// another file includes is parsed (and listed) twice.
  std::vector<TFileParse> Files;
  /// Every file reached besides the root, in name order, parsed or not.
  std::vector<std::string> Reached;
  /// Cancelled before its end: the merge ignores it.
  bool Cancelled = false;
};

/// What a job calls out to. MakeParseJobHooks gives the usual ones; tests and the parser
/// thread classes put their own in.
struct TParseJobHooks {
  std::function<bool(const std::string& path)> Exists;
  /// The whole text in buffer form; raises when it cannot be read.
  std::function<std::string(const std::string& path)> Load;
  /// Parses one loaded file.
  std::function<TFileParse(const std::string& path, std::string text)> Parse;
  /// Waits between two attempts at a file.
  std::function<void(std::chrono::milliseconds)> Pause;
};

/// Reads through `sources`, parses with the request's parser (the root's by default) and the
/// request's options, pauses on the wall clock unless `pause` is given.
TParseJobHooks MakeParseJobHooks(const TParseRequest& request, const TSourceProvider& sources,
                                 std::function<void(std::chrono::milliseconds)> pause = {});

/// Runs the job: the include walk from the root, each file loaded and parsed (tried again
/// RetryBudget times, then passed over silently; a missing file is passed over at once).
/// `stop` and request.Stop are looked at between files. Never throws.
TParseResult RunParseJob(const TParseRequest& request, const TParseJobHooks& hooks,
                         std::stop_token stop = {});

}  // namespace velmora
