// The include walk of a parse job: from a root file through every file it includes,
// transitively, in the order the parser threads have always taken (the alphabetically
// first waiting name next). It is the only walker: the parse queue runs it with a parse
// per step, `velmora dump` with parses made beforehand on every core.
//
// Threads: a walk is local to the thread that runs it; the step is called on that thread.
#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "support/stringlist.h"

namespace velmora {

/// Resolves include names against the including file's folder, then the include path in
/// its order, and gives one spelling per file (the first seen) so that `a.h`, `./a.h` and
/// a path through a symbolic link are one file.
class TIncludeResolver {
 public:
  explicit TIncludeResolver(std::vector<std::string> includePath)
      : includePath_(std::move(includePath)) {}
  /// The existing file `name` stands for, seen from `includingFile`, or empty.
  std::string Resolve(const std::string& name, const std::string& includingFile);
  /// The spelling that stands for the file `path` names in this walk.
  std::string Spelling(const std::string& path);

 private:
  std::vector<std::string> includePath_;
  std::vector<std::pair<std::pair<unsigned long, unsigned long>, std::string>> spellings_;
};

struct TIncludeWalk {
  /// Every file reached besides the root, in name order: what the root's include entry
  /// lists.
  std::vector<std::string> Reached;
  bool Stopped = false;  ///< the stop token ended the walk early
};

/// Parses (or takes) one file: returns the include names its parser reported, or null
/// when the file was not parsed (missing, unreadable); its includes are then not followed.
using TWalkStep = std::function<const std::vector<std::string>*(const std::string& path)>;

/// Walks from `root`: each waiting name not in `knownFiles` goes to `step`; the names it
/// reports are resolved and wait their turn unless reached already. The root never
/// counts as reached, so a file that includes it has it taken once more (but a root that
/// names itself is not). `stop` is looked at between files.
TIncludeWalk WalkIncludes(const std::string& root, TIncludeResolver& resolver,
                          const TStringList& knownFiles, const TWalkStep& step,
                          std::stop_token stop = {});

}  // namespace velmora
