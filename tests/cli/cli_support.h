// Running the velmora command the way a user does: in a folder of one's own (paths in the
// output are relative to it), with a private settings and data folder, on a copy of the
// example project so no test writes into the source tree.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora::cli {

struct TCliRun {
  int ExitCode = -1;  ///< -1 when it did not exit normally (or was killed after the limit)
  std::string Out;
  std::string Err;
};

/// Runs velmora with `args` in `dir`; settings and data go to `dir`.home.
TCliRun RunIn(const std::filesystem::path& dir, const std::vector<std::string>& args,
              int seconds = 60);
/// The same with another velmora executable (an installed copy, say).
TCliRun RunProgramIn(const std::string& program, const std::filesystem::path& dir,
                     const std::vector<std::string>& args, int seconds = 60);

/// Copies the example projects (examples/ of the source tree, saved class information
/// left out) into `dir`.
void CopyExamples(const std::filesystem::path& dir);

/// Sets a file's modification time `seconds` from now, as an editor's save a little later
/// would (file dates have whole seconds).
void TouchLater(const std::filesystem::path& file, int seconds);

/// A velmora that keeps running (watch): its output goes to files under `dir`.
class TBackgroundRun {
 public:
  TBackgroundRun(const std::filesystem::path& dir, const std::vector<std::string>& args);
  ~TBackgroundRun();
  TBackgroundRun(const TBackgroundRun&) = delete;
  TBackgroundRun& operator=(const TBackgroundRun&) = delete;

  /// Waits until standard output (or standard error) holds `text`; false after `limit`.
  bool WaitForOut(const std::string& text, std::chrono::milliseconds limit);
  bool WaitForErr(const std::string& text, std::chrono::milliseconds limit);
  std::string Out() const;
  std::string Err() const;
  /// Sends SIGINT and waits for the exit; the exit code, -1 when it did not exit in time.
  int Interrupt(int seconds = 30);

 private:
  bool WaitFor(const std::filesystem::path& file, const std::string& text,
               std::chrono::milliseconds limit) const;
  std::filesystem::path out_, err_;
  pid_t pid_ = -1;
};

}  // namespace velmora::cli
