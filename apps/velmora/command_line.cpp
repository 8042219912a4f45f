#include "command_line.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>

namespace velmora::app {

int EditDistance(std::string_view a, std::string_view b) {
  std::vector<int> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = static_cast<int>(j);
  for (size_t i = 1; i <= a.size(); ++i) {
    int diagonal = row[0];
    row[0] = static_cast<int>(i);
    for (size_t j = 1; j <= b.size(); ++j) {
      const int above = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
      diagonal = above;
    }
  }
  return row[b.size()];
}

std::string NearestName(std::string_view name, const std::vector<std::string>& candidates) {
  std::string best;
  int bestDistance = INT_MAX;
  for (const std::string& candidate : candidates) {
    const int d = EditDistance(name, candidate);
    if (d < bestDistance) {
      bestDistance = d;
      best = candidate;
    }
  }
  return best;
}

std::vector<std::string> WithMainJob(std::vector<std::string> args,
                                     const std::vector<std::string>& commands) {
  if (args.empty()) return {"tree"};
  const std::string& first = args.front();
  if (std::find(commands.begin(), commands.end(), first) != commands.end()) return args;
  if (first == "-h" || first == "--help" || first == "--version") return args;
  struct stat st;
  // An option of the main job, or a project: something that exists or is written as a
  // path. A missing project then gets its own clear message from the command.
  const bool looksLikePath = first.find_first_of("/.\\") != std::string::npos;
  if (first.starts_with("-") || looksLikePath || ::stat(first.c_str(), &st) == 0) {
    args.insert(args.begin(), "tree");
    return args;
  }
  throw TCommandError("unknown command '" + first + "'; did you mean '" +
                          NearestName(first, commands) + "'? (see velmora --help)",
                      kExitUsage);
}

std::string DefaultProjectPath() {
  namespace fs = std::filesystem;
  std::vector<fs::path> candidates;
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (!ec) candidates.push_back(exe.parent_path().parent_path() / "share/velmora/examples");
  candidates.emplace_back(VELMORA_EXAMPLES_DIR);
  for (const fs::path& dir : candidates) {
    const fs::path project = dir / "KilnLog/KilnLog.bpr";
    if (fs::exists(project, ec)) return project.string();
  }
  return {};
}

}  // namespace velmora::app
