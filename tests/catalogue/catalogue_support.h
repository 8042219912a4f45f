// What the catalogue of bad input needs around its tables: running the velmora command
// with a time limit and its output captured, a scratch folder per case, and a snapshot of
// a folder's files to prove that reading bad input changed nothing.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace velmora::catalogue {

struct TRunResult {
  int ExitCode = -1;      ///< -1 when the command did not exit normally
  int Signal = 0;         ///< the signal that ended it, if one did
  bool TimedOut = false;  ///< it was killed after the time limit: a hang
  std::string Out;
  std::string Err;
};

/// Runs the velmora binary of this build with `args`, the environment extended by `env`
/// ("NAME=value" entries), killing it after `seconds`.
TRunResult RunVelmora(const std::vector<std::string>& args,
                      const std::vector<std::string>& env = {}, int seconds = 120);

/// A fresh folder under the temporary directory, removed with everything in it at the end.
class TScratchDir {
 public:
  TScratchDir();
  ~TScratchDir();
  TScratchDir(const TScratchDir&) = delete;
  TScratchDir& operator=(const TScratchDir&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Every entry below `dir` with its contents: a file's bytes, a link's target, a folder's
/// or other file's kind. Two snapshots are equal when nothing was added, removed or
/// written.
std::map<std::string, std::string> Snapshot(const std::filesystem::path& dir);

void WriteFile(const std::filesystem::path& path, const std::string& bytes);
std::string ReadFile(const std::filesystem::path& path);

/// Every "{dir}" in `text` replaced by `dir`.
std::string Expand(std::string text, const std::filesystem::path& dir);

}  // namespace velmora::catalogue
