// The command line's shared rules: exit codes, the one error style ("velmora: ..." on one
// line of standard error), the main job when no command is named, and the nearest command
// to one that does not exist.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::app {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

/// Ends a command: main prints "velmora: " and the message (when there is one) and exits
/// with the code.
class TCommandError : public std::runtime_error {
 public:
  TCommandError(std::string message, int code = kExitFailed)
      : std::runtime_error(std::move(message)), code_(code) {}
  int Code() const { return code_; }

 private:
  int code_;
};

/// Levenshtein distance: insertions, deletions and substitutions cost one.
int EditDistance(std::string_view a, std::string_view b);
/// The candidate with the smallest distance to `name` (the first of equals); "" when none.
std::string NearestName(std::string_view name, const std::vector<std::string>& candidates);

/// The arguments as the parser should see them: with no command named, the main job
/// ("tree") goes first, so `velmora`, `velmora PROJECT` and `velmora --json` run it. A
/// first word that is neither a command, an option nor a path throws TCommandError
/// (usage) naming the nearest command.
std::vector<std::string> WithMainJob(std::vector<std::string> args,
                                     const std::vector<std::string>& commands);

/// Where the bundled example project is: under the install prefix beside the executable,
/// else in the source tree the build came from. "" when neither has it.
std::string DefaultProjectPath();

}  // namespace velmora::app
