// File names as projects written on Windows spell them: `\` and `/` both separate, and a
// name that does not exist as written is looked up without regard to case, one path
// component at a time.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora {

inline bool IsPathSeparator(char c) {
  return c == '/' || c == '\\';
}

/// The part after the last separator.
std::string_view ExtractFileName(std::string_view path);
/// Everything up to and including the last separator ("" when there is none).
std::string_view ExtractFilePath(std::string_view path);
/// The extension with its dot (".cpp"), or "" when the file name has none.
std::string_view ExtractFileExt(std::string_view path);
/// `name` with every `\` turned into `/`.
std::string ToPosixSeparators(std::string_view name);
/// `dir` and `name` joined with one `/` (`dir` may end in a separator or be empty).
std::string JoinPath(std::string_view dir, std::string_view name);

bool FileExists(const std::string& path);
bool DirectoryExists(const std::string& path);

/// The existing file that `path` names: as written (with `/` for `\`), or else with each
/// component matched case-insensitively against the directory listing. Empty when there
/// is none.
std::string ResolveExistingFile(std::string_view path);

/// Looks `name` up beside `includingDir` first, then in each folder of `searchPath` in
/// order. A name with a drive letter is only taken as it is. A name beginning with a
/// separator (`\inc\b.h`) is rooted on the including file's drive instead of its folder:
/// tried at the file system root, then under each ancestor of `includingDir` from the
/// outermost in, then in the search path. Returns the resolved path, or "".
std::string ResolveIncludeFile(std::string_view name, std::string_view includingDir,
                               const std::vector<std::string>& searchPath);

}  // namespace velmora
