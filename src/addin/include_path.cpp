#include "addin/include_path.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "settings/ini_file.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {

namespace {

bool HasDrive(std::string_view entry) {
  return entry.size() >= 2 && entry[1] == ':' &&
         ((entry[0] >= 'A' && entry[0] <= 'Z') || (entry[0] >= 'a' && entry[0] <= 'z'));
}

/// `folder` as it exists on disk, each component that is missing as written matched
/// without regard to case; "" when some component matches nothing.
std::string ExistingFolder(const std::string& folder) {
  namespace fs = std::filesystem;
  if (DirectoryExists(folder)) return folder;
  fs::path result = fs::path(folder).root_path();
  for (const fs::path& part : fs::path(folder).relative_path()) {
    fs::path next = result / part;
    std::error_code ec;
    if (!fs::is_directory(next, ec)) {
      next.clear();
      for (const auto& entry : fs::directory_iterator(result, ec)) {
        if (entry.is_directory(ec) && SameText(entry.path().filename().string(), part.string())) {
          next = entry.path();
          break;
        }
      }
      if (next.empty()) return {};
    }
    result = std::move(next);
  }
  return result.generic_string();
}

bool StartsWithBcb(std::string_view entry) {
  return entry.size() >= 6 && SameText(entry.substr(0, 6), "$(BCB)");
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

std::string ResolveIncludeEntry(const std::string& entry, const std::string& projectDirectory,
                                const std::string& ideDirectory) {
  std::string path;
  if (HasDrive(entry) || (!entry.empty() && IsPathSeparator(entry[0]))) {
    path = entry;
  } else if (StartsWithBcb(entry)) {
    // "$(BCB)\Include" and "$(BCB)Include" both name a folder under the installation.
    std::string rest = entry.substr(6);
    while (!rest.empty() && IsPathSeparator(rest[0])) rest.erase(0, 1);
    path = JoinPath(ideDirectory, rest);
  } else {
    path = JoinPath(projectDirectory, entry);
  }
  std::string normal =
      std::filesystem::path(ToPosixSeparators(path)).lexically_normal().generic_string();
  while (normal.size() > 1 && normal.back() == '/') normal.pop_back();
  if (std::string existing = ExistingFolder(normal); !existing.empty()) return existing;
  return normal;
}

std::vector<std::string> ReadBprIncludePath(const std::string& projectFile,
                                            const std::string& ideDirectory) {
  std::vector<std::string> result;
  const std::string_view ext = ExtractFileExt(projectFile);
  const std::string bprName =
      std::string(projectFile.substr(0, projectFile.size() - ext.size())) + ".BPR";
  const std::string bpr = ResolveExistingFile(bprName);
  if (bpr.empty() || DirectoryExists(bpr)) return result;
  const TIniFile ini = TIniFile::Parse(ReadWholeFile(bpr));
  const std::string value(Trim(ini.ReadString("HistoryLists\\hlIncludePath", "Item0", "")));
  const std::string projectDirectory(ExtractFilePath(projectFile));
  size_t start = 0;
  while (start <= value.size()) {
    size_t end = value.find(';', start);
    if (end == std::string::npos) end = value.size();
    const std::string entry(Trim(std::string_view(value).substr(start, end - start)));
    start = end + 1;
    if (entry.empty()) continue;
    std::string folder = ResolveIncludeEntry(entry, projectDirectory, ideDirectory);
    if (std::find(result.begin(), result.end(), folder) == result.end())
      result.push_back(std::move(folder));
  }
  return result;
}

}  // namespace velmora
