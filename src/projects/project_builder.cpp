#include "projects/project_builder.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

// Macros whose values name other macros are expanded again up to this depth, so that a
// macro defined in terms of itself ends instead of growing.
constexpr int kMaxMacroDepth = 8;

// No path, define or unit name comes near this; an expansion that grows past it is a
// macro built to multiply itself.
constexpr size_t kMaxExpandedSize = 1u << 20;

// A project file of this size is not one a user wrote or an IDE saved.
constexpr std::uintmax_t kMaxProjectFileSize = 64u << 20;

bool HasExtension(std::string_view path, std::initializer_list<std::string_view> extensions) {
  const std::string_view ext = ExtractFileExt(path);
  return std::any_of(extensions.begin(), extensions.end(),
                     [&](std::string_view e) { return SameText(ext, e); });
}

bool IsDirectory(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string EntryIgnoringCase(const std::string& dir, std::string_view name) {
  DIR* d = ::opendir(dir.c_str());
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

bool HasDriveLetter(std::string_view name) {
  return name.size() >= 2 && name[1] == ':' &&
         ((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= 'a' && name[0] <= 'z'));
}

}  // namespace

std::optional<std::string> EnvironmentMacro(std::string_view name) {
  const char* value = std::getenv(std::string(name).c_str());
  if (!value) return std::nullopt;
  return std::string(value);
}

std::vector<std::string_view> SplitList(std::string_view list, char separator) {
  std::vector<std::string_view> out;
  size_t start = 0;
  while (start <= list.size()) {
    size_t end = list.find(separator, start);
    if (end == std::string_view::npos) end = list.size();
    const std::string_view part = Trim(list.substr(start, end - start));
    if (!part.empty()) out.push_back(part);
    start = end + 1;
  }
  return out;
}

std::string NormalPath(std::string_view path) {
  std::error_code ec;
  std::filesystem::path p(ToPosixSeparators(path));
  if (p.is_relative()) p = std::filesystem::current_path(ec) / p;
  std::string s = p.lexically_normal().string();
  // A folder keeps no trailing separator, so that the same folder compares equal however
  // it was written.
  while (s.size() > 1 && s.back() == '/') s.pop_back();
  return s;
}

std::string ResolveDirectory(std::string_view path) {
  std::string posix = ToPosixSeparators(path);
  if (posix.empty()) return {};
  if (IsDirectory(posix)) return posix;
  std::string resolved = posix.front() == '/' ? "/" : "";
  size_t start = posix.front() == '/' ? 1 : 0;
  while (start <= posix.size()) {
    size_t end = posix.find('/', start);
    if (end == std::string::npos) end = posix.size();
    const std::string part = posix.substr(start, end - start);
    if (!part.empty()) {
      std::string candidate = resolved + part;
      if (part != "." && part != ".." && !IsDirectory(candidate)) {
        const std::string entry = EntryIgnoringCase(resolved.empty() ? "." : resolved, part);
        if (entry.empty()) return {};
        candidate = resolved + entry;
      }
      resolved = candidate + "/";
    }
    start = end + 1;
  }
  return IsDirectory(resolved) ? resolved : std::string();
}

bool IsCppSourceName(std::string_view path) {
  return HasExtension(path, {".cpp", ".cxx", ".cc", ".c"});
}
bool IsCppHeaderName(std::string_view path) {
  return HasExtension(path, {".h", ".hpp", ".hxx"});
}
bool IsPascalSourceName(std::string_view path) {
  return HasExtension(path, {".pas", ".pp", ".p", ".lpr", ".dpr"});
}

std::string ReadProjectFile(const std::string& path) {
  const std::string name(ExtractFileName(path));
  if (IsDirectory(path))
    throw EProjectError("cannot read project \"" + name + "\": it is a folder");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw EProjectError("cannot open project file \"" + path + "\"");
  std::error_code ec;
  const std::uintmax_t size = std::filesystem::file_size(path, ec);
  if (!ec && size > kMaxProjectFileSize)
    throw EProjectError("project file \"" + name + "\" is too large to be a project (" +
                        std::to_string(size) + " bytes)");
  std::string text;
  char block[65536];
  while (in.read(block, sizeof block) || in.gcount() > 0) {
    text.append(block, static_cast<size_t>(in.gcount()));
    if (text.size() > kMaxProjectFileSize)
      throw EProjectError("project file \"" + name + "\" is too large to be a project");
  }
  if (in.bad()) throw EProjectError("cannot read project file \"" + path + "\"");
  // Later IDEs save with a UTF-8 byte-order mark; no reader wants to see it.
  if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) text.erase(0, 3);
  return text;
}

TProjectBuilder::TProjectBuilder(const std::string& projectPath, TProjectKind kind) {
  project_.FileName = NormalPath(projectPath);
  project_.Kind = kind;
  const std::string_view name = ExtractFileName(project_.FileName);
  if (kind == TProjectKind::Folder) {
    project_.Name = std::string(name);
    dir_ = project_.FileName;
  } else {
    const std::string_view ext = ExtractFileExt(name);
    project_.Name = std::string(name.substr(0, name.size() - ext.size()));
    dir_ = std::string(ExtractFilePath(project_.FileName));
  }
  if (dir_.empty() || dir_.back() != '/') dir_ += '/';
}

void TProjectBuilder::Warn(std::string line) {
  if (std::find(project_.Warnings.begin(), project_.Warnings.end(), line) ==
      project_.Warnings.end())
    project_.Warnings.push_back(std::move(line));
}

std::optional<std::string> TProjectBuilder::Expand(std::string_view text,
                                                   const TMacroLookup& macros) {
  std::string current(text);
  for (int depth = 0; depth < kMaxMacroDepth; ++depth) {
    if (current.find("$(") == std::string::npos) return current;
    std::string out;
    size_t pos = 0;
    while (pos < current.size()) {
      const size_t open = current.find("$(", pos);
      if (open == std::string::npos) break;
      const size_t close = current.find(')', open + 2);
      if (close == std::string::npos) break;  // a lone "$(" is text
      out.append(current, pos, open - pos);
      const std::string name = current.substr(open + 2, close - open - 2);
      const std::optional<std::string> value = macros ? macros(name) : std::nullopt;
      if (!value) {
        auto it = std::find_if(unknownMacros_.begin(), unknownMacros_.end(),
                               [&](const auto& m) { return m.first == name; });
        if (it == unknownMacros_.end())
          unknownMacros_.emplace_back(name, 1);
        else
          ++it->second;
        return std::nullopt;
      }
      out += *value;
      pos = close + 1;
      if (out.size() > kMaxExpandedSize) {
        Warn("macros in \"" + std::string(text.substr(0, 80)) + "\" grow without end; left out");
        return std::nullopt;
      }
    }
    out.append(current, pos);
    if (out == current) return current;
    current = std::move(out);
  }
  if (current.find("$(") != std::string::npos) {
    Warn("macros nested too deeply in \"" + std::string(text.substr(0, 80)) + "\"; left out");
    return std::nullopt;
  }
  return current;
}

bool TProjectBuilder::AddUnit(std::string_view name, const TMacroLookup& macros,
                              std::string_view header) {
  const std::optional<std::string> expanded = Expand(Trim(name), macros);
  if (!expanded) return false;
  if (expanded->empty()) return false;
  std::string found;
  if (!HasDriveLetter(*expanded)) found = ResolveIncludeFile(*expanded, dir_, {});
  if (found.empty() || !FileExists(found)) {
    // Written twice in different letter case or with other separators, it is still one
    // missing unit, reported once.
    const std::string key = AnsiUpperCase(NormalPath(JoinPath(dir_, ToPosixSeparators(*expanded))));
    if (missingUnits_.insert(key).second)
      Warn("unit not found: \"" + std::string(Trim(name)) + "\"");
    return false;
  }
  if (!header.empty() && IsCppHeaderName(header) && !HasDriveLetter(header)) {
    const std::string headerFile = ResolveIncludeFile(Trim(header), dir_, {});
    if (!headerFile.empty() && FileExists(headerFile)) {
      AddExistingUnit(found, headerFile);
      return true;
    }
  }
  AddExistingUnit(found);
  return true;
}

void TProjectBuilder::AddExistingUnit(const std::string& path) {
  std::string header;
  if (IsCppSourceName(path)) {
    const std::string_view ext = ExtractFileExt(path);
    const std::string stem = path.substr(0, path.size() - ext.size());
    for (const char* h : {".h", ".hpp", ".hxx"}) {
      header = ResolveExistingFile(stem + h);
      if (!header.empty()) break;
    }
  }
  AddExistingUnit(path, header);
}

void TProjectBuilder::AddExistingUnit(const std::string& path, const std::string& header) {
  TProjectUnit unit;
  unit.FileName = NormalPath(path);
  if (!unitFiles_.insert(unit.FileName).second) return;
  if (!header.empty()) unit.Header = NormalPath(header);
  project_.Units.push_back(std::move(unit));
}

void TProjectBuilder::AddFolders(std::string_view list, const TMacroLookup& macros,
                                 std::vector<std::string>& target) {
  for (std::string_view element : SplitList(list)) {
    // Quotes protect spaces on a command line; the folder is what is inside them.
    std::string unquoted(element);
    std::erase(unquoted, '"');
    const std::optional<std::string> expanded = Expand(Trim(unquoted), macros);
    if (!expanded || expanded->empty()) continue;
    std::string found;
    if (!HasDriveLetter(*expanded)) {
      const std::string posix = ToPosixSeparators(*expanded);
      found = ResolveDirectory(posix.front() == '/' ? posix : JoinPath(dir_, posix));
    }
    if (found.empty()) {
      Warn("folder not found: \"" + std::string(element) + "\"");
      continue;
    }
    std::string normal = NormalPath(found);
    if (std::find(target.begin(), target.end(), normal) == target.end())
      target.push_back(std::move(normal));
  }
}

void TProjectBuilder::AddIncludePath(std::string_view list, const TMacroLookup& macros) {
  AddFolders(list, macros, project_.IncludePath);
}

void TProjectBuilder::AddUnitSearchPath(std::string_view list, const TMacroLookup& macros) {
  AddFolders(list, macros, project_.UnitSearchPath);
}

void TProjectBuilder::AddDefine(std::string_view define) {
  define = Trim(define);
  if (define.empty() || define.find("$(") != std::string_view::npos) return;
  std::vector<std::string>& defines = project_.Defines;
  if (std::find(defines.begin(), defines.end(), define) == defines.end())
    defines.emplace_back(define);
}

void TProjectBuilder::AddDefines(std::string_view list) {
  for (std::string_view d : SplitList(list)) AddDefine(d);
}

TProject TProjectBuilder::Finish() {
  for (const auto& [name, count] : unknownMacros_)
    Warn("$(" + name + ") is not set: " + std::to_string(count) +
         (count == 1 ? " entry that uses it is" : " entries that use it are") + " left out");
  return std::move(project_);
}

}  // namespace velmora::projects
