#include "support/paths.h"

#include <dirent.h>
#include <sys/stat.h>

#include "support/ansi.h"

namespace velmora {

std::string_view ExtractFileName(std::string_view path) {
  for (size_t i = path.size(); i > 0; --i)
    if (IsPathSeparator(path[i - 1])) return path.substr(i);
  return path;
}

std::string_view ExtractFilePath(std::string_view path) {
  return path.substr(0, path.size() - ExtractFileName(path).size());
}

std::string_view ExtractFileExt(std::string_view path) {
  const std::string_view name = ExtractFileName(path);
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot);
}

std::string ToPosixSeparators(std::string_view name) {
  std::string s(name);
  for (char& c : s)
    if (c == '\\') c = '/';
  return s;
}

std::string JoinPath(std::string_view dir, std::string_view name) {
  if (dir.empty()) return std::string(name);
  std::string s(dir);
  if (!IsPathSeparator(s.back())) s += '/';
  while (!name.empty() && IsPathSeparator(name.front())) name.remove_prefix(1);
  s += name;
  return s;
}

bool FileExists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool DirectoryExists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

namespace {

// The entry of `dir` whose name equals `name` ignoring case, or "".
std::string FindEntryIgnoringCase(const std::string& dir, std::string_view name) {
  DIR* d = ::opendir(dir.empty() ? "." : dir.c_str());
  if (!d) return {};
  std::string found;
  while (const dirent* e = ::readdir(d)) {
    if (SameText(e->d_name, name)) {
      found = e->d_name;
      break;
    }
  }
  ::closedir(d);
  return found;
}

}  // namespace

std::string ResolveExistingFile(std::string_view path) {
  std::string posix = ToPosixSeparators(path);
  if (posix.empty()) return {};
  if (FileExists(posix)) return posix;

  // Walk the components, keeping those that exist as written and matching the rest
  // against their directory's listing.
  std::string resolved = posix.front() == '/' ? "/" : "";
  size_t start = posix.front() == '/' ? 1 : 0;
  while (start <= posix.size()) {
    size_t end = posix.find('/', start);
    if (end == std::string::npos) end = posix.size();
    const std::string_view part(posix.data() + start, end - start);
    const bool last = end == posix.size();
    if (!part.empty()) {
      std::string candidate = resolved + std::string(part);
      struct stat st;
      if (part == "." || part == ".." || ::stat(candidate.c_str(), &st) != 0) {
        if (part != "." && part != "..") {
          const std::string entry = FindEntryIgnoringCase(resolved, part);
          if (entry.empty()) return {};
          candidate = resolved + entry;
        }
      }
      resolved = last ? candidate : candidate + "/";
    }
    start = end + 1;
  }
  return FileExists(resolved) ? resolved : std::string();
}

std::string ResolveIncludeFile(std::string_view name, std::string_view includingDir,
                               const std::vector<std::string>& searchPath) {
  if (name.empty()) return {};
  const bool hasDriveLetter =
      name.size() >= 2 && name[1] == ':' &&
      ((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= 'a' && name[0] <= 'z'));
  if (hasDriveLetter) return ResolveExistingFile(name);
  if (IsPathSeparator(name.front())) {
    // Rooted on the including file's drive. A tree written on Windows has been copied into
    // some folder here, so its drive is the file system root or one of the including
    // folder's ancestors: try them outermost first (a relative folder starts from the
    // current one). This also takes an absolute POSIX name as it stands.
    std::string_view rest = name;
    while (!rest.empty() && IsPathSeparator(rest.front())) rest.remove_prefix(1);
    if (std::string r = ResolveExistingFile("/" + std::string(rest)); !r.empty()) return r;
    const bool relative = includingDir.empty() || !IsPathSeparator(includingDir.front());
    if (relative)
      if (std::string r = ResolveExistingFile(rest); !r.empty()) return r;
    for (size_t i = relative ? 0 : 1; i < includingDir.size(); ++i) {
      if (!IsPathSeparator(includingDir[i])) continue;
      if (std::string r = ResolveExistingFile(JoinPath(includingDir.substr(0, i + 1), rest));
          !r.empty())
        return r;
    }
  } else if (std::string r = ResolveExistingFile(JoinPath(includingDir, name)); !r.empty()) {
    return r;
  }
  for (const std::string& dir : searchPath)
    if (std::string r = ResolveExistingFile(JoinPath(dir, name)); !r.empty()) return r;
  return {};
}

}  // namespace velmora
